#include "platform/objects/files/encoding.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

constexpr Encoding all[] = {Encoding::utf8,   Encoding::utf16,       Encoding::utf16_big,
                            Encoding::latin1, Encoding::windows1252, Encoding::ascii};

TEST(Encodings, GiveBackWhatTheyCanHold) {
    const Text any = u"a\u00FC\u20AC\u0416\U0001F600";
    for (const Encoding encoding : {Encoding::utf8, Encoding::utf16, Encoding::utf16_big})
        EXPECT_EQ(decoded(encoding, encoded(encoding, any)), any);
    EXPECT_EQ(encoded(Encoding::windows1252, u"\u20AC\u017D\u00E9\u0416"), "\x80\x8E\xE9?");
    EXPECT_EQ(decoded(Encoding::windows1252, "\x80\x8E\xE9"), u"\u20AC\u017D\u00E9");
    EXPECT_EQ(encoded(Encoding::latin1, u"\u00E9\u20AC"), "\xE9?");
    EXPECT_EQ(encoded(Encoding::ascii, u"e\u00E9"), "e?");
    EXPECT_EQ(decoded(Encoding::ascii, "e\xE9"), u"e\uFFFD");
    EXPECT_EQ(encoded(Encoding::latin1, u"\U0001F600!"), "?!") << "one character, one sign";
}

// However the bytes are cut into parts, the text is the same.
TEST(Encodings, WholeCharactersCanBeReadPartByPart) {
    const Text text = u"a\u00FC\u20AC\U0001F600\u0416 z";
    for (const Encoding encoding : all) {
        const std::string bytes = encoded(encoding, text) + "\xC3";
        for (std::size_t size = 1; size < bytes.size(); ++size) {
            std::string pending;
            Text seen;
            for (std::size_t at = 0; at < bytes.size(); at += size) {
                pending += bytes.substr(at, size);
                const std::size_t whole = whole_characters(encoding, pending);
                seen += decoded(encoding, pending.substr(0, whole));
                pending.erase(0, whole);
            }
            EXPECT_EQ(seen + decoded(encoding, pending), decoded(encoding, bytes)) << size;
        }
    }
}

TEST(Encodings, CharactersAreCountedOneByOne) {
    const std::string text = encoded(Encoding::utf8, u"\u00FC\u20AC\U0001F600");
    EXPECT_EQ(first_character(Encoding::utf8, text), 2u);
    EXPECT_EQ(first_character(Encoding::utf8, text.substr(2)), 3u);
    EXPECT_EQ(first_character(Encoding::utf8, text.substr(5)), 4u);
    EXPECT_EQ(first_character(Encoding::utf8, "\xFFz"), 1u);
    EXPECT_EQ(first_character(Encoding::utf8, "\xE2\x82"), 2u) << "cut off";
    EXPECT_EQ(first_character(Encoding::utf8, "\xC3z"), 1u);
    EXPECT_EQ(first_character(Encoding::utf16, encoded(Encoding::utf16, u"\U0001F600")), 4u);
    EXPECT_EQ(first_character(Encoding::utf16, "a"), 1u);
}

TEST(Encodings, AreFoundByTheirNames) {
    EXPECT_EQ(encoding_named(u"UTF-8"), Encoding::utf8);
    EXPECT_EQ(encoding_named(u"unicode"), Encoding::utf16);
    EXPECT_EQ(encoding_named(u"ISO-8859-1"), Encoding::latin1);
    EXPECT_EQ(encoding_named(u"koi8-r"), std::nullopt);
}

}  // namespace
}  // namespace orvo
