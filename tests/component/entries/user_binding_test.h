#pragma once

#include "tests/component/entries/user_test.h"

namespace orvo {

inline constexpr const char* bind_as = "OrvoMembership.User.BindAs";

inline constexpr const char* bind_jsmith =
    "Bind(dir01:389, ou=Users,o=Shop, un=jsmith, cn=web,o=Shop, web-code, "
    "[cn, OrvoUserType, BusinessPartnerID])";
inline constexpr const char* bind_account =
    "Bind(dir01:389, ou=Accounts,o=Shop, an=0, cn=script,o=Shop, script-code, [])";

// A bind of a user: of its entry, its profile and its account.
class UserBinding : public UserTest {};

}  // namespace orvo
