// What is asked of servers is counted by server and kind, and told by the provider's object.

#include <gtest/gtest.h>

#include <map>

#include "platform/interfaces/late_call.h"
#include "suite/directory/ldap/provider/LdapServers.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/suite/directory/ldap/pool/pool_test.h"
#include "tests/support/faulty_proxy.h"

namespace orvo::directory::ldap {
namespace {

using Row = std::map<Text, Variant>;

std::vector<Row> rows_of(const Object& record_set) {
    const Object fields = late::get(record_set, u"Fields").to<Object>();
    const auto count = late::get(fields, u"Count").to<std::int32_t>();
    std::vector<Row> rows;
    for (; late::get(record_set, u"EOF") == Variant(false); late::call(record_set, u"MoveNext")) {
        Row& row = rows.emplace_back();
        for (std::int32_t i = 0; i < count; ++i) {
            const Object field = late::get(fields, u"Item", {i}).to<Object>();
            row[late::get(field, u"Name").to<Text>()] = late::get(field, u"Value");
        }
    }
    return rows;
}

class OperationFiguresTest : public PoolTest {
protected:
    // Of an operation on a server; an empty row where it was never asked for.
    Row row(const Text& operation, const std::string& server) {
        for (Row& row : rows_of(LdapServers(client_).Operations()))
            if (row[u"Operation"] == Variant(operation) && row[u"Server"] == from_utf8(server))
                return row;
        return {};
    }
    double count(const Text& operation) {
        Row found = row(operation, "ldap://" + server_.server());
        return found.empty() ? 0 : found[u"Count"].to<double>();
    }
    double value(const Text& name, const Text& of) {
        for (Row& row : rows_of(LdapServers(client_).Counts()))
            if (row[u"Name"] == Variant(name) && row[u"Of"] == Variant(of))
                return row[u"Value"].to<double>();
        return -1;
    }
};

TEST_F(OperationFiguresTest, CountEachKindOfOperation) {
    EXPECT_EQ(count(u"bind"), 0);
    LdapEntry entry({}, client_);
    bind(entry, service());
    EXPECT_EQ(count(u"connect"), 1);
    EXPECT_EQ(count(u"bind"), 1);
    const double reads = count(u"read");
    EXPECT_GT(reads, 0);
    EXPECT_EQ(count(u"modify"), 0);

    set(entry, u"Position", u"Tester");
    EXPECT_EQ(count(u"modify"), 1);
    set(entry, u"userPassword", u"another-sample");
    EXPECT_EQ(count(u"password modify"), 1);

    EXPECT_EQ(count(u"search"), 0);
    LdapSearch search({}, client_);
    connect(search, service());
    found(search, u"(cn=djansen)");
    EXPECT_EQ(count(u"search"), 1);

    const double binds = count(u"bind");
    EXPECT_EQ(checked(user("jsmith")), 0);
    EXPECT_EQ(count(u"bind"), binds + 1);
    ServerLogin own = login(service());
    who_is(own);
    EXPECT_EQ(count(u"extended"), 1);
}

TEST_F(OperationFiguresTest, TellHowLongEachTook) {
    LdapEntry entry({}, client_);
    bind(entry, service());
    Row bound = row(u"bind", "ldap://" + server_.server());
    EXPECT_EQ(bound[u"Failures"], Variant(0.0));
    EXPECT_GT(bound[u"Seconds"].to<double>(), 0);
    EXPECT_EQ(bound.size(), 5 + DurationHistogram::bounds.size());
    EXPECT_EQ(bound[u"30"], Variant(1.0)) << "no bind takes longer";
    double before = 0;
    for (const char16_t* bound_name : {u"0.0005", u"0.0025", u"0.1", u"30"}) {
        EXPECT_GE(bound[bound_name].to<double>(), before);
        before = bound[bound_name].to<double>();
    }
}

TEST_F(OperationFiguresTest, CountWhatFailsAndIsTriedAgainElsewhere) {
    FaultyProxy first(std::stoi(server_.server().substr(server_.server().find(':') + 1)));
    const std::string gone = "ldap://" + first.server();
    first.refuse();
    LdapEntry entry({}, client_);
    Text servers = from_utf8(first.server() + " " + server_.server()), container = u"o=Shop";
    Text name = u"ou=Users", who = from_utf8(server_.service_dn());
    Secret password = Secret::of_bytes(server_.service_password());
    Variant none = Values{};
    entry.Bind(servers, container, name, who, password, none);
    EXPECT_EQ(row(u"connect", gone)[u"Failures"], Variant(1.0));
    EXPECT_EQ(value(u"failovers", from_utf8(gone)), 1);
    EXPECT_EQ(value(u"retries", from_utf8(gone)), 0) << "nothing had been sent";
    EXPECT_EQ(value(u"failovers", from_utf8("ldap://" + server_.server())), 0);
}

TEST_F(OperationFiguresTest, CountConnectionsAndWhatIsFoundInTheCache) {
    LdapEntry entry({}, client_);
    bind(entry, service());
    EXPECT_EQ(value(u"in use", u"user"), 0);
    EXPECT_EQ(value(u"idle", u"user"), 1);
    EXPECT_EQ(value(u"waiting", u"user"), 0);
    EXPECT_EQ(value(u"idle", u"checks"), 0);
    const double misses = value(u"cache misses", u""), hits = value(u"cache hits", u"");
    EXPECT_GT(misses, 0);
    LdapEntry again({}, client_);
    bind(again, service());
    EXPECT_EQ(value(u"cache misses", u""), misses);
    EXPECT_GT(value(u"cache hits", u""), hits);
    EXPECT_EQ(value(u"cache entries", u""), 1);
}

TEST_F(OperationFiguresTest, CountWhoWaitsForAConnectionAndWhoWaitsInVain) {
    use({u"MaximumSize", u"WaitLimit"}, {1, 1});
    ServerLogin holder = login(service());
    EXPECT_TRUE(row(u"wait", "").empty());
    holder.search([&](Session& session) {
        EXPECT_EQ(bind_result(service()), number_of_code(result_code::busy));
        return session.who_am_i();
    });
    EXPECT_EQ(row(u"wait", "")[u"Count"], Variant(1.0));
    EXPECT_EQ(row(u"wait", "")[u"Failures"], Variant(1.0));
}

}  // namespace
}  // namespace orvo::directory::ldap
