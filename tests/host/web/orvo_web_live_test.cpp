// The program as browsers meet it: with the component, the suite and a private directory server.

#include <atomic>
#include <csignal>
#include <cstdlib>

#include "tests/host/web/orvo_web_test.h"
#include "tests/host/web/wire.h"
#include "tests/host/web/wrong_answers.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

TEST_F(OrvoWebTest, ALoginLeadsBackToThePageThatWasAskedFor) {
    Browser browser(start());
    const auto asked = browser.get("/account/?x=1");
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->status, 302);
    const std::string login = asked->get_header_value("Location");
    EXPECT_EQ(login, "/login.asp?url=%2Faccount%2F%3Fx%3D1");

    const auto wrong = log_in(browser, "jsmith", "wrong", login);
    EXPECT_EQ(wrong->body, "login -1");
    EXPECT_EQ(browser.cookies.count("QUENDRAID"), 0u);

    const auto right = log_in(browser, "jsmith", "shop-sample", login);
    ASSERT_EQ(right->status, 303) << right->body;
    EXPECT_EQ(right->get_header_value("Location"), "/account/?x=1");
    std::string cookies;
    for (std::size_t i = 0; i < right->get_header_value_count("Set-Cookie"); ++i)
        cookies += right->get_header_value("Set-Cookie", i) + '\n';
    EXPECT_TRUE(std::regex_search(
        cookies, std::regex("(^|\n)QUENDRAID=[^;]+; Path=/; HttpOnly; SameSite=Lax\n")))
        << cookies;

    const auto page = browser.get("/account/?x=1");
    EXPECT_EQ(page->status, 200) << page->body;
    EXPECT_EQ(page->body, "jsmith|jsmith");
    EXPECT_EQ(browser.get("/admin/")->status, 302) << "that is application 10";
    EXPECT_EQ(browser.get("/logout.asp")->body, "bye");
    EXPECT_EQ(browser.get("/account/")->status, 302);
}

TEST_F(OrvoWebTest, AnAdministratorHasApplicationTen) {
    Browser browser(start());
    EXPECT_EQ(log_in(browser, "admin", "shop-sample")->status, 303);
    EXPECT_EQ(browser.get("/admin/")->body, "admin");
}

TEST_F(OrvoWebTest, ACookieOrASessionAloneOpensNothing) {
    const int port = start();
    Browser owner(port);
    ASSERT_EQ(log_in(owner, "jsmith", "shop-sample")->status, 303);
    Browser thief(port);
    thief.cookies["QUENDRAID"] = owner.cookies["QUENDRAID"];
    EXPECT_EQ(thief.get("/account/")->status, 302);
    thief.cookies = {{"orvosession", owner.cookies["orvosession"]}};
    EXPECT_EQ(thief.get("/account/")->status, 302);
    EXPECT_EQ(owner.get("/account/")->status, 200);
}

TEST_F(OrvoWebTest, ASessionThatWasPlantedBeforeTheLoginIsOfNoUse) {
    const int port = start();
    write("cart.asp", "<% Session('cart') = 1 %>");
    Browser attacker(port);
    attacker.get("/cart.asp");
    Browser victim(port);
    victim.cookies = attacker.cookies;
    ASSERT_EQ(log_in(victim, "jsmith", "shop-sample")->status, 303);
    EXPECT_NE(victim.cookies["orvosession"], attacker.cookies["orvosession"]);
    attacker.cookies["QUENDRAID"] = victim.cookies["QUENDRAID"];
    EXPECT_EQ(attacker.get("/account/")->status, 302);
}

TEST_F(OrvoWebTest, ASecondLoginLeavesTheFirstAliveOrEndsIt) {
    for (const int multi_login : {1, 0}) {
        multi_login_ = multi_login;
        const int port = start();
        Browser first(port), second(port);
        ASSERT_EQ(log_in(first, "jsmith", "shop-sample")->status, 303);
        ASSERT_EQ(log_in(second, "JSmith", "shop-sample")->status, 303);
        EXPECT_EQ(second.get("/account/")->status, 200);
        EXPECT_EQ(first.get("/account/")->status, multi_login == 1 ? 200 : 302);
        process_->send(SIGTERM);
        EXPECT_EQ(process_->wait(), 0);
    }
}

TEST_F(OrvoWebTest, TheAuditSaysFromWhereSomebodyLoggedIn) {
    audit_ = "[AUDIT]\nFile=audit.jsonl\nSync=yes\n";
    Browser browser(start());
    log_in(browser, "jsmith", "wrong-sample");
    ASSERT_EQ(log_in(browser, "jsmith", "shop-sample")->status, 303);
    EXPECT_EQ(browser.get("/account/")->status, 200);
    EXPECT_EQ(browser.get("/admin/")->status, 302);
    EXPECT_EQ(browser.get("/logout.asp")->body, "bye");

    const std::string audit = content_of(folder_.path() / "audit.jsonl");
    const std::string seen = std::regex_replace(
        std::regex_replace(audit,
                           std::regex(R"("time":"[-0-9T:.]+Z",|,"server":"127\.0\.0\.1:\d+")"), ""),
        std::regex(R"("request":"[-\w]{16}"})"), "of a request}");
    const std::string jsmith = R"(,"user":"cn=jsmith,ou=Users,o=Shop","from":"127.0.0.1")";
    const std::string end = ",of a request}\n";
    EXPECT_EQ(seen, R"({"event":"check","result":"wrong")" + jsmith + end +
                        R"({"event":"check","result":"right")" + jsmith + end +
                        R"({"event":"login","result":"done")" + jsmith +
                        R"(,"what":"application 1, 2")" + end +
                        R"({"event":"refusal","result":"refused")" + jsmith +
                        R"(,"what":"application 10")" + end +
                        R"({"event":"logout","result":"done")" + jsmith + end);
    EXPECT_EQ(audit.find("sample"), std::string::npos) << "no password, right or wrong";
}

TEST_F(OrvoWebTest, NobodyLogsInWhereThatCannotBeRecordedAndHasToBe) {
    audit_ = "[AUDIT]\nFile=/dev/full\nSync=yes\n";
    Browser browser(start());
    EXPECT_EQ(log_in(browser, "jsmith", "shop-sample")->body, "login failed");
    EXPECT_EQ(browser.cookies.count("QUENDRAID"), 0u);
    EXPECT_EQ(browser.get("/account/")->status, 302);
    const std::string failures = content_of(folder_.path() / "orvo.log");
    EXPECT_NE(failures.find("/dev/full: the audit cannot be written (No space left on device)"),
              std::string::npos);
    EXPECT_EQ(failures.find("shop-sample"), std::string::npos);
}

// As long and with as many browsers as the environment says; a few seconds with few otherwise.
int load(const char* variable, int otherwise) {
    const char* text = std::getenv(variable);
    return text ? std::stoi(text) : otherwise;
}

TEST_F(OrvoWebTest, ManyBrowsersLogInAndOutAndNobodyGetsAnothersPage) {
    const int port = start();
    const std::vector<std::string> users{"jsmith", "glee", "admin", "local", "guest", "zeros"};
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::seconds(load("ORVO_LOAD_SECONDS", 3));
    std::atomic<int> logins = 0;
    WrongAnswers wrong;
    std::vector<std::thread> browsers;
    for (int i = 0; i < load("ORVO_LOAD_BROWSERS", 8); ++i)
        browsers.emplace_back([&, user = users[static_cast<std::size_t>(i) % users.size()]] {
            Browser browser(port);
            do {
                wrong.expect(log_in(browser, user, "shop-sample"), 303, "");
                for (int page = 0; page < 2; ++page)
                    wrong.expect(browser.get("/account/"), 200, user + "|" + user);
                wrong.expect(browser.get("/logout.asp"), 200, "bye");
                wrong.expect(browser.get("/account/"), 302, "");
                ++logins;
            } while (std::chrono::steady_clock::now() < end);
        });
    for (std::thread& browser : browsers) browser.join();
    EXPECT_EQ(wrong.count(), 0) << wrong.first();
    RecordProperty("logins", logins);
    process_->send(SIGTERM);
    EXPECT_EQ(process_->wait(), 0) << content_of(log());
}

TEST_F(OrvoWebTest, OneUserHasAsManyLoginsAsTheSiteSays) {
    settle("LoginsOfOneUser = 1\n");
    const int port = start();
    Browser first(port), second(port), other(port);
    ASSERT_EQ(log_in(other, "admin", "shop-sample")->status, 303);
    ASSERT_EQ(log_in(first, "jsmith", "shop-sample")->status, 303);
    ASSERT_EQ(log_in(second, "jsmith", "shop-sample")->status, 303);
    EXPECT_EQ(first.get("/account/")->status, 302);
    EXPECT_EQ(second.get("/account/")->status, 200);
    EXPECT_EQ(other.get("/account/")->status, 200);
}

TEST_F(OrvoWebTest, AnUploadIsAFileForThePageAndLeavesNothingBehind) {
    fs::create_directory(folder_.path() / "uploads");
    fs::create_directory(folder_.path() / "tmp");
    settle("FileFolders = " + (folder_.path() / "uploads").string() +
           "\nLargestUpload = 1000000\n");
    write("upload.asp",
          "<% var file = Request.Files('photo');"
          " file.SaveAs('" +
              (folder_.path() / "uploads").string() +
              "/' + Request.Form('name')) %>"
              "<%= Request.Files.Count %>|<%= file.FileName %>|<%= file.Size %>|"
              "<%= file.ContentType %>");
    setenv("TMPDIR", (folder_.path() / "tmp").c_str(), 1);
    const int port = start();
    unsetenv("TMPDIR");
    std::string bytes;
    for (int i = 0; bytes.size() < 500'000; ++i) bytes += std::to_string(i) + "\r\n--b\n";
    const auto form = [&](const std::string& content) {
        return "--border\r\nContent-Disposition: form-data; name=\"name\"\r\n\r\nkept.bin\r\n"
               "--border\r\nContent-Disposition: form-data; name=\"photo\"; "
               "filename=\"C:\\photos\\me.jpg\"\r\nContent-Type: image/jpeg\r\n\r\n" +
               content + "\r\n--border--\r\n";
    };
    HttpClient client(port);
    const auto sent =
        client.post("/upload.asp", form(bytes), "multipart/form-data; boundary=border");
    ASSERT_TRUE(sent) << sent.error();
    EXPECT_EQ(sent->body, "1|me.jpg|" + std::to_string(bytes.size()) + "|image/jpeg");
    EXPECT_EQ(content_of(folder_.path() / "uploads/kept.bin"), bytes);
    EXPECT_TRUE(fs::is_empty(folder_.path() / "tmp"));
    const auto again =
        client.post("/upload.asp", form("x"), "multipart/form-data; boundary=border");
    EXPECT_EQ(again->status, 500) << "a file is never written over";
    EXPECT_EQ(content_of(folder_.path() / "uploads/kept.bin"), bytes);
    const auto large = HttpClient(port).post("/upload.asp", form(std::string(1'100'000, 'x')),
                                             "multipart/form-data; boundary=border");
    ASSERT_TRUE(large) << large.error();
    EXPECT_EQ(large->status, 413);
}

TEST_F(OrvoWebTest, WhatAPageFlushesIsSentWhileItRuns) {
    write("slow.asp",
          "<% Response.Write('first'); Response.Flush();"
          "   while (!Application('go')); %>second");
    write("go.asp", "<% Application('go') = true %>went");
    const int port = start();
    Wire wire(port);
    wire.send("GET /slow.asp HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n");
    const std::string head = wire.read_until("first");
    EXPECT_NE(head.find("HTTP/1.1 200 OK\r\n"), std::string::npos) << head;
    EXPECT_TRUE(head.ends_with("first")) << head;
    EXPECT_EQ(HttpClient(port).get("/go.asp")->body, "went");
    EXPECT_NE(wire.read_all().find("second"), std::string::npos);
}

TEST_F(OrvoWebTest, WhatCannotBeHadNowIsToldByTheSitesOwnPage) {
    write("busy.html", "<p>come again</p>");
    settle("ErrorPage503 = /busy.html\nRequestsOfOneSession = 1\n");
    write("begin.asp", "<% Session('a') = 1 %>begun");
    write("hold.asp", "<% Application('held') = true; while (!Application('go')); %>done");
    write("held.asp", "<%@ EnableSessionState=False %><%= Application('held') ? 'yes' : 'no' %>");
    write("go.asp", "<%@ EnableSessionState=False %><% Application('go') = true %>went");
    const int port = start();
    Browser browser(port);
    ASSERT_EQ(browser.get("/begin.asp")->body, "begun");
    std::string held;
    std::thread holding([&, holder = browser.cookies] {
        Browser same(port);
        same.cookies = holder;
        held = same.get("/hold.asp")->body;
    });
    EXPECT_TRUE(seen([&] { return browser.get("/held.asp")->body == "yes"; }));
    const auto refused = browser.get("/begin.asp");
    EXPECT_EQ(refused->status, 503);
    EXPECT_EQ(refused->body, "<p>come again</p>");
    EXPECT_EQ(refused->get_header_value("Retry-After"), "1");
    EXPECT_EQ(Browser(port).get("/begin.asp")->body, "begun") << "others have theirs";
    EXPECT_EQ(browser.get("/go.asp")->body, "went");
    holding.join();
    EXPECT_EQ(held, "done");
    EXPECT_EQ(browser.get("/begin.asp")->body, "begun");
}

}  // namespace
}  // namespace orvo::web
