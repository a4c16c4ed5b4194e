#include "suite/directory/schema/value_syntax.h"

#include <gtest/gtest.h>

namespace orvo::directory {
namespace {

const std::string arc = "1.3.6.1.4.1.1466.115.121.1.";

Validity validity(const std::string& syntax, std::string_view value) {
    return validity_of(syntax, value, Schema::of_product());
}

// What the table of entries that a server refuses does not reach.
TEST(AValue, IsOfItsSyntaxOrNot) {
    EXPECT_EQ(validity(arc + "28", "\xFF\xD8\xFF\xE0 JFIF 0"), Validity::valid);
    EXPECT_EQ(validity(arc + "28", "GIF89a......"), Validity::invalid);
    EXPECT_EQ(validity(arc + "8", "\x30\x03..."), Validity::valid);
    EXPECT_EQ(validity(arc + "8", "x"), Validity::invalid);
    EXPECT_EQ(validity("1.3.6.1.1.16.1", "8a0c5d3e-0000-4000-8000-0123456789AB"), Validity::valid);
    EXPECT_EQ(validity("1.3.6.1.1.16.1", "8a0c5d3e00000-4000-8000-0123456789AB"),
              Validity::invalid);
    EXPECT_EQ(validity(arc + "15", "\xED\xA0\x80"), Validity::invalid) << "half of a pair";
    EXPECT_EQ(validity(arc + "24", "00500101000000Z"), Validity::invalid) << "before dates begin";
    EXPECT_EQ(validity(arc + "24", "000001010000Z"), Validity::valid) << "locked for good";
    EXPECT_EQ(validity("1.2.3", ""), Validity::no_validator);
}

TEST(ASyntax, MayNeedTheOptionForOctets) {
    EXPECT_TRUE(needs_binary_option(arc + "8"));
    EXPECT_FALSE(needs_binary_option(arc + "5"));
    EXPECT_FALSE(is_known_syntax("1.2.3"));
    EXPECT_TRUE(is_known_syntax(arc + "25"));
}

}  // namespace
}  // namespace orvo::directory
