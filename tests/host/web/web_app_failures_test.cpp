// Pages that fail or take too long, and what the browser is shown instead.

#include "tests/host/web/web_app_test.h"

namespace orvo::web {
namespace {

TEST_F(WebAppTest, AFailedPageSaysSoWithoutItsReasonsAndKeepsTheSession) {
    testing::internal::CaptureStderr();
    const HttpResponse response = get("/fail.asp");
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(response.status, 500);
    EXPECT_NE(response.body.find("<p>The page could not be shown.</p>"), std::string::npos);
    EXPECT_EQ(response.body.find("unknown"), std::string::npos);
    EXPECT_NE(log.find(" /fail.asp: /fail.asp, line 2: ReferenceError: identifier 'unknown' "
                       "undefined\n"),
              std::string::npos)
        << log;
    const std::string browser = cookies(response);
    EXPECT_EQ(browser.substr(0, 12), "orvosession=");
    EXPECT_EQ(browser.find("lost"), std::string::npos);
    EXPECT_EQ(get("/kept.asp", {{"Cookie", browser}}).body, "1");
}

TEST_F(WebAppTest, TheLineOfAFailureHasTheRequestsIdentifier) {
    testing::internal::CaptureStderr();
    app().handle({.target = "/fail.asp", .id = "yN1"});
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find(" yN1 /fail.asp: /fail.asp, line 2: "), std::string::npos) << log;
}

TEST_F(WebAppTest, ShowsReasonsWhereThatIsAskedForAndEncodesThem) {
    shows_details_ = true;
    pages_.write("/tag.asp", "\n<% throw new Error('<b>') %>");
    testing::internal::CaptureStderr();
    const std::string body = get("/tag.asp").body;
    testing::internal::GetCapturedStderr();
    EXPECT_NE(body.find("/tag.asp, line 2: "), std::string::npos) << body;
    EXPECT_NE(body.find("&lt;b&gt;"), std::string::npos) << body;
    EXPECT_EQ(body.find("<b>"), std::string::npos) << body;
}

TEST_F(WebAppTest, APageThatFailsInTheMiddleOfItsAnswerSaysSoBehindIt) {
    pages_.write("/half.asp", "sent<% Response.Flush() %>lost<% unknown() %>");
    testing::internal::CaptureStderr();
    const HttpResponse response = get("/half.asp");
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(response.status, 200);
    EXPECT_EQ(response.body.substr(0, 19), "sent<!DOCTYPE html>");
    EXPECT_NE(response.body.find("<p>The page could not be shown.</p>"), std::string::npos);
    pages_.write("/half.asp",
                 "<% Response.ContentType = 'text/plain' %>sent<% Response.Flush(); unknown() %>");
    testing::internal::CaptureStderr();
    EXPECT_EQ(get("/half.asp").body, "sent");
    testing::internal::GetCapturedStderr();
}

TEST_F(WebAppTest, ASiteHasErrorPagesOfItsOwn) {
    pages_.write("/errors/404.asp", "<% Response.Write(Request.QueryString) %> not here");
    pages_.write("/errors/500.asp",
                 "<% var e = Server.GetLastError() %><%= e.File %>|<%= e.Line %>|<%= e.Source %>|"
                 "<%= e.Description %>|<%= e.Category %>|<%= e.Number < 0 %>|<%= e.ASPCode %>|"
                 "<%= e.Column %>|<%= e.Reference.length %>|<%= Session('kept') %>");
    pages_.write("/errors/503.html", "<p>later</p>");
    pages_.write("/site.ini",
                 "[SITE]\nErrorPage404 = /errors/404.asp\nErrorPage500 = /errors/500.asp\n"
                 "ErrorPage503 = /errors/503.html\nPageTimeout = 1\n");
    testing::internal::CaptureStderr();
    const HttpResponse none = get("/none.asp?a=1", {{"Host", "shop.example"}});
    EXPECT_EQ(none.status, 404);
    EXPECT_EQ(none.body, "404;http://shop.example/none.asp?a=1 not here");
    EXPECT_EQ(get("/none.css").body.substr(0, 4), "404;");

    const HttpResponse failed = get("/fail.asp");
    EXPECT_EQ(failed.status, 500);
    EXPECT_EQ(failed.body,
              "/fail.asp|2|unknown(); %>|identifier 'unknown' undefined|JScript "
              "runtime|True||-1|8|1");
    EXPECT_EQ(cookies(failed).substr(0, 12), "orvosession=") << "the failed page's session is kept";
    EXPECT_EQ(cookies(failed).find("lost"), std::string::npos);
    pages_.write("/broken.asp", "\n<% never closed");
    EXPECT_EQ(get("/broken.asp").body.substr(0, 71),
              "/broken.asp|2|<% never closed|\"<%\" is not closed by \"%>\"|Pages|True||-1");
    pages_.write("/outer.asp", "<% Server.Execute('inner.asp') %>");
    pages_.write("/inner.asp", "\n<% Server.Execute('fail.asp') %>");
    EXPECT_EQ(get("/outer.asp").body,
              "/fail.asp|2|unknown(); %>|identifier 'unknown' undefined|JScript "
              "runtime|True||-1|8|1")
        << "as if the page had been asked for";
    pages_.write("/caught.asp", "<% try { Server.Execute('fail.asp') } catch (e) {}\nother(); %>");
    EXPECT_EQ(get("/caught.asp").body.substr(0, 48),
              "/caught.asp|2|other(); %>|identifier 'other' und");
    pages_.write("/endless.asp", "<% for (;;); %>");
    EXPECT_NE(get("/endless.asp").body.find("|ASP 0113|"), std::string::npos);
    pages_.write("/status.asp", "<% Response.Status = 'fine' %>");
    EXPECT_EQ(
        get("/status.asp").body.substr(0, 130),
        "/status.asp|1|<% Response.Status = 'fine' %>|A status is like \"404 Not Found\", from "
        "200 to 599; this is \"fine\"|Response|True||-1|8");
    const auto lease = pages_.sessions.create();
    const HttpResponse later = get("/kept.asp", {{"Cookie", "orvosession=" + lease->id()}});
    EXPECT_EQ(later.status, 503);
    EXPECT_EQ(later.body, "<p>later</p>");
    EXPECT_EQ(header(later, "Cache-Control"), "no-store");
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(get("/default.asp").body, "home");
}

TEST_F(WebAppTest, APageForWhatIsNotToBeHadHasNoSession) {
    pages_.write("/later.asp",
                 "<%= Request.QueryString %> <% try { Session('a') } catch (e) { %>none<% } %>");
    pages_.write("/site.ini", "[SITE]\nErrorPage503 = /later.asp\n");
    const auto lease = pages_.sessions.create();
    const HttpResponse later =
        get("/kept.asp", {{"Cookie", "orvosession=" + lease->id()}, {"Host", "a"}});
    EXPECT_EQ(later.status, 503);
    EXPECT_EQ(later.body, "503;http://a/kept.asp none");
}

TEST_F(WebAppTest, AnErrorPageThatFailsLeavesTheBuiltInOne) {
    pages_.write("/errors/404.asp", "<% lost() %>");
    pages_.write("/errors/500.asp", "<% Response.Cookies('a') = 1; also_lost() %>");
    pages_.write("/site.ini",
                 "[SITE]\nErrorPage404 = /errors/404.asp\nErrorPage500 = /errors/500.asp\n");
    testing::internal::CaptureStderr();
    const HttpResponse none = get("/none.asp");
    const HttpResponse failed = get("/fail.asp");
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(none.status, 404);
    EXPECT_NE(none.body.find("<p>There is no such page.</p>"), std::string::npos);
    EXPECT_EQ(failed.status, 500);
    EXPECT_NE(failed.body.find("<p>The page could not be shown.</p>"), std::string::npos);
    EXPECT_EQ(cookies(failed).substr(0, 12), "orvosession=");
    EXPECT_EQ(cookies(failed).find("a="), std::string::npos);
    for (const char* name : {"'lost'", "'unknown'", "'also_lost'"})
        EXPECT_NE(log.find(name), std::string::npos) << name;
    EXPECT_EQ(app().handle({.method = "PUT", .target = "/"}).status, 405);
}

TEST_F(WebAppTest, ReasonsTellTheNumberThatAPageThrows) {
    shows_details_ = true;
    pages_.write("/own.asp", "\n<% throw new Error(5, 'not so') %>");
    testing::internal::CaptureStderr();
    const std::string body = get("/own.asp").body;
    testing::internal::GetCapturedStderr();
    EXPECT_NE(body.find("/own.asp, line 2: not so"), std::string::npos) << body;
    EXPECT_NE(body.find("0x5"), std::string::npos) << body;
}

TEST_F(WebAppTest, APageThatTakesTooLongIsStopped) {
    pages_.write("/loop.asp", "<% for (;;); %>");
    testing::internal::CaptureStderr();
    const HttpResponse response = get("/loop.asp");
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(response.status, 500);
    EXPECT_NE(response.body.find("<p>The page took too long and was stopped.</p>"),
              std::string::npos);
    EXPECT_EQ(get("/").body, "home");
}

}  // namespace
}  // namespace orvo::web
