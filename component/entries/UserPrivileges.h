#pragma once

#include <functional>

#include "platform/values/values.h"

namespace orvo {

// Which attributes a user object may read and set. An empty list restricts nothing. Names have to
// be written in lower case, in which they are looked up: callers spell attributes as they like. An
// entry with capitals is never found, and counts as an entry all the same, so that its attribute is
// locked.
struct UserPrivileges {
    Values readable;
    Values writable;
};

// Where the lists come from: asked at every bind, with the common name of the user that was bound.
// A deployment that wants restrictions supplies its own source, for the calling thread; without
// one both lists are empty. What the source raises ends the bind.
using UserPrivilegeSource = std::function<UserPrivileges(const Text& common_name)>;
void set_user_privilege_source(UserPrivilegeSource source);

UserPrivileges user_privileges(const Text& common_name);

}  // namespace orvo
