#include "suite/directory/names/written_name.h"

#include <gtest/gtest.h>

namespace orvo::directory {
namespace {

DistinguishedName name(TextView text) {
    auto parsed = DistinguishedName::try_parse(text);
    if (!parsed) throw std::runtime_error("not a name: " + to_utf8(text));
    return *parsed;
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
        {u"cn=a<b, c=d,ou=Users,o=Shop", u"cn=a\\<b\\, c=d,ou=Users,o=Shop"},
        {u"cn=\u00E9,ou=Users,o=Shop", u"cn=\u00E9,ou=Users,o=Shop"},
        {u"cn=#1,ou=Users,o=Shop", u"cn=\\#1,ou=Users,o=Shop"},
        {u"cn=a=b,ou=Users,o=Shop", u"cn=a=b,ou=Users,o=Shop"},
    };
    for (const auto& [written, below] : names) {
        EXPECT_EQ(name_below(written, users), Text(below)) << to_utf8(written);
    }
    EXPECT_EQ(name_below(u"cn=a,b,", name(u"")), u"cn=a\\,b");
    EXPECT_EQ(name_below(TextView(u"cn=a\0b,o=S", 10), name(u"o=S")), u"cn=a\\00b,o=S");
    EXPECT_EQ(name_below(u"o=Shop", name(u"")), u"o=Shop");
    const DistinguishedName comma = name(u"ou=a\\2Cb,o=Shop");
    EXPECT_EQ(name_below(u"cn=x,y,ou=a\\,b,o=Shop", comma), u"cn=x\\,y,ou=a\\,b,o=Shop");
}

TEST(TheNameBelowAContainer, IsNoneForTheContainerAndWhatIsNotBelowIt) {
    const DistinguishedName users = name(u"ou=Users,o=Shop");
    for (const char16_t* written :
         {u"", u",", u"ou=Users,o=Shop", u",ou=Users,o=Shop", u"  ,ou=Users,o=Shop", u"o=Shop",
          u"o=Shop/ou=Users", u"cn=a", u"cn=a,ou=Profiles,o=Shop", u"cn=a,ou=Users,o=Shop,c=NL",
          u"cn=a,ou=xUsers,o=Shop", u"jsmith,ou=Users,o=Shop", u"c n=a,ou=Users,o=Shop",
          u"=a,ou=Users,o=Shop"}) {
        EXPECT_EQ(name_below(written, users), std::nullopt) << to_utf8(written);
        EXPECT_FALSE(is_plain_below(written, u"ou=Users,o=Shop")) << to_utf8(written);
    }
}

TEST(TheNameBelowAContainer, IsTheTextAsItStandsWhereThatIsPlain) {
    const DistinguishedName users = name(u"ou=Users,o=Shop");
    for (const char16_t* written : {u"cn=jsmith,ou=Users,o=Shop", u"cn=a/b,ou=Users,o=Shop",
                                    u"cn=\u00E9,ou=Users,o=Shop", u"cn=a=b,ou=Users,o=Shop"}) {
        EXPECT_TRUE(is_plain_below(written, u"ou=Users,o=Shop")) << to_utf8(written);
        EXPECT_EQ(name_below(written, users), written);
    }
    for (const char16_t* written :
         {u"cn=jsmith,OU=users, O=shop", u"cn=Smith, John,ou=Users,o=Shop",
          u"cn=Smith\\, John,ou=Users,o=Shop", u"cn=a+b,ou=Users,o=Shop",
          u"cn=a\"b,ou=Users,o=Shop", u"cn=a;b,ou=Users,o=Shop", u"cn=a<b,ou=Users,o=Shop",
          u"cn=a>b,ou=Users,o=Shop", u"cn=a\\,ou=Users,o=Shop", u"cn=#1,ou=Users,o=Shop",
          u"cn= a,ou=Users,o=Shop", u"cn=a ,ou=Users,o=Shop", u"2.5.4.3=a,ou=Users,o=Shop",
          u"cn=,ou=Users,o=Shop"})
        EXPECT_FALSE(is_plain_below(written, u"ou=Users,o=Shop")) << to_utf8(written);
    EXPECT_FALSE(is_plain_below(TextView(u"cn=a\0b,o=S", 10), u"o=S"));
}

TEST(TheNameBelowTheRoot, IsNeverTheTextAsItStandsWithItsComma) {
    EXPECT_EQ(name_below(u"cn=a,", name(u"")), u"cn=a");
    EXPECT_FALSE(is_plain_below(u"cn=a,", u""));
    EXPECT_EQ(name_below(u"cn=a, ", name(u"")), u"cn=a");
    EXPECT_EQ(name_below(u"cn=a\\, ", name(u"")), u"cn=a\\\\");
    EXPECT_FALSE(is_plain_below(u"cn=a, ", u" "));
}

TEST(TheNameBelowAContainer, IsNoneForATextThatIsTooLongForAName) {
    const Text end = u",ou=Users,o=Shop";
    const DistinguishedName users = name(u"ou=Users,o=Shop");
    const auto sizes = [&](const Text& written) {
        const auto below = name_below(written, users);
        EXPECT_EQ(is_plain_below(written, u"ou=Users,o=Shop"), below == written);
        return below ? below->size() : 0;
    };
    const std::size_t longest = longest_name - end.size() - 3;
    EXPECT_EQ(sizes(u"cn=" + Text(longest, u',') + end), longest_name + longest);
    EXPECT_EQ(sizes(u"cn=" + Text(longest + 1, u',') + end), 0u);
    EXPECT_EQ(sizes(u"cn=" + Text(longest, u'x') + end), longest_name);
    EXPECT_EQ(sizes(u"cn=" + Text(longest + 1, u'x') + end), 0u);
    EXPECT_EQ(sizes(u"cn=x,cn=" + Text(longest, u'x') + end), 0u);
}

TEST(TheNameBelowAContainer, IsReadWithItWhereItsFullNameIsAGuess) {
    const DistinguishedName users = name(u"ou=Users,o=Shop");
    const TextView written = u"cn=a<b, c=d,ou=Users,o=Shop";
    EXPECT_EQ(full_name(written), u"cn=a\\<b, c=d,ou=Users,o=Shop");
    EXPECT_EQ(name_below(written, users), u"cn=a\\<b\\, c=d,ou=Users,o=Shop");
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

TEST(FullName, IsAsItStandsForATextThatIsTooLongForAName) {
    const auto many = [](TextView one, std::size_t units) {
        Text all;
        while (all.size() + one.size() <= units) all += one;
        return all;
    };
    const Text end = u"<,o=Shop";
    const Text hostile = many(u"a=b,", 65'536) + end;
    EXPECT_EQ(full_name(hostile), hostile);
    EXPECT_EQ(full_name(many(u"a=\\,", 65'536) + end), many(u"a=\\,", 65'536) + end);

    const Text longest = Text(longest_name - end.size(), u'x');
    EXPECT_EQ(full_name(u"cn=" + longest.substr(3) + end),
              u"cn=" + longest.substr(3) + u"\\" + end);
    EXPECT_EQ(full_name(u"cn=" + longest.substr(2) + end), u"cn=" + longest.substr(2) + end);
}

}  // namespace
}  // namespace orvo::directory
