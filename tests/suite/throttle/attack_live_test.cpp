// Attacks with many threads on two nodes of a site that count in one store.

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

#include "suite/throttle/fallback_counters.h"
#include "suite/throttle/gate.h"
#include "suite/throttle/memory_counters.h"
#include "suite/throttle/redis_counters.h"
#include "tests/support/store_settings.h"

namespace orvo::throttle {
namespace {

using namespace std::chrono_literals;

const Attempt owner_at_home{"jsmith", "198.51.100.1"};

class AttackTest : public testing::Test {
protected:
    struct Node {
        explicit Node(const RedisServer& server) : shared(store_of(server)) {}

        RedisCounters shared;
        MemoryCounters local;
        FallbackCounters both{shared, local};
        std::atomic<int> delayed = 0, most_delayed = 0;
        Gate gate{both, [this](std::chrono::milliseconds time) {
                      const bool is_delay = time >= 250ms;
                      const int now = delayed += is_delay;
                      if (now > most_delayed) most_delayed = now;
                      std::this_thread::sleep_for(1ms);
                      delayed -= is_delay;
                  }};
    };

    // Whether it was let through.
    bool try_at(Node& node, const Attempt& attempt, Outcome outcome) {
        const auto ticket = node.gate.admit(attempt, settings_);
        if (ticket) node.gate.settle(*ticket, outcome, settings_);
        return ticket.has_value();
    }
    Node& node(int number) { return number % 2 == 0 ? one_ : two_; }

    // Eight threads that guess until the object goes.
    class Attackers {
    public:
        template <class AttemptOf>
        Attackers(AttackTest& test, AttemptOf attempt_of) {
            for (int i = 0; i < 8; ++i)
                threads_.emplace_back([this, &test, attempt_of] {
                    while (!is_over_) {
                        const int number = tries++;
                        asked += test.try_at(test.node(number), attempt_of(number), Outcome::wrong);
                    }
                });
        }
        ~Attackers() {
            is_over_ = true;
            for (std::thread& thread : threads_) thread.join();
        }
        // Until the attackers have got so far, or a minute is over.
        static void wait_for(const std::atomic<int>& count, int least) {
            for (int i = 0; i < 6'000 && count < least; ++i) std::this_thread::sleep_for(10ms);
            ASSERT_GE(count, least);
        }

        std::atomic<int> tries = 0, asked = 0;

    private:
        std::atomic<bool> is_over_ = false;
        std::vector<std::thread> threads_;
    };
    static Attempt from_a_thousand_addresses(int number) {
        number %= 1'000;
        return {"jsmith", "203.0." + std::to_string(number / 250) + "." + std::to_string(number)};
    }
    static Attempt at_a_thousand_users(int number) {
        return {"user" + std::to_string(number % 1'000), "203.0.113.7"};
    }

    RedisServer server_{{.keeps_its_data = true}};
    // Nothing is forgotten while a test runs.
    const Settings settings_{.is_on = true, .window = std::chrono::hours(24)};
    Node one_{server_}, two_{server_};
};

TEST_F(AttackTest, AThousandAddressesAtOneUserLockOutThemselvesAndNotTheUser) {
    ASSERT_TRUE(try_at(one_, owner_at_home, Outcome::right));
    Attackers attackers(*this, from_a_thousand_addresses);
    for (int i = 0; attackers.tries < 4'000; ++i)
        ASSERT_TRUE(try_at(node(i), owner_at_home, Outcome::right)) << i;
    EXPECT_EQ(attackers.asked, settings_.attempts);
    EXPECT_FALSE(try_at(one_, {"jsmith", "192.0.2.1"}, Outcome::right)) << "where nobody knows him";
    EXPECT_TRUE(try_at(one_, {"djansen", "192.0.2.1"}, Outcome::right));
    for (const Node* node : {&one_, &two_}) EXPECT_LE(node->most_delayed, settings_.most_waiting);
}

TEST_F(AttackTest, OneAddressAtAThousandUsersLocksOutItselfAndNotTheUsers) {
    const Attempt colleague{"colleague", "203.0.113.7"};
    ASSERT_TRUE(try_at(one_, colleague, Outcome::right));
    Attackers attackers(*this, at_a_thousand_users);
    Attackers::wait_for(attackers.tries, 4'000);
    EXPECT_TRUE(try_at(two_, colleague, Outcome::right)) << "who has logged in from there before";
    EXPECT_TRUE(try_at(two_, {"user501", "192.0.2.1"}, Outcome::right));
    EXPECT_FALSE(try_at(two_, {"user501", "203.0.113.7"}, Outcome::right));
    EXPECT_EQ(attackers.asked, settings_.attempts_of_address);
}

// Each node counts for itself then, and what was counted before is there when the store is.
TEST_F(AttackTest, WhileTheStoreIsAwayEachNodeLetsNoMoreThroughThanThereMayBe) {
    Attackers attackers(*this, from_a_thousand_addresses);
    Attackers::wait_for(attackers.asked, settings_.attempts);
    server_.stop();
    Attackers::wait_for(attackers.asked, 3 * settings_.attempts);
    Attackers::wait_for(attackers.tries, attackers.tries + 1'000);
    server_.start();
    Attackers::wait_for(attackers.tries, attackers.tries + 4'000);
    EXPECT_EQ(attackers.asked, 3 * settings_.attempts);
    const auto state = one_.shared.state({"jsmith", ""}, limits_of(settings_));
    EXPECT_EQ(state.front().wrong, settings_.attempts);
}

}  // namespace
}  // namespace orvo::throttle
