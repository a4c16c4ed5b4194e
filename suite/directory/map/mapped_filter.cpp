#include "suite/directory/map/mapped_filter.h"

#include <algorithm>
#include <utility>

#include "suite/directory/entries/search_condition.h"
#include "suite/directory/entries/searched_entry.h"
#include "suite/directory/filters/filter_match.h"

namespace orvo::directory {
namespace {

using Kind = Filter::Kind;

constexpr const char* object_class = "objectClass";

Filter every_entry() { return {.kind = Kind::all_of}; }
Filter no_entry() { return {.kind = Kind::any_of}; }
bool is_every_entry(const Filter& filter) {
    return filter.kind == Kind::all_of && filter.parts.empty();
}
bool is_no_entry(const Filter& filter) {
    return filter.kind == Kind::any_of && filter.parts.empty();
}

Filter negated(Filter filter) {
    if (is_every_entry(filter)) return no_entry();
    if (is_no_entry(filter)) return every_entry();
    return {.kind = Kind::negation, .parts = {std::move(filter)}};
}

// Without the parts that say nothing, and without a level where one part is left.
Filter joined(Kind kind, std::vector<Filter> parts) {
    const bool is_all = kind == Kind::all_of;
    if (std::ranges::any_of(parts, is_all ? is_no_entry : is_every_entry))
        return is_all ? no_entry() : every_entry();
    std::erase_if(parts, is_all ? is_every_entry : is_no_entry);
    if (parts.size() == 1) return std::move(parts.front());
    return {.kind = kind, .parts = std::move(parts)};
}

Filter equality(std::string attribute, std::string value) {
    return {.kind = Kind::equality, .attribute = std::move(attribute), .value = std::move(value)};
}
Filter presence(std::string attribute) {
    return {.kind = Kind::presence, .attribute = std::move(attribute)};
}

class Mapper {
public:
    Mapper(const DirectoryMap& map, const AttributeTypes& types, bool is_of_users,
           const GroupCondition& group_condition)
        : map_(map), types_(types), is_of_users_(is_of_users), group_condition_(group_condition) {}

    bool is_exact() const { return is_exact_; }

    // True of every entry that `ours` is true of; where it is denied, of no others.
    Filter mapped(const Filter& ours, bool denied) {
        if (ours.kind == Kind::negation) return negated(mapped(ours.parts.front(), !denied));
        if (ours.kind < Kind::negation) {
            std::vector<Filter> parts;
            for (const Filter& part : ours.parts) parts.push_back(mapped(part, denied));
            return joined(ours.kind, std::move(parts));
        }
        return item(ours, denied);
    }

private:
    Filter item(const Filter& ours, bool denied) {
        if (ascii::equal_ignoring_case(ours.attribute, object_class)) return class_item(ours);
        const MappedAttribute* attribute = map_.find(ours.attribute);
        if (!attribute) return ours;
        const bool is_listed = !attribute->values.empty() || attribute->theirs.empty();
        if (is_listed) return listed_item(ours, *attribute, denied);
        std::vector<Filter> parts{renamed_item(ours, attribute->theirs.front(), denied)};
        if (is_default(ours, *attribute)) {
            if (ours.kind == Kind::presence) return every_entry();
            parts.push_back(negated(presence(attribute->theirs.front())));
        }
        return joined(Kind::any_of, std::move(parts));
    }

    Filter class_item(const Filter& ours) const {
        Filter theirs = ours;
        if (ours.kind == Kind::equality) theirs.value = map_.their_class(ours.value);
        return theirs;
    }

    // Their attribute may have another order, or none.
    Filter renamed_item(const Filter& ours, const std::string& name, bool denied) {
        if (ours.kind == Kind::at_least || ours.kind == Kind::at_most)
            return about(presence(name), denied);
        Filter theirs = ours;
        theirs.attribute = name;
        return theirs;
    }

    // A condition that is true of too many.
    Filter about(Filter wider, bool denied) {
        is_exact_ = false;
        return denied ? no_entry() : std::move(wider);
    }

    // Of an attribute whose values are known: those of which the item is true.
    Filter listed_item(const Filter& ours, const MappedAttribute& attribute, bool denied) {
        std::vector<Filter> parts, any;
        const bool is_by_default = is_default(ours, attribute);
        bool is_true_of_each = true;
        for (const MappedValue& row : attribute.values) {
            const bool is_true = is_true_of(ours, attribute, row.ours);
            is_true_of_each &= is_true;
            for (const std::string& value : row.theirs) {
                any.push_back(equality(attribute.theirs.front(), value));
                if (is_true) parts.push_back(any.back());
            }
        }
        // Of several groups of one member the first counts where there is one value.
        const bool is_ambiguous = attribute.single_value && attribute.groups.size() > 1;
        for (const MappedGroup& row : attribute.groups) {
            const bool is_true = is_true_of(ours, attribute, row.ours);
            is_true_of_each &= is_true;
            if (is_by_default) any.push_back(member_of(row, !denied));
            if (is_true)
                parts.push_back(is_ambiguous ? about(member_of(row, denied), denied)
                                             : member_of(row, denied));
        }
        if (is_by_default && is_true_of_each) return every_entry();
        if (is_by_default) parts.push_back(negated(joined(Kind::any_of, std::move(any))));
        return joined(Kind::any_of, std::move(parts));
    }

    Filter member_of(const MappedGroup& row, bool denied) {
        std::optional<MappedFilter> condition = group_condition_(row);
        if (!condition) return about(every_entry(), denied);
        return condition->is_exact ? std::move(condition->sent)
                                   : about(std::move(condition->sent), denied);
    }

    bool is_default(const Filter& ours, const MappedAttribute& attribute) const {
        return is_of_users_ && std::ranges::any_of(attribute.otherwise, [&](const auto& value) {
                   return is_true_of(ours, attribute, value);
               });
    }

    bool is_true_of(const Filter& item, const MappedAttribute& attribute,
                    const std::string& value) const {
        const EntryData entry{{}, {{attribute.name, {value}}}};
        const FilterMatcher matcher(item, [&](std::string_view name) {
            return matching_of(name, types_, Bounds::of_rules);
        });
        return matcher.matches(SearchedEntry(entry, types_));
    }

    const DirectoryMap& map_;
    const AttributeTypes& types_;
    const bool is_of_users_;
    const GroupCondition& group_condition_;
    bool is_exact_ = true;
};

}  // namespace

MappedFilter mapped_filter(const Filter& ours, const DirectoryMap& map, const AttributeTypes& types,
                           bool is_of_users, const GroupCondition& group_condition) {
    Mapper mapper(map, types, is_of_users, group_condition);
    Filter sent = mapper.mapped(ours, false);
    // Not every server knows the filters that are always true and always false (RFC 4526).
    if (is_every_entry(sent)) sent = presence(object_class);
    if (is_no_entry(sent)) sent = negated(presence(object_class));
    return {std::move(sent), mapper.is_exact()};
}

}  // namespace orvo::directory
