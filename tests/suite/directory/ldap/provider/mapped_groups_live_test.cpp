#include <gmock/gmock.h>

#include "tests/suite/directory/ldap/provider/mapped_test.h"

namespace orvo::directory::ldap {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string users = "[DIRECTORY.MAP]\nUserSearch = sub\ncn = uid\n";
const std::string posix =
    users +
    "[DIRECTORY.MAP.DEFAULTS]\nOrvoUserType = 1\n"
    "[DIRECTORY.MAP.GROUPS]\nKind = posixGroup\nContainer = ou=Groups\n"
    "[DIRECTORY.MAP.GROUPS.OrvoRole]\n2 = cn=buyers,ou=Groups\n4 = cn=approvers,ou=Groups\n"
    "24 = cn=receivers,ou=Groups\n"
    "[DIRECTORY.MAP.GROUPS.OrvoUserType]\n4 = cn=shop-administrators,ou=Groups\n"
    "3 = cn=approvers,ou=Groups\n";
const std::string teams =
    "[DIRECTORY.MAP.GROUPS.OrvoRole]\n24 = cn=receivers,ou=Teams\n25 = cn=night shift,ou=Teams\n";
const std::string nested =
    users + "[DIRECTORY.MAP.GROUPS]\nContainer = ou=Teams\nNesting = 5\n" + teams;

constexpr const char* receivers = "cn=receivers,ou=Groups,o=Company";

class MappedGroupsTest : public MappedTest {
protected:
    std::string roles(const std::string& uid, Text attribute = u"OrvoRole") {
        LdapEntry entry({}, client_);
        bind(entry, uid);
        return text(entry, attribute);
    }
};

TEST_F(MappedGroupsTest, OfThePosixKindGiveTheirMembersRolesAndTypes) {
    use(posix);
    EXPECT_EQ(roles("djansen"), "24");
    EXPECT_EQ(roles("mbrown"), "2,4");
    EXPECT_EQ(roles("cnovak"), "");
    EXPECT_EQ(roles("cnovak", u"OrvoUserType"), "1");
    EXPECT_EQ(roles("mbrown", u"OrvoUserType"), "3");
    // The first that fits.
    EXPECT_EQ(roles("alee", u"OrvoUserType"), "4");
}

TEST_F(MappedGroupsTest, AreFiltersAndColumns) {
    use(posix);
    const Text people = u"(objectClass=inetOrgPerson)";
    EXPECT_THAT(found(u"(&" + people + u"(OrvoRole=24))", {u"cn", u"orvorole"}),
                ElementsAre("djansen 24", "efischer 24", "fgarcia 24"));
    EXPECT_THAT(found(u"(&" + people + u"(!(OrvoRole=24))(mail=f*))"), IsEmpty());
    EXPECT_THAT(found(u"(&" + people + u"(!(OrvoRole=*))(OrvoUserType=1))"),
                ElementsAre("bkim", "cnovak", "twin", "twin"));
    EXPECT_THAT(found(u"(&" + people + u"(OrvoUserType=4))", {u"cn", u"OrvoUserType"}),
                ElementsAre("alee 4"));
    EXPECT_THAT(found(u"(&" + people + u"(OrvoUserType=3))"), ElementsAre("mbrown"));
    EXPECT_THAT(found(u"(&" + people + u"(OrvoRole=99))"), IsEmpty());
}

TEST_F(MappedGroupsTest, InGroupsCountAsDeepAsTheMapSaysAndLoopsEnd) {
    use(nested);
    // warehouse > night shift > receivers > warehouse: a ring.
    EXPECT_EQ(roles("jsmith"), "24,25");
    EXPECT_EQ(roles("fgarcia"), "24,25");
    EXPECT_EQ(roles("alee"), "");
    EXPECT_THAT(found(u"(&(objectClass=inetOrgPerson)(OrvoRole=24))", {u"cn", u"OrvoRole"}),
                ElementsAre("djansen 24,25", "efischer 24,25", "fgarcia 24,25", "jsmith 24,25"));
    use(users + "[DIRECTORY.MAP.GROUPS]\nContainer = ou=Teams\n" + teams);
    clock_.advance(std::chrono::seconds(1));
    EXPECT_EQ(roles("jsmith"), "24");
    EXPECT_EQ(roles("fgarcia"), "25");
    use(users + "[DIRECTORY.MAP.GROUPS]\nContainer = ou=Teams\nNesting = 1\n" + teams);
    clock_.advance(std::chrono::seconds(1));
    EXPECT_EQ(roles("jsmith"), "24,25");
    EXPECT_EQ(roles("fgarcia"), "25");
}

TEST_F(MappedGroupsTest, OfUniqueNamesGiveTheirMembersRoles) {
    use(users +
        "[DIRECTORY.MAP.GROUPS]\nKind = groupOfUniqueNames\n"
        "[DIRECTORY.MAP.GROUPS.OrvoRole]\n3 = cn=leads,ou=Teams\n");
    EXPECT_EQ(roles("alee"), "3");
    EXPECT_EQ(roles("jsmith"), "");
    EXPECT_THAT(found(u"(&(objectClass=inetOrgPerson)(OrvoRole=3))"),
                ElementsAre("alee", "djansen"));
}

TEST_F(MappedGroupsTest, AreChangedWhereARoleIsAssigned) {
    use(posix);
    LdapEntry entry({}, client_);
    bind(entry, "cnovak");
    set(entry, u"OrvoRole", Values{std::int32_t{24}, std::int32_t{2}});
    EXPECT_THAT(stored(receivers, "memberUid"),
                ElementsAre("cnovak", "djansen", "efischer", "fgarcia"));
    EXPECT_EQ(text(entry, u"OrvoRole"), "2,24");
    // As the component takes the last one away.
    set(entry, u"OrvoRole", Values{std::int32_t{0}});
    EXPECT_THAT(stored(receivers, "memberUid"), ElementsAre("djansen", "efischer", "fgarcia"));
    EXPECT_EQ(text(entry, u"OrvoRole"), "");
}

TEST_F(MappedGroupsTest, KeepWhatSomebodyElseHasChangedMeanwhile) {
    use(posix);
    LdapEntry entry({}, client_);
    bind(entry, "cnovak");
    EXPECT_EQ(text(entry, u"OrvoRole"), "");
    ASSERT_EQ(probe_.modify(receivers, {{0, "memberUid", {"bkim"}}}), 0);
    set(entry, u"OrvoRole", Values{std::int32_t{24}});
    EXPECT_THAT(stored(receivers, "memberUid"),
                ElementsAre("bkim", "cnovak", "djansen", "efischer", "fgarcia"));
}

TEST_F(MappedGroupsTest, AreChangedWithTheRightsOfWhoAsks) {
    use(posix);
    LdapEntry own({}, client_);
    bind(own, path_of("cnovak"), "company-sample", u"uid=cnovak");
    const Failure failure = failure_of([&] { set(own, u"OrvoRole", Values{std::int32_t{24}}); });
    EXPECT_EQ(failure.number, error_number(0x80072098));
    EXPECT_THAT(to_utf8(failure.description),
                HasSubstr("OrvoRole 24 comes from the group 'cn=receivers,ou=Groups,o=Company', "
                          "which was not changed."));
    LdapEntry entry({}, client_);
    bind(entry, "cnovak");
    EXPECT_EQ(failure_of([&] { set(entry, u"OrvoUserType", Values{std::int32_t{4}}); }).number,
              error_number(0x80072098));
    EXPECT_EQ(text(entry, u"OrvoUserType"), "1");
}

TEST_F(MappedGroupsTest, AreLeftByWhoGetsTheDefault) {
    use(users +
        "[DIRECTORY.MAP.DEFAULTS]\nOrvoRole = 7\n"
        "[DIRECTORY.MAP.GROUPS]\nKind = posixGroup\nContainer = ou=Groups\n"
        "[DIRECTORY.MAP.GROUPS.OrvoRole]\n24 = cn=receivers,ou=Groups\n");
    LdapEntry entry({}, client_);
    bind(entry, "cnovak");
    set(entry, u"OrvoRole", Values{std::int32_t{7}});
    EXPECT_EQ(text(entry, u"OrvoRole"), "7");
    bind(entry, "djansen");
    EXPECT_EQ(text(entry, u"OrvoRole"), "24");
    set(entry, u"OrvoRole", Values{std::int32_t{7}});
    EXPECT_THAT(stored(receivers, "memberUid"), ElementsAre("efischer", "fgarcia"));
    EXPECT_EQ(text(entry, u"OrvoRole"), "7");
}

TEST_F(MappedGroupsTest, SayThatTheyAreReadOnlyAndWhatTheyDoNotHave) {
    use(posix);
    LdapEntry entry({}, client_);
    bind(entry, "cnovak");
    EXPECT_THAT(
        to_utf8(failure_of([&] { set(entry, u"OrvoRole", Values{std::int32_t{99}}); }).description),
        HasSubstr("no group for '99' of OrvoRole"));
    std::string read_only = posix;
    use(read_only.replace(read_only.find("Container"), 0, "ReadOnly = yes\n"));
    bind(entry, "djansen");
    set(entry, u"OrvoRole", Values{std::int32_t{24}});
    EXPECT_THAT(
        to_utf8(failure_of([&] { set(entry, u"OrvoRole", Values{std::int32_t{0}}); }).description),
        HasSubstr("read-only"));
}

TEST_F(MappedGroupsTest, InGroupsAreNotTakenFromOneMember) {
    use(nested);
    LdapEntry entry({}, client_);
    bind(entry, "fgarcia");
    const Failure failure = failure_of([&] { set(entry, u"OrvoRole", Values{u"25"}); });
    EXPECT_THAT(to_utf8(failure.description), HasSubstr("OrvoRole 24 comes from a group in"));
}

TEST_F(MappedGroupsTest, ThatAreNotThereHaveNoMembers) {
    use(users + "[DIRECTORY.MAP.GROUPS.OrvoRole]\n7 = cn=gone,ou=Groups\n");
    EXPECT_EQ(roles("jsmith"), "");
    EXPECT_THAT(found(u"(&(objectClass=inetOrgPerson)(OrvoRole=7))"), IsEmpty());
}

// A server that keeps with each user the groups that name it.
class MappedMemberOf : public MappedTest {
protected:
    MappedMemberOf()
        : MappedTest({.config = "moduleload memberof\noverlay memberof\nmemberof-refint true\n"}) {
        use(users +
            "[DIRECTORY.MAP.GROUPS]\nKind = memberOf\nContainer = ou=Teams\n"
            "[DIRECTORY.MAP.GROUPS.OrvoRole]\n2 = cn=buyers,ou=Teams\n"
            "24 = cn=receivers,ou=Teams\n");
        // It learns of what is written while it runs.
        const std::string group = "cn=receivers,ou=Teams,o=Company";
        EXPECT_EQ(probe_.replace(group, "member", {dn("djansen", "Warehouse")}), 0);
    }
};

TEST_F(MappedMemberOf, IsReadFromTheEntryItselfAndInOneSearch) {
    LdapEntry entry({}, client_);
    bind(entry, "djansen");
    searches();
    const long before = searches();
    EXPECT_EQ(text(entry, u"OrvoRole"), "24");
    EXPECT_EQ(searches() - before, 0);
    const long alone = searches();
    EXPECT_THAT(found(u"(&(objectClass=inetOrgPerson)(OrvoRole=24))", {u"cn", u"OrvoRole"}),
                ElementsAre("djansen 24"));
    EXPECT_EQ(searches() - alone, 1);
    EXPECT_THAT(found(u"(&(objectClass=inetOrgPerson)(!(OrvoRole=24))(cn=d*))"), IsEmpty());
}

TEST_F(MappedMemberOf, IsChangedInTheGroup) {
    LdapEntry entry({}, client_);
    bind(entry, "djansen");
    set(entry, u"OrvoRole", Values{std::int32_t{2}, std::int32_t{24}});
    EXPECT_EQ(text(entry, u"OrvoRole"), "2,24");
    set(entry, u"OrvoRole", Values{std::int32_t{24}});
    EXPECT_EQ(text(entry, u"OrvoRole"), "24");
    LdapEntry other({}, client_);
    bind(other, "djansen");
    EXPECT_EQ(text(other, u"OrvoRole"), "24");
}

}  // namespace
}  // namespace orvo::directory::ldap
