#include "tests/suite/directory/provider/provider_test.h"
#include "tests/support/temp_folder.h"

namespace orvo::directory {
namespace {

Text user_path(const std::string& cn) { return from_utf8(TestDirectory::user_dn(cn)); }

class ValidatorTest : public ProviderTest {
protected:
    ValidatorTest() : ProviderTest(Shared()) {}
};
FOR_EVERY_DIRECTORY(ValidatorTest);

class ValidatorUnderAPolicyTest : public ProviderTest {
protected:
    ValidatorUnderAPolicyTest()
        : ProviderTest({.password_policy = true, .ldif = {folder_.write("stale.ldif", stale)}}) {}

private:
    // A user whose password has not been changed for a while.
    static constexpr const char* stale = R"(
dn: cn=monthly,ou=Policies,o=Shop
objectClass: organizationalRole
objectClass: pwdPolicy
cn: monthly
pwdAttribute: userPassword
pwdMaxAge: 2592000

dn: cn=stale,ou=Users,o=Shop
objectClass: orvoPerson
cn: stale
userPassword: shop-sample
pwdPolicySubentry: cn=monthly,ou=Policies,o=Shop
pwdChangedTime: 20200101000000Z
)";
    static inline TempFolder folder_;
};
FOR_EVERY_DIRECTORY(ValidatorUnderAPolicyTest);

TEST_P(ValidatorTest, KnowsTheRightPassword) {
    EXPECT_EQ(checked(user_path("djansen"), u"shop-sample"), 0);
    EXPECT_EQ(checked(u"CN=DJansen, OU=users, O=shop", u"shop-sample"), 0);
    EXPECT_EQ(checked(user_path("djansen"), u"shop-sample", u"o=Shop/ou=Users"), 0);
}

TEST_P(ValidatorTest, DoesNotTellAWrongUserFromAWrongPassword) {
    EXPECT_EQ(checked(user_path("djansen"), u"Shop-sample"), -1);
    EXPECT_EQ(checked(user_path("nobody"), u"shop-sample"), -1);
}

TEST_P(ValidatorTest, ChecksTheSameObjectAgainAndAgain) {
    const Validator validator = opened();
    EXPECT_EQ(validated(validator, user_path("djansen"), u"shop-sample"), 0);
    EXPECT_EQ(validated(validator, user_path("djansen"), u"wrong"), -1);
    EXPECT_EQ(validated(validator, user_path("djansen"), u"shop-sample"), 0);
}

TEST_P(ValidatorTest, TakesWhatIsNoUserOfTheContainerForWrong) {
    const Variant good = u"shop-sample";
    EXPECT_EQ(checked(user_path("djansen"), u""), -1);
    EXPECT_EQ(checked(user_path("djansen"), Variant()), -1);
    EXPECT_EQ(checked(u"", good), -1);
    EXPECT_EQ(checked(u"djansen", good), -1);
    EXPECT_EQ(checked(u"cn=djansen,", good), -1);
    EXPECT_EQ(checked(users, good), -1);
    EXPECT_EQ(checked(u"o=Shop", good), -1);
    EXPECT_EQ(checked(u"cn=orvo-service,ou=Services,o=Shop", good), -1);
    EXPECT_EQ(checked(u"jsmith,ou=Users,o=Shop", good), -1);
    EXPECT_EQ(checked(u"c n=djansen,ou=Users,o=Shop", good), -1);
    EXPECT_EQ(checked(u"cn=a\";ou=Users,o=Shop", good), -1);
    EXPECT_EQ(checked(u"cn=a\xD83D,ou=Users,o=Shop", good), -1);
    EXPECT_EQ(checked(user_path("djansen"), u"shop-sample\xDE00"), -1);
    EXPECT_EQ(checked(u"cn=" + Text(8'192, u'x') + u",ou=Users,o=Shop", good), -1);
}

TEST_P(ValidatorTest, KnowsUsersWhoseNamesWereNotEscaped) {
    for (const char* name :
         {"Smith, John", "Research+Development", "#1 Buyer", "back\\slash", "O'Brien",
          "Temp (night) *", "Ann \"Andy\" <Smith>; =", "Ελένη Ελλάδα", "😀 Emoji"}) {
        EXPECT_EQ(checked(user_path(name), u"shop-sample"), 0) << name;
        EXPECT_EQ(checked(user_path(name), u"wrong"), -1) << name;
    }
    EXPECT_EQ(checked(u"cn=djansen" + Text(1, u'\0') + u"x,ou=Users,o=Shop", u"shop-sample"), -1);
}

TEST_P(ValidatorTest, ConvertsItsArguments) {
    ASSERT_EQ(shop_.replace(shop_.user_dn("admin"), "userPassword", {"4711"}), 0);
    EXPECT_EQ(checked(user_path("admin"), std::int32_t(4711)), 0);
    EXPECT_EQ(checked(user_path("admin"), std::int32_t(4712)), -1);
    EXPECT_EQ(refusal_of([&] { checked(user_path("admin"), Variant::null()); }).number, 94);
}

TEST_P(ValidatorTest, MustBeOpened) {
    const Validator validator = new_validator();
    EXPECT_EQ(
        refusal_of([&] { validated(validator, user_path("djansen"), u"shop-sample"); }).number, 91);
}

TEST_P(ValidatorTest, SaysThatItsContainerCannotBeRead) {
    const Failure failure =
        refusal_of([&] { checked(user_path("djansen"), u"shop-sample", u"Users"); });
    EXPECT_EQ(failure.number, error_number(0x80072032));
    EXPECT_EQ(failure.description, u"(34) The distinguished name is not valid. Users");
}

TEST_P(ValidatorUnderAPolicyTest, TellsALockedAccount) {
    const Text user = user_path("djansen");
    for (int attempt = 0; attempt < 3; ++attempt) EXPECT_EQ(checked(user, u"wrong"), -1);
    EXPECT_EQ(checked(user, u"shop-sample"), -2);
    EXPECT_EQ(checked(user, u"wrong"), -2);
    EXPECT_EQ(checked(user_path("admin"), u"shop-sample"), 0);
}

TEST_P(ValidatorUnderAPolicyTest, TellsARightPasswordThatMustBeChanged) {
    ASSERT_EQ(shop_.replace(shop_.user_dn("djansen"), "pwdReset", {"TRUE"}), 0);
    EXPECT_EQ(checked(user_path("djansen"), u"shop-sample"), -4);
    EXPECT_EQ(checked(user_path("djansen"), u"wrong"), -1);
}

TEST_P(ValidatorUnderAPolicyTest, TellsARightPasswordThatHasExpired) {
    EXPECT_EQ(checked(user_path("stale"), u"shop-sample"), -4);
    EXPECT_EQ(checked(user_path("stale"), u"wrong"), -1);
}

}  // namespace
}  // namespace orvo::directory
