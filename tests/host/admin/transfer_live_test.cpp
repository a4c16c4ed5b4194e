// orvo import and orvo export, on every kind of directory.

#include <gmock/gmock.h>

#include <fstream>

#include "tests/host/admin/orvo_site.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class OrvoTransfer : public OrvoSite {
protected:
    std::string path(const std::string& name) { return (folder_.path() / name).string(); }
    std::string file(const std::string& name, const std::string& text) {
        return folder_.write(name, text).string();
    }
    std::vector<std::string> values(const std::string& user, const std::string& attribute) {
        return directory_->values(directory_->user_dn(user), attribute);
    }
    int bind(const std::string& user, const std::string& password) {
        return directory_->bind(directory_->user_dn(user), password);
    }

    const std::string two_users_ =
        "cn,sn,mail,OrvoRole,OrvoUserType,password\r\n"
        "ada,Lovelace,ada@shop.example,1;24,1,first-secret\r\n"
        "grace,\"Hopper, Grace\",,,1,\r\n";
};

INSTANTIATE_TEST_SUITE_P(On, OrvoTransfer, testing::ValuesIn(every_directory()), name_of_directory);

TEST_P(OrvoTransfer, MakesUsersWithAllThatTheyHave) {
    const std::string csv = file("two.csv", two_users_);
    EXPECT_EQ(done({"import", csv}), csv + ": 2 made, 0 changed, 0 unchanged, 0 refused.\n");
    EXPECT_THAT(values("ada", "sn"), ElementsAre("Lovelace"));
    EXPECT_THAT(values("ada", "OrvoRole"), ElementsAre("1", "24"));
    EXPECT_EQ(values("ada", "OrvoGUID").front().size(), 32u);
    EXPECT_EQ(bind("ada", "first-secret"), 0);
    EXPECT_THAT(values("grace", "sn"), ElementsAre("Hopper, Grace"));
    EXPECT_THAT(values("grace", "mail"), ElementsAre()) << "an empty cell says nothing";
}

TEST_P(OrvoTransfer, DoesNothingTheSecondTime) {
    const std::string csv = file("two.csv", two_users_);
    done({"import", csv, "--quiet"});
    EXPECT_EQ(done({"import", csv}), csv + ": 0 made, 0 changed, 2 unchanged, 0 refused.\n");
    EXPECT_EQ(bind("ada", "first-secret"), 0);
}

TEST_P(OrvoTransfer, TakesValuesForTheSameThatTheDirectoryOnlyWritesOtherwise) {
    const std::string head = "cn,sn,OrvoRole,OutOfOfficeOn,CreditCardExpiryDate\r\n";
    const std::string csv = file("two.csv", head +
                                                "ada,Lovelace,024;+1, 1,202812312359Z\r\n"
                                                "grace,Hopper,;3,+0,2028-12-31 23:59:59\r\n");
    done({"import", csv, "--quiet"});
    EXPECT_THAT(values("ada", "OrvoRole"), ElementsAre("24", "1"));
    EXPECT_EQ(done({"import", csv}), csv + ": 0 made, 0 changed, 2 unchanged, 0 refused.\n");
    EXPECT_EQ(orvo({"import", "-"}, head + "ada,lovelace,1;24,1,20281231235901Z\r\n").err,
              "standard input, line 2: ada: is there, with other values: sn, CreditCardExpiryDate "
              "(--update would change them)\n");
}

TEST_P(OrvoTransfer, SaysLineByLineWhatItWouldDo) {
    done({"import", "-", "--quiet"}, two_users_);
    EXPECT_EQ(done({"import", "-", "--dry-run", "--update", "--create"},
                   "cn,sn,mail\r\nada,Lovelace,ada@shop.example\r\ngrace,Murray,g@shop.example\r\n"
                   "kay,McNulty,\r\n"),
              "line 2: ada: is as it should be\n"
              "line 3: grace: would get other values: sn, mail\n"
              "line 4: kay: would be made\n"
              "standard input: 1 would be made, 1 would be changed, 1 unchanged, 0 refused.\n");
    EXPECT_THAT(values("grace", "sn"), ElementsAre("Hopper, Grace"));
    EXPECT_THAT(done({"users", "list", "--name", "kay"}), Not(HasSubstr("McNulty")));
}

// The rows are not to blame for it.
TEST_P(OrvoTransfer, ADryRunEndsWhereNobodyTakesWhatItSays) {
    std::string csv = "cn,sn\r\n";
    for (int i = 0; i < 500; ++i) csv += "user" + std::to_string(i) + ",Name\r\n";
    const std::string said =
        output_of({"/bin/sh", "-c", "\"$0\" import --dry-run \"$1\" >/dev/full; echo $? >&2",
                   ORVO_ADMIN, file("many.csv", csv)});
    EXPECT_THAT(said, AllOf(HasSubstr(", standard output cannot be written: No space left"),
                            HasSubstr(" 0 refused before that"), EndsWith("\n1\n")));
}

TEST_P(OrvoTransfer, ChangesWhoIsThereWhenItIsToldTo) {
    done({"import", "-", "--quiet"}, two_users_);
    const std::string other = "cn,sn,mail,password\r\nada,Byron,,other-secret\r\n";
    const Ended refused = orvo({"import", "-"}, other);
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.err,
              "standard input, line 2: ada: is there, with other values: sn (--update "
              "would change them)\n");
    EXPECT_EQ(done({"import", "-", "--update"}, other),
              "standard input: 0 made, 1 changed, 0 unchanged, 0 refused.\n");
    EXPECT_THAT(values("ada", "sn"), ElementsAre("Byron"));
    EXPECT_THAT(values("ada", "mail"), ElementsAre("ada@shop.example"));
    EXPECT_EQ(bind("ada", "first-secret"), 0) << "a password is not changed by an import";

    const Ended unknown = orvo({"import", "-", "--update"}, "cn,sn\r\nkay,McNulty\r\n");
    EXPECT_EQ(unknown.err, "standard input, line 2: kay: there is no such user\n");
}

TEST_P(OrvoTransfer, WritesWhatWasRefusedAsAFileThatCanBeCorrectedAndImported) {
    const std::string csv =
        file("users.csv",
             "cn,sn,OrvoRole,password\r\nada,Lovelace,1,first-secret\r\n"
             "\"Hopper, Grace\",Hopper,much,second-secret\r\nada,Again,,\r\nshort\r\n");
    const Ended ended = orvo({"import", csv, "--refused", path("refused.csv")});
    EXPECT_EQ(ended.code, 3);
    EXPECT_EQ(ended.out, csv + ": 1 made, 0 changed, 0 unchanged, 3 refused.\n");
    EXPECT_THAT(ended.err, HasSubstr(csv + ", line 3: Hopper, Grace: Type mismatch: OrvoRole takes "
                                           "whole numbers\n"));
    EXPECT_THAT(ended.err, HasSubstr(csv + ", line 4: ada: line 2 has this user, too\n"));
    EXPECT_THAT(ended.err,
                HasSubstr(csv + ", line 5: short: it has 1 cells, and the first line 4\n"));
    const std::string refused = content_of(path("refused.csv"));
    EXPECT_THAT(refused, StartsWith("\"cn\",\"sn\",\"OrvoRole\",\"password\",#line,#reason\r\n"
                                    "\"Hopper, Grace\",\"Hopper\",\"much\",\"\",3,"));
    EXPECT_THAT(refused, HasSubstr("\r\n\"short\",5,\"it has 1 cells, and the first line 4\"\r\n"));
    EXPECT_THAT(refused, Not(HasSubstr("secret")));
    EXPECT_THAT(done({"users", "list", "--name", "Hopper*"}), Not(HasSubstr("Hopper, Grace")));

    const std::size_t much = refused.find("much");
    file("refused.csv", refused.substr(0, much) + "24" + refused.substr(much + 4));
    EXPECT_EQ(orvo({"import", path("refused.csv")}).out,
              path("refused.csv") + ": 1 made, 0 changed, 0 unchanged, 2 refused.\n");
    EXPECT_THAT(values("Hopper\\, Grace", "OrvoRole"), ElementsAre("24"));
    EXPECT_EQ(orvo({"import", csv, "--refused", path("refused.csv")}).err,
              "orvo: " + path("refused.csv") + " is there already\n");
}

TEST_P(OrvoTransfer, RefusesFilesThatAreNone) {
    EXPECT_EQ(refused({"import", path("no.csv")}),
              "orvo: " + path("no.csv") + ": No such file or directory\n");
    EXPECT_THAT(refused({"import", "-"}, ""),
                StartsWith("orvo: standard input, the file is empty;"));
    EXPECT_THAT(
        refused({"import", "-"}, "name,sn\r\n"),
        StartsWith("orvo: standard input, line 1: no column is named cn; the first line has "
                   "the attributes' names;"));
    EXPECT_THAT(refused({"import", "-"}, "cn,sn,SN\r\n"),
                StartsWith("orvo: standard input, line 1: two columns are named sn;"));
    const std::string before_that =
        "0 made, 0 changed, 0 unchanged, 0 refused before that; run it "
        "again to go on\n";
    EXPECT_EQ(refused({"import", "-"}, "cn,sn\r\n\"ada,x\r\n"),
              "orvo: standard input, line 2: a quotation mark has no second one; " + before_that);
}

TEST_P(OrvoTransfer, AnExportIsWhatAnImportNeeds) {
    for (const std::string format : {"csv", "ldif"}) {
        const std::string written = path("all." + format);
        EXPECT_EQ(done({"export", written, "--format", format}),
                  written + ": 197 users written.\n");
        EXPECT_EQ(done({"import", written}),
                  written + ": 0 made, 0 changed, 197 unchanged, 0 refused.\n");
        EXPECT_THAT(content_of(written),
                    AllOf(Not(HasSubstr("userPassword")), Not(HasSubstr("{"))));
    }
    done({"users", "remove", "jsmith"});
    EXPECT_EQ(done({"import", path("all.ldif")}),
              path("all.ldif") + ": 1 made, 0 changed, 196 unchanged, 0 refused.\n");
    EXPECT_EQ(done({"import", path("all.csv")}),
              path("all.csv") + ": 0 made, 0 changed, 197 unchanged, 0 refused.\n");
    EXPECT_EQ(refused({"export", path("all.csv")}),
              "orvo: " + path("all.csv") + " is there already\n");
}

TEST_P(OrvoTransfer, TakesUsersOfAnLdifFileAlone) {
    const std::string ldif =
        "version: 1\n\n"
        "dn: " +
        directory_->user_dn("ada") +
        "\nobjectClass: person\ncn: ada\nsn: Lovelace\n"
        "userPassword: first-secret\n\n"
        "dn: cn=ada,ou=Elsewhere,o=Shop\ncn: ada\nsn: Lovelace\nuserPassword: second-secret\n\n"
        "dn: " +
        directory_->user_dn("jsmith") + "\nchangetype: delete\n\n";
    const Ended ended = orvo({"import", "-", "--refused", path("refused.ldif")}, ldif);
    EXPECT_EQ(ended.out, "standard input: 1 made, 0 changed, 0 unchanged, 2 refused.\n");
    EXPECT_EQ(bind("ada", "first-secret"), 0);
    EXPECT_THAT(values("jsmith", "sn"), ElementsAre("Smith"));
    EXPECT_THAT(content_of(path("refused.ldif")),
                AllOf(HasSubstr("# line 9: it is no user's entry: cn=…,ou=Users,o=Shop\n"
                                "dn: cn=ada,ou=Elsewhere,o=Shop\ncn: ada\nsn: Lovelace\n"),
                      Not(HasSubstr("secret"))));
}

// A hash would be taken for the password.
TEST_P(OrvoTransfer, RefusesHashesAsPasswords) {
    const std::string hash = "{SSHA}ZEY7CJzuIUOwCnYfXDhYj4IpoL6NqH2iQGg31g==";
    for (const std::string& text : {"cn,sn,password\nada,Lovelace," + hash + "\n",
                                    "dn: " + directory_->user_dn("ada") +
                                        "\ncn: ada\nsn: Lovelace\nuserPassword: " + hash + "\n"}) {
        const Ended ended = orvo({"import", "-"}, text);
        EXPECT_EQ(ended.code, 1);
        EXPECT_THAT(ended.err, HasSubstr(": ada: its password is a hash, and passwords alone are "
                                         "taken: leave it out\n"));
        EXPECT_THAT(ended.err, Not(HasSubstr("SSHA")));
    }
    EXPECT_THAT(directory_->find("ou=Users,o=Shop", "(cn=ada)"), ElementsAre());
}

TEST_P(OrvoTransfer, TellsLdifBehindCommentsAndEmptyLines) {
    const std::string entry = "dn: " + directory_->user_dn("ada") + "\ncn: ada\nsn: Love\n  lace\n";
    for (const std::string begin : {"\n\n", "\r\n# people\n\n", "# people\n"})
        EXPECT_THAT(orvo({"import", "-", "--dry-run"}, begin + entry).out,
                    StartsWith("line " + std::to_string(std::ranges::count(begin, '\n') + 1) +
                               ": ada: would be made\n"));
    EXPECT_THAT(done({"import", "-", "--dry-run"}, "\n\ncn,sn\r\nada,Lovelace\r\n"),
                StartsWith("line 4: ada: would be made\n"));
}

TEST_P(OrvoTransfer, ShowsHowFarItIsOnATerminalAlone) {
    std::string csv = "cn,sn\r\n";
    for (int i = 0; i < 50; ++i) csv += "user" + std::to_string(i) + ",Name\r\n";
    PseudoTerminal terminal({ORVO_ADMIN, "import", file("many.csv", csv)}, 160);
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_THAT(terminal.shown(), AllOf(HasSubstr("\rImporting " + path("many.csv") + " ["),
                                        HasSubstr("50 made, 0 changed, 0 unchanged, 0 refused.")));
}

// Into a company's directory, where roles are groups.
class OrvoCompanyTransfer : public InstalledModules {
protected:
    OrvoCompanyTransfer() {
        // The shop's own account makes nobody there.
        std::string settings = content_of(server_.site_ini());
        const auto replace = [&](const std::string& from, const std::string& to) {
            settings.replace(settings.find(from), from.size(), to);
        };
        replace("cn=shop,ou=Services", "cn=root");
        replace("service-sample", server_.root_password());
        std::ofstream(server_.site_ini()) << settings;
    }
    std::string import(const std::string& csv) {
        const std::string file = folder_.write("people.csv", csv).string();
        return output_of({"/bin/sh", "-c", "\"$0\" import - --site \"$1\" <\"$2\" 2>&1 || true",
                          ORVO_ADMIN, server_.site_ini(), file});
    }
    std::vector<std::string> members(const std::string& group) {
        return probe_.values("cn=" + group + ",ou=Groups,o=Company", "memberUid");
    }

    PrivateSlapd server_{
        {.directory = ORVO_SOURCE_DIR "/examples/directories/openldap", .suffix = "o=Company"}};
    LdapProbe probe_{server_.url(), server_.root_dn(), server_.root_password()};
};

TEST_F(OrvoCompanyTransfer, PutsNewUsersIntoTheGroupsOfTheirRoles) {
    const std::string csv =
        "uid,sn,OrvoRole,OrvoUserType,manager\r\n"
        "ada,Lovelace,2;24,1,\"UID=jsmith, OU=Sales, OU=People,o=Company\"\r\n";
    EXPECT_EQ(import(csv), "standard input: 1 made, 0 changed, 0 unchanged, 0 refused.\n");
    EXPECT_THAT(members("buyers"), testing::Contains("ada"));
    EXPECT_THAT(members("receivers"), testing::Contains("ada"));
    EXPECT_EQ(import(csv), "standard input: 0 made, 0 changed, 1 unchanged, 0 refused.\n");
}

TEST_F(OrvoCompanyTransfer, LeavesNothingOfWhomItCannotGiveAllRoles) {
    EXPECT_THAT(import("uid,sn,OrvoRole\r\nada,Lovelace,2;3\r\n"),
                EndsWith("standard input: 0 made, 0 changed, 0 unchanged, 1 refused.\n"));
    // The group of the second role is not there.
    ASSERT_EQ(probe_.remove("cn=receivers,ou=Groups,o=Company"), 0);
    EXPECT_THAT(import("uid,sn,OrvoRole\r\nada,Lovelace,2;24\r\n"),
                EndsWith("standard input: 0 made, 0 changed, 0 unchanged, 1 refused.\n"));
    EXPECT_THAT(members("buyers"), Not(testing::Contains("ada")));
    EXPECT_THAT(probe_.find("o=Company", "(uid=ada)"), ElementsAre());
    EXPECT_THAT(import("uid,sn,cn\r\nada,Lovelace,Ada Lovelace\r\n"),
                HasSubstr(": a user's cn is the name in uid: leave cn out\n"));
}

TEST_F(OrvoCompanyTransfer, UsersOfTheUsualTypeAreAddedToo) {
    const std::string file = folder_.write("password", "first-secret\n").string();
    EXPECT_EQ(
        output_of({"/bin/sh", "-c", "\"$0\" users add ada sn=L --role 2 --site \"$1\" <\"$2\"",
                   ORVO_ADMIN, server_.site_ini(), file}),
        "ada: made.\n");
    EXPECT_THAT(members("buyers"), testing::Contains("ada"));
}

}  // namespace
}  // namespace orvo
