#include "component/entries/UserPrivileges.h"

#include "platform/module/per_thread.h"

namespace orvo {
namespace {

UserPrivilegeSource& privilege_source() {
    static PerThread<UserPrivilegeSource> source;
    return source.get();
}

}  // namespace

void set_user_privilege_source(UserPrivilegeSource source) {
    privilege_source() = std::move(source);
}

UserPrivileges user_privileges(const Text& common_name) {
    const UserPrivilegeSource& source = privilege_source();
    return source ? source(common_name) : UserPrivileges();
}

}  // namespace orvo
