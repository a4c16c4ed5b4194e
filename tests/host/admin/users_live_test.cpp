// orvo users, on every kind of directory.

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>

#include "suite/directory/embedded/directory/directory.h"
#include "tests/host/admin/orvo_site.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class OrvoUsers : public OrvoSite {
protected:
    // The names that `orvo users list` prints.
    std::vector<std::string> listed(std::vector<std::string> filter) {
        filter.insert(filter.begin(), {"users", "list", "--columns", "cn", "--format", "csv"});
        std::vector<std::string> names;
        std::string name;
        for (const char c : done(filter)) {
            if (c == '\r') continue;
            if (c != '\n') {
                name += c;
                continue;
            }
            names.push_back(std::move(name));
            name.clear();
        }
        EXPECT_THAT(names, testing::Not(IsEmpty()));
        names.erase(names.begin());
        return names;
    }
    std::vector<std::string> values(const std::string& user, const std::string& attribute) {
        return directory_->values(directory_->user_dn(user), attribute);
    }
    bool is_embedded() const {
        return GetParam().provider == std::u16string_view(u"OrvoDirectory.Embedded");
    }
    // The server's rules do not let the service account see the policy.
    std::string disabled(const std::string& user) const {
        return user + ": disabled" +
               (is_embedded() ? ""
                              : ", if the password policy, which cannot be seen, has pwdLockout") +
               ".\n";
    }
    // With what the password policy says of it.
    int bind(const std::string& user, const std::string& password) {
        const std::string name = directory_->user_dn(user);
        if (!is_embedded()) return directory_->bind(name, password);
        using directory::embedded::Directory;
        return Directory::of(from_utf8(directory_->server()))
            ->bind(name, Secret::of_bytes(password), Directory::Proof::anew)
            .code;
    }
    // The sample shop's policy locks after three.
    void lock(const std::string& user) {
        for (int i = 0; i < 3; ++i) EXPECT_EQ(bind(user, "wrong"), 49);
        EXPECT_EQ(bind(user, directory_->user_password()), 49) << "locked";
    }
};

INSTANTIATE_TEST_SUITE_P(On, OrvoUsers, testing::ValuesIn(every_directory()), name_of_directory);

TEST_P(OrvoUsers, AreListedInEveryForm) {
    const auto list = [&](const std::string& format) {
        return done({"users", "list", "--name", "jsmith", "--columns",
                     "cn,sn,OrvoRole,Modem,Manager", "--format", format});
    };
    EXPECT_EQ(list("table"),
              "cn      sn     OrvoRole  Modem             Manager\n"
              "jsmith  Smith  2, 3, 24  +44 20 7946 0020  grace.lee@shop.example\n");
    EXPECT_EQ(list("csv"),
              "cn,sn,OrvoRole,Modem,Manager\r\n"
              "jsmith,Smith,2;3;24,+44 20 7946 0020,grace.lee@shop.example\r\n");
    EXPECT_EQ(list("json"),
              "[\n"
              "  {\"cn\": \"jsmith\", \"sn\": \"Smith\", \"OrvoRole\": [\"2\", \"3\", \"24\"], "
              "\"Modem\": \"+44 20 7946 0020\", \"Manager\": \"grace.lee@shop.example\"}\n"
              "]\n");
    EXPECT_EQ(list("ldif"),
              "dn: cn=jsmith,ou=Users,o=Shop\n"
              "cn: jsmith\n"
              "sn: Smith\n"
              "OrvoRole: 2\n"
              "OrvoRole: 3\n"
              "OrvoRole: 24\n"
              "Modem: +44 20 7946 0020\n"
              "Manager: grace.lee@shop.example\n"
              "\n");
    EXPECT_THAT(done({"users", "list", "--limit", "1"}),
                StartsWith("cn        givenName  sn  mail  OrvoUserType  ProfileCN  OrvoRole\n"));
}

TEST_P(OrvoUsers, AreFilteredByWhatTheyHave) {
    EXPECT_THAT(listed({"--name", "jsm*"}), ElementsAre("jsmith"));
    EXPECT_THAT(listed({"--name", "grace.lee@shop.example"}), ElementsAre("glee"));
    EXPECT_THAT(listed({"--name", "(*"}), IsEmpty());
    EXPECT_THAT(listed({"--type", "admin"}),
                ElementsAre("admin", "hsato", "rito", "skobayashi", "ytakahashi"));
    EXPECT_EQ(listed({"--role", "Receiver"}), listed({"--role", "24"}));
    EXPECT_THAT(listed({"--role", "24", "--filter", "(OrvoRole=*)"}), testing::Contains("jsmith"));
    EXPECT_THAT(listed({"--role", "24", "--filter", "!(OrvoRole=*)"}), testing::Contains("akilic"))
        << "by the profile";
    EXPECT_THAT(listed({"--role", "24", "--profile", "Buyers"}), testing::Contains("jsmith"));
    EXPECT_THAT(listed({"--application", "10", "--profile", "Administrators"}),
                ElementsAre("admin", "hsato", "ytakahashi"));
    const Ended malformed = orvo({"users", "list", "--filter", "SpendLimit>>1000"});
    EXPECT_EQ(malformed.code, 2);
    EXPECT_EQ(
        malformed.err,
        "orvo: --filter: (87) The search filter is not valid. Character 12: an operator "
        "('=', '>=', '<=', '~=' or ':=') is expected. The filter is '(SpendLimit>>1000)'; see "
        "orvo users list --help\n");
    EXPECT_EQ(refused({"users", "list", "--profile", "Nothing"}),
              "orvo: there is no profile 'Nothing'\n");
    const Ended ended = orvo({"users", "list", "--role", "Painter"});
    EXPECT_EQ(ended.code, 2);
    EXPECT_THAT(ended.err, StartsWith("orvo: 'Painter' is no role: a number from 1 to 32767, or "
                                      "CreditCardUser, BuyerRole, "));
    EXPECT_THAT(ended.err, testing::EndsWith("; see orvo users list --help\n"));
}

TEST_P(OrvoUsers, AreListedFromANameOn) {
    const std::vector<std::string> all = listed({});
    ASSERT_GT(all.size(), 100u);
    EXPECT_THAT(listed({"--limit", "2"}), ElementsAre(all[0], all[1]));
    EXPECT_THAT(listed({"--after", all[1], "--limit", "1"}), ElementsAre(all[2]));
}

// More than one page of them, none twice and none left out.
TEST_P(OrvoUsers, AreListedHoweverManyThereAre) {
    constexpr int more = 5200;
    std::string ldif;
    for (int i = 0; i < more; ++i) {
        std::string number = std::to_string(i);
        number.insert(0, 4 - number.size(), '0');
        const std::string name = "z" + number + (i % 7 == 0 ? " NOT (so)" : "");
        ldif += "dn: cn=" + name + ",ou=Users,o=Shop\nobjectClass: orvoPerson\ncn: " + name +
                "\nOrvoUserType: 1\n\n";
    }
    const std::vector<std::string> before = listed({});
    directory_ = GetParam().make({.ldif = {folder_.write("more.ldif", ldif)}});
    const Environment site("ORVO_SITE_CONFIG", directory_->site_ini().string());
    std::vector<std::string> all = listed({});
    EXPECT_EQ(all.size(), before.size() + more);
    EXPECT_THAT(all, testing::Contains("z5199"));
    std::ranges::sort(all);
    EXPECT_EQ(std::ranges::adjacent_find(all), all.end());
    EXPECT_THAT(listed({"--after", "z5194 NOT (so)", "--limit", "2"}),
                ElementsAre("z5195", "z5196"));
}

TEST_P(OrvoUsers, AreShownWithWhatTheyHave) {
    EXPECT_EQ(done({"users", "show", "jsmith", "glee", "--columns", "cn,sn,OrvoRole,SpendLimit"}),
              "Attribute   Value\n"
              "cn          jsmith\n"
              "sn          Smith\n"
              "OrvoRole    2 (BuyerRole), 3 (RequisitionerRole), 24 (ReceiverRole)\n"
              "SpendLimit  1234.5\n"
              "\n"
              "Attribute   Value\n"
              "cn          glee\n"
              "sn          Lee\n"
              "SpendLimit  50000\n");
    const Ended ended = orvo({"users", "show", "nobody-here", "jsmith", "--columns", "cn"});
    EXPECT_EQ(ended.code, 3);
    EXPECT_EQ(ended.err, "orvo: nobody-here: there is no user 'nobody-here'\n");
    EXPECT_EQ(ended.out, "Attribute  Value\ncn         jsmith\n");
}

TEST_P(OrvoUsers, AreMadeChangedAndRemoved) {
    EXPECT_EQ(
        done({"users", "add", "tim, the new", "mail=tim@shop.example", "mail=tim@home.example",
              "sn=T\xC3\xADm", "--profile", "Buyers", "--role", "Receiver,2", "--application", "7"},
             "first-secret\n"),
        "tim, the new: made.\n");
    const std::string entry = "cn=tim\\, the new,ou=Users,o=Shop";
    EXPECT_EQ(directory_->bind(entry, "first-secret"), 0);
    EXPECT_THAT(directory_->values(entry, "mail"),
                ElementsAre("tim@shop.example", "tim@home.example"));
    EXPECT_THAT(directory_->values(entry, "OrvoUserType"), ElementsAre("1"));
    EXPECT_THAT(directory_->values(entry, "ProfileCN"), ElementsAre("Buyers"));
    EXPECT_THAT(directory_->values(entry, "OrvoRole"), ElementsAre("24", "2"));
    EXPECT_THAT(directory_->values(entry, "OrvoApps"), ElementsAre("7"));
    EXPECT_EQ(refused({"users", "add", "tim, the new"}, "another-one\n"),
              "orvo: there is a user 'tim, the new' already\n");

    EXPECT_EQ(done({"users", "set", "tim, the new", "mail=", "SpendLimit=12.5", "c=NL"}),
              "tim, the new: changed.\n");
    EXPECT_THAT(directory_->values(entry, "mail"), IsEmpty());
    EXPECT_THAT(directory_->values(entry, "SpendLimit"), ElementsAre("12.5"));
    EXPECT_EQ(done({"users", "remove", "tim, the new", "--quiet"}), "");
    EXPECT_THAT(directory_->find("ou=Users,o=Shop", "(cn=tim, the new)"), IsEmpty());
    EXPECT_EQ(refused({"users", "remove", "tim, the new"}),
              "orvo: there is no user 'tim, the new'\n");
}

TEST_P(OrvoUsers, ThatCannotBeMadeWhollyAreNotMade) {
    EXPECT_THAT(refused({"users", "add", "tim", "mail=a@shop.example", "BusinessPartnerID=many"},
                        "first-secret\n"),
                StartsWith("orvo: "));
    EXPECT_THAT(refused({"users", "add", "tim"}, "short\n"), HasSubstr("(19)"));
    EXPECT_EQ(refused({"users", "add", "tim", "--profile", "Nothing"}, "first-secret\n"),
              "orvo: there is no profile 'Nothing'\n");
    EXPECT_EQ(refused({"users", "add", "tim"}), "orvo: there is no password in standard input\n");
    for (const std::string name : {"userPassword", "USERPASSWORD;lang-en", "2.5.4.35"})
        EXPECT_EQ(orvo({"users", "add", "tim", name + "=second-secret"}, "first-secret\n").err,
                  "orvo: a password is set with orvo users password; see orvo users add --help\n");
    EXPECT_THAT(directory_->find("ou=Users,o=Shop", "(cn=tim)"), IsEmpty());
}

TEST_P(OrvoUsers, KeepWhatTheyHadWhereOneChangeIsRefused) {
    EXPECT_THAT(refused({"users", "set", "jsmith", "mail=new@shop.example", "Fancy=x"}),
                HasSubstr("Fancy"));
    EXPECT_THAT(refused({"users", "set", "jsmith", "OrvoRole=7", "OrvoRole=8",
                         "Modem=", "BusinessPartnerID=many"}),
                StartsWith("orvo: "));
    EXPECT_THAT(values("jsmith", "mail"), ElementsAre("john.smith@shop.example"));
    EXPECT_THAT(values("jsmith", "OrvoRole"), ElementsAre("2", "3", "24"));
    EXPECT_THAT(values("jsmith", "Modem"), ElementsAre("+44 20 7946 0020"));
    EXPECT_EQ(orvo({"users", "set", "jsmith", "c=", "C=NL"}).err,
              "orvo: 'C' is given with and without a value; see orvo users set --help\n");
}

TEST_P(OrvoUsers, HaveRolesAndApplicationsOfTheirOwn) {
    EXPECT_EQ(done({"users", "roles", "jsmith"}),
              "2 (BuyerRole)\n3 (RequisitionerRole)\n24 (ReceiverRole)\n");
    EXPECT_EQ(
        done({"users", "roles", "jsmith", "--add", "canpublish,2", "--remove", "Requisitioner"}),
        "jsmith: has the roles 2 (BuyerRole), 24 (ReceiverRole), 21 (CanPublish).\n");
    EXPECT_THAT(values("jsmith", "OrvoRole"), ElementsAre("2", "24", "21"));
    EXPECT_EQ(done({"users", "roles", "jsmith", "--set", "500"}), "jsmith: has the roles 500.\n");
    EXPECT_EQ(done({"users", "roles", "jsmith", "--clear"}), "jsmith: has no roles.\n");
    EXPECT_THAT(values("jsmith", "OrvoRole"), IsEmpty());
    EXPECT_EQ(done({"users", "apps", "jsmith", "--set", "3,10", "--quiet"}), "");
    EXPECT_THAT(values("jsmith", "OrvoApps"), ElementsAre("3", "10"));
    for (const char* number : {"0", "32768", "-1", "2x", ""}) {
        const Ended ended = orvo({"users", "apps", "jsmith", "--add", number});
        EXPECT_EQ(ended.code, 2) << number;
        EXPECT_THAT(ended.err, HasSubstr("see orvo users apps --help\n"));
    }
    EXPECT_EQ(orvo({"users", "roles", "jsmith", "--set", "1", "--add", "2"}).code, 2);
    EXPECT_THAT(values("jsmith", "OrvoApps"), ElementsAre("3", "10"));
}

TEST_P(OrvoUsers, WhoseProfileIsGoneGetAnother) {
    directory_->replace(directory_->user_dn("jsmith"), "ProfileCN", {"Gone"});
    EXPECT_EQ(refused({"users", "show", "jsmith"}),
              "orvo: the profile of 'jsmith' is not there: give the user another one with orvo "
              "users profile\n");
    EXPECT_EQ(done({"users", "profile", "jsmith"}), "Gone\n");
    EXPECT_EQ(refused({"users", "profile", "jsmith", "--set", "Nix"}),
              "orvo: there is no profile 'Nix'\n");
    EXPECT_EQ(done({"users", "profile", "jsmith", "--set", "Sales"}),
              "jsmith: has the profile Sales.\n");
    EXPECT_THAT(values("jsmith", "ProfileCN"), ElementsAre("Sales"));
    EXPECT_EQ(done({"users", "profile", "jsmith", "--clear"}), "jsmith: has no profile.\n");
    EXPECT_THAT(values("jsmith", "ProfileCN"), IsEmpty());
}

TEST_P(OrvoUsers, GetPasswordsThatNobodySees) {
    EXPECT_EQ(done({"users", "password", "jsmith"}, "another-secret\n"),
              "jsmith: has another password.\n");
    EXPECT_EQ(bind("jsmith", "another-secret"), 0);
    const std::string generated = done({"users", "password", "jsmith", "--generate", "--quiet"});
    EXPECT_THAT(generated, testing::MatchesRegex("[a-zA-Z2-9]{16}\n"));
    EXPECT_EQ(bind("jsmith", generated.substr(0, 16)), 0);
    EXPECT_THAT(values("jsmith", "pwdReset"), IsEmpty());
    const std::string once = done({"users", "password", "jsmith", "--generate", "--must-change"});
    EXPECT_THAT(once, StartsWith("jsmith: has another password.\n"
                                 "The password, which is shown only now:\n\n    "));
    EXPECT_THAT(values("jsmith", "pwdReset"), ElementsAre("TRUE"));
    EXPECT_THAT(refused({"users", "password", "jsmith"}, "short\n"), HasSubstr("(19)"));
    EXPECT_EQ(refused({"users", "password", "jsmith"}),
              "orvo: there is no password in standard input\n");
}

TEST_P(OrvoUsers, TypePasswordsOnATerminalThatShowsNothing) {
    {
        PseudoTerminal terminal({ORVO_ADMIN, "users", "password", "jsmith"});
        terminal.expect("New password of 'jsmith': ");
        terminal.type("another-secret\n");
        terminal.expect("Again: ");
        terminal.type("another-secret\n");
        EXPECT_EQ(terminal.wait(), 0) << terminal.shown();
        EXPECT_EQ(terminal.shown(),
                  "New password of 'jsmith': \r\nAgain: \r\njsmith: has another password.\r\n");
    }
    EXPECT_EQ(bind("jsmith", "another-secret"), 0);
    PseudoTerminal terminal({ORVO_ADMIN, "users", "password", "jsmith"});
    terminal.expect("jsmith': ");
    terminal.type("one-secret\n");
    terminal.expect("Again: ");
    terminal.type("other-secret\n");
    EXPECT_EQ(terminal.wait(), 1);
    EXPECT_THAT(terminal.shown(), HasSubstr("orvo: the two passwords are not the same\r\n"));
    EXPECT_EQ(bind("jsmith", "another-secret"), 0);
}

TEST_P(OrvoUsers, MayLeaveThePromptWithControlC) {
    PseudoTerminal terminal({ORVO_ADMIN, "users", "password", "jsmith"});
    terminal.expect("jsmith': ");
    terminal.type("half\x03");
    EXPECT_EQ(terminal.wait(), 128 + 2);
    EXPECT_THAT(terminal.shown(), testing::Not(HasSubstr("half")));
}

TEST_P(OrvoUsers, AreUnlockedAndTheirFailuresForgotten) {
    lock("jsmith");
    EXPECT_EQ(done({"users", "unlock", "jsmith", "glee"}),
              "jsmith: unlocked.\nglee: not locked.\n");
    EXPECT_EQ(bind("jsmith", "wrong"), 49);
    EXPECT_EQ(bind("jsmith", "wrong"), 49);
    EXPECT_EQ(bind("jsmith", directory_->user_password()), 0) << "two failures are one too few";
}

TEST_P(OrvoUsers, AreListedByColumnsThatHaveNamesAndNoFewerThanNone) {
    EXPECT_EQ(done({"users", "list", "--columns", "cn, OrvoUserType", "--name", "jsmith",
                    "--format", "csv"}),
              "cn,OrvoUserType\r\njsmith,1\r\n");
    const Ended nameless = orvo({"users", "list", "--columns", ""});
    EXPECT_EQ(nameless.err, "orvo: --columns: a column has no name; see orvo users list --help\n");
    const Ended fewer = orvo({"users", "list", "--limit", "-1"});
    EXPECT_EQ(fewer.err, "orvo: --limit: -1 is less than none; see orvo users list --help\n");
    EXPECT_EQ(std::pair(nameless.code, fewer.code), std::pair(2, 2));
}

TEST_P(OrvoUsers, WhosePasswordsAreTriedAreInTheAudit) {
    std::ofstream(directory_->site_ini(), std::ios::app)
        << "\n[AUDIT]\nFile=" << (folder_.path() / "audit.jsonl").string() << "\n";
    orvo({"why", "jsmith", "--try"}, "wrong-secret\n");
    orvo({"why", "jsmith", "--try"}, directory_->user_password() + "\n");
    orvo({"why", "jsmith", "--password"}, "wrong-secret\n");
    EXPECT_EQ(done({"audit", "--columns", "event,result,user", "--format", "csv"}),
              "event,result,user\r\ncheck,wrong,\"" + directory_->user_dn("jsmith") +
                  "\"\r\ncheck,right,\"" + directory_->user_dn("jsmith") + "\"\r\n");
}

TEST_P(OrvoUsers, AreDisabledUntilTheyAreEnabled) {
    EXPECT_EQ(done({"users", "disable", "jsmith"}), disabled("jsmith"));
    EXPECT_THAT(values("jsmith", "pwdAccountLockedTime"), ElementsAre("000001010000Z"));
    EXPECT_EQ(bind("jsmith", directory_->user_password()), 49);
    EXPECT_EQ(done({"users", "disable", "jsmith"}), "jsmith: disabled already.\n");
    EXPECT_EQ(refused({"users", "unlock", "jsmith"}),
              "orvo: 'jsmith' is disabled, not locked: see orvo users enable\n");
    EXPECT_EQ(refused({"users", "password", "jsmith"}, "another-secret\n"),
              "orvo: 'jsmith' is disabled, and a new password would end that: see orvo users "
              "enable\n");
    EXPECT_EQ(bind("jsmith", "another-secret"), 49);
    EXPECT_EQ(done({"users", "enable", "jsmith"}), "jsmith: enabled.\n");
    EXPECT_EQ(bind("jsmith", directory_->user_password()), 0);
    EXPECT_EQ(done({"users", "enable", "jsmith"}), "jsmith: not disabled.\n");
    lock("jsmith");
    EXPECT_EQ(done({"users", "disable", "jsmith"}), disabled("jsmith"));
}

TEST_P(OrvoUsers, WhoCouldStillLogInAreNotCalledDisabled) {
    const std::string reason =
        " cannot be disabled and could still log in, as no password policy with pwdLockout "
        "applies: make such a policy first\n";
    const auto without_policy = GetParam().make({});
    EXPECT_EQ(
        refused({"users", "disable", "jsmith", "--site", without_policy->site_ini().string()}),
        "orvo: 'jsmith'" + reason);
    EXPECT_THAT(without_policy->values(directory_->user_dn("jsmith"), "pwdAccountLockedTime"),
                IsEmpty());
    if (!is_embedded()) return;
    ASSERT_EQ(directory_->replace("cn=default,ou=Policies,o=Shop", "pwdLockout", {"FALSE"}), 0);
    EXPECT_EQ(refused({"users", "disable", "jsmith"}), "orvo: 'jsmith'" + reason);
    EXPECT_THAT(values("jsmith", "pwdAccountLockedTime"), IsEmpty());
    const Ended both = orvo({"users", "disable", "jsmith", "glee"});
    EXPECT_EQ(both.code, 1);
    EXPECT_EQ(both.err, "orvo: jsmith: 'jsmith'" + reason + "orvo: glee: 'glee'" + reason);
}

TEST_P(OrvoUsers, HaveToChangeAnExpiredPassword) {
    EXPECT_EQ(done({"users", "expire", "jsmith"}),
              "jsmith: has to change the password at the next login.\n");
    EXPECT_THAT(values("jsmith", "pwdReset"), ElementsAre("TRUE"));
}

TEST_P(OrvoUsers, OfWhomSomeAreRefusedAreDonePartly) {
    const Ended ended = orvo({"users", "remove", "jsmith", "nobody-here", "glee"});
    EXPECT_EQ(ended.code, 3);
    EXPECT_EQ(ended.out, "jsmith: removed.\nglee: removed.\n");
    EXPECT_EQ(ended.err, "orvo: nobody-here: there is no user 'nobody-here'\n");
    const Ended none = orvo({"users", "unlock", "nobody-here", "nor-here"});
    EXPECT_EQ(none.code, 1);
}

TEST_P(OrvoUsers, AreATableAsWideAsTheTerminal) {
    PseudoTerminal terminal(
        {ORVO_ADMIN, "users", "list", "--name", "jsmith", "--columns", "cn,mail,Manager"}, 40);
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_EQ(terminal.shown(),
              "\x1B[1mcn\x1B[0m      \x1B[1mmail\x1B[0m             \x1B[1mManager\x1B[0m\r\n"
              "jsmith  john.smith@sho…  grace.lee@shop…\r\n");
    const Environment no_colours("NO_COLOR", "1");
    PseudoTerminal plain({ORVO_ADMIN, "users", "list", "--name", "jsmith", "--columns", "cn"});
    EXPECT_EQ(plain.wait(), 0);
    EXPECT_EQ(plain.shown(), "cn\r\njsmith\r\n");
}

TEST_P(OrvoUsers, NobodyReadsAreOneSentence) {
    const std::filesystem::path log = folder_.path() / "piped";
    const int code = ChildProcess({"/bin/bash", "-c",
                                   std::string(ORVO_ADMIN) +
                                       " users list --limit 100 | true; exit ${PIPESTATUS[0]}"},
                                  log)
                         .wait();
    EXPECT_EQ(code, 1);
    EXPECT_EQ(content_of(log), "orvo: standard output cannot be written: Broken pipe\n");
}

TEST_P(OrvoUsers, NeedASiteWithAServiceAccount) {
    const std::string missing = (folder_.path() / "missing.ini").string();
    EXPECT_EQ(refused({"users", "list", "--site", missing}),
              "orvo: " + missing +
                  ": there are no settings of a site; name them with --site, or make them with "
                  "orvo init\n");
    std::string settings = content_of(directory_->site_ini());
    const std::string code = "MemScriptCode=service-sample";
    settings.replace(settings.find(code), code.size(), "MemScriptCode=wrong");
    const std::string wrong = folder_.write("wrong.ini", settings).string();
    EXPECT_THAT(refused({"users", "unlock", "jsmith", "glee", "--site", wrong}),
                StartsWith("orvo: the directory refuses the service account: see MemScriptUser and "
                           "MemScriptCode in the site's settings ("));
}

TEST_P(OrvoUsers, StayAsTheyAreWhereTheServiceAccountHasNoRights) {
    std::string settings = content_of(directory_->site_ini());
    const auto put = [&](const std::string& key, const std::string& value) {
        const std::size_t at = settings.find("\n" + key + "=") + 1;
        settings.replace(at, settings.find('\n', at) - at, key + "=" + value);
    };
    put("MemScriptUser", "cn=jsmith,ou=Users");
    put("MemScriptCode", directory_->user_password());
    const std::string weak = folder_.write("weak.ini", settings).string();
    for (const char* command : {"remove", "disable", "expire"})
        EXPECT_THAT(refused({"users", command, "glee", "--site", weak}),
                    StartsWith("orvo: the service account has not the right to do that: see the "
                               "directory's access rules ((50) The rights are not sufficient"))
            << command;
    EXPECT_EQ(bind("glee", directory_->user_password()), 0);
}

TEST_P(OrvoUsers, OfADirectoryThatIsAwayAreOneSentence) {
    std::string settings = content_of(directory_->site_ini());
    settings.replace(settings.find(directory_->server()), directory_->server().size(),
                     "127.0.0.1:1");
    const std::string away = folder_.write("away.ini", settings).string();
    for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
             {"users", "list"}, {"users", "remove", "jsmith", "glee"}, {"profiles", "list"}}) {
        std::vector<std::string> words = command;
        words.insert(words.end(), {"--site", away});
        EXPECT_THAT(refused(words),
                    StartsWith("orvo: the directory cannot be reached: see whether it runs, and "
                               "LDAPServer in the site's settings ("));
    }
}

}  // namespace
}  // namespace orvo
