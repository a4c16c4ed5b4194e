#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <regex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/host/web/browser.h"
#include "tests/support/child_process.h"
#include "tests/support/slapd.h"
#include "tests/support/temp_folder.h"
#include "tests/support/throttle_setting.h"

namespace orvo::web {

inline constexpr std::string_view login_page = R"(<%
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
inline constexpr std::string_view account_page = R"(<%
var user = Server.CreateObject('OrvoMembership.User');
%><%= Session('REMOTE_USER') %>|<%= user.CN %>)";
inline constexpr std::string_view logout_page = R"(<%
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
        std::filesystem::create_directory(folder_.path() / "components");
        const std::string bin = ORVO_BIN;
        output_of({bin + "/orvo-register", bin + "/OrvoMembership.so", bin + "/OrvoSuite.so",
                   bin + "/OrvoPlatform.so"});
        settle("");
        write("login.asp", login_page);
        write("logout.asp", logout_page);
        write("account/default.asp", account_page);
        write("admin/default.asp", "admin");
        write("default.asp", "home");
    }

    std::filesystem::path site_configuration() {
        const std::filesystem::path file = folder_.path() / "site.ini";
        std::string text = content_of(slapd->site_ini());
        text = std::regex_replace(text, std::regex("MultiLogin=1"),
                                  "MultiLogin=" + std::to_string(multi_login_));
        if (!servers_.empty())
            text = std::regex_replace(text, std::regex("LDAPServer=.*"), "LDAPServer=" + servers_);
        std::ofstream(file) << text << '\n' << audit_;
        write_throttle_section(file, throttle_);
        std::filesystem::create_directories(folder_.path() / "Config");
        std::filesystem::copy_file(slapd->site_ini().parent_path() / "Config/Directory.ini",
                                   folder_.path() / "Config/Directory.ini",
                                   std::filesystem::copy_options::overwrite_existing);
        return file;
    }
    void write(const std::string& path, std::string_view content) {
        std::filesystem::create_directories((site() / path).parent_path());
        std::ofstream(site() / path) << content;
    }
    // The site's settings: these lines, and its guards.
    void settle(const std::string& lines) {
        write("site.ini", "[SITE]\nGuard = /account/ = 1, /admin/ = 10\n" + lines);
    }
    std::filesystem::path site() const { return folder_.path() / "site"; }
    std::filesystem::path log() const { return folder_.path() / "out"; }

    // Starts the program and answers its port, as its first line says it.
    int start(std::vector<std::string> options = {}) {
        site_configuration();
        return start(process_, log(), std::move(options));
    }
    // One more of the same site.
    int start(std::optional<ChildProcess>& process, const std::filesystem::path& log,
              std::vector<std::string> options = {}) {
        std::filesystem::remove(log);
        std::vector<std::string> arguments{std::string(ORVO_BIN) + "/orvo-web", site()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        process.emplace(arguments, log);
        std::smatch address;
        for (int i = 0; i < 2000; ++i) {
            const std::string said = content_of(log);
            if (std::regex_search(said, address,
                                  std::regex("(?:^|\n)Listening on http://127\\.0\\.0\\.1:"
                                             "(\\d+)\n")))
                return std::stoi(address[1]);
            if (!process->running()) break;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        throw std::runtime_error("it does not listen: " + content_of(log));
    }
    // Of the address for administrators, where it has one.
    int administration_port() {
        const std::regex line("For administrators: http://127\\.0\\.0\\.1:(\\d+)\n");
        std::smatch found;
        EXPECT_TRUE(says("For administrators: "));
        const std::string said = content_of(log());
        return std::regex_search(said, found, line) ? std::stoi(found[1]) : 0;
    }
    // Where the program's administration socket is, by the setting "AdminSocket = ../admin.sock".
    std::filesystem::path admin_socket() const { return folder_.path() / "admin.sock"; }
    // What `orvo` says, on either stream, whatever comes of it.
    std::string orvo(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), std::string(ORVO_BIN) + "/orvo");
        arguments.insert(arguments.end(), {"--socket", admin_socket()});
        const std::filesystem::path said = folder_.path() / "said";
        std::filesystem::remove(said);
        ChildProcess(arguments, said).wait();
        return content_of(said);
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
    std::string servers_;  // of the directory; empty: slapd
    std::string audit_;    // section of the site's configuration
    std::string throttle_ = "On=no\n";
    std::optional<ChildProcess> process_;
};

}  // namespace orvo::web
