// `orvo why`, at an embedded directory and in front of a server.

#include <gmock/gmock.h>

#include <chrono>
#include <fstream>
#include <memory>

#include "suite/directory/embedded/directory/directory.h"
#include "suite/directory/policy/account_times.h"
#include "suite/throttle/gate.h"
#include "suite/throttle/redis_counters.h"
#include "tests/host/admin/orvo_program.h"
#include "tests/support/environment.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"
#include "tests/support/store_settings.h"
#include "tests/support/throttle_setting.h"

namespace orvo {
namespace {

using directory::Moment;
using directory::time_in_seconds;
using std::chrono::days;
using std::chrono::hours;
using std::chrono::minutes;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using namespace std::string_literals;

const Moment now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());

// "2026-11-22 12:30:00 UTC"
std::string readable(Moment time) {
    const std::string digits = time_in_seconds(time);
    return digits.substr(0, 4) + "-" + digits.substr(4, 2) + "-" + digits.substr(6, 2) + " " +
           digits.substr(8, 2) + ":" + digits.substr(10, 2) + ":" + digits.substr(12, 2) + " UTC";
}

// Three failures lock for an hour, passwords expire after 100 days and are good for two logins
// more.
const std::string policy =
    "dn: cn=strict,ou=Config,o=Shop\nobjectClass: organizationalRole\nobjectClass: pwdPolicy\n"
    "cn: strict\npwdAttribute: userPassword\npwdLockout: TRUE\npwdMaxFailure: 3\n"
    "pwdLockoutDuration: 3600\npwdMaxAge: 8640000\npwdGraceAuthNLimit: 2\npwdMustChange: TRUE\n"
    "pwdAllowUserChange: TRUE\n\n";

// A user under that policy, with the password "shop-sample".
std::string user(const std::string& name, const std::string& more) {
    return "dn: cn=" + name + ",ou=Users,o=Shop\nobjectClass: orvoPerson\ncn: " + name +
           "\npwdPolicySubentry: cn=strict,ou=Config,o=Shop\n"
           "userPassword: {SSHA}ZEY7CJzuIUOwCnYfXDhYj4IpoL6NqH2iQGg31g==\n" +
           more + "\n";
}

std::string set(const char* attribute, Moment time) {
    return std::string(attribute) + ": " + time_in_seconds(time) + "\n";
}

std::string failures(int count) {
    std::string text;
    for (int i = 1; i <= count; ++i) text += set("pwdFailureTime", now - minutes(20 + i));
    return text;
}

const std::string usual = "OrvoUserType: 1\nProfileCN: Buyers\n";

std::string users() {
    return policy + user("fine", usual + set("pwdChangedTime", now - days(10) - minutes(1))) +
           user("locked", usual + failures(3) + set("pwdAccountLockedTime", now - minutes(10))) +
           user("freed", usual + failures(3) + set("pwdAccountLockedTime", now - hours(2))) +
           user("failing", usual + failures(2)) +
           user("disabled", usual + "pwdAccountLockedTime: 000001010000Z\n") +
           user("early", usual + set("pwdStartTime", now + days(30))) +
           user("late", usual + set("pwdEndTime", now - days(30))) +
           user("grace", usual + set("pwdChangedTime", now - days(200)) +
                             set("pwdGraceUseTime", now - days(1))) +
           user("expired", usual + set("pwdChangedTime", now - days(200)) +
                               set("pwdGraceUseTime", now - days(1)) +
                               set("pwdGraceUseTime", now - days(2))) +
           user("reset", usual + "pwdReset: TRUE\n") +
           user("lost", "OrvoUserType: 1\nProfileCN: Gone\n") + user("odd", "OrvoUserType: 9\n") +
           user("idle", "OrvoUserType: 1\n") + user("boss", "OrvoUserType: 4\nOrvoApps: 3\n");
}

class OrvoWhyProgram : public OrvoProgram {
protected:
    // What `orvo why` prints on either stream; `input` is its standard input.
    std::string run_why(const std::string& name, const std::filesystem::path& site,
                        const std::vector<std::string>& more, const std::string& input) {
        std::vector<std::string> command{"/bin/sh",
                                         "-c",
                                         "exec \"$@\" < \"$0\"",
                                         folder.write("input", input).string(),
                                         ORVO_ADMIN,
                                         "why",
                                         name,
                                         "--site",
                                         site.string()};
        command.insert(command.end(), more.begin(), more.end());
        const std::filesystem::path log = folder.path() / "log";
        std::filesystem::remove(log);
        code = ChildProcess(command, log).wait();
        return content_of(log);
    }
};

class OrvoWhy : public OrvoWhyProgram, public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        const std::filesystem::path ldif = folder.write("users.ldif", users());
        std::string settings;
        if (is_embedded()) {
            directory({"import", shop(), ldif.string()});
            ASSERT_EQ(code, 0) << content_of(path("log"));
            settings = content_of(ORVO_SOURCE_DIR "/examples/site.ini");
            settings.replace(settings.find("@SERVER@"), 8, path("shop.db"));
        } else {
            server = std::make_unique<PrivateSlapd>(
                SlapdOptions{.password_policy = true, .ldif = {ldif}});
            settings = content_of(server->site_ini());
        }
        std::ofstream(path("site.ini")) << settings;
        write_throttle_section(path("site.ini"), "On=no\n");
    }
    static bool is_embedded() { return std::string(GetParam()) == "embedded"; }

    std::string why(const std::string& name, const std::vector<std::string>& more = {},
                    const std::string& input = {}) {
        return run_why(name, path("site.ini"), more, input);
    }
    // All that the directory has of a user.
    std::string entry_of(const std::string& name) {
        const std::string dn = "cn=" + name + ",ou=Users,o=Shop";
        if (is_embedded()) return directory({"show", path("shop.db"), dn});
        return output_of({"/usr/sbin/slapcat", "-f", (server->folder() / "slapd.conf").string(),
                          "-a", "(cn=" + name + ")"});
    }
    int log_in(const std::string& name, const std::string& password) {
        const std::string dn = "cn=" + name + ",ou=Users,o=Shop";
        if (!is_embedded()) return LdapProbe(server->url()).bind(dn, password);
        using directory::embedded::Directory;
        return Directory::of(from_utf8(path("shop.db")))
            ->bind(dn, Secret::of_bytes(password), Directory::Proof::anew)
            .code;
    }

    std::unique_ptr<PrivateSlapd> server;
};

INSTANTIATE_TEST_SUITE_P(Directories, OrvoWhy, testing::Values("embedded", "server"),
                         [](const auto& info) { return std::string(info.param); });

TEST_P(OrvoWhy, TellsEachStepOfALogin) {
    EXPECT_EQ(why("fine"),
              "fine\n"
              "  ok         name            is cn=fine,ou=Users,o=Shop\n"
              "  ok         entry           is there\n"
              "  ok         enabled         yes\n"
              "  ok         locked          no\n"
              "  ok         password's age  expires in 89 days, on " +
                  readable(now + days(90) - minutes(1)) +
                  "\n"
                  "  skipped    password        not asked for; --password does\n"
                  "  ok         profile         Buyers\n"
                  "  ok         account         type 1, cn=1,ou=Accounts,o=Shop\n"
                  "  ok         applications    1, 2\n"
                  "\n"
                  "Nothing that was looked at refuses the login.\n");
    EXPECT_EQ(code, 0);
}

TEST_P(OrvoWhy, SaysWhatRefusesALogin) {
    struct Row {
        const char* user;
        std::string line;
        const char* step;  // that refuses; null: none
    };
    const std::string set_new =
        "                             To do: Let the user change it on the site's page for that, "
        "or orvo users password ";
    const Row rows[] = {
        {"locked",
         "  refused    locked          Since " + readable(now - minutes(10)) +
             ", after 3 wrong passwords, until " + readable(now + minutes(50)) +
             ".\n                             To do: orvo users unlock locked\n",
         "locked"},
        {"freed",
         "  ok         locked          no: a lock has ended, set on " + readable(now - hours(2)) +
             "\n",
         nullptr},
        {"failing", "  ok         locked          no, after 2 wrong passwords; 3 lock it\n",
         nullptr},
        {"disabled",
         "  refused    enabled         It has been disabled (pwdAccountLockedTime "
         "000001010000Z).\n                             To do: orvo users enable disabled\n",
         "enabled"},
        {"early",
         "  refused    enabled         It is not valid before " + readable(now + days(30)) +
             " (pwdStartTime).\n",
         "enabled"},
        {"late",
         "  refused    enabled         It has not been valid since " + readable(now - days(30)) +
             " (pwdEndTime).\n",
         "enabled"},
        {"grace",
         "  refused    password's age  It expired on " + readable(now - days(100)) +
             "; 1 grace login is left.\n" + set_new + "grace\n",
         "password's age"},
        {"expired",
         "  refused    password's age  It expired on " + readable(now - days(100)) +
             "; no grace login is left.\n                             To do: orvo users password "
             "expired\n",
         "password's age"},
        {"reset",
         "  refused    password's age  It has to be changed at the next login (pwdReset).\n" +
             set_new + "reset\n",
         "password's age"},
        {"lost",
         "  refused    profile         There is no profile 'Gone', which the user has "
         "(ProfileCN).\n                             To do: Make it, or give the user another: "
         "orvo users profile lost --set PROFILE\n",
         "profile"},
        {"odd",
         "  refused    account         There is no cn=9,ou=Accounts,o=Shop for users of type "
         "9.\n                             To do: Make it, or correct the user's OrvoUserType.\n",
         "account"},
        {"idle",
         "  ok         applications    none: the login succeeds, but opens no guarded page\n",
         nullptr},
        {"boss", "  ok         applications    3, 10\n", nullptr},
    };
    for (const Row& row : rows) {
        const std::string said = why(row.user);
        EXPECT_THAT(said, HasSubstr(row.line)) << row.user;
        EXPECT_THAT(said,
                    EndsWith(row.step ? "\nThe login is refused: " + std::string(row.step) + ".\n"
                                      : "\nNothing that was looked at refuses the login.\n"))
            << row.user;
        EXPECT_EQ(code, row.step ? 1 : 0) << row.user;
    }
}

// What it says is what a login comes to.
TEST_P(OrvoWhy, AgreesWithTheDirectory) {
    EXPECT_EQ(log_in("fine", "shop-sample"), 0);
    EXPECT_EQ(log_in("freed", "shop-sample"), 0);
    for (const char* name : {"locked", "disabled", "early", "late", "expired"})
        EXPECT_EQ(log_in(name, "shop-sample"), 49) << name;
    for (int i = 0; i < 3; ++i) {
        EXPECT_THAT(why("fine"), HasSubstr("  ok         locked          no"));
        EXPECT_EQ(log_in("fine", "another"), 49);
    }
    EXPECT_THAT(why("fine"), HasSubstr(", after 3 wrong passwords, until "));
    EXPECT_EQ(code, 1);
}

TEST_P(OrvoWhy, ComparesAPasswordWithoutCounting) {
    EXPECT_EQ(log_in("fine", "another"), 49);
    const std::string before = entry_of("fine");
    EXPECT_THAT(before, HasSubstr("pwdFailureTime: "));
    EXPECT_THAT(why("fine", {"--password"}, "wrong\n"),
                HasSubstr("  refused    password        It is not the user's.\n"));
    EXPECT_EQ(code, 1);
    EXPECT_THAT(why("fine", {"--password"}, "shop-sample\n"),
                HasSubstr("  ok         password        right\n"));
    EXPECT_EQ(code, 0);
    EXPECT_THAT(why("fine", {"--password"}, "\n"),
                HasSubstr("  refused    password        An empty one is always refused.\n"));
    EXPECT_EQ(entry_of("fine"), before);
}

TEST_P(OrvoWhy, ComparesThePasswordOfALockedAccount) {
    const std::string before = entry_of("locked");
    EXPECT_THAT(why("locked", {"--password"}, "shop-sample\n"),
                HasSubstr("  ok         password        right\n"));
    EXPECT_THAT(why("locked", {"--password"}, "wrong\n"),
                EndsWith("\nThe login is refused: locked, password.\n"));
    EXPECT_EQ(entry_of("locked"), before);
}

TEST_P(OrvoWhy, LogsInWhereItIsAskedTo) {
    EXPECT_THAT(entry_of("fine"), testing::Not(HasSubstr("pwdFailureTime: ")));
    EXPECT_THAT(why("fine", {"--try"}, "wrong\n"),
                HasSubstr("  refused    password        It is not the user's.\n"));
    EXPECT_THAT(entry_of("fine"), HasSubstr("pwdFailureTime: "));
    EXPECT_THAT(why("fine", {"--try"}, "shop-sample\n"),
                HasSubstr("  ok         password        right\n"));
    EXPECT_THAT(entry_of("fine"), testing::Not(HasSubstr("pwdFailureTime: ")));
    EXPECT_THAT(why("locked", {"--try"}, "shop-sample\n"),
                HasSubstr("  refused    password        The account is locked.\n"));
}

TEST_P(OrvoWhy, SaysThatNobodyIsCalledSo) {
    EXPECT_THAT(why("nobody"),
                StartsWith("nobody\n"
                           "  ok         name            is cn=nobody,ou=Users,o=Shop\n"
                           "  refused    entry           There is no such user.\n"
                           "                             To do: Correct the name, or make the "
                           "user: orvo users add nobody\n"
                           "  skipped    enabled         needs entry\n"));
    EXPECT_EQ(code, 1);
    EXPECT_THAT(why("ou=Users"),
                HasSubstr("  refused    entry           There is no such user.\n"));
}

// A login takes a relative name, the commands for users take a name.
TEST_P(OrvoWhy, AdvisesCommandsThatFindTheUser) {
    for (const char* typed : {"cn=locked", "CN=locked"})
        EXPECT_THAT(why(typed), HasSubstr("To do: orvo users unlock locked\n")) << typed;
    EXPECT_THAT(why("cn=disabled"), HasSubstr("To do: orvo users enable disabled\n"));
    EXPECT_THAT(why("cn=nobody, else"),
                HasSubstr("make the user: orvo users add 'nobody, else'\n"));
    EXPECT_THAT(why("cn=lost"), HasSubstr("orvo users profile lost --set PROFILE\n"));
    EXPECT_THAT(why("cn=idle"), HasSubstr("To do: orvo users apps idle --add N\n"));
}

TEST_P(OrvoWhy, WritesJson) {
    EXPECT_THAT(why("reset", {"--json"}),
                HasSubstr("  {\"subject\": \"reset\", \"step\": \"password's age\", \"result\": "
                          "\"refused\", \"text\": \"It has to be changed at the next login "
                          "(pwdReset).\", \"advice\": \"Let the user change it on the site's page "
                          "for that, or orvo users password reset\"},\n"));
    EXPECT_EQ(code, 1);
}

class OrvoWhyServer : public OrvoWhyProgram {
protected:
    // With a password: asks for it to be compared.
    std::string why(PrivateSlapd& server, const std::string& name,
                    const std::string& password = {}) {
        return run_why(name, server.site_ini(),
                       password.empty() ? std::vector<std::string>() : std::vector{"--password"s},
                       password);
    }
};

// The sample's default policy is hidden from the service account.
TEST_F(OrvoWhyServer, SaysWhatAHiddenPolicyLeavesOpen) {
    PrivateSlapd server({.password_policy = true});
    EXPECT_THAT(why(server, "jsmith"),
                HasSubstr("  not known  password's age  The service account cannot see the "
                          "password policy.\n"));
    EXPECT_EQ(code, 0);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(LdapProbe(server.url()).bind(server.user_dn("jsmith"), "wrong"), 49);
    EXPECT_THAT(why(server, "jsmith"),
                HasSubstr(", after 3 wrong passwords; until when, the password policy says, which "
                          "the service account cannot see.\n"));
    EXPECT_EQ(code, 1);
}

// Of two policies, the one that the server's configuration names.
TEST_F(OrvoWhyServer, GoesByTheServersDefaultPolicy) {
    PrivateSlapd server({.password_policy = true,
                         .config = "database config\naccess to dn.subtree=cn=config by "
                                   "dn.exact=cn=root,o=Shop read by * none\n",
                         .ldif = {folder.write("policy.ldif", policy)}});
    std::string settings = content_of(server.site_ini());
    const auto replace = [&](const std::string& from, const std::string& to) {
        settings.replace(settings.find(from), from.size(), to);
    };
    replace("cn=orvo-service,ou=Services", "cn=root");
    replace("service-sample", server.root_password());
    std::ofstream(server.site_ini()) << settings;
    EXPECT_EQ(LdapProbe(server.url()).bind(server.user_dn("jsmith"), "wrong"), 49);
    EXPECT_THAT(why(server, "jsmith"),
                HasSubstr("  ok         locked          no, after 1 wrong password; 3 lock it\n"
                          "  ok         password's age  does not expire\n"));
    // The hash is not hidden from this account.
    EXPECT_THAT(why(server, "jsmith", "shop-sample\n"),
                HasSubstr("  ok         password        right\n"));
    EXPECT_THAT(why(server, "jsmith", "wrong\n"),
                HasSubstr("  refused    password        It is not the user's.\n"));
    LdapProbe probe(server.url(), server.root_dn(), server.root_password());
    EXPECT_EQ(probe.values(server.user_dn("jsmith"), "pwdFailureTime").size(), 1u);
}

// Where nothing counts logins, one says whether the password is right.
TEST_F(OrvoWhyServer, ComparesByALoginWhereThereAreNoPolicies) {
    PrivateSlapd server;
    EXPECT_THAT(why(server, "jsmith", "shop-sample\n"),
                HasSubstr("  ok         password        right\n"));
    EXPECT_THAT(why(server, "jsmith", "wrong\n"),
                HasSubstr("  refused    password        It is not the user's.\n"));
}

// Somebody of a company's directory, by any of the names that the login takes.
TEST_F(OrvoWhyServer, LooksThroughAMap) {
    PrivateSlapd server(
        {.directory = ORVO_SOURCE_DIR "/examples/directories/openldap", .suffix = "o=Company"});
    EXPECT_EQ(why(server, "dirk.jansen@company.example", "company-sample\n"),
              "dirk.jansen@company.example\n"
              "  ok         name            is uid=djansen,ou=Warehouse,ou=People,o=Company\n"
              "  ok         entry           is there\n"
              "  ok         enabled         yes\n"
              "  ok         locked          no\n"
              "  ok         password's age  does not expire\n"
              "  ok         password        right\n"
              "  ok         profile         the user has none\n"
              "  ok         account         type 1, from DIRECTORY.MAP.ACCOUNTS\n"
              "  ok         applications    1\n"
              "\n"
              "Nothing that was looked at refuses the login.\n");
    EXPECT_EQ(code, 0);
    // The type comes from a group.
    EXPECT_THAT(why(server, "alee"),
                HasSubstr("  ok         account         type 4, from DIRECTORY.MAP.ACCOUNTS\n"
                          "  ok         applications    1, 10\n"));
    EXPECT_THAT(why(server, "jsmith", "wrong\n"),
                HasSubstr("  refused    password        It is not the user's.\n"));
    EXPECT_THAT(why(server, "twin"),
                HasSubstr("  refused    name            More than one user is called so, so nobody "
                          "is: uid=twin,ou="));
    EXPECT_EQ(code, 1);
    EXPECT_THAT(why(server, "nobody"),
                HasSubstr("  refused    name            There is no such user.\n"));
    EXPECT_EQ(code, 1);
}

// Who is found by several names is counted by each, and for all of them.
TEST_F(OrvoWhyServer, TellsOfTheThrottleByAllNamesOfAUserAndUnlockEndsIt) {
    const RedisServer store;
    PrivateSlapd server(
        {.directory = ORVO_SOURCE_DIR "/examples/directories/openldap", .suffix = "o=Company"});
    std::ofstream(server.site_ini(), std::ios::app)
        << "\n[THROTTLE]\nOn=yes\nAttempts=2\n" + store.site_section();
    throttle::RedisCounters counters(store_of(store));
    const auto limits = throttle::limits_of({.attempts = 2});
    const std::string entry = "uid=djansen,ou=Warehouse,ou=People,o=Company";
    const auto guess = [&](const std::string& name) {
        const auto key = [](const std::string& dn) { return throttle::user_key(from_utf8(dn)); };
        for (const throttle::Attempt& attempt :
             {throttle::Attempt{key("uid=" + name + ",ou=People,o=Company"), "203.0.113.7"},
              throttle::Attempt{key(entry), "203.0.113.7", true}})
            counters.settle(attempt, counters.reserve(attempt, limits), throttle::Outcome::wrong,
                            limits);
    };
    guess("djansen");
    guess("dirk.jansen@company.example");
    EXPECT_THAT(why(server, "djansen"),
                HasSubstr("  refused    throttle        2 of 2 wrong passwords by all the user's "
                          "names from unknown addresses: refused for "));
    EXPECT_THAT(why(server, "djansen"), HasSubstr("To do: orvo users unlock djansen\n"));
    const Environment components("ORVO_COMPONENTS", folder.path().string());
    const std::string bin = ORVO_BIN;
    output_of({bin + "/orvo-register", bin + "/OrvoMembership.so", bin + "/OrvoSuite.so",
               bin + "/OrvoPlatform.so"});
    const auto unlock = [&] {
        return output_of({ORVO_ADMIN, "users", "unlock", "djansen", "--site", server.site_ini()});
    };
    EXPECT_EQ(unlock(), "djansen: not locked, and no wrong passwords are counted any more.\n");
    EXPECT_EQ(unlock(), "djansen: not locked.\n");
    for (const char* name : {"djansen", "dirk.jansen@company.example"})
        EXPECT_THAT(why(server, name),
                    HasSubstr("  ok         throttle        no wrong passwords are counted\n"));
}

TEST_F(OrvoWhyServer, AsksTheNextServerOfTheList) {
    PrivateSlapd server, gone;
    const std::string address = gone.server();
    gone.stop();
    std::string settings = content_of(server.site_ini());
    settings.replace(settings.find(server.server()), server.server().size(),
                     address + " " + server.server());
    std::ofstream(server.site_ini()) << settings;
    EXPECT_THAT(why(server, "jsmith"), HasSubstr("  ok         password's age  does not expire\n"));
    EXPECT_EQ(code, 0);
    server.stop();
    EXPECT_THAT(why(server, "jsmith"), StartsWith("orvo: (81) The server cannot be reached."));
    EXPECT_EQ(code, 1);
}

}  // namespace
}  // namespace orvo
