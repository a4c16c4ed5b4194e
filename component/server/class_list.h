#pragma once

// The component's public classes: what its module creates and its type library describes.

#include "component/auth/Validator.h"
#include "component/config/Account.h"
#include "component/config/ServerInfo.h"
#include "component/entries/LdapAccess.h"
#include "component/entries/User_table.h"
#include "component/provider/PMMCreator.h"

namespace orvo {

using PublicClasses =
    std::tuple<ServerInfo, PMMCreator, Account, LdapAccess, Profile, User, Validator>;

// Interfaces that public members take or give and others implement.
using UsedInterfaces =
    std::tuple<Configuration, DirectorySchema, DirectoryEntry, DirectorySearch, DirectoryValidator>;

}  // namespace orvo
