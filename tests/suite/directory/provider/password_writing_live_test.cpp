// How a new password is set, and by whom.

#include "tests/suite/directory/provider/provider_test.h"

namespace orvo::directory {
namespace {

const Text with_nul{u"shop-sample\0more", 16};
const Text too_long(65'537, u'x');

class PasswordWritingTest : public ProviderTest {
protected:
    using ProviderTest::ProviderTest;

    static std::string djansen() { return TestDirectory::user_dn("djansen"); }
    static void set(const Entry& entry, const Variant& password) {
        directory::set(entry, u"userPassword", password);
    }
    static void create(const Entry& users, const Variant& password) {
        directory::create(users, {{u"cn", u"new"}, {u"sn", u"New"}, {u"userPassword", password}},
                          u"cn", u"orvoPerson");
    }
    std::int32_t checked(const std::string& user, const Variant& password) {
        return ProviderTest::checked(from_utf8(user), password);
    }
    int raw_bind(const std::string& password) { return shop_.bind(djansen(), password); }
    std::vector<std::string> stored() { return shop_.values(djansen(), "userPassword"); }
};
FOR_EVERY_DIRECTORY(PasswordWritingTest);

TEST_P(PasswordWritingTest, RefusesAnEmptyPasswordAndChangesNothing) {
    const Entry entry = bound();
    const auto before = stored();
    for (const Variant& nothing : {Variant(u""), Variant(), Variant(Values{}), Variant(Values{u""}),
                                   Variant(Values{Variant()})}) {
        const Failure failure = refusal_of([&] { set(entry, nothing); });
        EXPECT_EQ(failure.number, error_number(0x8007202F));
        EXPECT_EQ(failure.description,
                  u"(19) The value violates a constraint. A new password cannot be empty.");
    }
    EXPECT_EQ(stored(), before);
    clear(entry, u"userPassword");
    EXPECT_THAT(stored(), IsEmpty()) << "whoever wants to take it away says so";
}

TEST_P(PasswordWritingTest, RefusesAPasswordThatNobodyCouldLogInWith) {
    const Entry entry = bound(), users = bound(u"");
    const auto before = stored();
    const std::pair<Text, Text> refusals[] = {
        {with_nul,
         u"(21) The value does not have the attribute's syntax. A password cannot hold a NUL."},
        {too_long,
         u"(19) The value violates a constraint. A password cannot have more than 65536 bytes."}};
    for (const auto& [password, description] : refusals) {
        EXPECT_EQ(refusal_of([&] { set(entry, password); }).description, description);
        EXPECT_EQ(refusal_of([&] { create(users, password); }).description, description);
    }
    EXPECT_EQ(stored(), before);
    EXPECT_THAT(shop_.find("ou=Users,o=Shop", "(cn=new)"), IsEmpty());
    const std::size_t longest = std::stoul(shop_.own(differences::longest_password));
    set(entry, Text(longest, u'x'));
    EXPECT_EQ(raw_bind(std::string(longest, 'x')), 0);
}

TEST_P(PasswordWritingTest, APasswordThatNobodyHasIsWrong) {
    for (const Text& password : {with_nul, too_long}) {
        EXPECT_EQ(checked(djansen(), password), -1);
        EXPECT_EQ(refusal_of([&] {
                      bind(new_entry(), from_utf8(djansen()), Secret(TextView(password)),
                           u"cn=djansen");
                  }).number,
                  error_number(0x8007052E));
    }
}

// A policy that wants the former password with the new one.
class SafeModifyTest : public PasswordWritingTest {
protected:
    SafeModifyTest() : PasswordWritingTest({.password_policy = true}) {
        const std::string policy = "cn=default,ou=Policies,o=Shop";
        EXPECT_EQ(shop_.replace(policy, "pwdSafeModify", {"TRUE"}), 0);
        EXPECT_EQ(shop_.replace(policy, "pwdMustChange", {"FALSE"}), 0);
    }
    void expect_refused(const Entry& entry) {
        EXPECT_EQ(refusal_of([&] { set(entry, u"other-sample"); }).number,
                  error_number(0x80072098));
    }
};
FOR_EVERY_DIRECTORY(SafeModifyTest);

TEST_P(SafeModifyTest, LetsUsersChangeThePasswordThatTheyProvedAMomentAgo) {
    const Entry entry = bound();
    expect_refused(entry);
    ASSERT_EQ(checked(djansen(), u"shop-sample"), 0);
    set(entry, u"other-sample");
    EXPECT_EQ(raw_bind("other-sample"), 0);
    expect_refused(entry);
}

TEST_P(SafeModifyTest, LetsUsersChangeThePasswordThatTheyWorkWith) {
    const Entry entry = new_entry();
    bind(entry, user("djansen"), u"cn=djansen");
    set(entry, u"other-sample");
    EXPECT_EQ(raw_bind("other-sample"), 0);
    set(entry, u"third-sample");
    EXPECT_EQ(raw_bind("third-sample"), 0);
}

TEST_P(SafeModifyTest, TakesNothingForProofButTheRightPasswordOfThisUserJustNow) {
    const Entry entry = bound();
    ASSERT_EQ(checked(shop_.user_dn("jsmith"), u"shop-sample"), 0);
    expect_refused(entry);
    ASSERT_EQ(checked(djansen(), u"shop-sample"), 0);
    ASSERT_EQ(checked(djansen(), u"wrong"), -1);
    expect_refused(entry);
    ASSERT_EQ(checked(djansen(), u"shop-sample"), 0);
    ASSERT_EQ(checked(djansen(), u""), -1);
    expect_refused(entry);
    ASSERT_EQ(checked(djansen(), u"shop-sample"), 0);
    bind(entry, service(), u"cn=djansen");
    expect_refused(entry);
}

}  // namespace
}  // namespace orvo::directory
