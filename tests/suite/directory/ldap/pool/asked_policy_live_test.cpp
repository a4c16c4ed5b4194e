// Password checks with AskPolicy: who is asked what the password policy says.

#include <algorithm>
#include <chrono>
#include <thread>

#include "tests/suite/directory/ldap/pool/pool_test.h"
#include "tests/suite/directory/ldap/support/rewriting_proxy.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;

// Checks through a proxy that can lose the requests that ask for the policy.
class AskedPolicyTest : public PoolTest {
protected:
    explicit AskedPolicyTest(SlapdOptions options = {}, const std::string& hidden = "cn=nothing",
                             const std::string& shown_instead = "cn=nothing")
        : PoolTest(std::move(options)), proxy_(server_.server(), hidden, shown_instead) {
        use({u"OperationLimit", u"RecheckAfter"}, {500, 60});
    }
    std::int32_t check(const Text& password = u"shop-sample", const std::string& user = "djansen") {
        return check_at(proxy_.server(), password, user);
    }
    std::int32_t check_at(const std::string& address, const Text& password, const std::string& user,
                          Text container = u"ou=Users,o=Shop") {
        LdapValidator validator;
        Text server = from_utf8(address);
        validator.Open(server, container);
        Variant path = from_utf8(server_.user_dn(user)), password_value = password;
        return validator.Validate(path, password_value);
    }
    bool is_policy_asked() {
        proxy_.swallow_requests(1, policy_control);
        const bool asked =
            failure_of([&] { check(); }).description == u"(85) The server did not answer in time.";
        proxy_.swallow_requests(0, policy_control);
        return asked;
    }
    // What a check costs beside the bind.
    long searches_of_check(const Text& password = u"shop-sample") {
        const long before = searches();
        check(password);
        return searches() - before - 1;  // the counting
    }

    RewritingProxy proxy_;
};

using AServerWithoutAPolicyTest = AskedPolicyTest;

TEST_F(AServerWithoutAPolicyTest, IsNotAskedAnyMoreAfterAnAcceptedPassword) {
    EXPECT_TRUE(is_policy_asked());
    EXPECT_EQ(check(), 0);
    EXPECT_FALSE(is_policy_asked());
    EXPECT_EQ(check(u"wrong"), -1);
    EXPECT_EQ(check(u"shop-sample", "admin"), 0);
}

TEST_F(AServerWithoutAPolicyTest, IsAskedAfterRefusedPasswords) {
    EXPECT_EQ(searches_of_check(u"wrong"), 0);
    EXPECT_EQ(check(u"wrong"), -1);
    EXPECT_TRUE(is_policy_asked());
}

TEST_F(AServerWithoutAPolicyTest, IsAskedAlwaysWhereThatIsSet) {
    EXPECT_EQ(check(), 0);
    use({u"AskPolicy"}, {1});
    EXPECT_TRUE(is_policy_asked()) << "also on a connection that has learnt already";
    EXPECT_EQ(searches_of_check(), 0);
    EXPECT_TRUE(is_policy_asked());
}

TEST_F(AServerWithoutAPolicyTest, IsReadOnceForAConnection) {
    EXPECT_EQ(searches_of_check(), 1);
    EXPECT_EQ(searches_of_check(), 0);
    proxy_.cut_requests(1);
    EXPECT_EQ(searches_of_check(), 1) << "a new connection in place of the lost one";
    EXPECT_EQ(searches_of_check(), 0);
}

TEST_F(AServerWithoutAPolicyTest, IsAskedOnConnectionsThatAreNotKept) {
    use({u"MaximumSize"}, {0});
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(searches_of_check(), 0);
        EXPECT_TRUE(is_policy_asked());
    }
}

TEST_F(AServerWithoutAPolicyTest, IsAskedAnewAfterRecheckAfter) {
    EXPECT_EQ(searches_of_check(), 1);
    use({u"RecheckAfter"}, {1});
    std::this_thread::sleep_for(1100ms);
    EXPECT_TRUE(is_policy_asked());
    EXPECT_EQ(searches_of_check(), 1);
    use({u"RecheckAfter"}, {0});
    EXPECT_EQ(searches_of_check(), 0) << "there is nothing to learn";
    EXPECT_TRUE(is_policy_asked());
}

// The one in front of two directories may have a policy for one of them.
TEST_F(AServerWithoutAPolicyTest, IsReadOnceForEachContainer) {
    const auto searches_of_check_in = [&](const Text& container) {
        const long before = searches();
        EXPECT_EQ(check_at(server_.server(), u"shop-sample", "djansen", container), 0);
        return searches() - before - 1;  // the counting
    };
    EXPECT_EQ(searches_of_check_in(u"ou=Users,o=Shop"), 1);
    EXPECT_EQ(searches_of_check_in(u"o=Shop"), 1);
    EXPECT_EQ(searches_of_check_in(u"OU=users, o=shop"), 0) << "the first one in other words";
    EXPECT_TRUE(comes_to(2));
}

TEST_F(AServerWithoutAPolicyTest, CanBeLostBeforeItTellsWithoutHarmToTheCheck) {
    proxy_.cut_requests(1, "supportedControl");
    EXPECT_EQ(check(), 0);
    EXPECT_TRUE(comes_to(0)) << "the connection is of no use any more";
    EXPECT_EQ(searches_of_check(), 1);
    EXPECT_FALSE(is_policy_asked());
}

TEST_F(AServerWithoutAPolicyTest, ThatDoesNotTellIsNotWaitedForAgain) {
    proxy_.swallow_requests(1, "supportedControl");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(check(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 900ms);
    EXPECT_TRUE(comes_to(0)) << "the connection is of no use any more";
    EXPECT_EQ(searches_of_check(), 0);
    EXPECT_TRUE(is_policy_asked());
}

class SilentAboutItselfTest : public AskedPolicyTest {
protected:
    SilentAboutItselfTest()
        : AskedPolicyTest({.config = "database frontend\naccess to dn.base=\"\" by * none\n"}) {}
};

TEST_F(SilentAboutItselfTest, AServerThatShowsNotWhatItKnowsIsAsked) {
    EXPECT_EQ(searches_of_check(), 1);
    EXPECT_EQ(searches_of_check(), 0);
    EXPECT_TRUE(is_policy_asked());
}

class ListedPolicyTest : public AskedPolicyTest {
protected:
    explicit ListedPolicyTest(const std::string& hidden = "cn=nothing",
                              const std::string& shown_instead = "cn=nothing")
        : AskedPolicyTest({.password_policy = true}, hidden, shown_instead) {
        EXPECT_EQ(probe_.replace(server_.user_dn("lbakker"), "pwdReset", {"TRUE"}), 0);
    }
    void expect_policy_heeded() {
        for (const std::int32_t setting : {0, 1}) {
            use({u"AskPolicy"}, {setting});
            EXPECT_EQ(searches_of_check(), 0) << "the answer tells enough";
            EXPECT_EQ(check(u"shop-sample", "lbakker"), -4);
            EXPECT_EQ(check(u"wrong"), -1);
            EXPECT_TRUE(is_policy_asked());
        }
    }
};

TEST_F(ListedPolicyTest, IsAskedFor) { expect_policy_heeded(); }

// A server in front of the one that has the policy: it passes everything on, and lists less. In the
// root entry the control stands behind another one.
class HiddenPolicyTest : public ListedPolicyTest {
protected:
    static std::string listed(char last) {
        return std::string("27.9.5.8\x04\x19") + "1.3.6.1.4.1.42.2.27.8.5." + last;
    }
    HiddenPolicyTest() : ListedPolicyTest(listed('1'), listed('9')) {}
};

TEST_F(HiddenPolicyTest, IsAskedForAfterAnAnswer) {
    {
        Session anybody = Session::connect(ServerAddress::parse(from_utf8(proxy_.server())));
        const ReadResult root = anybody.read("", {"supportedControl"});
        ASSERT_EQ(std::ranges::count(root.entry.attributes.at(0).values, policy_control), 0);
    }
    expect_policy_heeded();
}

}  // namespace
}  // namespace orvo::directory::ldap
