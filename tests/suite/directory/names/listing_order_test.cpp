#include "suite/directory/names/listing_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "platform/values/text_order.h"

namespace orvo::directory {
namespace {

// Each before the next.
const std::vector<std::string> in_order = {
    "",
    "!",
    "!!",
    std::string("\0", 1),
    "\t",
    "!a",
    "#1",
    "\xC3\x84rne",  // Ärne
    "Arnf",
    "\xC3\xA4rnf",
    "\xC3\x89mile",  // Émile
    "Emma",
    "Smit",
    "  Smith",
    "Smith",
    "smith",
    "Smith!",
    "Smith!!",
    "Sm\xC3\xAFth",  // Smïth
    "Sm\xC3\xAFth!",
    std::string("smith\0", 6),
    "Smith ",
    "smith !",
    "SMITH John",
    "Smith  john",
    "Smith!a",
    "smith\"",
    "Smith(1)",
    "smith,John",
    "Smith-X",
    "Smith0",
    "SmithA",
    "smith\xC3\xA4",
    "smithaa",
    "smithB",
    "smith\xC3\x96",  // Ö
    "smithy",
    "smith~",
    "Zo\xC3\xAB",
    "zof",
    "\xD0\x96",          // Ж
    "\xD0\xB7",          // з
    "\xE6\x97\xA5",      // 日
    "\xFF",              // no text
    "\xF0\x9F\x98\x80",  // an emoji
};

TEST(TheListingOrder, HasLettersBeforeAccentsBeforeExclamationMarksAtTheEnd) {
    for (std::size_t next = 1; next < in_order.size(); ++next)
        EXPECT_LT(listing_key(in_order[next - 1]), listing_key(in_order[next]))
            << in_order[next - 1] << " " << in_order[next];
}

// All names of up to `longest` characters.
std::vector<std::string> short_names(unsigned longest) {
    std::vector<std::string> names = {""};
    std::size_t from = 0;
    for (unsigned length = 1; length <= longest; ++length) {
        const std::size_t to = names.size();
        for (; from < to; ++from)
            for (const char* letter : {"e", "E", "\xC3\xA9", "\xC3\x89", "!", " ", "l"})
                names.push_back(names[from] + letter);
    }
    return names;
}

// And some that are longer, of more characters.
std::vector<std::string> long_names() {
    std::mt19937 random(4);
    const std::string letters[] = {"a",        "A",        "b",        " ",           "!",
                                   "-",        "\xC3\xA4", "\xC3\x84", "\xCC\x88",    "\xC3\x9F",
                                   "\xD0\xB7", "\t",       "S",        "\xEF\xBF\xBD"};
    std::vector<std::string> names;
    for (int count = 0; count < 300; ++count) {
        std::string& name = names.emplace_back();
        for (unsigned length = random() % 9; length > 0; --length)
            name += letters[random() % std::size(letters)];
    }
    return names;
}

std::vector<std::string> many_names() {
    std::vector<std::string> names = short_names(3);
    for (const std::vector<std::string>& more : {long_names(), in_order})
        names.insert(names.end(), more.begin(), more.end());
    std::erase(names, "\xFF");  // as a text it is another
    return names;
}

std::vector<std::string> keys_of(const std::vector<std::string>& names) {
    std::vector<std::string> keys;
    for (const std::string& name : names) keys.push_back(listing_key(name));
    return keys;
}

int sign(int order) { return order < 0 ? -1 : order > 0 ? 1 : 0; }

TEST(TheListingOrder, IsThatOfTexts) {
    const std::vector<std::string> names = many_names();
    const std::vector<std::string> keys = keys_of(names);
    std::vector<Text> texts;
    for (const std::string& name : names) texts.push_back(from_utf8(name));
    for (std::size_t i = 0; i < names.size(); ++i)
        for (std::size_t j = 0; j < names.size(); ++j)
            ASSERT_EQ(sign(keys[i].compare(keys[j])),
                      compare_up_to(OrderLevel::spelling, texts[i], texts[j]))
                << "'" << names[i] << "' '" << names[j] << "'";
}

// Without what the spelling alone is about.
Text folded(const std::string& name) {
    Text text = lower(from_utf8(name));
    text.erase(0, text.find_first_not_of(u' '));
    while (text.find(u"  ") != Text::npos) text = replaced(text, u"  ", u" ");
    return text;
}

TEST(TheListingOrder, HasNothingButOtherSpellingsBetweenANameAndItWithAnExclamationMark) {
    const std::vector<std::string> names = many_names();
    const std::vector<std::string> keys = keys_of(names);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string next = listing_key(names[i] + "!");
        EXPECT_LT(keys[i], next);
        for (std::size_t j = 0; j < names.size(); ++j) {
            if (keys[j] <= keys[i] || keys[j] >= next) continue;
            const Text between = folded(names[j]);
            ASSERT_TRUE(between == folded(names[i]) || between == folded(names[i] + "!"))
                << "'" << names[i] << "' '" << names[j] << "'";
        }
    }
}

// What is listed from x + "!" on is all that is listed behind x.
TEST(AListingBound, OfANameAndAnExclamationMarkIsReachedByAllBehindTheName) {
    const std::vector<std::string> names = many_names();
    const std::vector<std::string> keys = keys_of(names);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const ListingBound bound(names[i] + "!");
        for (std::size_t j = 0; j < names.size(); ++j)
            ASSERT_EQ(bound.is_reached_by(keys[j]), keys[j] > keys[i])
                << "'" << names[i] << "' '" << names[j] << "'";
    }
}

TEST(AListingBound, TakesACallerThroughAllNamesPageAfterPage) {
    std::vector<std::string> names = short_names(4);
    std::ranges::sort(names, {}, listing_key);
    const std::vector<std::string> keys = keys_of(names);
    for (const std::size_t size : {1, 2, 3}) {
        std::vector<std::string> walked;
        for (std::size_t page = size; page == size;) {
            const ListingBound bound(walked.empty() ? "" : walked.back() + "!");
            page = 0;
            for (std::size_t at = 0; at < names.size() && page < size; ++at)
                if (bound.is_reached_by(keys[at])) {
                    walked.push_back(names[at]);
                    ++page;
                }
        }
        EXPECT_EQ(walked, names) << size;
    }
}

TEST(AListingBound, RegardsNoCase) {
    for (const char* bound : {"smith", "SMITH", "Smith"}) {
        const ListingBound made(bound);
        for (const char* same : {"Smith", "smith", "SMITH"}) {
            EXPECT_TRUE(made.is_reached_by(listing_key(same)));
            EXPECT_TRUE(made.covers(listing_key(same)));
        }
        EXPECT_FALSE(made.is_reached_by(listing_key("Smit")));
        EXPECT_TRUE(made.covers(listing_key("smit")));
        EXPECT_TRUE(made.is_reached_by(listing_key("Smith!")));
        EXPECT_FALSE(made.covers(listing_key("Smith!")));
        EXPECT_TRUE(ListingBound("smith!").covers(listing_key("SMITH!")));
        EXPECT_TRUE(ListingBound("smith!").covers(listing_key("Smith")));
        EXPECT_FALSE(ListingBound("smith!").covers(listing_key("Smith J")));
    }
}

TEST(AListingBound, RegardsAccents) {
    const ListingBound plain("emil");
    EXPECT_TRUE(plain.is_reached_by(listing_key("\xC3\x89mil")));
    EXPECT_FALSE(plain.covers(listing_key("\xC3\x89mil")));
    const ListingBound accented("\xC3\xA9mil");
    EXPECT_FALSE(accented.is_reached_by(listing_key("Emil")));
    EXPECT_FALSE(accented.is_reached_by(listing_key("Emil!")));
    for (const char* same : {"\xC3\x89mil", "\xC3\xA9mil"}) {
        EXPECT_TRUE(accented.is_reached_by(listing_key(same)));
        EXPECT_TRUE(accented.covers(listing_key(same)));
    }
    EXPECT_FALSE(accented.covers(listing_key("\xC3\xA9mil!")));
}

// Names that are equal but for case and blanks are at or beyond, and at or before, one another.
TEST(AListingBound, HoldsBothWaysForSpellingsOfOneNameAndNoOthers) {
    const std::vector<std::string> names = short_names(3);
    const std::vector<std::string> keys = keys_of(names);
    std::vector<Text> all_folded;
    for (const std::string& name : names) all_folded.push_back(folded(name));
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i].ends_with('!')) continue;
        const ListingBound bound(names[i]);
        for (std::size_t j = 0; j < names.size(); ++j)
            ASSERT_EQ(bound.is_reached_by(keys[j]) && bound.covers(keys[j]),
                      all_folded[i] == all_folded[j])
                << "'" << names[i] << "' '" << names[j] << "'";
    }
}

}  // namespace
}  // namespace orvo::directory
