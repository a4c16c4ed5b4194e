// Counting in a shared Redis: what stands there, and several processes at once.

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

#include "suite/throttle/fallback_counters.h"
#include "suite/throttle/gate.h"
#include "suite/throttle/memory_counters.h"
#include "suite/throttle/redis_counters.h"
#include "tests/suite/throttle/counters_test.h"
#include "tests/support/child_process.h"
#include "tests/support/environment.h"
#include "tests/support/store_settings.h"

namespace orvo::throttle {
namespace {

using testing::AllOf;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::Not;

class RedisCountersTest : public testing::Test {
protected:
    // As another process has them.
    std::unique_ptr<RedisCounters> counters() {
        return std::make_unique<RedisCounters>(store_of(server_));
    }
    bool try_with(Counters& counters, const Attempt& attempt, Outcome outcome) {
        const Place place = counters.reserve(attempt, limits_);
        if (place.room == Room::free) counters.settle(attempt, place, outcome, limits_);
        return place.room == Room::free;
    }
    std::string keys() { return server_.ask({"KEYS", "*"}); }
    long long seconds_left(const std::string& keys_pattern) {
        std::string key = server_.ask({"KEYS", keys_pattern});
        key = key.substr(0, key.find('\n'));
        return std::stoll(server_.ask({"TTL", key}));
    }

    const Limits limits_{{3, 20min}, {5, 12min}, 720h};
    RedisServer server_;
};

TEST_F(RedisCountersTest, EveryKeyHasAnEnd) {
    const auto counters = this->counters();
    try_with(*counters, jsmith_elsewhere, Outcome::wrong);
    EXPECT_THAT(seconds_left("orvo:throttle:user:*"), AllOf(Ge(19 * 60), Le(20 * 60)));
    EXPECT_THAT(seconds_left("orvo:throttle:address:*"), AllOf(Ge(11 * 60), Le(12 * 60)));
    try_with(*counters, jsmith_elsewhere, Outcome::right);
    EXPECT_THAT(seconds_left("orvo:throttle:user:*"), AllOf(Ge(719 * 3600), Le(720 * 3600)));
    server_.ask({"FLUSHALL"});
    counters->reserve(jsmith_elsewhere, limits_);
    EXPECT_THAT(seconds_left("orvo:throttle:user:*"), AllOf(Ge(100), Le(120)));
    EXPECT_THAT(seconds_left("orvo:throttle:address:*"), AllOf(Ge(100), Le(120)));
}

TEST_F(RedisCountersTest, NothingIsKeptOfWhatDoesNotCount) {
    const auto counters = this->counters();
    try_with(*counters, jsmith_elsewhere, Outcome::none);
    try_with(*counters, jsmith_in_program, Outcome::none);
    EXPECT_THAT(keys(), IsEmpty());
}

TEST_F(RedisCountersTest, NeitherNamesNorAddressesStandThere) {
    const auto counters = this->counters();
    try_with(*counters, jsmith_at_home, Outcome::right);
    try_with(*counters, jsmith_elsewhere, Outcome::wrong);
    const std::string dump = server_.dump();
    EXPECT_THAT(dump, HasSubstr("orvo:throttle:user:"));
    for (const std::string& plain :
         {jsmith_at_home.user, jsmith_at_home.address, jsmith_elsewhere.address}) {
        EXPECT_THAT(dump, Not(HasSubstr(plain)));
        EXPECT_THAT(dump, Not(HasSubstr(store::Keyring::name_of(plain)))) << "which anybody makes";
    }
}

TEST_F(RedisCountersTest, ABurstFromSeveralProcessesGetsNoMoreThanThereMayBe) {
    constexpr int process_count = 3, threads_of_process = 4;
    const Settings settings{.is_on = true, .attempts = 5};
    std::vector<std::unique_ptr<RedisCounters>> stores;
    for (int i = 0; i < process_count; ++i) stores.push_back(counters());
    for (int round = 0; round < 10; ++round) {
        const std::string user = "user" + std::to_string(round);
        std::atomic<int> asked = 0;
        std::vector<std::thread> threads;
        for (int i = 0; i < process_count * threads_of_process; ++i)
            threads.emplace_back([&, i] {
                Gate gate(*stores[static_cast<std::size_t>(i % process_count)],
                          [](std::chrono::milliseconds) { std::this_thread::yield(); });
                const auto ticket = gate.admit({user, "203.0.113." + std::to_string(i)}, settings);
                if (!ticket) return;
                ++asked;
                gate.settle(*ticket, Outcome::wrong, settings);
            });
        for (std::thread& thread : threads) thread.join();
        ASSERT_EQ(asked, settings.attempts) << round;
    }
}

TEST_F(RedisCountersTest, WhileItIsAwayAProcessCountsForItself) {
    const auto shared = counters();
    MemoryCounters local;
    FallbackCounters both(*shared, local);
    EXPECT_TRUE(try_with(both, jsmith_elsewhere, Outcome::wrong));
    const Place under_way = both.reserve(jsmith_elsewhere, limits_);
    server_.stop();
    both.settle(jsmith_elsewhere, under_way, Outcome::wrong, limits_);
    EXPECT_TRUE(try_with(both, jsmith_elsewhere, Outcome::wrong));
    EXPECT_TRUE(try_with(both, jsmith_elsewhere, Outcome::wrong));
    EXPECT_FALSE(try_with(both, jsmith_elsewhere, Outcome::wrong));
    EXPECT_EQ(both.state(jsmith_elsewhere, limits_)[0].wrong, 3);
    EXPECT_THROW(both.clear("jsmith"), Failure) << "nobody is told that all is forgotten";
    server_.start();
    for (int i = 0; i < 300 && both.state(jsmith_elsewhere, limits_)[0].wrong != 0; ++i)
        std::this_thread::sleep_for(10ms);
    EXPECT_EQ(both.state(jsmith_elsewhere, limits_)[0].wrong, 0) << "which came back empty";
    EXPECT_TRUE(try_with(both, jsmith_elsewhere, Outcome::wrong));
}

// The component itself, as two programs of one site have it.
TEST_F(RedisCountersTest, TwoProgramsOfASiteCountTogether) {
    const TempFolder folder;
    folder.write("site.ini",
                 "[THROTTLE]\nOn=yes\nAttempts=5\nLongestDelay=0\n\n" + server_.site_section());
    const auto script = folder.write("guess.js", R"(
var admitted = 0;
for (var i = 0; i < 20; i++) {
    var throttle = new ActiveXObject("OrvoSuite.Throttle");
    if (!throttle.Admit("cn=jsmith,ou=Users,o=Shop")) continue;
    admitted++;
    throttle.Settle(-1);
}
WScript.Echo(admitted);
)");
    const Environment components("ORVO_COMPONENTS", folder.path().string());
    const Environment site("ORVO_SITE_CONFIG", (folder.path() / "site.ini").string());
    const Environment log("ORVO_LOG_FILE", (folder.path() / "orvo.log").string());
    const std::string bin = ORVO_BIN;
    output_of({bin + "/orvo-register", bin + "/OrvoSuite.so", bin + "/OrvoPlatform.so"});
    ChildProcess one({bin + "/orvo-script", script.string()}, folder.path() / "one");
    ChildProcess two({bin + "/orvo-script", script.string()}, folder.path() / "two");
    EXPECT_EQ(one.wait(), 0) << content_of(folder.path() / "one");
    EXPECT_EQ(two.wait(), 0) << content_of(folder.path() / "two");
    EXPECT_EQ(
        std::stoi(content_of(folder.path() / "one")) + std::stoi(content_of(folder.path() / "two")),
        5);
}

}  // namespace
}  // namespace orvo::throttle
