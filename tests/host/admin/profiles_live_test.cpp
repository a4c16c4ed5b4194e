// orvo profiles and orvo completion, on every kind of directory.

#include <gmock/gmock.h>

#include "tests/host/admin/orvo_site.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class OrvoProfiles : public OrvoSite {
protected:
    std::vector<std::string> values(const std::string& profile, const std::string& attribute) {
        return directory_->values("cn=" + profile + ",ou=Profiles,o=Shop", attribute);
    }
};

INSTANTIATE_TEST_SUITE_P(On, OrvoProfiles, testing::ValuesIn(every_directory()), name_of_directory);

TEST_P(OrvoProfiles, AreListedAndShownWithTheirUsers) {
    EXPECT_THAT(done({"profiles", "list"}),
                StartsWith("cn               LanguageID  Locale  OrvoRole    OrvoApps\n"
                           "Administrators   en          2057    21, 22, 23  "
                           "1, 2, 3, 4, 5, 6, 10\n"));
    EXPECT_EQ(done({"profiles", "show", "Receivers", "--format", "ldif"}),
              "dn: cn=Receivers,ou=Profiles,o=Shop\n"
              "cn: Receivers\n"
              "LanguageID: nl\n"
              "Locale: 1043\n"
              "OrvoRole: 24\n"
              "OrvoApps: 1\n"
              "OrvoApps: 4\n"
              "\n");
    EXPECT_EQ(done({"profiles", "users", "Buyers", "--name", "jsm*", "--columns", "cn"}),
              "cn\njsmith\n");
    EXPECT_EQ(refused({"profiles", "users", "Nix"}), "orvo: there is no profile 'Nix'\n");
}

TEST_P(OrvoProfiles, AreMadeChangedAndRemoved) {
    EXPECT_EQ(done({"profiles", "add", "Night shift", "LanguageID=nl", "Locale=1043"}),
              "Night shift: made.\n");
    EXPECT_EQ(done({"profiles", "roles", "Night shift", "--add", "Buyer,24"}),
              "Night shift: has the roles 2 (BuyerRole), 24 (ReceiverRole).\n");
    EXPECT_EQ(done({"profiles", "apps", "Night shift", "--set", "1"}),
              "Night shift: has the applications 1.\n");
    EXPECT_EQ(done({"profiles", "set", "Night shift", "Locale=", "description=After ten"}),
              "Night shift: changed.\n");
    EXPECT_THAT(values("Night shift", "OrvoRole"), ElementsAre("2", "24"));
    EXPECT_THAT(values("Night shift", "OrvoApps"), ElementsAre("1"));
    EXPECT_THAT(values("Night shift", "Locale"), IsEmpty());
    EXPECT_EQ(refused({"profiles", "add", "Night shift"}),
              "orvo: there is a profile 'Night shift' already\n");
    EXPECT_THAT(refused({"profiles", "add", "Half", "Locale=many"}), StartsWith("orvo: "));
    EXPECT_THAT(directory_->find("ou=Profiles,o=Shop", "(cn=Half)"), IsEmpty());

    done({"users", "profile", "jsmith", "--set", "Night shift"});
    EXPECT_EQ(refused({"profiles", "remove", "Night shift"}),
              "orvo: the profile 'Night shift' has users: see orvo profiles users\n");
    done({"users", "profile", "jsmith", "--clear"});
    EXPECT_EQ(done({"profiles", "remove", "Night shift"}), "Night shift: removed.\n");
    EXPECT_EQ(refused({"profiles", "remove", "Night shift"}),
              "orvo: there is no profile 'Night shift'\n");
}

TEST_P(OrvoProfiles, AreCompletedByBashAsUsersAndRolesAre) {
    const std::string completion = folder_.path() / "orvo.bash";
    ASSERT_EQ(ChildProcess({ORVO_BIN "/orvo-manual", "--completion", "orvo"}, completion).wait(),
              0);
    const auto completed = [&](const std::string& words) {
        return output_of({"/bin/bash", "-c",
                          "PATH=" ORVO_BIN ":$PATH; . " + completion + "; COMP_WORDS=(" + words +
                              "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _orvo; "
                              "printf '%s\\n' \"${COMPREPLY[@]}\""});
    };
    EXPECT_EQ(completed("orvo users show jsm"), "jsmith\n");
    EXPECT_EQ(completed("orvo users roles JSM"), "jsmith\n");
    EXPECT_EQ(completed("orvo users roles jsmith --add canv"), "CanViewAll\n");
    EXPECT_EQ(completed("orvo users list --profile bran"), "Branch\\ Office\n");
    EXPECT_EQ(completed("orvo users list --prof"), "--profile\n");
    EXPECT_EQ(completed("orvo us"), "users\n");
    EXPECT_EQ(completed("orvo users list --format js"), "\n") << "files are bash's own";
    EXPECT_EQ(completed("orvo users list --site /no/such/file --profile bran"), "\n");
}

}  // namespace
}  // namespace orvo
