#include "tests/host/web/web_app_test.h"

#include "suite/authfilter/live_logins.h"

namespace orvo::web {
namespace {

TEST(DecodedPath, IsOfThisSiteOrRefused) {
    EXPECT_EQ(decoded_path("/"), "/");
    EXPECT_EQ(decoded_path("/a%20b/c.asp?x=%zz"), "/a b/c.asp");
    EXPECT_EQ(decoded_path("/%C3%A9/"), "/é/");
    for (const char* target :
         {"",          "*",    "a",    "http://h/", "/../x",   "/a/../b",    "/%2e%2e/x",
          "/a/%2E./b", "/./a", "//a",  "/a//b",     "/a\\b",   "/%5c..%5cx", "/a%00b",
          "/%0a",      "/%",   "/%zz", "/%C3",      "/%c0%af", "/a/..",      "/."}) {
        try {
            decoded_path(target);
            ADD_FAILURE() << target << " was accepted";
        } catch (const Refusal& refusal) {
            EXPECT_EQ(refusal.status, 400) << target;
        }
    }
}

TEST_F(WebAppTest, ServesPagesAndFiles) {
    EXPECT_EQ(get("/").body, "home");
    EXPECT_EQ(get("/default.asp?x=1").body, "home");
    EXPECT_EQ(get("/sub/").body, "<p>sub</p>");
    const HttpResponse style = get("/style.css");
    EXPECT_EQ(style.content_type, "text/css; charset=utf-8");
    EXPECT_EQ(style.body, "p{}");
    const HttpResponse moved = get("/sub?a=1");
    EXPECT_EQ(moved.status, 301);
    EXPECT_EQ(header(moved, "Location"), "/sub/?a=1");
}

TEST_F(WebAppTest, KeepsToItselfWhatIsNotForBrowsers) {
    for (const char* target : {"/secret.inc", "/site.ini", "/.hidden.txt", "/none.asp", "/none/",
                               "/default.asp/x", "/default.asp/", "/DEFAULT.asp"})
        EXPECT_EQ(get(target).status, 404) << target;
    EXPECT_EQ(get("/../default.asp").status, 400);
    const HttpResponse odd = app().handle({.method = "DELETE", .target = "/"});
    EXPECT_EQ(odd.status, 405);
    EXPECT_EQ(header(odd, "Allow"), "GET, HEAD, POST");
    EXPECT_EQ(app().handle({.method = "POST", .target = "/style.css"}).status, 405);
}

TEST_F(WebAppTest, EveryAnswerCarriesTheSecurityHeaders) {
    for (const char* target : {"/", "/style.css", "/none", "/account/", "/health/live"}) {
        const HttpResponse response = get(target);
        EXPECT_EQ(header(response, "X-Content-Type-Options"), "nosniff") << target;
        EXPECT_EQ(header(response, "X-Frame-Options"), "DENY") << target;
        EXPECT_EQ(header(response, "Referrer-Policy"), "same-origin") << target;
        EXPECT_EQ(header(response, "Content-Security-Policy"),
                  "frame-ancestors 'none'; base-uri 'self'; form-action 'self'; object-src 'none'")
            << target;
    }
    pages_.write("/own.asp", "<% Response.AddHeader('X-Frame-Options', 'SAMEORIGIN') %>");
    EXPECT_EQ(header(get("/own.asp"), "X-Frame-Options"), "SAMEORIGIN");
}

TEST_F(WebAppTest, TheRequestsIdentifierIsInEveryAnswerAndKnownToItsPage) {
    pages_.write("/id.asp", "<%= Request.ServerVariables('REQUEST_ID') %>");
    pages_.write("/begun.asp", "<% Response.Flush() %>begun");
    for (const char* target : {"/id.asp", "/begun.asp", "/style.css", "/none", "/account/"})
        EXPECT_EQ(header(app().handle({.target = target, .id = "yN1"}), "X-Request-Id"), "yN1")
            << target;
    EXPECT_EQ(app().handle({.target = "/id.asp", .id = "yN1"}).body, "yN1");
    EXPECT_EQ(header(get("/"), "X-Request-Id"), "") << "one without";
    HttpResponse refused;
    app().note_refused({.id = "yN2"}, refused, {});
    EXPECT_EQ(header(refused, "X-Request-Id"), "yN2");
}

TEST_F(WebAppTest, CountsWhatBecameOfEachRequest) {
    pages_.write("/slow.asp", "<% while (true) {} %>");
    testing::internal::CaptureStderr();
    for (const char* target :
         {"/", "/style.css", "/none", "/fail.asp", "/slow.asp", "/health/live", "/account/"})
        app().handle({.target = target, .lane = Lane::page});
    testing::internal::GetCapturedStderr();
    Exposition out;
    metrics_->write(out);
    for (const char* line :
         {"orvo_http_requests_total{method=\"GET\",status=\"2xx\",lane=\"page\"} 3\n",
          "orvo_http_requests_total{method=\"GET\",status=\"3xx\",lane=\"page\"} 1\n",
          "orvo_http_requests_total{method=\"GET\",status=\"4xx\",lane=\"page\"} 1\n",
          "orvo_http_requests_total{method=\"GET\",status=\"5xx\",lane=\"page\"} 2\n",
          "orvo_http_answer_duration_seconds_count{kind=\"page\"} 4\n",
          "orvo_http_answer_duration_seconds_count{kind=\"file\"} 2\n",
          "orvo_http_answer_duration_seconds_count{kind=\"health\"} 1\n",
          "orvo_page_duration_seconds_count{outcome=\"done\"} 1\n",
          "orvo_page_duration_seconds_count{outcome=\"failed\"} 1\n",
          "orvo_page_duration_seconds_count{outcome=\"too_slow\"} 1\n",
          "orvo_page_duration_seconds_count{outcome=\"refused\"} 0\n"})
        EXPECT_NE(out.text().find(line), std::string::npos) << line << out.text();
}

TEST_F(WebAppTest, AGuardedPathLeadsToTheLogin) {
    for (const char* target : {"/account/", "/account/default.asp", "/account/logo.svg",
                               "/account/none.asp", "/account/%64efault.asp"}) {
        const HttpResponse response = get(target);
        EXPECT_EQ(response.status, 302) << target;
        EXPECT_EQ(header(response, "Location").substr(0, 34), "/login/login.asp?url=%2Faccount%2F")
            << target;
        EXPECT_EQ(response.body, "");
    }
    EXPECT_EQ(header(get("/account/?a=1&b=c"), "Location"),
              "/login/login.asp?url=%2Faccount%2F%3Fa%3D1%26b%3Dc");
    EXPECT_EQ(app().handle({.method = "POST", .target = "/account/", .headers = {}}).status, 303);
}

TEST_F(WebAppTest, ALoginOpensTheGuardedPathAndGivesTheSessionANewIdentifier) {
    const HttpResponse login = get("/login/login.asp");
    EXPECT_EQ(login.body, "in") << "the login page itself is open to everybody";
    const std::string browser = cookies(login);
    EXPECT_EQ(get("/account/", {{"Cookie", browser}}).status, 302) << "the filter does not know it";
    const auto connector = register_login();
    EXPECT_EQ(get("/account/", {{"Cookie", browser}}).body, "account");
    EXPECT_EQ(get("/account/logo.svg", {{"Cookie", browser}}).body, "<svg/>");
    EXPECT_EQ(get("/account/who.asp", {{"Cookie", browser}}).body, "jsmith");
    EXPECT_EQ(get("/who.asp", {{"Cookie", browser}}).body, "[]") << "nobody has looked who it is";
    call<&FilterConnector::Logout>(connector, u"G1");
    EXPECT_EQ(get("/account/", {{"Cookie", browser}}).status, 302);
}

TEST_F(WebAppTest, ALinkIsServedUnderTheGuardOfWhereItLeads) {
    pages_.write("/open/x.html", "x");
    pages_.write("/account/notes.html", "notes");
    const auto link = [&](const char* target, const char* name) {
        std::filesystem::create_symlink(target, pages_.root / name);
    };
    link("../account/logo.svg", "open/logo.svg");
    link("../account/default.asp", "open/page.asp");
    link("../account", "open/folder");
    link("open/x.html", "other.html");
    for (const char* target :
         {"/open/logo.svg", "/open/page.asp", "/open/folder/", "/open/folder/notes.html",
          "/open/folder/none.html", "/open/folder", "/open/folder/none"})
        EXPECT_EQ(get(target).status, 302) << target;
    EXPECT_EQ(get("/other.html").body, "x");
    EXPECT_EQ(get("/open/none").status, 404);
    const std::string browser = cookies(get("/login/login.asp"));
    register_login();
    EXPECT_EQ(get("/open/logo.svg", {{"Cookie", browser}}).body, "<svg/>");
    EXPECT_EQ(get("/open/folder/", {{"Cookie", browser}}).body, "account");
}

TEST_F(WebAppTest, BelowAGuardNobodyIsToldWhatIsThere) {
    pages_.write("/account/sub/x.html", "x");
    for (const char* target : {"/account", "/account/sub", "/account/sub/", "/account/none",
                               "/account/none/", "/account/sub/x.html", "/account/sub/none.html"}) {
        const HttpResponse response = get(target);
        EXPECT_EQ(response.status, 302) << target;
        EXPECT_TRUE(header(response, "Location").starts_with("/login/login.asp?url="))
            << target << " leads to " << header(response, "Location");
    }
    const std::string browser = cookies(get("/login/login.asp"));
    register_login();
    EXPECT_EQ(get("/account/sub", {{"Cookie", browser}}).status, 301);
    EXPECT_EQ(get("/account/none", {{"Cookie", browser}}).status, 404);
}

TEST_F(WebAppTest, AGuardedFileDoesNotWaitForAPageOfItsSession) {
    const std::string browser = cookies(get("/login/login.asp"));
    register_login();
    const auto id = browser.substr(browser.find("orvosession=") + 12, 43);
    const auto lease = pages_.sessions.open(id, std::chrono::milliseconds(0));
    ASSERT_TRUE(lease);
    EXPECT_EQ(get("/account/logo.svg", {{"Cookie", browser}}).body, "<svg/>");
    EXPECT_EQ(get("/account/", {{"Cookie", browser}}).status, 503);
}

TEST_F(WebAppTest, ALongGuardedAddressLeadsToTheLoginWithoutIt) {
    const HttpResponse response = get("/account/?" + std::string(7900, 'a'));
    EXPECT_EQ(response.status, 302);
    EXPECT_EQ(header(response, "Location"), "/login/login.asp");
}

TEST_F(WebAppTest, ALoginCookieThatNoFilterHasIsNotTakenOver) {
    pages_.write("/cookie.asp", "<%= Request.Cookies('LoginID') %>");
    const auto with = [&](std::size_t length) {
        return get("/cookie.asp", {{"Cookie", "LoginID=" + std::string(length, 'x')}}).body.size();
    };
    EXPECT_EQ(with(256), 256u);
    EXPECT_EQ(with(257), 0u) << "the login gives the browser a new one";
}

TEST_F(WebAppTest, ServesByNewSettingsAndKeepsTheOldOnesWhereTheyCannotBeRead) {
    pages_.write("/old/x.html", "x");
    EXPECT_EQ(get("/old/x.html").status, 200);
    pages_.write(
        "/site.ini",
        "[SITE]\nGuard = /old/ = 1\nLoginPage = /login/login.asp\nLoginCookie = LoginID\n");
    app().replace(read_site(pages_.root));
    EXPECT_EQ(get("/old/x.html").status, 302);
    EXPECT_EQ(get("/account/").status, 200);
    Site unnamed = read_site(pages_.root);
    unnamed.login_cookie.clear();
    unnamed.guards.clear();
    unnamed.guards.push_back({"/account/", 1});
    EXPECT_THROW(app().replace(unnamed), Failure) << "nothing tells the login's cookie";
    EXPECT_EQ(get("/old/x.html").status, 302);
}

TEST_F(WebAppTest, SettingsThatCannotBeHadChangeNothing) {
    const LocalClass logins = local_class<authfilter::LiveLogins>();
    const auto filter = register_login();
    const auto live = [&](const Text& guid) {
        return call<&FilterConnector::IsLoggedIn>(filter, guid, 1);
    };
    const auto log_in = [&](const Text& guid) {
        call<&FilterConnector::Logout>(filter, guid);
        const auto user = call<&FilterConnector::CreateUserWithGUID>(filter, guid);
        call<&FilterUser::put_AccountPath>(user, u"cn=a");
        call<&FilterUser::Save>(user);
        call<&FilterConnector::RegisterLogin>(filter, u"a", Values{1}, guid, std::int16_t{1}, 10);
    };
    Site wanted = app().site();
    wanted.logins_of_one_user = 1;
    wanted.login_cookie.clear();
    EXPECT_THROW(app().replace(wanted), Failure) << "nothing tells the login's cookie";
    log_in(u"G2");
    EXPECT_TRUE(live(u"G1")) << "a user still has many logins";
    wanted.login_cookie = u"LoginID";
    app().replace(wanted);
    log_in(u"G3");
    EXPECT_FALSE(live(u"G1"));
    EXPECT_FALSE(live(u"G2"));
    wanted.logins_of_one_user.reset();
    app().replace(wanted);
    log_in(u"G4");
    EXPECT_TRUE(live(u"G3")) << "without the key it is as at first";
}

TEST_F(WebAppTest, AFormWithoutALoginGoesOnToTheLoginPageWhereTheSiteWantsThat) {
    const HttpRequest form{.method = "POST", .target = "/account/?a=1"};
    HttpResponse response = app().handle(form);
    EXPECT_EQ(response.status, 303);
    EXPECT_EQ(header(response, "Location"), "/login/login.asp?url=%2Faccount%2F%3Fa%3D1");
    Site site = app().site();
    site.keeps_forms = true;
    app().replace(site);
    response = app().handle(form);
    EXPECT_EQ(response.status, 307);
    EXPECT_EQ(header(response, "Location"), "/login/login.asp?url=%2Faccount%2F%3Fa%3D1");
    EXPECT_EQ(get("/account/").status, 302);
}

class WaitingPagesTest : public WebAppTest {
protected:
    WaitingPagesTest() {
        pages_.write("/wait.asp",
                     "<% var name = 'nobody'; try { Session('x') = 1;\n"
                     "new ActiveXObject('Any.Component'); } catch (e) { name = e.message } %>"
                     "<%= name %>");
        pages_.write("/plain.asp", "<% new ActiveXObject('TavikAuthFilter.Connector') %>plain");
    }
    Lane lane_of(const std::string& target) { return app().lane_of({.target = target}); }

    LocalClass component_{u"Any.Component", guid("5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2cd1"),
                          [] { return make<authfilter::FilterConnectorObject>().object(); }};
};

TEST_F(WaitingPagesTest, AreKnownByTheirAddressOnceTheyHaveMadeAnObject) {
    EXPECT_EQ(lane_of("/wait.asp?a=1"), Lane::undecided);
    EXPECT_EQ(get("/wait.asp?a=2").body, "nobody");
    EXPECT_EQ(get("/plain.asp").body, "plain");
    EXPECT_EQ(lane_of("/wait.asp?a=1"), Lane::directory);
    EXPECT_EQ(lane_of("/plain.asp"), Lane::page) << "the filter is not the directory";
    EXPECT_EQ(lane_of("/none.asp"), Lane::undecided);
    EXPECT_EQ(lane_of("/shop/"), Lane::undecided) << "a page of the folder answers";
    EXPECT_EQ(lane_of("/shop.css?v=1"), Lane::page) << "a file";
    EXPECT_EQ(lane_of("/wait.%61sp"), Lane::directory) << "the same page";
    EXPECT_EQ(lane_of("/new.%61sp"), Lane::undecided);
    EXPECT_EQ(get("/plain%2Easp").body, "plain");
    EXPECT_EQ(lane_of("/wait%2.asp"), Lane::undecided) << "no address";
    EXPECT_EQ(lane_of("/health/live"), Lane::at_once);
    EXPECT_EQ(lane_of("/health/ready"), Lane::aside);
}

TEST_F(WaitingPagesTest, AreKnownByTheirMethodToo) {
    pages_.write("/form.asp",
                 "<% if (String(Request.ServerVariables('REQUEST_METHOD')) == 'POST')\n"
                 "new ActiveXObject('Any.Component'); %>form");
    const HttpRequest sent{.method = "POST", .target = "/form.asp"};
    EXPECT_EQ(app().handle(sent).body, "form");
    EXPECT_EQ(app().lane_of(sent), Lane::directory);
    EXPECT_EQ(get("/form.asp").body, "form");
    EXPECT_EQ(lane_of("/form.asp"), Lane::page) << "it is only shown";
}

TEST_F(WaitingPagesTest, AreTurnedAwayWhereTooManyWaitBeforeTheyAreKnown) {
    int asked = 0;
    const HttpResponse response =
        app().handle({.target = "/wait.asp", .try_wait = [&] { return ++asked == 0; }});
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(response.status, 503);
    EXPECT_EQ(header(response, "Retry-After"), "1");
    EXPECT_NE(response.body.find("Too many pages wait for the directory."), std::string::npos);
    EXPECT_EQ(response.body.find("nobody"), std::string::npos);
    EXPECT_EQ(lane_of("/wait.asp"), Lane::directory);
    EXPECT_EQ(app().handle({.target = "/wait.asp", .try_wait = [] { return true; }}).body,
              "nobody");
}

TEST_F(WaitingPagesTest, AFormIsOneUntilItIsSeenNotToBe) {
    pages_.write("/opinion.asp", "<%= Request.Form('text') %>");
    const HttpRequest sent{.method = "POST", .target = "/opinion.asp"};
    EXPECT_EQ(app().lane_of(sent), Lane::directory);
    EXPECT_EQ(app().handle(sent).status, 200);
    EXPECT_EQ(app().lane_of(sent), Lane::page);
}

TEST_F(WaitingPagesTest, OnceSeenToWaitArePlacedAmongThemWhateverIsSeenLater) {
    pages_.write("/order.asp",
                 "<% if (Request.QueryString('sum').Count) new ActiveXObject('Any.Component'); %>");
    get("/order.asp");
    EXPECT_EQ(lane_of("/order.asp"), Lane::page);
    get("/order.asp?sum=1");
    get("/order.asp");
    EXPECT_EQ(lane_of("/order.asp"), Lane::directory);
}

TEST(WaitingPages, AreBounded) {
    WaitingPages pages(3);
    for (int i = 0; i < 100; ++i) {
        pages.note("GET", "/" + std::to_string(i), true);
        EXPECT_EQ(pages.waits("GET", "/" + std::to_string(i)), true);
    }
    int kept = 0;
    for (int i = 0; i < 100; ++i) kept += pages.waits("GET", "/" + std::to_string(i)) ? 1 : 0;
    EXPECT_EQ(kept, 3);
}

TEST_F(WebAppTest, GlobalAsaIsCarriedOutAndNeverSent) {
    pages_.write("/global.asa",
                 "<script language=JScript runat=server>\n"
                 "function Application_OnStart() { Application('started') = 'yes' }\n"
                 "function Session_OnStart() { Session('kept') = Application('started') }\n"
                 "function Application_OnEnd() { Application('ended') = 1; unknown(); }\n"
                 "</script>");
    EXPECT_EQ(get("/style.css").status, 200);
    EXPECT_TRUE(app().application().get(u"started").is_empty()) << "a file starts nothing";
    EXPECT_EQ(get("/kept.asp").body, "yes");
    EXPECT_EQ(get("/global.asa").status, 404);
    testing::internal::CaptureStderr();
    app_.reset();
    EXPECT_NE(testing::internal::GetCapturedStderr().find("/global.asa, line 4"),
              std::string::npos);
}

TEST_F(WebAppTest, AFormThatCannotBeReadIsRefused) {
    const HttpResponse response =
        app().handle({.method = "POST",
                      .target = "/form.asp",
                      .headers = {{"Content-Type", "multipart/form-data; boundary=X"}},
                      .body = RequestBody("nothing")});
    EXPECT_EQ(response.status, 400);
    EXPECT_NE(response.body.find("The form cannot be read: its boundary is not in it."),
              std::string::npos);
}

TEST_F(WebAppTest, TellsItsHealth) {
    EXPECT_EQ(get("/health/live").body, "alive\n");
    EXPECT_EQ(get("/health/ready").body, "ready\n");
    EXPECT_EQ(get("/health/other").status, 404);
}

TEST_F(WebAppTest, IsAliveButNotReadyWithoutItsDirectory) {
    trouble_ = "no server at 10.0.0.1";
    EXPECT_EQ(get("/health/live").status, 200);
    const HttpResponse ready = get("/health/ready");
    EXPECT_EQ(ready.status, 503);
    EXPECT_EQ(ready.body, "directory unreachable\n");
}

TEST_F(WebAppTest, IsReadyNoLongerWhenItLeavesAndServesOn) {
    app().leave();
    const HttpResponse ready = get("/health/ready");
    EXPECT_EQ(ready.status, 503);
    EXPECT_EQ(ready.body, "it is about to end\n");
    EXPECT_EQ(get("/health/live").status, 200);
    EXPECT_EQ(get("/default.asp").body, "home");
}

TEST_F(WebAppTest, OneSessionIsServedOneRequestAtATime) {
    const auto lease = pages_.sessions.create();
    const HttpResponse response = get("/kept.asp", {{"Cookie", "orvosession=" + lease->id()}});
    EXPECT_EQ(response.status, 503);
    EXPECT_NE(response.body.find("Another request of this session takes too long."),
              std::string::npos);
    EXPECT_EQ(get("/style.css", {{"Cookie", "orvosession=" + lease->id()}}).status, 200)
        << "files need no session";
    pages_.write("/without.asp", "<%@ EnableSessionState=False %>without");
    EXPECT_EQ(get("/without.asp", {{"Cookie", "orvosession=" + lease->id()}}).body, "without");
}

TEST_F(WebAppTest, DoesNotStartWithGuardsAndWithoutAFilter) {
    pages_.write("/site.ini",
                 "[SITE]\nGuard = /account/ = 1\nLoginPage = /login/login.asp\n"
                 "LoginCookie = LoginID\n");
    const Site site = read_site(pages_.root);
    connector_.reset();
    EXPECT_THROW(WebApp(site, pages_.sessions, health_, log_, {}), Failure);
}

}  // namespace
}  // namespace orvo::web
