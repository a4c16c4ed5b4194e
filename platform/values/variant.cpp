#include "platform/values/variant.h"

#include <cstring>
#include <new>

#include "platform/system/vartypes.h"
#include "platform/values/error_info.h"
#include "platform/values/failure.h"

namespace orvo {
namespace {

static_assert(sizeof(Variant) == sizeof(abi::VARIANT) && alignof(Variant) == alignof(abi::VARIANT));

constexpr std::size_t longest_text = 0x3FFFFFFF;

}  // namespace

abi::VARIANT& Variant::raw() { return *std::launder(reinterpret_cast<abi::VARIANT*>(storage_)); }

const abi::VARIANT& Variant::raw() const {
    return *std::launder(reinterpret_cast<const abi::VARIANT*>(storage_));
}

Variant::Variant() noexcept : storage_{} {}

Variant::Variant(const Variant& other) : Variant() {
    if (abi::is_plain(other.raw().vt)) {
        std::memcpy(storage_, other.storage_, sizeof storage_);
    } else {
        detail::check(abi::VariantCopy(&raw(), &other.raw()));
    }
}

Variant::Variant(Variant&& other) noexcept {
    std::memcpy(storage_, other.storage_, sizeof storage_);
    std::memset(other.storage_, 0, sizeof storage_);
}

Variant& Variant::operator=(const Variant& other) {
    Variant copy(other);
    std::swap(storage_, copy.storage_);
    return *this;
}

Variant& Variant::operator=(Variant&& other) noexcept {
    Variant taken(std::move(other));
    std::swap(storage_, taken.storage_);
    return *this;
}

Variant::~Variant() {
    if (!abi::is_plain(raw().vt)) abi::VariantClear(&raw());
}

Variant::Variant(std::int16_t value) : Variant() {
    raw().vt = abi::VT_I2;
    raw().iVal = value;
}

Variant::Variant(std::int32_t value) : Variant() {
    raw().vt = abi::VT_I4;
    raw().lVal = value;
}

Variant::Variant(std::int64_t value) : Variant() {
    raw().vt = abi::VT_I8;
    raw().llVal = value;
}

Variant::Variant(double value) : Variant() {
    raw().vt = abi::VT_R8;
    raw().dblVal = value;
}

Variant::Variant(Currency value) : Variant() {
    raw().vt = abi::VT_CY;
    raw().cyVal.int64 = value.units;
}

Variant::Variant(Date value) : Variant() {
    raw().vt = abi::VT_DATE;
    raw().date = value.days;
}

Variant::Variant(boolean_tag, bool value) : Variant() {
    raw().vt = abi::VT_BOOL;
    raw().boolVal = value ? abi::variant_true : abi::variant_false;
}

Variant::Variant(TextView value) : Variant() {
    if (value.size() > longest_text) raise_runtime_error(runtime_error::out_of_memory);
    abi::BSTR text = abi::SysAllocStringLen(value.data(), static_cast<std::uint32_t>(value.size()));
    if (!text) raise_runtime_error(runtime_error::out_of_memory);
    raw().vt = abi::VT_BSTR;
    raw().bstrVal = text;
}

Variant::Variant(const Object& value) : Variant() {
    raw().vt = abi::VT_DISPATCH;
    if (!value) return;
    void* dispatch = nullptr;
    if (abi::succeeded(abi::query_interface(value.get(), abi::iid_dispatch, &dispatch))) {
        raw().pdispVal = static_cast<abi::IDispatch*>(dispatch);
    } else {
        raw().vt = abi::VT_UNKNOWN;
        raw().punkVal = Object(value).detach();
    }
}

Variant Variant::null() {
    Variant value;
    value.raw().vt = abi::VT_NULL;
    return value;
}

Variant Variant::missing() {
    Variant value;
    value.raw().vt = abi::VT_ERROR;
    value.raw().scode = abi::disp_e_paramnotfound;
    return value;
}

Kind Variant::kind() const { return static_cast<Kind>(raw().vt); }

bool Variant::is_missing() const {
    return raw().vt == abi::VT_ERROR && raw().scode == abi::disp_e_paramnotfound;
}

bool Variant::is_array() const { return raw().vt & abi::VT_ARRAY; }

TextView Variant::text_view() const {
    if (raw().vt != abi::VT_BSTR || !raw().bstrVal) return {};
    return {raw().bstrVal, abi::SysStringLen(raw().bstrVal)};
}

const abi::VARIANT* Variant::get() const { return &raw(); }

abi::VARIANT* Variant::put() {
    *this = Variant();
    return &raw();
}

Variant Variant::attach(abi::VARIANT& taken) {
    if (taken.vt & abi::VT_BYREF) {
        Variant value = copy_of(taken);
        taken = {};
        return value;
    }
    Variant value;
    std::memcpy(value.storage_, &taken, sizeof taken);
    taken = {};
    return value;
}

Variant Variant::copy_of(const abi::VARIANT& value) {
    Variant copy;
    if (abi::is_plain(value.vt)) {
        std::memcpy(copy.storage_, &value, sizeof value);
    } else {
        detail::check(abi::VariantCopyInd(&copy.raw(), &value));
    }
    return copy;
}

void Variant::detach(abi::VARIANT& out) {
    std::memcpy(&out, storage_, sizeof storage_);
    std::memset(storage_, 0, sizeof storage_);
}

}  // namespace orvo
