#include "suite/directory/ldap/provider/LdapValidator.h"

#include <gmock/gmock.h>

#include <chrono>
#include <thread>

#include "tests/suite/directory/expect_failure.h"
#include "tests/suite/directory/ldap/support/bad_server.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;

constexpr const char16_t* users = u"ou=Users,o=Shop";

std::int32_t checked(const std::string& server, const Text& path, const Variant& password,
                     const Text& container = users) {
    LdapValidator validator(Limits{500ms, 500ms});
    Text server_text = from_utf8(server);
    Text container_text = container;
    validator.Open(server_text, container_text);
    Variant path_value = path;
    Variant password_value = password;
    return validator.Validate(path_value, password_value);
}

Text user_path(const std::string& cn) { return from_utf8("cn=" + cn + ",ou=Users,o=Shop"); }

PrivateSlapd& shop() {
    static PrivateSlapd server;
    return server;
}

TEST(LdapValidator, ChecksUsersOfServersInTurn) {
    PrivateSlapd other;
    LdapProbe probe(other.url(), other.root_dn(), other.root_password());
    ASSERT_EQ(probe.replace(other.user_dn("djansen"), "userPassword", {"long-enough"}), 0);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(checked(shop().server(), user_path("djansen"), u"shop-sample"), 0);
        EXPECT_EQ(checked(other.server(), user_path("djansen"), u"long-enough"), 0);
    }
}

TEST(LdapValidator, RefusesWithoutAskingTheServer) {
    BadServer server({});
    const Variant good = u"shop-sample";
    EXPECT_EQ(checked(server.server(), user_path("djansen"), u""), -1);
    EXPECT_EQ(checked(server.server(), user_path("djansen"), Variant()), -1);
    EXPECT_EQ(checked(server.server(), u"", good), -1);
    EXPECT_EQ(checked(server.server(), u"djansen", good), -1);
    EXPECT_EQ(checked(server.server(), u"cn=djansen,", good), -1);
    EXPECT_EQ(checked(server.server(), users, good), -1);
    EXPECT_EQ(checked(server.server(), u"o=Shop", good), -1);
    EXPECT_EQ(checked(server.server(), u"cn=orvo-service,ou=Services,o=Shop", good), -1);
    EXPECT_EQ(checked(server.server(), u"jsmith,ou=Users,o=Shop", good), -1);
    EXPECT_EQ(checked(server.server(), u"c n=djansen,ou=Users,o=Shop", good), -1);
    EXPECT_EQ(checked(server.server(), u"cn=a\";ou=Users,o=Shop", good), -1);
    EXPECT_EQ(checked(server.server(), u"cn=a\xD83D,ou=Users,o=Shop", good), -1);
    EXPECT_EQ(checked(server.server(), user_path("djansen"), u"shop-sample\xDE00"), -1);
    EXPECT_EQ(checked(server.server(), u"cn=" + Text(8'192, u'x') + u",ou=Users,o=Shop", good), -1);
    EXPECT_EQ(server.connections(), 0);
}

TEST(LdapValidator, TakesAnUnreachableServerForAFailure) {
    const std::string server = refused_server();
    const Failure failure =
        failure_of([&] { checked(server, user_path("djansen"), u"shop-sample"); });
    EXPECT_EQ(failure.number, error_number(0x8007203A));
    EXPECT_EQ(failure.description, from_utf8("(81) The server cannot be reached. 'ldap://" +
                                             server + "': Connection refused"));
}

TEST(LdapValidator, TakesASilentServerForAFailure) {
    BadServer server({});
    const Failure failure =
        failure_of([&] { checked(server.server(), user_path("djansen"), u"shop-sample"); });
    EXPECT_EQ(failure.number, error_number(0x8007203A));
    EXPECT_EQ(failure.description, no_answer_of(server.server(), 500ms));
}

TEST(LdapValidator, LooksAtItsServerOnlyToAskIt) {
    const std::string server = "dir01:99999999";
    EXPECT_EQ(checked(server, user_path("djansen"), u""), -1);
    EXPECT_EQ(checked(server, u"cn=djansen,ou=Nowhere,o=Shop", u"shop-sample"), -1);
    EXPECT_EQ(failure_of([&] { checked(server, user_path("djansen"), u"shop-sample"); }).number,
              error_number(0x8007203F));
}

TEST(LdapValidator, CostsOneConnectionAndOneBind) {
    PrivateSlapd server;
    LdapProbe monitor(server.url(), server.root_dn(), server.root_password());
    const auto counted = [&](const std::string& entry, const std::string& attribute) {
        return std::stol(monitor.values(entry, attribute).at(0));
    };
    const auto connections = [&] {
        return counted("cn=Total,cn=Connections,cn=Monitor", "monitorCounter");
    };
    const auto binds = [&] {
        return counted("cn=Bind,cn=Operations,cn=Monitor", "monitorOpInitiated");
    };
    const auto searches = [&] {
        return counted("cn=Search,cn=Operations,cn=Monitor", "monitorOpInitiated");
    };
    const long connections_before = connections();
    const long binds_before = binds();
    const long searches_before = searches();
    EXPECT_EQ(checked(server.server(), user_path("djansen"), u"shop-sample"), 0);
    EXPECT_EQ(connections() - connections_before, 1);
    EXPECT_EQ(binds() - binds_before, 1);
    // The counting itself searches: after its own count, the two above and this one.
    EXPECT_EQ(searches() - searches_before, 3);

    const long binds_then = binds();
    const long searches_then = searches();
    EXPECT_EQ(checked(server.server(), user_path("djansen"), u"shop-sample"), 0);
    EXPECT_EQ(connections() - connections_before, 1);
    EXPECT_EQ(binds() - binds_then, 1);
    EXPECT_EQ(searches() - searches_then, 3);
}

}  // namespace
}  // namespace orvo::directory::ldap
