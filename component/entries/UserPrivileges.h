#pragma once

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

// Asked at every bind, on the thread of the bind, with the common name of the user that was bound.
// Both lists are empty here; a deployment that wants restrictions is built with a definition of its
// own in place of UserPrivileges.cpp. What that raises ends the bind.
UserPrivileges user_privileges(const Text& common_name);

}  // namespace orvo
