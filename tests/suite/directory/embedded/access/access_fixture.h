#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "suite/directory/embedded/access/access_rules.h"

namespace orvo::directory::embedded {

// Attributes of text, each with a second name ("mail", "mail-alias"), and passwords.
inline std::shared_ptr<const Schema> schema_of(std::initializer_list<const char*> attributes) {
    std::vector<std::string> types = {
        "( 2.5.4.35 NAME 'userPassword' EQUALITY octetStringMatch "
        "SYNTAX 1.3.6.1.4.1.1466.115.121.1.40 )",
        "( 1.2.3.0 NAME 'OrvoUserType' EQUALITY integerMatch ORDERING integerOrderingMatch "
        "SYNTAX 1.3.6.1.4.1.1466.115.121.1.27 )"};
    int number = 0;
    for (const std::string attribute : attributes)
        types.push_back("( 1.2.3." + std::to_string(++number) + " NAME ( '" + attribute + "' '" +
                        attribute + "-alias' ) EQUALITY caseIgnoreMatch SUBSTR " +
                        "caseIgnoreSubstringsMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )");
    return std::make_shared<const Schema>(Schema::from_descriptions(std::move(types), {}));
}

inline DistinguishedName dn(const std::string& name) {
    return DistinguishedName::try_parse(from_utf8(name)).value();
}

inline Identity user(const std::string& name, const std::string& type = "1") {
    return Identity::of(dn(name), {name, {{"cn", {"any"}}, {"OrvoUserType", {type}}}});
}

}  // namespace orvo::directory::embedded
