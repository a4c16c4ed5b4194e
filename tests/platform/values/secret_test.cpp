#include "platform/values/secret.h"

#include <gtest/gtest.h>

#include <ostream>
#include <type_traits>

namespace orvo {
namespace {

template <class T>
concept printable = requires(std::ostream& out, const T& value) {
    out << value;
};

static_assert(!printable<Secret>);
static_assert(!std::is_copy_constructible_v<Secret>);
static_assert(!std::is_convertible_v<Secret, std::string>);
static_assert(!std::is_convertible_v<Text, Secret>);

TEST(Secret, HoldsThePasswordInUtf8) {
    EXPECT_EQ(Secret(u"n\u00E9w").reveal(), "n\xC3\xA9w");
    EXPECT_EQ(Secret(Text(u"a\0b", 3)).reveal(), std::string_view("a\0b", 3));
    EXPECT_EQ(Secret::of_bytes("\xFF").reveal(), "\xFF");
}

TEST(Secret, KeepsEveryUnitOfAText) {
    const Text texts[] = {u"",       u"plain",        u"\u00E9\u20AC\U0001F600",   Text(u"a\0b", 3),
                          u"\xD800", u"\xDC00\xD800", u"x\xD83D\xDE00\xDE00\xD83D"};
    for (const Text& text : texts) {
        const Secret secret{TextView(text)};
        EXPECT_EQ(secret.reveal([](TextView shown) { return Text(shown); }), text);
        EXPECT_EQ(secret.clone().reveal([](TextView shown) { return Text(shown); }), text);
        EXPECT_EQ(secret.is_well_formed(), is_well_formed(text));
    }
}

TEST(Secret, WithHalfOfASurrogatePairIsNotTheOneWithItsReplacement) {
    const Secret half(u"\xD800"), other_half(u"\xD801"), replaced(u"\uFFFD");
    EXPECT_FALSE(half.is_same_as(replaced));
    EXPECT_FALSE(half.is_same_as(other_half));
    EXPECT_TRUE(half.is_same_as(half.clone()));
}

TEST(Secret, IsEmptyWithoutAPassword) {
    EXPECT_TRUE(Secret().empty());
    EXPECT_TRUE(Secret(u"").empty());
    EXPECT_EQ(Secret().reveal(), "");
    EXPECT_FALSE(Secret(u"a").empty());
}

TEST(Secret, EndsInANulThatIsNotCounted) {
    const Secret secret(u"abc");
    EXPECT_EQ(secret.reveal().data()[3], '\0');
    EXPECT_EQ(Secret().reveal().data()[0], '\0');
}

TEST(Secret, MovesAndClones) {
    Secret first(u"one");
    Secret second = std::move(first);
    EXPECT_TRUE(first.empty());
    EXPECT_EQ(second.reveal(), "one");
    const Secret copy = second.clone();
    second = Secret(u"two");
    EXPECT_EQ(copy.reveal(), "one");
    EXPECT_EQ(second.reveal(), "two");
}

TEST(Overwrite, LeavesZeros) {
    char memory[] = "secret";
    overwrite(memory, 3);
    EXPECT_EQ(std::string_view(memory, 6), std::string_view("\0\0\0ret", 6));
}

}  // namespace
}  // namespace orvo
