#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>

#include "suite/directory/embedded/directory/directory.h"
#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

using directory::embedded::BindAnswer;
using directory::embedded::Directory;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

class OrvoInit : public testing::Test {
protected:
    // What `orvo init` prints on either stream; its exit code is in `code` then.
    std::string init(std::vector<std::string> more = {}) {
        std::vector<std::string> command{ORVO_ADMIN,    "init",   "--site",
                                         site.string(), "--data", data.string()};
        command.insert(command.end(), more.begin(), more.end());
        const std::filesystem::path log = folder.path() / "log";
        std::filesystem::remove(log);
        code = ChildProcess(command, log).wait();
        return content_of(log);
    }
    // The last line of what was printed.
    static std::string password_in(std::string text) {
        text.pop_back();
        return text.substr(text.rfind(' ') + 1);
    }
    BindAnswer bind(const std::string& name, const std::string& password) {
        return Directory::of(from_utf8((data / "shop.db").string()))
            ->bind(name, Secret::of_bytes(password), Directory::Proof::anew);
    }
    static unsigned mode_of(const std::filesystem::path& file) {
        struct stat status {};
        EXPECT_EQ(::stat(file.c_str(), &status), 0) << file;
        return status.st_mode & 0777;
    }
    std::vector<std::string> names_in(const std::filesystem::path& where) {
        std::vector<std::string> names;
        if (std::filesystem::exists(where))
            for (const auto& entry : std::filesystem::directory_iterator(where))
                names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }
    void write_settings(const std::string& from, const std::string& to) {
        std::string text = content_of(ORVO_SOURCE_DIR "/examples/site.ini");
        text.replace(text.find("@SERVER@"), 8, (data / "shop.db").string());
        text.replace(text.find(from), from.size(), to);
        std::filesystem::create_directory(site.parent_path());
        std::ofstream(site) << text;
    }

    TempFolder folder;
    const std::filesystem::path site = folder.path() / "etc/site.ini";
    const std::filesystem::path data = folder.path() / "data";
    int code = -1;
};

TEST_F(OrvoInit, MakesASiteWhoseAdministratorHasToChangeAOneTimePassword) {
    const std::string said = init();
    ASSERT_EQ(code, 0) << said;
    EXPECT_THAT(said, HasSubstr(site.string() + ": made.\n" + (data / "shop.db").string() +
                                ": made, with the base o=Shop.\n"));
    const std::string password = password_in(said);
    EXPECT_THAT(password, MatchesRegex("[a-zA-Z2-9]{16}"));
    EXPECT_THAT(names_in(data), ElementsAre("service.code", "shop.db"));
    EXPECT_EQ(mode_of(data / "shop.db"), 0600u);
    EXPECT_EQ(mode_of(data / "service.code"), 0600u);

    const BindAnswer administrator = bind("cn=admin,ou=Users,o=Shop", password);
    EXPECT_EQ(administrator.code, 0);
    EXPECT_EQ(administrator.policy.error, 2) << "to be changed";
    EXPECT_EQ(bind("cn=admin,ou=Users,o=Shop", "another").code, 49);
    std::string service = content_of(data / "service.code");
    service.pop_back();
    EXPECT_THAT(service, MatchesRegex("[a-zA-Z2-9]{32}"));
    EXPECT_EQ(bind("cn=orvo-service,ou=Services,o=Shop", service).code, 0);
    EXPECT_THAT(content_of(site), Not(HasSubstr(service)));
}

TEST_F(OrvoInit, TwoSitesHaveDifferentPasswords) {
    const std::string first = password_in(init());
    std::filesystem::remove_all(data);
    EXPECT_NE(password_in(init()), first);
}

TEST_F(OrvoInit, LeavesADirectoryAloneThatIsThere) {
    init();
    const std::string service = content_of(data / "service.code");
    EXPECT_EQ(init(), "orvo: " + (data / "shop.db").string() + ": there is a directory already\n");
    EXPECT_EQ(code, 1);
    EXPECT_EQ(content_of(data / "service.code"), service);
}

TEST_F(OrvoInit, GoesByTheSettingsThatAreThere) {
    write_settings("UserContainer=ou=Users", "UserContainer=ou=People,ou=Web");
    const std::string said = init({"--administrator", "Ada, Lady"});
    ASSERT_EQ(code, 0) << said;
    EXPECT_THAT(said, Not(HasSubstr("site.ini")));
    EXPECT_EQ(bind("cn=Ada\\, Lady,ou=People,ou=Web,o=Shop", password_in(said)).code, 0);
    EXPECT_EQ(bind("cn=orvo-service,ou=Services,o=Shop", "service-sample").code, 0)
        << "the password of the settings";
}

TEST_F(OrvoInit, LeavesNothingBehindWhereItFails) {
    write_settings("ProfileContainer=ou=Profiles", "ProfileContainer=cn=Profiles");
    EXPECT_THAT(init(), HasSubstr("orvo: the container 'cn=Profiles' is not named by ou"));
    EXPECT_EQ(code, 1);
    EXPECT_FALSE(std::filesystem::exists(data));
    std::filesystem::remove(site);
    EXPECT_THAT(init({"--owner", "nobody-of-that-name"}),
                HasSubstr("there is no user 'nobody-of-that-name'"));
    EXPECT_THAT(names_in(folder.path()), ElementsAre("etc", "log")) << "etc was there";
    EXPECT_THAT(names_in(site.parent_path()), ElementsAre());
}

TEST_F(OrvoInit, MakesNoDirectoryForAServer) {
    write_settings("OrvoDirectory.Embedded", "OrvoDirectory.Ldap");
    EXPECT_EQ(init(), "orvo: " + site.string() +
                          " names the provider OrvoDirectory.Ldap: init makes embedded directories "
                          "alone\n");
    EXPECT_EQ(code, 1);
}

}  // namespace
}  // namespace orvo
