#include "suite/throttle/memory_counters.h"

#include "tests/suite/throttle/counters_test.h"

namespace orvo::throttle {
namespace {

class MemoryCountersTest : public testing::Test {
protected:
    bool guess(const Attempt& attempt) { return end(attempt, Outcome::wrong); }
    bool log_in(const Attempt& attempt) { return end(attempt, Outcome::right); }

    const Limits limits_{{4, 15min}, {100, 36s}, 720h};
    Moment now_ = 1'000'000s;
    MemoryCounters counters_{[this] { return now_; }};

private:
    bool end(const Attempt& attempt, Outcome outcome) {
        const Place place = counters_.reserve(attempt, limits_);
        if (place.room == Room::free) counters_.settle(attempt, place, outcome, limits_);
        return place.room == Room::free;
    }
};

Attempt some_user(int i) {
    return {"name" + std::to_string(i), "2001:db8:0:" + std::to_string(i) + "::/64"};
}

TEST_F(MemoryCountersTest, AreBoundedHoweverManyNamesAreTried) {
    counters_.set_most(100);
    for (int i = 0; i < 10'000; ++i) guess(some_user(i));
    EXPECT_EQ(counters_.user_count(), 100u);
    EXPECT_EQ(counters_.address_count(), 100u);
    for (int i = 0; i < 10'000; ++i) log_in(some_user(i));
    EXPECT_EQ(counters_.user_count(), 100u);
    EXPECT_LE(counters_.address_count(), 100u);
}

TEST_F(MemoryCountersTest, ManyNamesMakeNobodyForgetWhoIsBeingGuessed) {
    counters_.set_most(100);
    guess(jsmith_elsewhere);
    guess({"jsmith", "203.0.113.8"});
    for (int i = 0; i < 10'000; ++i) guess(some_user(i));
    EXPECT_TRUE(guess({"jsmith", "203.0.113.9"}));
    EXPECT_TRUE(guess({"jsmith", "203.0.113.10"}));
    EXPECT_FALSE(guess({"jsmith", "203.0.113.11"}));
}

TEST_F(MemoryCountersTest, ManyNamesMakeNobodyForgetTheAddressesOfUsers) {
    counters_.set_most(100);
    log_in(jsmith_at_home);
    for (int i = 0; i < 10'000; ++i)
        for (int attempt = 0; attempt < 3; ++attempt) guess(some_user(i));
    for (int i = 0; i < 4; ++i) guess(jsmith_elsewhere);
    EXPECT_TRUE(log_in(jsmith_at_home));
}

TEST_F(MemoryCountersTest, ManyUsersLeaveRoomForCounting) {
    counters_.set_most(100);
    for (int i = 0; i < 200; ++i) log_in(some_user(i));
    for (int i = 0; i < 4; ++i) EXPECT_TRUE(guess(jsmith_elsewhere));
    EXPECT_FALSE(guess(jsmith_elsewhere));
}

TEST_F(MemoryCountersTest, WhatIsForgottenTakesNoMemoryForLong) {
    for (int i = 0; i < 1'000; ++i) guess(some_user(i));
    EXPECT_EQ(counters_.user_count(), 1'000u);
    now_ += 16min;
    for (int i = 0; i < 1'000; ++i) guess(some_user(5'000 + i));
    EXPECT_EQ(counters_.user_count(), 1'000u);
    EXPECT_EQ(counters_.address_count(), 1'000u);
}

TEST_F(MemoryCountersTest, ARefusedAttemptTakesNoMemory) {
    for (int i = 0; i < 100; ++i) guess({some_user(i).user, "203.0.113.7"});
    EXPECT_EQ(counters_.user_count(), 100u);
    for (int i = 100; i < 200; ++i) EXPECT_FALSE(guess({some_user(i).user, "203.0.113.7"}));
    EXPECT_EQ(counters_.user_count(), 100u);
}

}  // namespace
}  // namespace orvo::throttle
