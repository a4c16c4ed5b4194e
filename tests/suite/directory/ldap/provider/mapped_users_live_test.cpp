#include <gmock/gmock.h>

#include "tests/suite/directory/ldap/provider/mapped_test.h"

namespace orvo::directory::ldap {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class MappedUsers : public MappedTest {
protected:
    MappedUsers() {
        use("[DIRECTORY.MAP]\nUserSearch = sub\nLoginAttributes = uid, mail\ncn = uid\n");
    }
};

TEST_F(MappedUsers, LogInWithAnyOfTheirAttributesFromWhereverTheyAre) {
    EXPECT_EQ(checked("jsmith"), 0);
    EXPECT_EQ(checked("dirk.jansen@company.example"), 0);
    EXPECT_EQ(checked("JSmith"), 0);
    EXPECT_EQ(checked("jsmith", "guessed"), -1);
    EXPECT_EQ(checked("nobody"), -1);
    EXPECT_EQ(checked("John Smith"), -1);
}

TEST_F(MappedUsers, OfOneNameAreNobodyWhicheverPasswordComes) {
    EXPECT_EQ(checked("twin"), -1);
    EXPECT_EQ(checked("tina.winter@company.example"), 0);
    LdapEntry entry({}, client_);
    EXPECT_EQ(failure_of([&] { bind(entry, "twin"); }).description,
              u"(32) There is no such entry. More than one user is called "
              u"'uid=twin,ou=People,o=Company'.");
    EXPECT_EQ(failure_of([&] { bind(entry, "nobody"); }).description,
              u"(32) There is no such entry. No user is called 'uid=nobody,ou=People,o=Company'.");
    const Failure login =
        failure_of([&] { bind(entry, path_of("twin"), "company-sample", u"uid=jsmith"); });
    EXPECT_EQ(login.number, error_number(0x8007052E));
    EXPECT_THAT(to_utf8(login.description), HasSubstr("No user, or more than one"));
}

// The mail address of one is the login name of another.
TEST_F(MappedUsers, ANameThatIsOnesMailAndAnothersNameIsNobodys) {
    ASSERT_EQ(probe_.replace(dn("bkim", "Management"), "mail", {"alee"}), 0);
    EXPECT_EQ(checked("alee"), -1);
    EXPECT_EQ(checked("bkim"), 0);
}

TEST_F(MappedUsers, NamesAreNeverPatterns) {
    EXPECT_EQ(checked("jsmit*"), -1);
    EXPECT_EQ(checked("*"), -1);
    EXPECT_EQ(checked("x)(uid=jsmith"), -1);
}

TEST_F(MappedUsers, WorkAsThemselvesUnderTheirRealName) {
    LdapEntry entry({}, client_);
    bind(entry, path_of("dirk.jansen@company.example"), "company-sample", u"uid=djansen");
    EXPECT_EQ(text(entry, u"cn"), "djansen");
    set(entry, u"preferredLanguage", Values{u"de"});
    EXPECT_EQ(stored(dn("djansen", "Warehouse"), "preferredLanguage"),
              std::vector<std::string>{"de"});
    EXPECT_NE(failure_of([&] { set(entry, u"sn", Values{u"X"}); }).number, 0);
}

TEST_F(MappedUsers, ChangeTheirPasswordAndItCountsAtOnce) {
    EXPECT_EQ(checked("jsmith"), 0);
    LdapEntry entry({}, client_);
    bind(entry, path_of("jsmith"), "company-sample", u"uid=john.smith@company.example");
    set(entry, u"userPassword", Values{u"another-sample"});
    EXPECT_EQ(checked("jsmith"), -1);
    EXPECT_EQ(checked("john.smith@company.example", "another-sample"), 0);
}

TEST_F(MappedUsers, HaveAllTheNamesWithWhichTheyLogIn) {
    auto mapped = MappedDirectory::try_open(client_, from_utf8(server_.server()), people, {});
    ASSERT_TRUE(mapped);
    EXPECT_THAT(
        mapped->login_names(dn("djansen", "Warehouse")),
        testing::UnorderedElementsAre(dn("djansen", "Warehouse"), "uid=djansen,ou=People,o=Company",
                                      "uid=dirk.jansen@company.example,ou=People,o=Company"));
    EXPECT_THAT(mapped->login_names("cn=buyers,ou=Groups,o=Company"),
                testing::ElementsAre("cn=buyers,ou=Groups,o=Company"));
    use("[DIRECTORY.MAP]\ncn = uid\n");
    auto unsearched = MappedDirectory::try_open(client_, from_utf8(server_.server()), people, {});
    EXPECT_THAT(unsearched->login_names("uid=jsmith,ou=People,o=Company"),
                testing::ElementsAre("uid=jsmith,ou=People,o=Company"));
}

TEST_F(MappedUsers, RightBelowTheirContainerAloneWithoutASearchBelowIt) {
    use("[DIRECTORY.MAP]\nUserSearch = one\n");
    EXPECT_EQ(checked("jsmith"), -1);
    ASSERT_EQ(probe_.add("uid=near,ou=People,o=Company", {{"objectClass", {"inetOrgPerson"}},
                                                          {"cn", {"Near"}},
                                                          {"sn", {"By"}},
                                                          {"userPassword", {"near-sample"}}}),
              0);
    EXPECT_EQ(checked("near", "near-sample"), 0);
}

TEST_F(MappedUsers, AreLookedForOnceInAMoment) {
    EXPECT_EQ(checked("jsmith"), 0);
    searches();
    const long before = searches();
    EXPECT_EQ(checked("jsmith"), 0);
    EXPECT_EQ(searches() - before, 0);
    clock_.advance(std::chrono::milliseconds(250));
    EXPECT_EQ(checked("jsmith"), 0);
    EXPECT_EQ(searches() - before, 1);
    // What somebody of this process writes may be anybody's name.
    LdapEntry entry({}, client_);
    bind(entry, "djansen");
    set(entry, u"preferredLanguage", Values{u"de"});
    const long written = searches();
    EXPECT_EQ(checked("jsmith"), 0);
    EXPECT_EQ(searches() - written, 1);
}

TEST_F(MappedUsers, AServiceAccountThatMayNotLookIsAFailureAndNoWrongPassword) {
    ASSERT_EQ(probe_.replace("cn=shop,ou=Services,o=Company", "userPassword", {"other"}), 0);
    const Failure failure = failure_of([&] { checked("jsmith"); });
    EXPECT_EQ(failure.number, error_number(0x80072098));
    EXPECT_THAT(to_utf8(failure.description),
                HasSubstr("The service account (MemScriptUser) cannot look into the directory"));
}

}  // namespace
}  // namespace orvo::directory::ldap
