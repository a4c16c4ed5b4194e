// Machines of a site that share their application.

#include "host/web/sessions/redis_application.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/interfaces/hosted.h"
#include "platform/objects/context/app_server.h"
#include "platform/values/failure.h"
#include "platform/values/values.h"
#include "tests/host/web/shared_site.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;
using Holder = ApplicationState::Holder;

class SharedApplication : public testing::Test {
protected:
    // Whether it comes to be so; copies are a second old at most.
    static bool seen(const std::function<bool()>& holds) {
        const auto end = std::chrono::steady_clock::now() + 10s;
        while (!holds() && std::chrono::steady_clock::now() < end) std::this_thread::sleep_for(1ms);
        return holds();
    }

    RedisServer server_;
    std::unique_ptr<SharedStore> one_ = machine_of(server_), two_ = machine_of(server_);
    RedisApplication first_{*one_}, second_{*two_};
};

TEST_F(SharedApplication, IsReadFromACopyThatOthersWritingEnds) {
    Holder one(first_, 1s), two(second_, 1s);
    EXPECT_TRUE(two.get(u"n").is_empty());
    one.put(u"n", 1);
    EXPECT_EQ(one.get(u"N"), Variant(1)) << "who writes sees it at once";
    EXPECT_TRUE(seen([&] { return two.get(u"n") == Variant(1); }));
    const auto before = two_->redis()->counts().commands;
    for (int i = 0; i < 100; ++i) two.get(u"n");
    EXPECT_LE(two_->redis()->counts().commands - before, 2u);
    one.put(u"a", u"first");
    two.put(u"n", 2);
    EXPECT_TRUE(seen([&] {
        return two.snapshot().names() == std::vector<Text>{u"n", u"a"};
    })) << "in the order in which they came";
    two.remove(u"N");
    EXPECT_TRUE(seen([&] { return one.get(u"n").is_empty(); }));
    two.remove_all();
    EXPECT_TRUE(seen([&] { return one.snapshot().count() == 0; }));
}

TEST_F(SharedApplication, IsToldToOtherMachinesWhenItChanges) {
    RedisApplication third(*two_, 1h);
    Holder one(first_, 1s), other(third, 1s);
    for (int i = 1; i < 4; ++i) {
        one.put(u"n", i);
        EXPECT_TRUE(seen([&] { return other.get(u"n") == Variant(i); })) << i;
    }
}

TEST_F(SharedApplication, IsLockedForAllMachines) {
    Holder one(first_, 50ms), two(second_, 50ms);
    one.lock();
    one.lock();
    one.put(u"n", 1);
    EXPECT_THROW(two.put(u"n", 2), Failure);
    EXPECT_THROW(two.lock(), Failure);
    two.unlock();
    EXPECT_THROW(two.lock(), Failure) << "only who locked it unlocks it";
    one.unlock();
    two.lock();
    EXPECT_EQ(two.get(u"n"), Variant(1));
}

TEST_F(SharedApplication, CountsRightUnderThreadsThatLockItOnSeveralMachines) {
    constexpr int threads = 4, rounds = 50;
    std::vector<std::thread> all;
    for (int i = 0; i < threads; ++i)
        all.emplace_back([&, &state = i % 2 ? first_ : second_] {
            for (int round = 0; round < rounds; ++round) {
                Holder holder(state, 60s);
                holder.lock();
                const Variant before = holder.get(u"n");
                holder.put(u"n", (before.is_empty() ? 0 : before.to<std::int32_t>()) + 1);
            }
        });
    for (std::thread& thread : all) thread.join();
    Holder last(first_, 1s);
    last.lock();
    EXPECT_EQ(last.get(u"n"), Variant(threads * rounds));
}

TEST_F(SharedApplication, KeepsTheHostsOwnObjectsApartAndTakesNoOthers) {
    Holder one(first_, 1s), two(second_, 1s);
    const Variant own = make<AppServerObject>().object();
    first_.put_own(u"Host.Object", own);
    EXPECT_EQ(one.get(u"host.object"), own);
    EXPECT_TRUE(two.get(u"host.object").is_empty());
    EXPECT_THROW(one.put(u"HOST.Object", 1), Failure);
    EXPECT_THROW(one.remove(u"HOST.Object"), Failure);
    one.remove_all();
    EXPECT_EQ(one.get(u"host.object"), own);
    try {
        one.set(u"x", own);
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, 5);
        EXPECT_EQ(failure.description,
                  u"Application(\"x\") cannot keep this object: the site's store is shared, and "
                  u"an object cannot leave the process that made it. Keep texts, numbers, dates "
                  u"or arrays of these, and make the object anew on each page.");
    }
}

TEST_F(SharedApplication, IsReadAsItWasWhileTheStoreIsAwayAndNotChanged) {
    Holder one(first_, 1s), two(second_, 1s);
    one.put(u"n", 1);
    EXPECT_EQ(one.get(u"n"), Variant(1));
    server_.kill();
    EXPECT_THROW(one.put(u"n", 2), StoreAway);
    EXPECT_THROW(one.lock(), StoreAway);
    EXPECT_EQ(one.get(u"n"), Variant(1));
    EXPECT_THROW(two.get(u"n"), StoreAway) << "it has never seen any";
    server_.start();
    EXPECT_TRUE(seen([&] {
        try {
            two.put(u"m", 3);
            return true;
        } catch (const StoreAway&) {
            return false;
        }
    }));
    EXPECT_TRUE(seen([&] { return one.get(u"m") == Variant(3); }));
}

// As a replica does that takes over and lacks the last change.
TEST_F(SharedApplication, IsReadAnewFromAStoreThatHasGoneBack) {
    RedisApplication third(*two_, 1ms);
    Holder one(first_, 1s), other(third, 1s);
    one.put(u"n", 1);
    const std::string version = server_.ask({"HGET", "orvo:application:state", "v"});
    one.put(u"n", 2);
    EXPECT_TRUE(seen([&] { return other.get(u"n") == Variant(2); }));
    server_.ask({"HSET", "orvo:application:state", "v", version});
    one.put(u"n", 3);
    EXPECT_TRUE(seen([&] { return other.get(u"n") == Variant(3); }));
}

TEST_F(SharedApplication, ShowsNothingInTheStore) {
    Holder(first_, 1s).put(u"secret-name", u"secret-value");
    std::string wide, dump = server_.dump();
    for (const char c : std::string("secret")) (wide += c) += '\0';
    EXPECT_NE(dump.find("orvo:application"), std::string::npos);
    EXPECT_EQ(dump.find("secret"), std::string::npos);
    EXPECT_EQ(dump.find(wide), std::string::npos);
}

}  // namespace
}  // namespace orvo::web
