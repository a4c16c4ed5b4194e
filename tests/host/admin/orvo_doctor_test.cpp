// `orvo doctor` at an embedded directory.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>

#include "suite/directory/embedded/access/access_rules.h"
#include "suite/directory/embedded/store/sqlite.h"
#include "tests/host/admin/orvo_program.h"

namespace orvo {
namespace {

using directory::embedded::AccessRules;
using directory::embedded::Database;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class OrvoDoctorEmbedded : public OrvoProgram {
protected:
    void SetUp() override { ::chmod(folder.path().c_str(), 0700); }

    // What `orvo doctor` prints for the sample's settings with this replaced, on either stream.
    std::string doctor(const std::string& store, const std::string& from = "@SERVER@",
                       const std::string& to = "@SERVER@") {
        std::string text = content_of(ORVO_SOURCE_DIR "/examples/site.ini");
        text.replace(text.find(from), from.size(), to);
        text.replace(text.find("@SERVER@"), 8, store);
        std::ofstream(path("site.ini")) << text;
        const std::filesystem::path log = folder.path() / "log";
        std::filesystem::remove(log);
        code = ChildProcess({ORVO_ADMIN, "doctor", "--site", path("site.ini")}, log).wait();
        return content_of(log);
    }
    static std::string skipped_behind_version() {
        return "  skipped    lock             needs version\n"
               "  ok         space            more than 64 MiB are left\n"
               "  skipped    schema           needs version\n"
               "  skipped    containers       needs version\n"
               "  skipped    service account  needs version\n"
               "  skipped    accounts         needs containers\n"
               "  skipped    administrators   needs containers\n"
               "  skipped    reading          needs service account\n"
               "  skipped    writing          needs service account\n";
    }
    std::string owner() {
        std::string name = output_of({"/usr/bin/id", "-un"});
        name.pop_back();
        return name;
    }
};

TEST_F(OrvoDoctorEmbedded, FindsNothingWrongWhereNothingIs) {
    const std::string store = shop();
    EXPECT_EQ(
        doctor(store),
        store + "\n  ok         file             belongs to " + owner() +
            ", who alone may read it\n"
            "  ok         version          version 1\n"
            "  ok         lock             nobody holds it\n"
            "  ok         space            more than 64 MiB are left\n"
            "  ok         schema           has the classes of the settings and 69 attributes\n"
            "  ok         containers       ou=Users, ou=Profiles, ou=Accounts below o=Shop\n"
            "  ok         service account  cn=orvo-service,ou=Services,o=Shop has the "
            "password of the settings\n"
            "  ok         accounts         5 accounts, one for each type that users have\n"
            "  ok         administrators   there is one: cn=admin,ou=Users,o=Shop\n"
            "  ok         reading          the service account can read users, profiles and "
            "accounts\n"
            "  ok         writing          the service account can make and remove users, "
            "change users, set passwords\n");
    EXPECT_EQ(code, 0);
}

TEST_F(OrvoDoctorEmbedded, SaysThatThereIsNoFile) {
    EXPECT_THAT(doctor(path("none.db")),
                StartsWith(path("none.db") + "\n  failed     file             '" + path("none.db") +
                           "': No such file or directory.\n"
                           "                              To do: Make it with 'orvo init', or "
                           "correct LDAPServer in " +
                           path("site.ini") +
                           ".\n"
                           "  skipped    version          needs file\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctorEmbedded, SaysThatOthersMayReadTheFile) {
    const std::string store = shop();
    ::chmod(store.c_str(), 0644);
    EXPECT_THAT(doctor(store), HasSubstr("  failed     file             Others than " + owner() +
                                         " may read or write it, with all password hashes.\n"
                                         "                              To do: chmod 600 " +
                                         store + "\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctorEmbedded, SaysThatItIsAnotherProgramsFile) {
    const std::string store = path("other.db");
    std::ofstream(store).close();
    ::chmod(store.c_str(), 0600);
    Database(store).execute("CREATE TABLE other (a)");
    EXPECT_THAT(doctor(store), EndsWith("  failed     version          This is not the file of a "
                                        "directory.\n"
                                        "                              To do: Correct LDAPServer "
                                        "in " +
                                        path("site.ini") + ".\n" + skipped_behind_version()));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctorEmbedded, SaysThatTheFileIsOfANewerVersion) {
    const std::string store = shop();
    Database(store).execute("PRAGMA user_version = 7");
    EXPECT_THAT(doctor(store), HasSubstr("  failed     version          It has version 7, and this "
                                         "program knows versions up to 1.\n"
                                         "                              To do: Upgrade the "
                                         "programs.\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctorEmbedded, SaysThatTheFileIsLocked) {
    const std::string store = shop();
    Database writer(store);
    writer.execute("BEGIN IMMEDIATE");
    EXPECT_THAT(doctor(store), HasSubstr("  failed     lock             Another program has kept "
                                         "it locked for a second.\n"
                                         "                              To do: See who has it "
                                         "open: fuser -v " +
                                         store + "\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctorEmbedded, ComparesTheServiceAccountsPasswordWithoutALogin) {
    const std::string store = shop();
    EXPECT_THAT(doctor(store, "MemScriptCode=service-sample", "MemScriptCode=another"),
                HasSubstr("  failed     service account  It has another password than "
                          "MemScriptCode says.\n"
                          "                              To do: Correct MemScriptCode in " +
                          path("site.ini") + ".\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctorEmbedded, SaysWhatTheAccessRulesForbidTheServiceAccount) {
    const std::string store = shop();
    const std::string rule =
        "rule\n    entries subtree ou=Users,o=Shop\n    attributes mail userPassword\n"
        "    write self\n    authenticate anonymous\n\n";
    directory({"set", store, "--access",
               folder.write("access", rule + AccessRules::text_of_product("o=Shop"))});
    EXPECT_EQ(code, 0);
    EXPECT_THAT(
        doctor(store),
        EndsWith("  failed     reading          The service account cannot read, of users: mail.\n"
                 "                              To do: Let the access rules (orvo directory set "
                 "--access FILE) read 'o=Shop' and below.\n"
                 "  failed     writing          The service account cannot set passwords.\n"
                 "                              To do: Let the access rules write to "
                 "'ou=Users,o=Shop': orvo directory set --access FILE.\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctorEmbedded, SaysWhatIsMissing) {
    directory({"create", path("empty.db"), "--base", "o=Shop"});
    directory({"import", path("empty.db"),
               folder.write("empty.ldif",
                            "dn: o=Shop\nobjectClass: organization\no: Shop\n\n"
                            "dn: ou=Users,o=Shop\nobjectClass: organizationalUnit\nou: Users\n\n"
                            "dn: ou=Accounts,o=Shop\nobjectClass: organizationalUnit\n"
                            "ou: Accounts\n\n"
                            "dn: ou=Profiles,o=Shop\nobjectClass: organizationalUnit\n"
                            "ou: Profiles\n\n"
                            "dn: cn=a,ou=Users,o=Shop\nobjectClass: orvoPerson\ncn: a\n"
                            "OrvoUserType: 1\n")});
    EXPECT_EQ(code, 0);
    EXPECT_THAT(
        doctor(path("empty.db")),
        EndsWith("  failed     service account  There is no 'cn=orvo-service,ou=Services,o=Shop'.\n"
                 "                              To do: Make it, or correct MemScriptUser in " +
                 path("site.ini") +
                 ".\n"
                 "  failed     accounts         Users of type 1 cannot log in: their account is "
                 "missing, or hidden from the service account.\n"
                 "                              To do: Make cn=1,ou=Accounts,o=Shop, with "
                 "OrvoNTUser and OrvoNTPassword where the site needs them.\n"
                 "  failed     administrators   No user is an administrator.\n"
                 "                              To do: Give one the OrvoUserType 4.\n"
                 "  skipped    reading          needs service account\n"
                 "  skipped    writing          needs service account\n"));
    EXPECT_EQ(code, 1);
    EXPECT_THAT(doctor(path("empty.db"), "UserContainer=ou=Users", "UserContainer=ou=People"),
                HasSubstr("  failed     containers       There is no 'ou=People,o=Shop', or it is "
                          "hidden from the service account.\n"));
}

}  // namespace
}  // namespace orvo
