// `orvo doctor` in front of a directory server.

#include <gmock/gmock.h>

#include <fstream>

#include "tests/host/admin/orvo_program.h"
#include "tests/support/server_certificate.h"
#include "tests/support/slapd.h"

namespace orvo {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

// The server's own configuration may be read by the account that may do anything.
constexpr const char* readable_configuration =
    "database config\n"
    "access to dn.subtree=cn=config by dn.exact=cn=root,o=Shop read by * none\n";

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
}

class OrvoDoctor : public OrvoProgram {
protected:
    // What `orvo doctor` prints for these settings, on either stream.
    std::string doctor(const std::string& settings, std::vector<std::string> more = {}) {
        std::ofstream(path("site.ini")) << settings;
        more.insert(more.begin(), {ORVO_ADMIN, "doctor", "--site", path("site.ini")});
        const std::filesystem::path log = folder.path() / "log";
        std::filesystem::remove(log);
        code = ChildProcess(more, log).wait();
        return content_of(log);
    }
    static std::string settings(PrivateSlapd& server) { return content_of(server.site_ini()); }
    static std::string settings(PrivateSlapd& server, const std::string& address) {
        return replaced(settings(server), "LDAPServer=" + server.server(), "LDAPServer=" + address);
    }
    // With the account that may do anything in place of the service account.
    static std::string settings_of_root(PrivateSlapd& server) {
        std::string text = replaced(settings(server), "MemScriptUser=cn=orvo-service,ou=Services",
                                    "MemScriptUser=cn=root");
        return replaced(text, "MemScriptCode=service-sample",
                        "MemScriptCode=" + server.root_password());
    }
    static std::string address_with_tls(PrivateSlapd& server) {
        return server.tls_url() + "/?cafile=" + server.ca_file().string();
    }
    // A server whose own configuration is another one.
    static void reconfigure(PrivateSlapd& server, const std::string& from, const std::string& to) {
        const std::filesystem::path file = server.folder() / "slapd.conf";
        const std::string text = replaced(content_of(file), from, to);
        server.stop();
        std::ofstream(file) << text;
        server.start();
    }
    // All steps behind this one, as they are told then.
    static std::string skipped_behind_service_account() {
        return "  skipped    schema           needs service account\n"
               "  skipped    containers       needs service account\n"
               "  skipped    accounts         needs containers\n"
               "  skipped    administrators   needs containers\n"
               "  skipped    reading          needs containers\n"
               "  skipped    writing          needs containers\n"
               "  skipped    indexes          needs containers\n"
               "  skipped    clock            needs service account\n";
    }
    std::string site() { return path("site.ini"); }
};

TEST_F(OrvoDoctor, FindsNothingWrongWhereNothingIs) {
    PrivateSlapd server({.config = readable_configuration});
    const std::string port = server.server().substr(server.server().find(':') + 1);
    EXPECT_EQ(
        doctor(settings_of_root(server)),
        server.url() +
            "\n"
            "  ok         name             is an address\n"
            "  ok         connection       127.0.0.1 accepts at port " +
            port +
            "\n"
            "  ok         encryption       none, on this machine\n"
            "  ok         service account  cn=root,o=Shop is accepted\n"
            "  ok         schema           has the classes of the settings and 69 attributes\n"
            "  ok         containers       ou=Users, ou=Profiles, ou=Accounts below o=Shop\n"
            "  ok         accounts         5 accounts, one for each type that users have\n"
            "  ok         administrators   there is one: cn=admin,ou=Users,o=Shop\n"
            "  ok         reading          the service account can read users, profiles and "
            "accounts\n"
            "  ok         writing          the service account can make users, change users, "
            "set passwords, remove users\n"
            "  ok         indexes          for all that is searched for, by the server's "
            "configuration\n"
            "  ok         clock            less than 30 s from this machine's\n");
    EXPECT_EQ(code, 0);
}

TEST_F(OrvoDoctor, ChangesNothing) {
    PrivateSlapd server({.password_policy = true});
    const auto dump = [&] {
        return output_of(
            {"/usr/sbin/slapcat", "-f", (server.folder() / "slapd.conf").string(), "-b", "o=Shop"});
    };
    const std::string before = dump();
    EXPECT_THAT(
        doctor(settings(server)),
        HasSubstr("  ok         writing          the service account can make users, change "
                  "users, set passwords, remove users\n"));
    EXPECT_TRUE(dump() == before);
    EXPECT_GT(before.size(), 100'000u);
}

TEST_F(OrvoDoctor, SaysWhatItCannotFindOut) {
    PrivateSlapd server;
    EXPECT_THAT(
        doctor(settings(server)),
        EndsWith("  not known  indexes          The service account may not read the server's "
                 "configuration, and there are too few users to tell by the time that a search "
                 "takes.\n"
                 "  not known  clock            The service account may not read "
                 "cn=Current,cn=Time,cn=Monitor.\n"
                 "                              To do: Let it read monitorTimestamp there.\n"));
    EXPECT_EQ(code, 0);
}

TEST_F(OrvoDoctor, SaysWhatTheServiceAccountCannotWrite) {
    PrivateSlapd server;
    reconfigure(server,
                "access to dn.subtree=\"ou=Users,o=Shop\" attrs=userPassword\n"
                "    by dn.exact=\"cn=orvo-service,ou=Services,o=Shop\" =xwd\n",
                "access to dn.subtree=\"ou=Users,o=Shop\" attrs=userPassword\n");
    EXPECT_THAT(doctor(settings(server)),
                HasSubstr("  failed     writing          The service account cannot set passwords; "
                          "it can make users, change users, remove users.\n"
                          "                              To do: Give it write access to "
                          "'ou=Users,o=Shop' and below, unless the site only reads its "
                          "directory.\n"));
    EXPECT_EQ(code, 1);
}

// "mail" is hidden altogether; by "sn" the account may search.
TEST_F(OrvoDoctor, SaysWhatTheServiceAccountCannotRead) {
    PrivateSlapd server;
    const std::string first = "access to dn.subtree=\"ou=Users,o=Shop\" attrs=userPassword\n";
    const std::string service = "by dn.exact=\"cn=orvo-service,ou=Services,o=Shop\" ";
    reconfigure(server, first,
                "access to dn.subtree=\"ou=Users,o=Shop\" attrs=mail " + service + "none\n" +
                    "access to dn.subtree=\"ou=Users,o=Shop\" attrs=sn " + service + "search\n" +
                    first);
    EXPECT_THAT(doctor(settings(server)),
                HasSubstr("  failed     reading          The service account cannot read, of "
                          "users: mail, sn.\n"
                          "                              To do: Give it the right to read and "
                          "search all attributes of 'o=Shop' and below.\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctor, SaysThatACertificateExpiresSoon) {
    PrivateSlapd server({.tls = true});
    const std::filesystem::path names = folder.write("names", "subjectAltName=IP:127.0.0.1\n");
    replace_certificate(server, "/O=Shop/CN=dir01", {"-days", "10", "-extfile", names.string()});
    EXPECT_THAT(doctor(settings(server, address_with_tls(server))),
                HasSubstr(", for 9 days\n"
                          "                              To do: Renew it before then.\n"));
    EXPECT_EQ(code, 0);
}

TEST_F(OrvoDoctor, SaysUntilWhenACertificateIsValid) {
    PrivateSlapd server({.tls = true});
    EXPECT_THAT(doctor(settings(server, address_with_tls(server))),
                HasSubstr("  ok         encryption       the certificate 'CN=private slapd' is "
                          "valid until 20"));
    EXPECT_THAT(content_of(path("log")), HasSubstr(", for 29 days\n  ok "));
    EXPECT_EQ(code, 0);
}

TEST_F(OrvoDoctor, SaysThatACertificateHasExpired) {
    PrivateSlapd server({.tls = true});
    replace_certificate(server, "/O=Shop/CN=127.0.0.1", {"-days", "-1"});
    const std::string said = doctor(settings(server, address_with_tls(server)));
    const std::string port = server.tls_url().substr(server.tls_url().rfind(':') + 1);
    EXPECT_THAT(said, StartsWith(server.tls_url() +
                                 "\n"
                                 "  ok         name             is an address\n"
                                 "  ok         connection       127.0.0.1 accepts at port " +
                                 port +
                                 "\n"
                                 "  failed     encryption       (91) The connection to the server "
                                 "cannot be established. The server's certificate "
                                 "'O=Shop,CN=127.0.0.1' expired on 20"));
    EXPECT_THAT(said, EndsWith(" UTC.\n"
                               "                              To do: Renew the server's "
                               "certificate.\n"
                               "  skipped    service account  needs encryption\n" +
                               skipped_behind_service_account()));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctor, SaysThatACertificateIsForAnotherName) {
    PrivateSlapd server({.tls = true});
    replace_certificate(server, "/O=Shop/CN=dir01.shop.example", {});
    EXPECT_THAT(doctor(settings(server, address_with_tls(server))),
                HasSubstr("  failed     encryption       (91) The connection to the server cannot "
                          "be established. The server's certificate "
                          "'O=Shop,CN=dir01.shop.example' is for 'dir01.shop.example', not for "
                          "'127.0.0.1'.\n"
                          "                              To do: Name the server in LDAPServer as "
                          "its certificate does, or give it one for '127.0.0.1'.\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctor, SaysThatACertificatesIssuerIsUnknown) {
    PrivateSlapd server({.tls = true}), other({.tls = true});
    EXPECT_THAT(
        doctor(settings(server, server.url() + "/?starttls&cafile=" + other.ca_file().string())),
        HasSubstr("  failed     encryption       (91) The connection to the server cannot be "
                  "established. The server's certificate 'CN=private slapd' is not trusted; it was "
                  "issued by 'CN=private slapd'.\n"
                  "                              To do: Say in LDAPServer whose certificates are "
                  "trusted (?cafile=FILE), or give the server one by a known issuer.\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctor, SaysThatTheServiceAccountsPasswordIsWrong) {
    PrivateSlapd server;
    EXPECT_THAT(
        doctor(replaced(settings(server), "MemScriptCode=service-sample", "MemScriptCode=another")),
        EndsWith("  failed     service account  (49) The user name or the password is "
                 "wrong.\n"
                 "                              To do: Correct MemScriptUser or "
                 "MemScriptCode in " +
                 site() + ", or give the account that password at the server.\n" +
                 skipped_behind_service_account()));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctor, LooksAtEveryServerOfTheList) {
    PrivateSlapd server, gone;
    const std::string url = gone.url();
    gone.stop();
    const std::string port = url.substr(url.rfind(':') + 1);
    const std::string said = doctor(settings(server, url + " " + server.url()));
    EXPECT_THAT(
        said,
        StartsWith(url +
                   "\n"
                   "  ok         name             is an address\n"
                   "  failed     connection       (81) The server cannot be reached. Connection "
                   "refused\n"
                   "                              To do: Start the server, correct the port in "
                   "LDAPServer in " +
                   site() + ", or let the firewall pass port " + port +
                   ".\n"
                   "  skipped    encryption       needs connection\n"
                   "  skipped    service account  needs encryption\n" +
                   skipped_behind_service_account() + "\n" + server.url() +
                   "\n"
                   "  ok         name             is an address\n"));
    EXPECT_THAT(said, HasSubstr("  ok         administrators   there is one: cn=admin"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctor, SaysThatANameIsNobodys) {
    PrivateSlapd server;
    EXPECT_THAT(doctor(settings(server, "dir01.invalid")),
                StartsWith("ldap://dir01.invalid:389\n"
                           "  failed     name             (81) The server cannot be reached. "));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctor, SaysWhichContainerIsMissing) {
    PrivateSlapd server;
    EXPECT_THAT(doctor(replaced(settings(server), "ProfileContainer=ou=Profiles",
                                "ProfileContainer=ou=Roles")),
                HasSubstr("  failed     containers       There is no 'ou=Roles,o=Shop', or it is "
                          "hidden from the service account.\n"
                          "                              To do: Make it, let the service account "
                          "read it, or correct ProfileContainer in " +
                          site() +
                          ".\n"
                          "  skipped    accounts         needs containers\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctor, SaysWhichAccountUsersNeed) {
    PrivateSlapd server;
    output_of({"/usr/bin/ldapdelete", "-x", "-H", server.url(), "-D", server.root_dn(), "-w",
               server.root_password(), "cn=1,ou=Accounts,o=Shop"});
    EXPECT_THAT(doctor(settings(server)),
                HasSubstr("  failed     accounts         Users of type 1 cannot log in: their "
                          "account is missing, or hidden from the service account.\n"
                          "                              To do: Make cn=1,ou=Accounts,o=Shop, with "
                          "OrvoNTUser and OrvoNTPassword where the site needs them.\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctor, SaysWhatTheSchemaLacks) {
    PrivateSlapd server;
    EXPECT_THAT(
        doctor(replaced(settings(server), "UserClass=orvoPerson,top", "UserClass=shopper,top")),
        HasSubstr("  failed     schema           It lacks the class shopper.\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctor, SaysWhichIndexTheConfigurationLacks) {
    PrivateSlapd server({.config = readable_configuration});
    reconfigure(server, "OrvoGUID,OrvoRole,OrvoApps", "OrvoGUID,OrvoApps");
    EXPECT_THAT(doctor(settings_of_root(server)),
                HasSubstr("  failed     indexes          There is none for OrvoRole, by the "
                          "server's configuration.\n"
                          "                              To do: Add an index 'eq' for OrvoRole to "
                          "the database (olcDbIndex, or 'index' in slapd.conf and slapindex).\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctor, TellsAMissingIndexByTheTimeThatSearchesTake) {
    const std::filesystem::path many = folder.path() / "many.ldif";
    std::ofstream ldif(many);
    for (int i = 0; i < 20'000; ++i)
        ldif << "dn: cn=many" << i << ",ou=Users,o=Shop\nobjectClass: orvoPerson\ncn: many" << i
             << "\nOrvoUserType: 1\n\n";
    ldif.close();
    PrivateSlapd server({.ldif = {many}});
    EXPECT_THAT(doctor(settings(server)),
                HasSubstr("  ok         indexes          for all that is searched for, by the time "
                          "that searches take\n"));
    reconfigure(server, "OrvoGUID,OrvoRole,OrvoApps", "OrvoGUID,OrvoApps");
    EXPECT_THAT(doctor(settings(server)),
                HasSubstr("  failed     indexes          There is none for OrvoRole, by the time "
                          "that searches take.\n"));
    EXPECT_EQ(code, 1);
}

// A company's directory as it is.
class OrvoDoctorOnACompany : public OrvoDoctor {
protected:
    PrivateSlapd server{{.config = "database config\naccess to dn.subtree=cn=config by "
                                   "dn.exact=cn=shop,ou=Services,o=Company read by * none\n",
                         .directory = ORVO_SOURCE_DIR "/examples/directories/openldap",
                         .suffix = "o=Company"}};
};

TEST_F(OrvoDoctorOnACompany, LooksThroughItsMap) {
    EXPECT_THAT(
        doctor(settings(server)),
        HasSubstr(
            "  ok         service account  cn=shop,ou=Services,o=Company is accepted\n"
            "  ok         schema           has the classes of the settings and all attributes that "
            "DIRECTORY.MAP names\n"
            "  ok         containers       ou=People below o=Company, and 4 groups\n"
            "  ok         accounts         2 accounts, one for each type that users have\n"
            "  ok         administrators   there is one: uid=alee,ou=Management,ou=People,"
            "o=Company\n"
            "  ok         reading          the service account can read users and the groups of "
            "DIRECTORY.MAP\n"));
    EXPECT_EQ(code, 0);
}

TEST_F(OrvoDoctorOnACompany, ChangesNothing) {
    const auto dump = [&] {
        return output_of({"/usr/sbin/slapcat", "-f", (server.folder() / "slapd.conf").string(),
                          "-b", "o=Company"});
    };
    const std::string before = dump();
    EXPECT_THAT(
        doctor(settings(server)),
        HasSubstr(
            "  ok         writing          the service account can change PhoneNumber, change "
            "LanguageID, assign OrvoRole, set passwords; it cannot make users, change "
            "CompanyNumber, assign OrvoUserType, remove users\n"
            "  ok         indexes          for all that is searched for, by the server's "
            "configuration\n"));
    EXPECT_TRUE(dump() == before);
}

TEST_F(OrvoDoctorOnACompany, SaysWhichNamesOfTheMapAreWrong) {
    const std::string said =
        doctor(replaced(replaced(settings(server), "CompanyNumber=departmentNumber",
                                 "CompanyNumber=departmentNumbr"),
                        "cn=receivers,ou=Groups", "cn=receiver,ou=Groups"));
    EXPECT_THAT(said, HasSubstr("  failed     schema           It lacks departmentNumbr.\n"
                                "                              To do: Correct DIRECTORY.MAP in " +
                                site() + ".\n"));
    EXPECT_THAT(said, HasSubstr("  failed     containers       There is no "
                                "'cn=receiver,ou=Groups,o=Company', or it is hidden from the "
                                "service account.\n"
                                "                              To do: Make it, let the service "
                                "account read it, or correct DIRECTORY.MAP.GROUPS in " +
                                site() + ".\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctorOnACompany, SaysThatNothingIsCalledAsUsersAreNamed) {
    reconfigure(server, "by dn.exact=cn=shop,ou=Services,o=Company read", "");
    const std::string text =
        replaced(replaced(settings(server), "UserNamingAttribute=uid", "UserNamingAttribute=uidd"),
                 "UserSearch=sub\nLoginAttributes=uid, mail\n", "");
    const std::string said = doctor(text);
    EXPECT_THAT(said, HasSubstr("  failed     schema           It lacks uidd.\n"));
    EXPECT_THAT(said, HasSubstr("\n  not known  indexes "));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctorOnACompany, SaysWhichIndexAndAccountAreMissing) {
    reconfigure(server, "uid,mail,member,uniqueMember,memberUid", "uid,member,uniqueMember");
    const std::string said =
        doctor(replaced(replaced(settings(server), "4.User=", ";"), "4.Password=", ";"));
    EXPECT_THAT(said, HasSubstr("  failed     accounts         Users of type 4 cannot log in: "
                                "their account is missing"));
    EXPECT_THAT(said, HasSubstr("  failed     indexes          There is none for "));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctor, SaysWhatIsWrongWithAMap) {
    PrivateSlapd server;
    EXPECT_THAT(doctor(settings(server) + "\n[DIRECTORY.MAP]\nOrvoRolle=x\n"),
                EndsWith("there is no key \"OrvoRolle\"; did you mean \"OrvoRole\"?\n"));
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoDoctor, WritesJson) {
    PrivateSlapd server;
    const std::string said =
        doctor(replaced(settings(server), "MemScriptCode=service-sample", "MemScriptCode=another"),
               {"--json"});
    EXPECT_THAT(said, StartsWith("[\n  {\"subject\": \"" + server.url() +
                                 "\", \"step\": \"name\", \"result\": \"ok\", \"text\": \"is an "
                                 "address\", \"advice\": null},\n"));
    EXPECT_THAT(said, HasSubstr("  {\"subject\": \"" + server.url() +
                                "\", \"step\": \"service account\", \"result\": \"failed\", "
                                "\"text\": \"(49) The user name or the password is wrong.\", "
                                "\"advice\": \"Correct MemScriptUser or MemScriptCode in " +
                                site() + ", or give the account that password at the server.\"}"));
    EXPECT_THAT(said, EndsWith("\"step\": \"clock\", \"result\": \"skipped\", \"text\": \"needs "
                               "service account\", \"advice\": null}\n]\n"));
    EXPECT_EQ(code, 1);
}

}  // namespace
}  // namespace orvo
