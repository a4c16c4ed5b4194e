#include "suite/directory/map/translation.h"

#include <algorithm>
#include <utility>

#include "suite/directory/names/name_parts.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/schema/schema.h"

namespace orvo::directory {
namespace {

constexpr const char* all_attributes = "*";
constexpr const char* object_class = "objectClass";
constexpr const char* member_of = "memberOf";

void append_once(std::vector<std::string>& names, const std::string& name) {
    const auto is_it = [&](const std::string& other) {
        return ascii::equal_ignoring_case(other, name);
    };
    if (std::ranges::none_of(names, is_it)) names.push_back(name);
}

bool is_value(const std::vector<std::string>& values, std::string_view value) {
    return std::ranges::any_of(
        values, [&](const std::string& other) { return ascii::equal_ignoring_case(other, value); });
}

}  // namespace

AttributeTypes with_our_types(const AttributeTypes& server) {
    return AttributeTypes::merged(server, Schema::of_product().types);
}

bool Translation::is_among(std::string_view name, std::span<const std::string> names) const {
    return std::ranges::any_of(names, [&](const std::string& other) {
        return other == all_attributes || types_.same(other, name);
    });
}

std::vector<std::string> Translation::asked(std::span<const std::string> ours) const {
    std::vector<std::string> names;
    const auto append = [&](const MappedAttribute& attribute) {
        if (attribute.is_of_groups()) {
            if (map_.groups.kind == GroupRules::Kind::member_of) append_once(names, member_of);
            if (map_.groups.kind == GroupRules::Kind::posix) append_once(names, "uid");
        } else if (!attribute.theirs.empty()) {
            append_once(names, attribute.theirs.front());
        }
    };
    for (const std::string& name : ours) {
        const MappedAttribute* attribute = map_.find(name);
        if (!attribute) append_once(names, name);
        if (attribute) append(*attribute);
        if (name == all_attributes) std::ranges::for_each(map_.attributes, append);
    }
    // A server would take none for all.
    if (names.empty()) names.emplace_back("1.1");
    return names;
}

const std::vector<std::string>& Translation::values_of(const EntryData& theirs,
                                                       std::string_view name) const {
    static const std::vector<std::string> none;
    for (const Attribute& attribute : theirs.attributes)
        if (types_.same(attribute.name, name)) return attribute.values;
    return none;
}

std::vector<std::string> Translation::our_values(const MappedAttribute& attribute,
                                                 const std::vector<std::string>& theirs) const {
    if (attribute.values.empty()) return theirs;
    std::vector<std::string> values;
    for (const MappedValue& row : attribute.values)
        if (std::ranges::any_of(theirs, [&](const auto& one) { return is_value(row.theirs, one); }))
            append_once(values, row.ours);
    return values;
}

std::vector<std::string> Translation::their_values(const MappedAttribute& attribute,
                                                   const std::vector<std::string>& ours) const {
    if (attribute.values.empty()) return ours;
    std::vector<std::string> values;
    for (const std::string& value : ours) {
        const auto row = std::ranges::find_if(attribute.values, [&](const MappedValue& one) {
            return ascii::equal_ignoring_case(one.ours, value) && !one.theirs.empty();
        });
        if (row == attribute.values.end())
            raise_code(result_code::constraint_violation, "The directory's map has nothing for " +
                                                              quoted_name(value) + " of " +
                                                              attribute.name + ".");
        append_once(values, row->theirs.front());
    }
    return values;
}

std::vector<std::string> Translation::our_classes(std::vector<std::string> theirs) const {
    for (std::string& name : theirs)
        for (const MappedValue& row : map_.classes)
            if (ascii::equal_ignoring_case(row.theirs.front(), name)) {
                name = row.ours;
                break;
            }
    return theirs;
}

std::vector<std::string> Translation::their_classes(const std::vector<std::string>& ours) const {
    std::vector<std::string> names;
    for (const std::string& name : ours) {
        const auto row = std::ranges::find_if(map_.classes, [&](const MappedValue& one) {
            return ascii::equal_ignoring_case(one.ours, name);
        });
        if (row == map_.classes.end()) append_once(names, name);
        if (row != map_.classes.end())
            for (const std::string& one : row->theirs) append_once(names, one);
    }
    return names;
}

void Translation::add_mapped(const EntryData& theirs, std::span<const std::string> asked,
                             const GroupValues& groups, EntryData& result) const {
    const bool is_user = map_.is_user(theirs.name);
    for (const MappedAttribute& attribute : map_.attributes) {
        if (!is_among(attribute.name, asked)) continue;
        if (attribute.is_of_groups() && !groups) continue;
        std::vector<std::string> values =
            attribute.is_of_groups() ? groups(attribute, theirs)
            : attribute.theirs.empty()
                ? std::vector<std::string>()
                : our_values(attribute, values_of(theirs, attribute.theirs.front()));
        if (values.empty() && is_user) values = attribute.otherwise;
        if (attribute.single_value && !attribute.values.empty() && values.size() > 1)
            values.resize(1);
        if (!values.empty()) result.attributes.push_back({attribute.name, std::move(values)});
    }
}

// With the type of ours that is read from the one that names it; where our attribute of that type
// is read from another one, with the value of that.
std::string Translation::our_name(const EntryData& theirs) const {
    auto parts = try_name_parts(theirs.name);
    if (!parts || parts->empty()) return theirs.name;
    NamePart& naming = parts->front().front();
    const MappedAttribute* other = nullptr;
    if (const MappedAttribute* same = map_.read_from(naming.attribute)) {
        naming.attribute = same->name;
    } else if ((other = map_.find(naming.attribute)) != nullptr && !other->theirs.empty()) {
        const auto values = our_values(*other, values_of(theirs, other->theirs.front()));
        naming.value = values.empty() ? std::string() : values.front();
    } else {
        return theirs.name;
    }
    parts->front().resize(1);
    return joined_name(*parts);
}

EntryData Translation::ours(EntryData theirs, std::span<const std::string> asked,
                            const GroupValues& groups) const {
    EntryData result;
    add_mapped(theirs, asked, groups, result);
    result.name = our_name(theirs);
    for (Attribute& attribute : theirs.attributes) {
        if (map_.find(attribute.name)) continue;
        if (ascii::equal_ignoring_case(attribute.name, object_class))
            attribute.values = our_classes(std::move(attribute.values));
        result.attributes.push_back(std::move(attribute));
    }
    return result;
}

std::vector<Replacement> Translation::changes(const std::string& ours,
                                              const std::vector<std::string>& values) const {
    const MappedAttribute* attribute = map_.find(ours);
    if (!attribute) {
        const bool is_class = ascii::equal_ignoring_case(ours, object_class);
        return {{ours, is_class ? their_classes(values) : values}};
    }
    if (attribute->has_no_place()) {
        if (values == attribute->otherwise) return {};
        raise_code(result_code::unwilling_to_perform, "This directory has no place for " +
                                                          attribute->name +
                                                          ": its map gives it no attribute.");
    }
    std::vector<Replacement> result;
    const std::vector<std::string> written = their_values(*attribute, values);
    for (const std::string& name : attribute->theirs) result.push_back({name, written});
    return result;
}

std::vector<Attribute> Translation::created(std::span<const Attribute> ours) const {
    std::vector<Attribute> result;
    const auto append = [&](const std::string& name, const std::vector<std::string>& values) {
        const auto same = std::ranges::find_if(
            result, [&](const Attribute& one) { return types_.same(one.name, name); });
        if (same == result.end()) {
            result.push_back({name, values});
            return;
        }
        for (const std::string& value : values) append_once(same->values, value);
    };
    for (const Attribute& attribute : ours) {
        const MappedAttribute* mapped = map_.find(attribute.name);
        if (!mapped) {
            const bool is_class = ascii::equal_ignoring_case(attribute.name, object_class);
            append(attribute.name, is_class ? their_classes(attribute.values) : attribute.values);
        } else if (!mapped->theirs.empty()) {
            const std::vector<std::string> written = their_values(*mapped, attribute.values);
            for (const std::string& name : mapped->theirs) append(name, written);
        }
    }
    return result;
}

}  // namespace orvo::directory
