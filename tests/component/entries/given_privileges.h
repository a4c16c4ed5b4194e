#pragma once

#include <functional>

#include "component/entries/UserPrivileges.h"

namespace orvo {

// A deployment's privilege lists: a program with this source asks the function that the calling
// thread was given last. Without one both lists are empty.
using UserPrivilegeSource = std::function<UserPrivileges(const Text& common_name)>;
void set_user_privilege_source(UserPrivilegeSource source);

}  // namespace orvo
