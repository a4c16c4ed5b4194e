#include "host/web/server/worker_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <latch>

namespace orvo::web {
namespace {

// A job that waits until it is let go.
class Gate {
public:
    WorkerPool::Job job(std::latch& begun) {
        return [this, &begun] {
            begun.count_down();
            open_.wait();
        };
    }
    void open() { promise_.set_value(); }

private:
    std::promise<void> promise_;
    std::shared_future<void> open_ = promise_.get_future();
};

TEST(WorkerPool, CarriesEverythingOutBeforeItEnds) {
    std::atomic<int> done = 0;
    {
        WorkerPool pool(4, 2, 1000);
        for (int i = 0; i < 200; ++i) EXPECT_TRUE(pool.try_add([&] { ++done; }, i % 2 == 0));
    }
    EXPECT_EQ(done, 200);
}

TEST(WorkerPool, DirectoryJobsLeaveWorkersToTheOthers) {
    Gate gate;
    std::latch begun(2), all(3);
    std::atomic<int> directory_jobs = 0;
    WorkerPool pool(3, 2, 10);
    for (int i = 0; i < 2; ++i) ASSERT_TRUE(pool.try_add(gate.job(begun), true));
    begun.wait();
    const auto count = [&] {
        ++directory_jobs;
        all.count_down();
    };
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(pool.try_add(count, true));
    for (int i = 0; i < 10; ++i) {
        std::promise<void> done;
        ASSERT_TRUE(pool.try_add([&] { done.set_value(); }));
        done.get_future().wait();
    }
    EXPECT_EQ(directory_jobs, 0) << "their share is taken";
    gate.open();
    all.wait();
    EXPECT_EQ(directory_jobs, 3);
}

TEST(WorkerPool, AJobMayTurnOutToWaitForTheDirectory) {
    std::latch begun(2);
    Gate first, second;
    WorkerPool pool(3, 2, 10);
    const auto result_of = [&](const std::function<bool()>& question) {
        std::promise<bool> answer;
        EXPECT_TRUE(pool.try_add([&] { answer.set_value(question()); }));
        return answer.get_future().get();
    };
    EXPECT_TRUE(pool.try_add([&, job = first.job(begun)] {
        EXPECT_TRUE(pool.try_wait());
        EXPECT_TRUE(pool.try_wait()) << "it counts once";
        job();
    }));
    EXPECT_TRUE(result_of([&] { return pool.try_wait(); })) << "which then ends";
    EXPECT_TRUE(pool.try_add(second.job(begun), true));
    begun.wait();
    EXPECT_FALSE(result_of([&] { return pool.try_wait(); }));
    first.open();
    second.open();
}

TEST(WorkerPool, TakesNoMoreThanMayWaitOfEitherKind) {
    Gate gate;
    std::latch begun(1);
    WorkerPool pool(1, 1, 2);
    ASSERT_TRUE(pool.try_add(gate.job(begun)));
    begun.wait();
    for (const bool is_directory_job : {false, true}) {
        EXPECT_TRUE(pool.try_add([] {}, is_directory_job));
        EXPECT_TRUE(pool.try_add([] {}, is_directory_job));
        EXPECT_FALSE(pool.try_add([] {}, is_directory_job));
    }
    gate.open();
}

TEST(WorkerPool, KeepsTheOrderOfArrivalAcrossBothKinds) {
    Gate gate;
    std::latch begun(1);
    std::string order;
    {
        WorkerPool pool(1, 1, 100);
        ASSERT_TRUE(pool.try_add(gate.job(begun)));
        begun.wait();
        for (const char c : std::string("lolloo"))
            ASSERT_TRUE(pool.try_add([&order, c] { order += c; }, c == 'l'));
        gate.open();
    }
    EXPECT_EQ(order, "lolloo");
}

}  // namespace
}  // namespace orvo::web
