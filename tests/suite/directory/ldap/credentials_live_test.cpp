// When the server is asked about the credentials that a Bind presents.

#include <thread>

#include "tests/suite/directory/ldap/pool_test.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;

constexpr std::int32_t wrong_credentials = static_cast<std::int32_t>(0x8007052E);

class CredentialsTest : public PoolTest {
protected:
    User djansen(const std::string& password = "shop-sample") const {
        return {server_.user_dn("djansen"), password};
    }
    // Somebody else changes the password; the server knows, this process does not.
    void change_behind_our_back(const std::string& password) {
        ASSERT_EQ(probe_.replace(server_.user_dn("djansen"), "userPassword", {password}), 0);
    }
};

TEST_F(CredentialsTest, AreNotCheckedAgainWithinAMoment) {
    ASSERT_EQ(bind_result(djansen()), 0);
    const long before = binds();
    EXPECT_EQ(bind_result(djansen()), 0);
    EXPECT_EQ(bind_result(djansen()), 0);
    EXPECT_EQ(binds(), before);
}

TEST_F(CredentialsTest, AreCheckedAgainAfterAMomentOnTheSameConnection) {
    use({u"RecheckAfter"}, {1});
    ASSERT_EQ(bind_result(djansen()), 0);
    std::this_thread::sleep_for(1050ms);
    const long binds_before = binds();
    const long made = connections_made();
    EXPECT_EQ(bind_result(djansen()), 0);
    EXPECT_EQ(bind_result(djansen()), 0);
    EXPECT_EQ(binds() - binds_before, 1);
    EXPECT_EQ(connections_made(), made);
}

TEST_F(CredentialsTest, AreAlwaysCheckedWhereNoMomentIsAllowed) {
    use({u"RecheckAfter"}, {0});
    ASSERT_EQ(bind_result(djansen()), 0);
    const long before = binds();
    EXPECT_EQ(bind_result(djansen()), 0);
    EXPECT_EQ(bind_result(djansen()), 0);
    EXPECT_EQ(binds() - before, 2);
    change_behind_our_back("changed");
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
}

TEST_F(CredentialsTest, AWrongPasswordIsRefusedHoweverOftenTheRightOneWasAccepted) {
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(bind_result(djansen()), 0);
        EXPECT_EQ(bind_result(djansen("Shop-sample")), wrong_credentials);
        EXPECT_EQ(bind_result(djansen("")), wrong_credentials);
    }
    EXPECT_EQ(open_connections(), 1) << "a refused one is not kept";
}

TEST_F(CredentialsTest, ChangedElsewhereTheOldPasswordIsRefusedOnceItsMomentIsOver) {
    use({u"RecheckAfter"}, {1});
    ASSERT_EQ(bind_result(djansen()), 0);
    change_behind_our_back("changed");
    EXPECT_EQ(bind_result(djansen("changed")), 0) << "the new one is right at once";
    std::this_thread::sleep_for(1050ms);
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
    EXPECT_TRUE(comes_to(1)) << "those of the old password are closed";
}

TEST_F(CredentialsTest, ARefusalClosesTheConnectionsThatWereMadeWithThem) {
    use({u"RecheckAfter"}, {0});
    LdapEntry entry;
    bind(entry, djansen());
    ServerLogin one = login(djansen());
    one.run([&](Session&) {
        EXPECT_EQ(bind_result(djansen()), 0);
        return Result();
    });
    EXPECT_EQ(open_connections(), 2);
    change_behind_our_back("changed");
    EXPECT_EQ(values(entry, u"sn"), Variant(Values{u"Jansen"})) << "as the server lets it";
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
    EXPECT_TRUE(comes_to(0)) << "the idle one as well";
    EXPECT_EQ(failure_of([&] { values(entry, u"sn"); }).number, wrong_credentials);
}

TEST_F(CredentialsTest, ARefusalClosesTheConnectionsInUseOnceTheyAreDone) {
    use({u"RecheckAfter"}, {0});
    ServerLogin user = login(djansen());
    user.run([&](Session& session) {
        change_behind_our_back("changed");
        EXPECT_EQ(bind_result(djansen()), wrong_credentials);
        return session.who_am_i();
    });
    EXPECT_TRUE(comes_to(0));
}

TEST_F(CredentialsTest, ChangedByTheUserTheOldPasswordIsRefusedAtOnce) {
    LdapEntry entry;
    bind(entry, djansen());
    set(entry, u"userPassword", u"changed by myself");
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
    EXPECT_EQ(bind_result(djansen("changed by myself")), 0);
}

TEST_F(CredentialsTest, ChangedByTheUserAllItsObjectsGoOn) {
    LdapEntry entry, other;
    bind(entry, djansen());
    bind(other, djansen(), u"cn=jsmith");
    set(entry, u"userPassword", u"changed by myself");
    EXPECT_EQ(values(other, u"sn"), Variant(Values{u"Smith"}));
    EXPECT_EQ(values(entry, u"sn"), Variant(Values{u"Jansen"}));
    server_.stop();
    server_.start();
    EXPECT_EQ(values(other, u"sn"), Variant(Values{u"Smith"}));
    EXPECT_EQ(values(entry, u"sn"), Variant(Values{u"Jansen"}));
}

TEST_F(CredentialsTest, ChangedByTheUserWithoutAPoolItsObjectsGoOnAsWell) {
    use({u"MaximumSize"}, {0});
    LdapEntry entry, other;
    bind(entry, djansen());
    bind(other, djansen(), u"cn=jsmith");
    set(entry, u"userPassword", u"changed by myself");
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
    server_.stop();
    server_.start();
    EXPECT_EQ(values(other, u"sn"), Variant(Values{u"Smith"}));
    EXPECT_EQ(values(entry, u"sn"), Variant(Values{u"Jansen"}));
}

TEST_F(CredentialsTest, ChangedByAnotherUserTheOldPasswordIsRefusedAtOnceEverywhere) {
    LdapEntry theirs, administrator;
    bind(theirs, {"CN=DJansen, OU=Users, O=Shop", "shop-sample"});
    bind(administrator, service());
    set(administrator, u"userPassword", u"given anew");
    EXPECT_TRUE(comes_to(1)) << "that of the service account";
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
    EXPECT_EQ(failure_of([&] { values(theirs, u"sn"); }).number, wrong_credentials);
    EXPECT_EQ(bind_result(djansen("given anew")), 0);
    EXPECT_EQ(values(administrator, u"sn"), Variant(Values{u"Jansen"}));
}

TEST_F(CredentialsTest, AreCheckedAgainAfterAnyWriteToTheUsersEntry) {
    LdapEntry administrator;
    bind(administrator, service());
    ASSERT_EQ(bind_result(djansen()), 0);
    const long before = binds();
    set(administrator, u"Position", u"Manager");
    EXPECT_EQ(bind_result(djansen()), 0);
    EXPECT_EQ(binds() - before, 1);
    set(administrator, u"userPassword", Values{u""});
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
}

TEST_F(CredentialsTest, OfAUserWhoIsDeletedAreRefusedAtOnce) {
    ASSERT_EQ(bind_result(djansen()), 0);
    LdapEntry users;
    bind(users, service(), u"");
    Text type = u"orvoPerson", name = u"cn=djansen,ou=Users,o=Shop";
    users.DeleteChild(type, name);
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
}

TEST_F(CredentialsTest, InAPasswordCheckAreAlwaysAskedAbout) {
    EXPECT_EQ(checked(djansen()), 0);
    EXPECT_EQ(bind_result(djansen()), 0);
    const long before = binds();
    EXPECT_EQ(checked(djansen()), 0);
    EXPECT_EQ(checked(djansen()), 0);
    EXPECT_EQ(binds() - before, 2);
    change_behind_our_back("changed");
    EXPECT_EQ(checked(djansen()), -1);
    EXPECT_EQ(checked(djansen("changed")), 0);
}

TEST_F(CredentialsTest, OfPasswordChecksAreBoundOnAConnectionThatServesNothingElse) {
    ServerLogin user = login(djansen()), nobody = login({"", ""});
    who_is(user);
    who_is(nobody);
    const long made = connections_made();
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(checked(this->user("jsmith")), 0);
        EXPECT_EQ(checked({server_.user_dn("jsmith"), "wrong"}), -1);
        EXPECT_EQ(who_is(user), "dn:cn=djansen,ou=Users,o=Shop");
        EXPECT_EQ(who_is(nobody), "");
    }
    EXPECT_EQ(connections_made() - made, 1);
}

}  // namespace
}  // namespace orvo::directory::ldap
