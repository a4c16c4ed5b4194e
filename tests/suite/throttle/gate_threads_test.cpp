// The gate under many threads at once.

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <thread>
#include <vector>

#include "suite/throttle/gate.h"
#include "suite/throttle/memory_counters.h"

namespace orvo::throttle {
namespace {

constexpr int thread_count = 16;

class GateThreads : public testing::Test {
protected:
    static void on_all_threads(const std::function<void(int)>& work) {
        std::barrier begin(thread_count);
        std::vector<std::thread> threads;
        for (int i = 0; i < thread_count; ++i)
            threads.emplace_back([&, i] {
                begin.arrive_and_wait();
                work(i);
            });
        for (std::thread& thread : threads) thread.join();
    }

    Settings settings_{.is_on = true, .attempts = 5};
    MemoryCounters counters_;
    Gate gate_{counters_, [](std::chrono::milliseconds) { std::this_thread::yield(); }};
};

TEST_F(GateThreads, ABurstOfGuessesGetsNoMoreThanThereMayBe) {
    for (int round = 0; round < 200; ++round) {
        const std::string user = "user" + std::to_string(round);
        std::atomic<int> asked = 0;
        on_all_threads([&](int i) {
            const auto ticket = gate_.admit({user, "203.0.113." + std::to_string(i)}, settings_);
            if (!ticket) return;
            ++asked;
            std::this_thread::yield();
            gate_.settle(*ticket, Outcome::wrong, settings_);
        });
        ASSERT_EQ(asked, settings_.attempts) << round;
    }
}

TEST_F(GateThreads, ABurstOfLoginsIsLetThroughWhole) {
    for (int round = 0; round < 200; ++round) {
        const std::string user = "user" + std::to_string(round);
        std::atomic<int> admitted = 0;
        on_all_threads([&](int) {
            const auto ticket = gate_.admit({user, "203.0.113.7"}, settings_);
            if (!ticket) return;
            ++admitted;
            gate_.settle(*ticket, Outcome::right, settings_);
        });
        ASSERT_EQ(admitted, thread_count) << round;
    }
}

TEST_F(GateThreads, NothingIsLostOfWhatIsCounted) {
    settings_.attempts = 10'000;
    settings_.attempts_of_address = 1'000'000;
    settings_.undelayed = 10'000;
    on_all_threads([&](int i) {
        for (int n = 0; n < 500; ++n) {
            const auto ticket = gate_.admit({"jsmith", "203.0.113.7"}, settings_);
            ASSERT_TRUE(ticket);
            gate_.settle(*ticket, i % 2 == 0 ? Outcome::wrong : Outcome::none, settings_);
            counters_.state({"jsmith", "203.0.113.7"}, limits_of(settings_));
        }
    });
    const auto state = counters_.state({"jsmith", "203.0.113.7"}, limits_of(settings_));
    EXPECT_EQ(gate_.figures().wrong, 500u * thread_count / 2);
    EXPECT_GT(state[0].wrong, 0);
}

}  // namespace
}  // namespace orvo::throttle
