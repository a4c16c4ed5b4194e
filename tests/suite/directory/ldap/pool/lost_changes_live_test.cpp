// Who still works as whom, after changes of a login of which nobody heard whether they were done,
// or while they are done.

#include <atomic>
#include <chrono>
#include <thread>

#include "suite/directory/ldap/wire/password_modify.h"
#include "tests/suite/directory/ldap/pool/pool_test.h"
#include "tests/suite/directory/ldap/support/rewriting_proxy.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;

constexpr std::int32_t wrong_credentials = error_number(0x8007052E);

class LostChangesTest : public PoolTest {
protected:
    using PoolTest::PoolTest;

    // Through the proxy, everything that has to be known of the server included.
    void bind_through(LdapEntry& entry, const User& as, Text name) {
        Text server = from_utf8(proxy_.server()), container = u"ou=Users,o=Shop";
        Text user = from_utf8(as.name);
        Secret password = Secret::of_bytes(as.password);
        Variant none = Values{};
        entry.Bind(server, container, name, user, password, none);
        values(entry, u"entryUUID");
    }
    void loses_the_next_answer_to(std::string_view request) {
        proxy_.cut_answers(1, std::string(request));
    }
    int raw_bind(const char* password) {
        return LdapProbe(server_.url()).bind(server_.user_dn("djansen"), password);
    }

    RewritingProxy proxy_{server_.server(), "cn=nothing", "cn=nothing"};
};

TEST_F(LostChangesTest, ADeletedUserIsGoneThoughNobodyHeardOfItAndNobodyCanAskAgain) {
    LdapEntry users({}, client_);
    bind_through(users, service(), u"");
    ServerLogin former = login(user("djansen"));
    EXPECT_EQ(who_is(former), "dn:cn=djansen,ou=Users,o=Shop");
    loses_the_next_answer_to(
        "\x4A\x1A"
        "cn=djansen,ou=Users,o=Shop");
    proxy_.cut_requests(1, "orvo-service");
    Text class_name = u"orvoPerson", name = u"cn=djansen,ou=Users,o=Shop";
    EXPECT_NE(failure_of([&] { users.DeleteChild(class_name, name); }).number, 0);
    ASSERT_TRUE(probe_.find("ou=Users,o=Shop", "(cn=djansen)").empty());
    EXPECT_EQ(failure_of([&] { who_is(former); }).number, wrong_credentials);
}

TEST_F(LostChangesTest, AFormerPasswordIsOverThoughNobodyHeardOfTheChange) {
    LdapEntry entry({}, client_);
    bind_through(entry, service(), u"cn=djansen");
    ServerLogin former = login(user("djansen"));
    EXPECT_EQ(who_is(former), "dn:cn=djansen,ou=Users,o=Shop");
    loses_the_next_answer_to(password_modify_oid);
    const Failure failure = failure_of([&] { set(entry, u"userPassword", u"another-one-1"); });
    EXPECT_EQ(failure.number, error_number(0x8007203A));
    EXPECT_TRUE(
        failure.description.ends_with(u" The password may have been changed all the same."));
    ASSERT_EQ(raw_bind("another-one-1"), 0);
    EXPECT_EQ(failure_of([&] { who_is(former); }).number, wrong_credentials);
}

TEST_F(LostChangesTest, AnOwnChangeOfWhichNobodyHeardIsToldAsOneThatMayHaveBeenDone) {
    LdapEntry entry({}, client_);
    bind_through(entry, user("djansen"), u"cn=djansen");
    loses_the_next_answer_to(password_modify_oid);
    const Failure failure = failure_of([&] { set(entry, u"userPassword", u"another-one-1"); });
    EXPECT_EQ(failure.number, error_number(0x8007203A));
    EXPECT_TRUE(failure.description.starts_with(u"(81) The server cannot be reached."));
    EXPECT_TRUE(
        failure.description.ends_with(u" The password may have been changed all the same."));
    ASSERT_EQ(raw_bind("another-one-1"), 0);
}

TEST_F(LostChangesTest, OthersWithTheSameCredentialsGoOnWhileTheirUserChangesThePassword) {
    LdapEntry owner({}, client_);
    bind(owner, user("djansen"));
    std::atomic<bool> is_over = false;
    std::atomic<int> failures = 0, operations = 0;
    std::vector<ServerLogin> logins;
    for (int number = 0; number < 3; ++number) {
        logins.push_back(login(user("djansen")));
        logins.back().authenticate();
    }
    std::vector<std::thread> threads;
    for (ServerLogin& login : logins)
        threads.emplace_back([&] {
            while (!is_over) {
                failures += failure_of([&] { who_is(login); }).number != 0;
                ++operations;
            }
        });
    for (int change = 0; change < 50; ++change)
        set(owner, u"userPassword", from_utf8("pass-word-" + std::to_string(change)));
    is_over = true;
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failures, 0) << "of " << operations;
    EXPECT_GT(operations, 50);
}

TEST_F(LostChangesTest, WithoutAPoolAConnectionIsNotKeptThatWasMadeBeforeAPasswordChange) {
    use({u"MaximumSize"}, {0});
    LdapEntry administrator({}, client_);
    bind(administrator, service());
    ServerLogin theirs = login(user("djansen"));
    theirs.search([&](Session&) {
        set(administrator, u"userPassword", u"another-one-1");
        return Result();
    });
    EXPECT_EQ(failure_of([&] { who_is(theirs); }).number, wrong_credentials);
}

TEST_F(LostChangesTest, SecretsAreReadAnewEachTime) {
    const User root{server_.root_dn(), server_.root_password()};
    const std::string account = "cn=1,ou=Accounts,o=Shop";
    LdapEntry entry({}, client_), other({}, client_);
    bind(entry, root, u"cn=djansen", Values{u"userPassword"});
    ASSERT_EQ(probe_.replace(server_.user_dn("djansen"), "userPassword", {"{X}other"}), 0);
    EXPECT_EQ(values(entry, u"userPassword").to<Values>()[0].try_bytes(), "{X}other");

    Text server = from_utf8(server_.server()), container = u"ou=Accounts,o=Shop", name = u"cn=1";
    Text user = from_utf8(root.name);
    Secret password = Secret::of_bytes(root.password);
    Variant none = Values{};
    other.Bind(server, container, name, user, password, none);
    ASSERT_EQ(probe_.replace(account, "OrvoNTPassword", {"new"}), 0);
    ASSERT_EQ(probe_.replace(account, "OrvoNTUser", {"new"}), 0);
    EXPECT_EQ(values(other, u"OrvoNTPassword"), Variant(Values{u"new"}));
    EXPECT_NE(values(other, u"OrvoNTUser"), Variant(Values{u"new"})) << "no secret";
}

}  // namespace
}  // namespace orvo::directory::ldap
