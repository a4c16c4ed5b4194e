// Many browsers at once on a running server: their sessions do not meet.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "host/web/site/web_app.h"
#include "suite/authfilter/filter_connector.h"
#include "tests/host/web/browser.h"
#include "tests/host/web/running_server.h"
#include "tests/host/web/test_site.h"
#include "tests/host/web/wrong_answers.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

// The logins of this site trust everybody: what counts here is that nobody gets another's.
constexpr std::string_view login_page = R"(<%
var user = String(Request.Form('user'));
var filter = Application('TavikAuthFilter.Connector');
var guid = 'GUID-' + user + '-' + Request.Form('round');
var record = filter.CreateUserWithGUID(guid);
record.AccountPath = 'cn=' + user;
record.UserName = user;
record.Save();
filter.RegisterLogin(user, Server.CreateObject('Test.Applications').List(), guid, 1, 10);
Session('QUENDRAID') = guid;
Session('REMOTE_ACCOUNT') = 'cn=' + user;
Session('count') = 0;
Response.Cookies('LoginID') = guid;
Response.Redirect('/account/');
%>)";
constexpr std::string_view account_page = R"(<%
Session('count') = Session('count') + 1;
Application.Lock();
Application('hits') = (Application('hits') || 0) + 1;
Application.UnLock();
%><%= Session('REMOTE_ACCOUNT') %>:<%= Session('count') %>)";
constexpr std::string_view logout_page = R"(<%
Application('TavikAuthFilter.Connector').Logout(Session('QUENDRAID'));
Session.Abandon();
%>out)";

}  // namespace

// The applications of a login, as an array.
class Applications {
public:
    Variant List() { return Values{1, 10}; }
};

}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto table_of<web::Applications> =
    describe<web::Applications>("IApplications", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2cf7",
                                method<&web::Applications::List>("List"));
template <>
inline constexpr auto class_of<web::Applications> =
    describe_class<web::Applications>("Test.Applications", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2cf8");
}  // namespace orvo

namespace orvo::web {
namespace {

class LoadSite : public TestSite {
public:
    LoadSite() {
        write("/site.ini", "[SITE]\nGuard = /account/ = 1\nLoginCookie = LoginID\n");
        write("/login.asp", login_page);
        write("/logout.asp", logout_page);
        write("/account/default.asp", account_page);
        write("/loop.asp", "<% Server.ScriptTimeout = 1; for (;;); %>");
    }
};

class WebLoad : public testing::Test {
protected:
    LoadSite pages_;
    LocalClass connector_ = local_class<authfilter::FilterConnectorObject>();
    LocalClass applications_ = local_class<Applications>();
    DirectoryHealth health_{[] {}};
    WebLog log_{{}};
    MemorySessions sessions_;
    WebApp app_{read_site(pages_.root), sessions_, health_, log_, WebApp::Options{}};
    ServerOptions options_{.workers = 8};
};

TEST_F(WebLoad, BrowsersThatLogInAndOutNeverGetEachOthersSession) {
    RunningServer server(
        options_, [&](const HttpRequest& request) { return app_.handle(request); },
        {.lane = [&](const HttpRequest& request) { return app_.lane_of(request); }});
    constexpr int browsers = 16, rounds = 6, visits = 3;
    std::atomic<int> visited = 0;
    WrongAnswers wrong;
    std::vector<std::thread> threads;
    for (int i = 0; i < browsers; ++i)
        threads.emplace_back([&, i] {
            Browser browser(server.port());
            const std::string user = "user" + std::to_string(i);
            for (int round = 0; round < rounds; ++round) {
                wrong.expect(browser.get("/account/"), 302, "");
                wrong.expect(
                    browser.post("/login.asp", {{"user", user}, {"round", std::to_string(round)}}),
                    303, "");
                for (int visit = 1; visit <= visits; ++visit)
                    if (wrong.expect(browser.get("/account/"), 200,
                                     "cn=" + user + ":" + std::to_string(visit)))
                        ++visited;
                wrong.expect(browser.get("/logout.asp"), 200, "out");
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong.count(), 0) << wrong.first();
    EXPECT_EQ(visited, browsers * rounds * visits);
    EXPECT_EQ(app_.application().get(u"hits"), Variant(browsers * rounds * visits));
    EXPECT_EQ(sessions_.counts().live, 0u);
}

TEST_F(WebLoad, RequestsOfOneSessionFollowEachOther) {
    // As many as a browser has connections; of more, some would get a 503.
    options_.workers = 16;
    RunningServer server(
        options_, [&](const HttpRequest& request) { return app_.handle(request); },
        {.lane = [&](const HttpRequest& request) { return app_.lane_of(request); }});
    Browser owner(server.port());
    ASSERT_EQ(owner.post("/login.asp", {{"user", "one"}, {"round", "s"}})->status, 303);
    std::vector<std::thread> threads;
    for (int i = 0; i < 6; ++i)
        threads.emplace_back([&] {
            Browser tab(server.port());
            tab.cookies = owner.cookies;
            for (int round = 0; round < 10; ++round) tab.get("/account/");
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(owner.get("/account/")->body, "cn=one:61");
}

TEST_F(WebLoad, EndlessPagesDoNotTakeTheWorkersAway) {
    testing::internal::CaptureStderr();
    {
        RunningServer server(options_,
                             [&](const HttpRequest& request) { return app_.handle(request); });
        std::vector<std::thread> threads;
        std::atomic<int> stopped = 0;
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([&] {
                const auto result = Browser(server.port()).get("/loop.asp");
                if (result && result->status == 500) ++stopped;
            });
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(stopped, 8);
        EXPECT_EQ(Browser(server.port()).get("/account/")->status, 302);
    }
    testing::internal::GetCapturedStderr();
}

}  // namespace
}  // namespace orvo::web
