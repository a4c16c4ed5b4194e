#pragma once

// The sections of a site's configuration that describe its directory (directory_map.h):
//
//     [DIRECTORY.MAP]                      options, and names of attributes: ours = theirs
//     UserSearch = sub
//     LoginAttributes = uid, mail
//     cn = uid
//     LanguageID = preferredLanguage
//     OrvoGUID =                           the directory has nothing of the kind
//
//     [DIRECTORY.MAP.DEFAULTS]             of users without a value
//     OrvoUserType = 1
//
//     [DIRECTORY.MAP.VALUES.LanguageID]    ours = theirs
//     2 = en | en-GB
//
//     [DIRECTORY.MAP.CLASSES]              ours = theirs
//     orvoPerson = inetOrgPerson | organizationalPerson | person | top
//
//     [DIRECTORY.MAP.GROUPS]               how groups name their members
//     Kind = groupOfNames
//     Container = ou=Groups
//
//     [DIRECTORY.MAP.GROUPS.OrvoRole]      our value = the group whose members have it
//     24 = cn=receivers,ou=Groups
//
//     [DIRECTORY.MAP.ACCOUNTS]             in place of entries
//     1.User = web-user
//     1.Password = @file:web-user.code
//
// Several values of one key have "|" between them. Names of groups and containers are relative to
// LDAPRoot, as those of [MEMBERSHIP] are. `File` names another file that has these sections instead
// of this one.

#include <filesystem>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "platform/values/described_setting.h"
#include "suite/configuration/ini_parser.h"
#include "suite/directory/map/directory_map.h"

namespace orvo::directory {

// The map of the site that this file configures; null where it has none. Raises result code 89,
// "<file>, line <n>: …", for a section or key that is not known, with the nearest name that is, and
// for what cannot be used. What a file refers to is read each time anew.
std::shared_ptr<const DirectoryMap> read_map(const std::filesystem::path& file,
                                             const IniValues& values);

// What may stand in [DIRECTORY.MAP] and [DIRECTORY.MAP.GROUPS], but for the names of attributes.
std::vector<DescribedSetting> described_map_settings();
std::vector<DescribedSetting> described_group_settings();

}  // namespace orvo::directory
