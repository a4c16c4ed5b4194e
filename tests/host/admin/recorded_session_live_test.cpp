// The session that docs/admin.md shows is typed again, on a terminal, and has to come out as it
// stands there.

#include <gmock/gmock.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>

#include "tests/client/installed_modules.h"
#include "tests/support/pseudo_terminal.h"
#include "tests/support/server_certificate.h"
#include "tests/support/slapd.h"

namespace orvo {
namespace {

constexpr const char* service = "cn=orvo-service,ou=Services,o=Shop";
constexpr const char* prompt = "$ ";

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

// What a terminal shows after these octets: colours are left out, and what a later text stands on
// is gone.
std::string on_screen(const std::string& octets) {
    const std::string plain = std::regex_replace(octets, std::regex("\x1B\\[[0-9;]*m"), "");
    std::string screen, line;
    std::size_t column = 0;
    for (const char c : plain) {
        if (c == '\n') {
            line.erase(line.find_last_not_of(' ') + 1);
            screen += line + '\n';
            line.clear();
            column = 0;
        } else if (c == '\r') {
            column = 0;
        } else {
            if (line.size() <= column) line.resize(column + 1, ' ');
            line[column++] = c;
        }
    }
    return screen + line;
}

// The parts of the document's session by their headings: what is typed and shown, and the progress
// bar where one is shown meanwhile.
struct Part {
    std::string session;
    std::string bar;
};

std::map<std::string, Part> parts_of_document() {
    std::istringstream document(content_of(ORVO_SOURCE_DIR "/docs/admin.md"));
    std::map<std::string, Part> parts;
    std::string heading, line;
    std::string* block = nullptr;
    while (std::getline(document, line)) {
        if (block && line == "```")
            block = nullptr;
        else if (block)
            *block += line + '\n';
        else if (line.starts_with("### "))
            heading = line.substr(4);
        else if (line == "```console")
            block = &parts[heading].session;
        else if (line == "```text")
            block = &parts[heading].bar;
    }
    return parts;
}

std::vector<std::string> commands_in(const std::string& session) {
    std::vector<std::string> commands;
    std::istringstream lines(session);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with(prompt)) commands.push_back(line.substr(2));
    return commands;
}

// With the times of one day for those of another.
std::string without_times(const std::string& text) {
    static const std::regex time(R"(\d{4}-\d\d-\d\d( \d\d:\d\d:\d\d)?)");
    return std::regex_replace(text, time, "<time>");
}

// Numbers and the bar's steps are other ones each time.
std::regex pattern_of_bar(const std::string& line) {
    std::string pattern = std::regex_replace(line, std::regex(R"([\[\](){}.*+?^$|\\])"), R"(\$&)");
    pattern = std::regex_replace(pattern, std::regex("[0-9]+"), "[0-9]+");
    return std::regex(std::regex_replace(pattern, std::regex("[#-]{30}"), "[#-]{30}"));
}

class RecordedSession : public InstalledModules {
protected:
    RecordedSession() {
        // The service account may see the password policy and the server's own configuration.
        reconfigure("access to dn.subtree=\"ou=Users,o=Shop\" attrs=userPassword",
                    std::string("access to dn.subtree=\"ou=Policies,o=Shop\" by dn.exact=\"") +
                        service + "\" read by * none\n\n" +
                        "access to dn.subtree=\"ou=Users,o=Shop\" attrs=userPassword");
        std::filesystem::create_directory(folder_.path() / "home");
        std::filesystem::copy(server_.folder() / "Config", folder_.path() / "Config");
        std::filesystem::current_path(folder_.path() / "home");
        write_settings("service-sample");
    }
    ~RecordedSession() override { std::filesystem::current_path(started_in_); }

    // The server's own configuration is another one.
    void reconfigure(const std::string& from, const std::string& to) {
        const std::filesystem::path file = server_.folder() / "slapd.conf";
        const std::string text = content_of(file);
        ASSERT_NE(text.find(from), std::string::npos) << from;
        server_.stop();
        std::ofstream(file) << replaced(text, from, to);
        server_.start();
    }
    void write_settings(const std::string& code) {
        std::string text = content_of(server_.site_ini());
        text =
            replaced(text, "LDAPServer=" + server_.server(),
                     "LDAPServer=" + server_.tls_url() + "/?cafile=" + server_.ca_file().string());
        text = replaced(text, "MemScriptCode=service-sample", "MemScriptCode=" + code);
        std::ofstream(site()) << text;
    }
    static void write_people(int count) {
        std::ofstream csv("people.csv");
        csv << "cn,sn,mail,OrvoRole,OrvoApps,OrvoUserType\n";
        for (int i = 1; i <= count; ++i) {
            char name[16];
            std::snprintf(name, sizeof name, "p%05d", i);
            const char* role = i == 811 ? "receiver" : i % 1000 == 0 ? "24" : "1";
            csv << (i == 4001   ? "p00017"
                    : i == 9912 ? ""
                                : name)
                << ",Name " << i << ',' << name << "@shop.example," << role << ",1,1\n";
        }
    }

    // As an administrator of the document's machine would see it.
    std::string as_documented(std::string shown) const {
        shown = replaced(shown, site().string(), "/etc/orvo/site.ini");
        shown = replaced(shown, server_.tls_url(), "ldaps://127.0.0.1");
        const std::string port = server_.tls_url().substr(server_.tls_url().rfind(':') + 1);
        return replaced(shown, "at port " + port, "at port 636");
    }

    void replay(const std::string& heading) {
        const Part part = parts_of_document()[heading];
        ASSERT_NE(part.session, "") << heading;
        PseudoTerminal terminal({"/bin/sh", "-i"}, 120);
        const auto await_prompt = [&] { terminal.expect(std::string("\n") + prompt); };
        terminal.expect(prompt);
        for (const std::string& command : commands_in(part.session)) {
            terminal.type(command + '\n');
            await_prompt();
        }
        terminal.type("exit 0\n");
        EXPECT_EQ(terminal.wait(), 0);
        std::string shown = on_screen(replaced(terminal.shown(), "\r\r\n", "\r\n"));
        shown.erase(shown.rfind(std::string(prompt) + "exit 0"));
        EXPECT_EQ(without_times(as_documented(shown)), without_times(part.session)) << heading;
        if (part.bar.empty()) return;
        EXPECT_TRUE(std::regex_search(terminal.shown(),
                                      pattern_of_bar(part.bar.substr(0, part.bar.size() - 1))))
            << part.bar;
    }
    std::filesystem::path site() const { return folder_.path() / "site.ini"; }

    PrivateSlapd server_{{.tls = true,
                          .password_policy = true,
                          .config = std::string("database config\naccess to dn.subtree=cn=config "
                                                "by dn.exact=") +
                                    service + " read by * none\n"}};

private:
    const std::filesystem::path started_in_ = std::filesystem::current_path();
    const Environment path_{"PATH", std::string(ORVO_BIN) + ":/usr/bin:/bin"};
    const Environment prompt_{"PS1", prompt};
    const Environment home_{"HOME", (folder_.path() / "home").string()};
    const Environment site_{"ORVO_SITE_CONFIG", site().string()};
};

TEST_F(RecordedSession, OfManyUsersComesOutAsItStandsInTheDocument) {
    write_people(10'000);
    replay("Ten thousand users from a file");
    replay("A role as a list");
}

TEST_F(RecordedSession, OfWhatIsWrongComesOutAsItStandsInTheDocument) {
    write_people(10);
    output_of({ORVO_ADMIN, "import", "people.csv", "--quiet"});
    replay("Somebody cannot log in");
    replace_certificate(server_, "/O=Shop/CN=127.0.0.1", {"-days", "-1"});
    replay("A certificate that has expired");
    replace_certificate(server_, "/O=Shop/CN=127.0.0.1",
                        {"-extfile", folder_.write("names", "subjectAltName=IP:127.0.0.1\n")});
    write_settings("another");
    replay("Another password of the service account");
    write_settings("service-sample");
    reconfigure("OrvoGUID,OrvoRole,OrvoApps", "OrvoGUID,OrvoApps");
    replay("A missing index");
}

}  // namespace
}  // namespace orvo
