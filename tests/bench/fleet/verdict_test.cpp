#include "bench/fleet/verdict.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "bench/fleet/users.h"

namespace orvo::fleet {
namespace {

using namespace std::chrono_literals;

// Seconds after the begin of everything.
Clock::time_point at(double seconds) {
    return Clock::time_point(1h) +
           std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

// Twenty seconds each; a fault lasts six of them.
class VerdictTest : public testing::Test {
protected:
    VerdictTest() {
        const std::pair<const char*, std::optional<Part>> slots[] = {
            {"none", std::nullopt}, {"node", Part::node},         {"directory", Part::directory},
            {"store", Part::store}, {"rolling", Part::all_nodes}, {"balancer", Part::balancer}};
        double begin = 0;
        for (const auto& [name, part] : slots) {
            outcome.slots.push_back({name, part, at(begin), at(begin + 6), at(begin + 20)});
            begin += 20;
        }
        outcome.ledgers.resize(2);
        outcome.has_settled = true;
    }

    std::vector<std::string> missed(Judged judged = Judged::everything) {
        std::vector<std::string> found;
        for (const Goal& goal : judge(outcome, judged).goals)
            if (!goal.is_met) found.push_back(goal.what);
        return found;
    }
    Ledger& ledger() { return outcome.ledgers.front(); }
    void old_value(double read, double written, bool was_unacknowledged, double expected_since) {
        ledger().old_values.push_back({"jsmith", "old", "new", at(expected_since),
                                       was_unacknowledged, at(written), at(read), at(read + 0.1)});
    }

    using Missed = std::vector<std::string>;
    ChaosOutcome outcome;
};

TEST_F(VerdictTest, IsGoodWhereNothingHappened) { EXPECT_EQ(missed(), Missed{}); }

TEST_F(VerdictTest, EachFindingMissesItsGoal) {
    ledger().findings = {{Breach::wrong, at(1), "a"}};
    EXPECT_EQ(missed(), Missed{"no wrong answer"});
    ledger().findings = {{Breach::mixed, at(1), "a"}};
    EXPECT_EQ(missed(), Missed{"no mixed-up session"});
    ledger().findings = {{Breach::outlived, at(1), "a"}};
    EXPECT_EQ(missed(), Missed{"no login outlives its end"});
    ledger().findings = {{Breach::let_in, at(1), "a"}};
    EXPECT_EQ(missed(), Missed{"nobody is let in without right"});
    ledger().findings = {};
    outcome.lost_writes = {"jsmith"};
    EXPECT_EQ(missed(), Missed{"no wrong answer"});
}

TEST_F(VerdictTest, ALoginMayBeLostWithTheStoreAlone) {
    ledger().lost_logins = {at(61)};
    EXPECT_EQ(missed(), Missed{});
    ledger().lost_logins = {at(21)};
    EXPECT_EQ(missed(), Missed{"a fault of a node or of the balancer costs no login"});
    ledger().lost_logins = {at(101)};
    EXPECT_EQ(missed(), Missed{"a fault of a node or of the balancer costs no login"});
}

TEST_F(VerdictTest, NothingFailsInARollingRestart) {
    ledger().failed = {{Aim::account, at(30), "503"}};
    EXPECT_EQ(missed(), Missed{});
    ledger().failed = {{Aim::account, at(85), "503"}};
    EXPECT_EQ(missed(), Missed{"a rolling restart: nothing fails"});
}

TEST_F(VerdictTest, ADirectoryServersFaultIsNoticedOnceAndShortly) {
    const Missed expected{"directory: not longer than allowed, and once"};
    ledger().wishes = {{Aim::account, at(41), at(44.9), 1, true}};
    EXPECT_EQ(missed(), Missed{});
    ledger().wishes = {{Aim::account, at(41), at(45.1), 1, true}};
    EXPECT_EQ(missed(), expected);
    EXPECT_EQ(missed(Judged::counts_alone), Missed{});
    // Two of one user, also where none of them failed.
    ledger().wishes = {{Aim::account, at(41), at(42), 1, true},
                       {Aim::account, at(43), at(44.5), 0, true}};
    EXPECT_EQ(missed(), expected);
    // One of each.
    outcome.ledgers.back().wishes = {ledger().wishes.back()};
    ledger().wishes.pop_back();
    EXPECT_EQ(missed(), Missed{});
}

TEST_F(VerdictTest, AnAbsenceOfTheStoreOrTheBalancerIsNoticedASecondLongerAtMost) {
    ledger().wishes = {{Aim::login, at(60), at(66.9), 9, true}};
    EXPECT_EQ(missed(), Missed{});
    ledger().wishes = {{Aim::login, at(60), at(67.1), 9, true}};
    EXPECT_EQ(missed(), Missed{"store: not longer than allowed"});
    ledger().wishes = {{Aim::login, at(100), at(106.9), 9, true}};
    EXPECT_EQ(missed(), Missed{});
    ledger().wishes = {{Aim::login, at(100), at(107.1), 9, true}};
    EXPECT_EQ(missed(), Missed{"balancer: not longer than allowed"});
}

TEST_F(VerdictTest, AnOlderValueIsWrongUnlessADirectoryServerHasAFault) {
    old_value(10, 1, false, 9);
    EXPECT_EQ(missed(), Missed{"no wrong answer"});
    // The server that took the write has died before the other one heard of it.
    ledger().old_values.clear();
    old_value(50, 30, false, 39.9);
    EXPECT_EQ(missed(), Missed{});
    EXPECT_EQ(judge(outcome, Judged::everything).stale, 1U);
    // The nodes prefer different servers for a while after the fault, but these agree by then.
    ledger().old_values.clear();
    old_value(60, 30, false, 59);
    EXPECT_EQ(missed(), Missed{});
    ledger().old_values.clear();
    old_value(60, 30, false, 50);
    EXPECT_EQ(missed(), Missed{"no wrong answer"});
}

TEST_F(VerdictTest, AnOlderValueMayBeShownForAMomentByANodeThatGoesOnAfterAFault) {
    old_value(25, 5, false, 24.8);
    EXPECT_EQ(missed(), Missed{});
    EXPECT_EQ(judge(outcome, Judged::everything).remembered, 1U);
    ledger().old_values.clear();
    old_value(25, 5, false, 24.7);
    EXPECT_EQ(missed(), Missed{"no wrong answer"});
    EXPECT_THAT(judge(outcome, Judged::everything).of(Breach::wrong),
                testing::ElementsAre(testing::EndsWith(", 300 ms after that was acknowledged")));
    // Where no node has a fault it is wrong.
    ledger().old_values.clear();
    old_value(10, 5, false, 9.9);
    EXPECT_EQ(missed(), Missed{"no wrong answer"});
}

TEST_F(VerdictTest, AWriteThatNobodyAcknowledgedMayBeDoneLateAfterAFault) {
    old_value(90, 42, true, 50);
    EXPECT_EQ(missed(), Missed{});
    EXPECT_EQ(judge(outcome, Judged::everything).late, 1U);
    ledger().old_values.clear();
    old_value(90, 75, true, 80);
    EXPECT_EQ(missed(), Missed{"no wrong answer"});
    ledger().old_values.clear();
    old_value(90, 42, false, 50);
    EXPECT_EQ(missed(), Missed{"no wrong answer"});
}

TEST(ShopUser, ValuesSinceTheLastAcknowledgedOneMayBeThere) {
    ShopUser user("jsmith", "first");
    EXPECT_TRUE(user.may_be("first"));
    user.wrote({"second", true, {}, {}});
    user.wrote({"third", false, {}, {}});
    EXPECT_FALSE(user.may_be("first"));
    EXPECT_TRUE(user.may_be("second"));
    EXPECT_TRUE(user.may_be("third"));
    EXPECT_EQ(user.next_value(), "jsmith-3");
    EXPECT_FALSE(user.may_be(user.next_value()));
    EXPECT_EQ(user.attempt_with("of nobody"), nullptr);
    ASSERT_NE(user.attempt_with("first"), nullptr);
}

}  // namespace
}  // namespace orvo::fleet
