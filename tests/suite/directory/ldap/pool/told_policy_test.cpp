// What a server tells of itself, and whether password checks ask it for its policy after that.

#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/suite/directory/ldap/pool/pool_test.h"
#include "tests/suite/directory/ldap/support/peer.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

// BER of short contents.
std::string element(char tag, const std::string& content) {
    return tag + std::string(1, static_cast<char>(content.size())) + content;
}
std::string text(const std::string& content) { return element('\x04', content); }
std::string message(int number, const std::string& operation, const std::string& controls = {}) {
    const std::string all = controls.empty() ? "" : element('\xA0', controls);
    return element('\x30', "\x02\x01"s + static_cast<char>(number) + operation + all);
}
std::string outcome(char tag, char code) {
    return element(tag, "\x0A\x01"s + code + text("") + text(""));
}
std::string accepted(int number, const std::string& control = {}) {
    return message(number, outcome('\x61', '\0'),
                   control.empty() ? "" : element('\x30', text(control)));
}

using Attributes = std::vector<std::pair<std::string, std::vector<std::string>>>;

// The answer to the second request: the root entry, and the search's result.
std::string root_entry(const Attributes& attributes, char code = '\0') {
    std::string list;
    for (const auto& [name, values] : attributes) {
        std::string all;
        for (const std::string& value : values) all += text(value);
        list += element('\x30', text(name) + element('\x31', all));
    }
    return message(2, element('\x64', text("") + element('\x30', list))) +
           message(2, outcome('\x65', code));
}

std::string received(int connection) {
    std::string bytes(4096, ' ');
    bytes.resize(static_cast<std::size_t>(
        std::max<ssize_t>(0, ::recv(connection, bytes.data(), bytes.size(), 0))));
    return bytes;
}

class ToldPolicyTest : public PoolTest {
protected:
    static std::int32_t check(const Peer& peer) {
        LdapValidator validator;
        Text server = from_utf8(peer.server()), container = u"ou=Users,o=Shop";
        validator.Open(server, container);
        Variant path = u"cn=a,ou=Users,o=Shop", password = u"secret";
        return validator.Validate(path, password);
    }
    // Whether the second check asks, of a server that accepts every password, with a control or
    // without, and tells this of itself after the first.
    static bool is_asked_again(const std::string& root, const std::string& control = {}) {
        bool is_asked = false;
        Peer peer([&](int connection) {
            EXPECT_NE(received(connection).find(policy_control), std::string::npos);
            send(connection, accepted(1, control));
            EXPECT_NE(received(connection).find("supportedControl"), std::string::npos);
            send(connection, root);
            is_asked = received(connection).find(policy_control) != std::string::npos;
            send(connection, accepted(3));
            take_everything(connection);
        });
        EXPECT_EQ(check(peer), 0);
        EXPECT_EQ(check(peer), 0);
        use_defaults();  // closes the connection
        return is_asked;
    }
};

TEST_F(ToldPolicyTest, AServerThatListsOtherControlsIsNotAskedAgain) {
    EXPECT_FALSE(is_asked_again(root_entry({{"supportedControl", {"1.2.3", "1.2.4"}}})));
    EXPECT_FALSE(is_asked_again(
        root_entry({{"objectClass", {policy_control}}, {"SUPPORTEDCONTROL", {"1.2.3"}}})));
    EXPECT_FALSE(is_asked_again(root_entry({{"supportedControl", {"1.2.3"}}}), "1.2.5"))
        << "another control is no answer";
}

TEST_F(ToldPolicyTest, AServerThatListsItOrDoesNotTellIsAskedAgain) {
    EXPECT_TRUE(is_asked_again(root_entry({{"supportedControl", {"1.2.3", policy_control}}})));
    EXPECT_TRUE(is_asked_again(
        root_entry({{"objectClass", {"top"}}, {"supportedControl", {policy_control}}})));
    EXPECT_TRUE(is_asked_again(root_entry({{"supportedControl", {}}})));
    EXPECT_TRUE(is_asked_again(root_entry({})));
    EXPECT_TRUE(is_asked_again(root_entry({{"supportedControl", {"1.2.3"}}}, '\x03')))
        << "there may be more";
    for (const char code : {'\x01', '\x20', '\x32', '\x35'})
        EXPECT_TRUE(is_asked_again(message(2, outcome('\x65', code)))) << int{code};
}

TEST_F(ToldPolicyTest, CheckAndReadingTakeTheOperationLimitTogether) {
    use({u"OperationLimit"}, {500});
    Peer peer([](int connection) {
        received(connection);
        std::this_thread::sleep_for(400ms);
        send(connection, accepted(1));
        take_everything(connection);
    });
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(check(peer), 0);
    const auto time = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(time, 490ms);
    EXPECT_LT(time, 800ms);
}

}  // namespace
}  // namespace orvo::directory::ldap
