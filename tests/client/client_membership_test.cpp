// The component's classes, as a C++ program uses them, on a directory in a file.

#include <gmock/gmock.h>
#include <orvo/membership.h>

#include <fstream>

#include "tests/client/installed_modules.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* service = "cn=orvo-service,ou=Services,o=Shop";
constexpr const char* code = "service-sample";

// A thread keeps the settings that it loaded first: one shop for all tests of a process.
class ClientMembership : public InstalledModules {
protected:
    static void SetUpTestSuite() {
        const std::string program = ORVO_BIN "/orvo", sample = ORVO_SOURCE_DIR "/examples/";
        const std::string store = (shop().path() / "shop.db").string();
        orvo::output_of({program, "directory", "create", store, "--base", "o=Shop"});
        orvo::output_of({program, "directory", "import", store, sample + "directory/shop.ldif"});
        std::string settings = orvo::content_of(sample + "site.ini");
        settings.replace(settings.find("@SERVER@"), 8, store);
        std::ofstream(site()) << settings;
    }

    static const orvo::TempFolder& shop() {
        static const orvo::TempFolder folder;
        return folder;
    }
    static std::string site() { return (shop().path() / "site.ini").string(); }

    orvo::Members members() {
        orvo::Members members;
        members.setServerInfo(site());
        members.BindAs(service, code);
        return members;
    }
};

TEST_F(ClientMembership, CreatesFindsChangesAndDeletesAUser) {
    const orvo::Members members = this->members();
    orvo::User tina = members.CreateUser("tina", "first-secret");
    tina.LastName("M\xC3\xBCller");
    tina.SpendLimit(orvo::Currency::of(12.5));
    tina.FinancialRole(true);
    EXPECT_EQ(tina.CN(), "tina");
    EXPECT_FALSE(tina.Profile());
    EXPECT_TRUE(tina.HasRole(5));

    const orvo::User again = members.GetUserFromGUID(tina.GUID());
    EXPECT_EQ(again.LastName(), "M\xC3\xBCller");
    EXPECT_EQ(again.SpendLimit(), orvo::Currency::of(12.5));
    EXPECT_THAT(again.GetAttribValue("OrvoRole").to<std::vector<std::string>>(), ElementsAre("5"));

    members.DeleteUser("tina");
    try {
        members.DeleteUser("tina");
        FAIL() << "deleted twice";
    } catch (const orvo::Error& error) {
        EXPECT_EQ(error.number(), static_cast<std::int32_t>(0x80072030));
        EXPECT_EQ(error.source(), "OrvoMembership.Members.DeleteUser");
        EXPECT_THAT(error.description(), HasSubstr("METHOD: OrvoMembership.Members.DeleteUser"));
    }
}

TEST_F(ClientMembership, AQueryIsARange) {
    std::vector<std::string> names;
    for (auto row : members().GetOrvoUsersEx(std::vector<std::string>{"cn=a*"},
                                             std::vector<std::string>{"cn", "sn"}))
        names.push_back(row["cn"].to<std::string>() + ":" + row["sn"].to<std::string>());
    EXPECT_THAT(names, testing::Contains("admin:Admin"));
    EXPECT_TRUE(members().GetOrvoMembersHavingRole(999).empty());
    EXPECT_GT(members().GetOrvoMembersHavingRole(24, "sn").size(), 10u);
}

TEST_F(ClientMembership, ArgumentsComeBackThroughPointersAlone) {
    orvo::ServerInfo info;
    std::string path = site();
    info.SetConfiguration(&path);
    EXPECT_EQ(path, site());
    // The host loses its scheme in the caller's variable, too.
    std::string host = "ldap://dir01";
    std::u16string wide_host = orvo::to_utf16(host);
    EXPECT_EQ(info.makeLDAPString(&host, "ou=Users", "tina"),
              info.makeLDAPString(&wide_host, u"ou=Users", std::u16string(u"tina")));
    EXPECT_EQ(host, "dir01");
    EXPECT_EQ(wide_host, u"dir01");
    EXPECT_THAT(info.GetUserContainer().to<std::string>(), HasSubstr("ou=Users"));
    EXPECT_THROW(members().GetOrvoMembersHavingRole(100000), std::out_of_range);
}

// Neither a text is true nor a fraction a role.
template <class T>
concept grants_buyer_role = requires(const orvo::User& user, T value) {
    user.BuyerRole(value);
};
template <class T>
concept grants_a_role = requires(const orvo::User& user, T value) {
    user.AssignRole(24, value);
};
template <class T>
concept is_a_role = requires(const orvo::User& user, T role) {
    user.HasRole(role);
};
static_assert(grants_buyer_role<bool> && grants_buyer_role<int>);
static_assert(!grants_buyer_role<const char*> && !grants_buyer_role<double>);
static_assert(grants_a_role<bool> && grants_a_role<bool*> && !grants_a_role<const char*>);
static_assert(is_a_role<long> && is_a_role<std::int16_t*> && !is_a_role<double>);

TEST_F(ClientMembership, NumbersThatAnArgumentDoesNotHoldAreRefused) {
    const orvo::User user;
    EXPECT_THROW(user.OrvoUserType(65537), std::out_of_range);
    EXPECT_THROW(user.CheckAppUserAccess("shop", 65546L), std::out_of_range);
    EXPECT_THROW(user.HasRole(-32769), std::out_of_range);
}

TEST_F(ClientMembership, AnObjectIsTypedOnlyAsWhatItIs) {
    const orvo::Object object("OrvoMembership.Validator");
    const orvo::Validator validator(object);
    validator.setServerInfo(site());
    EXPECT_EQ(validator.ValidatePassword("jsmith", "shop-sample").to<int>(), 0);
    EXPECT_FALSE(orvo::User(orvo::Object()));
    try {
        const orvo::User user(object);
        FAIL() << "a validator is called by the slots of a user";
    } catch (const orvo::Error& error) {
        EXPECT_STREQ(error.what(), "the object does not have this interface (0x80004002)");
    }
}

TEST_F(ClientMembership, AWrongPasswordIsAnAnswerAndAMissingUserAFailure) {
    orvo::Validator validator;
    validator.setServerInfo(site());
    EXPECT_EQ(validator.ValidatePassword("jsmith", "shop-sample").to<int>(), 0);
    EXPECT_LT(validator.ValidatePassword("jsmith", "another").to<int>(), 0);
    orvo::User nobody;
    nobody.setServerInfo(site());
    EXPECT_THROW(nobody.BindAs("nobody-here", service, code), orvo::Error);
}

}  // namespace
