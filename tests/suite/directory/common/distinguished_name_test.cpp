#include "suite/directory/common/distinguished_name.h"

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
        Accepted{u"cn=Z\u00C9L\u00C9,o=Shop", 2, "cn=z\u00E9l\u00E9,o=shop"},
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

TEST(DistinguishedName, AnEntryIsBelowItsContainerAtAnyDepth) {
    const DistinguishedName users = name(u"ou=Users,o=Shop");
    EXPECT_TRUE(name(u"cn=jsmith,OU=USERS,o=shop").is_below(users));
    EXPECT_TRUE(name(u"cn=jsmith,ou=Staff,ou=Users,o=Shop").is_below(users));
    EXPECT_TRUE(name(u"o=Shop").is_below(name(u"")));
}

TEST(DistinguishedName, NothingElseIsBelowAContainer) {
    const DistinguishedName users = name(u"ou=Users,o=Shop");
    EXPECT_FALSE(users.is_below(users));
    EXPECT_FALSE(name(u"o=Shop").is_below(users));
    EXPECT_FALSE(name(u"cn=a,ou=Profiles,o=Shop").is_below(users));
    EXPECT_FALSE(name(u"cn=a,ou=Users,o=Shop,c=NL").is_below(users));
    EXPECT_FALSE(name(u"cn=a\\,ou=Users,o=Shop").is_below(users));
    EXPECT_FALSE(name(u"cn=a,ou=xUsers,o=Shop").is_below(users));
}

TEST(ContainerName, IsTurnedRoundWhenWrittenFromTheTopDown) {
    EXPECT_EQ(container_name(u"o=Shop/ou=Users/ou=Staff"), u"ou=Staff,ou=Users,o=Shop");
    EXPECT_EQ(container_name(u"ou=Users,o=Shop"), u"ou=Users,o=Shop");
    EXPECT_EQ(container_name(u""), u"");
}

TEST(EntryName, IsTheRelativeNameBelowTheContainer) {
    EXPECT_EQ(entry_name(u"cn=jsmith", u"ou=Users,o=Shop"), u"cn=jsmith,ou=Users,o=Shop");
    EXPECT_EQ(entry_name(u"", u"ou=Users,o=Shop"), u"ou=Users,o=Shop");
    EXPECT_EQ(entry_name(u"cn=jsmith", u""), u"cn=jsmith");
}

TEST(EntryName, EscapesAPlainNameThatCannotBeReadAsItStands) {
    const std::pair<TextView, TextView> names[] = {
        {u"cn=Smith, John", u"cn=Smith\\, John"},
        {u"cn=Smith\\, John", u"cn=Smith\\, John"},
        {u"cn=Research+Development", u"cn=Research\\+Development"},
        {u"cn=#1 Buyer", u"cn=\\#1 Buyer"},
        {u"cn=back\\slash", u"cn=back\\\\slash"},
        {u"cn=Ann \"Andy\" <Smith>; =", u"cn=Ann \\\"Andy\\\" \\<Smith\\>\\; ="},
        {u"cn= ;", u"cn=\\ \\;"},
        {u"cn=; ", u"cn=\\;\\ "},
        {TextView(u"cn=a\0b", 6), u"cn=a\\00b"},
        {u"cn=a, b=", u"cn=a, b="},
        {u"cn=a,ou=Staff", u"cn=a,ou=Staff"},
        {u"jsmith, x", u"jsmith, x"},
    };
    for (const auto& [written, escaped] : names) {
        EXPECT_EQ(entry_name(written, u"o=Shop"), Text(escaped) + u",o=Shop") << to_utf8(written);
    }
}

TEST(AnEscapedValue, IsReadBackAsItself) {
    const Text all = u" #,+\"\\<>;=a\u00E9\xD83D\xDE00 ";
    for (std::size_t at = 0; at < all.size(); ++at)
        for (std::size_t length = 1; at + length <= all.size(); ++length) {
            const Text value = all.substr(at, length);
            const auto read = DistinguishedName::try_parse(u"cn=" + escaped_value(value));
            ASSERT_TRUE(read) << to_utf8(value);
            EXPECT_EQ(read->depth(), 1u);
        }
    EXPECT_EQ(escaped_value(u"  a  "), u"\\  a \\ ");
    EXPECT_EQ(escaped_value(u"a#b"), u"a#b");
    EXPECT_EQ(escaped_value(u""), u"");
}

TEST(TheNameBelowAContainer, IsCutOffInFrontOfTheContainer) {
    const DistinguishedName users = name(u"ou=Users,o=Shop");
    const std::pair<TextView, TextView> names[] = {
        {u"cn=jsmith,ou=Users,o=Shop", u"cn=jsmith,ou=Users,o=Shop"},
        {u"cn=Smith, John,ou=Users,o=Shop", u"cn=Smith\\, John,ou=Users,o=Shop"},
        {u"cn=Smith\\, John,ou=Users,o=Shop", u"cn=Smith\\, John,ou=Users,o=Shop"},
        {u"cn=Smith, John,OU=users, O=shop", u"cn=Smith\\, John,OU=users, O=shop"},
        {u"cn=a,b,o=Shop/ou=Users", u"cn=a\\,b,ou=Users,o=Shop"},
        {u"cn=a/b,ou=Users,o=Shop", u"cn=a/b,ou=Users,o=Shop"},
        {u"cn=a\\,ou=Users,o=Shop", u"cn=a\\\\,ou=Users,o=Shop"},
        {u"cn=a,ou=Staff,ou=Users,o=Shop", u"cn=a,ou=Staff,ou=Users,o=Shop"},
    };
    for (const auto& [written, below] : names)
        EXPECT_EQ(name_below(written, users), Text(below)) << to_utf8(written);
    EXPECT_EQ(name_below(u"cn=a,b,", name(u"")), u"cn=a\\,b");
    EXPECT_EQ(name_below(u"o=Shop", name(u"")), u"o=Shop");
    const DistinguishedName comma = name(u"ou=a\\2Cb,o=Shop");
    EXPECT_EQ(name_below(u"cn=x,y,ou=a\\,b,o=Shop", comma), u"cn=x\\,y,ou=a\\,b,o=Shop");
}

TEST(TheNameBelowAContainer, IsNoneForTheContainerAndWhatIsNotBelowIt) {
    const DistinguishedName users = name(u"ou=Users,o=Shop");
    for (const char16_t* written :
         {u"", u",", u"ou=Users,o=Shop", u",ou=Users,o=Shop", u"  ,ou=Users,o=Shop", u"o=Shop",
          u"o=Shop/ou=Users", u"cn=a", u"cn=a,ou=Profiles,o=Shop", u"cn=a,ou=Users,o=Shop,c=NL",
          u"cn=a,ou=xUsers,o=Shop"})
        EXPECT_EQ(name_below(written, users), std::nullopt) << to_utf8(written);
}

TEST(TheNameBelowAContainer, IsFoundAtOnceInATextOfManyCommas) {
    const Text many = u"cn=" + Text(1'000'000, u',');
    EXPECT_EQ(name_below(many + u",ou=Users,o=Shop", name(u"ou=Users,o=Shop"))->size(),
              many.size() + 1'000'000 + 16);
}

TEST(FullName, IsReadAsItStandsOrItsFrontIsTakenForAPlainName) {
    const auto full = [](TextView written) { return to_utf8(full_name(written)); };
    EXPECT_EQ(full(u"cn=jsmith,ou=Users,o=Shop"), "cn=jsmith,ou=Users,o=Shop");
    EXPECT_EQ(full(u"cn=Smith\\, John,o=Shop"), "cn=Smith\\, John,o=Shop");
    EXPECT_EQ(full(u"cn=Smith, John,ou=Users,o=Shop"), "cn=Smith\\, John,ou=Users,o=Shop");
    EXPECT_EQ(full(u"cn=a, b, c+d,o=Shop"), "cn=a\\, b\\, c\\+d,o=Shop");
    EXPECT_EQ(full(u"cn=#1,o=Shop"), "cn=\\#1,o=Shop");
    EXPECT_EQ(full(u"no name at all"), "no name at all");
    EXPECT_EQ(full(u""), "");
}

}  // namespace
}  // namespace orvo::directory
