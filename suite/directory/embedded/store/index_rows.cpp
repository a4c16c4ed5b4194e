#include "suite/directory/embedded/store/index_rows.h"

#include <algorithm>

#include "suite/directory/entries/entry_order.h"

namespace orvo::directory::embedded {

std::string index_key(MatchingRule rule, std::string_view value) {
    std::string key = matching_key(rule, value).value_or("");
    if (key.size() > longest_index_key) key.resize(longest_index_key);
    return key;
}

std::vector<IndexedValue> indexed_values(const std::vector<Attribute>& attributes,
                                         AttributeNames& names) {
    std::vector<IndexedValue> rows;
    for (const Attribute& attribute : attributes) {
        if (attribute.values.empty()) continue;
        const StoredAttribute& stored = names[names.number_of(attribute.name)];
        if (!stored.indexed_by) continue;
        for (const std::string& value : attribute.values)
            rows.push_back({stored.type, index_key(*stored.indexed_by, value)});
    }
    std::ranges::sort(rows);
    const auto again = std::ranges::unique(rows);
    rows.erase(again.begin(), again.end());
    return rows;
}

ListedName listed_name(std::string_view name, AttributeNames& names) {
    return {names.number_of(naming_part(name).attribute), order_key(name)};
}

std::string_view key_above(std::string_view key) {
    for (std::size_t at = 0; at < key.size(); ++at) {
        if (key[at] == ',') return key.substr(at + 1);
        if (key[at] == '\\') ++at;
    }
    return {};
}

}  // namespace orvo::directory::embedded
