#include <utility>

#include "suite/configuration/value_reference.h"
#include "suite/directory/ldap/provider/LdapEntry.h"
#include "suite/directory/ldap/provider/mapped_groups.h"
#include "suite/directory/names/ascii.h"

namespace orvo::directory::ldap {

const MappedAttribute* LdapEntry::attribute_of_groups(const std::string& name) const {
    const MappedAttribute* attribute = mapped_ ? mapped_->map().find(name) : nullptr;
    return attribute && attribute->is_of_groups() ? attribute : nullptr;
}

EntryData LdapEntry::as_groups_see_it() {
    EntryData theirs{name_, {}};
    for (const std::string& name : MappedGroups(*mapped_).asked(name_))
        theirs.attributes.push_back({name, current_values(name)});
    return theirs;
}

std::vector<std::string> LdapEntry::values_of_groups(const MappedAttribute& attribute) {
    using Known = MappedGroups::Known;
    const bool may_be_known = is_first_reading(attribute.name) || client_.cache().is_on();
    std::vector<std::string> values = MappedGroups(*mapped_).values_of(
        attribute, as_groups_see_it(), may_be_known ? Known::used : Known::not_used);
    if (values.empty() && mapped_->map().is_user(name_)) values = attribute.otherwise;
    return values;
}

void LdapEntry::assign_groups(const MappedAttribute& attribute,
                              const std::vector<std::string>& values) {
    const NotedWrite noted(client_.writes(), key_);
    MappedGroups(*mapped_).assign(attribute, as_groups_see_it(), values, client_.writes(), *login_);
}

// As it is configured at this moment; nothing of it is kept.
std::vector<std::string> LdapEntry::account_values(const std::string& attribute) const {
    const auto value_of = [&](const Text& configured) -> std::vector<std::string> {
        if (configured.empty()) return {};
        return {to_utf8(referred_value(configured, mapped_->map().file.parent_path()))};
    };
    if (ascii::equal_ignoring_case(attribute, "OrvoNTUser")) return value_of(account_->user);
    if (ascii::equal_ignoring_case(attribute, "OrvoNTPassword"))
        return value_of(account_->password);
    return {};
}

}  // namespace orvo::directory::ldap
