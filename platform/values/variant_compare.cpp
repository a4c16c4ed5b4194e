#include <algorithm>
#include <cstring>

#include "platform/system/vartypes.h"
#include "platform/values/array_view.h"
#include "platform/values/failure.h"
#include "platform/values/values.h"
#include "platform/values/variant.h"

namespace orvo {
namespace {

bool same_bounds(const abi::SAFEARRAY& a, const abi::SAFEARRAY& b) {
    return a.cDims == b.cDims &&
           std::equal(a.rgsabound, a.rgsabound + a.cDims, b.rgsabound,
                      [](const abi::SAFEARRAYBOUND& left, const abi::SAFEARRAYBOUND& right) {
                          return left.cElements == right.cElements && left.lLbound == right.lLbound;
                      });
}

bool same_arrays(detail::ArrayView a, detail::ArrayView b) {
    if (!a.array || !b.array) return a.array == b.array;
    if (!same_bounds(*a.array, *b.array)) return false;
    const std::size_t size = a.size();
    if (a.type == abi::VT_UI1) {
        return size == 0 || std::memcmp(a.array->pvData, b.array->pvData, size) == 0;
    }
    for (std::size_t position = 0; position < size; ++position) {
        if (!(a.at(position) == b.at(position))) return false;
    }
    return true;
}

bool same_decimals(const abi::DECIMAL& a, const abi::DECIMAL& b) {
    return a.scale == b.scale && a.sign == b.sign && a.Hi32 == b.Hi32 && a.Lo64 == b.Lo64;
}

}  // namespace

bool Variant::operator==(const Variant& other) const {
    const abi::VARIANT& a = raw();
    const abi::VARIANT& b = other.raw();
    if (a.vt != b.vt) return false;
    if (a.vt & abi::VT_ARRAY) return same_arrays(detail::array_of(a), detail::array_of(b));
    switch (abi::row_of(a.vt).content) {
        case abi::Content::nothing:
            return true;
        case abi::Content::whole:
        case abi::Content::natural:
        case abi::Content::code:
            return abi::integer_in(a) == abi::integer_in(b);
        case abi::Content::boolean:
            return (a.boolVal != abi::variant_false) == (b.boolVal != abi::variant_false);
        case abi::Content::real:
        case abi::Content::date:
            return abi::real_in(a) == abi::real_in(b);
        case abi::Content::text:
            return text_view() == other.text_view();
        case abi::Content::object:
            return Object::share(a.punkVal) == Object::share(b.punkVal);
        case abi::Content::decimal:
            return same_decimals(abi::decimal_of(a), abi::decimal_of(b));
        default:
            return a.llVal == b.llVal;
    }
}

bool equals_number(const Variant& value, std::int32_t number) {
    if (value.is_null()) return false;
    if (value.is_object() || value.is_array()) raise_runtime_error(runtime_error::type_mismatch);
    if (!value.is_text()) return value.to<double>() == number;
    if (value.text_view().empty()) return number == 0;
    abi::VARIANT read{};
    return abi::succeeded(abi::VariantChangeTypeEx(&read, value.get(), abi::fixed_locale,
                                                   abi::VARIANT_NOUSEROVERRIDE, abi::VT_R8)) &&
           read.dblVal == number;
}

Variant element(const Variant& array, std::int32_t index) {
    const auto view = detail::array_of(*array.get());
    const std::int64_t position = std::int64_t{index} - view.lower_bound();
    if (!view.is_vector() || position < 0 || position >= static_cast<std::int64_t>(view.size())) {
        raise_runtime_error(runtime_error::subscript_out_of_range);
    }
    return view.at(static_cast<std::size_t>(position));
}

}  // namespace orvo
