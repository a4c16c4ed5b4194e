#pragma once

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>

#include "platform/values/values.h"
#include "suite/directory/ldap/provider/LdapEntry.h"
#include "suite/directory/ldap/provider/LdapSearch.h"
#include "suite/directory/ldap/provider/LdapValidator.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/suite/directory/ldap/support/manual_clock.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo::directory::ldap {

// Entries, searches and password checks against a server that counts what reaches it. What they
// share is the test's own, with a clock that the test sets; it ends, with its connections, before
// the server does.
class PoolTest : public testing::Test {
protected:
    struct User {
        std::string name;
        std::string password;
    };

    explicit PoolTest(SlapdOptions options = {}) : server_(std::move(options)) {
        // That with which the server was asked whether it has started.
        EXPECT_TRUE(comes_to(0));
    }

    void use(Values names, Values values) {
        client_.pool().configure(Variant(std::move(names)), Variant(std::move(values)));
    }

    User service() const { return {server_.service_dn(), server_.service_password()}; }
    User user(const std::string& cn) const {
        return {server_.user_dn(cn), server_.user_password()};
    }

    void bind(LdapEntry& entry, const User& as, Text name = u"cn=djansen",
              Variant attributes = Values{}) const {
        Text server = from_utf8(server_.server()), container = u"ou=Users,o=Shop";
        Text user = from_utf8(as.name);
        Secret password = Secret::of_bytes(as.password);
        entry.Bind(server, container, name, user, password, attributes);
    }
    // 0, or the failure's number.
    std::int32_t bind_result(const User& as) {
        LdapEntry entry({}, client_);
        return failure_of([&] { bind(entry, as); }).number;
    }
    static Variant values(LdapEntry& entry, Text name) { return entry.GetValues(name); }
    static void set(LdapEntry& entry, Text name, Variant value) { entry.SetValues(name, value); }
    static void clear(LdapEntry& entry, Text name) { entry.ClearValues(name); }

    ServerLogin login(const User& as) {
        return ServerLogin(client_.pool(), from_utf8(server_.server()), from_utf8(as.name),
                           Secret::of_bytes(as.password), std::nullopt);
    }
    // The user whom the server takes the pooled connection of this login for.
    static std::string who_is(ServerLogin& login) {
        const WhoAmIResult result =
            login.search([](Session& session) { return session.who_am_i(); });
        return result.ok() ? result.identity : "failure " + std::to_string(result.code);
    }

    static Object found(LdapSearch& search, Text filter) {
        Variant attributes = Values{u"cn"};
        return search.Execute(filter, attributes, 10);
    }
    void connect(LdapSearch& search, const User& as) const {
        Text server = from_utf8(server_.server()), container = u"ou=Users,o=Shop";
        Text user = from_utf8(as.name);
        Secret password = Secret::of_bytes(as.password);
        search.Connect(server, container, user, password);
    }

    std::int32_t checked(const User& as) {
        LdapValidator validator({}, client_);
        Text server = from_utf8(server_.server()), container = u"ou=Users,o=Shop";
        validator.Open(server, container);
        Variant path = from_utf8(as.name), password = from_utf8(as.password);
        return validator.Validate(path, password);
    }

    // Of the server; without the connection that counts.
    long open_connections() { return counted("cn=Current,cn=Connections") - 1; }
    long connections_made() { return counted("cn=Total,cn=Connections"); }
    long binds() { return counted("cn=Bind,cn=Operations", "monitorOpInitiated"); }
    // Without the one that counts.
    long searches() { return counted("cn=Search,cn=Operations", "monitorOpInitiated") - 1; }
    long counted(const std::string& entry, const std::string& attribute = "monitorCounter") {
        return std::stol(probe_.values(entry + ",cn=Monitor", attribute).at(0));
    }
    // A connection that was closed here is still open there for a moment.
    bool comes_to(long connections);

    // The connections of a user, of whom there are some.
    ConnectionSetRef set_of(const User& as) {
        return client_.pool().set_of(ServerAddress::parse(from_utf8(server_.server())), as.name,
                                     Secret(from_utf8(as.password)));
    }
    void forget_refusals() { clock_.advance(std::chrono::seconds(5)); }
    // Returns once so many wait for a connection of the user's.
    void await_waiting(const User& as, std::size_t count) {
        const ConnectionSetRef set = set_of(as);
        while (set->waiting() != count) std::this_thread::yield();
    }

    PrivateSlapd server_;
    ManualClock clock_;
    Client client_{clock_, Client::Probing::by_caller};
    LdapProbe probe_{server_.url(), server_.root_dn(), server_.root_password()};
};

}  // namespace orvo::directory::ldap
