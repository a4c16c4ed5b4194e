#include "suite/directory/policy/account_state.h"

#include <gmock/gmock.h>

namespace orvo::directory {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono;
using namespace std::chrono_literals;

constexpr Moment noon = sys_days(2026y / January / 31) + 12h;

PasswordRules locking_after(int failures) {
    PasswordRules rules;
    rules.lockout = true;
    rules.max_failure = rules.max_recorded_failure = failures;
    return rules;
}

// What the attribute is replaced by in the end; one element "unchanged" where it is not.
std::vector<std::string> changed(const BindOutcome& outcome, const std::string& attribute) {
    std::vector<std::string> values = {"unchanged"};
    for (const Replacement& change : outcome.changes)
        if (change.attribute == attribute) values = change.values;
    return values;
}

int number(const BindOutcome& outcome) { return *judged(outcome.code, {}, outcome.policy); }

TEST(AnAccount, IsReadFromItsEntry) {
    const AccountState state = AccountState::from({"cn=a",
                                                   {{"cn", {"a"}},
                                                    {"pwdchangedtime", {"20260101000000Z"}},
                                                    {"pwdAccountLockedTime", {"000001010000Z"}},
                                                    {"pwdFailureTime", {"1", "2"}},
                                                    {"pwdGraceUseTime", {"3"}},
                                                    {"pwdReset", {"TRUE"}},
                                                    {"pwdHistory", {"4", "5"}},
                                                    {"pwdStartTime", {"6"}},
                                                    {"pwdEndTime", {"7"}}}});
    EXPECT_EQ(state.changed_time, "20260101000000Z");
    EXPECT_EQ(state.locked_time, account::locked_for_good);
    EXPECT_THAT(state.failure_times, ElementsAre("1", "2"));
    EXPECT_THAT(state.grace_times, ElementsAre("3"));
    EXPECT_EQ(state.reset, true);
    EXPECT_THAT(state.history, ElementsAre("4", "5"));
    EXPECT_EQ(state.start_time, "6");
    EXPECT_EQ(state.end_time, "7");
    EXPECT_EQ(AccountState::from({}), AccountState());
    EXPECT_FALSE(state == AccountState());
}

TEST(ARightLogin, WritesNothing) {
    const BindOutcome outcome = outcome_of_bind(locking_after(3), {}, true, noon);
    EXPECT_EQ(number(outcome), 0);
    EXPECT_THAT(outcome.changes, IsEmpty());
    EXPECT_FALSE(outcome.is_restricted());
}

TEST(ARightLogin, ForgetsFailures) {
    AccountState state;
    state.failure_times = {"20260131115900Z"};
    EXPECT_THAT(changed(outcome_of_bind(locking_after(3), state, true, noon), "pwdFailureTime"),
                IsEmpty());
}

TEST(AWrongLogin, CountsAndLocks) {
    AccountState state;
    BindOutcome outcome = outcome_of_bind(locking_after(2), state, false, noon);
    EXPECT_EQ(number(outcome), -1);
    EXPECT_THAT(changed(outcome, "pwdFailureTime"), ElementsAre("20260131120000.000000Z"));
    EXPECT_THAT(changed(outcome, "pwdAccountLockedTime"), ElementsAre("unchanged"));
    state.failure_times = changed(outcome, "pwdFailureTime");
    outcome = outcome_of_bind(locking_after(2), state, false, noon + 1s);
    EXPECT_EQ(number(outcome), -1);
    EXPECT_THAT(changed(outcome, "pwdAccountLockedTime"), ElementsAre("20260131120001Z"));
    state.locked_time = "20260131120001Z";
    EXPECT_TRUE(state.is_locked(locking_after(2), noon + 1s));
    for (const bool is_right : {true, false}) {
        outcome = outcome_of_bind(locking_after(2), state, is_right, noon + 2s);
        EXPECT_EQ(number(outcome), -2);
        EXPECT_THAT(outcome.changes, IsEmpty());
    }
}

TEST(AWrongLogin, CountsOnceThoughSeveralComeAtOneTime) {
    AccountState state;
    state.failure_times = {"20260131120000.000000Z", "20260131120000.000001Z"};
    EXPECT_THAT(
        changed(outcome_of_bind(locking_after(9), state, false, noon), "pwdFailureTime"),
        ElementsAre("20260131120000.000000Z", "20260131120000.000001Z", "20260131120000.000002Z"));
}

TEST(AWrongLogin, LocksOneFailureLaterWhereALockHasJustEnded) {
    PasswordRules rules = locking_after(2);
    rules.lockout_duration = 60s;
    AccountState state;
    state.locked_time = "20260131115900Z";
    state.failure_times = {"20260131115800Z", "20260131115900Z"};
    BindOutcome outcome = outcome_of_bind(rules, state, false, noon);
    EXPECT_EQ(number(outcome), -1);
    EXPECT_THAT(changed(outcome, "pwdAccountLockedTime"), IsEmpty());
    state.locked_time.clear();
    outcome = outcome_of_bind(rules, state, false, noon + 1s);
    EXPECT_THAT(changed(outcome, "pwdAccountLockedTime"), ElementsAre("20260131120001Z"));
}

TEST(ALock, HoldsAsLongAsTheRulesSay) {
    PasswordRules rules = locking_after(3);
    AccountState state;
    state.locked_time = "20260131115900Z";
    EXPECT_TRUE(state.is_locked(rules, noon + years(50)));
    rules.lockout_duration = 60s;
    EXPECT_TRUE(state.is_locked(rules, noon - 1us));
    EXPECT_FALSE(state.is_locked(rules, noon));
    EXPECT_FALSE(state.is_locked(rules, noon - 120s));  // it begins later
    rules.lockout = false;
    EXPECT_FALSE(state.is_locked(rules, noon - 1s));
}

TEST(ALock, ForGoodHasNoEnd) {
    PasswordRules rules = locking_after(3);
    rules.lockout_duration = 60s;
    AccountState state;
    state.locked_time = account::locked_for_good;
    EXPECT_TRUE(state.is_locked(rules, noon));
    state.locked_time = "not a time";
    EXPECT_TRUE(state.is_locked(rules, noon));
}

TEST(ALock, IsOutsideOfThePasswordsTime) {
    AccountState state;
    state.start_time = "20260131120000Z";
    EXPECT_TRUE(state.is_locked({}, noon - 1s));
    EXPECT_FALSE(state.is_locked({}, noon));
    state = {};
    state.end_time = "20260131120000Z";
    EXPECT_FALSE(state.is_locked({}, noon - 1s));
    EXPECT_TRUE(state.is_locked({}, noon));
    state.end_time = "not a time";
    EXPECT_TRUE(state.is_locked({}, noon - 1s));
}

TEST(AnExpiringPassword, WarnsThenHasGraceThenIsRefused) {
    PasswordRules rules;
    rules.max_age = 100s;
    rules.expire_warning = 20s;
    rules.grace_auth_n_limit = 1;
    AccountState state;
    state.changed_time = "20260131120000Z";
    EXPECT_EQ(outcome_of_bind(rules, state, true, noon + 80s).policy, PasswordPolicy());
    BindOutcome outcome = outcome_of_bind(rules, state, true, noon + 81s);
    EXPECT_EQ(outcome.policy, (PasswordPolicy{19, {}, {}}));
    EXPECT_EQ(number(outcome), 0);
    outcome = outcome_of_bind(rules, state, true, noon + 101s);
    EXPECT_EQ(outcome.policy, (PasswordPolicy{{}, 0, {}}));
    EXPECT_EQ(number(outcome), -4);
    state.grace_times = changed(outcome, "pwdGraceUseTime");
    EXPECT_THAT(state.grace_times, ElementsAre("20260131120141.000000Z"));
    outcome = outcome_of_bind(rules, state, true, noon + 102s);
    EXPECT_EQ(outcome.code, 49);
    EXPECT_EQ(number(outcome), -4);
    EXPECT_EQ(number(outcome_of_bind(rules, state, false, noon + 102s)), -1);
}

TEST(AResetPassword, IsRightButIsToBeChanged) {
    PasswordRules rules;
    AccountState state;
    state.reset = true;
    EXPECT_EQ(number(outcome_of_bind(rules, state, true, noon)), 0);
    rules.must_change = true;
    const BindOutcome outcome = outcome_of_bind(rules, state, true, noon);
    EXPECT_EQ(number(outcome), -4);
    EXPECT_TRUE(outcome.is_restricted());
    rules.max_age = 1s;
    rules.expire_warning = 1s;
    state.changed_time = "20260101000000Z";
    EXPECT_EQ(outcome_of_bind(rules, state, true, noon).policy, (PasswordPolicy{0, {}, 2}));
    rules.max_age = 0s;
    state.reset = false;
    EXPECT_EQ(number(outcome_of_bind(rules, state, true, noon)), 0);
}

TEST(Unlocking, ForgetsFailures) {
    AccountState state;
    EXPECT_THAT(changes_with_unlocking(state), IsEmpty());
    state.failure_times = {"20260131120000Z"};
    const std::vector<Replacement> changes = changes_with_unlocking(state);
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0].attribute, "pwdFailureTime");
    EXPECT_THAT(changes[0].values, IsEmpty());
}

}  // namespace
}  // namespace orvo::directory
