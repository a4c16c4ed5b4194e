#include "suite/authfilter/memory_store.h"

#include <gtest/gtest.h>

#include "platform/values/failure.h"
#include "tests/suite/authfilter/store_test.h"

namespace orvo::authfilter {
namespace {

using std::chrono::minutes;
using std::chrono::seconds;

INSTANTIATE_TEST_SUITE_P(InMemory, EveryStore,
                         testing::Values(StoreKind{"Memory",
                                                   [](auto passed) {
                                                       return std::make_unique<MemoryStore>(
                                                           Limits(), [passed] {
                                                               return Clock::time_point(passed());
                                                           });
                                                   }}),
                         [](const auto& info) { return info.param.name; });

class MemoryStoreTest : public testing::Test {
protected:
    void pass(Clock::duration time) { now_ += time; }
    void begin(const Text& guid, const Text& user, bool only_one = false,
               minutes timeout = minutes(10)) {
        store_.begin({guid, user, {2, 7}, only_one, timeout});
    }
    void save(const Text& guid, TextView password) {
        Record record;
        record.user_name = u"smith";
        record.password = Secret(password);
        store_.save(guid, record);
    }

    Clock::time_point now_{};
    MemoryStore store_{Limits{.most = 3, .record_lifetime = minutes(60)}, [this] { return now_; }};
};

TEST_F(MemoryStoreTest, WhatHasEndedIsSweptWithTheFirstChangeAMinuteLater) {
    save(u"a", u"pw");
    begin(u"a", u"smith", false, minutes(10));
    pass(minutes(70));
    EXPECT_EQ(store_.login_count(), 1u);
    save(u"b", u"pw");
    EXPECT_EQ(store_.login_count(), 0u);
    EXPECT_EQ(store_.record_count(), 1u);
}

template <class Action>
Text refusal_of(Action action) {
    try {
        action();
        return u"nothing was raised";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, runtime_error::out_of_memory);
        return failure.description;
    }
}

TEST_F(MemoryStoreTest, AFullStoreRefusesNewOnesAndKeepsThoseItHas) {
    for (const Text guid : {u"a", u"b", u"c"}) begin(guid, u"smith"), save(guid, u"pw");
    EXPECT_EQ(refusal_of([&] { begin(u"d", u"jones"); }),
              u"The authorization filter holds 3 live logins, its most; a new one is refused");
    EXPECT_EQ(refusal_of([&] { save(u"d", u"pw"); }),
              u"The authorization filter holds 3 live records, its most; a new one is refused");
    EXPECT_EQ(refusal_of([&] { store_.try_create(u"d"); }),
              u"The authorization filter holds 3 live records, its most; a new one is refused");
    begin(u"a", u"smith");
    save(u"a", u"new");
    EXPECT_TRUE(store_.ask(u"b", 2));
}

TEST_F(MemoryStoreTest, AFullStoreTakesALoginThatReplacesTheUsersOwn) {
    for (const char16_t* guid : {u"a", u"b", u"c"}) begin(guid, guid);
    begin(u"d", u"a", true);
    EXPECT_TRUE(store_.ask(u"d", 2));
    EXPECT_FALSE(store_.ask(u"a", 2));
}

TEST_F(MemoryStoreTest, AFullStoreMakesRoomByWhatHasEnded) {
    for (const Text guid : {u"a", u"b", u"c"}) begin(guid, u"user " + guid, false, minutes(1));
    pass(minutes(1));
    begin(u"d", u"smith");
    EXPECT_TRUE(store_.ask(u"d", 2));
    EXPECT_EQ(store_.login_count(), 1u);
}

}  // namespace
}  // namespace orvo::authfilter
