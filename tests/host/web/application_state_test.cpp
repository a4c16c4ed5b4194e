#include "host/web/sessions/memory_application.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/values/failure.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

TEST(ApplicationState, IsSharedByAllRequests) {
    MemoryApplication state;
    ApplicationState::Holder one(state, 0ms), two(state, 0ms);
    one.put(u"Name", u"value");
    EXPECT_EQ(two.get(u"NAME"), Variant(u"value"));
    two.remove(u"name");
    EXPECT_TRUE(one.get(u"Name").is_empty());
    one.put(u"a", 1);
    two.remove_all();
    EXPECT_EQ(state.snapshot().count(), 0u);
}

TEST(ApplicationState, LockedByOneRequestCanBeReadButNotChangedByAnother) {
    MemoryApplication state;
    ApplicationState::Holder one(state, 10ms), two(state, 10ms);
    one.lock();
    one.lock();
    one.put(u"a", 1);
    EXPECT_EQ(two.get(u"a"), Variant(1));
    try {
        two.put(u"a", 2);
        FAIL() << "a locked application was changed";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, 70);
        EXPECT_EQ(failure.description, u"Another page keeps the application locked");
    }
    two.unlock();
    EXPECT_THROW(two.lock(), Failure) << "only who locked it unlocks it";
    one.unlock();
    two.put(u"a", 2);
    EXPECT_EQ(one.get(u"a"), Variant(2));
}

TEST(ApplicationState, AForgottenLockGoesWithItsRequest) {
    MemoryApplication state;
    {
        ApplicationState::Holder forgetful(state, 0ms);
        forgetful.lock();
    }
    ApplicationState::Holder next(state, 0ms);
    next.lock();
}

TEST(ApplicationState, CountsRightUnderThreadsThatLockIt) {
    MemoryApplication state;
    constexpr int threads = 8, rounds = 200;
    std::vector<std::thread> all;
    for (int i = 0; i < threads; ++i)
        all.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                ApplicationState::Holder holder(state, 30s);
                holder.lock();
                const Variant before = holder.get(u"n");
                holder.put(u"n", (before.is_empty() ? 0 : before.to<std::int32_t>()) + 1);
                if (round % 2 == 0) holder.unlock();
            }
        });
    for (std::thread& thread : all) thread.join();
    EXPECT_EQ(state.get(u"n"), Variant(threads * rounds));
}

}  // namespace
}  // namespace orvo::web
