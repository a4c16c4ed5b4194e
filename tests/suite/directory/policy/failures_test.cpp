#include "suite/directory/policy/failures.h"

#include <gtest/gtest.h>

namespace orvo::directory {
namespace {

TEST(AQuotedName, IsCutBetweenCharacters) {
    EXPECT_EQ(quoted_name("cn=a"), "'cn=a'");
    EXPECT_EQ(quoted_name(std::string(200, 'a')), "'" + std::string(200, 'a') + "'");
    EXPECT_EQ(quoted_name(std::string(201, 'a')), "'" + std::string(200, 'a') + "...'");
    const std::string emoji = "\xF0\x9F\x98\x80";
    for (std::size_t before = 197; before < 200; ++before)
        EXPECT_EQ(quoted_name(std::string(before, 'a') + emoji),
                  "'" + std::string(before, 'a') + "...'");
}

TEST(AQuotedName, ThatIsNoTextIsCutAsWell) {
    EXPECT_EQ(quoted_name(std::string(300, '\x80')), "'" + std::string(196, '\x80') + "...'");
}

}  // namespace
}  // namespace orvo::directory
