#include "host/web/page_runner.h"

#include <gtest/gtest.h>

#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "tests/host/web/test_site.h"

namespace orvo::web {

// A component that reaches the page through the object context, as the login does.
class Visitor {
public:
    Visitor() {
        const auto server = Ref<AppServer>::from(create_object(app_server_progid));
        const auto context = call<&AppServer::GetObjectContext>(server);
        for (const Text name : {u"Request", u"Response", u"Session", u"Application", u"Server"})
            items_.emplace(name, call<&ObjectContext::Item>(context, name).to<Object>());
    }

    Text Visit() {
        const Text old = late::get(items_[u"Request"], u"Cookies", {u"ID"}).to<Text>();
        late::put(items_[u"Response"], u"Cookies", u"{NEW}", {u"ID"});
        late::put(late::get(items_[u"Response"], u"Cookies", {u"ID"}).to<Object>(), u"Path", u"/");
        late::put_value(items_[u"Session"], u"visited", {u"QUENDRAID"});
        return old + late::value_of(items_[u"Application"], {u"name"}).to<Text>();
    }

private:
    std::map<Text, Object> items_;
};

}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto table_of<web::Visitor> = describe<web::Visitor>(
    "IVisitor", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2cf4", method<&web::Visitor::Visit>("Visit"));
template <>
inline constexpr auto class_of<web::Visitor> =
    describe_class<web::Visitor>("Test.Visitor", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2cf5");
}  // namespace orvo

namespace orvo::web {
namespace {

class PageRunnerTest : public testing::Test {
protected:
    std::string failure_of(std::string_view page, std::chrono::seconds limit = {}) {
        site_.write("/page.asp", page);
        const auto context = site_.request({.target = "/page.asp"});
        context->time_limit = limit;
        try {
            run_page(context, site_.pages);
            return "no failure; it wrote " + context->answer.body;
        } catch (const script::ScriptError& error) {
            return error.what();
        } catch (const PageError& error) {
            return error.what();
        }
    }

    TestSite site_;
};

TEST_F(PageRunnerTest, RunsTextCodeAndExpressionsInTheirOrder) {
    EXPECT_EQ(
        site_.run("<ul>\n<% for (var i = 1; i <= 3; i++) { %>  <li><%= i %></li>\n<% } %></ul>"),
        "<ul>\n  <li>1</li>\n  <li>2</li>\n  <li>3</li>\n</ul>");
    EXPECT_EQ(
        site_.run("<% if (1 > 2) %>a<% else %>b<% function f(x) { %>[<%= x %>]<% } f('é') %>"),
        "b[é]");
    EXPECT_EQ(site_.run("<% var a = 1 %>x<%= a // the number %><% /* %> never seen <% */ %>y"),
              "x1y");
}

TEST_F(PageRunnerTest, APageReadsItsRequestAndWritesItsAnswer) {
    const std::string page =
        "<%= Request.QueryString('q') %>|<%= Request.QueryString('none') %>|"
        "<%= Request.Form('n').Count %>|<%= Request.Cookies('c') %>|"
        "<%= Request.ServerVariables('REQUEST_METHOD') %>"
        "<% Response.Status = '404 Not Found'; Response.ContentType = 'text/plain';"
        "   Response.AddHeader('X-A', 'b'); Response.Cookies('out') = 'v';"
        "   Response.Cookies('out').Path = '/p'; %>";
    EXPECT_EQ(site_.run(page, {.method = "POST",
                               .target = "/page.asp?q=%3Cx%3E",
                               .headers = {{"Content-Type", "application/x-www-form-urlencoded"},
                                           {"Cookie", "c=d"}},
                               .body = RequestBody("n=1&n=2")}),
              "<x>||2|d|POST");
    EXPECT_EQ(site_.last.status, 404);
    EXPECT_EQ(site_.last.content_type, u"text/plain");
    EXPECT_EQ(site_.last.headers, (Headers{{"X-A", "b"}}));
    ASSERT_EQ(site_.last.cookies.size(), 1u);
    EXPECT_EQ(header_text(*site_.last.cookies[0]), "out=v; Path=/p; HttpOnly; SameSite=Lax");
}

TEST_F(PageRunnerTest, SessionAndApplicationAreWrittenTheWayPagesDo) {
    EXPECT_EQ(site_.run("<% Session('n') = 5; Session('n') = Session('n') + 1; "
                        "Application('a') = 'x'; %><%= Session('n') %><%= Application('A') %>"
                        "<%= typeof Session('none') %>"),
              "6xundefined");
}

TEST_F(PageRunnerTest, ComponentsMeetThePageInTheObjectContext) {
    const LocalClass visitor = local_class<Visitor>();
    ApplicationState::Holder(site_.application, {}).put(u"name", u"shop");
    EXPECT_EQ(site_.run("<%= Server.CreateObject('Test.Visitor').Visit() %>",
                        {.target = "/page.asp", .headers = {{"Cookie", "ID=old-"}}}),
              "old-shop");
    EXPECT_EQ(header_text(*site_.last.cookies.at(0)),
              "ID=%7BNEW%7D; Path=/; HttpOnly; SameSite=Lax");
}

TEST_F(PageRunnerTest, NothingOfOnePageIsThereForTheNext) {
    EXPECT_EQ(site_.run("<% leaked = 1; String.prototype.x = 2 %>"), "");
    EXPECT_EQ(site_.run("<%= typeof leaked %> <%= typeof ''.x %>"), "undefined undefined");
}

TEST_F(PageRunnerTest, EndAndRedirectEndThePageWhateverItCatches) {
    EXPECT_EQ(site_.run("a<% try { Response.End() } catch (e) { } finally { } %>b"), "a");
    EXPECT_EQ(site_.run("a<% try { Response.Redirect('/x') } catch (e) {} %>b"), "");
    EXPECT_EQ(site_.last.status, 302);
}

TEST_F(PageRunnerTest, APageExecutesOthersAndTransfersToThem) {
    site_.write("/sub/inner.asp", "inner <%= title %>");
    EXPECT_EQ(site_.run("<% var title = 'T' %>[<% Server.Execute('sub/inner.asp') %>]"),
              "[inner T]");
    EXPECT_EQ(site_.run("lost<% var title = 'U'; Server.Transfer('/sub/inner.asp') %>never"),
              "inner U");
    EXPECT_EQ(failure_of("<% Server.Execute('none.asp') %>"),
              "/page.asp, line 1: /none.asp: there is no file \"/none.asp\"");
    EXPECT_NE(failure_of("<% Server.Execute('page.asp') %>")
                  .find("Pages execute each other too deeply: page.asp"),
              std::string::npos);
}

TEST_F(PageRunnerTest, FailuresNameThePageAndTheLine) {
    EXPECT_EQ(failure_of("one\n<% two();\nthree(); %>"),
              "/page.asp, line 2: ReferenceError: identifier 'two' undefined");
    site_.write("/head.inc", "\n\n<%= missing.thing %>");
    EXPECT_EQ(failure_of("<!-- #include file=\"head.inc\" -->"),
              "/head.inc, line 3: ReferenceError: identifier 'missing' undefined");
    EXPECT_EQ(failure_of("\n\n<% var = 1 %>").substr(0, 19), "/page.asp, line 3: ");
    EXPECT_EQ(failure_of("x\n<% Response.Status = 'fine' %>"),
              "/page.asp, line 2: A status is like \"404 Not Found\", from 200 to 599; this is "
              "\"fine\"");
    EXPECT_EQ(failure_of("x\n<% never"), "/page.asp, line 2: \"<%\" is not closed by \"%>\"");
}

TEST_F(PageRunnerTest, AnEndlessPageIsStoppedAndTheThreadServesOn) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(failure_of("a\n<% while (true) { try { for (;;); } catch (e) {} } %>",
                         std::chrono::seconds(1))
                  .substr(0, 19),
              "/page.asp, line 2: ");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
    EXPECT_EQ(failure_of("<% Server.ScriptTimeout = 1; for (;;); %>").substr(0, 19),
              "/page.asp, line 1: ");
    EXPECT_EQ(site_.run("next"), "next");
}

TEST_F(PageRunnerTest, ThePageFormOfAClientsValuesIsNeverCode) {
    EXPECT_EQ(site_.run("<%= Server.HTMLEncode(Request.QueryString('q')) %>",
                        {.target = "/page.asp?q=%3C%25%3D+1+%25%3E%22"}),
              "&lt;%= 1 %&gt;&quot;");
}

}  // namespace
}  // namespace orvo::web
