// When the server is asked about the credentials that a Bind presents.

#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/interfaces/call.h"
#include "platform/objects/dictionary/dictionary.h"
#include "tests/suite/directory/ldap/pool/pool_test.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;

constexpr std::int32_t wrong_credentials = static_cast<std::int32_t>(0x8007052E);

class CredentialsTest : public PoolTest {
protected:
    using PoolTest::PoolTest;

    User djansen(const std::string& password = "shop-sample") const {
        return {server_.user_dn("djansen"), password};
    }
    // Somebody else changes the password; the server knows, this process does not.
    void change_behind_our_back(const std::string& password) {
        ASSERT_EQ(probe_.replace(server_.user_dn("djansen"), "userPassword", {password}), 0);
    }
    // The service account deletes the user, and makes one of the same name.
    void remove_user() {
        LdapEntry users({}, client_);
        bind(users, service(), u"");
        Text type = u"orvoPerson", name = u"cn=djansen,ou=Users,o=Shop";
        users.DeleteChild(type, name);
    }
    void make_user(const Text& password) {
        const auto given = make<DictionaryObject>();
        for (auto [key, item] : {std::pair<Variant, Variant>{u"cn", u"djansen"},
                                 {u"sn", u"Another"},
                                 {u"OrvoUserType", 1},
                                 {u"userPassword", password}})
            call<&Dictionary::Add>(given, key, item);
        LdapEntry users({}, client_);
        bind(users, service(), u"");
        Object attributes = given.object();
        Variant classes = u"orvoPerson";
        Text naming = u"cn";
        users.CreateChild(classes, naming, attributes);
    }
    // Of a reading that the server is always asked for.
    static std::int32_t reading(LdapEntry& entry) {
        return failure_of([&] { values(entry, u"entryUUID"); }).number;
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
    clock_.advance(1050ms);
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
    EXPECT_TRUE(comes_to(1)) << "a refused one is not kept";
}

TEST_F(CredentialsTest, ChangedElsewhereTheOldPasswordIsRefusedOnceItsMomentIsOver) {
    use({u"RecheckAfter"}, {1});
    ASSERT_EQ(bind_result(djansen()), 0);
    change_behind_our_back("changed");
    EXPECT_EQ(bind_result(djansen("changed")), 0) << "the new one is right at once";
    clock_.advance(1050ms);
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
    EXPECT_TRUE(comes_to(1)) << "those of the old password are closed";
}

TEST_F(CredentialsTest, ARefusalClosesTheConnectionsThatWereMadeWithThem) {
    use({u"RecheckAfter"}, {0});
    LdapEntry entry({}, client_);
    bind(entry, djansen());
    ServerLogin one = login(djansen());
    one.search([&](Session&) {
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
    user.search([&](Session& session) {
        change_behind_our_back("changed");
        EXPECT_EQ(bind_result(djansen()), wrong_credentials);
        return session.who_am_i();
    });
    EXPECT_TRUE(comes_to(0));
}

TEST_F(CredentialsTest, ChangedByTheUserTheOldPasswordIsRefusedAtOnce) {
    LdapEntry entry({}, client_);
    bind(entry, djansen());
    set(entry, u"userPassword", u"changed by myself");
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
    EXPECT_EQ(bind_result(djansen("changed by myself")), 0);
}

TEST_F(CredentialsTest, ChangedByTheUserAllItsObjectsGoOn) {
    LdapEntry entry({}, client_), other({}, client_);
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

TEST_F(CredentialsTest, ChangedByTheUserTwiceAtOnceAreThoseThatTheServerHas) {
    for (int round = 0; round < 5; ++round) {
        const std::string former = round == 0 ? "shop-sample" : "settled";
        LdapEntry one({}, client_), other({}, client_);
        bind(one, djansen(former));
        bind(other, djansen(former));
        const auto change = [](LdapEntry& entry, const Text& password) {
            EXPECT_EQ(failure_of([&] { set(entry, u"userPassword", password); }).number, 0);
        };
        std::thread thread([&] { change(one, u"of the one"); });
        change(other, u"of the other");
        thread.join();
        server_.stop();
        server_.start();
        EXPECT_EQ(reading(one), 0);
        EXPECT_EQ(reading(other), 0);
        set(one, u"userPassword", u"settled");
    }
}

TEST_F(CredentialsTest, ChangedByTheUserWithoutAPoolItsObjectsGoOnAsWell) {
    use({u"MaximumSize"}, {0});
    LdapEntry entry({}, client_), other({}, client_);
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
    LdapEntry theirs({}, client_), administrator({}, client_);
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
    LdapEntry administrator({}, client_);
    bind(administrator, service());
    ASSERT_EQ(bind_result(djansen()), 0);
    const long before = binds();
    set(administrator, u"Position", u"Manager");
    EXPECT_EQ(bind_result(djansen()), 0);
    EXPECT_EQ(binds() - before, 1);
    clear(administrator, u"userPassword");
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
}

TEST_F(CredentialsTest, OfAUserWhoIsDeletedAreRefusedAtOnce) {
    ASSERT_EQ(bind_result(djansen()), 0);
    remove_user();
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
}

TEST_F(CredentialsTest, OfAUserWhoIsDeletedAndMadeAnewAreTheNewOnesAlone) {
    LdapEntry former({}, client_);
    bind(former, djansen());
    ServerLogin other = login(djansen());
    EXPECT_EQ(who_is(other), "dn:cn=djansen,ou=Users,o=Shop");
    remove_user();
    EXPECT_EQ(reading(former), wrong_credentials);
    make_user(u"another one");
    EXPECT_EQ(reading(former), wrong_credentials);
    EXPECT_EQ(failure_of([&] { who_is(other); }).number, wrong_credentials);
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
    EXPECT_EQ(bind_result(djansen("another one")), 0);
    EXPECT_TRUE(comes_to(2)) << "that of the service account and that of the new user";
}

// The server goes on taking a connection that was bound as an entry for that of any entry that has
// this name later.
TEST_F(CredentialsTest, OfAConnectionInUseEndWithTheEntryThatItIsBoundAs) {
    ServerLogin former = login(djansen());
    former.search([&](Session& session) {
        remove_user();
        make_user(u"another one");
        const WhoAmIResult taken_for = session.who_am_i();
        EXPECT_EQ(taken_for.identity, "dn:cn=djansen,ou=Users,o=Shop");
        return taken_for;
    });
    EXPECT_TRUE(comes_to(1)) << "that of the service account";
    EXPECT_EQ(failure_of([&] { who_is(former); }).number, wrong_credentials);
}

TEST_F(CredentialsTest, OfAUserWhoseEntryIsMadeAnewBehindOurBackEndWithItsCreation) {
    LdapEntry former({}, client_);
    bind(former, djansen());
    ASSERT_EQ(probe_.remove(server_.user_dn("djansen")), 0);
    make_user(u"another one");
    EXPECT_EQ(reading(former), wrong_credentials);
}

TEST_F(CredentialsTest, WithoutAPoolEndWithTheEntryAsWell) {
    use({u"MaximumSize"}, {0});
    LdapEntry former({}, client_);
    bind(former, djansen());
    EXPECT_EQ(reading(former), 0);
    remove_user();
    make_user(u"another one");
    EXPECT_EQ(reading(former), wrong_credentials);
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
    EXPECT_EQ(bind_result(djansen("another one")), 0);
}

TEST_F(CredentialsTest, EndWithThePasswordThatIsTakenAway) {
    LdapEntry administrator({}, client_);
    bind(administrator, service());
    for (const char16_t* name : {u"userPassword", u"USERPASSWORD"}) {
        LdapEntry theirs({}, client_);
        bind(theirs, djansen(), u"cn=jsmith");
        EXPECT_EQ(reading(theirs), 0);
        EXPECT_EQ(open_connections(), 2);
        clear(administrator, name);
        EXPECT_TRUE(comes_to(1)) << "that of the service account";
        EXPECT_EQ(reading(theirs), wrong_credentials);
        EXPECT_EQ(bind_result(djansen()), wrong_credentials);
        set(administrator, u"userPassword", u"shop-sample");
        EXPECT_EQ(reading(theirs), 0);
    }
}

// A bind with a name and no password would succeed on many a server, as nobody.
TEST_F(CredentialsTest, OfAUserWhoTakesTheOwnPasswordAwayAreRefusedFromThenOn) {
    for (const int size : {16, 0}) {
        use({u"MaximumSize"}, {size});
        LdapEntry entry({}, client_), other({}, client_);
        bind(entry, djansen());
        bind(other, djansen(), u"cn=jsmith");
        clear(entry, u"userPassword");
        EXPECT_EQ(reading(entry), wrong_credentials);
        EXPECT_EQ(reading(other), wrong_credentials);
        EXPECT_EQ(bind_result(djansen()), wrong_credentials);
        change_behind_our_back("shop-sample");
        forget_refusals();
    }
}

TEST_F(CredentialsTest, ThatWereRefusedAreNotOfferedToTheServerAgainForAMoment) {
    std::deque<LdapEntry> sessions;
    for (int session = 0; session < 5; ++session)
        bind(sessions.emplace_back(std::nullopt, client_), djansen());
    change_behind_our_back("changed");
    clock_.advance(5s);
    const long before = binds();
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
    for (LdapEntry& entry : sessions) EXPECT_EQ(reading(entry), wrong_credentials);
    EXPECT_EQ(binds() - before, 1) << "of a user whom wrong passwords would lock";
    forget_refusals();
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
    EXPECT_EQ(binds() - before, 2);
    EXPECT_EQ(bind_result(djansen("changed")), 0) << "another password is another matter";
}

TEST_F(CredentialsTest, ThatWereRefusedCostNoConnectionWhileTheyAreRemembered) {
    EXPECT_EQ(bind_result(djansen("wrong")), wrong_credentials);
    ASSERT_EQ(bind_result(service()), 0);
    const long made = connections_made();
    EXPECT_EQ(bind_result(djansen("wrong")), wrong_credentials);
    EXPECT_EQ(connections_made(), made);
    use({u"MaximumIdle"}, {1});
    EXPECT_EQ(bind_result(djansen("wrong")), wrong_credentials);
    EXPECT_EQ(bind_result(service()), 0);
    EXPECT_EQ(connections_made(), made) << "nor is one taken from another user for them";
}

TEST_F(CredentialsTest, ThatWereRefusedAreOfferedAgainOnceThisProcessHasWrittenToTheUser) {
    change_behind_our_back("changed");
    EXPECT_EQ(bind_result(djansen()), wrong_credentials);
    LdapEntry administrator({}, client_);
    bind(administrator, service(), u"cn=djansen");
    set(administrator, u"userPassword", u"shop-sample");
    EXPECT_EQ(bind_result(djansen()), 0);
}

TEST_F(CredentialsTest, ThatWereRefusedAreAlwaysOfferedWhereNoMomentIsAllowed) {
    use({u"RecheckAfter"}, {0});
    const long before = binds();
    for (int round = 0; round < 3; ++round)
        EXPECT_EQ(bind_result(djansen("wrong")), wrong_credentials);
    EXPECT_EQ(binds() - before, 3);
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

TEST_F(CredentialsTest, OfPasswordChecksAreBoundOnAConnectionThatIsNoUsers) {
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

// A server that lets a user do nothing but change the password, once somebody else has set it.

class RestrictedCredentialsTest : public CredentialsTest {
protected:
    RestrictedCredentialsTest() : CredentialsTest({.password_policy = true}) {}

    void restrict_user(bool on) {
        ASSERT_EQ(probe_.replace(server_.user_dn("djansen"), "pwdReset", {on ? "TRUE" : "FALSE"}),
                  0);
    }
    // The results of the same reading on two connections of a user.
    static std::vector<int> two_readings(ServerLogin& one, ServerLogin& other) {
        const auto read = [](Session& session) {
            return session.read("cn=jsmith,ou=Users,o=Shop", {"sn"});
        };
        std::vector<int> codes;
        one.search([&](Session& session) {
            codes.push_back(other.search(read).code);
            codes.push_back(read(session).code);
            return Result();
        });
        return codes;
    }
};

TEST_F(RestrictedCredentialsTest, WorkOnEveryConnectionOnceTheUserHasChangedThePassword) {
    constexpr int refused = 50;
    for (const int size : {16, 0}) {
        use({u"MaximumSize"}, {size});
        SCOPED_TRACE("MaximumSize " + std::to_string(size));
        const std::string password = "changed with " + std::to_string(size);
        LdapEntry entry({}, client_);
        bind(entry, djansen());
        ServerLogin one = login(djansen()), other = login(djansen());
        one.authenticate();
        restrict_user(true);
        EXPECT_EQ(two_readings(one, other), (std::vector<int>{refused, 0}));
        set(entry, u"userPassword", from_utf8(password));
        EXPECT_EQ(two_readings(one, other), (std::vector<int>{0, 0}));
        EXPECT_EQ(reading(entry), 0);
        EXPECT_EQ(bind_result(djansen(password)), 0);

        change_behind_our_back("shop-sample");
        restrict_user(false);
    }
}

}  // namespace
}  // namespace orvo::directory::ldap
