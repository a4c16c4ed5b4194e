#include "host/web/site/guard.h"

#include <gtest/gtest.h>

#include "platform/interfaces/call.h"
#include "platform/values/values.h"
#include "suite/authfilter/filter_connector.h"
#include "suite/authfilter/memory_store.h"
#include "tests/host/web/test_site.h"

namespace orvo::web {
namespace {

constexpr TextView account = u"cn=jsmith,ou=Users,o=Shop";

class GuardTest : public testing::Test {
protected:
    GuardTest() {
        ApplicationState::Holder(site_.application, {})
            .put(filter_connector_progid, connector_.object());
        login(u"G1", u"jsmith", account);
    }
    // What a login leaves with the filter.
    void login(const Text& guid, const Text& user, TextView path) {
        authfilter::Record record;
        record.account_path = path;
        store_.save(guid, record);
        call<&FilterConnector::RegisterLogin>(connector_, user, Values{1, 10}, guid,
                                              std::int16_t{1}, 10);
    }
    // And with the session.
    std::string session(const Text& guid, TextView path) {
        const auto lease = site_.sessions.create();
        lease->data().values.put(u"QUENDRAID", guid);
        lease->data().values.put(u"REMOTE_ACCOUNT", path);
        return "orvosession=" + lease->id();
    }
    bool allowed(const std::string& cookies, std::int32_t application = 1) {
        const HttpRequest request{.target = "/account/", .headers = {{"Cookie", cookies}}};
        const auto fields = cookies_of(request);
        const auto* guid = fields.find(u"LoginID");
        return is_allowed(site_.sessions.login_of(session_id_of(request)),
                          guid ? guid->values.front() : Text(),
                          site_.application.get(filter_connector_progid), application);
    }

    TestSite site_;
    authfilter::Clock::time_point now_{};
    authfilter::MemoryStore store_{{}, [this] { return now_; }};
    Ref<FilterConnector> connector_ = make<authfilter::FilterConnectorObject>(store_);
};

TEST_F(GuardTest, LetsALoginIntoItsApplications) {
    const std::string cookies = session(u"G1", account) + "; LoginID=G1";
    EXPECT_TRUE(allowed(cookies));
    EXPECT_TRUE(allowed(cookies, 10));
    EXPECT_FALSE(allowed(cookies, 2));
}

TEST_F(GuardTest, NeedsBothTheCookieAndTheSession) {
    const std::string own = session(u"G1", account);
    EXPECT_FALSE(allowed(""));
    EXPECT_FALSE(allowed("LoginID=G1")) << "a stolen login cookie alone";
    EXPECT_FALSE(allowed(own)) << "a session alone";
    EXPECT_FALSE(allowed(own + "; LoginID=g1")) << "GUIDs are compared exactly";
    EXPECT_FALSE(allowed("orvosession=forged; LoginID=G1"));
    EXPECT_FALSE(allowed(session(u"", account) + "; LoginID="));
}

TEST_F(GuardTest, ACookieDoesNotOpenAnotherLoginsSession) {
    login(u"G2", u"jones", u"cn=jones,ou=Users,o=Shop");
    EXPECT_FALSE(allowed(session(u"G1", account) + "; LoginID=G2"));
    EXPECT_FALSE(allowed(session(u"G2", u"cn=jones,ou=Users,o=Shop") + "; LoginID=G1"));
}

TEST_F(GuardTest, AGuidUnderWhichSomebodyElseLoggedInSinceOpensNothing) {
    const std::string planted = session(u"G1", account) + "; LoginID=G1";
    EXPECT_TRUE(allowed(planted));
    login(u"G1", u"admin", u"cn=admin,ou=Users,o=Shop");
    EXPECT_FALSE(allowed(planted));
    EXPECT_TRUE(allowed(session(u"G1", u"CN=Admin,ou=Users,o=Shop") + "; LoginID=G1"));
}

TEST_F(GuardTest, EndsWithTheLogin) {
    const std::string cookies = session(u"G1", account) + "; LoginID=G1";
    now_ += std::chrono::minutes(9);
    EXPECT_TRUE(allowed(cookies)) << "and it counts as a request";
    now_ += std::chrono::minutes(9);
    EXPECT_TRUE(allowed(cookies));
    now_ += std::chrono::minutes(10);
    EXPECT_FALSE(allowed(cookies));
    login(u"G1", u"jsmith", account);
    EXPECT_TRUE(allowed(cookies));
    call<&FilterConnector::Logout>(connector_, u"G1");
    EXPECT_FALSE(allowed(cookies));
}

TEST_F(GuardTest, OpensNothingWithoutAFilter) {
    ApplicationState::Holder(site_.application, {}).remove(filter_connector_progid);
    EXPECT_FALSE(allowed(session(u"G1", account) + "; LoginID=G1"));
}

TEST_F(GuardTest, SendsTheBrowserToTheLoginAndTellsWhereItCameFrom) {
    Site site;
    site.login_page = "/in/login.asp";
    EXPECT_EQ(login_address(site, "/account/x.asp?a=1&b=2#"),
              "/in/login.asp?url=%2Faccount%2Fx.asp%3Fa%3D1%26b%3D2%23");
    const std::string longest = "/account/?" + std::string(6900, 'a');
    EXPECT_GT(login_address(site, longest).size(), longest.size());
    EXPECT_EQ(login_address(site, longest + std::string(100, '/')), "/in/login.asp")
        << "it would be too long for an address";
}

}  // namespace
}  // namespace orvo::web
