#include "suite/directory/schema/generalized_time.h"

#include <gtest/gtest.h>

#include "platform/values/failure.h"

namespace orvo::directory {
namespace {

struct Accepted {
    const char* text;
    DateParts parts;
};

class AcceptedTime : public testing::TestWithParam<Accepted> {};

TEST_P(AcceptedTime, IsADateInUtc) {
    const auto date = try_date(GetParam().text);
    ASSERT_TRUE(date) << GetParam().text;
    EXPECT_EQ(parts_of(*date), GetParam().parts) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(All, AcceptedTime,
                         testing::Values(Accepted{"20240229123456Z", {2024, 2, 29, 12, 34, 56}},
                                         Accepted{"202402291234Z", {2024, 2, 29, 12, 34, 0}},
                                         Accepted{"2024022912Z", {2024, 2, 29, 12, 0, 0}},
                                         Accepted{"2024022912.5Z", {2024, 2, 29, 12, 30, 0}},
                                         Accepted{"202402291234,25Z", {2024, 2, 29, 12, 34, 15}},
                                         Accepted{"20240229123456.75Z", {2024, 2, 29, 12, 34, 57}},
                                         Accepted{"20240301003000+0100", {2024, 2, 29, 23, 30, 0}},
                                         Accepted{"20240229233000-01", {2024, 3, 1, 0, 30, 0}},
                                         Accepted{"20161231235960Z", {2016, 12, 31, 23, 59, 59}},
                                         Accepted{"18991230060000Z", {1899, 12, 30, 6, 0, 0}},
                                         Accepted{"18991229060000+0600", {1899, 12, 29, 0, 0, 0}},
                                         Accepted{"18991230003000+0100", {1899, 12, 29, 23, 30, 0}},
                                         Accepted{"01000101000000Z", {100, 1, 1, 0, 0, 0}},
                                         Accepted{"99991231235959Z", {9999, 12, 31, 23, 59, 59}}));

class RefusedTime : public testing::TestWithParam<const char*> {};

TEST_P(RefusedTime, IsNoDate) { EXPECT_FALSE(try_date(GetParam())) << GetParam(); }

INSTANTIATE_TEST_SUITE_P(All, RefusedTime,
                         testing::Values("", "2024", "20240229", "20240229123456",
                                         "20230229123456Z", "20241329123456Z", "20240029123456Z",
                                         "20240132123456Z", "20240229243456Z", "20240229126056Z",
                                         "20240229123461Z", "20240229123456.Z", "20240229123456+",
                                         "20240229123456+1", "20240229123456+2400",
                                         "20240229123456Zx", "2024022912345Z", "00990101000000Z",
                                         "01000101000000+0100", "99991231235959-0100", "1/2/2024"));

TEST(GeneralizedTime, IsWrittenInUtcToTheSecond) {
    EXPECT_EQ(generalized_time(date_from_parts({2024, 2, 29, 12, 34, 56})), "20240229123456Z");
    EXPECT_EQ(generalized_time(date_from_parts({1899, 12, 29, 6, 0, 0})), "18991229060000Z");
    EXPECT_EQ(generalized_time(date_from_parts({100, 1, 1, 0, 0, 0})), "01000101000000Z");
}

TEST(GeneralizedTime, IsWrittenWithAFractionForServersThatWantOne) {
    EXPECT_EQ(generalized_time(date_from_parts({2024, 2, 29, 12, 34, 56}), TimeForm::with_fraction),
              "20240229123456.0Z");
}

TEST(GeneralizedTime, OfADateOutOfRangeOverflows) {
    try {
        generalized_time(Date{3000000});
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, 6);
    }
}

}  // namespace
}  // namespace orvo::directory
