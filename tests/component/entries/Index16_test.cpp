#include "component/common/Index16.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/raised.h"

namespace orvo {
namespace {

struct Walk {
    std::vector<std::int32_t> seen;
    auto visit(std::int32_t stop_at = -100000) {
        return [this, stop_at](std::int32_t index) {
            seen.push_back(index);
            return index == stop_at;
        };
    }
};

TEST(Index16, VisitsEveryIndexFromLowerToUpper) {
    Walk walk;
    EXPECT_FALSE(any_index16(-1, 2, walk.visit()));
    EXPECT_EQ(walk.seen, (std::vector<std::int32_t>{-1, 0, 1, 2}));
}

TEST(Index16, StopsAtTheFirstIndexThatAnswersTrue) {
    Walk walk;
    EXPECT_TRUE(any_index16(0, 5, walk.visit(2)));
    EXPECT_EQ(walk.seen, (std::vector<std::int32_t>{0, 1, 2}));
}

TEST(Index16, VisitsNothingWhereTheUpperBoundIsBelowTheLower) {
    Walk walk;
    EXPECT_FALSE(any_index16(0, -1, walk.visit()));
    EXPECT_FALSE(any_index16(32767, 32766, walk.visit()));
    EXPECT_TRUE(walk.seen.empty());
}

TEST(Index16, ReachesTheLastIndexButOneWithoutOverflow) {
    Walk walk;
    EXPECT_FALSE(any_index16(32765, 32766, walk.visit()));
    EXPECT_EQ(walk.seen, (std::vector<std::int32_t>{32765, 32766}));
}

TEST(Index16, OverflowsAfterIndex32767WhichIsVisited) {
    Walk walk;
    expect_failure(raised_by([&] { any_index16(32766, 32767, walk.visit()); }), 6, u"", "Overflow");
    EXPECT_EQ(walk.seen, (std::vector<std::int32_t>{32766, 32767}));
}

TEST(Index16, AStopAtIndex32767IsInTime) {
    Walk walk;
    EXPECT_TRUE(any_index16(32766, 32767, walk.visit(32767)));
}

TEST(Index16, BoundsThatSixteenBitsDoNotHoldOverflowBeforeTheFirstVisit) {
    const std::pair<std::int32_t, std::int32_t> bounds[] = {
        {0, 32768}, {32768, 32768}, {-32769, 0}, {40000, 39999}, {0, -32769}};
    for (const auto& [lower, upper] : bounds) {
        SCOPED_TRACE(std::to_string(lower) + " to " + std::to_string(upper));
        Walk walk;
        expect_failure(raised_by([&] { any_index16(lower, upper, walk.visit(0)); }), 6, u"",
                       "Overflow");
        EXPECT_TRUE(walk.seen.empty());
    }
}

TEST(Index16, CountsFromTheLowestIndex) {
    Walk walk;
    EXPECT_TRUE(any_index16(-32768, 0, walk.visit(-32767)));
    EXPECT_EQ(walk.seen, (std::vector<std::int32_t>{-32768, -32767}));
}

}  // namespace
}  // namespace orvo
