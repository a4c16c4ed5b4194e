#include "suite/directory/ldap/wire/password_policy.h"

#include <gtest/gtest.h>

namespace orvo::directory::ldap {
namespace {

using namespace std::string_literals;

constexpr const char* policy_control = "1.3.6.1.4.1.42.2.27.8.5.1";

BindResult answer(int code, std::string message = {}) {
    BindResult result;
    result.code = code;
    result.message = std::move(message);
    return result;
}

BindResult answer_with_policy(int code, std::string value) {
    BindResult result = answer(code);
    result.controls.push_back({policy_control, std::move(value)});
    return result;
}

const std::string expired = "\x30\x03\x81\x01\x00"s;
const std::string locked = "\x30\x03\x81\x01\x01"s;
const std::string to_be_changed = "\x30\x03\x81\x01\x02"s;
const std::string one_login_left = "\x30\x05\xA0\x03\x81\x01\x01"s;
const std::string expires_soon = "\x30\x06\xA0\x04\x80\x02\x0E\x10"s;

TEST(PasswordPolicyControl, IsDecoded) {
    EXPECT_EQ(PasswordPolicy::try_decode(""), PasswordPolicy());
    EXPECT_EQ(PasswordPolicy::try_decode("\x30\x00"s), PasswordPolicy());
    EXPECT_EQ(PasswordPolicy::try_decode(locked), (PasswordPolicy{{}, {}, 1}));
    EXPECT_EQ(PasswordPolicy::try_decode(expires_soon), (PasswordPolicy{3600, {}, {}}));
    EXPECT_EQ(PasswordPolicy::try_decode("\x30\x08\xA0\x03\x81\x01\x02\x81\x01\x00"s),
              (PasswordPolicy{{}, 2, 0}));
}

TEST(PasswordPolicyControl, ThatCannotBeReadIsNothing) {
    for (const std::string& value :
         {"\x31\x00"s, "\x30"s, "\x30\x03\x81\x01"s, "\x30\x02\x81\x00"s, "\x30\x02\xA0\x00"s,
          "\x30\x07\x81\x05\x01\x02\x03\x04\x05"s, "\x30\x03\x81\x01\xFF"s, "\x30\x84\x01"s})
        EXPECT_FALSE(PasswordPolicy::try_decode(value));
}

TEST(PasswordCheck, OfAnAcceptedBindIsRight) {
    EXPECT_EQ(judged(answer(0)), 0);
    EXPECT_EQ(judged(answer_with_policy(0, "\x30\x00"s)), 0);
    EXPECT_EQ(judged(answer_with_policy(0, expires_soon)), 0);
}

TEST(PasswordCheck, OfAPasswordToBeChangedSaysSo) {
    EXPECT_EQ(judged(answer_with_policy(0, to_be_changed)), -4);
    EXPECT_EQ(judged(answer_with_policy(0, one_login_left)), -4);
    EXPECT_EQ(judged(answer_with_policy(49, expired)), -4);
    BindResult older = answer(0);
    older.controls.push_back({"2.16.840.1.113730.3.4.4", "0"});
    EXPECT_EQ(judged(older), -4);
}

TEST(PasswordCheck, DoesNotTellAWrongUserFromAWrongPassword) {
    EXPECT_EQ(judged(answer(49)), -1);
    EXPECT_EQ(judged(answer(32)), -1);
    EXPECT_EQ(judged(answer(34)), -1);
    EXPECT_EQ(judged(answer(48)), -1);
    EXPECT_EQ(judged(answer_with_policy(49, "\x30\x00"s)), -1);
    EXPECT_EQ(judged(answer_with_policy(49, one_login_left)), -1);
    EXPECT_EQ(judged(answer_with_policy(49, "garbage")), -1);
}

TEST(PasswordCheck, OfALockedAccountSaysSo) {
    EXPECT_EQ(judged(answer_with_policy(49, locked)), -2);
    EXPECT_EQ(judged(answer_with_policy(53, locked)), -2);
    EXPECT_EQ(judged(answer(49,
                            "80090308: LdapErr: DSID-0C09, AcceptSecurityContext error, "
                            "data 775, v1db1")),
              -2);
}

TEST(PasswordCheck, ReadsTheCodesInAMessage) {
    EXPECT_EQ(judged(answer(49, "error, data 52e, v1")), -1);
    EXPECT_EQ(judged(answer(49, "error, data 525, v1")), -1);
    EXPECT_EQ(judged(answer(49, "error, data 532, v1")), -4);
    EXPECT_EQ(judged(answer(49, "error, data 533, v1")), -3);
    EXPECT_EQ(judged(answer(49, "error, data 701")), -3);
    EXPECT_EQ(judged(answer(49, "error, data 773, v1")), -4);
    EXPECT_EQ(judged(answer(49, "error, data 7750, v1")), -1);
}

TEST(PasswordCheck, OfADisabledAccountSaysSo) {
    EXPECT_EQ(judged(answer(53, "Account inactivated. Contact system administrator.")), -3);
}

TEST(PasswordCheck, OfTooManyFailuresSaysSo) {
    EXPECT_EQ(judged(answer(51)), -5);
    EXPECT_EQ(judged(answer(11)), -5);
    EXPECT_EQ(judged(answer(19, "Exceed password retry limit. Please try later.")), -5);
}

TEST(PasswordCheck, IsAFailureWhereTheAnswerSaysNothingOfTheAccount) {
    for (int code : {1, 2, 8, 10, 13, 52, 80, 81, 84, 85, 91})
        EXPECT_EQ(judged(answer(code)), std::nullopt) << code;
}

}  // namespace
}  // namespace orvo::directory::ldap
