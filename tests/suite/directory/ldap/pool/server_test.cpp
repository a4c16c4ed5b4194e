// Whether a server is up, and which of several serves: by a clock that stands still.

#include "suite/directory/ldap/pool/server.h"

#include <gmock/gmock.h>

#include <map>
#include <set>

#include "suite/directory/ldap/pool/servers.h"
#include "tests/suite/directory/ldap/support/manual_clock.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;
using Condition = ServerState::Condition;

constexpr auto failback_after = 10s;

class ServersTest : public testing::Test {
protected:
    // Answers for each server whether a probe finds it well.
    std::map<std::string, bool> is_well_;
    int probes_ = 0;
    int woken_ = 0;
    ManualClock clock_;
    Servers servers_{clock_,
                     [this](const ServerHost& host) -> std::optional<std::string> {
                         ++probes_;
                         if (is_well_[host.name]) return std::nullopt;
                         return host.name + " is silent";
                     },
                     [this] { ++woken_; }};
    std::shared_ptr<ServerGroup> group_ =
        servers_.group(ServerAddress::parse(u"dir01 dir02 dir03"));
    Server& first_ = *group_->servers()[0];
    Server& second_ = *group_->servers()[1];

    std::string chosen() { return group_->choose(failback_after)->host().name; }
    void probe_after(std::chrono::milliseconds time) {
        clock_.advance(time);
        servers_.probe_due(failback_after);
    }
};

TEST_F(ServersTest, ThePreferredServerServesWhileItIsUp) {
    EXPECT_EQ(chosen(), "dir01");
    EXPECT_EQ(servers_.probe_due(failback_after), std::nullopt) << "nothing is to be probed";
    EXPECT_EQ(probes_, 0);
}

TEST_F(ServersTest, AFailureSuspectsAServerAndTheNextOneServesAtOnce) {
    servers_.note_failure(first_, "no answer");
    EXPECT_EQ(first_.state().condition, Condition::suspected);
    EXPECT_EQ(first_.state().reason, "no answer");
    EXPECT_EQ(chosen(), "dir02");
    EXPECT_EQ(woken_, 1) << "it is to be probed at once";
    servers_.note_failure(first_, "no answer again");
    EXPECT_EQ(woken_, 1);
    EXPECT_EQ(first_.state().reason, "no answer");
}

TEST_F(ServersTest, ASuspectedServerThatAnswersItsProbeServesAgainAtOnce) {
    is_well_["dir01"] = true;
    servers_.note_failure(first_, "lost");
    EXPECT_EQ(servers_.probe_due(failback_after), std::nullopt);
    EXPECT_EQ(first_.state().condition, Condition::up);
    EXPECT_EQ(first_.state().reason, "");
    EXPECT_EQ(chosen(), "dir01");
}

TEST_F(ServersTest, AServerThatIsDownIsProbedAfterOneSecondAndThenLessAndLessOften) {
    servers_.note_failure(first_, "lost");
    servers_.probe_due(failback_after);
    EXPECT_EQ(first_.state().condition, Condition::down);
    EXPECT_EQ(first_.state().reason, "dir01 is silent");
    auto pause = 1000ms;
    for (const auto doubled :
         {1000ms, 2000ms, 4000ms, 8000ms, 16'000ms, 32'000ms, 60'000ms, 60'000ms}) {
        pause = doubled;
        const auto next = *first_.state().next_probe - clock_.now();
        EXPECT_GE(next, pause * 3 / 4);
        EXPECT_LE(next, pause * 5 / 4);
        const int before = probes_;
        probe_after(std::chrono::floor<std::chrono::milliseconds>(next) - 1ms);
        EXPECT_EQ(probes_, before);
        probe_after(2ms);
        EXPECT_EQ(probes_, before + 1);
    }
}

TEST_F(ServersTest, ARoundProbesOneServerTheOneThatHasBeenDueForLongest) {
    servers_.note_failure(second_, "lost");
    clock_.advance(1ms);
    servers_.note_failure(first_, "lost");
    const auto next = servers_.probe_due(failback_after);
    EXPECT_EQ(probes_, 1);
    EXPECT_EQ(second_.state().condition, Condition::down);
    EXPECT_EQ(first_.state().condition, Condition::suspected);
    EXPECT_EQ(next, clock_.now()) << "the other one is due";
    servers_.probe_due(failback_after);
    EXPECT_EQ(probes_, 2);
    EXPECT_EQ(first_.state().condition, Condition::down);
}

TEST_F(ServersTest, ThePreferredServerServesAgainAfterFailbackAfterOfGoodProbes) {
    servers_.note_failure(first_, "lost");
    servers_.probe_due(failback_after);
    is_well_["dir01"] = true;
    probe_after(1300ms);
    EXPECT_EQ(first_.state().condition, Condition::up);
    EXPECT_EQ(chosen(), "dir02") << "it may fail again";
    for (int second = 1; second < 10; ++second) {
        probe_after(1s);
        EXPECT_EQ(chosen(), "dir02");
    }
    EXPECT_EQ(probes_, 11) << "one each second";
    clock_.advance(1s);
    EXPECT_EQ(chosen(), "dir01");
    EXPECT_EQ(servers_.probe_due(failback_after), std::nullopt);
}

TEST_F(ServersTest, AServerThatFailsAgainBeforeThatBeginsAnew) {
    servers_.note_failure(first_, "lost");
    servers_.probe_due(failback_after);
    is_well_["dir01"] = true;
    probe_after(1300ms);
    is_well_["dir01"] = false;
    probe_after(1s);
    EXPECT_EQ(first_.state().condition, Condition::down);
    is_well_["dir01"] = true;
    probe_after(1300ms);
    EXPECT_EQ(first_.state().condition, Condition::up);
    clock_.advance(9s);
    EXPECT_EQ(chosen(), "dir02");
}

TEST_F(ServersTest, AServerThatIsUpAgainServesWhereNoOtherIsUp) {
    for (const ServerRef& server : group_->servers()) servers_.note_failure(*server, "lost");
    servers_.probe_due(failback_after);
    is_well_["dir02"] = true;
    probe_after(1300ms);
    EXPECT_EQ(chosen(), "dir02");
}

TEST_F(ServersTest, WhereNoneIsUpTheOneThatFailedLongestAgoComesFirst) {
    for (const ServerRef& server : group_->servers()) {
        servers_.note_failure(*server, "lost");
        clock_.advance(1ms);
    }
    EXPECT_EQ(chosen(), "dir01");
    servers_.note_failure(first_, "lost again");
    EXPECT_EQ(chosen(), "dir02");
    const std::vector<ServerRef> tried = {group_->servers()[1], group_->servers()[2]};
    EXPECT_EQ(group_->choose(failback_after, tried)->host().name, "dir01");
    EXPECT_EQ(group_->choose_up(failback_after, tried), nullptr);
}

TEST_F(ServersTest, AServerThatIsDownIsUpWhenItAnswersAnOperationButNotSteady) {
    servers_.note_failure(first_, "lost");
    servers_.probe_due(failback_after);
    first_.note_answer(1ms);
    EXPECT_EQ(first_.state().condition, Condition::up);
    EXPECT_EQ(chosen(), "dir02");
    clock_.advance(10s);
    EXPECT_EQ(chosen(), "dir01");
}

TEST_F(ServersTest, AServerThatAnswersProbesAndFailsItsUsersAgainIsLeftForAWhile) {
    is_well_["dir01"] = true;
    servers_.note_failure(first_, "busy");
    servers_.probe_due(failback_after);
    EXPECT_EQ(chosen(), "dir01") << "it was the first time";
    clock_.advance(9s);
    servers_.note_failure(first_, "busy");
    servers_.probe_due(failback_after);
    EXPECT_EQ(first_.state().condition, Condition::up);
    EXPECT_EQ(chosen(), "dir02");
    clock_.advance(10s);
    EXPECT_EQ(chosen(), "dir01");
    servers_.note_failure(first_, "busy");
    servers_.probe_due(failback_after);
    EXPECT_EQ(chosen(), "dir01") << "it had been up for long enough";
}

TEST_F(ServersTest, AFailureEndsTheGenerationOfAServersConnections) {
    const std::uint64_t before = first_.generation();
    servers_.note_failure(first_, "lost");
    EXPECT_NE(first_.generation(), before);
    EXPECT_EQ(second_.generation(), 0u);
}

TEST_F(ServersTest, AServerWithoutAnotherIsNotProbedAndIsUpWhenItAnswers) {
    const auto alone = servers_.group(ServerAddress::parse(u"lonely"));
    Server& server = *alone->servers()[0];
    servers_.note_failure(server, "lost");
    EXPECT_EQ(woken_, 0);
    EXPECT_EQ(servers_.probe_due(failback_after), std::nullopt);
    EXPECT_EQ(alone->choose(failback_after)->host().name, "lonely");
    server.note_answer(1ms);
    EXPECT_EQ(server.state().condition, Condition::up);
}

TEST_F(ServersTest, TheStateTellsOperationsFailuresAndLatency) {
    for (int operation = 0; operation < 100; ++operation) first_.note_answer(2ms);
    servers_.note_failure(first_, "(85) no answer");
    clock_.advance(500ms);
    const ServerState state = first_.state();
    EXPECT_EQ(state.url, "ldap://dir01:389");
    EXPECT_EQ(state.operations, 100u);
    EXPECT_EQ(state.failures, 1u);
    EXPECT_EQ(state.latency, 2ms);
    EXPECT_EQ(clock_.now() - state.since, 500ms);
}

TEST_F(ServersTest, TwoAddressesWithOneServerShareWhatIsKnownOfIt) {
    const auto other = servers_.group(ServerAddress::parse(u"dir02 ldap://dir01:389"));
    servers_.note_failure(first_, "lost");
    EXPECT_EQ(other->servers()[1]->state().condition, Condition::suspected);
    EXPECT_EQ(servers_.states().size(), 3u);
}

TEST_F(ServersTest, ServersThatAreReachedDifferentlyAreToldApart) {
    const auto other = servers_.group(
        ServerAddress::parse(u"ldap://dir01/?starttls ldap://dir01/?starttls&cafile=/ca.pem"));
    std::set<std::string> urls;
    for (const ServerState& state : servers_.states()) urls.insert(state.url);
    EXPECT_THAT(urls, testing::ElementsAre("ldap://dir01:389", "ldap://dir01:389/?starttls",
                                           "ldap://dir01:389/?starttls&cafile=/ca.pem",
                                           "ldap://dir02:389", "ldap://dir03:389"));
}

TEST_F(ServersTest, WhatWasWrittenIsReadWhereItWasWrittenForAWhile) {
    const auto& servers = group_->servers();
    group_->note_write(EntryKey("cn=a,o=Shop"), servers[1], clock_.now() + 5s);
    EXPECT_EQ(group_->last_written_on(EntryKey("CN=A, o=shop")), servers[1]);
    EXPECT_EQ(group_->last_written_on(EntryKey("cn=b,o=Shop")), nullptr);
    servers_.note_failure(second_, "lost");
    EXPECT_EQ(group_->last_written_on(EntryKey("cn=a,o=Shop")), nullptr)
        << "not from one that is not up";
    is_well_["dir02"] = true;
    servers_.probe_due(failback_after);
    EXPECT_EQ(group_->last_written_on(EntryKey("cn=a,o=Shop")), servers[1]);
    clock_.advance(5s);
    EXPECT_EQ(group_->last_written_on(EntryKey("cn=a,o=Shop")), nullptr);
}

TEST_F(ServersTest, AReferralLeadsToAServerOfTheListAlone) {
    const auto lead = [&](std::vector<std::string> urls) {
        const ServerRef server = group_->referred_to(urls);
        return server ? server->host().name : "nowhere";
    };
    EXPECT_EQ(lead({"ldap://dir03:389/cn=a,o=Shop??base"}), "dir03");
    EXPECT_EQ(lead({"ldap://elsewhere/", "ldap://DIR02"}), "dir02");
    EXPECT_EQ(lead({"ldap://dir02:3890/"}), "nowhere");
    EXPECT_EQ(lead({"no url", "ldap://", "ldap://a b"}), "nowhere");
    EXPECT_EQ(lead({}), "nowhere");
}

}  // namespace
}  // namespace orvo::directory::ldap
