#include "suite/directory/policy/password_change.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "suite/directory/policy/password_hash.h"
#include "suite/directory/policy/stored_password.h"

namespace orvo::directory {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono;
using namespace std::chrono_literals;

constexpr Moment noon = sys_days(2026y / January / 31) + 12h;

struct Account {
    PasswordRules rules = {};
    AccountState state = {};
    std::string stored = hashed_password(Secret(u"first password"), HashCost::lowest);

    // "(code) message", "fine" where it may be set.
    std::string refusal(const Text& password, ChangedBy by = ChangedBy::user,
                        FormerPassword former = FormerPassword::not_told) const {
        const Secret secret(password);
        const ChangeRefusal refusal =
            refusal_of_change(rules, state, {by, former, secret, stored}, noon);
        if (refusal.code == 0) return "fine";
        const std::string error = refusal.policy.error ? std::to_string(*refusal.policy.error) : "";
        return "(" + std::to_string(refusal.code) + ") " + std::string(refusal.message) + " " +
               error;
    }

    // What is written: attribute and values; "-" for none.
    std::vector<std::string> changes(ChangedBy by = ChangedBy::user) const {
        std::vector<std::string> written;
        for (const Replacement& change : changes_with_password(rules, state, by, stored, noon)) {
            std::string line = change.attribute + ":";
            for (const std::string& value : change.values) line += " " + value;
            written.push_back(change.values.empty() ? line + " -" : line);
        }
        return written;
    }
};

TEST(ANewPassword, IsFineWithoutRules) {
    const Account account;
    EXPECT_EQ(account.refusal(u"x"), "fine");
    EXPECT_EQ(account.refusal(u"first password"), "fine");
    EXPECT_THAT(account.changes(), ElementsAre("pwdChangedTime: 20260131120000Z"));
}

TEST(ANewPassword, IsRefusedByTheRulesButToAnAdministrator) {
    Account account;
    account.rules.check_quality = 1;
    account.rules.min_length = 8;
    account.rules.max_length = 20;
    account.rules.in_history = 1;
    EXPECT_EQ(account.refusal(u"7 chars"), "(19) Password fails quality checking policy 6");
    EXPECT_EQ(account.refusal(Text(21, u'a')), "(19) Password fails quality checking policy 9");
    EXPECT_EQ(account.refusal(u"first password", ChangedBy::other),
              "(19) Password is not being changed from existing value 8");
    EXPECT_EQ(account.refusal(u"7 chars", ChangedBy::administrator), "fine");
    account.rules.allow_user_change = false;
    EXPECT_EQ(account.refusal(u"second password"),
              "(50) User alteration of password is not allowed 3");
    EXPECT_EQ(account.refusal(u"second password", ChangedBy::other), "fine");
}

TEST(ANewPassword, NeedsTheFormerOneWhereTheRulesSaySo) {
    Account account;
    EXPECT_EQ(account.refusal(u"second password", ChangedBy::user, FormerPassword::wrong),
              "(53) unwilling to verify old password ");
    account.rules.safe_modify = true;
    EXPECT_EQ(account.refusal(u"second password"),
              "(50) Must supply old password to be changed as well as new one 4");
    EXPECT_EQ(account.refusal(u"second password", ChangedBy::user, FormerPassword::right), "fine");
}

TEST(ANewPassword, IsNotToComeTooSoon) {
    Account account;
    account.rules.min_age = 60s;
    account.state.changed_time = "20260131115901Z";
    EXPECT_EQ(account.refusal(u"second password"), "(19) Password is too young to change 7");
    account.state.reset = true;
    EXPECT_EQ(account.refusal(u"second password"), "fine");
    account.state.reset = std::nullopt;
    account.state.changed_time = "20260131115900Z";
    EXPECT_EQ(account.refusal(u"second password"), "fine");
}

TEST(ANewPassword, IsNoneOfTheNewestFormerOnes) {
    Account account;
    account.rules.in_history = 2;
    const auto former = [](const char* time, const Text& password) {
        const std::string hash = hashed_password(Secret(password), HashCost::lowest);
        return std::string(time) + "#1.3.6.1.4.1.1466.115.121.1.40#" + std::to_string(hash.size()) +
               "#" + hash;
    };
    account.state.history = {former("20260103000000Z", u"newest"), "no history",
                             former("20260101000000Z", u"oldest"),
                             former("20260102000000Z", u"middle")};
    EXPECT_EQ(account.refusal(u"newest"), "(19) Password is in history of old passwords 8");
    EXPECT_EQ(account.refusal(u"middle"), "(19) Password is in history of old passwords 8");
    EXPECT_EQ(account.refusal(u"oldest"), "fine");
    const std::string written = "20260131120000Z#1.3.6.1.4.1.1466.115.121.1.40#" +
                                std::to_string(account.stored.size()) + "#" + account.stored;
    EXPECT_THAT(account.changes(),
                ElementsAre("pwdChangedTime: 20260131120000Z",
                            "pwdHistory: " + account.state.history[0] + " " + written));
    account.rules.in_history = 0;
    EXPECT_THAT(account.changes(), ElementsAre("pwdChangedTime: 20260131120000Z", "pwdHistory: -"));
}

TEST(ANewPassword, EndsLocksGraceAndFailures) {
    Account account;
    account.state.failure_times = {"20260131115900Z"};
    account.state.grace_times = {"20260131115900Z"};
    account.state.locked_time = account::locked_for_good;
    account.state.reset = true;
    EXPECT_THAT(account.changes(),
                ElementsAre("pwdChangedTime: 20260131120000Z", "pwdGraceUseTime: -",
                            "pwdAccountLockedTime: -", "pwdFailureTime: -", "pwdReset: -"));
}

TEST(ANewPassword, OfAnAdministratorIsToBeChanged) {
    Account account;
    account.rules.must_change = true;
    EXPECT_THAT(account.changes(ChangedBy::administrator),
                ElementsAre("pwdChangedTime: 20260131120000Z", "pwdReset: TRUE"));
    EXPECT_THAT(account.changes(ChangedBy::other), ElementsAre("pwdChangedTime: 20260131120000Z"));
}

TEST(ANewPassword, IsInNoRefusal) {
    Account account;
    account.rules.check_quality = 2;
    account.rules.min_length = 30;
    EXPECT_THAT(account.refusal(u"second password"),
                testing::Not(testing::HasSubstr("second password")));
}

}  // namespace
}  // namespace orvo::directory
