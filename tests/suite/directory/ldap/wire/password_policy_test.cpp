#include "suite/directory/ldap/wire/password_policy.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orvo::directory::ldap {
namespace {

using namespace std::string_literals;

const std::string locked = "\x30\x03\x81\x01\x01"s;
const std::string expires_soon = "\x30\x06\xA0\x04\x80\x02\x0E\x10"s;

TEST(PasswordPolicyControl, IsDecoded) {
    EXPECT_EQ(try_decode_policy(""), PasswordPolicy());
    EXPECT_EQ(try_decode_policy("\x30\x00"s), PasswordPolicy());
    EXPECT_EQ(try_decode_policy(locked), (PasswordPolicy{{}, {}, 1}));
    EXPECT_EQ(try_decode_policy(expires_soon), (PasswordPolicy{3600, {}, {}}));
    EXPECT_EQ(try_decode_policy("\x30\x08\xA0\x03\x81\x01\x02\x81\x01\x00"s),
              (PasswordPolicy{{}, 2, 0}));
}

TEST(PasswordPolicyControl, ThatCannotBeReadIsNothing) {
    for (const std::string& value :
         {"\x31\x00"s, "\x30"s, "\x30\x03\x81\x01"s, "\x30\x02\x81\x00"s, "\x30\x02\xA0\x00"s,
          "\x30\x07\x81\x05\x01\x02\x03\x04\x05"s, "\x30\x03\x81\x01\xFF"s, "\x30\x84\x01"s})
        EXPECT_FALSE(try_decode_policy(value));
}

TEST(PasswordPolicyControl, IsFoundAmongOthers) {
    const Control other{"1.2.3", locked};
    const Control garbage{policy_control, "garbage"};
    const Control policy{policy_control, locked};
    const Control older{"2.16.840.1.113730.3.4.4", "0"};
    const auto found = [](std::vector<Control> controls) { return policy_in(controls); };
    EXPECT_EQ(found({}), PasswordPolicy());
    EXPECT_EQ(found({other, garbage}), PasswordPolicy());
    EXPECT_EQ(found({other, policy}), (PasswordPolicy{{}, {}, 1}));
    EXPECT_EQ(found({older}), (PasswordPolicy{{}, {}, 0}));
}

}  // namespace
}  // namespace orvo::directory::ldap
