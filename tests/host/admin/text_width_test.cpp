#include "host/admin/common/text_width.h"

#include <gtest/gtest.h>

namespace orvo::admin {
namespace {

TEST(TheWidthOfAText, IsThatOfItsCharacters) {
    EXPECT_EQ(width_of(""), 0u);
    EXPECT_EQ(width_of("Zoe"), 3u);
    EXPECT_EQ(width_of("Zoë"), 3u);
    EXPECT_EQ(width_of("Zoe\xCC\x88"), 3u) << "an accent that is combined";
    EXPECT_EQ(width_of("東京"), 4u);
    EXPECT_EQ(width_of("\xFFz"), 2u) << "no UTF-8";
}

TEST(ATextThatIsTooLong, IsCutBetweenCharacters) {
    EXPECT_EQ(cut_to("Zoë", 3), "Zoë");
    EXPECT_EQ(cut_to("Zoë", 2), "Z…");
    EXPECT_EQ(cut_to("東京", 4), "東京");
    EXPECT_EQ(cut_to("東京", 3), "東…");
    EXPECT_EQ(cut_to("東京", 2), "…");
    EXPECT_EQ(cut_to("Zoe", 1), "…");
    EXPECT_EQ(cut_to("Zoe", 0), "");
}

}  // namespace
}  // namespace orvo::admin
