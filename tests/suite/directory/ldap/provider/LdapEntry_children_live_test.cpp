#include <gmock/gmock.h>

#include "platform/interfaces/call.h"
#include "platform/objects/dictionary/dictionary.h"
#include "platform/values/values.h"
#include "suite/directory/ldap/provider/LdapEntry.h"
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
    LdapEntry& bound(const std::string& server) {
        Text address = from_utf8(server), container = users, name;
        Text user = from_utf8(server_.service_dn());
        Secret password = Secret::of_bytes(server_.service_password());
        Variant nothing = Values{};
        entry_.Bind(address, container, name, user, password, nothing);
        return entry_;
    }
    LdapEntry& bound() { return bound(server_.server()); }

    // Requests for a new entry that have reached the server.
    long adds() {
        return std::stol(
            probe_.values("cn=Add,cn=Operations,cn=Monitor", "monitorOpInitiated").at(0));
    }

    PrivateSlapd server_;
    LdapProbe probe_{server_.url(), server_.root_dn(), server_.root_password()};
    LdapEntry entry_{Limits{2s, 2s}};
};

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

TEST_F(LdapEntryChildrenTest, HashesThePasswordItselfForAServerThatDoesNot) {
    RewritingProxy without_password_modify(server_.server(), "1.3.6.1.4.1.4203.1.11.1",
                                           "1.3.6.1.4.1.4203.1.11.9");
    create(bound(without_password_modify.server()), user(u"new", u"n\u00E9w password"));
    const std::string name = server_.user_dn("new");
    EXPECT_THAT(probe_.values(name, "userPassword"), ElementsAre(StartsWith("{CRYPT}$y$")));
    EXPECT_EQ(LdapProbe(server_.url()).bind(name, "n\xC3\xA9w password"), 0);
}

// Passwords that are not set.

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
