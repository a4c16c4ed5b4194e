#include "platform/objects/recordset/value_order.h"

#include "platform/objects/recordset/conversion.h"
#include "platform/values/values.h"

namespace orvo::recordset {
namespace {

enum Rank { nothing, number, text, other };

Rank rank_of(const Variant& value) {
    if (value.is_empty() || value.is_null()) return nothing;
    if (value.is_text()) return text;
    return value.is_array() || value.is_object() ? other : number;
}

template <class T>
int compared(T a, T b) {
    return a < b ? -1 : b < a ? 1 : 0;
}

int compare_numbers(const Variant& a, const Variant& b) {
    const abi::VARIANT& left = *a.get();
    const abi::VARIANT& right = *b.get();
    if (left.vt == right.vt) {
        if (left.vt == abi::VT_I4) return compared(left.lVal, right.lVal);
        if (left.vt == abi::VT_DATE) return compared(left.date, right.date);
        if (left.vt == abi::VT_I8 || left.vt == abi::VT_CY)
            return compared(left.llVal, right.llVal);
    }
    const auto x = try_converted(a, abi::VT_R8);
    const auto y = try_converted(b, abi::VT_R8);
    return x && y ? compared(x->get()->dblVal, y->get()->dblVal) : 0;
}

// A value of its own where `value` is a list.
const Variant& first_of(const Variant& value, Variant& storage) {
    if (!value.is_array() || value.try_bytes()) return value;
    const Values all = value.to<Values>();
    if (all.count() > 0) storage = all.elements().front();
    return storage;
}

int compare_single(OrderLevel level, const Variant& a, const Variant& b) {
    if (a.is_text() && b.is_text()) return compare_at(level, a.text_view(), b.text_view());
    if (level != OrderLevel::letters) return 0;
    const Rank rank = rank_of(a);
    if (rank != rank_of(b)) return compared<int>(rank, rank_of(b));
    return rank == number ? compare_numbers(a, b) : 0;
}

}  // namespace

int compare_values(OrderLevel level, const Variant& left, const Variant& right) {
    if (!left.is_array() && !right.is_array()) return compare_single(level, left, right);
    Variant left_storage;
    Variant right_storage;
    return compare_single(level, first_of(left, left_storage), first_of(right, right_storage));
}

}  // namespace orvo::recordset
