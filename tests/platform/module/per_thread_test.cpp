#include "platform/module/per_thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace orvo {
namespace {

std::atomic<int> alive{0};

struct Counted {
    Counted() { ++alive; }
    ~Counted() { --alive; }
    int value = 0;
};

TEST(PerThread, IsTheSameForOneThreadAndAnotherForEachOther) {
    PerThread<Counted> state;
    state.get().value = 1;
    EXPECT_EQ(state.get().value, 1);
    std::thread([&] {
        EXPECT_EQ(state.get().value, 0);
        state.get().value = 2;
    }).join();
    EXPECT_EQ(state.get().value, 1);
}

TEST(PerThread, GoesWithItsThread) {
    PerThread<Counted> state;
    std::thread([&] {
        state.get();
        EXPECT_EQ(alive, 1);
    }).join();
    EXPECT_EQ(alive, 0);
}

TEST(PerThread, GoesWithItsHolder) {
    {
        PerThread<Counted> state;
        EXPECT_EQ(alive, 0);
        state.get();
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(PerThread, TwoOfOneTypeAreNotTheSame) {
    PerThread<Counted> one;
    PerThread<Counted> other;
    one.get().value = 1;
    EXPECT_EQ(other.get().value, 0);
}

}  // namespace
}  // namespace orvo
