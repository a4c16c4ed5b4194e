#include "suite/directory/names/listing_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace orvo::directory {
namespace {

// Each before the next.
const std::vector<std::string> in_order = {
    "",
    "!",
    "!!",
    std::string("\0", 1),
    "\t",
    "#1",
    "Smit",
    "Smith",
    "smith",
    "Smith!",
    "Smith!!",
    "Smith!a",
    std::string("smith\0", 6),
    "Smith ",
    "smith !",
    "SMITH John",
    "Smith  john",
    "smith\"",
    "Smith(1)",
    "smith,John",
    "Smith-X",
    "Smith0",
    "SmithA",
    "smithaa",
    "smithB",
    "smithy",
    "smith~",
    "smith\xC3\xA4",  // ä
    "smith\xC3\x96",  // Ö
    "Zo\xC3\xAB",
    "\xC3\x84rne",  // Ärne
    "\xC3\xA4rnf",
    "\xD0\x96",          // Ж
    "\xD0\xB7",          // з
    "\xE6\x97\xA5",      // 日
    "\xFF",              // no text
    "\xF0\x9F\x98\x80",  // an emoji
};

TEST(TheListingOrder, RegardsNoCaseAndHasTheExclamationMarkFirst) {
    for (std::size_t next = 1; next < in_order.size(); ++next)
        EXPECT_LT(listing_key(in_order[next - 1]), listing_key(in_order[next]))
            << in_order[next - 1] << " " << in_order[next];
}

TEST(TheListingOrder, FoldsBlanksInFrontAndInRuns) {
    EXPECT_LT(listing_key("  Smith"), listing_key("smith!"));
    EXPECT_LT(listing_key("a  b"), listing_key("a bb"));
    EXPECT_LT(listing_key("a b"), listing_key("a  bb"));
}

// What is listed from x + "!" on is all that is listed after x.
TEST(AListingBound, OfANameAndAnExclamationMarkIsReachedByAllAfterTheName) {
    for (const std::string& name : in_order) {
        const ListingBound bound(name + "!");
        for (const std::string& other : in_order)
            EXPECT_EQ(bound.is_reached_by(listing_key(other)),
                      listing_key(other) > listing_key(name))
                << name << " " << other;
    }
}

TEST(AListingBound, OfANameAndAnExclamationMarkIsReachedByAllAfterAnyName) {
    std::mt19937 random(4);
    const std::string letters[] = {"a", "A", "b", " ", "!", "-", "\xC3\xA4", "\xC3\x84"};
    std::vector<std::string> names;
    for (int count = 0; count < 300; ++count) {
        std::string& name = names.emplace_back();
        for (unsigned length = random() % 5; length > 0; --length)
            name += letters[random() % std::size(letters)];
    }
    for (const std::string& name : names)
        for (const std::string& other : names)
            EXPECT_EQ(ListingBound(name + "!").is_reached_by(listing_key(other)),
                      listing_key(other) > listing_key(name))
                << "'" << name << "' '" << other << "'";
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

}  // namespace
}  // namespace orvo::directory
