// A login right after the check of its password goes on with the connection of the check.

#include "tests/suite/directory/ldap/pool/pool_test.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;

constexpr std::int32_t wrong_credentials = static_cast<std::int32_t>(0x8007052E);

class CheckedLoginTest : public PoolTest {
protected:
    using PoolTest::PoolTest;

    // The binds and the connections that a login costs now; it works as its user.
    struct Cost {
        long binds, connections;
        bool operator==(const Cost&) const = default;
    };
    Cost cost_of_login(const User& as) {
        const long binds_before = binds(), made = connections_made();
        ServerLogin login = this->login(as);
        EXPECT_EQ(who_is(login), "dn:" + as.name);
        return {binds() - binds_before, connections_made() - made};
    }

    // The connections of the checks below the users' container.
    ConnectionSetRef checks() {
        return client_.pool().checks_below(ServerAddress::parse(from_utf8(server_.server())),
                                           "ou=users,o=shop");
    }

    static constexpr Cost nothing{0, 0}, own_connection{1, 1};
    const User jsmith = user("jsmith"), djansen = user("djansen");
};

TEST_F(CheckedLoginTest, CostsNeitherABindNorAConnection) {
    EXPECT_EQ(checked(jsmith), 0);
    EXPECT_EQ(cost_of_login(jsmith), nothing);
    EXPECT_EQ(cost_of_login(jsmith), nothing) << "its own connection by now";
    EXPECT_EQ(bind_result(jsmith), 0);
    EXPECT_EQ(open_connections(), 1);
}

TEST_F(CheckedLoginTest, CostsNoBindEitherWhereTheUserHasAConnectionAlready) {
    EXPECT_EQ(cost_of_login(jsmith), own_connection);
    clock_.advance(6s);
    EXPECT_EQ(checked(jsmith), 0);
    EXPECT_EQ(cost_of_login(jsmith), nothing);
}

TEST_F(CheckedLoginTest, CountsMoreThanARefusalBeforeTheCheck) {
    const User later{djansen.name, "later"};
    EXPECT_EQ(bind_result(later), wrong_credentials);
    ASSERT_EQ(probe_.replace(later.name, "userPassword", {"later"}), 0);
    clock_.advance(1s);
    EXPECT_EQ(checked(later), 0);
    EXPECT_EQ(bind_result(later), 0);
}

TEST_F(CheckedLoginTest, CountsLessThanARefusalAfterTheCheck) {
    EXPECT_EQ(checked(djansen), 0);
    clock_.advance(1s);
    const ConnectionSetRef set = set_of(djansen);
    const std::uint64_t mark = client_.writes().mark(set->user_key());
    set->note_refused(Failure(wrong_credentials, u"", u""), clock_.now(), mark, 0);
    EXPECT_EQ(bind_result(djansen), wrong_credentials);
}

// Letters that are one where names are compared here, and two in the server.
TEST_F(CheckedLoginTest, IsThatOfTheNameAsTheServerHasIt) {
    const auto add = [&](const std::string& cn, const std::string& password) {
        ASSERT_EQ(probe_.add(server_.user_dn(cn), {{"objectClass", {"orvoPerson"}},
                                                   {"cn", {cn}},
                                                   {"sn", {cn}},
                                                   {"OrvoUserType", {"1"}},
                                                   {"userPassword", {password}}}),
                  0);
    };
    add("wei\u1E9E", "one");
    add("wei\u00DF", "other");
    EXPECT_EQ(checked({server_.user_dn("wei\u1E9E"), "one"}), 0);
    EXPECT_EQ(bind_result({server_.user_dn("wei\u00DF"), "one"}), wrong_credentials);
}

// What was written while the server answered.
TEST_F(CheckedLoginTest, IsOverWithAWriteDuringTheCheck) {
    Attempts attempts(client_.pool(), checks(), {Effect::bind, jsmith.name});
    const Secret password(from_utf8(jsmith.password));
    run(attempts, [&](Session& session) {
        Result result = session.bind(jsmith.name, password);
        client_.writes().note(EntryKey(jsmith.name));
        attempts.note_right(password);
        return result;
    });
    EXPECT_EQ(cost_of_login(jsmith), own_connection);
}

TEST_F(CheckedLoginTest, IsThatOfTheSameUserAlone) {
    EXPECT_EQ(checked(jsmith), 0);
    EXPECT_EQ(cost_of_login(djansen), own_connection);
    EXPECT_EQ(cost_of_login(jsmith), nothing);
}

TEST_F(CheckedLoginTest, IsThatWithTheSamePasswordAlone) {
    EXPECT_EQ(checked(jsmith), 0);
    EXPECT_EQ(bind_result({jsmith.name, "wrong"}), wrong_credentials);
    EXPECT_EQ(cost_of_login(jsmith), nothing);
}

TEST_F(CheckedLoginTest, IsOverWithTheNextCheckOnItsConnection) {
    EXPECT_EQ(checked(jsmith), 0);
    EXPECT_EQ(checked(djansen), 0);
    EXPECT_EQ(cost_of_login(jsmith), own_connection);
    EXPECT_EQ(checked({djansen.name, "wrong"}), -1);
    EXPECT_EQ(cost_of_login(djansen), own_connection);
}

TEST_F(CheckedLoginTest, IsOverAfterRecheckAfter) {
    EXPECT_EQ(checked(jsmith), 0);
    clock_.advance(5s);
    EXPECT_EQ(cost_of_login(jsmith), own_connection);
}

TEST_F(CheckedLoginTest, IsForgottenAfterRecheckAfterWithTheNextCheck) {
    EXPECT_EQ(checked(jsmith), 0);
    ASSERT_EQ(checks()->idle(), 1u);
    clock_.advance(5s);
    client_.pool().tidy(*checks());
    use({u"RecheckAfter"}, {3600});
    EXPECT_EQ(cost_of_login(jsmith), own_connection) << "though it would be good for longer now";
}

TEST_F(CheckedLoginTest, IsAskedAboutWhereNoMomentIsAllowed) {
    use({u"RecheckAfter"}, {0});
    EXPECT_EQ(checked(jsmith), 0);
    EXPECT_EQ(cost_of_login(jsmith), own_connection);
}

TEST_F(CheckedLoginTest, IsOverWithAWriteToTheUsersEntry) {
    LdapEntry administrator({}, client_);
    bind(administrator, service(), u"cn=jsmith");
    EXPECT_EQ(checked(jsmith), 0);
    set(administrator, u"Position", u"Manager");
    EXPECT_EQ(cost_of_login(jsmith), own_connection);
}

TEST_F(CheckedLoginTest, IsRefusedOnceThePasswordHasBeenChanged) {
    LdapEntry administrator({}, client_);
    bind(administrator, service(), u"cn=jsmith");
    EXPECT_EQ(checked(jsmith), 0);
    set(administrator, u"userPassword", u"given anew");
    EXPECT_EQ(bind_result(jsmith), wrong_credentials);
    EXPECT_EQ(bind_result({jsmith.name, "given anew"}), 0);
}

TEST_F(CheckedLoginTest, LeavesPlaceForChecksWhereNoMoreConnectionsMayBeIdle) {
    use({u"MaximumIdle"}, {2});
    const long made = connections_made();
    for (int round = 0; round < 3; ++round)
        for (const auto& name : {"jsmith", "djansen", "glee"}) {
            EXPECT_EQ(checked(user(name)), 0);
            EXPECT_EQ(bind_result(user(name)), 0);
        }
    EXPECT_EQ(connections_made() - made, 2);
    EXPECT_TRUE(comes_to(2));
}

class RestrictedCheckedLoginTest : public CheckedLoginTest {
protected:
    RestrictedCheckedLoginTest() : CheckedLoginTest({.password_policy = true}) {}
};

TEST_F(RestrictedCheckedLoginTest, IsNotThatOfAPasswordThatIsToBeChanged) {
    ASSERT_EQ(probe_.replace(jsmith.name, "pwdReset", {"TRUE"}), 0);
    EXPECT_EQ(checked(jsmith), -4);
    const long before = binds();
    bind_result(jsmith);
    EXPECT_EQ(binds() - before, 1);
}

}  // namespace
}  // namespace orvo::directory::ldap
