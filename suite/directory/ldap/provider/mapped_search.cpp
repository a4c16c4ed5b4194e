#include "suite/directory/ldap/provider/mapped_search.h"

#include <algorithm>
#include <utility>

#include "suite/directory/entries/search_condition.h"
#include "suite/directory/entries/searched_entry.h"

namespace orvo::directory::ldap {
namespace {

bool is_of_users(const std::string& base, const DirectoryMap& map) {
    const auto name = DistinguishedName::try_parse(from_utf8(base));
    return name && (*name == map.user_container.key || name->is_below(map.user_container.key));
}

}  // namespace

MappedSearch::MappedSearch(MappedDirectory& directory, const std::string& base,
                           const Filter& filter, std::vector<std::string> attributes)
    : directory_(directory), groups_(directory), wanted_(std::move(attributes)) {
    const DirectoryMap& map = directory.map();
    const std::vector<std::string> in_filter =
        split(filter, [](const Filter&) { return true; }).attributes;
    const auto load = [&](const std::string& name) {
        const MappedAttribute* attribute = map.find(name);
        if (attribute && attribute->is_of_groups()) groups_.load(*attribute);
    };
    std::ranges::for_each(wanted_, load);
    std::ranges::for_each(in_filter, load);
    const MappedFilter mapped =
        mapped_filter(filter, map, directory.types(), is_of_users(base, map),
                      [&](const MappedGroup& group) { return groups_.condition(group); });
    filter_ = mapped.sent.text();
    if (!mapped.is_exact) {
        wanted_.insert(wanted_.end(), in_filter.begin(), in_filter.end());
        matcher_.emplace(filter, [&types = directory.types()](std::string_view name) {
            return matching_of(name, types, Bounds::of_rules);
        });
    }
    // What lists are ordered by.
    std::vector<std::string> asked = wanted_;
    for (const std::string& name : {std::string("cn"), map.naming_attribute})
        if (map.find(name)) asked.push_back(name);
    attributes_ = directory.translation().asked(asked);
}

std::optional<EntryData> MappedSearch::ours(EntryData&& theirs) const {
    EntryData entry = directory_.translation().ours(
        std::move(theirs), wanted_, [&](const MappedAttribute& ours, const EntryData& given) {
            return groups_.loaded_values(ours, given);
        });
    if (matcher_ && !matcher_->matches(SearchedEntry(entry, directory_.types())))
        return std::nullopt;
    return entry;
}

}  // namespace orvo::directory::ldap
