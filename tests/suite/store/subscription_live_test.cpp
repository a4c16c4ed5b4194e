#include "suite/store/subscription.h"

#include <gmock/gmock.h>

#include <atomic>
#include <mutex>

#include "tests/suite/store/waiting.h"
#include "tests/support/store_settings.h"

namespace orvo::store {
namespace {

using testing::ElementsAre;

struct Listening : testing::Test {
    RedisServer server;
    std::shared_ptr<Redis> redis = std::make_shared<Redis>(store_settings(server));
    std::mutex mutex;
    std::vector<std::string> heard;
    std::atomic<int> gaps = 0;
    Subscription subscription{redis, redis->key("ended"),
                              [this](std::string_view message) {
                                  const std::lock_guard lock(mutex);
                                  heard.emplace_back(message);
                              },
                              [this] { ++gaps; }};

    std::vector<std::string> messages() {
        const std::lock_guard lock(mutex);
        return heard;
    }
    // One that the server passes on.
    void publish(const std::string& message) {
        EXPECT_EQ(server.ask({"PUBLISH", "orvo:ended", message}), "1");
    }
    void SetUp() override {
        ASSERT_TRUE(wait_until([&] { return subscription.is_listening() && gaps == 1; }));
    }
};

TEST_F(Listening, HearsWhatIsPublishedOnItsChannelAlone) {
    publish("one");
    server.ask({"PUBLISH", "orvo:other", "lost"});
    redis->run({"PUBLISH", "orvo:ended", "two"});
    ASSERT_TRUE(wait_until([&] { return messages().size() == 2; }));
    EXPECT_THAT(messages(), ElementsAre("one", "two"));
    EXPECT_EQ(gaps, 1);
}

TEST_F(Listening, ABrokenConnectionIsAGapAndItsEndIsAnother) {
    server.ask({"CLIENT", "KILL", "TYPE", "pubsub"});
    ASSERT_TRUE(wait_until([&] { return gaps == 3; }));
    ASSERT_TRUE(wait_until([&] { return subscription.is_listening(); }));
    publish("again");
    EXPECT_TRUE(wait_until([&] { return messages().size() == 1; }));
}

TEST_F(Listening, AServerThatFallsSilentIsNoticed) {
    server.freeze();
    ASSERT_TRUE(wait_until([&] { return gaps == 2; }));
    EXPECT_FALSE(subscription.is_listening());
    server.go_on();
    ASSERT_TRUE(wait_until([&] { return gaps == 3; }));
    publish("again");
    EXPECT_TRUE(wait_until([&] { return messages().size() == 1; }));
}

TEST_F(Listening, GoesOnWhereNothingHappensForLong) {
    // Longer than the server is left alone.
    const auto pings = [&] { return server.ask({"INFO", "commandstats"}).find("cmdstat_ping:"); };
    server.ask({"CONFIG", "RESETSTAT"});
    ASSERT_TRUE(wait_until([&] { return pings() != std::string::npos; }));
    EXPECT_TRUE(subscription.is_listening());
    publish("still there");
    EXPECT_TRUE(wait_until([&] { return messages().size() == 1; }));
    EXPECT_EQ(gaps, 1);
}

TEST_F(Listening, EndsWhileTheServerIsAway) {
    server.kill();
    ASSERT_TRUE(wait_until([&] { return gaps == 2; }));
}

TEST(Subscription, BeginsWhenTheServerComes) {
    RedisServer server;
    server.kill();
    std::atomic<int> gaps = 0;
    const Subscription subscription(
        std::make_shared<Redis>(store_settings(server)), "c", [](std::string_view) {},
        [&] { ++gaps; });
    EXPECT_FALSE(subscription.is_listening());
    server.start();
    EXPECT_TRUE(wait_until([&] { return subscription.is_listening(); }));
    EXPECT_TRUE(wait_until([&] { return gaps == 1; }));
}

}  // namespace
}  // namespace orvo::store
