#pragma once

// The component's public classes: what its module creates and its type library describes.

#include "component/auth/Validator.h"
#include "component/config/Initialize.h"
#include "component/config/PMMAccessor.h"
#include "component/config/PMMCreator.h"
#include "component/config/ServerInfo.h"
#include "component/containers/Members.h"
#include "component/containers/Profiles.h"
#include "component/entries/LdapAccess.h"

namespace orvo {

using PublicClasses = std::tuple<ServerInfo, PMMCreator, Account, PMMAccessor, Initialize,
                                 LdapAccess, Profile, User, Members, Profiles, Validator>;

// Interfaces that public members take or give and others implement.
using UsedInterfaces =
    std::tuple<Configuration, DirectorySchema, DirectoryEntry, DirectorySearch, DirectoryValidator>;

}  // namespace orvo
