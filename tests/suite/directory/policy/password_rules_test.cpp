#include "suite/directory/policy/password_rules.h"

#include <gtest/gtest.h>

namespace orvo::directory {
namespace {

using namespace std::chrono_literals;

TEST(PasswordRules, OfNoEntryAskNothing) {
    const PasswordRules rules = PasswordRules::from({});
    EXPECT_EQ(rules, PasswordRules());
    EXPECT_FALSE(rules.lockout);
    EXPECT_TRUE(rules.allow_user_change);
    EXPECT_EQ(rules.max_failure, 0);
    EXPECT_EQ(rules.max_age, 0s);
}

TEST(PasswordRules, AreReadFromAnEntry) {
    const PasswordRules rules = PasswordRules::from({"cn=default",
                                                     {{"cn", {"default"}},
                                                      {"PWDLOCKOUT", {"TRUE"}},
                                                      {"pwdMaxFailure", {"3"}},
                                                      {"pwdLockoutDuration", {"600"}},
                                                      {"pwdAllowUserChange", {"FALSE"}},
                                                      {"pwdMinLength", {"8"}}}});
    PasswordRules expected;
    expected.lockout = true;
    expected.max_failure = 3;
    expected.max_recorded_failure = 3;
    expected.lockout_duration = 600s;
    expected.allow_user_change = false;
    expected.min_length = 8;
    EXPECT_EQ(rules, expected);
}

TEST(PasswordRules, HaveNoNumbersBelowZeroNorAboveTheLargest) {
    const PasswordRules rules = PasswordRules::from({"cn=default",
                                                     {{"pwdMaxFailure", {"-1"}},
                                                      {"pwdMinAge", {"-99999999999"}},
                                                      {"pwdMinLength", {"99999999999"}},
                                                      {"pwdInHistory", {"many"}},
                                                      {"pwdCheckQuality", {}}}});
    EXPECT_EQ(rules.max_failure, 0);
    EXPECT_EQ(rules.min_age, 0s);
    EXPECT_EQ(rules.min_length, 2147483647);
    EXPECT_EQ(rules.in_history, 0);
    EXPECT_EQ(rules.check_quality, 0);
}

}  // namespace
}  // namespace orvo::directory
