#include <gmock/gmock.h>

#include <map>

#include "platform/interfaces/call.h"
#include "platform/objects/dictionary/dictionary.h"
#include "platform/objects/recordset/record_set_contract.h"
#include "platform/values/values.h"
#include "suite/directory/ldap/provider/LdapEntry.h"
#include "suite/directory/ldap/provider/LdapSearch.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/suite/directory/ldap/support/rewriting_proxy.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

using Given = std::vector<std::pair<Text, Variant>>;

constexpr const char16_t* users = u"ou=Users,o=Shop";

Object dictionary(const Given& given) {
    const auto made = make<DictionaryObject>();
    for (const auto& [name, value] : given) {
        Variant key = name;
        Variant item = value;
        call<&Dictionary::Add>(made, key, item);
    }
    return made.object();
}

// What the component gives for a new user.
Given user(const Text& name, const Text& password = u"") {
    return {{u"cn", name},
            {u"OrvoGUID", u"00112233445566778899AABBCCDDEEFF"},
            {u"userPassword", password},
            {u"sn", u""},
            {u"OrvoUserType", u""},
            {u"objectClass", Values{u"orvoPerson", u"top"}}};
}

void create(LdapEntry& container, const Given& given, Text naming = u"cn",
            Variant classes = Values{Values{u"orvoPerson", u"top"}}) {
    Object attributes = dictionary(given);
    container.CreateChild(classes, naming, attributes);
}

void remove(LdapEntry& container, Text name) {
    Text class_name = u"orvoPerson";
    container.DeleteChild(class_name, name);
}

class LdapEntryChildrenTest : public testing::Test {
protected:
    // An entry bound to the container of the users.
    LdapEntry& bound(const std::string& server, Text container = users) {
        Text address = from_utf8(server), name, user = from_utf8(server_.service_dn());
        Secret password = Secret::of_bytes(server_.service_password());
        Variant nothing = Values{};
        entry_.Bind(address, container, name, user, password, nothing);
        return entry_;
    }
    LdapEntry& bound() { return bound(server_.server()); }

    std::int32_t found(Text filter) {
        LdapSearch search{Limits{2s, 2s}};
        Text server = from_utf8(server_.server()), container = users;
        Text user = from_utf8(server_.service_dn());
        Secret password(u"service-sample");
        search.Connect(server, container, user, password);
        Variant attributes = Values{u"cn"};
        const auto rows = Ref<RecordSet>::from(search.Execute(filter, attributes, 1000));
        return call<&RecordSet::RecordCount>(rows);
    }
    // Every entry of the shop with the number of its last change.
    std::map<std::string, std::vector<std::string>> everything() {
        std::map<std::string, std::vector<std::string>> entries;
        for (const std::string& name : probe_.find("o=Shop", "(objectClass=*)"))
            entries[name] = probe_.values(name, "entryCSN");
        return entries;
    }

    // Requests for a new entry that have reached the server.
    long adds() {
        return std::stol(
            probe_.values("cn=Add,cn=Operations,cn=Monitor", "monitorOpInitiated").at(0));
    }

    PrivateSlapd server_;
    LdapProbe probe_{server_.url(), server_.root_dn(), server_.root_password()};
    LdapEntry entry_{Limits{2s, 2s}};
};

TEST_F(LdapEntryChildrenTest, CreatesAnEntryBelowTheContainer) {
    create(bound(), {{u"cn", u"new"},
                     {u"sn", u"M\u00FCller"},
                     {u"OrvoUserType", u"1"},
                     {u"OrvoRole", Values{std::int16_t(2), u"3"}},
                     {u"CreditCardExpiryDate", date_from_parts({2031, 12, 31, 0, 0, 0})},
                     {u"objectClass", Values{u"orvoPerson", u"top"}}});
    const std::string name = server_.user_dn("new");
    EXPECT_THAT(probe_.values(name, "cn"), ElementsAre("new"));
    EXPECT_THAT(probe_.values(name, "sn"), ElementsAre("M\xC3\xBCller"));
    EXPECT_THAT(probe_.values(name, "OrvoUserType"), ElementsAre("1"));
    EXPECT_THAT(probe_.values(name, "OrvoRole"), ElementsAre("2", "3"));
    EXPECT_THAT(probe_.values(name, "CreditCardExpiryDate"), ElementsAre("20311231000000Z"));
    EXPECT_THAT(probe_.values(name, "objectClass"), ElementsAre("orvoPerson", "top"));
}

TEST_F(LdapEntryChildrenTest, StoresAnEmptyTextAsZeroForANumberAndOtherwiseNotAtAll) {
    create(bound(), user(u"new"));
    const std::string name = server_.user_dn("new");
    EXPECT_THAT(probe_.values(name, "OrvoUserType"), ElementsAre("0"));
    EXPECT_THAT(probe_.values(name, "sn"), IsEmpty());
    EXPECT_THAT(probe_.values(name, "userPassword"), IsEmpty());
    EXPECT_EQ(found(u"(&(OrvoUserType=*)(cn=new))"), 1);
}

TEST_F(LdapEntryChildrenTest, RefusesAnEmptyTextOfAnAttributeThatTheSchemaDoesNotKnow) {
    for (const char16_t* unknown : {u"nosuch", u" OrvoUserType"}) {
        const Failure failure = failure_of([&] {
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

TEST_F(LdapEntryChildrenTest, StoresABlankWhereTheClassesWantATextThatCameEmpty) {
    create(bound(), {{u"cn", u"new"},
                     {u"sn", u""},
                     {u"description", u""},
                     {u"objectClass", Values{u"person", u"orvoMember"}}});
    EXPECT_THAT(probe_.values(server_.user_dn("new"), "sn"), ElementsAre(" "));

    const Failure failure = failure_of([&] {
        create(bound(), {{u"cn", u"other"}, {u"mail", u""}, {u"objectClass", u"person"}});
    });
    EXPECT_EQ(failure.number, error_number(0x80072014));
    EXPECT_EQ(failure.description,
              u"(65) The entry does not agree with its object class. object class 'person' "
              u"requires attribute 'sn'");
}

TEST_F(LdapEntryChildrenTest, StoresABlankWhereItIsNeededAndNowhereElse) {
    bound();
    create(entry_, user(u"first"));
    const long before = adds();
    create(entry_, {{u"cn", u"new"},
                    {u"surname", u""},
                    {u"seeAlso", u""},
                    {u"description", u""},
                    {u"objectClass", u"person"}});
    EXPECT_EQ(adds() - before, 1);
    EXPECT_THAT(probe_.values(server_.user_dn("new"), "sn"), ElementsAre(" "));
    EXPECT_THAT(probe_.values(server_.user_dn("new"), "seeAlso"), IsEmpty());
    EXPECT_THAT(probe_.values(server_.user_dn("new"), "description"), IsEmpty());
}

TEST_F(LdapEntryChildrenTest, StoresBlanksWhereTheSchemaDoesNotSayWhatIsRequired) {
    RewritingProxy without_classes(server_.server(), "objectClasses", "otherClasses_");
    bound(without_classes.server());
    create(entry_, user(u"first"));
    const long before = adds();
    create(entry_, {{u"cn", u"new"}, {u"sn", u""}, {u"objectClass", u"person"}});
    EXPECT_EQ(adds() - before, 2);
    EXPECT_THAT(probe_.values(server_.user_dn("new"), "sn"), ElementsAre(" "));
}

TEST_F(LdapEntryChildrenTest, IsToldWhatIsRequiredWhereABlankIsNoValueOfIt) {
    const Failure failure = failure_of([&] {
        create(bound(), {{u"cn", u"new"}, {u"member", u""}, {u"objectClass", u"groupOfNames"}});
    });
    EXPECT_EQ(failure.number, error_number(0x80072014));
    EXPECT_EQ(failure.description,
              u"(65) The entry does not agree with its object class. object class 'groupOfNames' "
              u"requires attribute 'member'");
}

TEST_F(LdapEntryChildrenTest, HasThePasswordHashedByTheServer) {
    create(bound(), user(u"new", u"n\u00E9w password"));
    const std::string name = server_.user_dn("new");
    EXPECT_THAT(probe_.values(name, "userPassword"), ElementsAre(StartsWith("{SSHA}")));
    EXPECT_EQ(LdapProbe(server_.url()).bind(name, "n\xC3\xA9w password"), 0);
}

TEST_F(LdapEntryChildrenTest, HashesThePasswordItselfForAServerThatDoesNot) {
    RewritingProxy without_password_modify(server_.server(), "1.3.6.1.4.1.4203.1.11.1",
                                           "1.3.6.1.4.1.4203.1.11.9");
    create(bound(without_password_modify.server()), user(u"new", u"n\u00E9w password"));
    const std::string name = server_.user_dn("new");
    EXPECT_THAT(probe_.values(name, "userPassword"), ElementsAre(StartsWith("{CRYPT}$y$")));
    EXPECT_EQ(LdapProbe(server_.url()).bind(name, "n\xC3\xA9w password"), 0);
}

TEST_F(LdapEntryChildrenTest, TakesSeveralNamesOfOneAttributeForOne) {
    create(bound(),
           {{u"cn", u"new"},
            {u"CN", u"new"},
            {u"commonName", u"new"},
            {u"OBJECTCLASS", u"person"},
            {u"surname", u"a"},
            {u"sn", u"b"}},
           u"CN");
    EXPECT_THAT(probe_.values(server_.user_dn("new"), "cn"), ElementsAre("new"));
    EXPECT_THAT(probe_.values(server_.user_dn("new"), "sn"), ElementsAre("a", "b"));
}

TEST_F(LdapEntryChildrenTest, TakesTheClassesOfTheCallWhereTheAttributesHoldNone) {
    const Variant classes[] = {u"orvoPerson", Values{u"orvoPerson"},
                               Values{Values{u"orvoPerson", u"top"}}};
    for (const Variant& given : classes) {
        create(bound(), {{u"cn", u"new"}}, u"cn", given);
        EXPECT_THAT(probe_.values(server_.user_dn("new"), "objectClass"),
                    testing::Contains("orvoPerson"));
        ASSERT_EQ(probe_.remove(server_.user_dn("new")), 0);
    }
}

TEST_F(LdapEntryChildrenTest, RefusesAnEntryThatIsThere) {
    for (const char16_t* name : {u"jsmith", u"JSMITH", u"smith,  john"}) {
        const auto before = everything();
        const Failure failure = failure_of([&] { create(bound(), user(name, u"secret")); });
        EXPECT_EQ(failure.number, error_number(0x8004044F));
        EXPECT_EQ(failure.description, u"(68) The specified entry already exists.");
        EXPECT_EQ(everything(), before);
    }
}

TEST_F(LdapEntryChildrenTest, RefusesValuesThatCannotBeStored) {
    bound();
    Given given = user(u"new");
    given[4].second = u"four";
    EXPECT_EQ(failure_of([&] { create(entry_, given); }).number, 13);
    given = user(u"new");
    given[1].second = Variant::null();
    EXPECT_EQ(failure_of([&] { create(entry_, given); }).number, 94);
    given = user(u"new");
    given[2].second = Values{u"a", u"b"};
    EXPECT_EQ(failure_of([&] { create(entry_, given); }).number, 13);
    given = user(u"new");
    given.push_back({u"noSuchAttribute", u"x"});
    EXPECT_EQ(failure_of([&] { create(entry_, given); }).number, error_number(0x8007200C));
    Variant classes = u"orvoPerson";
    Text naming = u"cn";
    Object nothing;
    EXPECT_EQ(failure_of([&] { entry_.CreateChild(classes, naming, nothing); }).number, 91);
    EXPECT_THAT(probe_.find("ou=Users,o=Shop", "(cn=new)"), IsEmpty());
}

TEST_F(LdapEntryChildrenTest, RefusesANamingAttributeWithoutExactlyOneValue) {
    const std::pair<Given, Text> wrong[] = {
        {{{u"sn", u"x"}}, u"cn"},
        {{{u"cn", u""}}, u"cn"},
        {{{u"cn", Values{u"a", u"b"}}}, u"cn"},
        {{{u"cn", u"a"}, {u"CN", u"b"}}, u"cn"},
    };
    for (const auto& [given, naming] : wrong) {
        const Failure failure = failure_of([&] { create(bound(), given, naming); });
        EXPECT_EQ(failure.number, error_number(0x80072032));
        EXPECT_EQ(failure.description,
                  u"(34) The distinguished name is not valid. The naming attribute 'cn' must have "
                  u"one value.");
    }
    const Failure failure = failure_of([&] { create(bound(), {{u"cn=a,ou", u"x"}}, u"cn=a,ou"); });
    EXPECT_EQ(failure.description,
              u"(34) The distinguished name is not valid. 'cn=a,ou' cannot be the naming "
              u"attribute.");
}

TEST_F(LdapEntryChildrenTest, TellsMissingRights) {
    Text address = from_utf8(server_.server()), container = users, name;
    Text user_name = from_utf8(server_.user_dn("jsmith"));
    Secret password(u"shop-sample");
    Variant nothing = Values{};
    entry_.Bind(address, container, name, user_name, password, nothing);
    EXPECT_EQ(failure_of([&] { create(entry_, user(u"new")); }).number, error_number(0x80072098));
    EXPECT_EQ(failure_of([&] { remove(entry_, u"cn=djansen,ou=Users,o=Shop"); }).number,
              error_number(0x80072098));
}

TEST_F(LdapEntryChildrenTest, DeletesAnEntryOfTheContainer) {
    remove(bound(), u"cn=djansen,ou=Users,o=Shop");
    EXPECT_THAT(probe_.find("ou=Users,o=Shop", "(cn=djansen)"), IsEmpty());
    remove(bound(), u"cn=Smith, John,ou=Users,o=Shop");
    EXPECT_THAT(probe_.find("ou=Users,o=Shop", "(cn=Smith, John)"), IsEmpty());
    remove(bound(server_.server(), u"o=Shop/ou=Users"), u"cn=jsmith,o=Shop/ou=Users");
    EXPECT_THAT(probe_.find("ou=Users,o=Shop", "(cn=jsmith)"), IsEmpty());
}

TEST_F(LdapEntryChildrenTest, RefusesToDeleteAMissingEntry) {
    const Failure failure = failure_of([&] { remove(bound(), u"cn=nobody,ou=Users,o=Shop"); });
    EXPECT_EQ(failure.number, error_number(0x80072030));
    EXPECT_EQ(failure.description,
              u"(32) There is no such entry. The nearest entry is 'ou=Users,o=Shop'.");
}

TEST_F(LdapEntryChildrenTest, RefusesToDeleteWhatIsNotBelowTheContainer) {
    const auto before = everything();
    for (const char16_t* name : {u"", u"ou=Users,o=Shop", u",ou=Users,o=Shop", u"o=Shop",
                                 u"cn=Buyers,ou=Profiles,o=Shop", u"cn=jsmith"}) {
        const Failure failure = failure_of([&] { remove(bound(), name); });
        EXPECT_EQ(failure.number, error_number(0x80072032)) << to_utf8(name);
        EXPECT_EQ(failure.description, u"(34) The distinguished name is not valid. '" + Text(name) +
                                           u"' is not below 'ou=Users,o=Shop'.");
    }
    EXPECT_EQ(everything(), before);
}

TEST_F(LdapEntryChildrenTest, RefusesToDeleteAnEntryWithOthersBelowIt) {
    ASSERT_EQ(probe_.add("cn=child," + server_.user_dn("jsmith"),
                         {{"objectClass", {"orvoProfile"}}, {"cn", {"child"}}}),
              0);
    EXPECT_EQ(failure_of([&] { remove(bound(), u"cn=jsmith,ou=Users,o=Shop"); }).number,
              error_number(0x80072015));
    remove(bound(), u"cn=child,cn=jsmith,ou=Users,o=Shop");
    remove(bound(), u"cn=jsmith,ou=Users,o=Shop");
}

TEST_F(LdapEntryChildrenTest, MustBeBound) {
    EXPECT_EQ(failure_of([&] { create(entry_, user(u"new")); }).number, 91);
    EXPECT_EQ(failure_of([&] { remove(entry_, u"cn=jsmith,ou=Users,o=Shop"); }).number, 91);
}

// Passwords that are not set.

TEST(LdapEntryWithAPasswordPolicy, IsNotLeftBehindWhereTheFirstPasswordIsRefused) {
    PrivateSlapd server({.password_policy = true});
    LdapProbe probe(server.url(), server.root_dn(), server.root_password());
    LdapEntry container{Limits{2s, 2s}};
    Text address = from_utf8(server.server()), ou = users, name;
    Text service = from_utf8(server.service_dn());
    Secret password(u"service-sample");
    Variant nothing = Values{};
    container.Bind(address, ou, name, service, password, nothing);

    const Failure failure = failure_of([&] { create(container, user(u"new", u"short")); });
    EXPECT_EQ(failure.number, error_number(0x8007202F));
    EXPECT_EQ(failure.description,
              u"(19) The value violates a constraint. Password fails quality checking policy");
    EXPECT_THAT(probe.find("ou=Users,o=Shop", "(cn=new)"), IsEmpty());

    create(container, user(u"new", u"long enough"));
    EXPECT_EQ(LdapProbe(server.url()).bind(server.user_dn("new"), "long enough"), 0);
}

TEST(LdapEntryThatMayNotBeDeleted, SaysThatTheEntryIsLeftWithoutAPassword) {
    PrivateSlapd server({.config = "restrict delete extended=1.3.6.1.4.1.4203.1.11.1"});
    LdapEntry container{Limits{2s, 2s}};
    Text address = from_utf8(server.server()), ou = users, name;
    Text service = from_utf8(server.service_dn());
    Secret password(u"service-sample");
    Variant nothing = Values{};
    container.Bind(address, ou, name, service, password, nothing);
    const Failure failure = failure_of([&] { create(container, user(u"new", u"secret")); });
    EXPECT_EQ(failure.number, error_number(0x80072035));
    EXPECT_EQ(failure.description,
              u"(53) The server is unwilling to perform the request. extended operation restricted "
              u"The entry 'cn=new,ou=Users,o=Shop' is left without a password: (53) The server is "
              u"unwilling to perform the request. operation restricted");
}

// Servers that come and go.

TEST_F(LdapEntryChildrenTest, WorksAgainOnceTheServerIsBack) {
    bound();
    server_.stop();
    const Failure gone = failure_of([&] { create(entry_, user(u"new", u"secret")); });
    EXPECT_EQ(gone.number, error_number(0x8007203A));
    EXPECT_THAT(to_utf8(gone.description), StartsWith("(81) The server cannot be reached."));
    EXPECT_EQ(failure_of([&] { remove(entry_, u"cn=jsmith,ou=Users,o=Shop"); }).number,
              error_number(0x8007203A));
    server_.start();
    create(entry_, user(u"new", u"secret"));
    server_.stop();
    server_.start();
    remove(entry_, u"cn=new,ou=Users,o=Shop");
    LdapProbe probe(server_.url(), server_.root_dn(), server_.root_password());
    EXPECT_THAT(probe.find("ou=Users,o=Shop", "(cn=new)"), IsEmpty());
}

TEST_F(LdapEntryChildrenTest, EndsWaitingForASilentServer) {
    bound();
    create(entry_, user(u"first"));
    server_.pause();
    const Failure failure = failure_of([&] { create(entry_, user(u"second")); });
    server_.resume();
    EXPECT_EQ(failure.number, error_number(0x8007203A));
    EXPECT_EQ(failure.description, no_answer_of(server_.server(), 2s) +
                                       u" The entry 'cn=second,ou=Users,o=Shop' may exist.");
    remove(entry_, u"cn=first,ou=Users,o=Shop");
}

}  // namespace
}  // namespace orvo::directory::ldap
