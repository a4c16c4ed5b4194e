// The program as it is started: with the component, the suite and a private directory server.

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <fstream>
#include <functional>
#include <mutex>
#include <optional>
#include <regex>
#include <thread>

#include "tests/host/web/browser.h"
#include "tests/host/web/wire.h"
#include "tests/support/child_process.h"
#include "tests/support/slapd.h"
#include "tests/support/temp_folder.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view login_page = R"(<%
var result = '';
if (Request.Form('user').Count) {
    var validator = Server.CreateObject('OrvoMembership.Validator');
    try {
        result = validator.ValidateCredentials(Request.Form('user'), String(Request.Form('password')), '');
    } catch (e) {
        result = 'failed';
    }
    if (result === 0) Response.Redirect(Server.LocalURL(Request.QueryString('url'), '/account/'));
}
%>login <%= result %>)";
constexpr std::string_view account_page = R"(<%
var user = Server.CreateObject('OrvoMembership.User');
%><%= Session('REMOTE_USER') %>|<%= user.CN %>)";
constexpr std::string_view logout_page = R"(<%
Application('TavikAuthFilter.Connector').Logout(Session('QUENDRAID'));
Session.Abandon();
%>bye)";

class OrvoWebTest : public testing::Test {
protected:
    static void SetUpTestSuite() { slapd = std::make_unique<PrivateSlapd>(); }
    static void TearDownTestSuite() { slapd.reset(); }

    OrvoWebTest() {
        setenv("ORVO_COMPONENTS", (folder_.path() / "components").c_str(), 1);
        setenv("ORVO_SITE_CONFIG", site_configuration().c_str(), 1);
        setenv("ORVO_LOG_FILE", (folder_.path() / "orvo.log").c_str(), 1);
        fs::create_directory(folder_.path() / "components");
        const std::string bin = ORVO_BIN;
        output_of({bin + "/orvo-register", bin + "/OrvoMembership.so", bin + "/OrvoSuite.so",
                   bin + "/OrvoPlatform.so"});
        write("site.ini", "[SITE]\nGuard = /account/ = 1, /admin/ = 10\n");
        write("login.asp", login_page);
        write("logout.asp", logout_page);
        write("account/default.asp", account_page);
        write("admin/default.asp", "admin");
        write("default.asp", "home");
    }

    fs::path site_configuration() {
        const fs::path file = folder_.path() / "site.ini";
        std::string text = content_of(slapd->site_ini());
        text = std::regex_replace(text, std::regex("MultiLogin=1"),
                                  "MultiLogin=" + std::to_string(multi_login_));
        std::ofstream(file) << text << '\n' << audit_;
        fs::create_directories(folder_.path() / "Config");
        fs::copy_file(slapd->site_ini().parent_path() / "Config/Directory.ini",
                      folder_.path() / "Config/Directory.ini",
                      fs::copy_options::overwrite_existing);
        return file;
    }
    void write(const std::string& path, std::string_view content) {
        fs::create_directories((site() / path).parent_path());
        std::ofstream(site() / path) << content;
    }
    fs::path site() const { return folder_.path() / "site"; }
    fs::path log() const { return folder_.path() / "out"; }

    // Starts the program and answers its port, as its first line says it.
    int start(std::vector<std::string> options = {}) {
        site_configuration();
        fs::remove(log());
        std::vector<std::string> arguments{std::string(ORVO_BIN) + "/orvo-web", site()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        process_.emplace(arguments, log());
        std::smatch address;
        for (int i = 0; i < 2000; ++i) {
            const std::string said = content_of(log());
            if (std::regex_search(said, address,
                                  std::regex("^Listening on http://127\\.0\\.0\\.1:"
                                             "(\\d+)\n")))
                return std::stoi(address[1]);
            if (!process_->running()) break;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        throw std::runtime_error("it does not listen: " + content_of(log()));
    }
    // Until the program has said something, on either stream.
    bool says(const std::string& what) {
        for (int i = 0; i < 2000 && process_->running(); ++i) {
            if (content_of(log()).find(what) != std::string::npos) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return content_of(log()).find(what) != std::string::npos;
    }
    // Whether this comes true, as it is to do without anything more being done.
    static bool seen(const std::function<bool()>& comes_true) {
        for (int i = 0; i < 2000; ++i) {
            if (comes_true()) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    static HttpResult log_in(Browser& browser, const std::string& user, const std::string& password,
                             const std::string& address = "/login.asp") {
        return browser.post(address, {{"user", user}, {"password", password}});
    }

    static inline std::unique_ptr<PrivateSlapd> slapd;
    TempFolder folder_;
    int multi_login_ = 1;
    std::string audit_;  // section of the site's configuration
    std::optional<ChildProcess> process_;
};

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
        audit, std::regex(R"("time":"[-0-9T:.]+Z",|,"server":"127\.0\.0\.1:\d+")"), "");
    const std::string jsmith = R"(,"user":"cn=jsmith,ou=Users,o=Shop","from":"127.0.0.1")";
    EXPECT_EQ(seen, R"({"event":"check","result":"wrong")" + jsmith + "}\n" +
                        R"({"event":"check","result":"right")" + jsmith + "}\n" +
                        R"({"event":"login","result":"done")" + jsmith +
                        R"(,"what":"application 1, 2"})" + "\n" +
                        R"({"event":"refusal","result":"refused")" + jsmith +
                        R"(,"what":"application 10"})" + "\n" +
                        R"({"event":"logout","result":"done")" + jsmith + "}\n");
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
    std::atomic<int> wrong = 0, logins = 0;
    std::mutex lock;
    std::string first_wrong;
    auto expect = [&](const HttpResult& result, int status, const std::string& body) {
        if (result && result->status == status && (status != 200 || result->body == body)) return;
        ++wrong;
        const std::lock_guard guard(lock);
        if (first_wrong.empty())
            first_wrong =
                "expected " + std::to_string(status) + ' ' + body + ", got " +
                (result ? std::to_string(result->status) + ' ' + result->body : result.error());
    };
    std::vector<std::thread> browsers;
    for (int i = 0; i < load("ORVO_LOAD_BROWSERS", 8); ++i)
        browsers.emplace_back([&, user = users[static_cast<std::size_t>(i) % users.size()]] {
            Browser browser(port);
            do {
                expect(log_in(browser, user, "shop-sample"), 303, "");
                for (int page = 0; page < 2; ++page)
                    expect(browser.get("/account/"), 200, user + "|" + user);
                expect(browser.get("/logout.asp"), 200, "bye");
                expect(browser.get("/account/"), 302, "");
                ++logins;
            } while (std::chrono::steady_clock::now() < end);
        });
    for (std::thread& browser : browsers) browser.join();
    EXPECT_EQ(wrong, 0) << first_wrong;
    RecordProperty("logins", logins);
    process_->send(SIGTERM);
    EXPECT_EQ(process_->wait(), 0) << content_of(log());
}

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
    write("site.ini",
          "[SITE]\nGuard = /account/ = 1\nDirectoryPool = MaximumSize = 3\n"
          "DirectoryCache = Entries = 10, TimeToLive = 60\n");
    Browser browser(start());
    ASSERT_EQ(log_in(browser, "jsmith", "shop-sample")->status, 303);
    EXPECT_EQ(browser.get("/account/")->body, "jsmith|jsmith");
}

TEST_F(OrvoWebTest, TellsAnAdministratorOfItsConnectionsAndForgetsEntries) {
    write("site.ini",
          "[SITE]\nGuard = /account/ = 1\nAdminSocket = ../admin.sock\n"
          "DirectoryCache = Entries = 10, TimeToLive = 60\n");
    const fs::path socket = folder_.path() / "admin.sock";
    const auto orvo = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), std::string(ORVO_BIN) + "/orvo");
        arguments.insert(arguments.end(), {"--socket", socket});
        return output_of(arguments);
    };
    Browser browser(start());
    EXPECT_EQ(fs::status(socket).permissions(), fs::perms::owner_read | fs::perms::owner_write);
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
    EXPECT_FALSE(fs::exists(socket));
    EXPECT_THROW(orvo({"pool"}), std::runtime_error);
}

TEST_F(OrvoWebTest, TakesOverTheSocketOfAHostThatIsGoneAndNoOther) {
    write("site.ini", "[SITE]\nAdminSocket = ../admin.sock\n");
    const fs::path socket = folder_.path() / "admin.sock";
    start();
    ChildProcess second({std::string(ORVO_BIN) + "/orvo-web", site(), "--port", "0"},
                        folder_.path() / "second");
    EXPECT_EQ(second.wait(), 1);
    EXPECT_EQ(content_of(folder_.path() / "second"),
              "orvo-web: " + (site() / "../admin.sock").string() +
                  ": no administration socket can be made (another process listens there)\n");
    process_->send(SIGKILL);
    process_->wait();
    EXPECT_TRUE(fs::exists(socket));
    start();
    EXPECT_EQ(output_of({std::string(ORVO_BIN) + "/orvo", "cache", "clear", "--socket", socket}),
              "The host has forgotten 0 entries.\n");
}

TEST_F(OrvoWebTest, IsNotAskedByANameThatNoSocketCanHave) {
    const std::string name = "/" + std::string(107, 'x');
    const fs::path said = folder_.path() / "said";
    ChildProcess orvo({std::string(ORVO_BIN) + "/orvo", "pool", "--socket", name}, said);
    EXPECT_EQ(orvo.wait(), 1);
    EXPECT_EQ(content_of(said), "orvo: " + name + ": a socket's name has at most 107 octets\n");
}

TEST_F(OrvoWebTest, OneUserHasAsManyLoginsAsTheSiteSays) {
    write("site.ini", "[SITE]\nGuard = /account/ = 1\nLoginsOfOneUser = 1\n");
    const int port = start();
    Browser first(port), second(port), other(port);
    ASSERT_EQ(log_in(other, "admin", "shop-sample")->status, 303);
    ASSERT_EQ(log_in(first, "jsmith", "shop-sample")->status, 303);
    ASSERT_EQ(log_in(second, "jsmith", "shop-sample")->status, 303);
    EXPECT_EQ(first.get("/account/")->status, 302);
    EXPECT_EQ(second.get("/account/")->status, 200);
    EXPECT_EQ(other.get("/account/")->status, 200);
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

TEST_F(OrvoWebTest, AnUploadIsAFileForThePageAndLeavesNothingBehind) {
    fs::create_directory(folder_.path() / "uploads");
    fs::create_directory(folder_.path() / "tmp");
    write("site.ini", "[SITE]\nFileFolders = " + (folder_.path() / "uploads").string() +
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
    write("site.ini", "[SITE]\nErrorPage503 = /busy.html\nRequestsOfOneSession = 1\n");
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
    write("site.ini", "[SITE]\nPageTimeout = 3600\nDrainTime = 1\n");
    HttpResult result{"not asked"};
    std::thread running = run_page(start(), "true", result);
    process_->send(SIGTERM);
    EXPECT_EQ(process_->wait(), 1);
    running.join();
    EXPECT_FALSE(result);
    EXPECT_TRUE(says("orvo-web: ended before all requests were answered\n"));
}

TEST_F(OrvoWebStopTest, ASecondSignalEndsAtOnce) {
    write("site.ini", "[SITE]\nPageTimeout = 3600\nDrainTime = 3600\n");
    HttpResult result{"not asked"};
    std::thread running = run_page(start(), "true", result);
    process_->send(SIGTERM);
    process_->send(SIGHUP);  // is answered by the same thread, so the first one has been seen
    EXPECT_TRUE(says("the site's settings have been read again"));
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
