#include "host/web/sessions/shared_locks.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace orvo::web {
namespace {

using namespace std::chrono_literals;
using testing::Each;
using testing::ElementsAre;

// A store that is away until it is told to be back.
class Store {
public:
    SharedLocks::Run run() {
        return [this](const store::Script&, const std::string& key, std::vector<std::string>) {
            const std::lock_guard guard(lock_);
            asked_.push_back(key);
            changed_.notify_all();
            if (is_away_) throw std::runtime_error("away");
            return store::Reply(std::int64_t{1});
        };
    }
    std::vector<std::string> asked_at_least(std::size_t count) {
        std::unique_lock guard(lock_);
        changed_.wait_for(guard, 30s, [&] { return asked_.size() >= count; });
        return asked_;
    }
    void come_back() {
        const std::lock_guard guard(lock_);
        asked_.clear();
        is_away_ = false;
    }

private:
    std::mutex lock_;
    std::condition_variable changed_;
    std::vector<std::string> asked_;
    bool is_away_ = true;
};

TEST(SharedLocks, OfAStoreThatIsAwayAreTriedByTheFirstOfThem) {
    Store store;
    SharedLocks locks(store.run());
    for (const char* key : {"a", "b", "c"}) locks.release_later(key, std::string(key) + " token");
    EXPECT_THAT(store.asked_at_least(4), Each("a"));
    store.come_back();
    EXPECT_THAT(store.asked_at_least(3), ElementsAre("a", "b", "c"));
}

}  // namespace
}  // namespace orvo::web
