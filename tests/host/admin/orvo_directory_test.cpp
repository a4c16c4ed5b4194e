#include <gmock/gmock.h>
#include <sys/stat.h>

#include "suite/directory/embedded/store/sqlite.h"
#include "tests/host/admin/orvo_program.h"

namespace orvo {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

unsigned mode_of(const std::filesystem::path& file) {
    struct stat status {};
    EXPECT_EQ(::stat(file.c_str(), &status), 0);
    return status.st_mode & 0777;
}

TEST_F(OrvoProgram, MakesADirectoryAndLoadsTheSampleShop) {
    const std::string store = path("shop.db");
    EXPECT_EQ(directory({"create", store, "--base", "o=Shop"}),
              store + ": made, with the entry o=Shop.\n");
    EXPECT_EQ(mode_of(store), 0600u);
    EXPECT_EQ(directory({"import", store, sample, "--dry-run"}),
              sample + ": 226 entries could be loaded.\n");
    EXPECT_THAT(directory({"show", store}), HasSubstr("Entries: 1\n"));
    EXPECT_THAT(directory({"import", store, sample}), ContainsRegex(": 226 entries loaded in "));
    EXPECT_THAT(directory({"show", store}),
                AllOf(HasSubstr("Base: o=Shop\n"), HasSubstr("Entries: 226\n"),
                      HasSubstr("  orvoPerson: 200\n"), HasSubstr("write self\n")));
    EXPECT_EQ(code, 0);
}

TEST_F(OrvoProgram, FailsWhereNobodyCanReadItsAnswer) {
    const std::string store = shop();
    EXPECT_EQ(ChildProcess({ORVO_ADMIN, "directory", "show", store}, "/dev/full").wait(), 1);
}

TEST_F(OrvoProgram, WritesWhatLoadsAsTheSameDirectory) {
    const std::string store = shop();
    EXPECT_EQ(directory({"export", store, path("one.ldif")}),
              path("one.ldif") + ": 226 entries written.\n");
    EXPECT_EQ(mode_of(path("one.ldif")), 0600u);
    directory({"create", path("two.db"), "--base", "o=Shop"});
    directory({"import", path("two.db"), path("one.ldif")});
    EXPECT_EQ(directory({"export", path("two.db"), "-"}), content_of(path("one.ldif")));
    EXPECT_THAT(content_of(path("one.ldif")), HasSubstr("userPassword: {SSHA}"));
}

TEST_F(OrvoProgram, ShowsATerminalHowFarItIsAndNoHashes) {
    const std::string store = path("shop.db");
    directory({"create", store, "--base", "o=Shop"});
    const auto on_a_terminal = [&](const std::string& command) {
        const std::string whole = std::string(ORVO_ADMIN) + " directory " + command;
        const std::filesystem::path log = folder.path() / "terminal";
        std::filesystem::remove(log);
        ChildProcess({"/usr/bin/script", "-qec", whole, "/dev/null"}, log).wait();
        return content_of(log);
    };
    EXPECT_THAT(on_a_terminal("import " + store + " " + sample),
                AllOf(HasSubstr("\rLoading " + sample + " [###"), HasSubstr(" %, 100 entries"),
                      HasSubstr("\rWriting " + store), HasSubstr("226 entries loaded")));
    EXPECT_THAT(on_a_terminal("export " + store + " -"),
                AllOf(HasSubstr("hashes are not shown on a terminal"), Not(HasSubstr("SSHA"))));
}

TEST_F(OrvoProgram, TellsFileLineAndReasonAndLoadsNothing) {
    const std::string store = path("shop.db");
    directory({"create", store, "--base", "o=Shop"});
    const std::string file = folder.write("bad.ldif",
                                          "dn: ou=Users,o=Shop\nobjectClass: organizationalUnit\n\n"
                                          "dn: cn=x,ou=Users,o=Shop\nobjectClass: person\n");
    EXPECT_EQ(directory({"import", store, file}),
              "orvo: " + file +
                  ", line 4: 'cn=x,ou=Users,o=Shop': (65) The entry does not agree with its object "
                  "class. object class 'person' requires attribute 'sn'\n");
    EXPECT_EQ(code, 1);
    folder.write("bad.ldif", "dn: ou=Users,o=Shop\nou Users\n");
    EXPECT_EQ(directory({"import", store, file}), "orvo: " + file + ", line 2: there is no ':'\n");
    EXPECT_EQ(directory({"import", store, path("none.ldif")}),
              "orvo: " + path("none.ldif") + ": No such file or directory\n");
    EXPECT_THAT(directory({"import", store, folder.path()}), HasSubstr("Is a directory"));
    EXPECT_THAT(directory({"show", store}), HasSubstr("Entries: 1\n"));
}

TEST_F(OrvoProgram, ReplacesNothingThatIsThere) {
    const std::string store = shop();
    const std::string there = folder.write("there", "x");
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"create", store, "--base", "o=Shop"},
                                               {"export", store, there},
                                               {"backup", store, there}}) {
        EXPECT_THAT(directory(arguments), HasSubstr("there is such a file already"))
            << arguments[0];
        EXPECT_EQ(code, 1);
    }
    EXPECT_EQ(content_of(there), "x");
}

TEST_F(OrvoProgram, CopiesADirectory) {
    const std::string store = shop();
    EXPECT_EQ(directory({"backup", store, path("copy.db")}),
              path("copy.db") + ": a copy of " + store + ".\n");
    EXPECT_EQ(directory({"export", path("copy.db"), "-"}), directory({"export", store, "-"}));
    EXPECT_EQ(code, 0);
}

TEST_F(OrvoProgram, FindsDamage) {
    const std::string store = shop();
    EXPECT_EQ(directory({"check", store}),
              "Note: 'cn=lonely,ou=Users,o=Shop' has the ProfileCN 'No Such Profile', which is no "
              "profile here.\n" +
                  store + ": 226 entries, no problems.\n");
    EXPECT_EQ(code, 0);
    orvo::directory::embedded::Database(store).execute("DELETE FROM value WHERE attribute = 1");
    EXPECT_THAT(directory({"check", store}), Not(HasSubstr(" no problems")));
    EXPECT_EQ(code, 1);
    EXPECT_THAT(directory({"check", folder.write("other", "no directory")}), HasSubstr("other"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoProgram, ShowsAnEntryWithoutItsPassword) {
    const std::string store = shop();
    EXPECT_THAT(directory({"show", store, "CN=jsmith, ou=users, o=shop"}),
                AllOf(HasSubstr("# userPassword is not shown.\n"),
                      HasSubstr("dn: cn=jsmith,ou=Users,o=Shop\n"), HasSubstr("\nsn: Smith\n"),
                      Not(HasSubstr("SSHA"))));
    EXPECT_EQ(directory({"show", store, "cn=nobody,o=Shop"}),
              "orvo: there is no entry 'cn=nobody,o=Shop'\n");
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoProgram, SetsAccessRulesAndPasswordPolicy) {
    const std::string store = shop();
    directory({"import", store, ORVO_SOURCE_DIR "/examples/directory/password-policy.ldif"});
    EXPECT_EQ(code, 0);
    directory({"set", store, "--policy", "cn=default,ou=Policies,o=Shop", "--access",
               folder.write("rules", "rule\n    read users\n")});
    EXPECT_EQ(code, 0);
    EXPECT_THAT(directory({"show", store}),
                AllOf(HasSubstr("Password policy: cn=default,ou=Policies,o=Shop\n"),
                      HasSubstr("Access rules:\n\nrule\n    read users\n")));
    EXPECT_EQ(directory({"set", store, "--policy", "o=Shop"}),
              "orvo: 'o=Shop' is no password policy\n");
    EXPECT_THAT(
        directory({"set", store, "--access", folder.write("rules", "rule\n    paint me\n")}),
        HasSubstr("line 2"));
    EXPECT_EQ(code, 1);
    directory({"set", store, "--policy", ""});
    EXPECT_THAT(directory({"show", store}), HasSubstr("Password policy: none\n"));
}

TEST_F(OrvoProgram, TakesFurtherSchemaFiles) {
    const std::string file = folder.write("shelf.schema",
                                          "attributetype ( 1.2.3.4 NAME 'shelf' SUP name )\n"
                                          "objectclass ( 1.2.3.5 NAME 'shelfUser' SUP orvoPerson\n"
                                          "    MAY shelf )\n");
    directory({"create", path("shop.db"), "--base", "dc=shop,dc=example", "--schema", file});
    EXPECT_EQ(code, 0);
    const std::string entries =
        folder.write("x.ldif", "dn: cn=x,dc=shop,dc=example\nobjectClass: shelfUser\nshelf: 7\n");
    directory({"import", path("shop.db"), entries});
    EXPECT_EQ(code, 0);
    folder.write("shelf.schema", "\nattributetype ( 1.2.3.4 NAME 'cn' SUP name )\n");
    EXPECT_EQ(directory({"create", path("other.db"), "--base", "o=Shop", "--schema", file}),
              "orvo: " + file + ", line 2: 'cn' is defined already, otherwise\n");
    EXPECT_FALSE(std::filesystem::exists(path("other.db")));
    EXPECT_THAT(directory({"create", path("other.db"), "--base", "cn=Shop"}),
                HasSubstr("is named by neither o, ou, c nor dc"));
    EXPECT_FALSE(std::filesystem::exists(path("other.db")));
}

TEST_F(OrvoProgram, AnswersAWrongCommandLineWithTwo) {
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{},
                                               {"create"},
                                               {"paint", "x"},
                                               {"set", "x"},
                                               {"import", "x", "y", "--hash-cost", "99"}}) {
        directory(arguments);
        EXPECT_EQ(code, 2);
    }
    EXPECT_THAT(directory({"--help"}), HasSubstr("import"));
    EXPECT_EQ(code, 0);
}

}  // namespace
}  // namespace orvo
