#pragma once

// The component's public classes: what its module creates and its type library describes.

#include "component/auth/Validator.h"
#include "component/common/log_contract.h"
#include "component/config/Initialize.h"
#include "component/config/PMMAccessor.h"
#include "component/config/PMMCreator.h"
#include "component/config/ServerInfo.h"
#include "component/containers/Members.h"
#include "component/containers/Profiles.h"
#include "component/entries/LdapAccess.h"

namespace orvo {

// A type library knows each name in one spelling, the one it meets first, without regard to case:
// User comes before the classes that have a parameter "iUser".
using PublicClasses = std::tuple<User, ServerInfo, PMMCreator, Account, PMMAccessor, Initialize,
                                 LdapAccess, Profile, Members, Profiles, Validator>;

// Interfaces that others implement: those of a provider, the configuration and the log.
using ForeignInterfaces = std::tuple<DirectoryModule, DirectoryEntry, DirectorySearch,
                                     DirectoryValidator, DirectorySchema, Configuration, Log>;

}  // namespace orvo
