// The program as it is run: settings, signals, service manager, administration socket, its end, and
// a directory that does not answer.

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>

#include "tests/host/web/orvo_web_test.h"
#include "tests/support/faulty_proxy.h"
#include "tests/support/redis_server.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

TEST_F(OrvoWebTest, WithoutItsDirectoryItSaysSoAndSetsNothing) {
    Browser browser(start());
    EXPECT_EQ(browser.get("/health/ready")->body, "ready\n");
    slapd->stop();
    const auto login = log_in(browser, "jsmith", "shop-sample");
    EXPECT_EQ(browser.get("/health/live")->status, 200);
    // What was learned a moment ago is answered again.
    EXPECT_TRUE(seen([&] { return browser.get("/health/ready")->status == 503; }));
    slapd->start();
    EXPECT_EQ(login->body, "login failed");
    EXPECT_TRUE(browser.cookies.empty());
    EXPECT_EQ(log_in(browser, "jsmith", "shop-sample")->status, 303);
}

TEST_F(OrvoWebTest, EndsWhenItIsAskedToAndLogsNoSecrets) {
    write("nobody.asp", R"(<%
Server.CreateObject('OrvoMembership.User').BindAs(
    'nobody', Session('REMOTE_ACCOUNT'), Session('REMOTE_PASSWORD'));
%>)");
    const fs::path access = folder_.path() / "access.log";
    Browser browser(start({"--access-log", access}));
    ASSERT_EQ(log_in(browser, "jsmith", "shop-sample")->status, 303);
    browser.get("/default.asp?password=shop-sample");
    EXPECT_EQ(browser.get("/nobody.asp")->status, 500);
    process_->send(SIGINT);
    EXPECT_EQ(process_->wait(), 0);
    const std::string failures = content_of(folder_.path() / "orvo.log");
    EXPECT_NE(failures.find("METHOD: OrvoMembership.User.BindAs"), std::string::npos) << failures;
    const std::string all = content_of(access) + content_of(log()) + failures;
    EXPECT_EQ(all.find("shop-sample"), std::string::npos) << all;
    EXPECT_EQ(all.find(browser.cookies["QUENDRAID"]), std::string::npos);
    EXPECT_EQ(all.find(browser.cookies["orvosession"]), std::string::npos);
    EXPECT_NE(content_of(access).find(" 127.0.0.1 POST /login.asp 303 0 "), std::string::npos)
        << content_of(access);
}

TEST_F(OrvoWebTest, SaysWhatIsWrongAndDoesNotStart) {
    const auto said = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), std::string(ORVO_BIN) + "/orvo-web");
        const fs::path file = folder_.path() / "said";
        ChildProcess process(arguments, file);
        const int code = process.wait();
        std::string text = content_of(file);
        fs::remove(file);
        return std::to_string(code) + ' ' + text.substr(0, text.find('\n'));
    };
    EXPECT_EQ(said({}), "2 orvo-web: SITE is required; see orvo-web --help");
    EXPECT_EQ(said({"/none"}), "1 orvo-web: /none: there is no such folder");
    write("site.ini", "[SITE]\nGuard = /a = 1\n");
    EXPECT_EQ(said({site()}),
              "1 orvo-web: site.ini, line 2: Guard: \"/a\" does not begin and end with \"/\"");
    write("site.ini", "[SITE]\n\n\nGaurd = /account/ = 1\n");
    EXPECT_EQ(said({site()}),
              "1 orvo-web: site.ini, line 4: there is no key \"Gaurd\"; did you mean \"Guard\"?");
    EXPECT_EQ(said({site(), "--config", "/none/shop.ini"}),
              "1 orvo-web: /none/shop.ini: there is no such file");
    write("site.ini", "[SITE]\nDirectoryPool = NoSuchThing = 1\n");
    EXPECT_NE(said({site()}).find("NoSuchThing"), std::string::npos)
        << "what the provider refuses is told by name";
}

TEST_F(OrvoWebTest, HandsSettingsOfPoolAndCacheToTheProvider) {
    settle("DirectoryPool = MaximumSize = 3\nDirectoryCache = Entries = 10, TimeToLive = 60\n");
    Browser browser(start());
    ASSERT_EQ(log_in(browser, "jsmith", "shop-sample")->status, 303);
    EXPECT_EQ(browser.get("/account/")->body, "jsmith|jsmith");
}

TEST_F(OrvoWebTest, TellsAnAdministratorOfItsConnectionsAndForgetsEntries) {
    settle("AdminSocket = ../admin.sock\nDirectoryCache = Entries = 10, TimeToLive = 60\n");
    Browser browser(start());
    EXPECT_EQ(fs::status(admin_socket()).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
    ASSERT_EQ(log_in(browser, "jsmith", "shop-sample")->status, 303);
    EXPECT_EQ(browser.get("/account/")->status, 200);

    const std::string server = slapd->url();
    EXPECT_EQ(orvo({"pool", "--format", "csv"}),
              "User,Use,Servers,InUse,Idle,Waiting\r\n"
              ",checks," +
                  server + ",0,0,0\r\n" + "\"cn=jsmith,ou=Users,o=Shop\",user," + server +
                  ",0,1,0\r\n" + "\"cn=orvo-service,ou=Services,o=Shop\",user," + server +
                  ",0,1,0\r\n");
    EXPECT_EQ(orvo({"pool", "--servers", "--columns", "Server,State,Reason", "--format", "csv"}),
              "Server,State,Reason\r\n" + server + ",up,\r\n");
    EXPECT_TRUE(std::regex_match(orvo({"cache", "clear"}),
                                 std::regex("The host has forgotten [1-9] entries\\.\n")));
    EXPECT_EQ(orvo({"cache", "clear"}), "The host has forgotten 0 entries.\n");
    EXPECT_EQ(browser.get("/account/")->status, 200);

    process_->send(SIGTERM);
    EXPECT_EQ(process_->wait(), 0);
    EXPECT_FALSE(fs::exists(admin_socket()));
    EXPECT_NE(orvo({"pool"}).find(": no host answers ("), std::string::npos) << orvo({"pool"});
}

TEST_F(OrvoWebTest, EndsAUsersLoginsOnAnAdministratorsWord) {
    settle("AdminSocket = ../admin.sock\n");
    const int port = start();
    Browser first(port), second(port), other(port);
    for (Browser* browser : {&first, &second})
        ASSERT_EQ(log_in(*browser, "jsmith", "shop-sample")->status, 303);
    ASSERT_EQ(log_in(other, "admin", "shop-sample")->status, 303);
    const auto log_out = [&](const std::string& name) { return orvo({"users", "logout", name}); };
    EXPECT_EQ(log_out("JSmith"), "JSmith: logged out, 2 logins.\n");
    EXPECT_EQ(first.get("/account/")->status, 302);
    EXPECT_EQ(second.get("/account/")->status, 302);
    EXPECT_EQ(other.get("/account/")->status, 200);
    EXPECT_EQ(log_out("jsmith"), "jsmith: not logged in.\n");
    EXPECT_EQ(log_out("admin"), "admin: logged out.\n");
    EXPECT_EQ(other.get("/account/")->status, 302);
}

// `orvo` is another machine then, as far as the store goes.
TEST_F(OrvoWebTest, SeesTheLoginsEndThatOtherProgramsEndInTheSharedStore) {
    const RedisServer store;
    audit_ = store.site_section();
    const int port = start();
    Browser browser(port);
    const auto orvo = [](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {std::string(ORVO_BIN) + "/orvo", "users"});
        return output_of(arguments);
    };
    const auto is_sent_to_login = [&] { return browser.get("/account/")->status == 302; };
    ASSERT_EQ(log_in(browser, "akilic", "shop-sample")->status, 303);
    EXPECT_EQ(browser.get("/account/")->status, 200);
    EXPECT_EQ(orvo({"logout", "akilic"}), "akilic: logged out.\n");
    EXPECT_TRUE(seen(is_sent_to_login));

    ASSERT_EQ(log_in(browser, "akilic", "shop-sample")->status, 303);
    EXPECT_EQ(browser.get("/account/")->status, 200);
    const std::string password = orvo({"password", "akilic", "--generate", "--quiet"});
    EXPECT_TRUE(seen(is_sent_to_login));
    // The session of the first one holds the old password, which these login pages do not forget.
    Browser other(port);
    EXPECT_EQ(log_in(other, "akilic", "shop-sample")->status, 200) << "not the password any more";
    EXPECT_EQ(log_in(other, "akilic", password.substr(0, password.size() - 1))->status, 303);
}

TEST_F(OrvoWebTest, TakesOverTheSocketOfAHostThatIsGoneAndNoOther) {
    settle("AdminSocket = ../admin.sock\n");
    start();
    ChildProcess second({std::string(ORVO_BIN) + "/orvo-web", site(), "--port", "0"},
                        folder_.path() / "second");
    EXPECT_EQ(second.wait(), 1);
    EXPECT_EQ(content_of(folder_.path() / "second"),
              "orvo-web: " + (site() / "../admin.sock").string() +
                  ": no administration socket can be made (another process listens there)\n");
    process_->send(SIGKILL);
    process_->wait();
    EXPECT_TRUE(fs::exists(admin_socket()));
    start();
    EXPECT_EQ(orvo({"cache", "clear"}), "The host has forgotten 0 entries.\n");
}

TEST_F(OrvoWebTest, IsNotAskedByANameThatNoSocketCanHave) {
    const std::string name = "/" + std::string(107, 'x');
    const fs::path said = folder_.path() / "said";
    ChildProcess orvo({std::string(ORVO_BIN) + "/orvo", "pool", "--socket", name}, said);
    EXPECT_EQ(orvo.wait(), 1);
    EXPECT_EQ(content_of(said), "orvo: " + name + ": a socket's name has at most 107 octets\n");
}

TEST_F(OrvoWebTest, TellsItsServiceManagerHowItDoes) {
    const std::string name = (folder_.path() / "notify").string();
    const int manager = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    name.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(manager, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    const timeval patience{.tv_sec = 30, .tv_usec = 0};
    setsockopt(manager, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    int beats = 0;
    const auto hear = [&] {
        while (true) {
            char message[64];
            const ssize_t size = recv(manager, message, sizeof message, 0);
            const std::string said(message, std::max<ssize_t>(size, 0));
            if (said != "WATCHDOG=1") return said;
            ++beats;
        }
    };
    setenv("NOTIFY_SOCKET", name.c_str(), 1);
    setenv("WATCHDOG_USEC", "2000", 1);
    start();
    unsetenv("NOTIFY_SOCKET");
    unsetenv("WATCHDOG_USEC");
    EXPECT_EQ(hear(), "READY=1");
    process_->send(SIGHUP);
    EXPECT_EQ(hear(), "RELOADING=1");
    EXPECT_EQ(hear(), "READY=1");
    EXPECT_GT(beats, 0);
    process_->send(SIGTERM);
    EXPECT_EQ(hear(), "STOPPING=1");
    EXPECT_EQ(process_->wait(), 0);
    close(manager);
}

TEST_F(OrvoWebTest, SighupReadsTheSettingsAgainAndOpensTheLogAnew) {
    write("extra/x.html", "extra");
    const fs::path access = folder_.path() / "access.log";
    Browser browser(start({"--access-log", access}));
    EXPECT_EQ(browser.get("/extra/x.html")->status, 200);
    fs::rename(access, folder_.path() / "access.log.1");
    write("site.ini", "[SITE]\nGuard = /account/ = 1, /extra/ = 1, /admin/ = 1\nDrainTime = 3\n");
    process_->send(SIGHUP);
    EXPECT_TRUE(
        says("orvo-web: the site's settings have been read again; DrainTime counts from the "
             "next start\n"));
    EXPECT_EQ(browser.get("/extra/x.html")->status, 302);
    EXPECT_EQ(browser.get("/default.asp")->status, 200);
    EXPECT_NE(content_of(folder_.path() / "access.log.1").find("GET /extra/x.html 200"),
              std::string::npos);
    EXPECT_NE(content_of(access).find("GET /default.asp 200"), std::string::npos);

    write("site.ini", "[SITE]\nGaurd = /admin/ = 10\n");
    process_->send(SIGHUP);
    EXPECT_TRUE(
        says("orvo-web: the settings stay as they were: site.ini, line 2: there is no key "
             "\"Gaurd\"; did you mean \"Guard\"?\n"));
    EXPECT_EQ(browser.get("/extra/x.html")->status, 302);

    write("site.ini", "[SITE]\nGuard = /account/ = 1, /extra/ = 1");
    process_->send(SIGHUP);
    EXPECT_TRUE(
        says("orvo-web: the settings stay as they were: the guard of /admin/ is gone; restart to "
             "serve it without this guard\n"));
    EXPECT_EQ(browser.get("/admin/")->status, 302);
    write("site.ini", "");
    process_->send(SIGHUP);
    EXPECT_TRUE(
        says("orvo-web: the settings stay as they were: the guard of /account/ is gone; restart "
             "to serve it without this guard\n"));
    EXPECT_EQ(browser.get("/account/")->status, 302);

    fs::remove(site() / "site.ini");
    process_->send(SIGHUP);
    EXPECT_TRUE(says("orvo-web: the settings stay as they were: site.ini is not there any more\n"));
    EXPECT_EQ(browser.get("/extra/x.html")->status, 302);
}

// The site's configuration is read as it is at each event; what is wrong there is told.
TEST_F(OrvoWebTest, GoesOnWithAnotherAuditAndSaysWhatKeepsEverybodyOut) {
    Browser browser(start());
    const auto logs_in = [&] {
        browser.cookies.clear();
        return log_in(browser, "jsmith", "shop-sample")->status == 303;
    };
    const auto audit = [&](const std::string& section) {
        audit_ = section;
        site_configuration();
        process_->send(SIGHUP);
    };
    const auto lines_of = [&](const char* file) {
        const std::string text = content_of(folder_.path() / file);
        return std::ranges::count(text, '\n');
    };
    EXPECT_TRUE(logs_in());
    audit("[AUDIT]\nFile=one.jsonl\n");
    EXPECT_TRUE(logs_in());
    EXPECT_EQ(lines_of("one.jsonl"), 2) << "a check and a login";
    audit("[AUDIT]\nFile=two.jsonl\nSync=yes\n");
    EXPECT_TRUE(logs_in());
    EXPECT_EQ(lines_of("one.jsonl"), 2);
    EXPECT_EQ(lines_of("two.jsonl"), 2);

    audit("[AUDIT]\nFiel=two.jsonl\n");
    EXPECT_TRUE(says("[AUDIT] Fiel: there is no such key; did you mean \"File\"?\n"));
    EXPECT_NE(content_of(log()).find("orvo-web: nobody can log in: "), std::string::npos);
    EXPECT_FALSE(logs_in());
    EXPECT_EQ(browser.get("/default.asp")->status, 200);
    audit("");
    EXPECT_TRUE(logs_in());
    EXPECT_EQ(lines_of("two.jsonl"), 2);
}

class OrvoWebStopTest : public OrvoWebTest {
protected:
    // A page that runs until it is stopped, or for a while; answers when it has begun.
    std::thread run_page(int port, std::string page, HttpResult& result) {
        write("begin.asp", "<% var begun = new Date(); Application('begun') = true; while (" +
                               page + "); %>done");
        write("begun.asp", "<%= Application('begun') ? 'yes' : 'no' %>");
        std::thread running([port, &result] { result = HttpClient(port).get("/begin.asp"); });
        Browser browser(port);
        for (int i = 0; i < 1000 && browser.get("/begun.asp")->body != "yes"; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return running;
    }
};

TEST_F(OrvoWebStopTest, APageThatRunsIsAnsweredBeforeTheEnd) {
    HttpResult result{"not asked"};
    std::thread running = run_page(start(), "new Date() - begun < 500", result);
    process_->send(SIGTERM);
    EXPECT_EQ(process_->wait(), 0) << content_of(log());
    running.join();
    ASSERT_TRUE(result);
    EXPECT_EQ(result->body, "done");
}

TEST_F(OrvoWebStopTest, AnEndIsNotPutOffForLongerThanTheSiteSays) {
    settle("PageTimeout = 3600\nDrainTime = 1\n");
    HttpResult result{"not asked"};
    std::thread running = run_page(start(), "true", result);
    process_->send(SIGTERM);
    EXPECT_EQ(process_->wait(), 1);
    running.join();
    EXPECT_FALSE(result);
    EXPECT_TRUE(says("orvo-web: ended before all requests were answered\n"));
}

TEST_F(OrvoWebStopTest, ASecondSignalEndsAtOnce) {
    settle("PageTimeout = 3600\nDrainTime = 3600\n");
    HttpResult result{"not asked"};
    const int port = start();
    std::thread running = run_page(port, "true", result);
    process_->send(SIGTERM);
    EXPECT_TRUE(seen([&] { return !HttpClient(port).get("/default.asp"); }));
    EXPECT_TRUE(process_->running());
    process_->send(SIGTERM);
    EXPECT_EQ(process_->wait(), 1);
    running.join();
    EXPECT_FALSE(result);
}

class FrozenDirectoryTest : public OrvoWebTest {
protected:
    ~FrozenDirectoryTest() { slapd->resume(); }
};

TEST_F(FrozenDirectoryTest, LeavesPagesAndFilesThatDoNotNeedIt) {
    write("style.css", "p{}");
    const int port = start({"--workers", "4"});
    slapd->pause();
    std::vector<std::thread> waiting;
    std::atomic<int> turned_away = 0, failed = 0, logged_in = 0;
    // The first ones are not known as pages that wait; the others are.
    for (int i = 0; i < 12; ++i)
        waiting.emplace_back([&, port] {
            Browser browser(port);
            const auto result = log_in(browser, "jsmith", "shop-sample");
            ++(result->status == 503 ? turned_away : result->status == 303 ? logged_in : failed);
        });
    Browser browser(port);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(browser.get("/default.asp")->body, "home");
        EXPECT_EQ(browser.get("/style.css")->status, 200);
        EXPECT_EQ(browser.get("/account/")->status, 302);
        EXPECT_EQ(browser.get("/health/live")->status, 200);
    }
    EXPECT_EQ(failed + logged_in, 0) << "the directory is still frozen";
    slapd->resume();
    for (std::thread& thread : waiting) thread.join();
    EXPECT_GE(logged_in, 3);
    EXPECT_EQ(turned_away + logged_in, 12);
}

TEST_F(FrozenDirectoryTest, IsNoLongerReadyAndTellsItsFigures) {
    settle("AdminAddress = 127.0.0.1:0\n");
    const int port = start();
    const int administration = administration_port();
    const auto status = [](int of, const char* path) { return HttpClient(of).get(path)->status; };
    for (const int its : {port, administration}) EXPECT_EQ(status(its, "/health/ready"), 200);
    slapd->pause();
    for (const int its : {port, administration})
        EXPECT_TRUE(seen([&] { return status(its, "/health/ready") == 503; }));
    EXPECT_EQ(HttpClient(port).get("/health/ready")->body, "directory unreachable\n");
    EXPECT_EQ(status(administration, "/metrics"), 200);
    EXPECT_EQ(status(administration, "/health/live"), 200);
    slapd->resume();
    EXPECT_TRUE(seen([&] { return status(port, "/health/ready") == 200; }));
}

TEST_F(FrozenDirectoryTest, IsReadyWhereTheSecondOfItsServersAnswers) {
    FaultyProxy silent(slapd->port());
    silent.fall_silent();
    servers_ = silent.server() + ' ' + slapd->server();
    const auto ready = HttpClient(start()).get("/health/ready");
    EXPECT_EQ(ready->status, 200) << ready->body;
}

TEST_F(FrozenDirectoryTest, IsToldByTheLoginPageItselfBeforeThePageIsStopped) {
    const int port = start();
    for (const bool has_connections : {false, true}) {
        Browser browser(port);
        if (has_connections) {
            ASSERT_EQ(log_in(browser, "jsmith", "shop-sample")->status, 303);
        }
        slapd->pause();
        const auto login = log_in(browser, "jsmith", "shop-sample");
        slapd->resume();
        EXPECT_EQ(login->status, 200);
        EXPECT_EQ(login->body, "login failed");
    }
}

}  // namespace
}  // namespace orvo::web
