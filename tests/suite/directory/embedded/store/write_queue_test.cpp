#include "suite/directory/embedded/store/write_queue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace orvo::directory::embedded {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds long_time{60};

TEST(TheWriteQueue, LetsOneInAtATime) {
    WriteQueue queue;
    int inside = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] {
            for (int turn = 0; turn < 50; ++turn) {
                ASSERT_TRUE(queue.acquire(Clock::now() + long_time));
                EXPECT_EQ(++inside, 1);
                --inside;
                queue.release();
            }
        });
    for (std::thread& thread : threads) thread.join();
}

TEST(TheWriteQueue, GoesByTheOrderOfComing) {
    WriteQueue queue;
    ASSERT_TRUE(queue.acquire(Clock::now()));
    std::vector<int> order;
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < 5; ++i) {
        threads.emplace_back([&, i] {
            ASSERT_TRUE(queue.acquire(Clock::now() + long_time));
            order.push_back(static_cast<int>(i));
            queue.release();
        });
        while (queue.waiting() != i + 1) std::this_thread::yield();
    }
    queue.release();
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST(TheWriteQueue, LetsNobodyInBeforeThoseWhoWait) {
    WriteQueue queue;
    ASSERT_TRUE(queue.acquire(Clock::now()));
    std::atomic<bool> may_end = false;
    std::thread waiting([&] {
        ASSERT_TRUE(queue.acquire(Clock::now() + long_time));
        while (!may_end) std::this_thread::yield();
        queue.release();
    });
    while (queue.waiting() != 1) std::this_thread::yield();
    queue.release();
    EXPECT_FALSE(queue.acquire(Clock::now()));
    may_end = true;
    waiting.join();
}

TEST(TheWriteQueue, AWriterThatGivesUpHoldsNobodyUp) {
    WriteQueue queue;
    ASSERT_TRUE(queue.acquire(Clock::now()));
    EXPECT_FALSE(queue.acquire(Clock::now()));
    std::thread late([&] { EXPECT_TRUE(queue.acquire(Clock::now() + long_time)); });
    while (queue.waiting() != 1) std::this_thread::yield();
    EXPECT_FALSE(queue.acquire(Clock::now()));
    queue.release();
    late.join();
    queue.release();
    EXPECT_TRUE(queue.acquire(Clock::now()));
}

}  // namespace
}  // namespace orvo::directory::embedded
