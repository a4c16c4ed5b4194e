#include "suite/directory/map/mapped_filter.h"

#include <gmock/gmock.h>

#include "suite/directory/map/translation.h"
#include "tests/suite/directory/map/map_text.h"

namespace orvo::directory {
namespace {

const char* lines =
    "[DIRECTORY.MAP]\ncn = uid\nOrvoUserType = title\nOrvoGUID =\nLanguageID = lang\n"
    "[DIRECTORY.MAP.DEFAULTS]\nOrvoUserType = 1\nOrvoApps = 1 | 7\nLanguageID = 2\n"
    "[DIRECTORY.MAP.VALUES.OrvoUserType]\n4 = boss | admin\n3 = chief\n"
    "[DIRECTORY.MAP.CLASSES]\norvoPerson = inetOrgPerson | person\n"
    "[DIRECTORY.MAP.GROUPS]\nKind = memberOf\n"
    "[DIRECTORY.MAP.GROUPS.OrvoRole]\n24 = cn=r\n25 = cn=s\n";

struct Case {
    const char16_t* ours;
    const char* theirs;
};

std::string mapped(const Text& filter, bool is_of_users, bool is_known, bool& is_exact) {
    static const auto map = map_of(lines);
    static const AttributeTypes types = with_our_types(AttributeTypes());
    const MappedFilter result =
        mapped_filter(Filter::parse(filter), *map, types, is_of_users,
                      [&](const MappedGroup& group) -> std::optional<MappedFilter> {
                          if (!is_known) return std::nullopt;
                          return MappedFilter{{.kind = Filter::Kind::equality,
                                               .attribute = "memberOf",
                                               .value = group.group.name}};
                      });
    is_exact = result.is_exact;
    return result.sent.text();
}

class OfUsers : public testing::TestWithParam<Case> {};
TEST_P(OfUsers, IsTheirsAndSaysAllOfIt) {
    bool is_exact = false;
    EXPECT_EQ(mapped(GetParam().ours, true, true, is_exact), GetParam().theirs);
    EXPECT_TRUE(is_exact);
}
INSTANTIATE_TEST_SUITE_P(
    MappedFilter, OfUsers,
    testing::Values(
        Case{u"(mail=a*)", "(mail=a*)"}, Case{u"(CN=jsmith)", "(uid=jsmith)"},
        Case{u"(cn=j*h)", "(uid=j*h)"},
        Case{u"(objectClass=orvoPerson)", "(objectClass=inetOrgPerson)"},
        Case{u"(OrvoUserType=4)", "(|(title=boss)(title=admin))"},
        Case{u"(OrvoUserType=3)", "(title=chief)"},
        // As it is for those whose title says nothing.
        Case{u"(OrvoUserType=1)", "(!(|(title=boss)(title=admin)(title=chief)))"},
        Case{u"(OrvoUserType=5)", "(!(objectClass=*))"},
        Case{u"(&(objectClass=orvoPerson)(OrvoUserType=*)(!OrvoUserType = 0))",
             "(objectClass=inetOrgPerson)"},
        Case{u"(OrvoUserType>=3)", "(|(title=boss)(title=admin)(title=chief))"},
        Case{u"(OrvoApps=7)", "(objectClass=*)"}, Case{u"(!(OrvoApps=7))", "(!(objectClass=*))"},
        Case{u"(OrvoGUID=1)", "(!(objectClass=*))"}, Case{u"(|(OrvoGUID=1)(mail=a))", "(mail=a)"},
        Case{u"(LanguageID=*)", "(objectClass=*)"},
        Case{u"(LanguageID=2)", "(|(lang=2)(!(lang=*)))"}, Case{u"(LanguageID=3)", "(lang=3)"},
        Case{u"(OrvoRole=24)", "(memberOf=cn=r,o=Company)"},
        Case{u"(!(OrvoRole=24))", "(!(memberOf=cn=r,o=Company))"},
        Case{u"(OrvoRole=*)", "(|(memberOf=cn=r,o=Company)(memberOf=cn=s,o=Company))"}));

TEST(MappedFilter, DefaultsAreUsersAlone) {
    bool is_exact = false;
    EXPECT_EQ(mapped(u"(OrvoApps=7)", false, true, is_exact), "(!(objectClass=*))");
    EXPECT_EQ(mapped(u"(LanguageID=2)", false, true, is_exact), "(lang=2)");
}

// Otherwise entries would be missing.
TEST(MappedFilter, IsWiderWhereTheServerCannotBeAsked) {
    bool is_exact = true;
    EXPECT_EQ(mapped(u"(&(mail=a)(OrvoRole=24))", true, false, is_exact), "(mail=a)");
    EXPECT_FALSE(is_exact);
    EXPECT_EQ(mapped(u"(&(mail=a)(!(OrvoRole=24)))", true, false, is_exact), "(mail=a)");
    EXPECT_FALSE(is_exact);
    EXPECT_EQ(mapped(u"(cn>=j)", true, true, is_exact), "(uid=*)");
    EXPECT_FALSE(is_exact);
    EXPECT_EQ(mapped(u"(!(cn>=j))", true, true, is_exact), "(objectClass=*)");
    EXPECT_FALSE(is_exact);
}

}  // namespace
}  // namespace orvo::directory
