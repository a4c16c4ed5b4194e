#include "host/settings/settings_page.h"

#include <gmock/gmock.h>

#include <set>
#include <sstream>

#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

const fs::path source = ORVO_SOURCE;

TEST(SettingsPage, TheCommittedTextIsTheOneThatTheReadersTablesGive) {
    const fs::path committed = source / "docs/reference/settings.md";
    EXPECT_EQ(content_of(committed), settings_page())
        << "refresh it:\n    " << ORVO_REFRESH << " > " << committed;
}

TEST(SettingsPage, EveryRowHasASentence) {
    std::istringstream lines(settings_page());
    int rows = 0;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("| `")) continue;
        ++rows;
        EXPECT_TRUE(line.ends_with(". |")) << line;
    }
    EXPECT_GT(rows, 50);
}

// Every variable of the environment that a source of the product asks for.
std::set<std::string> variables_in_the_source() {
    std::set<std::string> names;
    for (const char* room : {"client", "component", "host", "platform", "suite"})
        for (const auto& entry : fs::recursive_directory_iterator(source / room)) {
            const std::string extension = entry.path().extension().string();
            if (extension != ".cpp" && extension != ".h") continue;
            const std::string text = content_of(entry.path());
            for (const std::string asked :
                 {"variable(\"", "getenv(\"", "taken(\"", "is_set(\"", "site_variable = \""})
                for (auto at = text.find(asked); at != text.npos; at = text.find(asked, at)) {
                    at += asked.size();
                    names.insert(text.substr(at, text.find('"', at) - at));
                }
        }
    return names;
}

// The patterns above know those who ask the system; they pass over one of another name.
TEST(SettingsPage, TheEnvironmentIsAskedInTheseSourcesAlone) {
    std::set<std::string> files;
    for (const char* room : {"client", "component", "host", "platform", "suite"})
        for (const auto& entry : fs::recursive_directory_iterator(source / room))
            if (entry.is_regular_file() &&
                content_of(entry.path()).find("getenv(") != std::string::npos)
                files.insert(entry.path().lexically_relative(source).string());
    EXPECT_THAT(files, testing::ElementsAre("host/admin/common/terminal.cpp",
                                            "host/script/script_shell.cpp",  // a script's own
                                            "host/web/service_manager.cpp",
                                            "platform/linux/search_path.cpp",
                                            "platform/values/environment.cpp",
                                            "suite/configuration/value_reference.cpp"));
}

TEST(SettingsPage, EveryKeySaysWhatItTakesAndWhatHoldsWithoutIt) {
    std::istringstream lines(settings_page());
    for (std::string line; std::getline(lines, line) && !line.ends_with("## The environment");)
        if (line.starts_with("| `")) {
            EXPECT_EQ(line.find("|  |"), std::string::npos) << line;
        }
}

TEST(SettingsPage, TheManualHasEveryKeyOfTheSitesConfiguration) {
    const std::string manual = content_of(source / "docs/manual/orvo-site.ini.5");
    std::istringstream lines(settings_page());
    int keys = 0;
    for (std::string line; std::getline(lines, line) && line != "## The directory's configuration";)
        if (line.starts_with("| `")) {
            const std::string key = line.substr(3, line.find('`', 3) - 3);
            EXPECT_NE(manual.find("\\fB" + key + "\\fR"), std::string::npos) << key;
            ++keys;
        }
    EXPECT_GT(keys, 15);
}

TEST(SettingsPage, EveryVariableThatTheSourceAsksForIsThere) {
    const std::string page = settings_page();
    const std::set<std::string> names = variables_in_the_source();
    EXPECT_THAT(names,
                testing::IsSupersetOf({"ORVO_COMPONENTS", "ORVO_SITE_CONFIG", "ORVO_LOG_FILE",
                                       "CREDENTIALS_DIRECTORY", "NOTIFY_SOCKET"}));
    for (const std::string& name : names)
        EXPECT_NE(page.find("\n| `" + name + "` | "), std::string::npos) << name;
}

}  // namespace
}  // namespace orvo
