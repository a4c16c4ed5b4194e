#include "suite/directory/ldap/provider/LdapEntry.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>
#include <vector>

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
void clear(LdapEntry& entry, Text name) { entry.ClearValues(name); }

class LdapEntryTest : public testing::Test {
protected:
    Login service() const { return {server_.service_dn(), server_.service_password()}; }
    Login root() const { return {server_.root_dn(), server_.root_password()}; }
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

TEST_F(LdapEntryTest, ReadsValuesWithTheTypesOfTheSchema) {
    bound();
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Jansen"}));
    EXPECT_EQ(values(entry_, u"givenName"), Variant(Values{u"Dani\u00EBl"}));
    EXPECT_EQ(values(entry_, u"OrvoUserType"), Variant(Values{std::int32_t(1)}));
    EXPECT_EQ(values(entry_, u"OrvoApps"), Variant(Values{std::int32_t(1), std::int32_t(3)}));
    EXPECT_EQ(values(entry_, u"BusinessPartnerID"), Variant(Values{std::int32_t(1002)}));
    EXPECT_EQ(values(entry_, u"createTimestamp").to<Values>()[0].kind(), Kind::date);
    EXPECT_EQ(values(entry_, u"hasSubordinates"), Variant(Values{false}));
}

TEST_F(LdapEntryTest, FindsAttributesByAnyOfTheirNames) {
    bound();
    const Variant expected = Values{u"Jansen"};
    for (const char16_t* name : {u"SN", u"surname", u"Surname", u"2.5.4.4"})
        EXPECT_EQ(values(entry_, name), expected) << to_utf8(name);
}

TEST_F(LdapEntryTest, DoesNotTakeASubtypeForTheAttribute) {
    // A server answers a question for "name" with cn, sn and the like as well.
    EXPECT_EQ(values(bound(), u"name"), Variant(Values{Variant()}));
}

TEST_F(LdapEntryTest, TellsAttributesWithOptionsApart) {
    ASSERT_EQ(probe_.replace(user(), "sn;lang-de", {"Jansson"}), 0);
    bound();
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Jansen"}));
    EXPECT_EQ(values(entry_, u"sn;LANG-DE"), Variant(Values{u"Jansson"}));
    EXPECT_EQ(values(entry_, u"sn;lang-fr"), Variant(Values{Variant()}));
}

TEST_F(LdapEntryTest, AnswersAMissingOrUnknownAttributeWithOneEmptyElement) {
    bound();
    EXPECT_EQ(values(entry_, u"ManagerCN"), Variant(Values{Variant()}));
    EXPECT_EQ(values(entry_, u"noSuchAttribute"), Variant(Values{Variant()}));
}

TEST_F(LdapEntryTest, BindsTheContainerItselfWithoutACommonName) {
    bind_entry(entry_, server_.server(), service(), u"");
    EXPECT_EQ(values(entry_, u"ou"), Variant(Values{u"Users"}));
    bind_entry(entry_, server_.server(), service(), u"", Values{}, u"o=Shop/ou=Users");
    EXPECT_EQ(values(entry_, u"ou"), Variant(Values{u"Users"}));
}

TEST_F(LdapEntryTest, RefusesAMissingEntry) {
    const Failure failure =
        failure_of([&] { bind_entry(entry_, server_.server(), service(), u"cn=nobody"); });
    EXPECT_EQ(failure.number, error_number(0x80072030));
    EXPECT_EQ(failure.description,
              u"(32) There is no such entry. The nearest entry is 'ou=Users,o=Shop'.");
}

TEST_F(LdapEntryTest, TakesAUsersNameThatWasNotEscapedAndRefusesANul) {
    const Login john{"cn=Smith, John,ou=Users,o=Shop", server_.user_password()};
    bind_entry(entry_, server_.server(), john, u"cn=Smith, John");
    EXPECT_EQ(values(entry_, u"cn"), Variant(Values{u"Smith, John"}));
    bind_entry(entry_, server_.server(), john, u"cn=Buyers", Values{}, u"ou=Profiles,o=Shop");
    const Login cut{server_.service_dn() + std::string(1, '\0') + "x", server_.service_password()};
    EXPECT_EQ(failure_of([&] { bind_entry(entry_, server_.server(), cut, u"cn=jsmith"); }).number,
              error_number(0x8007052E));
}

TEST_F(LdapEntryTest, RefusesANulInANameAndWritesNothing) {
    bound();
    const auto before = probe_.values(user(), "entryCSN");
    Text name = u"userPassword" + Text(1, u'\0') + u"x";
    Variant value = u"in clear text";
    for (const auto& failure : {failure_of([&] { entry_.SetValues(name, value); }),
                                failure_of([&] { entry_.ClearValues(name); }),
                                failure_of([&] { entry_.GetValues(name); })}) {
        EXPECT_EQ(failure.description.substr(0, 5), u"(34) ");
        EXPECT_NE(failure.description.find(u"A name cannot hold a NUL."), Text::npos);
    }
    EXPECT_EQ(probe_.values(user(), "entryCSN"), before);
    const Text container = u"ou=Users,o=Shop" + Text(1, u'\0') + u",ou=Nowhere";
    EXPECT_EQ(failure_of([&] {
                  bind_entry(entry_, server_.server(), service(), u"cn=jsmith", Values{},
                             container);
              }).description.substr(0, 5),
              u"(34) ");
}

TEST_F(LdapEntryTest, RefusesHalfOfASurrogatePairAndWritesNothing) {
    bound();
    const auto before = probe_.values(user(), "entryCSN");
    const Variant half = u"a\xD83D";
    const std::pair<Text, TextView> refusals[] = {
        {u"sn\xD83D",
         u"(34) The distinguished name is not valid. A name cannot hold half of a "
         u"surrogate pair."},
        {u"sn",
         u"(21) The value does not have the attribute's syntax. A text cannot hold half of a "
         u"surrogate pair."},
        {u"userPassword",
         u"(21) The value does not have the attribute's syntax. A password cannot "
         u"hold half of a surrogate pair."}};
    for (const auto& [name, description] : refusals)
        EXPECT_EQ(failure_of([&] { set(entry_, name, half); }).description, description);
    EXPECT_EQ(probe_.values(user(), "entryCSN"), before);
}

TEST_F(LdapEntryTest, TakesAPasswordWithHalfOfASurrogatePairForWrong) {
    set(bound(), u"userPassword", u"\xFFFD");
    LdapEntry entry{Limits{2s, 2s}};
    Text server = from_utf8(server_.server()), container = u"ou=Users,o=Shop", name = u"cn=djansen";
    Text djansen = from_utf8(user());
    Secret password(u"\xFFFD");
    Variant nothing = Values{};
    entry.Bind(server, container, name, djansen, password, nothing);
    password = Secret(u"\xDE00");
    const Failure failure =
        failure_of([&] { entry.Bind(server, container, name, djansen, password, nothing); });
    EXPECT_EQ(failure.number, error_number(0x8007052E));
    EXPECT_EQ(
        failure.description,
        u"(49) The user name or the password is wrong. The password holds half of a surrogate "
        u"pair.");
}

TEST_F(LdapEntryTest, RefusesWrongCredentials) {
    const std::vector<Login> logins = {{server_.service_dn(), "wrong"},
                                       {"cn=nobody,o=Shop", "wrong"},
                                       {"nobody", "wrong"},
                                       {"ou=Users,o=Shop", "wrong"}};
    for (const Login& login : logins)
        EXPECT_EQ(
            failure_of([&] { bind_entry(entry_, server_.server(), login, u"cn=djansen"); }).number,
            error_number(0x8007052E))
            << login.user;
}

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

TEST_F(LdapEntryTest, BindsAsNobodyWithoutCredentials) {
    // The sample shop shows nobody anything, so what nobody asks for is not there.
    const Failure failure = failure_of([&] {
        bind_entry(entry_, server_.server(), {"", ""}, u"cn=djansen");
    });
    EXPECT_EQ(failure.number, error_number(0x80072030));
    bind_entry(entry_, server_.server(), {"", ""}, u"", Values{}, u"");
    EXPECT_EQ(values(entry_, u"supportedLDAPVersion"), Variant(Values{std::int32_t(3)}));
}

TEST_F(LdapEntryTest, IsUnboundAfterAFailedBind) {
    bound();
    EXPECT_NE(
        failure_of([&] { bind_entry(entry_, server_.server(), service(), u"cn=nobody"); }).number,
        0);
    EXPECT_EQ(failure_of([&] { values(entry_, u"sn"); }).number, 91);
}

TEST_F(LdapEntryTest, MustBeBound) {
    EXPECT_EQ(failure_of([&] { values(entry_, u"sn"); }).number, 91);
    EXPECT_EQ(failure_of([&] { set(entry_, u"sn", u"x"); }).number, 91);
    EXPECT_EQ(failure_of([&] { clear(entry_, u"sn"); }).number, 91);
}

TEST_F(LdapEntryTest, WritesAndReadsBackEachType) {
    bound();
    set(entry_, u"sn", u"M\u00FCller");
    set(entry_, u"ProjectUserType", true);
    set(entry_, u"OrvoApps", Values{std::int16_t(5), u"6"});
    set(entry_, u"CreditCardExpiryDate", date_from_parts({2031, 12, 31, 0, 0, 0}));
    set(entry_, u"SpendLimit", Currency{125000});
    EXPECT_THAT(probe_.values(user(), "sn"), ElementsAre("M\xC3\xBCller"));
    EXPECT_THAT(probe_.values(user(), "ProjectUserType"), ElementsAre("1"));
    EXPECT_THAT(probe_.values(user(), "OrvoApps"), ElementsAre("5", "6"));
    EXPECT_THAT(probe_.values(user(), "CreditCardExpiryDate"), ElementsAre("20311231000000Z"));
    EXPECT_THAT(probe_.values(user(), "SpendLimit"), ElementsAre("12.5"));
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"M\u00FCller"}));
    EXPECT_EQ(values(entry_, u"OrvoApps"), Variant(Values{std::int32_t(5), std::int32_t(6)}));
    EXPECT_EQ(values(entry_, u"CreditCardExpiryDate"),
              Variant(Values{date_from_parts({2031, 12, 31, 0, 0, 0})}));
}

TEST_F(LdapEntryTest, RemovesAnAttributeThatIsSetToNothing) {
    bound();
    for (const Variant& nothing : {Variant(u""), Variant(), Variant(Values{}), Variant(Values{u""}),
                                   Variant(Values{Variant()})}) {
        ASSERT_EQ(probe_.replace(user(), "CostCenter", {"4708"}), 0);
        set(entry_, u"CostCenter", nothing);
        EXPECT_THAT(probe_.values(user(), "CostCenter"), ElementsAre());
        set(entry_, u"CostCenter", nothing);
    }
}

TEST_F(LdapEntryTest, ClearsAnAttributeAlsoWhereItIsMissing) {
    bound();
    clear(entry_, u"costcenter");
    EXPECT_THAT(probe_.values(user(), "CostCenter"), ElementsAre());
    clear(entry_, u"costcenter");
    EXPECT_EQ(values(entry_, u"CostCenter"), Variant(Values{Variant()}));
}

TEST_F(LdapEntryTest, RefusesValuesThatTheAttributeCannotHold) {
    bound();
    EXPECT_EQ(failure_of([&] { set(entry_, u"OrvoUserType", u"four"); }).number, 13);
    EXPECT_EQ(failure_of([&] { set(entry_, u"sn", Variant::null()); }).number, 94);
    const Failure unknown = failure_of([&] { set(entry_, u"noSuchAttribute", u"x"); });
    EXPECT_EQ(unknown.number, error_number(0x8007200C));
    EXPECT_THAT(to_utf8(unknown.description),
                StartsWith("(17) The attribute type is not defined. "));
    const Failure foreign = failure_of([&] { set(entry_, u"uniqueMember", u"o=Shop"); });
    EXPECT_EQ(foreign.number, error_number(0x80072014));
    EXPECT_EQ(foreign.description,
              u"(65) The entry does not agree with its object class. attribute 'uniqueMember' "
              u"not allowed");
    EXPECT_EQ(failure_of([&] { values(entry_, u""); }).number, 5);
    EXPECT_EQ(failure_of([&] { clear(entry_, u""); }).number, 5);
}

TEST_F(LdapEntryTest, TellsMissingRights) {
    bind_entry(entry_, server_.server(), {user(), server_.user_password()}, u"cn=djansen");
    const Failure failure = failure_of([&] { set(entry_, u"OrvoUserType", std::int32_t(4)); });
    EXPECT_EQ(failure.number, error_number(0x80072098));
    EXPECT_EQ(failure.description, u"(50) The rights are not sufficient.");
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

TEST_F(LdapEntryTest, SeesAtOnceWhatThisProcessWrites) {
    bound(Values{u"sn", u"givenName"});
    LdapEntry other({}, client_);
    bind_entry(other, server_.server(), service(), u"CN=DJANSEN", Values{u"sn"});
    set(entry_, u"sn", u"Changed");
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Changed"}));
    EXPECT_EQ(values(other, u"sn"), Variant(Values{u"Changed"}));
}

TEST_F(LdapEntryTest, HasThePasswordHashedByTheServer) {
    bound();
    set(entry_, u"userPassword", Values{u"n\u00E9w password"});
    EXPECT_THAT(probe_.values(user(), "userPassword"), ElementsAre(StartsWith("{SSHA}")));
    LdapProbe login(server_.url());
    EXPECT_EQ(login.bind(user(), "n\xC3\xA9w password"), 0);
    set(entry_, u"USERPASSWORD", u"another");
    EXPECT_EQ(login.bind(user(), "another"), 0);
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

TEST_F(LdapEntryTest, RemovesAPasswordThatIsCleared) {
    bind_entry(entry_, server_.server(), root(), u"cn=djansen");
    clear(entry_, u"userPassword");
    EXPECT_THAT(probe_.values(user(), "userPassword"), ElementsAre());
    EXPECT_EQ(failure_of([&] { set(entry_, u"userPassword", Values{u"a", u"b"}); }).number, 13);
    EXPECT_EQ(failure_of([&] { set(entry_, u"userPassword", Variant::null()); }).number, 94);
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

TEST_F(LdapEntryTest, IsUsedBySeveralThreadsEachWithItsOwn) {
    std::vector<std::thread> threads;
    std::atomic<int> right = 0;
    for (int thread = 0; thread < 8; ++thread)
        threads.emplace_back([&, thread] {
            LdapEntry entry;
            const std::string number = std::to_string(thread);
            for (int round = 0; round < 5; ++round) {
                bind_entry(entry, server_.server(), service(), u"cn=djansen", Values{u"sn"});
                set(entry, u"PhoneNumber", from_utf8(number));
                if (values(entry, u"sn") == Variant(Values{u"Jansen"})) ++right;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(right, 40);
}

}  // namespace
}  // namespace orvo::directory::ldap
