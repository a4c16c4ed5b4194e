#include "suite/directory/ldap/provider/LdapSearch.h"

#include <gmock/gmock.h>

#include <chrono>
#include <fstream>

#include "platform/interfaces/call.h"
#include "platform/objects/recordset/record_set_contract.h"
#include "platform/values/values.h"
#include "suite/directory/entries/entry_order.h"
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

Login service(const PrivateSlapd& server) {
    return {server.service_dn(), server.service_password()};
}

class LdapSearchTest : public testing::Test {
protected:
    LdapSearch search_{Limits{2s, 2s, 2s}};
};

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

TEST_F(LdapSearchTest, IsNotCutByTheServersLimitForOneAnswer) {
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

TEST_F(LdapSearchTest, AsksForSmallerPagesWhereTheServerWantsThem) {
    PrivateSlapd server({.config = "limits * size.pr=30"});
    connect(search_, server.server(), service(server));
    EXPECT_THAT(all(execute(search_, u"(OrvoUserType=*)")), SizeIs(197));
}

TEST_F(LdapSearchTest, AsksForEverythingAtOnceWhereTheServerAllowsNoPages) {
    PrivateSlapd server({.config = "limits * size.prtotal=disabled"});
    connect(search_, server.server(), service(server));
    EXPECT_THAT(all(execute(search_, u"(OrvoUserType=*)")), SizeIs(197));
}

TEST_F(LdapSearchTest, FailsWhereTheServerCutsTheResultAllTheSame) {
    PrivateSlapd server({.config = "limits * size.prtotal=50"});
    connect(search_, server.server(), service(server));
    EXPECT_THAT(all(execute(search_, u"(BusinessPartnerID=1007)", Values{u"cn"}, 10)), SizeIs(10));
    const Failure failure = failure_of([&] { execute(search_, u"(cn=*)", Values{u"cn"}, 10); });
    EXPECT_EQ(failure.number, error_number(0x80072023));
    EXPECT_EQ(failure.description, u"(4) The size limit was exceeded.");
}

TEST_F(LdapSearchTest, ReconnectsWhereTheServerWasAway) {
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

TEST_F(LdapSearchTest, EndsWaitingForASilentServerAndReconnectsAfterwards) {
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
