// The connector under many threads at once.

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <thread>

#include "platform/interfaces/call.h"
#include "platform/values/values.h"
#include "suite/authfilter/filter_connector.h"
#include "suite/authfilter/memory_store.h"
#include "tests/support/clear_text.h"

namespace orvo::authfilter {
namespace {

constexpr int thread_count = 8;

class FilterThreads : public testing::Test {
protected:
    template <class Work>
    void on_all_threads(Work work) {
        std::vector<std::thread> threads;
        for (int i = 0; i < thread_count; ++i) threads.emplace_back(work, i);
        for (std::thread& thread : threads) thread.join();
    }

    MemoryStore store_;
    Ref<FilterConnector> connector_ = make<FilterConnectorObject>(store_);
};

TEST_F(FilterThreads, OfManyCreatorsOfOneGuidExactlyOneGetsTheRecord) {
    constexpr int rounds = 300;
    std::barrier round(thread_count);
    std::array<std::atomic<int>, rounds> winners{};
    on_all_threads([&](int) {
        for (int i = 0; i < rounds; ++i) {
            round.arrive_and_wait();
            const auto user = call<&FilterConnector::CreateUserWithGUID>(connector_, decimal(i));
            if (user) ++winners[static_cast<std::size_t>(i)];
        }
    });
    for (const auto& count : winners) EXPECT_EQ(count, 1);
}

TEST_F(FilterThreads, ARecordIsNeverSeenHalfSaved) {
    call<&FilterConnector::CreateUserWithGUID>(connector_, u"g");
    std::atomic<int> torn = 0;
    on_all_threads([&](int thread) {
        for (int i = 0; i < 500; ++i) {
            const auto user = call<&FilterConnector::FindUserByGUID>(connector_, u"g");
            const Text name = call<&FilterUser::UserName>(user);
            if (name != clear_text(call<&FilterUser::Password>(user))) ++torn;
            const Text next = decimal(thread * 1000 + i);
            call<&FilterUser::put_UserName>(user, next);
            call<&FilterUser::put_Password>(user, Secret(next));
            call<&FilterUser::Save>(user);
        }
    });
    EXPECT_EQ(torn, 0);
}

TEST_F(FilterThreads, OfOneUsersOnlyLoginsExactlyOneIsLeft) {
    std::atomic<int> failures = 0;
    on_all_threads([&](int thread) {
        for (int i = 0; i < 300; ++i)
            if (!call<&FilterConnector::RegisterLogin>(connector_, u"smith", Values{1},
                                                       decimal(thread * 1000 + i), std::int16_t{0},
                                                       10))
                ++failures;
    });
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(store_.login_count(), 1u);
    int live = 0;
    for (int thread = 0; thread < thread_count; ++thread)
        for (int i = 0; i < 300; ++i)
            live += call<&FilterConnector::IsLoggedIn>(connector_, decimal(thread * 1000 + i), 1)
                        ? 1
                        : 0;
    EXPECT_EQ(live, 1);
}

TEST_F(FilterThreads, LoginsOfDifferentUsersDoNotDisturbEachOther) {
    std::atomic<int> wrong = 0;
    on_all_threads([&](int thread) {
        const Text user = u"user" + decimal(thread);
        for (int i = 0; i < 200; ++i) {
            const Text guid = user + u"-" + decimal(i);
            call<&FilterConnector::CreateUserWithGUID>(connector_, guid);
            call<&FilterConnector::RegisterLogin>(connector_, user, Values{thread}, guid,
                                                  std::int16_t{0}, 10);
            if (!call<&FilterConnector::IsLoggedIn>(connector_, guid, thread)) ++wrong;
            if (call<&FilterConnector::IsLoggedIn>(connector_, guid, thread + 1)) ++wrong;
            if (i % 3 == 0) call<&FilterConnector::Logout>(connector_, guid);
            if (i % 3 == 0 && call<&FilterConnector::IsLoggedIn>(connector_, guid, thread)) ++wrong;
        }
    });
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace orvo::authfilter
