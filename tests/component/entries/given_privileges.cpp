#include "tests/component/entries/given_privileges.h"

#include <utility>

namespace orvo {
namespace {

thread_local UserPrivilegeSource given;

}  // namespace

void set_user_privilege_source(UserPrivilegeSource source) { given = std::move(source); }

// In place of the component's own.
UserPrivileges user_privileges(const Text& common_name) {
    return given ? given(common_name) : UserPrivileges();
}

}  // namespace orvo
