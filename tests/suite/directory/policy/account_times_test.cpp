#include "suite/directory/policy/account_times.h"

#include <gtest/gtest.h>

namespace orvo::directory {
namespace {

using namespace std::chrono;
using namespace std::chrono_literals;

constexpr sys_days day = 2026y / January / 31;

TEST(ATimeOfAnAccount, IsWrittenInUtc) {
    const Moment moment = day + 23h + 5min + 9s + 42us;
    EXPECT_EQ(time_in_seconds(moment), "20260131230509Z");
    EXPECT_EQ(time_in_microseconds(moment), "20260131230509.000042Z");
    EXPECT_EQ(time_in_seconds(sys_days(1969y / December / 31) + 1us), "19691231000000Z");
}

TEST(ATimeOfAnAccount, IsReadToTheSecond) {
    EXPECT_EQ(try_seconds("20260131230509Z"), day + 23h + 5min + 9s);
    EXPECT_EQ(try_seconds("20260131230509.900000Z"), day + 23h + 5min + 9s);
    EXPECT_EQ(try_seconds("202601312305Z"), day + 23h + 5min);
    EXPECT_EQ(try_seconds("20260201000509+0100"), day + 23h + 5min + 9s);
    EXPECT_EQ(try_seconds("19691231000000Z"), sys_days(1969y / December / 31));
    EXPECT_EQ(try_seconds("18500101000001Z"), sys_days(1850y / January / 1) + 1s);
}

TEST(ATimeOfAnAccount, IsReadAsItIsWritten) {
    for (seconds second = 0s; second < 100'000s; second += 7s)
        ASSERT_EQ(try_seconds(time_in_seconds(day + second)), day + second) << second.count();
}

TEST(ATimeOfAnAccount, MayNotBeReadable) {
    for (const char* text : {"", "000001010000Z", "yesterday", "20261301000000Z"})
        EXPECT_EQ(try_seconds(text), std::nullopt) << text;
}

}  // namespace
}  // namespace orvo::directory
