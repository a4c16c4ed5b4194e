#include "suite/directory/policy/password_check.h"

#include <gtest/gtest.h>

namespace orvo::directory {
namespace {

constexpr PasswordPolicy nothing_said{};
constexpr PasswordPolicy expires_soon{3600, {}, {}};
constexpr PasswordPolicy one_login_left{{}, 1, {}};
constexpr PasswordPolicy expired{{}, {}, 0};
constexpr PasswordPolicy locked{{}, {}, 1};
constexpr PasswordPolicy to_be_changed{{}, {}, 2};

std::optional<int> judged(int code, std::string_view message = {}) {
    return judged(code, message, nothing_said);
}
std::optional<int> judged(int code, const PasswordPolicy& policy) {
    return judged(code, {}, policy);
}

TEST(PasswordCheck, OfAnAcceptedBindIsRight) {
    EXPECT_EQ(judged(0), 0);
    EXPECT_EQ(judged(0, expires_soon), 0);
}

TEST(PasswordCheck, OfAPasswordToBeChangedSaysSo) {
    EXPECT_EQ(judged(0, expired), -4);
    EXPECT_EQ(judged(0, to_be_changed), -4);
    EXPECT_EQ(judged(0, one_login_left), -4);
    EXPECT_EQ(judged(49, expired), -4);
}

TEST(PasswordCheck, DoesNotTellAWrongUserFromAWrongPassword) {
    for (const int code : {32, 34, 48, 49}) EXPECT_EQ(judged(code), -1) << code;
    EXPECT_EQ(judged(49, one_login_left), -1);
}

TEST(PasswordCheck, OfALockedAccountSaysSo) {
    for (const int code : {0, 19, 49, 53}) EXPECT_EQ(judged(code, locked), -2) << code;
    EXPECT_EQ(judged(49, "error, data 775, v1db1"), -2);
}

TEST(PasswordCheck, ReadsTheCodesInAMessage) {
    EXPECT_EQ(judged(49, "error, data 52e, v1"), -1);
    EXPECT_EQ(judged(49, "error, data 525, v1"), -1);
    EXPECT_EQ(judged(49, "error, data 532, v1"), -4);
    EXPECT_EQ(judged(49, "error, data 533, v1"), -3);
    EXPECT_EQ(judged(53, "error, data 533, v1"), -3);
    EXPECT_EQ(judged(49, "error, data 701"), -3);
    EXPECT_EQ(judged(49, "error, data 773, v1"), -4);
    EXPECT_EQ(judged(49, "error, data 7750, v1"), -1);
}

TEST(PasswordCheck, OfAnAccountThatTheServerCallsDisabledSaysSo) {
    EXPECT_EQ(judged(53, "Account inactivated. Contact system administrator."), -3);
    EXPECT_EQ(judged(53, "The account is DISABLED."), -3);
    EXPECT_EQ(judged(49, "account disabled"), -3);
    EXPECT_EQ(judged(53, "Account inactivated. Contact system administrator.", locked), -3);
}

TEST(PasswordCheck, OfAnUnwillingServerIsAFailureOtherwise) {
    EXPECT_EQ(judged(53), std::nullopt);
    EXPECT_EQ(judged(53, "unauthenticated bind (DN with no password) disallowed"), std::nullopt);
    EXPECT_EQ(judged(53, "simple bind is disabled"), std::nullopt);
    EXPECT_EQ(judged(53, "error, data 52e, v1"), std::nullopt);
}

TEST(PasswordCheck, OfTooManyFailuresSaysSo) {
    EXPECT_EQ(judged(19, "Exceed password retry limit. Please try later."), -5);
}

TEST(PasswordCheck, IsAFailureWhereTheAnswerDoesNotJudgeTheAccount) {
    for (const int code : {1, 2, 8, 10, 11, 13, 51, 52, 80, 81, 84, 85, 91})
        EXPECT_EQ(judged(code), std::nullopt) << code;
}

TEST(PasswordCheck, OfAServerThatIsBusyIsAFailureWhateverItsPolicySays) {
    EXPECT_EQ(judged(51, locked), std::nullopt);
    EXPECT_EQ(judged(52, expired), std::nullopt);
}

}  // namespace
}  // namespace orvo::directory
