#include "host/admin/transfer/new_users.h"

#include <algorithm>
#include <stdexcept>

#include "host/admin/common/random_texts.h"
#include "host/admin/people/entry_values.h"
#include "suite/directory/names/ascii.h"

namespace orvo::admin {
namespace {

constexpr std::size_t length_of_unknown = 32;

bool has(const std::vector<directory::Attribute>& attributes, const std::string& name) {
    return std::ranges::any_of(attributes, [&](const directory::Attribute& attribute) {
        return directory::ascii::equal_ignoring_case(attribute.name, name);
    });
}

Value one_or_all(const std::vector<std::string>& values) {
    return values.size() == 1 ? Value(values.front()) : Value(values);
}

}  // namespace

NewUsers::NewUsers(const Site& site)
    : naming_attribute_(site.info().GetUserNamingAttribute().to<std::string>()),
      classes_(site.info().GetUserClass()),
      mandatory_(texts_of(site.info().GetUserMandatoryAttributes())),
      container_(PMMCreator().GetPMMObject()) {
    container_.call("Bind", site.info().GetServerName(), site.info().GetUserContainer(), "",
                    site.service(), site.service_code(), Value());
}

void NewUsers::make(const std::string& name, const std::string& password,
                    const std::vector<directory::Attribute>& attributes) const {
    const Object entry("Scripting.Dictionary");
    const auto add = [&](const std::string& attribute, const Value& value) {
        entry.call("Add", attribute, value);
    };
    add("cn", name);
    if (naming_attribute_ != "cn") add(naming_attribute_, name);
    if (!has(attributes, "OrvoGUID")) add("OrvoGUID", random_guid());
    add("userPassword", password.empty() ? random_password(length_of_unknown) : password);
    for (const std::string& attribute : mandatory_)
        if (!has(attributes, attribute)) add(attribute, "");
    for (const directory::Attribute& attribute : attributes) {
        if (!directory::ascii::equal_ignoring_case(attribute.name, "cn"))
            add(attribute.name, one_or_all(attribute.values));
        else if (attribute.values != std::vector{name})
            throw std::runtime_error("a user's cn is the name in " + naming_attribute_ +
                                     ": leave cn out");
    }
    add("objectClass", classes_);
    container_.call("CreateChild", std::vector<Value>{classes_}, naming_attribute_, entry);
}

}  // namespace orvo::admin
