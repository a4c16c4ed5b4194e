#include "platform/values/text_order.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "platform/values/text_forms.h"

namespace orvo {
namespace {

int compare(TextView a, TextView b) { return compare_up_to(OrderLevel::spelling, a, b); }

// Each before the next.
const std::vector<Text> in_order = {
    u"",
    u" ",
    u"!",
    u"!!",
    Text(1, u'\0'),
    u"1",
    u"Aether",
    u"A\u00EBther",
    u"\u00C6ther",  // Æ
    u"B",
    u"Em",
    u"Em!",
    u"Em a",
    u"Em!a",
    u"  Emil",
    u"Emil",
    u"emil",
    u"Emil!",
    u"emil!",
    u"Emil!!",
    u"\u00C9mil",
    u"\u00E9mil",
    u"\u00E9mil!",
    Text(u"\u00C9mil\0", 5),
    u"Emil ",
    u"Emil  A",
    u"emil a",
    u"\u00C9mil  a",
    u"Emil B",
    u"Emile",
    u"Emil\u00E9",
    u"\u00C9mile",
    u"Emma",
    u"Lukas",
    u"\u0141ukas",
    u"Stras",
    u"Strasse",
    u"Stra\u00DFe",
    u"Strassen",
    u"Zoe",
    u"zoe\u0308",  // the accent stands behind its letter
    u"Zo\u00EB",
    u"\u0391",  // Greek
    u"\u0386\u03BB\u03C6\u03B1",
    u"\u0392",
    u"\u0415",  // Cyrillic
    u"\u0401\u043B",
    u"\u0416",
    u"\u65E5",
    u"\uFFFD",
    u"\U0001F600",
};

TEST(TheOrderOfTexts, HasLettersBeforeAccentsBeforeCase) {
    for (std::size_t i = 0; i < in_order.size(); ++i)
        for (std::size_t j = 0; j < in_order.size(); ++j)
            EXPECT_EQ(compare(in_order[i], in_order[j]), i < j   ? -1
                                                         : i > j ? 1
                                                                 : 0)
                << to_utf8(in_order[i]) << " " << to_utf8(in_order[j]);
}

TEST(TheOrderOfTexts, IsOneOrderWhateverTheTexts) {
    std::mt19937 random(14);
    constexpr char16_t units[] = {0,      u'!',   u' ',   u'e',   u'E',   0x00E9, 0x00C9,   0x0301,
                                  0x00DF, 0x00E6, 0x0416, 0xD83D, 0xDE00, 0xFFFD, u'\u0001'};
    std::vector<Text> texts(200);
    for (Text& text : texts)
        for (unsigned length = random() % 5; length > 0; --length)
            text += units[random() % std::size(units)];
    std::ranges::sort(texts, [](TextView a, TextView b) { return compare(a, b) < 0; });
    for (std::size_t i = 0; i < texts.size(); ++i)
        for (std::size_t j = i; j < texts.size(); ++j) {
            EXPECT_EQ(compare(texts[i], texts[j]), texts[i] == texts[j] ? 0 : -1)
                << i << " " << to_utf8_with_halves(texts[i]) << " " << j << " "
                << to_utf8_with_halves(texts[j]);
            EXPECT_EQ(compare(texts[j], texts[i]), texts[i] == texts[j] ? 0 : 1);
        }
}

TEST(TheOrderOfTexts, SeesNoAccentsAndNoCaseAmongLetters) {
    for (const auto& [a, b] :
         {std::pair(u"EMILE", u"\u00E9mil\u00EB"), std::pair(u"\u00C5NGSTR\u00D6M", u"angstrom"),
          std::pair(u"\u0130stanbul", u"istanbul"), std::pair(u"\u1EA4n", u"an"),
          std::pair(u"c\u0327a", u"\u00E7a")})
        EXPECT_EQ(compare_at(OrderLevel::letters, a, b), 0) << to_utf8(a);
    EXPECT_NE(compare_at(OrderLevel::letters, u"a", u"b"), 0);
    EXPECT_EQ(letters_of(u"Stra\u00DFe \u0152uvre"), u"strasse oeuvre");
    EXPECT_EQ(accents_of(u"Zo\u00EBs"), u"\u0001\u0001\u00EB");
    EXPECT_EQ(accents_of(u"zoes"), u"");
}

// Of every letter that has a decomposition, the base is the one that Unicode's tables know.
TEST(TheOrderOfTexts, KnowsTheLettersBelowTheAccents) {
    const Text others =  // crossed letters, ligatures, a letter beside a point
        u"\u00D8\u00F8\u0110\u0111\u0126\u0127\u0131\u013F\u0140\u0141\u0142\u0166\u0167"
        u"\u00D0\u00F0\u00DE\u00FE\u0152\u0153\u00C6\u00E6\u01E2\u01E3\u01FC\u01FD\u01FE\u01FF";
    int known = 0;
    for (const auto& [first, last] :
         {std::pair(0x00C0, 0x017F), std::pair(0x01CD, 0x0233), std::pair(0x0386, 0x03CE),
          std::pair(0x0400, 0x045F), std::pair(0x1E00, 0x1EF9)})
        for (int unit = first; unit <= last; ++unit) {
            const Text letter(1, static_cast<char16_t>(unit));
            const Text base = letters_and_digits(letter);
            const bool is_accented = base.size() == 1 && base != lower(letter);
            if (!is_accented || others.find(letter) != Text::npos) continue;
            EXPECT_EQ(to_utf8(letters_of(letter)), to_utf8(base)) << std::hex << unit;
            ++known;
        }
    EXPECT_GT(known, 500);
}

}  // namespace
}  // namespace orvo
