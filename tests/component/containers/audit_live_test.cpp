// What the audit of a site has of what the component does, with everything real behind it.

#include <fstream>
#include <regex>

#include "tests/component/containers/containers_live_test.h"

namespace orvo {
namespace {

class AuditLive : public ContainersLive {
protected:
    AuditLive() : ContainersLive({.password_policy = true}) {
        configure("File=audit.jsonl\nSync=yes\n");
    }

    void configure(const std::string& section) {
        std::ofstream(shop_.site_ini(), std::ios::app) << "\n[AUDIT]\n" << section;
    }
    std::int32_t login(const Text& user, const Text& password) {
        load_settings();
        const Object validator = create_object(u"OrvoMembership.Validator");
        return late::call(validator, u"ValidatePassword", {user, password}).to<std::int32_t>();
    }
    // The lines without their times; "@" is the server.
    std::string audit() const {
        static const std::regex time(R"("time":"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z",)");
        std::string lines = std::regex_replace(
            content_of(shop_.site_ini().parent_path() / "audit.jsonl"), time, "");
        const std::string server = '"' + shop_.server() + '"';
        for (std::size_t at; (at = lines.find(server)) != std::string::npos;)
            lines.replace(at, server.size(), "\"@\"");
        return lines;
    }
    static std::string check(const std::string& result, const std::string& cn) {
        return R"({"event":"check","result":")" + result + R"(","user":"cn=)" + cn +
               R"(,ou=Users,o=Shop","server":"@"})" + '\n';
    }
    static std::string change(const std::string& event, const std::string& result,
                              const std::string& user, const std::string& what = {}) {
        return R"({"event":")" + event + R"(","result":")" + result + R"(","user":")" + user +
               R"(","by":"cn=orvo-service,ou=Services,o=Shop","server":"@")" +
               (what.empty() ? "" : R"(,"what":")" + what + '"') + "}\n";
    }
};

TEST_FRESH_FOR_EACH(AuditLive, HasWhoLoggedInFailedAndWasLocked) {
    EXPECT_EQ(login(u"jsmith", u"shop-sample"), 0);
    EXPECT_EQ(login(u"djansen", u"shop-Sample"), -1);
    EXPECT_EQ(login(u"djansen", u""), -1);
    EXPECT_EQ(login(u"djansen", u"not-it-1"), -1);
    EXPECT_EQ(login(u"djansen", u"not-it-2"), -1);
    EXPECT_EQ(login(u"djansen", u"shop-sample"), -2);
    EXPECT_EQ(login(u"nobody", u"secret-of-nobody"), -1);
    EXPECT_EQ(audit(), check("right", "jsmith") + check("wrong", "djansen") +
                           check("wrong", "djansen") + check("wrong", "djansen") +
                           check("wrong", "djansen") + check("locked", "djansen") +
                           check("wrong", "nobody"));
}

TEST_FRESH_FOR_EACH(AuditLive, HasWhoMadeChangedAndRemovedUsers) {
    const Object members = this->members();
    const Object created = create(members, u"latecomer", u"first-sample");
    late::put(created, u"EMailAddress", u"new@shop.example");
    const Object itself = user(u"latecomer");
    late::call(itself, u"ChangePassword", {u"first-sample", u"second-sample"});
    late::call(members, u"DeleteUser", {u"latecomer"});

    const std::string latecomer = "cn=latecomer,ou=Users,o=Shop";
    EXPECT_THAT(audit(), StartsWith(change("create", "done", latecomer)));
    EXPECT_THAT(audit(), HasSubstr(change("change", "done", latecomer, "mail")));
    EXPECT_THAT(audit(), HasSubstr(check("right", "latecomer") +
                                   change("password", "done", latecomer, "userPassword") +
                                   change("delete", "done", latecomer)));
}

TEST_FRESH_FOR_EACH(AuditLive, HasWhoTriedToWorkWithAWrongPassword) {
    load_settings();
    const auto bind_as = [&](const Text& name, const Text& account, const Text& password) {
        const Object user = create_object(u"OrvoMembership.User");
        return raised_by([&] { late::call(user, u"BindAs", {name, account, password}); }).number;
    };
    const Text service = from_utf8(shop_.service_dn());
    EXPECT_EQ(bind_as(u"jsmith", service, u"not-it-1"), error_number(0x8007052E));
    EXPECT_EQ(bind_as(u"nobody", service, from_utf8(shop_.service_password())),
              error_number(0x80072030));
    EXPECT_EQ(audit(), R"({"event":"bind","result":"wrong",)"
                       R"("user":"cn=orvo-service,ou=Services,o=Shop","server":"@"})"
                       "\n");
}

TEST_FRESH_FOR_EACH(AuditLive, HasNoPasswordNorHash) {
    login(u"jsmith", u"shop-sample");
    login(u"jsmith", u"not-it");
    const Object members = this->members();
    create(members, u"latecomer", u"first-sample");
    raised_by([&] {
        late::call(user(u"latecomer"), u"SetAttribValue", {u"OrvoNTPassword", u"nt-sample"});
    });
    late::call(user(u"latecomer"), u"ChangePassword", {u"first-sample", u"second-sample"});
    raised_by([&] {
        late::call(user(u"latecomer"), u"ChangePassword", {u"second-sample", u"short"});
    });
    for (const char* secret :
         {"shop-sample", "not-it", "first-sample", "second-sample", "nt-sample", "short",
          "service-sample", "$y$", "{SSHA", "{CRYPT", "{ARGON2"})
        EXPECT_THAT(audit(), Not(HasSubstr(secret))) << secret;
    EXPECT_THAT(audit(), HasSubstr(R"("event":"password","result":"failed (0x)"));
}

TEST_FRESH_FOR_EACH(AuditLive, HasWhatWasRefused) {
    const Object members = this->members();
    raised_by([&] { create(members, u"jsmith"); });
    EXPECT_EQ(audit(), change("create", "failed (0x8004044F)", "cn=jsmith,ou=Users,o=Shop"));
}

// The answer of a check that has to be recorded, and is not, is no answer.
class AuditOnAFullDiskLive : public AuditLive {
protected:
    AuditOnAFullDiskLive() {
        std::string site = content_of(shop_.site_ini());
        site.replace(site.find("audit.jsonl"), 11, "/dev/full");
        std::ofstream(shop_.site_ini()) << site;
    }
};

TEST_FRESH_FOR_EACH(AuditOnAFullDiskLive, LetsNobodyIn) {
    const std::string reason = "/dev/full: the audit cannot be written (No space left on device)";
    const Failure failure = raised_by([&] { login(u"jsmith", u"shop-sample"); });
    EXPECT_EQ(failure.number, 75);
    EXPECT_EQ(to_utf8(failure.description), block("4B", "Validator.ValidatePassword", reason));
    EXPECT_THAT(logged(), HasSubstr("lost: {\"time\""));
}

TEST_FRESH_FOR_EACH(AuditOnAFullDiskLive, SaysOfAChangeThatItIsMade) {
    const Object jsmith = user(u"jsmith");
    const Failure failure =
        raised_by([&] { late::put(jsmith, u"EMailAddress", u"changed@shop.example"); });
    EXPECT_THAT(to_utf8(failure.description),
                HasSubstr("The change has been made, but is not recorded: /dev/full: the audit "));
    EXPECT_THAT(stored("jsmith", "mail"), ElementsAre("changed@shop.example"));
}

}  // namespace
}  // namespace orvo
