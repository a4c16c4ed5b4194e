#include "platform/values/text_forms.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

struct Row {
    TextView text;
    const char* lower;
    const char* letters;
};

const Row rows[] = {
    {u"", "", ""},
    {u"J. Smith-42", "j. smith-42", "jsmith42"},
    {u"\u00C9", "\u00E9", "e"},
    {u"E\u0301", "\u00E9", "e"},
    {u"\uFF21\uFF42\uFF13", "ab3", "ab3"},
    {u"o\uFB01s", "ofis", "ofis"},
    {u"\u212Aelvin", "kelvin", "kelvin"},
    {u"stra\u00DFe", "stra\u00DFe", "strasse"},
    {u"STRASSE", "strasse", "strasse"},
    {u"\u1E9E", "\u00DF", "ss"},
    {u"a\u00A0b\u3000c", "a b c", "abc"},
    {u"a\u00ADb\u200Bc", "a\u00ADb\u200Bc", "abc"},
    {u"\u03A3\u03C2\u03C3", "\u03C3\u03C2\u03C3", "\u03C3\u03C3\u03C3"},
    {u"\u1FB3\u1FBC", "\u1FB3\u1FB3", "\u03B1\u03B9\u03B1\u03B9"},
    {u"\u2167", "viii", "viii"},
    {u"\u3392", "mhz", "mhz"},
    {u"\u0535\u0562", "\u0565\u0562", "\u0565\u0562"},
    {u"\u65E5\u672C", "\u65E5\u672C", "\u65E5\u672C"},
    {u"\u1112\u1161\u11AB", "\uD55C", "\u1112\u1161\u11AB"},
    {u"\U0001D400x", "ax", "ax"},
};

TEST(TextForms, AreLowerAndCompatibleOrLettersAndDigitsAlone) {
    for (const Row& row : rows) {
        EXPECT_EQ(to_utf8(compatible_lower(row.text)), row.lower) << to_utf8(row.text);
        EXPECT_EQ(to_utf8(letters_and_digits(row.text)), row.letters) << to_utf8(row.text);
    }
}

TEST(TextForms, KnowLettersBeyondTheFirstPlane) {
    EXPECT_EQ(compatible_lower(u"\U00010400"), u"\U00010428");
    EXPECT_EQ(letters_and_digits(u"\U00010400\U0001F600"), u"\U00010428");
    EXPECT_EQ(letters_and_digits(u"\u0130\u0131"), u"i\u0131");
}

TEST(TextForms, OfAFormStayAsTheyAre) {
    for (const Row& row : rows) {
        const Text lower = compatible_lower(row.text), letters = letters_and_digits(row.text);
        EXPECT_EQ(compatible_lower(lower), lower) << to_utf8(row.text);
        EXPECT_EQ(letters_and_digits(letters), letters) << to_utf8(row.text);
        EXPECT_EQ(letters_and_digits(lower), letters) << to_utf8(row.text);
    }
}

TEST(TextForms, OfWhatIsIllFormedComeToAnEnd) {
    const Text half{u'a', char16_t(0xD83D), u'B'};
    compatible_lower(half);
    EXPECT_EQ(letters_and_digits(half).front(), u'a');
}

}  // namespace
}  // namespace orvo
