#include <atomic>
#include <thread>

#include "tests/suite/directory/provider/provider_test.h"

namespace orvo::directory {
namespace {

class EntryTest : public ProviderTest {
protected:
    static std::string djansen() { return TestDirectory::user_dn("djansen"); }

    // The entry bound to the user djansen.
    const Entry& bound(Variant attributes = Values{}) {
        bind(entry_, service(), u"cn=djansen", std::move(attributes));
        return entry_;
    }

    const Entry entry_ = new_entry();
};
FOR_EVERY_DIRECTORY(EntryTest);

TEST_P(EntryTest, ReadsValuesWithTheTypesOfTheSchema) {
    bound();
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Jansen"}));
    EXPECT_EQ(values(entry_, u"givenName"), Variant(Values{u"Dani\u00EBl"}));
    EXPECT_EQ(values(entry_, u"OrvoUserType"), Variant(Values{std::int32_t(1)}));
    EXPECT_EQ(values(entry_, u"OrvoApps"), Variant(Values{std::int32_t(1), std::int32_t(3)}));
    EXPECT_EQ(values(entry_, u"BusinessPartnerID"), Variant(Values{std::int32_t(1002)}));
    EXPECT_EQ(values(entry_, u"createTimestamp").to<Values>()[0].kind(), Kind::date);
    EXPECT_EQ(values(entry_, u"hasSubordinates"), Variant(Values{false}));
}

TEST_P(EntryTest, FindsAttributesByAnyOfTheirNames) {
    bound();
    const Variant expected = Values{u"Jansen"};
    for (const char16_t* name : {u"SN", u"surname", u"Surname", u"2.5.4.4"})
        EXPECT_EQ(values(entry_, name), expected) << to_utf8(name);
}

TEST_P(EntryTest, DoesNotTakeASubtypeForTheAttribute) {
    // A server answers a question for "name" with cn, sn and the like as well.
    EXPECT_EQ(values(bound(), u"name"), Variant(Values{Variant()}));
}

TEST_P(EntryTest, TellsAttributesWithOptionsApart) {
    ASSERT_EQ(shop_.replace(djansen(), "sn;lang-de", {"Jansson"}), 0);
    bound();
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Jansen"}));
    EXPECT_EQ(values(entry_, u"sn;LANG-DE"), Variant(Values{u"Jansson"}));
    EXPECT_EQ(values(entry_, u"sn;lang-fr"), Variant(Values{Variant()}));
}

TEST_P(EntryTest, AnswersAMissingOrUnknownAttributeWithOneEmptyElement) {
    bound();
    EXPECT_EQ(values(entry_, u"ManagerCN"), Variant(Values{Variant()}));
    EXPECT_EQ(values(entry_, u"noSuchAttribute"), Variant(Values{Variant()}));
}

TEST_P(EntryTest, BindsTheContainerItselfWithoutACommonName) {
    bind(entry_, service(), u"");
    EXPECT_EQ(values(entry_, u"ou"), Variant(Values{u"Users"}));
    bind(entry_, service(), u"", Values{}, u"o=Shop/ou=Users");
    EXPECT_EQ(values(entry_, u"ou"), Variant(Values{u"Users"}));
}

TEST_P(EntryTest, RefusesAMissingEntry) {
    if (is_looked_for()) GTEST_SKIP() << "mapped_users_live_test has what is said there";
    const Failure failure = refusal_of([&] { bind(entry_, service(), u"cn=nobody"); });
    EXPECT_EQ(failure.number, error_number(0x80072030));
    EXPECT_EQ(failure.description,
              u"(32) There is no such entry. The nearest entry is 'ou=Users,o=Shop'.");
}

TEST_P(EntryTest, RefusesNamesThatTheSchemaDoesNotAllow) {
    if (is_looked_for()) GTEST_SKIP() << "mapped_users_live_test has what is said there";
    const Entry users_entry = new_entry();
    bind(users_entry, service(), u"");
    const TextView refused = u"(34) The distinguished name is not valid. invalid DN";
    for (const char16_t* name : {u"cn=", u"nosuch=x", u"OrvoUserType=abc", u"OrvoUserType=",
                                 u"cn=a+cn=b", u"1.2.3.4=x", u"cn=#04024869"}) {
        SCOPED_TRACE(to_utf8(Text(name)));
        const Text path = name + Text(u",ou=Users,o=Shop");
        EXPECT_EQ(refusal_of([&] { bind(entry_, service(), name); }).description, refused);
        EXPECT_EQ(refusal_of([&] { remove(users_entry, path); }).description, refused);
        EXPECT_EQ(refusal_of([&] { bind(entry_, path, Secret(u"x"), u"cn=jsmith"); }).description,
                  refused);
        EXPECT_EQ(checked(path, u"x"), -1);
    }
}

TEST_P(EntryTest, TellsNamesThatNobodyHas) {
    if (is_looked_for()) GTEST_SKIP() << "mapped_users_live_test has what is said there";
    const Entry users_entry = new_entry();
    bind(users_entry, service(), u"");
    const TextView nobody = u"(32) There is no such entry. The nearest entry is 'ou=Users,o=Shop'.";
    for (const char16_t* name :
         {u"sn=x", u"cn=a+sn=b", u"telephoneNumber=x", u"cn=\\20", u"2.5.4.3=nobody"}) {
        SCOPED_TRACE(to_utf8(Text(name)));
        const Text path = name + Text(u",ou=Users,o=Shop");
        EXPECT_EQ(refusal_of([&] { bind(entry_, service(), name); }).description, nobody);
        EXPECT_EQ(refusal_of([&] { remove(users_entry, path); }).description, nobody);
        EXPECT_EQ(refusal_of([&] { bind(entry_, path, Secret(u"x"), u"cn=jsmith"); }).description,
                  u"(49) The user name or the password is wrong.");
        EXPECT_EQ(checked(path, u"x"), -1);
    }
}

TEST_P(EntryTest, TakesAUsersNameThatWasNotEscapedAndRefusesANul) {
    const Login john{"cn=Smith, John,ou=Users,o=Shop", shop_.user_password()};
    bind(entry_, john, u"cn=Smith, John");
    EXPECT_EQ(values(entry_, u"cn"), Variant(Values{u"Smith, John"}));
    bind(entry_, john, u"cn=Buyers", Values{}, u"ou=Profiles,o=Shop");
    const Login cut{service().user + std::string(1, '\0') + "x", service().password};
    EXPECT_EQ(refusal_of([&] { bind(entry_, cut, u"cn=jsmith"); }).number,
              error_number(0x8007052E));
}

TEST_P(EntryTest, RefusesANulInANameAndWritesNothing) {
    bound();
    const auto before = shop_.everything();
    const Text name = u"userPassword" + Text(1, u'\0') + u"x";
    for (const auto& failure :
         {refusal_of([&] { set(entry_, name, u"in clear text"); }),
          refusal_of([&] { clear(entry_, name); }), refusal_of([&] { values(entry_, name); })}) {
        EXPECT_EQ(failure.description.substr(0, 5), u"(34) ");
        EXPECT_NE(failure.description.find(u"A name cannot hold a NUL."), Text::npos);
    }
    EXPECT_EQ(shop_.everything(), before);
    const Text container = u"ou=Users,o=Shop" + Text(1, u'\0') + u",ou=Nowhere";
    EXPECT_EQ(refusal_of([&] {
                  bind(entry_, service(), u"cn=jsmith", Values{}, container);
              }).description.substr(0, 5),
              u"(34) ");
}

TEST_P(EntryTest, RefusesHalfOfASurrogatePairAndWritesNothing) {
    bound();
    const auto before = shop_.everything();
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
        EXPECT_EQ(refusal_of([&] { set(entry_, name, half); }).description, description);
    EXPECT_EQ(shop_.everything(), before);
}

TEST_P(EntryTest, TakesAPasswordWithHalfOfASurrogatePairForWrong) {
    set(bound(), u"userPassword", u"\xFFFD");
    const Text own = from_utf8(djansen());
    bind(entry_, own, Secret(u"\xFFFD"), u"cn=djansen");
    const Failure failure =
        refusal_of([&] { bind(entry_, own, Secret(u"\xDE00"), u"cn=djansen"); });
    EXPECT_EQ(failure.number, error_number(0x8007052E));
    EXPECT_EQ(
        failure.description,
        u"(49) The user name or the password is wrong. The password holds half of a surrogate "
        u"pair.");
}

TEST_P(EntryTest, RefusesWrongCredentials) {
    const std::vector<Login> logins = {{service().user, "wrong"},
                                       {"cn=nobody,o=Shop", "wrong"},
                                       {"nobody", "wrong"},
                                       {"ou=Users,o=Shop", "wrong"}};
    for (const Login& login : logins)
        EXPECT_EQ(refusal_of([&] { bind(entry_, login, u"cn=djansen"); }).number,
                  error_number(0x8007052E))
            << login.user;
}

TEST_P(EntryTest, RefusesAnEmptyPasswordWithoutAskingTheServer) {
    const Failure failure = refusal_of([&] { bind(entry_, {djansen(), ""}, u"cn=djansen"); });
    EXPECT_EQ(failure.number, error_number(0x8007052E));
    EXPECT_EQ(failure.description,
              u"(49) The user name or the password is wrong. A password is required.");
}

TEST_P(EntryTest, BindsAsNobodyWithoutCredentials) {
    // The sample shop shows nobody anything, so what nobody asks for is not there.
    const Failure failure = refusal_of([&] { bind(entry_, {"", ""}, u"cn=djansen"); });
    EXPECT_EQ(failure.number, error_number(0x80072030));
    EXPECT_EQ(failure.description, u"(32) There is no such entry.");
}

TEST_P(EntryTest, IsUnboundAfterAFailedBind) {
    bound();
    EXPECT_NE(refusal_of([&] { bind(entry_, service(), u"cn=nobody"); }).number, 0);
    EXPECT_EQ(refusal_of([&] { values(entry_, u"sn"); }).number, 91);
}

TEST_P(EntryTest, MustBeBound) {
    EXPECT_EQ(refusal_of([&] { values(entry_, u"sn"); }).number, 91);
    EXPECT_EQ(refusal_of([&] { set(entry_, u"sn", u"x"); }).number, 91);
    EXPECT_EQ(refusal_of([&] { clear(entry_, u"sn"); }).number, 91);
}

TEST_P(EntryTest, WritesAndReadsBackEachType) {
    bound();
    set(entry_, u"sn", u"M\u00FCller");
    set(entry_, u"ProjectUserType", true);
    set(entry_, u"OrvoApps", Values{std::int16_t(5), u"6"});
    set(entry_, u"CreditCardExpiryDate", date_from_parts({2031, 12, 31, 0, 0, 0}));
    set(entry_, u"SpendLimit", Currency{125000});
    EXPECT_THAT(shop_.values(djansen(), "sn"), ElementsAre("M\xC3\xBCller"));
    EXPECT_THAT(shop_.values(djansen(), "ProjectUserType"), ElementsAre("1"));
    EXPECT_THAT(shop_.values(djansen(), "OrvoApps"), ElementsAre("5", "6"));
    EXPECT_THAT(shop_.values(djansen(), "CreditCardExpiryDate"), ElementsAre("20311231000000Z"));
    EXPECT_THAT(shop_.values(djansen(), "SpendLimit"), ElementsAre("12.5"));
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"M\u00FCller"}));
    EXPECT_EQ(values(entry_, u"OrvoApps"), Variant(Values{std::int32_t(5), std::int32_t(6)}));
    EXPECT_EQ(values(entry_, u"CreditCardExpiryDate"),
              Variant(Values{date_from_parts({2031, 12, 31, 0, 0, 0})}));
}

TEST_P(EntryTest, RemovesAnAttributeThatIsSetToNothing) {
    bound();
    for (const Variant& nothing : {Variant(u""), Variant(), Variant(Values{}), Variant(Values{u""}),
                                   Variant(Values{Variant()})}) {
        ASSERT_EQ(shop_.replace(djansen(), "CostCenter", {"4708"}), 0);
        set(entry_, u"CostCenter", nothing);
        EXPECT_THAT(shop_.values(djansen(), "CostCenter"), ElementsAre());
        set(entry_, u"CostCenter", nothing);
    }
}

TEST_P(EntryTest, ClearsAnAttributeAlsoWhereItIsMissing) {
    bound();
    clear(entry_, u"costcenter");
    EXPECT_THAT(shop_.values(djansen(), "CostCenter"), ElementsAre());
    clear(entry_, u"costcenter");
    EXPECT_EQ(values(entry_, u"CostCenter"), Variant(Values{Variant()}));
}

TEST_P(EntryTest, RefusesValuesThatTheAttributeCannotHold) {
    bound();
    EXPECT_EQ(refusal_of([&] { set(entry_, u"OrvoUserType", u"four"); }).number, 13);
    EXPECT_EQ(refusal_of([&] { set(entry_, u"sn", Variant::null()); }).number, 94);
    const Failure unknown = refusal_of([&] { set(entry_, u"noSuchAttribute", u"x"); });
    EXPECT_EQ(unknown.number, error_number(0x8007200C));
    EXPECT_EQ(unknown.description,
              u"(17) The attribute type is not defined. noSuchAttribute: attribute type undefined");
    const Failure foreign = refusal_of([&] { set(entry_, u"uniqueMember", u"o=Shop"); });
    EXPECT_EQ(foreign.number, error_number(0x80072014));
    EXPECT_EQ(foreign.description,
              u"(65) The entry does not agree with its object class. attribute 'uniqueMember' "
              u"not allowed");
    EXPECT_EQ(refusal_of([&] { values(entry_, u""); }).number, 5);
    EXPECT_EQ(refusal_of([&] { clear(entry_, u""); }).number, 5);
}

TEST_P(EntryTest, TellsMissingRights) {
    bind(entry_, {djansen(), shop_.user_password()}, u"cn=djansen");
    const Failure failure = refusal_of([&] { set(entry_, u"OrvoUserType", std::int32_t(4)); });
    EXPECT_EQ(failure.number, error_number(0x80072098));
    EXPECT_EQ(failure.description, u"(50) The rights are not sufficient.");
}

TEST_P(EntryTest, SeesAtOnceWhatThisProcessWrites) {
    bound(Values{u"sn", u"givenName"});
    const Entry other = new_entry();
    bind(other, service(), u"CN=DJANSEN", Values{u"sn"});
    set(entry_, u"sn", u"Changed");
    EXPECT_EQ(values(entry_, u"sn"), Variant(Values{u"Changed"}));
    EXPECT_EQ(values(other, u"sn"), Variant(Values{u"Changed"}));
}

TEST_P(EntryTest, HasThePasswordHashedByTheServer) {
    bound();
    set(entry_, u"userPassword", Values{u"n\u00E9w password"});
    EXPECT_THAT(shop_.values(djansen(), "userPassword"),
                ElementsAre(StartsWith(shop_.own(differences::stored_password))));
    EXPECT_EQ(shop_.bind(djansen(), "n\xC3\xA9w password"), 0);
    set(entry_, u"USERPASSWORD", u"another");
    EXPECT_EQ(shop_.bind(djansen(), "another"), 0);
}

TEST_P(EntryTest, RemovesAPasswordThatIsCleared) {
    bound();
    clear(entry_, u"userPassword");
    EXPECT_THAT(shop_.values(djansen(), "userPassword"), ElementsAre());
    EXPECT_EQ(refusal_of([&] { set(entry_, u"userPassword", Values{u"a", u"b"}); }).number, 13);
    EXPECT_EQ(refusal_of([&] { set(entry_, u"userPassword", Variant::null()); }).number, 94);
}

TEST_P(EntryTest, IsUsedBySeveralThreadsEachWithItsOwn) {
    std::vector<std::thread> threads;
    std::atomic<int> right = 0;
    for (int thread = 0; thread < 8; ++thread)
        threads.emplace_back([&, thread] {
            const auto entry = call<&DirectoryModule::CreateEntry>(new_provider());
            const std::string number = std::to_string(thread);
            for (int round = 0; round < 5; ++round) {
                bind(entry, service(), u"cn=djansen", Values{u"sn"});
                set(entry, u"PhoneNumber", from_utf8(number));
                if (values(entry, u"sn") == Variant(Values{u"Jansen"})) ++right;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(right, 40);
}

}  // namespace
}  // namespace orvo::directory
