#pragma once

#include <string>

#include "suite/configuration/ini_parser.h"
#include "suite/directory/map/map_reader.h"

namespace orvo::directory {

inline constexpr const char* company = R"([MEMBERSHIP]
LDAPServer = ldap://dir01
LDAPRoot = o=Company
UserContainer = ou=People
AccountContainer = ou=Accounts
MemScriptUser = cn=shop,ou=Services
UserClass = orvoPerson,top
UserNamingAttribute = uid
)";

// The map of the company whose site's configuration goes on with these lines; the first of them is
// line 10.
inline std::shared_ptr<const DirectoryMap> map_of(const std::string& lines) {
    const IniValues values = parse_ini(std::string(company) + "\n" + lines, u"site.ini");
    return read_map("/etc/orvo/site.ini", values);
}

}  // namespace orvo::directory
