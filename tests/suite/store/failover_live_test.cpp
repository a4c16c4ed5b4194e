// Which server is used of several, and what happens when it is another one.

#include <gmock/gmock.h>

#include "suite/store/redis.h"
#include "suite/store/store_error.h"
#include "tests/suite/store/waiting.h"
#include "tests/support/raised.h"
#include "tests/support/store_settings.h"

namespace orvo::store {
namespace {

using testing::HasSubstr;

struct StoreWithAReplica : testing::Test {
    RedisServer first{RedisOptions{.password = "secret"}};
    RedisServer second{RedisOptions{.password = "secret", .replica_of = &first}};

    // The replica stands in front.
    Settings list() const {
        return store_settings(first, "redis://" + second.address() + "," + first.address());
    }
};

TEST_F(StoreWithAReplica, OfAListTheMasterIsUsed) {
    Redis redis(list());
    redis.run({"SET", "a", "1"});
    EXPECT_EQ(first.ask({"GET", "a"}), "1");
    EXPECT_EQ(redis.counts().failovers, 0u);
}

TEST_F(StoreWithAReplica, WithoutAMasterTheFailureTellsWhatThereIsAgainstEach) {
    first.kill();
    Redis redis(list());
    EXPECT_EQ(to_utf8(raised_by([&] { redis.run({"PING"}); }).description),
              "The store redis://" + second.address() + "," + first.address() +
                  " cannot be used (" + second.address() + ": it is no master; " + first.address() +
                  ": Connection refused)");
}

TEST_F(StoreWithAReplica, AReplicaThatIsPromotedTakesOver) {
    Redis redis(list());
    redis.run({"SET", "a", "1"});
    ASSERT_TRUE(wait_until([&] { return second.ask({"GET", "a"}) == "1"; }));
    first.kill();
    EXPECT_TRUE(is_unreachable(raised_by([&] { redis.run({"GET", "a"}); })));
    second.promote();
    EXPECT_TRUE(wait_until([&] { return redis.is_reachable(); }));
    EXPECT_EQ(redis.run({"GET", "a"}).text(), "1");
    EXPECT_EQ(redis.counts().failovers, 1u);
}

TEST_F(StoreWithAReplica, AFrozenMasterDoesNotHideItsSuccessor) {
    Redis redis(list());
    redis.run({"SET", "a", "1"});
    ASSERT_TRUE(wait_until([&] { return second.ask({"GET", "a"}) == "1"; }));
    first.freeze();
    second.promote();
    EXPECT_TRUE(is_unreachable(raised_by([&] { redis.run({"GET", "a"}); })));
    EXPECT_TRUE(wait_until([&] { return redis.is_reachable(); }));
    EXPECT_EQ(redis.run({"GET", "a"}).text(), "1");
}

TEST_F(StoreWithAReplica, WhatAFormerMasterRefusesIsDoneByTheNewOne) {
    Redis redis(list());
    redis.run({"SET", "n", "0"});
    ASSERT_TRUE(wait_until([&] { return second.ask({"GET", "n"}) == "0"; }));
    second.promote();
    first.follow(second);
    EXPECT_EQ(redis.run({"INCR", "n"}).integer(), 1);
    EXPECT_EQ(second.ask({"GET", "n"}), "1");
    EXPECT_EQ(redis.counts().failovers, 1u);
    EXPECT_EQ(redis.counts().failures, 0u);
}

TEST_F(StoreWithAReplica, SentinelTellsWhereTheMasterIsAndWhoTakesItsPlace) {
    RedisSentinel sentinel(first);
    ASSERT_TRUE(wait_until([&] { return sentinel.replicas() == 1; }, 30));
    Redis redis(
        store_settings(first, "redis://127.0.0.1:1," + sentinel.address(), "StoreSentinel=shop\n"));
    redis.run({"SET", "a", "1"});
    EXPECT_EQ(first.ask({"GET", "a"}), "1");
    ASSERT_TRUE(wait_until([&] { return second.ask({"GET", "a"}) == "1"; }));
    first.kill();
    EXPECT_TRUE(is_unreachable(raised_by([&] { redis.run({"GET", "a"}); })));
    ASSERT_TRUE(wait_until([&] { return redis.is_reachable(); }, 30));
    EXPECT_EQ(redis.run({"GET", "a"}).text(), "1");
    EXPECT_EQ(sentinel.master(), second.address());
    EXPECT_EQ(redis.counts().failovers, 1u);
}

TEST_F(StoreWithAReplica, ASentinelThatKnowsNoSuchMasterIsOfNoUse) {
    RedisSentinel sentinel(first);
    Redis redis(store_settings(first, "redis://" + sentinel.address(), "StoreSentinel=other\n"));
    EXPECT_THAT(to_utf8(raised_by([&] { redis.run({"PING"}); }).description),
                HasSubstr("(it knows no master \"other\")"));
}

}  // namespace
}  // namespace orvo::store
