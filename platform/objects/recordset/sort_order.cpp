#include "platform/objects/recordset/sort_order.h"

#include "platform/objects/recordset/errors.h"
#include "platform/objects/recordset/value_order.h"

namespace orvo::recordset {
namespace {

bool is_blank(char16_t c) { return c == u' ' || c == u'\t'; }

void skip_blanks(TextView text, std::size_t& at) {
    while (at < text.size() && is_blank(text[at])) ++at;
}

TextView read_name(TextView text, std::size_t& at) {
    const std::size_t from = at;
    if (at < text.size() && text[at] == u'[') {
        const std::size_t end = text.find(u']', at);
        if (end == TextView::npos) raise_runtime_error(wrong_arguments);
        at = end + 1;
        return text.substr(from + 1, end - from - 1);
    }
    while (at < text.size() && !is_blank(text[at]) && text[at] != u',') ++at;
    return text.substr(from, at - from);
}

}  // namespace

SortOrder::SortOrder(TextView text, const std::vector<Column>& columns) {
    std::size_t at = 0;
    skip_blanks(text, at);
    while (at < text.size()) {
        const TextView name = read_name(text, at);
        if (name.empty()) raise_runtime_error(wrong_arguments);
        const auto column = find_column(columns, name);
        if (!column) raise_runtime_error(no_such_item);
        skip_blanks(text, at);
        const TextView direction = read_name(text, at);
        const bool is_descending = equal_ignoring_case(direction, u"DESC");
        if (!is_descending && !direction.empty() && !equal_ignoring_case(direction, u"ASC"))
            raise_runtime_error(wrong_arguments);
        keys_.push_back({*column, is_descending});
        skip_blanks(text, at);
        if (at == text.size()) return;
        if (text[at++] != u',') raise_runtime_error(wrong_arguments);
        skip_blanks(text, at);
        if (at == text.size()) raise_runtime_error(wrong_arguments);
    }
}

bool SortOrder::is_before(const RecordStore& store, RecordId a, RecordId b) const {
    const std::vector<Variant>& left = store[a].values;
    const std::vector<Variant>& right = store[b].values;
    for (const OrderLevel level : order_levels)
        for (const Key& key : keys_) {
            const int order = compare_values(level, left[key.column], right[key.column]);
            if (order != 0) return key.is_descending ? order > 0 : order < 0;
        }
    return a < b;
}

}  // namespace orvo::recordset
