#include "tests/suite/directory/provider/provider_test.h"

namespace orvo::directory {
namespace {

class ChildrenTest : public ProviderTest {
protected:
    using ProviderTest::ProviderTest;

    // The entry bound to the container of the users.
    const Entry& bound(const Text& container = users) {
        bind(entry_, service(), u"", Values{}, container);
        return entry_;
    }

    const Entry entry_ = new_entry();
};
FOR_EVERY_DIRECTORY(ChildrenTest);

TEST_P(ChildrenTest, CreatesAnEntryBelowTheContainer) {
    create(bound(), {{u"cn", u"new"},
                     {u"sn", u"M\u00FCller"},
                     {u"OrvoUserType", u"1"},
                     {u"OrvoRole", Values{std::int16_t(2), u"3"}},
                     {u"CreditCardExpiryDate", date_from_parts({2031, 12, 31, 0, 0, 0})},
                     {u"objectClass", Values{u"orvoPerson", u"top"}}});
    const std::string name = shop_.user_dn("new");
    EXPECT_THAT(shop_.values(name, "cn"), ElementsAre("new"));
    EXPECT_THAT(shop_.values(name, "sn"), ElementsAre("M\xC3\xBCller"));
    EXPECT_THAT(shop_.values(name, "OrvoUserType"), ElementsAre("1"));
    EXPECT_THAT(shop_.values(name, "OrvoRole"), ElementsAre("2", "3"));
    EXPECT_THAT(shop_.values(name, "CreditCardExpiryDate"), ElementsAre("20311231000000Z"));
    EXPECT_THAT(shop_.values(name, "objectClass"), ElementsAre("orvoPerson", "top"));
}

TEST_P(ChildrenTest, StoresAnEmptyTextAsZeroForANumberAndOtherwiseNotAtAll) {
    create(bound(), new_user(u"new"));
    const std::string name = shop_.user_dn("new");
    EXPECT_THAT(shop_.values(name, "OrvoUserType"), ElementsAre("0"));
    EXPECT_THAT(shop_.values(name, "sn"), IsEmpty());
    EXPECT_THAT(shop_.values(name, "userPassword"), IsEmpty());
    EXPECT_EQ(found(u"(&(OrvoUserType=*)(cn=new))"), 1);
}

TEST_P(ChildrenTest, RefusesAnEmptyTextOfAnAttributeThatTheSchemaDoesNotKnow) {
    for (const char16_t* unknown : {u"nosuch", u" OrvoUserType"}) {
        const Failure failure = refusal_of([&] {
            create(bound(), {{u"cn", u"new"}, {unknown, u""}, {u"objectClass", u"orvoPerson"}});
        });
        EXPECT_EQ(failure.number, error_number(0x8007200C));
        EXPECT_EQ(failure.description,
                  u"(17) The attribute type is not defined. '" + Text(unknown) + u"'");
    }
    EXPECT_EQ(found(u"(cn=new)"), 0);
    create(bound(), {{u"cn", u"new"}, {u"", u""}, {u"objectClass", u"orvoPerson"}});
    EXPECT_EQ(found(u"(cn=new)"), 1) << "nothing is named";
}

TEST_P(ChildrenTest, StoresABlankWhereTheClassesWantATextThatCameEmpty) {
    create(bound(), {{u"cn", u"new"},
                     {u"sn", u""},
                     {u"description", u""},
                     {u"objectClass", Values{u"person", u"orvoMember"}}});
    EXPECT_THAT(shop_.values(shop_.user_dn("new"), "sn"), ElementsAre(" "));

    const Failure failure = refusal_of([&] {
        create(bound(), {{u"cn", u"other"}, {u"mail", u""}, {u"objectClass", u"person"}});
    });
    EXPECT_EQ(failure.number, error_number(0x80072014));
    EXPECT_EQ(failure.description,
              u"(65) The entry does not agree with its object class. object class 'person' "
              u"requires attribute 'sn'");
}

TEST_P(ChildrenTest, StoresABlankInWhatIsRequiredAlone) {
    create(bound(), {{u"cn", u"new"},
                     {u"surname", u""},
                     {u"seeAlso", u""},
                     {u"description", u""},
                     {u"objectClass", u"person"}});
    EXPECT_THAT(shop_.values(shop_.user_dn("new"), "sn"), ElementsAre(" "));
    EXPECT_THAT(shop_.values(shop_.user_dn("new"), "seeAlso"), IsEmpty());
    EXPECT_THAT(shop_.values(shop_.user_dn("new"), "description"), IsEmpty());
}

TEST_P(ChildrenTest, IsToldWhatIsRequiredWhereABlankIsNoValueOfIt) {
    const Failure failure = refusal_of([&] {
        create(bound(), {{u"cn", u"new"}, {u"member", u""}, {u"objectClass", u"groupOfNames"}});
    });
    EXPECT_EQ(failure.number, error_number(0x80072014));
    EXPECT_EQ(failure.description,
              u"(65) The entry does not agree with its object class. object class 'groupOfNames' "
              u"requires attribute 'member'");
}

TEST_P(ChildrenTest, StoresThePasswordAsAHash) {
    create(bound(), new_user(u"new", u"n\u00E9w password"));
    const std::string name = shop_.user_dn("new");
    EXPECT_THAT(shop_.values(name, "userPassword"),
                ElementsAre(StartsWith(shop_.own(differences::stored_password))));
    EXPECT_EQ(shop_.bind(name, "n\xC3\xA9w password"), 0);
}

TEST_P(ChildrenTest, TakesSeveralNamesOfOneAttributeForOne) {
    create(bound(),
           {{u"cn", u"new"},
            {u"CN", u"new"},
            {u"commonName", u"new"},
            {u"OBJECTCLASS", u"person"},
            {u"surname", u"a"},
            {u"sn", u"b"}},
           u"CN");
    EXPECT_THAT(shop_.values(shop_.user_dn("new"), "cn"), ElementsAre("new"));
    EXPECT_THAT(shop_.values(shop_.user_dn("new"), "sn"), ElementsAre("a", "b"));
}

TEST_P(ChildrenTest, TakesTheClassesOfTheCallWhereTheAttributesHoldNone) {
    const Variant classes[] = {u"orvoPerson", Values{u"orvoPerson"},
                               Values{Values{u"orvoPerson", u"top"}}};
    for (const Variant& given : classes) {
        create(bound(), {{u"cn", u"new"}}, u"cn", given);
        EXPECT_THAT(shop_.values(shop_.user_dn("new"), "objectClass"),
                    testing::Contains("orvoPerson"));
        ASSERT_EQ(shop_.remove(shop_.user_dn("new")), 0);
    }
}

TEST_P(ChildrenTest, RefusesAnEntryThatIsThere) {
    for (const char16_t* name : {u"jsmith", u"JSMITH", u"smith,  john"}) {
        const auto before = shop_.everything();
        const Failure failure = refusal_of([&] { create(bound(), new_user(name, u"secret")); });
        EXPECT_EQ(failure.number, error_number(0x8004044F));
        EXPECT_EQ(failure.description, u"(68) The specified entry already exists.");
        EXPECT_EQ(shop_.everything(), before);
    }
}

TEST_P(ChildrenTest, RefusesValuesThatCannotBeStored) {
    bound();
    Given given = new_user(u"new");
    given[4].second = u"four";
    EXPECT_EQ(refusal_of([&] { create(entry_, given); }).number, 13);
    given = new_user(u"new");
    given[1].second = Variant::null();
    EXPECT_EQ(refusal_of([&] { create(entry_, given); }).number, 94);
    given = new_user(u"new");
    given[2].second = Values{u"a", u"b"};
    EXPECT_EQ(refusal_of([&] { create(entry_, given); }).number, 13);
    given = new_user(u"new");
    given.push_back({u"noSuchAttribute", u"x"});
    EXPECT_EQ(refusal_of([&] { create(entry_, given); }).number, error_number(0x8007200C));
    Variant classes = u"orvoPerson";
    Text naming = u"cn";
    Object nothing;
    EXPECT_EQ(refusal_of([&] {
                  call<&DirectoryEntry::CreateChild>(entry_, classes, naming, nothing);
              }).number,
              91);
    EXPECT_THAT(shop_.find("ou=Users,o=Shop", "(cn=new)"), IsEmpty());
}

TEST_P(ChildrenTest, RefusesANamingAttributeWithoutExactlyOneValue) {
    const std::pair<Given, Text> wrong[] = {
        {{{u"sn", u"x"}}, u"cn"},
        {{{u"cn", u""}}, u"cn"},
        {{{u"cn", Values{u"a", u"b"}}}, u"cn"},
        {{{u"cn", u"a"}, {u"CN", u"b"}}, u"cn"},
    };
    for (const auto& [given, naming] : wrong) {
        const Failure failure = refusal_of([&] { create(bound(), given, naming); });
        EXPECT_EQ(failure.number, error_number(0x80072032));
        EXPECT_EQ(failure.description,
                  u"(34) The distinguished name is not valid. The naming attribute 'cn' must have "
                  u"one value.");
    }
    const Failure failure = refusal_of([&] { create(bound(), {{u"cn=a,ou", u"x"}}, u"cn=a,ou"); });
    EXPECT_EQ(failure.description,
              u"(34) The distinguished name is not valid. 'cn=a,ou' cannot be the naming "
              u"attribute.");
}

TEST_P(ChildrenTest, TellsMissingRights) {
    bind(entry_, user("jsmith"), u"");
    EXPECT_EQ(refusal_of([&] { create(entry_, new_user(u"new")); }).number,
              error_number(0x80072098));
    EXPECT_EQ(refusal_of([&] { remove(entry_, u"cn=djansen,ou=Users,o=Shop"); }).number,
              error_number(0x80072098));
}

TEST_P(ChildrenTest, DeletesAnEntryOfTheContainer) {
    remove(bound(), u"cn=djansen,ou=Users,o=Shop");
    EXPECT_THAT(shop_.find("ou=Users,o=Shop", "(cn=djansen)"), IsEmpty());
    remove(bound(), u"cn=Smith, John,ou=Users,o=Shop");
    EXPECT_THAT(shop_.find("ou=Users,o=Shop", "(cn=Smith, John)"), IsEmpty());
    remove(bound(u"o=Shop/ou=Users"), u"cn=jsmith,o=Shop/ou=Users");
    EXPECT_THAT(shop_.find("ou=Users,o=Shop", "(cn=jsmith)"), IsEmpty());
}

TEST_P(ChildrenTest, RefusesToDeleteAMissingEntry) {
    if (is_looked_for()) GTEST_SKIP() << "mapped_users_live_test has what is said there";
    const Failure failure = refusal_of([&] { remove(bound(), u"cn=nobody,ou=Users,o=Shop"); });
    EXPECT_EQ(failure.number, error_number(0x80072030));
    EXPECT_EQ(failure.description,
              u"(32) There is no such entry. The nearest entry is 'ou=Users,o=Shop'.");
}

TEST_P(ChildrenTest, RefusesToDeleteWhatIsNotBelowTheContainer) {
    const auto before = shop_.everything();
    for (const char16_t* name : {u"", u"ou=Users,o=Shop", u",ou=Users,o=Shop", u"o=Shop",
                                 u"cn=Buyers,ou=Profiles,o=Shop", u"cn=jsmith"}) {
        const Failure failure = refusal_of([&] { remove(bound(), name); });
        EXPECT_EQ(failure.number, error_number(0x80072032)) << to_utf8(name);
        EXPECT_EQ(failure.description, u"(34) The distinguished name is not valid. '" + Text(name) +
                                           u"' is not below 'ou=Users,o=Shop'.");
    }
    EXPECT_EQ(shop_.everything(), before);
}

TEST_P(ChildrenTest, RefusesToDeleteAnEntryWithOthersBelowIt) {
    ASSERT_EQ(shop_.add("cn=child," + shop_.user_dn("jsmith"),
                        {{"objectClass", {"orvoProfile"}}, {"cn", {"child"}}}),
              0);
    EXPECT_EQ(refusal_of([&] { remove(bound(), u"cn=jsmith,ou=Users,o=Shop"); }).number,
              error_number(0x80072015));
    remove(bound(), u"cn=child,cn=jsmith,ou=Users,o=Shop");
    remove(bound(), u"cn=jsmith,ou=Users,o=Shop");
}

TEST_P(ChildrenTest, MustBeBound) {
    EXPECT_EQ(refusal_of([&] { create(entry_, new_user(u"new")); }).number, 91);
    EXPECT_EQ(refusal_of([&] { remove(entry_, u"cn=jsmith,ou=Users,o=Shop"); }).number, 91);
}

class ChildrenUnderAPolicyTest : public ChildrenTest {
protected:
    ChildrenUnderAPolicyTest() : ChildrenTest({.password_policy = true}) {}
};
FOR_EVERY_DIRECTORY(ChildrenUnderAPolicyTest);

TEST_P(ChildrenUnderAPolicyTest, AreNotLeftBehindWhereTheFirstPasswordIsRefused) {
    const Failure failure = refusal_of([&] { create(bound(), new_user(u"new", u"short")); });
    EXPECT_EQ(failure.number, error_number(0x8007202F));
    EXPECT_EQ(failure.description,
              u"(19) The value violates a constraint. Password fails quality checking policy");
    EXPECT_THAT(shop_.find("ou=Users,o=Shop", "(cn=new)"), IsEmpty());

    create(entry_, new_user(u"new", u"long enough"));
    EXPECT_EQ(shop_.bind(shop_.user_dn("new"), "long enough"), 0);
}

}  // namespace
}  // namespace orvo::directory
