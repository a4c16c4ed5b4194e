#include "suite/directory/ldap/provider/LdapEntry.h"

#include <gmock/gmock.h>

#include "platform/values/values.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/suite/directory/ldap/support/bad_server.h"
#include "tests/suite/directory/ldap/support/manual_clock.h"
#include "tests/suite/directory/ldap/support/rewriting_proxy.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::StartsWith;

struct Login {
    std::string user;
    std::string password;
};

void bind_entry(LdapEntry& entry, const std::string& server, const Login& login, Text common_name,
                Variant attributes = Values{}, Text container = u"ou=Users,o=Shop") {
    Text server_text = from_utf8(server);
    Text user = from_utf8(login.user);
    Secret password = Secret::of_bytes(login.password);
    entry.Bind(server_text, container, common_name, user, password, attributes);
}

Variant values(LdapEntry& entry, Text name) { return entry.GetValues(name); }
void set(LdapEntry& entry, Text name, Variant value) { entry.SetValues(name, value); }

class LdapEntryTest : public testing::Test {
protected:
    Login service() const { return {server_.service_dn(), server_.service_password()}; }
    std::string user() const { return server_.user_dn("djansen"); }

    // An entry bound to the user djansen.
    LdapEntry& bound(Variant attributes = Values{}) {
        bind_entry(entry_, server_.server(), service(), u"cn=djansen", std::move(attributes));
        return entry_;
    }

    PrivateSlapd server_;
    LdapProbe probe_{server_.url(), server_.root_dn(), server_.root_password()};
    ManualClock clock_;
    Client client_{clock_, Client::Probing::by_caller};
    LdapEntry entry_{Limits{2s, 2s}, client_};
};

TEST_F(LdapEntryTest, RefusesAnEmptyPasswordWithoutAskingTheServer) {
    BadServer silent({});
    const Failure failure = failure_of([&] {
        bind_entry(entry_, silent.server(), {"cn=a,o=Shop", ""}, u"cn=djansen");
    });
    EXPECT_EQ(failure.number, error_number(0x8007052E));
    EXPECT_EQ(failure.description,
              u"(49) The user name or the password is wrong. A password is required.");
    EXPECT_EQ(silent.connections(), 0);
}

TEST_F(LdapEntryTest, ShowsNobodyTheRootEntry) {
    bind_entry(entry_, server_.server(), {"", ""}, u"", Values{}, u"");
    EXPECT_EQ(values(entry_, u"supportedLDAPVersion"), Variant(Values{std::int32_t(3)}));
}

TEST_F(LdapEntryTest, AnswersTheFirstReadingOfAListFromWhatBindFetched) {
    bound(Values{u"SN", u"ManagerCN"});
    ASSERT_EQ(probe_.replace(user(), "sn", {"Changed"}), 0);
    ASSERT_EQ(probe_.replace(user(), "ManagerCN", {"admin"}), 0);
    ASSERT_EQ(probe_.replace(user(), "givenName", {"Changed"}), 0);
    EXPECT_EQ(values(entry_, u"surname"), Variant(Values{u"Jansen"}));
    EXPECT_EQ(values(entry_, u"ManagerCN"), Variant(Values{Variant()}));
    EXPECT_NE(values(entry_, u"givenName"), Variant(Values{u"Changed"})) << "it came along";
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Changed"})) << "a list, read once";
    EXPECT_EQ(values(entry_, u"givenName"), Variant(Values{u"Changed"}));
}

TEST_F(LdapEntryTest, AnswersASingleValueFromWhatBindFetchedUntilItIsOldOrWrittenHere) {
    bound(Values{u"ManagerCN"});
    ASSERT_EQ(probe_.replace(user(), "ManagerCN", {"admin"}), 0);
    ASSERT_EQ(probe_.replace(user(), "OrvoUserType", {"2"}), 0);
    for (int reading = 0; reading < 3; ++reading) {
        EXPECT_EQ(values(entry_, u"managercn"), Variant(Values{Variant()}));
        EXPECT_EQ(values(entry_, u"OrvoUserType"), Variant(Values{1}));
    }
    Text other = u"Position";
    Variant written = u"Clerk";
    entry_.SetValues(other, written);
    EXPECT_EQ(values(entry_, u"ManagerCN"), Variant(Values{u"admin"}));
    EXPECT_EQ(values(entry_, u"OrvoUserType"), Variant(Values{2}));
}

TEST_F(LdapEntryTest, KnowsOfABindWhatTheEntryLacksUnlessTheServerSendsItOnlyByName) {
    for (const Variant& names : {Variant(Values{u"sn"}), Variant(Values())}) {
        bound(names);
        ASSERT_EQ(probe_.replace(user(), "ManagerCN", {"admin"}), 0);
        EXPECT_EQ(values(entry_, u"ManagerCN"), Variant(Values{Variant()}));
        EXPECT_NE(values(entry_, u"entryUUID"), Variant(Values{Variant()}));
        EXPECT_EQ(failure_of([&] { values(entry_, u"noSuchAttribute"); }).number, 0);
        clock_.advance(EntryCache::bind_lasts);
        EXPECT_EQ(values(entry_, u"ManagerCN"), Variant(Values{u"admin"}));
        ASSERT_EQ(probe_.replace(user(), "ManagerCN", {}), 0);
    }
}

TEST_F(LdapEntryTest, AListIsFreshAtEveryReadingButTheFirst) {
    bound();
    ASSERT_EQ(probe_.replace(user(), "sn", {"Changed"}), 0);
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Jansen"}));
    EXPECT_EQ(values(entry_, u"surname"), Variant(Values{u"Changed"}));
    ASSERT_EQ(probe_.replace(user(), "sn", {"Again"}), 0);
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Again"}));
    EXPECT_EQ(values(entry_, u"description"), Variant(Values{Variant()}));
    ASSERT_EQ(probe_.replace(user(), "description", {"new"}), 0);
    EXPECT_EQ(values(entry_, u"description"), Variant(Values{u"new"}));
}

TEST_F(LdapEntryTest, DoesNotAnswerFromWhatBindFetchedLongAgo) {
    bound(Values{u"sn"});
    ASSERT_EQ(probe_.replace(user(), "sn", {"Changed"}), 0);
    clock_.advance(EntryCache::bind_lasts);
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Changed"}));
}

TEST_F(LdapEntryTest, HashesThePasswordItselfForAServerThatDoesNot) {
    RewritingProxy without_password_modify(server_.server(), "1.3.6.1.4.1.4203.1.11.1",
                                           "1.3.6.1.4.1.4203.1.11.9");
    bind_entry(entry_, without_password_modify.server(), service(), u"cn=djansen");
    set(entry_, u"userPassword", Values{u"n\u00E9w password"});
    EXPECT_THAT(probe_.values(user(), "userPassword"), ElementsAre(StartsWith("{CRYPT}$y$")));
    LdapProbe login(server_.url());
    EXPECT_EQ(login.bind(user(), "n\xC3\xA9w password"), 0);
    EXPECT_EQ(login.bind(user(), server_.user_password()), 49);
}

TEST_F(LdapEntryTest, TakesValuesForTextWhereTheSchemaMayNotBeRead) {
    // The entry that the server names as its schema is not there.
    RewritingProxy without_schema(server_.server(), "cn=Subschema", "cn=Nowhere__");
    bind_entry(entry_, without_schema.server(), service(), u"cn=djansen");
    EXPECT_EQ(values(entry_, u"OrvoUserType"), Variant(Values{u"1"}));
    EXPECT_EQ(values(entry_, u"SN"), Variant(Values{u"Jansen"}));
    set(entry_, u"OrvoUserType", std::int32_t(2));
    EXPECT_EQ(values(entry_, u"OrvoUserType"), Variant(Values{u"2"}));
}

TEST_F(LdapEntryTest, ReconnectsWhereTheServerWasAway) {
    bound();
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Jansen"}));
    server_.stop();
    server_.start();
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Jansen"}));
    server_.stop();
    server_.start();
    set(entry_, u"sn", u"Janssen");
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Janssen"}));
}

TEST_F(LdapEntryTest, ReconnectsWithThePasswordThatItsUserChanged) {
    bind_entry(entry_, server_.server(), {user(), server_.user_password()}, u"cn=djansen");
    set(entry_, u"userPassword", u"changed by myself");
    server_.stop();
    server_.start();
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Jansen"}));
}

TEST_F(LdapEntryTest, FailsWhileTheServerIsAwayAndWorksAgainAfterwards) {
    bound();
    server_.stop();
    EXPECT_EQ(failure_of([&] { values(entry_, u"sn"); }).number, error_number(0x8007203A));
    server_.start();
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Jansen"}));
}

TEST_F(LdapEntryTest, EndsWaitingForASilentServer) {
    bind_entry(entry_, server_.server(), service(), u"cn=djansen");
    server_.pause();
    const Failure failure = failure_of([&] { values(entry_, u"sn"); });
    server_.resume();
    EXPECT_EQ(failure.number, error_number(0x8007203A));
    EXPECT_EQ(failure.description, no_answer_of(server_.server(), 2s));
}

}  // namespace
}  // namespace orvo::directory::ldap
