#include "platform/values/date.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "tests/support/raised.h"

namespace orvo {
namespace {

struct DateCase {
    DateParts parts;
    double days;
};

constexpr DateCase cases[] = {
    {{1899, 12, 30, 0, 0, 0}, 0},       {{1899, 12, 30, 6, 0, 0}, 0.25},
    {{1899, 12, 31, 0, 0, 0}, 1},       {{1899, 12, 29, 0, 0, 0}, -1},
    {{1899, 12, 29, 6, 0, 0}, -1.25},   {{1899, 12, 28, 18, 0, 0}, -2.75},
    {{1900, 2, 28, 0, 0, 0}, 60},       {{1900, 3, 1, 0, 0, 0}, 61},
    {{2000, 2, 29, 12, 0, 0}, 36585.5}, {{2003, 1, 2, 13, 14, 15}, 37623.5515625},
    {{100, 1, 1, 0, 0, 0}, -657434},    {{100, 1, 1, 12, 0, 0}, -657434.5},
    {{9999, 12, 31, 0, 0, 0}, 2958465},
};

TEST(Date, PartsAndDaysAreTheSamePointInTime) {
    for (const auto& [parts, days] : cases) {
        EXPECT_EQ(date_from_parts(parts).days, days);
        EXPECT_EQ(parts_of(Date{days}), parts) << days;
    }
}

TEST(Date, EverySecondSurvivesTheRoundTrip) {
    const auto seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto any = [&](int first, int last) {
        return std::uniform_int_distribution<int>(first, last)(random);
    };
    for (int i = 0; i < 20000; ++i) {
        const DateParts parts{any(100, 9999), any(1, 12), any(1, 28),
                              any(0, 23),     any(0, 59), any(0, 59)};
        ASSERT_EQ(parts_of(date_from_parts(parts)), parts)
            << parts.year << "-" << parts.month << "-" << parts.day << " " << parts.hour << ":"
            << parts.minute << ":" << parts.second;
    }
}

TEST(PartsOf, CountsTheFractionForwardWhateverItsSign) {
    EXPECT_EQ(parts_of(Date{-0.25}), (DateParts{1899, 12, 30, 6, 0, 0}));
    EXPECT_EQ(parts_of(Date{-0.0}), (DateParts{1899, 12, 30, 0, 0, 0}));
}

TEST(PartsOf, RoundsToTheSecondAndIntoTheNextDay) {
    constexpr double second = 1.0 / 86400;
    EXPECT_EQ(parts_of(Date{1.4 * second}), (DateParts{1899, 12, 30, 0, 0, 1}));
    EXPECT_EQ(parts_of(Date{1.6 * second}), (DateParts{1899, 12, 30, 0, 0, 2}));
    EXPECT_EQ(parts_of(Date{1 - 0.4 * second}), (DateParts{1899, 12, 31, 0, 0, 0}));
    EXPECT_EQ(parts_of(Date{-2 + 0.4 * second}), (DateParts{1899, 12, 30, 0, 0, 0}));
}

TEST(PartsOf, RaisesOverflowOutsideTheYears100To9999) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double days : {-657435.0, 2958466.0, 2958465.9999999, 1e300, -infinity, infinity,
                              std::numeric_limits<double>::quiet_NaN()}) {
        expect_raises(6, u"Overflow", [=] { parts_of(Date{days}); });
    }
}

TEST(DateFromParts, TakesRealCalendarDaysOnly) {
    const DateParts refused[] = {
        {99, 12, 31},           {10000, 1, 1},
        {2003, 0, 1},           {2003, 13, 1},
        {2003, 1, 0},           {2003, 1, 32},
        {2003, 2, 29},          {1900, 2, 29},
        {2003, 4, 31},          {2003, 1, 1, 24, 0, 0},
        {2003, 1, 1, -1, 0, 0}, {2003, 1, 1, 0, 60, 0},
        {2003, 1, 1, 0, 0, 60}, {2003, 1, 257, 0, 0, 0},
    };
    for (const DateParts& parts : refused) {
        expect_raises(5, u"Invalid procedure call or argument", [&] { date_from_parts(parts); });
    }
    EXPECT_EQ(date_from_parts({2004, 2, 29}).days, 38046);
}

}  // namespace
}  // namespace orvo
