#include "platform/values/values.h"

#include <algorithm>
#include <new>
#include <utility>

#include "platform/system/automation.h"
#include "platform/values/error_info.h"
#include "platform/values/failure.h"

namespace orvo {
namespace {

// Stands in for the bounds of a moved-from array.
constexpr abi::SAFEARRAYBOUND no_bounds{0, 0};

abi::SAFEARRAY* created(std::int32_t lower_bound, std::int32_t count) {
    if (count < 0) raise_runtime_error(runtime_error::subscript_out_of_range);
    abi::SAFEARRAY* array =
        abi::SafeArrayCreateVector(abi::VT_VARIANT, lower_bound, static_cast<std::uint32_t>(count));
    if (!array) raise_runtime_error(runtime_error::out_of_memory);
    return array;
}

const abi::SAFEARRAYBOUND& bounds_of(const abi::SAFEARRAY* array) {
    return array ? array->rgsabound[0] : no_bounds;
}

// Variant has the layout of the system's structure and nothing else.
std::span<Variant> elements_of(const abi::SAFEARRAY* array) {
    if (bounds_of(array).cElements == 0) return {};
    return {std::launder(static_cast<Variant*>(array->pvData)), array->rgsabound[0].cElements};
}

Variant& element_of(const abi::SAFEARRAY* array, std::int32_t index) {
    const auto& bounds = bounds_of(array);
    const std::int64_t position = std::int64_t{index} - bounds.lLbound;
    if (position < 0 || position >= std::int64_t{bounds.cElements}) {
        raise_runtime_error(runtime_error::subscript_out_of_range);
    }
    return elements_of(array)[static_cast<std::size_t>(position)];
}

}  // namespace

Values::Values() : Values(0, 0) {}

Values::Values(std::initializer_list<Variant> elements)
    : Values(0, static_cast<std::int32_t>(elements.size())) {
    std::ranges::copy(elements, begin());
}

Values::Values(std::int32_t lower_bound, std::int32_t count)
    : array_(created(lower_bound, count)) {}

Values::Values(const Values& other) : array_(nullptr) {
    if (other.array_) detail::check(abi::SafeArrayCopy(other.array_, &array_));
}

Values::Values(Values&& other) noexcept : array_(std::exchange(other.array_, nullptr)) {}

Values& Values::operator=(Values other) noexcept {
    std::swap(array_, other.array_);
    return *this;
}

Values::~Values() {
    if (array_) abi::SafeArrayDestroy(array_);
}

std::int32_t Values::lower_bound() const { return bounds_of(array_).lLbound; }

std::int32_t Values::upper_bound() const {
    const auto& bounds = bounds_of(array_);
    return static_cast<std::int32_t>(std::int64_t{bounds.lLbound} + bounds.cElements - 1);
}

std::int32_t Values::count() const {
    return static_cast<std::int32_t>(bounds_of(array_).cElements);
}

Variant& Values::operator[](std::int32_t index) { return element_of(array_, index); }

const Variant& Values::operator[](std::int32_t index) const { return element_of(array_, index); }

void Values::resize(std::int32_t count) {
    if (count < 0) raise_runtime_error(runtime_error::subscript_out_of_range);
    if (!array_) array_ = created(0, 0);
    abi::SAFEARRAYBOUND bounds{static_cast<std::uint32_t>(count), lower_bound()};
    detail::check(abi::SafeArrayRedim(array_, &bounds));
}

void Values::push_back(Variant value) {
    resize(count() + 1);
    elements().back() = std::move(value);
}

std::span<Variant> Values::elements() { return elements_of(array_); }

std::span<const Variant> Values::elements() const { return elements_of(array_); }

bool Values::operator==(const Values& other) const {
    return lower_bound() == other.lower_bound() && std::ranges::equal(*this, other);
}

abi::SAFEARRAY* Values::detach() { return array_ ? std::exchange(array_, nullptr) : created(0, 0); }

Values Values::attach(abi::SAFEARRAY* array) {
    if (array) {
        abi::VARTYPE type = abi::VT_EMPTY;
        detail::check(abi::SafeArrayGetVartype(array, &type));
        if (type != abi::VT_VARIANT || array->cDims != 1) {
            raise_runtime_error(runtime_error::type_mismatch);
        }
    }
    return Values(array);
}

}  // namespace orvo
