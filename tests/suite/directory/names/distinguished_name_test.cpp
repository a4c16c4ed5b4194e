#include "suite/directory/names/distinguished_name.h"

#include <gtest/gtest.h>

namespace orvo::directory {
namespace {

DistinguishedName name(TextView text) {
    auto parsed = DistinguishedName::try_parse(text);
    if (!parsed) throw std::runtime_error("not a name: " + to_utf8(text));
    return *parsed;
}

struct Accepted {
    const char16_t* text;
    std::size_t depth;
    const char* key;
};

class AcceptedName : public testing::TestWithParam<Accepted> {};

TEST_P(AcceptedName, IsKeptInItsComparableForm) {
    const DistinguishedName parsed = name(GetParam().text);
    EXPECT_EQ(parsed.depth(), GetParam().depth);
    EXPECT_EQ(parsed.key(), GetParam().key);
}

INSTANTIATE_TEST_SUITE_P(
    All, AcceptedName,
    testing::Values(
        Accepted{u"", 0, ""}, Accepted{u"  ", 0, ""}, Accepted{u"o=Shop", 1, "o=shop"},
        Accepted{u"cn=jsmith,ou=Users,o=Shop", 3, "cn=jsmith,ou=users,o=shop"},
        Accepted{u"CN = J  Smith , OU = Users , O = Shop ", 3, "cn=j smith,ou=users,o=shop"},
        Accepted{u"commonName=a,organizationalUnitName=b,2.5.4.10=c", 3, "cn=a,ou=b,o=c"},
        Accepted{u"DC=Shop,0.9.2342.19200300.100.1.25=example", 2, "dc=shop,dc=example"},
        Accepted{u"sn=b+cn=a,o=Shop", 2, "cn=a+sn=b,o=shop"},
        Accepted{u"cn=Smith\\, John,o=Shop", 2, "cn=smith\\, john,o=shop"},
        Accepted{u"cn=Smith\\2C John,o=Shop", 2, "cn=smith\\, john,o=shop"},
        Accepted{u"cn=a\\+b\\\\c,o=Shop", 2, "cn=a\\+b\\\\c,o=shop"},
        Accepted{u"cn=#0403414243,o=Shop", 2, "cn=#0403414243,o=shop"},
        Accepted{u"cn=\\#0403414243,o=Shop", 2, "cn=\\#0403414243,o=shop"},
        Accepted{u"cn=,o=Shop", 2, "cn=,o=shop"}, Accepted{u"cn=a=b,o=Shop", 2, "cn=a=b,o=shop"},
        Accepted{u"cn=\\20,o=Shop", 2, "cn= ,o=shop"},
        Accepted{u"cn=\\20a\\20\\20,o=Shop", 2, "cn=a,o=shop"},
        Accepted{u"surname=a,2.5.4.42=b,rfc822Mailbox=c", 3, "sn=a,givenname=b,mail=c"},
        Accepted{u"myType=a,1.2.3=b", 2, "mytype=a,1.2.3=b"},
        Accepted{u"cn=Z\u00C9L\u00C9,o=Shop", 2, "cn=z\u00E9l\u00E9,o=shop"},
        Accepted{u"cn=ZE\u0301LE\u0301,o=Shop", 2, "cn=z\u00E9l\u00E9,o=shop"},
        Accepted{u"cn=\uFF2A\u00A0Smith\uFF0C 2,o=Shop", 2, "cn=j smith\\, 2,o=shop"},
        Accepted{u"cn=\\FFx,o=Shop", 2, "cn=\xFFx,o=shop"},
        Accepted{u"cn=z\\C3\\A9l\\C3\\A9,o=Shop", 2, "cn=z\u00E9l\u00E9,o=shop"}));

class RefusedName : public testing::TestWithParam<const char16_t*> {};

TEST_P(RefusedName, IsNoName) { EXPECT_FALSE(DistinguishedName::try_parse(GetParam())); }

INSTANTIATE_TEST_SUITE_P(All, RefusedName,
                         testing::Values(u"jsmith", u"cn", u"cn=a,", u",cn=a", u"cn=a,,o=Shop",
                                         u"cn=a+", u"+cn=a", u"=a,o=Shop", u"1cn=a", u"c n=a",
                                         u"cn=\"a\",o=Shop", u"cn=a;o=Shop", u"cn=a<b", u"cn=a>b",
                                         u"cn=a\\", u"cn=a\\x", u"cn=a\\4", u"cn=a\\4g",
                                         u"cn=#04,o=#0", u"cn=#,o=Shop", u"cn=#04xy", u"2.5.4.=a",
                                         u"uid.x=a"));

TEST(DistinguishedName, ANulIsNotAllowedUnescaped) {
    EXPECT_FALSE(DistinguishedName::try_parse(Text(u"cn=a\0b,o=Shop", 13)));
}

TEST(DistinguishedName, EqualNamesAreEqualHoweverWritten) {
    EXPECT_EQ(name(u"cn=jsmith,ou=Users,o=Shop"), name(u"CN=JSmith, ou=users, O=SHOP"));
    EXPECT_EQ(name(u"cn=a+sn=b"), name(u"SN=B+CN=A"));
    EXPECT_FALSE(name(u"cn=a,o=Shop") == name(u"cn=a\\,o=Shop"));
}

TEST(DistinguishedName, OneLetterStaysOneAndIsNotTwo) {
    EXPECT_FALSE(name(u"cn=Stra\u00DFe") == name(u"cn=Strasse"));
    EXPECT_FALSE(name(u"cn=\u03C2") == name(u"cn=\u03C3"));
    EXPECT_FALSE(name(u"cn=a\u200Bb") == name(u"cn=ab"));
}

TEST(DistinguishedName, HasOneLooseKeyHoweverItIsWritten) {
    const std::vector<const char16_t*> spellings[] = {
        {u"cn=j smith42,o=Shop", u"CN = J  Smith42 , O = shop", u"commonName=j\\20smith42,o=Shop",
         u"x-unknown=jsmith42,2.5.4.10=Shop", u"cn=\uFF2A-Smith42,o=Shop",
         u"cn=j\u00ADsmith4\u00B2,o=Shop"},
        {u"cn=Stra\u00DFe", u"cn=STRASSE", u"cn=stra\u1E9Ee"},
        {u"cn=\u03A3\u03C3\u03C2", u"cn=\u03C2\u03C2\u03C2"},
        {u"cn=\u0130x", u"cn=ix", u"cn=i\u0307X"},
        {u"telephoneNumber=\\+31 12-34", u"telephoneNumber=\\+311234"},
        {u"uidNumber=7", u"uidNumber=007"},
        {u"sn=ab+cn=cd,o=Shop", u"commonName=CD+surname=AB,o=Shop", u"cn=ab+sn=cd,o=Shop"},
        {u"cn=\u65E5\u672C", u"CN = \u65E5\u672C"}};
    for (const auto& row : spellings)
        for (const char16_t* spelling : row)
            EXPECT_EQ(name(spelling).loose_key(), name(row.front()).loose_key())
                << to_utf8(spelling);
}

TEST(DistinguishedName, ComesWithALooseKeyThatTellsMostNamesApart) {
    EXPECT_EQ(name(u"cn=J\\, Smith 10,ou=Users,o=Shop").loose_key(), "jsmith10,users,shop");
    EXPECT_EQ(name(u"cn=\u00C9,o=a+c=b").loose_key(), "e,ab");
    EXPECT_EQ(name(u"cn=\u65E5\u672C").loose_key(), "\u65E5\u672C");
    EXPECT_NE(name(u"cn=a,ou=b").loose_key(), name(u"cn=ab").loose_key());
    EXPECT_NE(name(u"cn=a10").loose_key(), name(u"cn=a1").loose_key());
}

TEST(DistinguishedName, HasNoLooseKeyWhereItCouldBeAnyName) {
    for (const char16_t* any : {u"", u"cn=#040161,o=Shop", u"cn=a,o=#0c0141", u"cn=+sn="})
        EXPECT_EQ(name(any).loose_key(), "") << to_utf8(any);
}

TEST(DistinguishedName, AnEntryIsBelowItsContainerAtAnyDepth) {
    const DistinguishedName users = name(u"ou=Users,o=Shop");
    EXPECT_TRUE(name(u"cn=jsmith,OU=USERS,o=shop").is_below(users));
    EXPECT_TRUE(name(u"cn=jsmith,ou=Staff,ou=Users,o=Shop").is_below(users));
    EXPECT_TRUE(name(u"o=Shop").is_below(name(u"")));
}

TEST(DistinguishedName, TheParentIsTheRestBehindTheFirstPart) {
    EXPECT_EQ(name(u"cn=a\\,b\\\\,ou=x\\,y+l=z,o=Shop").parent(), name(u"OU=x\\,Y+l=z,o=shop"));
    EXPECT_EQ(name(u"o=Shop").parent(), name(u""));
    EXPECT_EQ(name(u"").parent(), name(u""));
}

TEST(DistinguishedName, NothingElseIsBelowAContainer) {
    const DistinguishedName users = name(u"ou=Users,o=Shop");
    EXPECT_FALSE(users.is_below(users));
    EXPECT_FALSE(name(u"o=Shop").is_below(users));
    EXPECT_FALSE(name(u"cn=a,ou=Profiles,o=Shop").is_below(users));
    EXPECT_FALSE(name(u"cn=a,ou=Users,o=Shop,c=NL").is_below(users));
    EXPECT_FALSE(name(u"cn=a\\,ou=Users,o=Shop").is_below(users));
    EXPECT_FALSE(name(u"cn=x,cn=a\\,ou=Users,o=Shop").is_below(users));
    EXPECT_TRUE(name(u"cn=x,cn=a\\\\,ou=Users,o=Shop").is_below(users));
    EXPECT_FALSE(name(u"cn=a,ou=xUsers,o=Shop").is_below(users));
}

}  // namespace
}  // namespace orvo::directory
