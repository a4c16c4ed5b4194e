#include "suite/directory/ldap/wire/session.h"

#include <gmock/gmock.h>

#include <chrono>
#include <set>

#include "tests/suite/directory/expect_failure.h"
#include "tests/suite/directory/ldap/support/bad_server.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::HasSubstr;

const Limits impatient{300ms, 300ms, 300ms};

// The server answers no request of one that ran as long as this.
constexpr auto far_too_long = 10s;

ServerHost host(const std::string& text) {
    return ServerAddress::parse(from_utf8(text)).hosts().front();
}

Secret secret(const std::string& text) { return Secret::of_bytes(text); }

const Attribute* find(const EntryData& entry, const std::string& name) {
    for (const Attribute& attribute : entry.attributes)
        if (attribute.name == name) return &attribute;
    return nullptr;
}

PrivateSlapd& shop() {
    static PrivateSlapd server;
    return server;
}

Session service_session() {
    Session session = Session::connect(host(shop().server()));
    check(session.bind(shop().service_dn(), secret(shop().service_password())));
    return session;
}

TEST(Session, ReadsOneEntryWithTheAttributesAskedFor) {
    Session session = service_session();
    const ReadResult read = session.read(shop().user_dn("djansen"), {"givenName", "OrvoApps"});
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(read.entry.name, "cn=djansen,ou=Users,o=Shop");
    ASSERT_EQ(read.entry.attributes.size(), 2u);
    EXPECT_THAT(find(read.entry, "givenName")->values, ElementsAre("Dani\xC3\xABl"));
    EXPECT_THAT(find(read.entry, "OrvoApps")->values, ElementsAre("1", "3"));
}

TEST(Session, ReadsNoAttributesWhenAskedForNone) {
    Session session = service_session();
    const ReadResult read = session.read(shop().user_dn("djansen"), {"1.1"});
    EXPECT_TRUE(read.ok());
    EXPECT_TRUE(read.entry.attributes.empty());
}

TEST(Session, TellsTheNearestEntryOfAMissingOne) {
    Session session = service_session();
    const ReadResult read = session.read("cn=nobody,ou=Users,o=Shop", {"1.1"});
    EXPECT_EQ(read.code, 32);
    EXPECT_EQ(read.nearest_entry, "ou=Users,o=Shop");
    const Failure failure = failure_of([&] { check(read); });
    EXPECT_EQ(failure.number, error_number(0x80072030));
    EXPECT_EQ(failure.description,
              u"(32) There is no such entry. The nearest entry is 'ou=Users,o=Shop'.");
}

TEST(Session, KnowsWhomTheServerTakesItFor) {
    Session session = Session::connect(host(shop().server()));
    EXPECT_EQ(session.who_am_i().identity, "");
    check(session.bind(shop().service_dn(), secret(shop().service_password())));
    const WhoAmIResult result = session.who_am_i();
    EXPECT_TRUE(result.ok());
    EXPECT_EQ(result.identity, "dn:cn=orvo-service,ou=Services,o=Shop");
}

TEST(Session, SeemsOpenUntilTheServerClosesIt) {
    PrivateSlapd server({.tls = true});
    std::vector<Session> sessions;
    sessions.push_back(Session::connect(host(server.server())));
    sessions.push_back(
        Session::connect(host(server.tls_url() + "/?cafile=" + server.ca_file().string())));
    for (Session& session : sessions) {
        check(session.bind(server.service_dn(), secret(server.service_password())));
        EXPECT_TRUE(session.seems_open());
        session.read("", {"1.1"});
        EXPECT_TRUE(session.seems_open());
    }
    server.stop();
    for (const Session& session : sessions) EXPECT_FALSE(session.seems_open());
}

TEST(Session, WaitsAsLongAsItsNewLimitsSay) {
    PrivateSlapd server;
    Session session = Session::connect(host(server.server()));
    session.set_limits(impatient);
    server.pause();
    const auto begin = steady_clock::now();
    EXPECT_EQ(session.read("", {"1.1"}).code, 85);
    EXPECT_LT(steady_clock::now() - begin, far_too_long);
    server.resume();
}

TEST(Session, RefusesAWrongPasswordAsAValue) {
    Session session = Session::connect(host(shop().server()));
    EXPECT_EQ(session.bind(shop().service_dn(), secret("wrong")).code, 49);
    EXPECT_EQ(session.bind("cn=nobody,o=Shop", secret("wrong")).code, 49);
    EXPECT_EQ(session.bind("nobody", secret("wrong")).code, 34);
    EXPECT_TRUE(session.bind("", Secret()).ok());
    EXPECT_TRUE(session.bind(shop().service_dn(), secret(shop().service_password())).ok());
}

TEST(Session, HandsManyEntriesOverOneByOne) {
    Session session = service_session();
    SearchRequest request;
    request.base = "ou=Users,o=Shop";
    request.scope = Scope::one_level;
    request.filter = "(objectClass=orvoPerson)";
    std::size_t entries = 0;
    std::size_t attributes = 0;
    const Result found = session.search(request, [&](EntryData&& entry) {
        ++entries;
        attributes += entry.attributes.size();
    });
    EXPECT_TRUE(found.ok());
    LdapProbe probe(shop().url(), shop().service_dn(), shop().service_password());
    EXPECT_EQ(entries, probe.find("ou=Users,o=Shop", "(objectClass=orvoPerson)").size());
    EXPECT_GT(attributes, entries * 4);
}

TEST(Session, RefusesAFilterThatCannotBeRead) {
    Session session = service_session();
    SearchRequest request;
    request.filter = "(((";
    EXPECT_EQ(session.search(request, [](EntryData&&) {}).code, 87);
}

TEST(Session, SendsControlsAlongUntilTheyAreTakenBack) {
    PrivateSlapd server;
    Session session = Session::connect(host(server.server()));
    check(session.bind(server.root_dn(), secret(server.root_password())));
    const std::string user = server.user_dn("djansen");
    const Replacement change{"sn", {"Janssen"}};
    const Control no_operation{"1.3.6.1.4.1.4203.666.5.2", {}, true};
    const Control unknown{"1.3.6.1.4.1.4203.666.1000", {}, true};
    LdapProbe probe(server.url(), server.root_dn(), server.root_password());

    session.set_controls({&no_operation, 1});
    EXPECT_EQ(session.modify(user, {&change, 1}).code, 0x410E);
    session.set_controls({&unknown, 1});
    EXPECT_EQ(session.modify(user, {&change, 1}).code, 12);
    EXPECT_THAT(probe.values(user, "sn"), ElementsAre("Jansen"));
    session.set_controls({});
    EXPECT_EQ(session.modify(user, {&change, 1}).code, 0);
    EXPECT_THAT(probe.values(user, "sn"), ElementsAre("Janssen"));
}

TEST(Session, ReplacesAndRemovesValuesAtOnce) {
    PrivateSlapd server;
    Session session = Session::connect(host(server.server()));
    check(session.bind(server.root_dn(), secret(server.root_password())));
    const std::string user = server.user_dn("djansen");
    const Replacement changes[] = {
        {"OrvoApps", {"7", "8", "9"}}, {"CostCenter", {}}, {"ManagerCN", {}}, {"sn", {"Janssen"}}};
    EXPECT_TRUE(session.modify(user, changes).ok());
    LdapProbe probe(server.url(), server.root_dn(), server.root_password());
    EXPECT_THAT(probe.values(user, "OrvoApps"), ElementsAre("7", "8", "9"));
    EXPECT_THAT(probe.values(user, "CostCenter"), ElementsAre());
    EXPECT_THAT(probe.values(user, "sn"), ElementsAre("Janssen"));

    const Replacement refused[] = {{"sn", {"Jansen"}}, {"OrvoUserType", {"no number"}}};
    EXPECT_EQ(session.modify(user, refused).code, 21);
    EXPECT_THAT(probe.values(user, "sn"), ElementsAre("Janssen"));
}

TEST(Session, AddsAndRemovesAnEntry) {
    PrivateSlapd server;
    Session session = Session::connect(host(server.server()));
    check(session.bind(server.root_dn(), secret(server.root_password())));
    const std::string name = "cn=Smith\\, Ann,ou=Users,o=Shop";
    const Attribute attributes[] = {{"objectClass", {"orvoPerson", "top"}},
                                    {"cn", {"Smith, Ann", "Ann"}},
                                    {"OrvoRole", {"2", "3"}}};
    ASSERT_TRUE(session.add(name, attributes).ok());
    LdapProbe probe(server.url(), server.root_dn(), server.root_password());
    EXPECT_THAT(probe.values(name, "cn"), ElementsAre("Smith, Ann", "Ann"));
    EXPECT_THAT(probe.values(name, "OrvoRole"), ElementsAre("2", "3"));
    EXPECT_EQ(session.add(name, attributes).code, 68);
    EXPECT_EQ(session.remove("ou=Users,o=Shop").code, 66);
    EXPECT_TRUE(session.remove(name).ok());
    EXPECT_EQ(session.remove(name).code, 32);
}

TEST(Session, ChangesAPassword) {
    PrivateSlapd server;
    Session session = Session::connect(host(server.server()));
    check(session.bind(server.service_dn(), secret(server.service_password())));
    EXPECT_TRUE(session.change_password(server.user_dn("djansen"), secret("n\xC3\xA9w")).ok());
    LdapProbe probe(server.url());
    EXPECT_EQ(probe.bind(server.user_dn("djansen"), "n\xC3\xA9w"), 0);
    EXPECT_EQ(probe.bind(server.user_dn("djansen"), server.user_password()), 49);
}

TEST(Session, CarriesLargeValuesBothWays) {
    PrivateSlapd server;
    Session session = Session::connect(host(server.server()));
    check(session.bind(server.root_dn(), secret(server.root_password())));
    std::string large(3000000, 'x');
    for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<char>('a' + i % 26);
    const Replacement change{"description", {large}};
    ASSERT_TRUE(session.modify("o=Shop", {&change, 1}).ok());
    const ReadResult read = session.read("o=Shop", {"description"});
    ASSERT_TRUE(read.ok());
    EXPECT_TRUE(find(read.entry, "description")->values[0] == large);
}

TEST(Session, OfAHostThatRefusesNamesIt) {
    const std::string server = refused_server();
    const Failure failure = failure_of([&] { Session::connect(host(server), impatient); });
    EXPECT_EQ(failure.number, error_number(0x8007203A));
    EXPECT_EQ(failure.description, from_utf8("(81) The server cannot be reached. 'ldap://" +
                                             server + "': Connection refused"));
}

TEST(Session, OfAHostThatDoesNotExistSaysSo) {
    const Failure failure =
        failure_of([] { Session::connect(host("no-such-host.invalid"), impatient); });
    EXPECT_EQ(failure.number, error_number(0x8007203A));
    EXPECT_THAT(
        to_utf8(failure.description),
        HasSubstr("(81) The server cannot be reached. 'ldap://no-such-host.invalid:389': "));
}

TEST(Session, EncryptsAndVerifiesWithBothKindsOfEncryption) {
    PrivateSlapd server({.tls = true});
    const std::string options = "cafile=" + server.ca_file().string();
    for (const std::string& text :
         {server.tls_url() + "/?" + options, server.url() + "/?starttls&" + options}) {
        Session session = Session::connect(host(text));
        EXPECT_TRUE(session.bind(server.service_dn(), secret(server.service_password())).ok());
        EXPECT_TRUE(session.read("ou=Users,o=Shop", {"ou"}).ok()) << text;
    }
}

TEST(Session, NamesACertificateFileThatCannotBeUsed) {
    const Failure failure = failure_of(
        [&] { Session::connect(host(shop().url() + "/?starttls&cafile=/nowhere/ca.pem")); });
    EXPECT_EQ(failure.number, error_number(0x8007203B));
    EXPECT_EQ(failure.description,
              from_utf8("(82) The directory client met an error. '" + shop().url() +
                        "': The certificates of '/nowhere/ca.pem' cannot be used."));
}

TEST(Session, DoesNotGoOnInClearTextWhereStartTlsIsRefused) {
    const Failure failure =
        failure_of([&] { Session::connect(host(shop().url() + "/?starttls")); });
    EXPECT_NE(failure.number, 0);
    EXPECT_THAT(to_utf8(failure.description), HasSubstr(shop().url()));
}

TEST(Session, TellsWhereAServerRefersTo) {
    BadServer server({.answer = "\x30\x2A\x02\x01\x01\x67\x25\x0A\x01\x0A\x04\x00\x04\x04read"
                                "\xA3\x18\x04\x0Aldap://a/o\x04\x0Aldap://b/o"s});
    Session session = Session::connect(host(server.server()), impatient);
    const Replacement change{"sn", {"x"}};
    const Result result = session.modify("o=Shop", {&change, 1});
    EXPECT_EQ(result.code, 10);
    EXPECT_EQ(result.message, "read");
    EXPECT_THAT(result.referrals, ElementsAre("ldap://a/o", "ldap://b/o"));
}

// Bad neighbours.

void expect_bind_fails(const BadServer& server, const std::set<int>& codes) {
    const auto begin = steady_clock::now();
    Session session = Session::connect(host(server.server()), impatient);
    const Result bind = session.bind("cn=a", secret("b"));
    EXPECT_THAT(codes, testing::Contains(bind.code)) << bind.message;
    EXPECT_TRUE(bind.connection_failed());
    EXPECT_EQ(failure_of([&] { check(bind); }).number, error_number(0x8007203A));
    EXPECT_LT(steady_clock::now() - begin, far_too_long);
}

TEST(Session, EndsWaitingForAServerThatNeverAnswers) {
    BadServer server({});
    expect_bind_fails(server, {85});
}

TEST(Session, NoticesAServerThatClosesAtOnce) {
    BadServer server({.waits_for_a_request = false, .keeps_the_connection = false});
    expect_bind_fails(server, {81});
}

TEST(Session, NoticesAServerThatClosesInsteadOfAnswering) {
    BadServer server({.keeps_the_connection = false});
    expect_bind_fails(server, {81});
}

TEST(Session, GivesUpOnGarbage) {
    BadServer server({.answer = "HTTP/1.1 400 Bad Request\r\n\r\n"});
    expect_bind_fails(server, {81, 84, 85});
}

TEST(Session, EndsWaitingForTheRestOfAMessage) {
    BadServer server({.answer = "\x30\x0C\x02\x01"s});
    expect_bind_fails(server, {85});
}

TEST(Session, GivesUpOnAMessageThatIsTooLong) {
    BadServer server({.answer = "\x30\x84\x7F\xFF\xFF\xFF\x02\x01\x01"s});
    Session session = Session::connect(host(server.server()), impatient);
    const Result bind = session.bind("cn=a", secret("b"));
    EXPECT_EQ(to_utf8(failure_of([&] { check(bind); }).description),
              "(84) The server's answer cannot be read. It is longer than 64 MiB.");
}

TEST(Session, EndsWaitingForAnEncryptionThatDoesNotBegin) {
    BadServer silent({});
    BadServer half({.answer = "\x30\x0C\x02\x01\x01\x78\x07\x0A\x01\x00\x04\x00\x04\x00"s});
    for (const std::string& text : {"ldaps://" + silent.server(), silent.server() + "?starttls",
                                    half.server() + "?starttls"}) {
        const auto begin = steady_clock::now();
        const Failure failure = failure_of([&] { Session::connect(host(text), impatient); });
        EXPECT_EQ(failure.number, error_number(0x8007203A)) << text;
        EXPECT_LT(steady_clock::now() - begin, far_too_long) << text;
    }
}

TEST(Session, EndsWaitingForAServerThatFallsSilent) {
    PrivateSlapd server;
    Session session = Session::connect(host(server.server()), impatient);
    Session writing = Session::connect(host(server.server()), impatient);
    server.pause();
    EXPECT_EQ(session.read("o=Shop", {"o"}).code, 85);
    // More than the system's buffers hold: writing has an end as well.
    const Replacement change{"description", {std::string(20000000, 'x')}};
    const Result result = writing.modify("o=Shop", {&change, 1});
    EXPECT_EQ(result.code, 85);
    EXPECT_TRUE(result.sent);
    server.resume();
}

TEST(Session, OfAServerThatWentAwayIsOfNoUse) {
    PrivateSlapd server;
    Session session = Session::connect(host(server.server()));
    check(session.bind(server.service_dn(), secret(server.service_password())));
    server.stop();
    // Writing to a closed connection ends in a result, not in a signal; so does doing it again.
    for (int attempt = 0; attempt < 4; ++attempt) EXPECT_EQ(session.read("o=Shop", {"o"}).code, 81);
}

}  // namespace
}  // namespace orvo::directory::ldap
