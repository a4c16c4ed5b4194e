#include "suite/directory/map/directory_map.h"

#include <algorithm>

#include "suite/directory/names/name_parts.h"

namespace orvo::directory {

const char* GroupRules::object_class() const {
    switch (kind) {
        case Kind::names:
            return "groupOfNames";
        case Kind::unique_names:
            return "groupOfUniqueNames";
        case Kind::posix:
            return "posixGroup";
        case Kind::member_of:
            break;
    }
    return nullptr;
}

const char* GroupRules::member_attribute() const {
    switch (kind) {
        case Kind::unique_names:
            return "uniqueMember";
        case Kind::posix:
            return "memberUid";
        default:
            return "member";
    }
}

const MappedAttribute* DirectoryMap::find(std::string_view name) const {
    const auto found = by_name.find(name.substr(0, name.find(';')));
    return found == by_name.end() ? nullptr : &attributes[found->second];
}

const MappedAttribute* DirectoryMap::read_from(std::string_view theirs) const {
    const auto found = std::ranges::find_if(attributes, [&](const MappedAttribute& attribute) {
        return !attribute.theirs.empty() &&
               ascii::equal_ignoring_case(attribute.theirs.front(), theirs);
    });
    return found == attributes.end() ? nullptr : &*found;
}

const std::string& DirectoryMap::their_class(const std::string& ours) const {
    const auto row = std::ranges::find_if(classes, [&](const MappedValue& one) {
        return ascii::equal_ignoring_case(one.ours, ours);
    });
    return row == classes.end() ? ours : row->theirs.front();
}

std::string DirectoryMap::their_name(const std::string& ours) const {
    const auto name = DistinguishedName::try_parse(from_utf8(ours));
    if (!name || name->depth() == 0 || !(name->parent() == user_container.key)) return ours;
    auto parts = try_name_parts(ours);
    if (!parts) return ours;
    NamePart& naming = parts->front().front();
    const MappedAttribute* mapped = find(naming.attribute);
    if (!mapped || mapped->theirs.empty() ||
        ascii::equal_ignoring_case(mapped->theirs.front(), naming.attribute))
        return ours;
    naming.attribute = mapped->theirs.front();
    return joined_name(*parts);
}

bool DirectoryMap::is_user(std::string_view entry) const {
    const auto name = DistinguishedName::try_parse(from_utf8(entry));
    return name && name->is_below(user_container.key);
}

const MappedAccount* DirectoryMap::account_of(std::string_view entry) const {
    if (accounts.empty()) return nullptr;
    const auto name = DistinguishedName::try_parse(from_utf8(entry));
    if (!name || !(name->parent() == account_container.key) || name->depth() == 0) return nullptr;
    const auto parts = try_name_parts(entry);
    if (!parts) return nullptr;
    const auto found = accounts.find(parts->front().front().value);
    return found == accounts.end() ? nullptr : &found->second;
}

}  // namespace orvo::directory
