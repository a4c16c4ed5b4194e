#include "platform/values/text.h"

#include <gmock/gmock.h>

#include <limits>

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Utf8Case {
    std::string_view bytes;
    TextView text;
};

TEST(FromUtf8, ReadsOneToFourByteFormsAtTheirBounds) {
    const Utf8Case cases[] = {
        {"", u""},
        {"plain", u"plain"},
        {{"a\0b", 3}, {u"a\0b", 3}},
        {"\x7F", u"\x7F"},
        {"\xC2\x80", u"\x80"},
        {"\xDF\xBF", u"\x7FF"},
        {"\xE0\xA0\x80", u"\x800"},
        {"\xED\x9F\xBF", u"\xD7FF"},
        {"\xEE\x80\x80", u"\xE000"},
        {"\xEF\xBF\xBF", u"\xFFFF"},
        {"\xF0\x90\x80\x80", u"\U00010000"},
        {"\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
        {"M\xC3\xBCller \xE2\x82\xAC \xF0\x9F\x98\x80", u"Müller € \U0001F600"},
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(from_utf8(bytes), text);
        EXPECT_EQ(to_utf8(text), bytes);
    }
}

TEST(FromUtf8, ReplacesEachMaximalIllFormedPart) {
    const Utf8Case cases[] = {
        {"\x80", u"\xFFFD"},
        {"a\xBF z", u"a\xFFFD z"},
        {"\xC0\x80", u"\xFFFD\xFFFD"},
        {"\xC1\xBF", u"\xFFFD\xFFFD"},
        {"\xE0\x80\x80", u"\xFFFD\xFFFD\xFFFD"},
        {"\xE0\x9F\xBF", u"\xFFFD\xFFFD\xFFFD"},
        {"\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD"},
        {"\xF0\x8F\xBF\xBF", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
        {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
        {"\xF5\x80", u"\xFFFD\xFFFD"},
        {"\xFE\xFF", u"\xFFFD\xFFFD"},
        {"\xC3", u"\xFFFD"},
        {"\xE2\x82", u"\xFFFD"},
        {"\xF0\x9F\x98", u"\xFFFD"},
        {"\xE2\x82z", u"\xFFFDz"},
        {"\xF0\x9F\x98z", u"\xFFFDz"},
        {"\xE2\x82\xE2\x82\xAC", u"\xFFFD€"},
        {"\xC3\xC3\xBC", u"\xFFFDü"},
        {"a\xF1\x80\x80\xE1\x80\xC2z", u"a\xFFFD\xFFFD\xFFFDz"},
    };
    for (const auto& [bytes, text] : cases) EXPECT_EQ(from_utf8(bytes), text);
}

TEST(ToUtf8, ReplacesSurrogatesThatStandAlone) {
    EXPECT_EQ(to_utf8(u"\xD83D"), "\xEF\xBF\xBD");
    EXPECT_EQ(to_utf8(u"\xDE00"), "\xEF\xBF\xBD");
    EXPECT_EQ(to_utf8(u"a\xD83Dz"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(to_utf8(u"\xDE00\xD83D"), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(to_utf8(u"\xD83D\xD83D\xDE00"), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
}

TEST(AWellFormedText, HasNoHalfOfASurrogatePairAlone) {
    for (const TextView text :
         {u"", u"plain", u"\xD7FF\xE000\xFFFD\xFFFF", u"\U00010000", u"a\U0010FFFF\U0001F600z"})
        EXPECT_TRUE(is_well_formed(text)) << to_utf8(text);
    for (const TextView text :
         {u"\xD83D", u"\xDE00", u"\xD800", u"\xDBFF", u"\xDC00", u"\xDFFF", u"a\xD83D", u"a\xD83Dz",
          u"a\xDE00z", u"\xDE00\xD83D", u"\xD83D\xD83D\xDE00", u"\xD83D\xDE00\xDE00"})
        EXPECT_FALSE(is_well_formed(text)) << to_utf8(text);
}

struct CasePair {
    TextView upper;
    TextView lower;
};

TEST(IgnoringCase, LettersOfLatinGreekAndCyrillicEqualTheirOtherCase) {
    const CasePair pairs[] = {
        {u"AZ", u"az"}, {u"É", u"é"},     {u"ÀÖØÞ", u"àöøþ"}, {u"ĀĎŁŇŠŽ", u"āďłňšž"}, {u"Ÿ", u"ÿ"},
        {u"ƠƯ", u"ơư"}, {u"ȘȚ", u"șț"},   {u"ẾỘ", u"ếộ"},     {u"ΆΑΏΩΫ", u"άαώωϋ"},   {u"Σ", u"ς"},
        {u"Ж", u"ж"},   {u"ЀЯЎ", u"ѐяў"}, {u"Ґ", u"ґ"},       {u"ẞ", u"ß"},
    };
    for (const auto& [upper, lower_case] : pairs) {
        EXPECT_TRUE(equal_ignoring_case(upper, lower_case)) << to_utf8(upper);
        EXPECT_EQ(compare_ignoring_case(upper, lower_case), 0) << to_utf8(upper);
        EXPECT_EQ(lower(upper), lower(lower_case)) << to_utf8(upper);
    }
    EXPECT_EQ(lower(u"Straße ÉЖΩ 123 [\\]"), u"straße éжω 123 [\\]");
}

TEST(IgnoringCase, WhatHasNoSimpleFoldingStaysItself) {
    for (const TextView text :
         {u"ß", u"×", u"÷", u"İ", u"ı", u"ŉ", u"ĸ", u"@[`{", u"日本", u"\x2160"}) {
        EXPECT_EQ(lower(text), text) << to_utf8(text);
    }
    EXPECT_FALSE(equal_ignoring_case(u"ß", u"ss"));
    EXPECT_FALSE(equal_ignoring_case(u"×", u"÷"));
    EXPECT_FALSE(equal_ignoring_case(u"İ", u"i"));
    EXPECT_FALSE(equal_ignoring_case(u"e", u"é"));
    EXPECT_FALSE(equal_ignoring_case(u"@", u"`"));
    EXPECT_FALSE(equal_ignoring_case(u"abc", u"ab"));
}

TEST(IgnoringCase, FoldingOnceIsFoldingForGood) {
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const Text once = lower(Text(1, static_cast<char16_t>(unit)));
        ASSERT_EQ(lower(once), once) << unit;
    }
}

TEST(IgnoringCase, OrdersByTheFirstLetterThatDiffers) {
    EXPECT_EQ(compare_ignoring_case(u"abc", u"ABD"), -1);
    EXPECT_EQ(compare_ignoring_case(u"ABD", u"abc"), 1);
    EXPECT_EQ(compare_ignoring_case(u"ab", u"ABC"), -1);
    EXPECT_EQ(compare_ignoring_case(u"ABC", u"ab"), 1);
    EXPECT_EQ(compare_ignoring_case(u"_", u"A"), -1);
    EXPECT_EQ(compare_ignoring_case(u"", u""), 0);
}

TEST(ContainsIgnoringCase, FindsThePartAnywhere) {
    EXPECT_TRUE(contains_ignoring_case(u"The ÉNTRY exists", u"éntry"));
    EXPECT_TRUE(contains_ignoring_case(u"abc", u"ABC"));
    EXPECT_TRUE(contains_ignoring_case(u"abc", u""));
    EXPECT_TRUE(contains_ignoring_case(u"", u""));
    EXPECT_FALSE(contains_ignoring_case(u"", u"a"));
    EXPECT_FALSE(contains_ignoring_case(u"abab", u"abc"));
}

TEST(Trimmed, CutsBlanksAndNoOtherSpace) {
    EXPECT_EQ(trimmed(u"  a b  "), u"a b");
    EXPECT_EQ(trimmed(u"   "), u"");
    EXPECT_EQ(trimmed(u""), u"");
    EXPECT_EQ(trimmed(u" \t\n "), u"\t\n");
    EXPECT_EQ(trimmed(u"\xA0"), u"\xA0");
}

TEST(Split, GivesThePiecesBetweenSeparators) {
    EXPECT_THAT(split(u"", u","), IsEmpty());
    EXPECT_THAT(split(u"a", u","), ElementsAre(u"a"));
    EXPECT_THAT(split(u"a,", u","), ElementsAre(u"a", u""));
    EXPECT_THAT(split(u",", u","), ElementsAre(u"", u""));
    EXPECT_THAT(split(u"a\r\nb\rc\r\n", u"\r\n"), ElementsAre(u"a", u"b\rc", u""));
    EXPECT_THAT(split(u"aaa", u"aa"), ElementsAre(u"", u"a"));
    EXPECT_THAT(split(u"ab", u""), ElementsAre(u"ab"));
}

TEST(Replaced, ReplacesLeftToRightAndNotInWhatItWrote) {
    EXPECT_EQ(replaced(u"aaa", u"aa", u"b"), u"ba");
    EXPECT_EQ(replaced(u"a\\b", u"\\", u"\\\\"), u"a\\\\b");
    EXPECT_EQ(replaced(u"abc", u"b", u""), u"ac");
    EXPECT_EQ(replaced(u"abc", u"x", u"y"), u"abc");
    EXPECT_EQ(replaced(u"abc", u"", u"y"), u"abc");
}

TEST(Decimal, WritesTheDigitsOfEveryNumber) {
    EXPECT_EQ(decimal(0), u"0");
    EXPECT_EQ(decimal(-12), u"-12");
    EXPECT_EQ(decimal(std::numeric_limits<long long>::max()), u"9223372036854775807");
    EXPECT_EQ(decimal(std::numeric_limits<long long>::min()), u"-9223372036854775808");
}

TEST(Hexadecimal, WritesUpperCaseAndNegativeNumbersAsTheirComplement) {
    EXPECT_EQ(hexadecimal(0), u"0");
    EXPECT_EQ(hexadecimal(0xABC), u"ABC");
    EXPECT_EQ(hexadecimal(-1), u"FFFFFFFF");
    EXPECT_EQ(hexadecimal(static_cast<int>(0x8004044Fu)), u"8004044F");
}

}  // namespace
}  // namespace orvo
