#include "host/web/intrinsics/page_runner.h"

#include <gtest/gtest.h>

#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "platform/objects/dictionary/dictionary.h"
#include "platform/objects/files/file_system.h"
#include "platform/objects/stream/stream.h"
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
    site_.write("/sub/inner.asp",
                "inner <%= Server.MapPath('x.txt') %> <% Server.Execute('deep.asp') %>");
    site_.write("/sub/deep.asp", "deep");
    const std::string x = (site_.root / "sub/x.txt").string();
    EXPECT_EQ(site_.run("[<% Server.Execute('sub\\\\inner.asp') %>]<%= Server.MapPath('y') %>"),
              "[inner " + x + " deep]" + (site_.root / "y").string());
    EXPECT_EQ(site_.run("lost<% Server.Transfer('/sub/inner.asp') %>never"),
              "inner " + x + " deep");
    site_.write("/end.asp", "<% Response.End() %>never");
    EXPECT_EQ(site_.run("a<% try { Server.Execute('end.asp') } catch (e) {} %>b"), "a")
        << "the whole answer ends";
    EXPECT_EQ(failure_of("<% Server.Execute('none.asp') %>"),
              "/page.asp, line 1: /none.asp: there is no file \"/none.asp\"");
    EXPECT_NE(failure_of("<% Server.Execute('page.asp') %>")
                  .find("Pages execute each other too deeply: page.asp"),
              std::string::npos);
}

TEST_F(PageRunnerTest, TheFirstPageThatFailsTellsItsPlaceAndTheOthersPassItOn) {
    site_.write("/deep.asp", "\n\n<% unknown() %>");
    site_.write("/inner.asp", "\n<% Server.Execute('deep.asp') %>");
    EXPECT_EQ(failure_of("<% Server.Execute('inner.asp') %>"),
              "/page.asp, line 1: /deep.asp, line 3: ReferenceError: identifier 'unknown' "
              "undefined");
    EXPECT_EQ(failure_of("<% Server.Execute('page.asp') %>"),
              "/page.asp, line 1: /page.asp, line 1: Pages execute each other too deeply: "
              "page.asp");
}

TEST_F(PageRunnerTest, AnExecutedPageHasGlobalsOfItsOwn) {
    site_.write("/inner.asp",
                "<%= typeof title %><% var title = 'inner'; Session('n') = 1;"
                " Response.Cookies('c') = 'v'; String.prototype.mine = 1 %>");
    EXPECT_EQ(site_.run("<% var title = 'outer'; Server.Execute('inner.asp') %>|<%= title %>|"
                        "<%= typeof ''.mine %>|<%= Session('n') %>"),
              "undefined|outer|undefined|1");
    EXPECT_EQ(site_.last.cookies.size(), 1u);
    EXPECT_EQ(site_.run("<% var title = 'T'; Server.Transfer('inner.asp') %>"), "undefined");
}

TEST_F(PageRunnerTest, ObjectsOfTheScriptsOwnAreWrittenAsTheirText) {
    EXPECT_EQ(site_.run("<% try { throw new TypeError('x') } catch (e) { %><%= e %>|<% }"
                        " Response.Write(/a+/g); Response.Write([new Error('y'), 1]) %>|"
                        "<%= {} %>|<%= { toString: function () { return 'mine' } } %>"),
              "TypeError: x|/a+/gError: y,1|[object Object]|mine");
    EXPECT_EQ(site_.run("<% try { Response.Write({ toString: function () { throw 'no' } }) }"
                        " catch (e) { Response.Write(e) } %>"),
              "no");
    EXPECT_NE(failure_of("<% Session('e') = {} %>").find("cannot be given away"),
              std::string::npos);
    EXPECT_NE(failure_of("<% Response.AddHeader('X', {}) %>").find("cannot be given away"),
              std::string::npos);
}

TEST_F(PageRunnerTest, AnExecutedPageMayHaveAQueryOfItsOwn) {
    site_.write("/inner.asp",
                "[<%= Request.QueryString('a') %> <%= Request('a') %> <%= Request.QueryString %> "
                "<%= Request.ServerVariables('QUERY_STRING') %>]");
    EXPECT_EQ(site_.run("<% var mine = Request.QueryString, v = Request.ServerVariables;"
                        "Server.Execute('inner.asp?a=2&b'); Server.Execute('inner.asp');"
                        "Server.Execute('inner.asp?'); %><%= mine('a') %><%= v('QUERY_STRING') %>",
                        {.target = "/page.asp?a=1"}),
              "[2 2 a=2&b a=2&b][1 1 a=1 a=1][   ]1a=1");
}

TEST_F(PageRunnerTest, TheTimeLimitIsOneForAllThatAPageExecutes) {
    site_.write("/endless.asp", "<% for (;;); %>");
    EXPECT_EQ(failure_of("\n<% try { Server.Execute('endless.asp') } catch (e) {} for (;;); %>",
                         std::chrono::seconds(1))
                  .substr(0, 19),
              "/page.asp, line 2: ");
    site_.write("/short.asp", "<% Server.ScriptTimeout = 1; for (;;); %>");
    EXPECT_EQ(failure_of("\n<% try { Server.Execute('short.asp') } catch (e) {} for (;;); %>",
                         std::chrono::seconds(600))
                  .substr(0, 19),
              "/page.asp, line 2: ");
}

TEST_F(PageRunnerTest, AScriptOfTheServerRunsBehindThePagesOwnPieces) {
    EXPECT_EQ(site_.run("<script language=\"JScript\" runat=\"server\">"
                        "function greet(name) { return 'hello ' + name; } Response.Write('last')"
                        "</script><%= greet('you') %> "),
              "hello you last");
}

TEST_F(PageRunnerTest, APageMayDoWithoutASession) {
    site_.run("<% Session('n') = 1 %>");
    const auto context = site_.request({.target = "/page.asp"});
    site_.write("/page.asp",
                "<%@ EnableSessionState=False %><% try { Session('n') = 1 } "
                "catch (e) { Response.Write(e.message) } %>|<% try { Session('n') } "
                "catch (e) { Response.Write(e.message) } %>|<% try { "
                "Session.Contents.Remove('n') } catch (e) { Response.Write(e.message) } %>");
    run_page(context, site_.pages);
    EXPECT_EQ(context->answer.body,
              "This page has no session (EnableSessionState=False)|"
              "This page has no session (EnableSessionState=False)|"
              "This page has no session (EnableSessionState=False)");
}

TEST_F(PageRunnerTest, FilesOfPagesLieBelowTheFoldersThatTheSiteNames) {
    const LocalClass files = local_class<FileSystem>();
    std::filesystem::create_directory(site_.root / "in");
    const std::string page =
        "<% var f = new ActiveXObject('Scripting.FileSystemObject');"
        "try { f.CreateTextFile(Server.MapPath('in/a.txt')).Write('a') }"
        "catch (e) { Response.Write(e.number & 0xFFFF) } %>|<%"
        "try { f.CreateTextFile(Server.MapPath('b.txt')).Write('b') }"
        "catch (e) { Response.Write(e.number & 0xFFFF) } %>";
    EXPECT_EQ(site_.run(page), "70|70");
    const auto context = site_.request({.target = "/page.asp"});
    context->file_folders = {site_.root / "in"};
    run_page(context, site_.pages);
    EXPECT_EQ(context->answer.body, "|70");
    EXPECT_TRUE(std::filesystem::exists(site_.root / "in/a.txt"));
    EXPECT_FALSE(std::filesystem::exists(site_.root / "b.txt"));
}

TEST_F(PageRunnerTest, ComponentsFindNoSessionOnAPageThatDoesWithout) {
    const LocalClass visitor = local_class<Visitor>();
    EXPECT_EQ(failure_of("<%@ EnableSessionState=False %><% new ActiveXObject('Test.Visitor') %>")
                  .substr(0, 19),
              "/page.asp, line 1: ");
}

TEST_F(PageRunnerTest, APageInAnotherLanguageIsRefusedByItsName) {
    const auto said = [&](std::string_view page, const std::string& language) {
        const std::string failure = failure_of(page);
        return failure.find("This reads like " + language +
                            ", but the language of pages is JScript (ECMAScript): the page has to "
                            "be translated") != std::string::npos
                   ? ""
                   : failure;
    };
    for (const char* page : {"<% Dim x %>", "text\n<%\n  Set rs = Server.CreateObject(\"a.b\")\n%>",
                             "<% If a = 1 Then %>x<% End If %>", "<%\n' what this is\nx = 1\n%>",
                             "<% Option Explicit %>", "<% For Each a In b %>x<% Next %>",
                             "<script runat=server>\nSub Main\nEnd Sub\n</script>"})
        EXPECT_EQ(said(page, "VBScript"), "") << page;
    EXPECT_EQ(said("<% my $x = 1; $Response->write($x); %>", "PerlScript"), "");
    EXPECT_EQ(failure_of("<% var a = ; %>").find("reads like"), std::string::npos);
    EXPECT_EQ(failure_of("Dim x\nSet y = z<% var a = ; %>").find("reads like"), std::string::npos)
        << "text around the script may read like anything";
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

// What a page's scripts have in common: text of a MiB, and the number of what a function raises.
constexpr std::string_view memory_of_objects =
    "<% var mib = new Array(512 * 1024 + 1).join('x');"
    "function raised(body) { try { body(); } catch (e) { return e.description; } }"
    "var told = 'Out of memory: the script and its objects need more than they may (64 MiB)'; %>";

TEST_F(PageRunnerTest, WhatObjectsHoldCountsAsThePagesMemory) {
    const LocalClass dictionary = local_class<DictionaryObject>(), stream = local_class<Stream>();
    const auto shown = [&](const std::string& page) {
        return site_.run(std::string(memory_of_objects) + "<% " + page + " %>");
    };
    EXPECT_EQ(shown("var d = new ActiveXObject('Scripting.Dictionary'), n = 0;"
                    "Response.Write((raised(function () { for (;;) d.Add(n++, mib); }) == told) + "
                    "' ' + (n > 55 && n <= 64 && d.Count == n - 1));"),
              "true true");
    EXPECT_EQ(shown("var d = new ActiveXObject('Scripting.Dictionary'), n = 0;"
                    "Response.Write(raised(function () { for (;;) d.Add(n++, [[mib], n]); }) == "
                    "told);"),
              "True");
    EXPECT_EQ(shown("var s = new ActiveXObject('ADODB.Stream'); s.Open(); s.Type = 1; "
                    "Response.Write(raised(function () { s.Position = 1e8; }) == told);"),
              "True");
}

TEST_F(PageRunnerTest, WhatObjectsLetGoOfIsGivenBack) {
    const LocalClass dictionary = local_class<DictionaryObject>(), stream = local_class<Stream>();
    EXPECT_EQ(site_.run(std::string(memory_of_objects) +
                        "<% for (var i = 0; i < 25; ++i) {"
                        "var d = new ActiveXObject('Scripting.Dictionary');"
                        "d.Add('a', mib); d.Item('a') = mib; d.Key('a') = mib; d.Remove(mib);"
                        "d.Item(mib) = mib; if (i % 2) d.RemoveAll();"
                        "var s = new ActiveXObject('ADODB.Stream'); s.Open(); s.WriteText(mib);"
                        "s.Position = 0; if (i % 2) s.SetEOS(); else if (i % 3) s.Close();"
                        "} %><%= i %>"),
              "25");
}

TEST_F(PageRunnerTest, TextThatAStreamHasReadAheadIsCountedUntilItIsTaken) {
    const LocalClass files = local_class<FileSystem>();
    site_.write("/data/long.txt", std::string(40 << 20, 'a'));
    site_.write("/data/lines.txt", [] {
        std::string lines;
        while (lines.size() < (80 << 20)) lines.append(65535, 'a') += '\n';
        return lines;
    }());
    site_.write("/read.asp",
                std::string(memory_of_objects) +
                    "<% var files = new ActiveXObject('Scripting.FileSystemObject'), n = 0;"
                    "var t = files.OpenTextFile(Server.MapPath('/data/long.txt'));"
                    "Response.Write(String(raised(function () { t.ReadLine(); }) == told));"
                    "t = files.OpenTextFile(Server.MapPath('/data/lines.txt'));"
                    "for (; !t.AtEndOfStream; ++n) t.SkipLine(); Response.Write(' ' + n); %>");
    const auto page = site_.request({.target = "/read.asp"});
    page->file_folders = {site_.root / "data"};
    run_page(page, site_.pages);
    EXPECT_EQ(page->answer.body, "true 1280");
}

TEST_F(PageRunnerTest, AScriptHasTheMemoryThatItsObjectsLeave) {
    const LocalClass stream = local_class<Stream>();
    const std::string array = "; var a = []; for (var i = 0; i < 1e5; ++i) a.push({}); %>fine";
    EXPECT_EQ(failure_of("<% var s = new ActiveXObject('ADODB.Stream'); s.Open(); s.Type = 1; "
                         "s.Position = 60 << 20" +
                         array),
              "/page.asp, line 1: The script needed more memory than it may (64 MiB)");
}

TEST_F(PageRunnerTest, NoPageWritesAPageOfItsSite) {
    const LocalClass files = local_class<FileSystem>();
    site_.write("/data/a.txt", "hello");
    site_.write("/make.asp",
                "<% var files = new ActiveXObject('Scripting.FileSystemObject');"
                "var folder = Server.MapPath('/data');"
                "function number(body) { try { body(); return 0; } catch (e) { return e.number & "
                "0xFFFF; } }"
                "Response.Write([number(function () { files.CreateTextFile(folder + '/b.txt'); }),"
                "number(function () { files.CreateTextFile(folder + '/b.asp'); }),"
                "number(function () { files.GetFile(folder + '/a.txt').Name = 'c.ASP'; })]); %>");
    const auto page = site_.request({.target = "/make.asp"});
    page->file_folders = {site_.root / "data"};
    run_page(page, site_.pages);
    EXPECT_EQ(page->answer.body, "0,70,70");
    EXPECT_FALSE(std::filesystem::exists(site_.root / "data/b.asp"));
}

}  // namespace
}  // namespace orvo::web
