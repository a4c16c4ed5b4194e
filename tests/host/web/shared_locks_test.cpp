#include "host/web/sessions/shared_locks.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace orvo::web {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using Keys = std::vector<std::string>;

constexpr std::chrono::hours no_end_of_gathering{1};

// A store that is away until it is told to be back, and then knows all locks.
class Store {
public:
    SharedLocks::Run run() {
        return [this](const store::Script&, const Keys& keys, std::vector<std::string>) {
            const std::lock_guard guard(lock_);
            asked_.push_back(keys);
            changed_.notify_all();
            if (is_away_) throw std::runtime_error("away");
            return store::Reply(
                store::Reply::List(keys.size(), store::Reply(std::int64_t{knows_ ? 1 : 0})));
        };
    }
    // The keys of each call.
    std::vector<Keys> asked_at_least(std::size_t count) {
        std::unique_lock guard(lock_);
        EXPECT_TRUE(changed_.wait_for(guard, 30s, [&] { return asked_.size() >= count; }));
        return asked_;
    }
    void come_back() {
        const std::lock_guard guard(lock_);
        asked_.clear();
        is_away_ = false;
    }
    void forget_locks() { knows_ = false; }

private:
    std::mutex lock_;
    std::condition_variable changed_;
    std::vector<Keys> asked_;
    bool is_away_ = true;
    std::atomic<bool> knows_ = true;
};

class SharedLocksTest : public testing::Test {
protected:
    Store store_;
};

TEST_F(SharedLocksTest, OfAStoreThatIsAwayAreTriedTogetherUntilItIsBack) {
    SharedLocks locks(store_.run());
    locks.release_later({{"a", "1"}, {"b", "2"}, {"c", "3"}});
    EXPECT_THAT(store_.asked_at_least(3), Each(ElementsAre("a", "b", "c")));
    store_.come_back();
    EXPECT_THAT(store_.asked_at_least(1), ElementsAre(ElementsAre("a", "b", "c")));
}

// The question that takes one may arrive later.
TEST_F(SharedLocksTest, ThatTheStoreDoesNotKnowAreTriedAgain) {
    store_.come_back();
    store_.forget_locks();
    SharedLocks locks(store_.run());
    locks.release_later({{"a", "1"}});
    EXPECT_THAT(store_.asked_at_least(3), Each(ElementsAre("a")));
}

TEST_F(SharedLocksTest, ThatAreReleasedSoonAreReleasedWithoutAnyOtherRequest) {
    store_.come_back();
    SharedLocks locks(store_.run());
    locks.release_soon("a", "1");
    EXPECT_THAT(store_.asked_at_least(1), ElementsAre(ElementsAre("a")));
}

TEST_F(SharedLocksTest, ThatAreReleasedSoonAreReleasedTogetherAndAtTheEndAtTheLatest) {
    store_.come_back();
    {
        SharedLocks locks(store_.run(), no_end_of_gathering);
        for (const char* key : {"a", "b", "c"}) locks.release_soon(key, "1");
        EXPECT_THAT(store_.asked_at_least(0), IsEmpty());
    }
    EXPECT_THAT(store_.asked_at_least(0), ElementsAre(ElementsAre("a", "b", "c")));
}

TEST_F(SharedLocksTest, ThatAreReleasedSoonAreTriedAgainWhereTheStoreIsAway) {
    SharedLocks locks(store_.run());
    locks.release_soon("a", "1");
    EXPECT_THAT(store_.asked_at_least(2), Each(ElementsAre("a")));
    store_.come_back();
    EXPECT_THAT(store_.asked_at_least(1), ElementsAre(ElementsAre("a")));
}

// As after an absence, when there are many of which nobody knows whether they were taken.
TEST_F(SharedLocksTest, ThatAreReleasedSoonDoNotWaitForThoseThatAreLeft) {
    store_.come_back();
    store_.forget_locks();
    SharedLocks locks(store_.run());
    for (int i = 0; i < 1100; ++i) locks.release_later({{"left", std::to_string(i)}});
    locks.release_soon("soon", "1");
    EXPECT_THAT(store_.asked_at_least(10), Contains(Contains("soon")));
}

TEST_F(SharedLocksTest, ThatSomebodyTakesAlongAreNobodyElsesToRelease) {
    store_.come_back();
    {
        SharedLocks locks(store_.run(), no_end_of_gathering);
        locks.release_soon("a", "1");
        locks.release_soon("b", "2");
        EXPECT_THAT(locks.take_along(),
                    ElementsAre(SharedLocks::Lock{"a", "1"}, SharedLocks::Lock{"b", "2"}));
        EXPECT_THAT(locks.take_along(), IsEmpty());
    }
    EXPECT_THAT(store_.asked_at_least(0), IsEmpty());
}

}  // namespace
}  // namespace orvo::web
