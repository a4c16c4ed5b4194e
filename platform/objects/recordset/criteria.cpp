#include "platform/objects/recordset/criteria.h"

#include <algorithm>

#include "platform/objects/recordset/conversion.h"
#include "platform/values/text_order.h"
#include "platform/values/values.h"

namespace orvo::recordset {
namespace {

bool fits(Comparison comparison, int order) {
    switch (comparison) {
        case Comparison::less:
            return order < 0;
        case Comparison::at_most:
            return order <= 0;
        case Comparison::equal:
            return order == 0;
        case Comparison::unequal:
            return order != 0;
        case Comparison::at_least:
            return order >= 0;
        case Comparison::greater:
            return order > 0;
        default:
            return false;
    }
}

bool is_nothing(const Variant& value) { return value.is_null() || value.is_empty(); }

}  // namespace

bool Clause::holds_for_text(TextView cell) const {
    const TextView wanted = value_.text_view();
    switch (comparison_) {
        case Comparison::begins_with:
            return equal_ignoring_case(cell.substr(0, wanted.size()), wanted);
        case Comparison::contains:
            return contains_ignoring_case(cell, wanted);
        case Comparison::equal:
            return equal_ignoring_case(cell, wanted);
        case Comparison::unequal:
            return !equal_ignoring_case(cell, wanted);
        default:
            return fits(comparison_, compare_up_to(OrderLevel::ending, cell, wanted));
    }
}

bool Clause::holds_for(const Variant& cell) const {
    if (value_.is_null()) return fits(comparison_, is_nothing(cell) ? 0 : 1);
    if (is_nothing(cell)) return false;
    if (cell.is_text() && value_.is_text()) return holds_for_text(cell.text_view());
    if (cell.is_array()) {
        if (cell.try_bytes()) return false;
        const Values elements = cell.to<Values>();
        return std::ranges::any_of(elements, [&](const Variant& each) { return holds_for(each); });
    }
    if (value_.is_text()) {
        const auto text = try_converted(cell, abi::VT_BSTR);
        return text && holds_for_text(text->text_view());
    }
    const auto number = try_converted(cell, value_.get()->vt);
    if (!number) return false;
    const double left = number->get()->dblVal;
    const double right = value_.get()->dblVal;
    return fits(comparison_, left < right ? -1 : right < left ? 1 : 0);
}

bool Criteria::match(const std::vector<Variant>& values) const {
    return std::ranges::any_of(alternatives_, [&](const std::vector<Clause>& clauses) {
        return std::ranges::all_of(clauses,
                                   [&](const Clause& clause) { return clause.matches(values); });
    });
}

}  // namespace orvo::recordset
