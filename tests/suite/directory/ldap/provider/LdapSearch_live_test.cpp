#include "suite/directory/ldap/provider/LdapSearch.h"

#include <gmock/gmock.h>

#include <chrono>
#include <fstream>

#include "platform/interfaces/call.h"
#include "platform/objects/recordset/record_set_contract.h"
#include "platform/values/values.h"
#include "suite/directory/entries/entry_order.h"
#include "suite/directory/ldap/provider/LdapDirectory.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/suite/directory/ldap/support/bad_server.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"
#include "tests/support/temp_folder.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::SizeIs;

using Rows = Ref<RecordSet>;
using Row = std::vector<Variant>;

struct Login {
    std::string user;
    std::string password;
};

void connect(LdapSearch& search, const std::string& server, const Login& login,
             Text container = u"ou=Users,o=Shop") {
    Text server_text = from_utf8(server);
    Text user = from_utf8(login.user);
    Secret password = Secret::of_bytes(login.password);
    search.Connect(server_text, container, user, password);
}

Rows execute(LdapSearch& search, Text filter, Variant attributes = Values{u"cn"},
             std::int32_t maximum = 1000) {
    return Rows::from(search.Execute(filter, attributes, maximum));
}

std::vector<Row> all(const Rows& rows) {
    const std::int32_t columns = call<&Fields::Count>(call<&RecordSet::Fields>(rows));
    std::vector<Row> result;
    for (; !call<&RecordSet::IsEof>(rows); call<&RecordSet::MoveNext>(rows)) {
        Row& row = result.emplace_back();
        for (std::int32_t column = 0; column < columns; ++column)
            row.push_back(call<&RecordSet::Collect>(rows, Variant(column)));
    }
    return result;
}

std::vector<std::string> first_column(const Rows& rows) {
    std::vector<std::string> values;
    for (const Row& row : all(rows)) values.push_back(to_utf8(row[0].to<Text>()));
    return values;
}

// The sample shop, which no test here changes.
PrivateSlapd& shop() {
    static PrivateSlapd server;
    return server;
}

Login service(const PrivateSlapd& server = shop()) {
    return {server.service_dn(), server.service_password()};
}

class LdapSearchTest : public testing::Test {
protected:
    LdapSearch& connected(Text container = u"ou=Users,o=Shop") {
        connect(search_, shop().server(), service(), container);
        return search_;
    }
    std::vector<std::string> found(Text filter, std::int32_t maximum = 1000) {
        return first_column(execute(connected(), filter, Values{u"cn"}, maximum));
    }

    LdapSearch search_{Limits{2s, 2s, 2s}};
};

TEST_F(LdapSearchTest, OrdersRowsByTheNamingAttribute) {
    EXPECT_THAT(found(u"(sn=Smith)"),
                ElementsAre("Ann \"Andy\" <Smith>; =", "jsmith", "Smith, John"));
    EXPECT_THAT(found(u"(&(BusinessPartnerID=1006)(!(mail=*)))"),
                ElementsAre("#1 Buyer", "Ann \"Andy\" <Smith>; =", "ashchukin", "back\\slash",
                            "O'Brien", "Research+Development", "Smith, John", "Temp (night) *"));
}

TEST_F(LdapSearchTest, OrdersAndKeepsNamesBeyondAscii) {
    EXPECT_THAT(
        found(u"(&(BusinessPartnerID=1007)(!(mail=*)))"),
        ElementsAre("epapadopoulos", "J\xC3\xB6rg Wei\xC3\x9F",
                    "\xC5\x81ukasz \xC5\xBB\xC3\xB3\xC5\x82\xC4\x87", "skostis",
                    "\xCE\x95\xCE\xBB\xCE\xAD\xCE\xBD\xCE\xB7 "
                    "\xCE\x95\xCE\xBB\xCE\xBB\xCE\xAC\xCE\xB4\xCE\xB1",
                    "\xD0\x96\xD0\xB0\xD0\xBD\xD0\xBD\xD0\xB0 "
                    "\xD0\x96\xD1\x83\xD0\xBA\xD0\xBE\xD0\xB2\xD0\xB0",
                    "\xE5\xB1\xB1\xE7\x94\xB0 \xE5\xA4\xAA\xE9\x83\x8E", "\xF0\x9F\x98\x80 Emoji"));
}

TEST_F(LdapSearchTest, ReturnsTheFirstInOrderOfMoreThanTheMaximum) {
    const auto everybody = found(u"(OrvoUserType=*)");
    ASSERT_THAT(everybody, SizeIs(197));
    for (const std::int32_t maximum : {1, 2, 50, 196, 197, 198}) {
        std::vector<std::string> expected = everybody;
        expected.resize(std::min<std::size_t>(expected.size(), maximum));
        EXPECT_EQ(found(u"(OrvoUserType=*)", maximum), expected) << maximum;
    }
}

TEST_F(LdapSearchTest, TakesAMaximumOfZeroOrLessForNoLimit) {
    EXPECT_THAT(found(u"(OrvoUserType=*)", 0), SizeIs(197));
    EXPECT_THAT(found(u"(OrvoUserType=*)", -1), SizeIs(197));
}

TEST_F(LdapSearchTest, NamesAndOrdersColumnsAsTheyWereAskedFor) {
    const Rows rows = execute(connected(), u"(cn=jsmith)", Values{u"MAIL", u"Surname", u"Cn"});
    const Ref<Fields> fields = call<&RecordSet::Fields>(rows);
    ASSERT_EQ(call<&Fields::Count>(fields), 3);
    std::vector<Text> names;
    for (std::int32_t index = 0; index < 3; ++index)
        names.push_back(call<&Field::Name>(call<&Fields::Item>(fields, Variant(index))));
    EXPECT_THAT(names, ElementsAre(u"MAIL", u"Surname", u"Cn"));
    EXPECT_THAT(all(rows), ElementsAre(Row{u"john.smith@shop.example", u"Smith", u"jsmith"}));
}

TEST_F(LdapSearchTest, GivesNoValueOneTypedValueOrTheArrayOfSeveral) {
    const Values columns{u"cn", u"OrvoUserType", u"OrvoRole", u"mail", u"noSuchAttribute"};
    EXPECT_THAT(all(execute(connected(), u"(|(cn=jsmith)(cn=bare)(cn=twomails))", columns)),
                ElementsAre(Row{u"bare", Variant(), Variant(), Variant(), Variant()},
                            Row{u"jsmith", std::int32_t(1),
                                Values{std::int32_t(2), std::int32_t(3), std::int32_t(24)},
                                u"john.smith@shop.example", Variant()},
                            Row{u"twomails", std::int32_t(1), Variant(),
                                Values{u"first@shop.example", u"second@shop.example"}, Variant()}));
    EXPECT_THAT(all(execute(connected(), u"(cn=bigpartner)", u"BusinessPartnerID")),
                ElementsAre(Row{Currency{50000000000000}}));
    EXPECT_THAT(all(execute(connected(), u"(cn=jsmith)", u"creditcardexpirydate")),
                ElementsAre(Row{date_from_parts({2028, 12, 31, 0, 0, 0})}));
}

TEST_F(LdapSearchTest, StandsOnTheFirstRow) {
    const Rows rows = execute(connected(), u"(sn=Smith)");
    EXPECT_EQ(call<&RecordSet::State>(rows), adStateOpen);
    EXPECT_EQ(call<&RecordSet::RecordCount>(rows), 3);
    EXPECT_EQ(call<&RecordSet::AbsolutePosition>(rows), 1);
    EXPECT_EQ(call<&RecordSet::Collect>(rows, Variant(u"cn")), Variant(u"Ann \"Andy\" <Smith>; ="));
}

TEST_F(LdapSearchTest, OfNoEntriesIsAnOpenRecordSetWithoutRows) {
    const Rows rows = execute(connected(), u"(cn=nobody)", Values{u"cn", u"mail"});
    EXPECT_EQ(call<&RecordSet::State>(rows), adStateOpen);
    EXPECT_EQ(call<&RecordSet::RecordCount>(rows), 0);
    EXPECT_TRUE(call<&RecordSet::IsBof>(rows));
    EXPECT_TRUE(call<&RecordSet::IsEof>(rows));
    EXPECT_EQ(call<&Fields::Count>(call<&RecordSet::Fields>(rows)), 2);
}

TEST_F(LdapSearchTest, ReadsFiltersAsTheComponentWritesThem) {
    const std::pair<const char16_t*, std::size_t> filters[] = {
        {u"(& (objectClass=orvoPerson)(OrvoUserType=*))", 197},
        {u"(&(objectClass=orvoPerson)(!OrvoUserType = 0)(ProfileCN=Guests))", 17},
        {u"(& (objectClass=orvoPerson)(OrvoUserType=*)(! mail=*))", 48},
        {u"(&(objectClass=orvoPerson)(!OrvoUserType = 0)(|(ProfileCN=Sales) (ProfileCN=Guests)))",
         29},
        {u"cn=jsmith", 1},
        {u"(cn=Temp (night) \\2A)", 1},
        {u"(cn=J\u00F6rg Wei\u00DF)", 1},
    };
    for (const auto& [filter, count] : filters)
        EXPECT_THAT(found(filter), SizeIs(count)) << to_utf8(filter);
}

TEST_F(LdapSearchTest, RefusesAFilterThatCannotBeRead) {
    const Failure failure = failure_of([&] { found(u"(cn=a"); });
    EXPECT_EQ(failure.number, error_number(0x8007203E));
    EXPECT_EQ(failure.description,
              u"(87) The search filter is not valid. Character 1: the parenthesis is not closed. "
              u"The filter is '(cn=a'.");
}

TEST_F(LdapSearchTest, AColumnThatIsAskedForTwiceAppearsTwice) {
    connected();
    const auto rows = execute(search_, u"(cn=jsmith)", Values{u"cn", u"sn", u"CN"});
    const auto fields = call<&RecordSet::Fields>(rows);
    const auto shown = [&](int column) {
        const auto field = call<&Fields::Item>(fields, Variant(column));
        return call<&Field::Name>(field) + u"=" + call<&Field::Value>(field).to<Text>();
    };
    ASSERT_EQ(call<&Fields::Count>(fields), 3);
    EXPECT_EQ(shown(0), u"cn=jsmith");
    EXPECT_EQ(shown(1), u"sn=Smith");
    EXPECT_EQ(shown(2), u"CN=jsmith");
}

// Sent to the server they would be other names, which somebody may have.
TEST_F(LdapSearchTest, RefusesNamesThatNoDirectoryCanHave) {
    connected();
    const Text nul(u"cn\0", 3);
    for (const Text& name : {nul, Text(u"cn\xD83D")}) {
        const Failure failure = failure_of([&] { execute(search_, u"(cn=a)", Values{name}); });
        EXPECT_EQ(failure.number, error_number(0x8007203F));
        EXPECT_EQ(failure.description,
                  u"(89) A setting or argument is not valid. The name of an attribute holds a NUL "
                  u"or half of a surrogate pair.");
    }
    EXPECT_EQ(failure_of([&] { connected(u"ou=Users,o=Shop" + nul); }).description,
              u"(34) The distinguished name is not valid. A name cannot hold a NUL.");
    EXPECT_EQ(failure_of([&] { connected(u"ou=\xD83D,o=Shop"); }).description,
              u"(34) The distinguished name is not valid. A name cannot hold half of a surrogate "
              u"pair.");
}

TEST_F(LdapSearchTest, RefusesAContainerThatIsNotThere) {
    connected(u"ou=Nowhere,o=Shop");
    const Failure failure = failure_of([&] { execute(search_, u"(cn=*)"); });
    EXPECT_EQ(failure.number, error_number(0x80072030));
    EXPECT_EQ(failure.description, u"(32) There is no such entry. The nearest entry is 'o=Shop'.");
}

TEST_F(LdapSearchTest, LooksAtTheWholeTreeBelowTheContainer) {
    connected(u"o=Shop");
    EXPECT_THAT(first_column(execute(search_, u"(|(cn=Buyers)(cn=jsmith))")),
                ElementsAre("Buyers", "jsmith"));
    EXPECT_THAT(first_column(execute(search_, u"(objectClass=organization)", u"o")),
                ElementsAre("Shop"));
    connected(u"o=Shop/ou=Profiles");
    EXPECT_THAT(first_column(execute(search_, u"(|(cn=Buyers)(cn=jsmith))")),
                ElementsAre("Buyers"));
}

TEST_F(LdapSearchTest, ShowsAUserWhatTheServerLetsItSee) {
    connect(search_, shop().server(), {shop().user_dn("jsmith"), shop().user_password()});
    EXPECT_THAT(all(execute(search_, u"(cn=glee)", Values{u"cn", u"sn", u"SpendLimit"})),
                ElementsAre(Row{u"glee", u"Lee", Variant()}));
}

TEST_F(LdapSearchTest, RefusesWrongCredentials) {
    for (const Login& login : {Login{shop().service_dn(), "wrong"},
                               Login{"cn=nobody,o=Shop", "wrong"}, Login{"nobody", "wrong"}}) {
        const Failure failure = failure_of([&] { connect(search_, shop().server(), login); });
        EXPECT_EQ(failure.number, error_number(0x8007052E)) << login.user;
    }
}

TEST_F(LdapSearchTest, RefusesAnEmptyPasswordWithoutAskingTheServer) {
    BadServer silent({});
    const Failure failure = failure_of([&] {
        connect(search_, silent.server(), {"cn=a,o=Shop", ""});
    });
    EXPECT_EQ(failure.number, error_number(0x8007052E));
    EXPECT_EQ(failure.description,
              u"(49) The user name or the password is wrong. A password is required.");
    EXPECT_EQ(silent.connections(), 0);
}

TEST_F(LdapSearchTest, MustBeConnected) {
    EXPECT_EQ(failure_of([&] { execute(search_, u"(cn=*)"); }).number, 91);
    connected();
    EXPECT_NE(failure_of([&] { connect(search_, refused_server(), service()); }).number, 0);
    EXPECT_EQ(failure_of([&] { execute(search_, u"(cn=*)"); }).number, 91);
}

TEST_F(LdapSearchTest, WorksThroughItsSlots) {
    const auto search = call<&DirectoryModule::CreateSearch>(make<LdapDirectory>());
    Text server = from_utf8(shop().server()), container = u"ou=Users,o=Shop";
    Text user = from_utf8(service().user);
    Secret password = Secret::of_bytes(service().password);
    call<&DirectorySearch::Connect>(search, server, container, user, password);
    Text filter = u"(sn=Smith)";
    Variant attributes = Values{u"cn"};
    const Object rows = call<&DirectorySearch::Execute>(search, filter, attributes, 2);
    EXPECT_THAT(first_column(Rows::from(rows)), ElementsAre("Ann \"Andy\" <Smith>; =", "jsmith"));
}

// Servers of a test's own.
class LdapSearchServerTest : public testing::Test {
protected:
    LdapSearch search_{Limits{2s, 2s, 2s}};
};

TEST_F(LdapSearchServerTest, IsNotCutByTheServersLimitForOneAnswer) {
    TempFolder folder;
    const std::filesystem::path file = folder.path() / "shop.ldif";
    std::ofstream(file) << output_of(
        {ORVO_SOURCE_DIR "/examples/directory/make-shop", "--users", "2300"});
    PrivateSlapd server({.shop = file});
    LdapProbe probe(server.url(), server.service_dn(), server.service_password());
    ASSERT_EQ(probe.search_result("ou=Users,o=Shop", "(objectClass=orvoPerson)"), 4);

    connect(search_, server.server(), service(server));
    const auto everybody =
        first_column(execute(search_, u"(objectClass=orvoPerson)", Values{u"cn"}, 32767));
    EXPECT_THAT(everybody, SizeIs(2300));
    EXPECT_TRUE(std::is_sorted(everybody.begin(), everybody.end(), [](auto& a, auto& b) {
        return order_key("cn=" + a) < order_key("cn=" + b);
    }));
    const auto first =
        first_column(execute(search_, u"(objectClass=orvoPerson)", Values{u"cn"}, 1200));
    ASSERT_THAT(first, SizeIs(1200));
    EXPECT_TRUE(std::equal(first.begin(), first.end(), everybody.begin()));
}

TEST_F(LdapSearchServerTest, AsksForSmallerPagesWhereTheServerWantsThem) {
    PrivateSlapd server({.config = "limits * size.pr=30"});
    connect(search_, server.server(), service(server));
    EXPECT_THAT(all(execute(search_, u"(OrvoUserType=*)")), SizeIs(197));
}

TEST_F(LdapSearchServerTest, AsksForEverythingAtOnceWhereTheServerAllowsNoPages) {
    PrivateSlapd server({.config = "limits * size.prtotal=disabled"});
    connect(search_, server.server(), service(server));
    EXPECT_THAT(all(execute(search_, u"(OrvoUserType=*)")), SizeIs(197));
}

TEST_F(LdapSearchServerTest, FailsWhereTheServerCutsTheResultAllTheSame) {
    PrivateSlapd server({.config = "limits * size.prtotal=50"});
    connect(search_, server.server(), service(server));
    EXPECT_THAT(all(execute(search_, u"(BusinessPartnerID=1007)", Values{u"cn"}, 10)), SizeIs(10));
    const Failure failure = failure_of([&] { execute(search_, u"(cn=*)", Values{u"cn"}, 10); });
    EXPECT_EQ(failure.number, error_number(0x80072023));
    EXPECT_EQ(failure.description, u"(4) The size limit was exceeded.");
}

TEST_F(LdapSearchServerTest, ReconnectsWhereTheServerWasAway) {
    PrivateSlapd server;
    connect(search_, server.server(), service(server));
    for (int time = 0; time < 2; ++time) {
        server.stop();
        server.start();
        EXPECT_THAT(first_column(execute(search_, u"(cn=jsmith)")), ElementsAre("jsmith"));
    }
    server.stop();
    EXPECT_EQ(failure_of([&] { execute(search_, u"(cn=jsmith)"); }).number,
              error_number(0x8007203A));
    server.start();
    EXPECT_THAT(first_column(execute(search_, u"(cn=jsmith)")), ElementsAre("jsmith"));
}

TEST_F(LdapSearchServerTest, EndsWaitingForASilentServerAndReconnectsAfterwards) {
    PrivateSlapd server;
    connect(search_, server.server(), service(server));
    execute(search_, u"(cn=jsmith)");
    server.pause();
    const Failure failure = failure_of([&] { execute(search_, u"(cn=jsmith)"); });
    server.resume();
    EXPECT_EQ(failure.number, error_number(0x8007203A));
    EXPECT_EQ(failure.description, no_answer_of(server.server(), 2s, "OperationLimit"));
    EXPECT_THAT(first_column(execute(search_, u"(cn=jsmith)")), ElementsAre("jsmith"));
}

}  // namespace
}  // namespace orvo::directory::ldap
