// The pool with a maximum of 0.

#include <thread>

#include "tests/suite/directory/ldap/pool/pool_test.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;

class SwitchedOffPoolTest : public PoolTest {};

TEST_F(SwitchedOffPoolTest, ObjectsOfAUserShareConnectionsAsLongAsThereAreAny) {
    use({u"MaximumSize"}, {0});
    {
        LdapEntry one({}, client_), other({}, client_);
        LdapSearch search({}, client_);
        bind(one, service());
        bind(other, service());
        connect(search, service());
        EXPECT_EQ(open_connections(), 1);
        const long made = connections_made();
        values(one, u"entryUUID");
        values(other, u"entryUUID");
        found(search, u"(cn=djansen)");
        EXPECT_EQ(connections_made(), made);
        ServerLogin user = login(service());
        user.search([&](Session&) {
            values(one, u"entryUUID");
            return Result();
        });
        EXPECT_EQ(connections_made(), made + 1) << "two at the same time";
        EXPECT_EQ(bind_result(this->user("djansen")), 0);
        EXPECT_EQ(checked(this->user("djansen")), 0);
        EXPECT_EQ(connections_made(), made + 3);
        EXPECT_TRUE(comes_to(2)) << "of the service account; nothing is kept of the others";
    }
    EXPECT_TRUE(comes_to(0));
}

TEST_F(SwitchedOffPoolTest, NothingIsKeptOfACheckDuringWhichItIsSwitchedOff) {
    const User djansen = user("djansen");
    const ConnectionSetRef checks = client_.pool().checks_below(
        ServerAddress::parse(from_utf8(server_.server())), "ou=users,o=shop");
    Attempts attempts(client_.pool(), checks, {Effect::bind, djansen.name});
    const Result result = run(attempts, [&](Session& session) -> Result {
        use({u"MaximumSize"}, {0});
        return session.bind(djansen.name, Secret(from_utf8(djansen.password)));
    });
    EXPECT_TRUE(result.ok());
    EXPECT_EQ(checks->idle(), 0u);
    EXPECT_TRUE(comes_to(0));
}

TEST_F(SwitchedOffPoolTest, AConnectionIsReplacedWhereItIsOldOrWasIdle) {
    use({u"MaximumSize", u"IdleLimit"}, {0, 1});
    ServerLogin user = login(service());
    who_is(user);
    long made = connections_made();
    for (int round = 0; round < 3; ++round) {
        clock_.advance(500ms);
        who_is(user);
    }
    EXPECT_EQ(connections_made(), made) << "never idle for a second";
    clock_.advance(1050ms);
    EXPECT_EQ(who_is(user), "dn:cn=orvo-service,ou=Services,o=Shop");
    EXPECT_EQ(connections_made(), made + 1);
    EXPECT_TRUE(comes_to(1));

    use({u"IdleLimit", u"AgeLimit"}, {30, 1});
    clock_.advance(1050ms);
    who_is(user);
    who_is(user);
    EXPECT_EQ(connections_made(), made + 2);
    EXPECT_TRUE(comes_to(1));
}

TEST_F(SwitchedOffPoolTest, AConnectionThatIsIdleForTooLongGoesWhenAnotherIsGivenBack) {
    use({u"MaximumSize", u"IdleLimit"}, {0, 1});
    ServerLogin user = login(service());
    user.search([&](Session&) {
        who_is(user);
        return Result();
    });
    EXPECT_EQ(open_connections(), 2);
    const long made = connections_made();
    for (int round = 0; round < 2; ++round) {
        clock_.advance(600ms);
        who_is(user);
    }
    EXPECT_EQ(connections_made(), made) << "the one that worked last is never idle for a second";
    EXPECT_TRUE(comes_to(1));
}

TEST_F(SwitchedOffPoolTest, ObjectsWorkAgainOnceTheServerIsBack) {
    use({u"MaximumSize"}, {0});
    LdapEntry entry({}, client_);
    LdapSearch search({}, client_);
    bind(entry, service());
    connect(search, service());
    server_.stop();
    EXPECT_EQ(failure_of([&] { values(entry, u"entryUUID"); }).number, error_number(0x8007203A));
    server_.start();
    EXPECT_EQ(values(entry, u"sn"), Variant(Values{u"Jansen"}));
    EXPECT_TRUE(found(search, u"(cn=djansen)"));
    server_.stop();
    server_.start();
    EXPECT_EQ(values(entry, u"sn"), Variant(Values{u"Jansen"}));
    EXPECT_EQ(bind_result({service().name, "wrong"}), error_number(0x8007052E));
}

TEST_F(SwitchedOffPoolTest, MayBeSwitchedOffAndOnAgainUnderItsObjects) {
    LdapEntry entry({}, client_);
    bind(entry, service());
    use({u"MaximumSize"}, {0});
    EXPECT_TRUE(comes_to(0));
    EXPECT_NE(values(entry, u"entryUUID"), Variant(Values{Variant()}));
    EXPECT_EQ(open_connections(), 1);
    use({u"MaximumSize"}, {16});
    EXPECT_NE(values(entry, u"entryUUID"), Variant(Values{Variant()}));
    LdapEntry other({}, client_);
    bind(other, service());
    EXPECT_EQ(open_connections(), 1);
}

}  // namespace
}  // namespace orvo::directory::ldap
