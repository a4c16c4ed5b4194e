// Logins and password changes of accounts under many rules: what comes of each here, and what a
// directory server with the same rules makes of it.

#include "tests/suite/directory/policy/compared_accounts.h"

namespace orvo::directory {
namespace {

using std::chrono::seconds;
using Rules = std::map<std::string, std::string>;

const Rules locked_by_three = {{"pwdLockout", "TRUE"}, {"pwdMaxFailure", "3"}};

Rules with(Rules rules, const Rules& more) {
    rules.insert(more.begin(), more.end());
    return rules;
}

TEST_F(ComparedAccounts, AreLockedAfterFailures) {
    begin("lock", locked_by_three);
    bind_wrong();
    bind_wrong();
    bind_right();
    for (int failure = 0; failure < 5; ++failure) bind_wrong();
    bind_right();
    pass(seconds(1'000'000));
    bind_right();
    unlock();
    bind_wrong();
    bind_right();
    bind_right();
}

TEST_F(ComparedAccounts, AreUnlockedByTime) {
    begin("duration", with(locked_by_three, {{"pwdLockoutDuration", "600"}}));
    for (int failure = 0; failure < 3; ++failure) bind_wrong();
    bind_right();
    pass(seconds(500));
    bind_right();
    pass(seconds(200));
    bind_right();
    for (int failure = 0; failure < 3; ++failure) bind_wrong();
    pass(seconds(700));
    bind_wrong();
    bind_right();
    for (int failure = 0; failure < 3; ++failure) bind_wrong();
    pass(seconds(700));
    for (int failure = 0; failure < 4; ++failure) bind_wrong();
    bind_right();
    pass(seconds(700));
    bind_right();
}

TEST_F(ComparedAccounts, CountFailuresOfTheIntervalOnly) {
    begin("interval", with(locked_by_three, {{"pwdFailureCountInterval", "300"}}));
    bind_wrong();
    pass(seconds(200));
    bind_wrong();
    pass(seconds(200));
    bind_wrong();
    bind_right();
    bind_wrong();
    bind_wrong();
    pass(seconds(400));
    bind_wrong();
    bind_wrong();
    bind_wrong();
    bind_right();
}

TEST_F(ComparedAccounts, RememberFailuresWithoutLocking) {
    begin("unlocked", {{"pwdMaxFailure", "2"}});
    for (int failure = 0; failure < 4; ++failure) bind_wrong();
    bind_right();
    begin("recorded", {{"pwdMaxRecordedFailure", "3"}});
    for (int failure = 0; failure < 5; ++failure) bind_wrong();
    bind_right();
    begin("more recorded", with(locked_by_three, {{"pwdMaxRecordedFailure", "4"},
                                                  {"pwdFailureCountInterval", "100"}}));
    for (int failure = 0; failure < 6; ++failure) {
        bind_wrong();
        pass(seconds(70));
    }
    bind_right();
    begin("no rules", {});
    bind_wrong();
    bind_right();
}

TEST_F(ComparedAccounts, AreLockedByAnAdministrator) {
    begin("for good", with(locked_by_three, {{"pwdLockoutDuration", "60"}}),
          {{account::locked_time, {account::locked_for_good}}});
    bind_right();
    bind_wrong();
    pass(seconds(1'000));
    bind_right();
    unlock();
    bind_right();
    begin("not locked by rule", {}, {{account::locked_time, {account::locked_for_good}}});
    bind_right();
    begin("from tomorrow", locked_by_three, {{account::locked_time, {"86400s"}}});
    bind_right();
    bind_wrong();
    begin("not before", {}, {{account::start_time, {"3600s"}}});
    bind_right();
    pass(seconds(4'000));
    bind_right();
    begin("not after", {}, {{account::end_time, {"3600s"}}});
    bind_right();
    pass(seconds(4'000));
    bind_right();
    bind_wrong();
}

TEST_F(ComparedAccounts, HavePasswordsThatExpire) {
    const Rules rules = {{"pwdMaxAge", "1000"}, {"pwdExpireWarning", "300"}};
    begin("age", rules, {{account::changed_time, {"-10s"}}});
    bind_right();
    pass(seconds(600));
    bind_right();
    pass(seconds(200));
    bind_right();
    bind_wrong();
    pass(seconds(400));
    bind_right();
    bind_wrong();
    begin("unknown age", rules);
    bind_right();
    begin("grace", with(rules, {{"pwdGraceAuthNLimit", "2"}}), {{account::changed_time, {"-10s"}}});
    pass(seconds(1'100));
    bind_wrong();
    bind_right();
    bind_right();
    bind_right();
    begin("grace that ends", with(rules, {{"pwdGraceAuthNLimit", "5"}, {"pwdGraceExpiry", "500"}}),
          {{account::changed_time, {"-10s"}}});
    pass(seconds(1'100));
    bind_right();
    pass(seconds(600));
    bind_right();
    begin("failures and age", with(rules, {{"pwdLockout", "TRUE"}, {"pwdMaxFailure", "3"}}),
          {{account::changed_time, {"-10s"}}});
    bind_wrong();
    pass(seconds(1'100));
    bind_right();
    change(ChangedBy::other, u"second password");
    bind_right();
}

TEST_F(ComparedAccounts, HavePasswordsThatAreToBeChanged) {
    const Rules rules = {{"pwdMustChange", "TRUE"},
                         {"pwdMaxAge", "1000"},
                         {"pwdExpireWarning", "900"},
                         {"pwdMinAge", "500"}};
    begin("reset", rules);
    change(ChangedBy::administrator, u"second password");
    bind_right();
    bind_wrong();
    pass(seconds(300));
    bind_right();
    change(ChangedBy::user, u"third password");
    bind_right();
    change(ChangedBy::user, u"fourth password");
    change(ChangedBy::administrator, u"fifth password");
    change(ChangedBy::other, u"sixth password");
    bind_right();
    begin("expired reset", rules,
          {{account::changed_time, {"-5000s"}}, {account::reset, {"TRUE"}}});
    bind_right();
    begin("no reset", {}, {{account::reset, {"TRUE"}}});
    bind_right();
    change(ChangedBy::administrator, u"second password");
    begin("reset is false", rules, {{account::reset, {"FALSE"}}});
    bind_right();
    change(ChangedBy::other, u"second password");
    bind_right();
}

TEST_F(ComparedAccounts, AreChangedByTheirUsersAsFarAsAllowed) {
    begin("not by users", {{"pwdAllowUserChange", "FALSE"}});
    change(ChangedBy::user, u"second password");
    change(ChangedBy::other, u"second password");
    change(ChangedBy::administrator, u"third password");
    begin("safe", {{"pwdSafeModify", "TRUE"}});
    change(ChangedBy::user, u"second password");
    change(ChangedBy::user, u"second password", FormerPassword::wrong);
    change(ChangedBy::user, u"second password", FormerPassword::right);
    change(ChangedBy::other, u"third password");
    change(ChangedBy::administrator, u"third password");
    begin("not so safe", {});
    change(ChangedBy::user, u"second password", FormerPassword::wrong);
    change(ChangedBy::user, u"second password", FormerPassword::right);
    change(ChangedBy::administrator, u"third password", FormerPassword::wrong);
    begin("young", {{"pwdMinAge", "1000"}}, {{account::changed_time, {"-100s"}}});
    change(ChangedBy::user, u"second password");
    change(ChangedBy::other, u"second password");
    pass(seconds(1'000));
    change(ChangedBy::user, u"second password");
    change(ChangedBy::user, u"third password");
    change(ChangedBy::administrator, u"third password");
    begin("young of unknown age", {{"pwdMinAge", "1000"}});
    change(ChangedBy::user, u"second password");
}

TEST_F(ComparedAccounts, AreUnlockedByANewPassword) {
    for (const ChangedBy by : {ChangedBy::other, ChangedBy::administrator}) {
        begin(by == ChangedBy::other ? "by other" : "by root", locked_by_three);
        for (int failure = 0; failure < 3; ++failure) bind_wrong();
        change(by, u"second password");
        bind_right();
    }
}

TEST_F(ComparedAccounts, HavePasswordsOfALength) {
    begin("length", {{"pwdCheckQuality", "1"}, {"pwdMinLength", "8"}, {"pwdMaxLength", "12"}});
    for (const ChangedBy by : {ChangedBy::user, ChangedBy::other}) {
        change(by, u"7 chars");
        change(by, u"8 chars.");
        change(by, u"Ünicöde");
        change(by, u"12 charsssss");
        change(by, u"13 charssssss");
    }
    change(ChangedBy::administrator, u"7 chars");
    begin("unchecked length", {{"pwdCheckQuality", "0"}, {"pwdMinLength", "8"}});
    change(ChangedBy::user, u"7 chars");
    for (const char* quality : {"1", "2"}) {
        begin(std::string("quality ") + quality, {{"pwdCheckQuality", quality}});
        change(ChangedBy::user, u"x");
        change(ChangedBy::user, u"{SSHA}2DdJUy9i58Qq4hYFSoZcjCTjqwmvtq7H");
        change(ChangedBy::user, u"{UNKNOWN}password");
    }
}

TEST_F(ComparedAccounts, DoNotTakeFormerPasswordsAgain) {
    begin("history", {{"pwdInHistory", "2"}});
    change(ChangedBy::user, u"first password");
    change(ChangedBy::user, u"second password");
    change(ChangedBy::user, u"first password");
    change(ChangedBy::other, u"second password");
    pass(seconds(10));
    change(ChangedBy::user, u"third password");
    change(ChangedBy::user, u"first password");
    change(ChangedBy::user, u"second password");
    pass(seconds(10));
    change(ChangedBy::user, u"fourth password");
    change(ChangedBy::user, u"first password");
    change(ChangedBy::administrator, u"first password");
    change(ChangedBy::user, u"second password");
}

TEST_F(ComparedAccounts, ForgetAHistoryThatIsNoLongerKept) {
    begin("no history", {},
          {{account::history,
            {"20200101000000Z#1.3.6.1.4.1.1466.115.121.1.40#38#{SSHA}"
             "2DdJUy9i58Qq4hYFSoZcjCTjqwmvtq7H"}}});
    bind_right();
    change(ChangedBy::user, u"second password");
    begin("shorter history", {{"pwdInHistory", "1"}},
          {{account::history,
            {"20200101000000Z#1.3.6.1.4.1.1466.115.121.1.40#38#{SSHA}"
             "2DdJUy9i58Qq4hYFSoZcjCTjqwmvtq7H",
             "20210101000000Z#1.3.6.1.4.1.1466.115.121.1.40#33#{SHA}"
             "kCKj7B0tBwchd8CS/j+KWTWIQA0="}}});
    change(ChangedBy::user, u"shop-sample");
    change(ChangedBy::user, u"second password");
}

}  // namespace
}  // namespace orvo::directory
