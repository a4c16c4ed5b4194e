// Password checks with AskPolicy: who is asked what the password policy says.

#include <chrono>

#include "tests/suite/directory/ldap/pool_test.h"
#include "tests/suite/directory/ldap/rewriting_proxy.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;

// What a request for the policy holds, and no other.
constexpr const char* asks_policy = "1.3.6.1.4.1.42.2.27.8.5.1";

// Checks through a proxy that lets no request pass that asks for the policy: those fail.
class AskedPolicyTest : public PoolTest {
protected:
    explicit AskedPolicyTest(SlapdOptions options = {}) : PoolTest(std::move(options)) {
        use({u"OperationLimit"}, {500});
        proxy_.swallow_requests(1000, asks_policy);
    }
    std::int32_t check(const Text& password = u"shop-sample") {
        LdapValidator validator;
        Text server = from_utf8(proxy_.server()), container = u"ou=Users,o=Shop";
        validator.Open(server, container);
        Variant path = from_utf8(server_.user_dn("djansen")), password_value = password;
        return validator.Validate(path, password_value);
    }
    bool is_policy_asked() {
        return failure_of([&] { check(); }).description ==
               u"(85) The server did not answer in time.";
    }

    RewritingProxy proxy_{server_.server(), "cn=nothing", "cn=nothing"};
};

TEST_F(AskedPolicyTest, EveryServerIsAskedUnlessItIsSetOtherwise) {
    EXPECT_TRUE(is_policy_asked());
    use({u"AskPolicy"}, {0});
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(check(u"wrong"), -1);
    use({u"AskPolicy"}, {1});
    EXPECT_TRUE(is_policy_asked()) << "also on a connection that there is already";
}

TEST_F(AskedPolicyTest, WhatAServerKnowsIsReadOnceForAConnection) {
    use({u"AskPolicy"}, {0});
    const long before = searches();
    for (int round = 0; round < 3; ++round) EXPECT_EQ(check(), 0);
    EXPECT_EQ(searches() - before, 1 + 1) << "the root entry, and the counting";
}

TEST_F(AskedPolicyTest, AConnectionThatIsNotKeptIsNotWorthTheQuestion) {
    use({u"AskPolicy", u"MaximumSize"}, {0, 0});
    const long before = searches();
    EXPECT_TRUE(is_policy_asked());
    EXPECT_EQ(searches() - before, 1) << "the counting";
}

TEST_F(AskedPolicyTest, AConnectionThatWasLostIsReplacedAndItsServerReadAnew) {
    use({u"AskPolicy"}, {0});
    EXPECT_EQ(check(), 0);
    const long before = searches();
    proxy_.cut_requests(1);
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(searches() - before, 1 + 1);
}

TEST_F(AskedPolicyTest, AServerThatDoesNotAnswerCostsTheOperationLimitOnce) {
    use({u"AskPolicy"}, {0});
    proxy_.swallow_requests(1000, "supportedControl");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(is_policy_asked()) << "the failure is the same";
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 900ms);
}

class SilentAboutItselfTest : public AskedPolicyTest {
protected:
    SilentAboutItselfTest()
        : AskedPolicyTest({.config = "database frontend\naccess to dn.base=\"\" by * none\n"}) {}
};

TEST_F(SilentAboutItselfTest, AServerThatShowsNotWhatItKnowsIsAsked) {
    use({u"AskPolicy"}, {0});
    EXPECT_TRUE(is_policy_asked());
}

class ListedPolicyTest : public PoolTest {
protected:
    ListedPolicyTest() : PoolTest({.password_policy = true}) {}
};

TEST_F(ListedPolicyTest, AServerThatListsThePolicyIsAsked) {
    ASSERT_EQ(probe_.replace(server_.user_dn("djansen"), "pwdReset", {"TRUE"}), 0);
    for (const std::int32_t setting : {1, 0}) {
        use({u"AskPolicy"}, {setting});
        EXPECT_EQ(checked(user("djansen")), -4);
        EXPECT_EQ(checked({server_.user_dn("djansen"), "wrong"}), -1);
        EXPECT_EQ(checked(user("admin")), 0);
    }
}

}  // namespace
}  // namespace orvo::directory::ldap
