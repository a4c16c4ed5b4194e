#include "suite/directory/map/map_reader.h"

#include <gmock/gmock.h>

#include <fstream>

#include "suite/directory/policy/result_codes.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/suite/directory/map/map_text.h"
#include "tests/support/temp_folder.h"

namespace orvo::directory {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(DirectoryMap, IsNoneWithoutItsSection) {
    EXPECT_EQ(map_of("[GLOBAL]\nMultiLogin=1"), nullptr);
}

TEST(DirectoryMap, TakesItsPlacesFromTheSite) {
    const auto map = map_of("[DIRECTORY.MAP]\n");
    EXPECT_EQ(map->user_container.name, "ou=People,o=Company");
    EXPECT_EQ(map->account_container.name, "ou=Accounts,o=Company");
    EXPECT_EQ(map->service_user.name, "cn=shop,ou=Services,o=Company");
    EXPECT_EQ(map->user_class, "orvoPerson");
    EXPECT_EQ(map->naming_attribute, "uid");
    EXPECT_FALSE(map->login);
}

TEST(DirectoryMap, FindsAnAttributeByAnyOfItsNamesInAnyCase) {
    const auto map = map_of("[DIRECTORY.MAP]\norvorole = businessCategory\ncn = uid | cn\n");
    ASSERT_TRUE(map->find("OrvoRole"));
    EXPECT_EQ(map->find("OrvoRole")->name, "OrvoRole");
    EXPECT_THAT(map->find("ORVOROLE;x-option")->theirs, ElementsAre("businessCategory"));
    EXPECT_THAT(map->find("commonName")->theirs, ElementsAre("uid", "cn"));
    EXPECT_EQ(map->find("2.5.4.3"), map->find("CN"));
    EXPECT_FALSE(map->find("mail"));
}

TEST(DirectoryMap, HasNoPlaceForWhatIsEmptyOrADefaultAlone) {
    const auto map = map_of(
        "[DIRECTORY.MAP]\nOrvoGUID =\n[DIRECTORY.MAP.DEFAULTS]\nOrvoUserType = 1\n"
        "OrvoApps = 1 | 7\n");
    EXPECT_TRUE(map->find("OrvoGUID")->has_no_place());
    EXPECT_THAT(map->find("OrvoGUID")->otherwise, IsEmpty());
    EXPECT_TRUE(map->find("OrvoUserType")->has_no_place());
    EXPECT_THAT(map->find("OrvoApps")->otherwise, ElementsAre("1", "7"));
}

TEST(DirectoryMap, HasTablesOfAttributesThatAreCalledTheSame) {
    const auto map = map_of("[DIRECTORY.MAP.VALUES.Position]\nboss = CEO | CFO\n");
    EXPECT_THAT(map->find("Position")->theirs, ElementsAre("Position"));
    EXPECT_THAT(map->find("Position")->values.front().theirs, ElementsAre("CEO", "CFO"));
}

TEST(DirectoryMap, SearchesUsersByTheNamingAttributeUnlessOthersAreNamed) {
    EXPECT_THAT(map_of("[DIRECTORY.MAP]\nUserSearch = sub\n")->login->attributes,
                ElementsAre("uid"));
    const auto map = map_of("[DIRECTORY.MAP]\nUserSearch = one\nLoginAttributes = uid, mail\n");
    EXPECT_EQ(map->login->scope, Scope::one_level);
    EXPECT_THAT(map->login->attributes, ElementsAre("uid", "mail"));
}

TEST(DirectoryMap, HasGroupsBelowTheRoot) {
    const auto map = map_of(
        "[DIRECTORY.MAP.GROUPS]\nKind = posixGroup\nContainer = ou=Groups\nNesting = 3\n"
        "ReadOnly = yes\n[DIRECTORY.MAP.GROUPS.OrvoRole]\n24 = cn=receivers,ou=Groups\n");
    EXPECT_EQ(map->groups.kind, GroupRules::Kind::posix);
    EXPECT_EQ(map->groups.container.name, "ou=Groups,o=Company");
    EXPECT_EQ(map->groups.nesting, 3U);
    EXPECT_TRUE(map->groups.is_read_only);
    ASSERT_TRUE(map->find("OrvoRole")->is_of_groups());
    EXPECT_EQ(map->find("OrvoRole")->groups.front().group.name, "cn=receivers,ou=Groups,o=Company");
}

TEST(DirectoryMap, KnowsAccountsAndUsersByTheirNames) {
    const auto map = map_of("[DIRECTORY.MAP.ACCOUNTS]\n1.User = web\n1.Password = @file:code\n");
    ASSERT_TRUE(map->account_of("cn=1,ou=Accounts,o=Company"));
    EXPECT_EQ(map->account_of("CN=1, ou=accounts, o=company")->user, u"web");
    EXPECT_EQ(map->account_of("cn=1,ou=Accounts,o=Company")->password, u"@file:code");
    EXPECT_FALSE(map->account_of("cn=2,ou=Accounts,o=Company"));
    EXPECT_FALSE(map->account_of("cn=1,ou=People,o=Company"));
    EXPECT_TRUE(map->is_user("uid=a,ou=Sales,ou=People,o=Company"));
    EXPECT_FALSE(map->is_user("ou=People,o=Company"));
    EXPECT_FALSE(map->is_user("cn=1,ou=Accounts,o=Company"));
}

TEST(DirectoryMap, StandsInAFileOfItsOwn) {
    const TempFolder folder;
    std::ofstream(folder.path() / "company.ini") << "[DIRECTORY.MAP]\nOrvoRole = title\n";
    const IniValues values =
        parse_ini(std::string(company) + "[DIRECTORY.MAP]\nFile = company.ini\n", u"site.ini");
    const auto map = read_map(folder.path() / "site.ini", values);
    EXPECT_THAT(map->find("OrvoRole")->theirs, ElementsAre("title"));
}

struct Refused {
    const char* lines;
    const char16_t* reason;
};
class RefusedMap : public testing::TestWithParam<Refused> {};

TEST_P(RefusedMap, NamesFileLineAndWhatWasMeant) {
    const Failure failure = failure_of([] { map_of(GetParam().lines); });
    EXPECT_EQ(failure.number, number_of_code(result_code::parameter_error));
    EXPECT_THAT(to_utf8(failure.description), HasSubstr(to_utf8(GetParam().reason)));
}

INSTANTIATE_TEST_SUITE_P(
    , RefusedMap,
    testing::Values(
        Refused{"[DIRECTORY.MAP]\nOrvoRolle = title\n",
                u"/etc/orvo/site.ini, line 11: there is no key \"OrvoRolle\"; did you mean "
                u"\"OrvoRole\"?"},
        Refused{"[DIRECTORY.MAP]\nUserSerch = sub\n",
                u"line 11: there is no key \"UserSerch\"; did "
                u"you mean \"UserSearch\"?"},
        Refused{"[DIRECTORY.MAP.DEFAULT]\n",
                u"line 10: there is no section "
                u"\"DIRECTORY.MAP.DEFAULT\"; did you mean "
                u"\"DIRECTORY.MAP.DEFAULTS\"?"},
        Refused{"[DIRECTORY.MAP.VALUES.OrvoRol]\n1 = a\n",
                u"line 11: there is no attribute \"OrvoRol\"; did you mean \"OrvoRole\"?"},
        Refused{"[DIRECTORY.MAP.GROUPS]\nKind = posixGroups\n",
                u"line 11: there is no kind of groups \"posixGroups\"; did you mean "
                u"\"posixGroup\"?"},
        Refused{"[DIRECTORY.MAP.GROUPS]\nNesting = 21\n",
                u"line 11: Nesting: \"21\" is no number from 0 to 20"},
        Refused{"[DIRECTORY.MAP.GROUPS]\nReadOnly = maybe\n",
                u"line 11: ReadOnly: \"maybe\" is neither \"yes\" nor \"no\""},
        Refused{"[DIRECTORY.MAP.GROUPS.OrvoRole]\n24 = receivers\n",
                u"line 11: 24: \"receivers\" is no name of an entry"},
        Refused{"[DIRECTORY.MAP]\nOrvoRole = title\n[DIRECTORY.MAP.GROUPS.OrvoRole]\n1 = cn=a\n",
                u"line 12: OrvoRole cannot have both groups and an attribute"},
        Refused{"[DIRECTORY.MAP]\nOrvoRole =\n[DIRECTORY.MAP.VALUES.OrvoRole]\n1 = a\n",
                u"line 12: [DIRECTORY.MAP] does not say which attribute has the values of "
                u"OrvoRole"},
        Refused{"[DIRECTORY.MAP.CLASSES]\norvoPerson =\n",
                u"line 11: orvoPerson: the name of a class is missing"},
        Refused{"[DIRECTORY.MAP.ACCOUNTS]\nUser = web\n",
                u"line 11: \"User\" does not begin with a type of users, \"1.User\""},
        Refused{"[DIRECTORY.MAP.ACCOUNTS]\n1.Pasword = web\n",
                u"line 11: there is no key \"Pasword\"; did you mean \"Password\"?"}));

}  // namespace
}  // namespace orvo::directory
