// Who may do what in the sample shop (examples/directory/slapd.conf.in).

#include <gmock/gmock.h>

#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr int success = 0;
constexpr int strong_auth_required = 8;
constexpr int no_such_object = 32;
constexpr int invalid_credentials = 49;
constexpr int insufficient_access = 50;

class TheAccessRules : public testing::Test {
protected:
    LdapProbe as(const std::string& cn) {
        return LdapProbe(slapd_.url(), slapd_.user_dn(cn), slapd_.user_password());
    }
    LdapProbe as_service() {
        return LdapProbe(slapd_.url(), slapd_.service_dn(), slapd_.service_password());
    }

    PrivateSlapd slapd_;
    const std::string jsmith_ = slapd_.user_dn("jsmith");
    const std::string glee_ = slapd_.user_dn("glee");
    const std::string account_ = "cn=1,ou=Accounts,o=Shop";
};

TEST_F(TheAccessRules, ShowNothingToThoseWhoDidNotLogIn) {
    LdapProbe nobody(slapd_.url());
    EXPECT_THAT(nobody.find("o=Shop", "(objectClass=*)"), IsEmpty());
    EXPECT_EQ(nobody.search_result("o=Shop", "(objectClass=*)"), no_such_object);
    EXPECT_EQ(nobody.replace(jsmith_, "Position", {"none"}), strong_auth_required);
}

TEST_F(TheAccessRules, LetTheServiceAccountAloneSeeServiceAccounts) {
    EXPECT_THAT(as_service().values(account_, "OrvoNTUser"), ElementsAre("SHOP\\shop-user"));
    EXPECT_THAT(as_service().values(account_, "OrvoNTPassword"), ElementsAre("nt-sample-1"));
    for (const char* cn : {"jsmith", "local", "admin"}) {
        EXPECT_THAT(as(cn).find("ou=Accounts,o=Shop", "(objectClass=*)"), IsEmpty()) << cn;
        EXPECT_EQ(as(cn).search_result(account_, "(objectClass=*)"), no_such_object) << cn;
    }
}

TEST_F(TheAccessRules, ShowNobodysPasswordToAnybody) {
    EXPECT_THAT(as_service().values(jsmith_, "userPassword"), IsEmpty());
    EXPECT_THAT(as("admin").values(jsmith_, "userPassword"), IsEmpty());
    EXPECT_THAT(as("jsmith").values(jsmith_, "userPassword"), IsEmpty());
}

TEST_F(TheAccessRules, ShowAUserTheWholeOwnEntryAndLittleOfOthers) {
    LdapProbe jsmith = as("jsmith");
    EXPECT_THAT(jsmith.values(jsmith_, "SpendLimit"), ElementsAre("1234.5"));
    EXPECT_THAT(jsmith.values(jsmith_, "OrvoGUID"), SizeIs(1));
    EXPECT_THAT(jsmith.values(glee_, "SpendLimit"), IsEmpty());
    EXPECT_THAT(jsmith.values(glee_, "OrvoGUID"), IsEmpty());
    EXPECT_THAT(jsmith.values(glee_, "mail"), ElementsAre("grace.lee@shop.example"));
    EXPECT_THAT(jsmith.values(glee_, "ProfileCN"), ElementsAre("Approvers"));
    EXPECT_THAT(jsmith.find("ou=Users,o=Shop", "(&(objectClass=orvoPerson)(OrvoUserType=4))"),
                Not(IsEmpty()));
}

TEST_F(TheAccessRules, LetAUserReadProfilesAndChangeNone) {
    LdapProbe jsmith = as("jsmith");
    const std::string buyers = "cn=Buyers,ou=Profiles,o=Shop";
    EXPECT_THAT(jsmith.values(buyers, "OrvoRole"), UnorderedElementsAre("2", "3"));
    EXPECT_EQ(jsmith.replace(buyers, "OrvoRole", {"23"}), insufficient_access);
}

TEST_F(TheAccessRules, LetAUserKeepTheOwnEntryUpToDateButNotTheOwnRights) {
    LdapProbe jsmith = as("jsmith");
    EXPECT_EQ(jsmith.replace(jsmith_, "PhoneNumber", {"+44 1"}), success);
    EXPECT_EQ(jsmith.replace(jsmith_, "OutOfOfficeOn", {"1"}), success);
    EXPECT_EQ(jsmith.replace(jsmith_, "LanguageID", {"nl"}), success);
    EXPECT_EQ(jsmith.replace(jsmith_, "mail", {"j@shop.example"}), success);
    for (const char* right : {"OrvoUserType", "OrvoRole", "OrvoApps", "BusinessPartnerID"}) {
        EXPECT_EQ(jsmith.replace(jsmith_, right, {"4"}), insufficient_access) << right;
    }
    EXPECT_EQ(jsmith.replace(jsmith_, "ProfileCN", {"Administrators"}), insufficient_access);
    EXPECT_EQ(jsmith.replace(jsmith_, "SpendLimit", {"1000000"}), insufficient_access);
    EXPECT_EQ(jsmith.replace(glee_, "PhoneNumber", {"+44 1"}), insufficient_access);
}

TEST_F(TheAccessRules, LetAUserChangeTheOwnPasswordOnly) {
    LdapProbe jsmith = as("jsmith");
    EXPECT_EQ(jsmith.replace(glee_, "userPassword", {"taken over"}), insufficient_access);
    EXPECT_EQ(jsmith.replace(jsmith_, "userPassword", {"another one"}), success);
    EXPECT_EQ(jsmith.bind(jsmith_, "another one"), success);
    EXPECT_EQ(jsmith.bind(jsmith_, slapd_.user_password()), invalid_credentials);
}

TEST_F(TheAccessRules, LetTheServiceAccountAndAdministratorsCreateAndDeleteUsersAndProfiles) {
    const std::string user = slapd_.user_dn("another");
    const std::string profile = "cn=another,ou=Profiles,o=Shop";
    auto changes_both = [&](LdapProbe& probe) {
        EXPECT_EQ(probe.add(user, {{"objectClass", {"orvoPerson", "top"}},
                                   {"cn", {"another"}},
                                   {"userPassword", {"new password"}}}),
                  success);
        EXPECT_EQ(probe.replace(user, "OrvoRole", {"2", "3"}), success);
        EXPECT_EQ(LdapProbe(slapd_.url()).bind(user, "new password"), success);
        EXPECT_EQ(probe.remove(user), success);
        EXPECT_EQ(probe.add(profile, {{"objectClass", {"orvoProfile"}}, {"cn", {"another"}}}),
                  success);
        EXPECT_EQ(probe.replace(profile, "OrvoApps", {"1"}), success);
        EXPECT_EQ(probe.remove(profile), success);
    };
    LdapProbe service = as_service();
    changes_both(service);
    LdapProbe admin = as("admin");
    changes_both(admin);
    for (const char* cn : {"jsmith", "local", "guest", "newcomer", "bare"}) {
        EXPECT_EQ(as(cn).add(user, {{"objectClass", {"orvoPerson"}}, {"cn", {"another"}}}),
                  insufficient_access)
            << cn;
        EXPECT_EQ(as(cn).remove(glee_), insufficient_access) << cn;
    }
}

TEST_F(TheAccessRules, TakeAnAdministratorFromTheUserType) {
    EXPECT_EQ(as("jsmith").replace(glee_, "OrvoRole", {"4"}), insufficient_access);
    ASSERT_EQ(as("admin").replace(jsmith_, "OrvoUserType", {"4"}), success);
    EXPECT_EQ(as("jsmith").replace(glee_, "OrvoRole", {"4"}), success);
}

}  // namespace
}  // namespace orvo
