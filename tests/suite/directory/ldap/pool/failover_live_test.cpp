// Two servers with the same shop, each behind a proxy that can do what a network does.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "platform/interfaces/late_call.h"
#include "platform/values/date.h"
#include "suite/directory/ldap/pool/probe.h"
#include "suite/directory/ldap/provider/LdapEntry.h"
#include "suite/directory/ldap/provider/LdapSearch.h"
#include "suite/directory/ldap/provider/LdapServers.h"
#include "suite/directory/ldap/provider/LdapValidator.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/suite/directory/ldap/support/manual_clock.h"
#include "tests/suite/directory/ldap/support/rewriting_proxy.h"
#include "tests/support/faulty_proxy.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;
using Condition = ServerState::Condition;
using std::chrono::steady_clock;

constexpr std::int32_t unreachable = error_number(0x8007203A);
constexpr auto answer_limit = 1000ms;

// A server, its proxy, and what can be asked of it behind the proxy's back.
struct Site {
    PrivateSlapd slapd;
    FaultyProxy proxy{std::stoi(slapd.server().substr(slapd.server().find(':') + 1))};
    LdapProbe probe{slapd.url(), slapd.root_dn(), slapd.root_password()};

    long counted(const std::string& operation) {
        return std::stol(
            probe.values("cn=" + operation + ",cn=Operations,cn=Monitor", "monitorOpInitiated")
                .at(0));
    }
};

class FailoverTest : public testing::Test {
protected:
    FailoverTest() { use({u"AnswerLimit", u"OperationLimit"}, {1000, 1000}); }

    void use(Values names, Values values) {
        client_.pool().configure(Variant(std::move(names)), Variant(std::move(values)));
    }
    Text servers() const { return from_utf8(first_.proxy.server() + " " + second_.proxy.server()); }
    void bind(LdapEntry& entry, Text name = u"cn=djansen", Text server = {}) const {
        bind_as(entry, from_utf8(first_.slapd.service_dn()),
                from_utf8(first_.slapd.service_password()), name, server);
    }
    void bind_as(LdapEntry& entry, Text user, const Text& own, Text name = u"cn=djansen",
                 Text server = {}) const {
        if (server.empty()) server = servers();
        Text container = u"ou=Users,o=Shop";
        Secret password{TextView(own)};
        Variant none = Values{};
        entry.Bind(server, container, name, user, password, none);
    }
    static Variant read(LdapEntry& entry, Text name = u"Position") { return entry.GetValues(name); }
    static void write(LdapEntry& entry, Text name, Variant value) { entry.SetValues(name, value); }
    std::int32_t checked(const Text& password, Text server = {}) {
        LdapValidator validator({}, client_);
        if (server.empty()) server = servers();
        Text container = u"ou=Users,o=Shop";
        validator.Open(server, container);
        Variant path = from_utf8(first_.slapd.user_dn("jsmith")), given = password;
        return validator.Validate(path, given);
    }
    ServerState state(const Site& site) const {
        for (const ServerState& one : client_.servers().states())
            if (one.url == "ldap://" + site.proxy.server()) return one;
        return {};
    }
    std::optional<Clock::time_point> probe() {
        return client_.servers().probe_due(client_.pool().settings().failback_after);
    }
    template <class Work>
    static steady_clock::duration time_of(Work work) {
        const auto begin = steady_clock::now();
        work();
        return steady_clock::now() - begin;
    }

    Site first_, second_;
    ManualClock clock_;
    mutable Client client_{clock_, Client::Probing::by_caller};
};

TEST_F(FailoverTest, ThePreferredServerServesAlone) {
    LdapEntry entry({}, client_);
    bind(entry);
    EXPECT_EQ(checked(u"shop-sample"), 0);
    EXPECT_EQ(state(second_).operations, 0u);
    EXPECT_GT(state(first_).operations, 0u);
}

TEST_F(FailoverTest, AReadingOfASilentServerIsAnsweredByTheNextAfterOneLimit) {
    LdapEntry entry({}, client_);
    bind(entry);
    clock_.advance(1s);
    first_.proxy.fall_silent();
    const auto took = time_of([&] { EXPECT_NE(read(entry, u"sn"), Variant()); });
    EXPECT_GE(took, answer_limit);
    EXPECT_LT(took, answer_limit + 1s);
    EXPECT_EQ(state(first_).condition, Condition::suspected);
    EXPECT_EQ(state(first_).reason, to_utf8(no_answer_of(first_.proxy.server(), answer_limit)));
    EXPECT_LT(time_of([&] { read(entry); }), answer_limit) << "nobody waits for it any more";
    EXPECT_EQ(checked(u"shop-sample"), 0);
    EXPECT_GT(state(second_).operations, 1u);
}

TEST_F(FailoverTest, AServerThatTakesMoreThanHalfTheLimitIsNotWaitedForAgain) {
    ServerLogin login(client_.pool(), servers(), from_utf8(first_.slapd.service_dn()),
                      Secret::of_bytes(first_.slapd.service_password()), std::nullopt);
    const auto slow = [&](Session& session) {
        clock_.advance(answer_limit / 2 + 1ms);
        return session.who_am_i();
    };
    login.search(slow);
    EXPECT_EQ(state(first_).condition, Condition::up) << "a search may take longer";
    login.read("cn=djansen,ou=Users,o=Shop", slow);
    EXPECT_EQ(state(first_).condition, Condition::suspected);
    EXPECT_EQ(state(first_).reason, "An answer took 501 ms.");
    first_.proxy.slow_down(answer_limit);
    probe();
    EXPECT_EQ(state(first_).condition, Condition::down) << "its probe took too long as well";
}

TEST_F(FailoverTest, ManyWhoFindAServerSilentWaitOneLimitTogether) {
    {
        // Idle connections, one for each.
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 16; ++thread)
            threads.emplace_back([&] { EXPECT_EQ(checked(u"shop-sample"), 0); });
        for (std::thread& thread : threads) thread.join();
    }
    first_.proxy.fall_silent();
    EXPECT_EQ(failure_of([&] { checked(u"shop-sample"); }).number, unreachable);
    const auto took = time_of([&] {
        for (int check = 0; check < 15; ++check) EXPECT_EQ(checked(u"shop-sample"), 0);
    });
    EXPECT_LT(took, answer_limit * 5) << "idle connections to it are not tried one after another";
}

TEST_F(FailoverTest, ManyWhoLogInAtASilentServerWaitOneLimitAndOneOfThemFails) {
    first_.proxy.fall_silent();
    std::atomic<int> failed = 0;
    const auto took = time_of([&] {
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 8; ++thread)
            threads.emplace_back([&] {
                LdapEntry entry({}, client_);
                if (failure_of([&] { bind(entry); }).number != 0) ++failed;
            });
        for (std::thread& thread : threads) thread.join();
    });
    EXPECT_EQ(failed, 1);
    EXPECT_LT(took, answer_limit * 2);
}

TEST_F(FailoverTest, APasswordCheckWhoseAnswerIsMissingIsAFailureAndSentToNobodyElse) {
    EXPECT_EQ(checked(u"shop-sample"), 0);
    const long first = first_.counted("Bind"), second = second_.counted("Bind");
    first_.proxy.fall_silent();
    EXPECT_EQ(failure_of([&] { checked(u"wrong"); }).number, unreachable);
    EXPECT_EQ(second_.counted("Bind"), second);
    EXPECT_EQ(checked(u"wrong"), -1) << "asked once more, another server answers";
    EXPECT_EQ(second_.counted("Bind"), second + 1);
    EXPECT_EQ(first_.counted("Bind"), first);
}

TEST_F(FailoverTest, AWriteWhoseAnswerIsMissingIsAFailureAndSentToNobodyElse) {
    LdapEntry entry({}, client_);
    bind(entry);
    read(entry);
    const long second = second_.counted("Modify");
    first_.proxy.fall_silent();
    const Failure failure = failure_of([&] { write(entry, u"Position", u"One"); });
    EXPECT_EQ(failure.number, unreachable);
    EXPECT_EQ(second_.counted("Modify"), second);
    write(entry, u"Position", u"Two");
    EXPECT_EQ(second_.counted("Modify"), second + 1);
}

TEST_F(FailoverTest, AServerThatRefusesConnectionsIsPassedOverWithoutAFailure) {
    first_.proxy.refuse_and_reset();
    LdapEntry entry({}, client_);
    bind(entry);
    EXPECT_EQ(checked(u"shop-sample"), 0);
    write(entry, u"Position", u"Three");
    EXPECT_EQ(state(first_).condition, Condition::suspected);
    EXPECT_EQ(state(first_).failures, 1u) << "it is not tried again";
}

TEST_F(FailoverTest, WhereNoServerCanBeReachedTheFailureTellsOfEach) {
    first_.proxy.refuse_and_reset();
    second_.proxy.refuse_and_reset();
    LdapEntry entry({}, client_);
    const Failure failure = failure_of([&] { bind(entry); });
    EXPECT_EQ(failure.number, unreachable);
    EXPECT_EQ(failure.description,
              from_utf8("(81) The server cannot be reached. 'ldap://" + first_.proxy.server() +
                        "': Connection refused 'ldap://" + second_.proxy.server() +
                        "': Connection refused"));
    second_.proxy.pass_on();
    bind(entry);
}

TEST_F(FailoverTest, ThePreferredServerServesAgainOnceItHasAnsweredProbesForAWhile) {
    LdapEntry entry({}, client_);
    bind(entry);
    first_.proxy.refuse_and_reset();
    read(entry);
    probe();
    EXPECT_EQ(state(first_).condition, Condition::down);
    first_.proxy.pass_on();
    const auto operations = state(first_).operations;
    clock_.advance(1300ms);
    probe();
    EXPECT_EQ(state(first_).condition, Condition::up);
    read(entry);
    EXPECT_EQ(state(first_).operations, operations) << "not yet";
    for (int second = 0; second < 10; ++second) {
        clock_.advance(1s);
        probe();
        read(entry);
    }
    EXPECT_GT(state(first_).operations, operations);
}

TEST_F(FailoverTest, AProbeIsNoOperationOfAUser) {
    first_.proxy.fall_silent();
    EXPECT_NE(failure_of([&] { checked(u"shop-sample"); }).number, 0);
    const auto took = time_of([&] { probe(); });
    EXPECT_GE(took, answer_limit / 2);
    EXPECT_EQ(state(first_).condition, Condition::down);
    EXPECT_EQ(state(first_).failures, 1u);
}

TEST_F(FailoverTest, WhatWasWrittenDuringAnAbsenceIsReadWhereItWasWritten) {
    use({u"FailbackAfter", u"ReplicaLag"}, {0, 60});
    LdapEntry entry({}, client_), other({}, client_);
    first_.proxy.refuse_and_reset();
    bind(entry);
    bind(other, u"cn=jsmith");
    probe();
    write(entry, u"Position", u"Manager");
    first_.proxy.pass_on();
    clock_.advance(1300ms);
    probe();
    EXPECT_EQ(state(first_).condition, Condition::up);
    const auto operations = state(first_).operations;
    EXPECT_EQ(read(entry), Variant(Values{u"Manager"})) << "the first has not heard of it";
    EXPECT_EQ(state(first_).operations, operations);
    read(other, u"sn");
    EXPECT_GT(state(first_).operations, operations);
    clock_.advance(61s);
    EXPECT_NE(read(entry), Variant(Values{u"Manager"})) << "these two do not replicate";
}

TEST_F(FailoverTest, WhatMayHaveBeenWrittenIsReadWhereItWouldHaveBeen) {
    use({u"FailbackAfter", u"ReplicaLag"}, {0, 60});
    RewritingProxy second(second_.slapd.server(), "cn=nothing", "cn=nothing");
    first_.proxy.refuse_and_reset();
    LdapEntry entry({}, client_);
    bind(entry, u"cn=djansen", from_utf8(first_.proxy.server() + " " + second.server()));
    probe();
    second.cut_answers(1, "Position");
    EXPECT_EQ(failure_of([&] { write(entry, u"Position", u"Manager"); }).number, unreachable);
    first_.proxy.pass_on();
    clock_.advance(1300ms);
    probe();
    probe();
    EXPECT_EQ(state(first_).condition, Condition::up);
    EXPECT_EQ(read(entry), Variant(Values{u"Manager"})) << "the first has not heard of it";
}

TEST_F(FailoverTest, WhoChangedTheOwnPasswordDuringAnAbsenceWorksOnWhereItIsKnown) {
    use({u"FailbackAfter", u"ReplicaLag"}, {0, 60});
    const Text name = u"cn=djansen,ou=Users,o=Shop";
    first_.proxy.refuse_and_reset();
    LdapEntry own({}, client_), other({}, client_), again({}, client_);
    bind_as(own, name, u"shop-sample");
    bind_as(other, name, u"shop-sample", u"cn=jsmith");
    write(own, u"userPassword", u"changed-now");
    first_.proxy.pass_on();
    probe();
    EXPECT_EQ(state(first_).condition, Condition::up);
    clock_.advance(31s);  // idle connections are closed
    EXPECT_EQ(failure_of([&] { read(other, u"sn"); }).number, 0) << "another entry";
    EXPECT_EQ(failure_of([&] { bind_as(again, name, u"changed-now"); }).number, 0);
}

TEST_F(FailoverTest, AServerThatIsBusyForEveryBindIsLeftAlone) {
    const std::string success("\x61\x07\x0A\x01\x00", 5), busy("\x61\x07\x0A\x01\x33", 5);
    RewritingProxy first(first_.slapd.server(), success, busy);
    const Text servers = from_utf8(first.server() + " " + second_.slapd.server());
    std::vector<std::int32_t> failures;
    for (int round = 0; round < 5; ++round) {
        failures.push_back(failure_of([&] { checked(u"shop-sample", servers); }).number);
        clock_.advance(1s);
        probe();
    }
    constexpr std::int32_t is_busy = error_number(0x8007200E);
    EXPECT_EQ(failures, (std::vector<std::int32_t>{is_busy, is_busy, 0, 0, 0}));
}

TEST_F(FailoverTest, WhereNoneWasUpTheOneThatIsBackServesThoughAnotherIsSilent) {
    first_.proxy.fall_silent();
    second_.proxy.refuse_and_reset();
    EXPECT_EQ(failure_of([&] { checked(u"shop-sample"); }).number, unreachable);
    probe();
    EXPECT_EQ(failure_of([&] { checked(u"shop-sample"); }).number, unreachable);
    second_.proxy.pass_on();
    clock_.advance(10ms);
    failure_of([&] { checked(u"shop-sample"); });
    EXPECT_EQ(checked(u"shop-sample"), 0);
    EXPECT_EQ(state(second_).condition, Condition::up);
}

TEST_F(FailoverTest, AWriteThatIsReferredToAServerOfTheListIsDoneAndReadThere) {
    PrivateSlapd replica({.config = "updatedn cn=updater,o=Shop\nupdateref ldap://" +
                                    second_.slapd.server() + "/\n"});
    const Text servers = from_utf8(replica.server() + " " + second_.slapd.server());
    LdapEntry entry({}, client_);
    bind(entry, u"cn=djansen", servers);
    const long modifications = second_.counted("Modify");
    write(entry, u"Position", u"Referred");
    EXPECT_EQ(second_.counted("Modify"), modifications + 1);
    EXPECT_EQ(read(entry), Variant(Values{u"Referred"}));

    LdapEntry elsewhere({}, client_);
    bind(elsewhere, u"cn=jsmith", from_utf8(replica.server()));
    EXPECT_EQ(failure_of([&] { write(elsewhere, u"Position", u"Referred"); }).number,
              error_number(0x8007202B))
        << "to one that is not in the list";
}

TEST_F(FailoverTest, AServerThatCannotBeConnectedToIsNotWell) {
    const auto host = [&](const std::string& written) {
        return ServerAddress::parse(from_utf8(written)).hosts().front();
    };
    EXPECT_FALSE(ldap::probe(host(first_.slapd.url()), {}));
    EXPECT_TRUE(ldap::probe(host(first_.slapd.url() + "/?starttls"), {}));
    EXPECT_TRUE(ldap::probe(host("ldaps://" + first_.slapd.server() + "/?cafile=/none.pem"), {}));
}

TEST_F(FailoverTest, TheStateOfEveryServerIsARowOfARecordSet) {
    LdapEntry entry({}, client_);
    first_.proxy.refuse_and_reset();
    bind(entry);
    LdapServers servers(client_);
    const auto field = [&](const Site& site, const Text& column) -> Variant {
        const Object rows = servers.States();
        const auto value = [&](const Text& name) {
            const Object fields = late::get(rows, u"Fields").to<Object>();
            return late::get(late::get(fields, u"Item", {name}).to<Object>(), u"Value");
        };
        for (; late::get(rows, u"EOF") == Variant(false); late::call(rows, u"MoveNext"))
            if (value(u"Server") == Variant(from_utf8("ldap://" + site.proxy.server())))
                return value(column);
        return u"no row";
    };
    EXPECT_EQ(field(first_, u"State"), Variant(u"suspected"));
    EXPECT_EQ(field(first_, u"Reason"), Variant(u"(81) The server cannot be reached. "
                                                u"Connection refused"));
    EXPECT_EQ(field(first_, u"Failures"), Variant(1.0));
    EXPECT_FALSE(field(first_, u"NextProbe").is_empty());
    EXPECT_EQ(field(second_, u"State"), Variant(u"up"));
    EXPECT_EQ(field(second_, u"Reason"), Variant(u""));
    EXPECT_GT(field(second_, u"Operations").to<double>(), 0);
    EXPECT_EQ(field(second_, u"Latency"), Variant(0.0)) << "by the clock of this test";
    EXPECT_TRUE(field(second_, u"NextProbe").is_empty());
    probe();
    EXPECT_EQ(field(first_, u"State"), Variant(u"down"));
    EXPECT_GT(field(first_, u"NextProbe").to<Date>(), field(first_, u"Since").to<Date>());
}

TEST_F(FailoverTest, SearchesGoOnAtTheNextServer) {
    LdapSearch search({}, client_);
    Text server = servers(), container = u"ou=Users,o=Shop";
    Text user = from_utf8(first_.slapd.service_dn());
    Secret password = Secret::of_bytes(first_.slapd.service_password());
    search.Connect(server, container, user, password);
    first_.proxy.fall_silent();
    Text filter = u"(cn=djansen)";
    Variant columns = Values{u"cn"};
    const auto took = time_of([&] { EXPECT_TRUE(search.Execute(filter, columns, 10)); });
    EXPECT_LT(took, answer_limit + 1s);
}

}  // namespace
}  // namespace orvo::directory::ldap
