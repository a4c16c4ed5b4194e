#include "host/web/server/worker_pool.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <latch>
#include <string>
#include <thread>

namespace orvo::web {
namespace {

using Kind = WorkerPool::Kind;
constexpr std::array kinds{Kind::other, Kind::undecided, Kind::directory};

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
        for (int i = 0; i < 200; ++i) EXPECT_TRUE(pool.try_add([&] { ++done; }, kinds[i % 3]));
    }
    EXPECT_EQ(done, 200);
}

TEST(WorkerPool, TellsHowManyJobsRunAndWaitAndWereRefused) {
    Gate gate;
    std::latch begun(2);
    WorkerPool pool(2, 1, 1);
    ASSERT_TRUE(pool.try_add(gate.job(begun), Kind::directory));
    ASSERT_TRUE(pool.try_add(gate.job(begun)));
    begun.wait();
    EXPECT_TRUE(pool.try_add([] {}, Kind::directory));
    EXPECT_FALSE(pool.try_add([] {}, Kind::directory));
    EXPECT_FALSE(pool.try_add([] {}, Kind::directory));
    EXPECT_TRUE(pool.try_add([] {}));
    const WorkerPool::Counts counts = pool.counts();
    EXPECT_EQ(counts.workers, 2u);
    EXPECT_EQ(counts.running, (std::array{1, 0, 1}));
    EXPECT_EQ(counts.waiting, (std::array<std::size_t, 3>{1, 0, 1}));
    EXPECT_EQ(counts.refused, (std::array<std::uint64_t, 3>{0, 0, 2}));
    EXPECT_EQ(counts.turned_away, 0u);
    gate.open();
}

TEST(WorkerPool, DirectoryJobsLeaveWorkersToTheOthers) {
    Gate gate;
    std::latch begun(2), all(3);
    std::atomic<int> directory_jobs = 0;
    WorkerPool pool(3, 2, 10);
    for (int i = 0; i < 2; ++i) ASSERT_TRUE(pool.try_add(gate.job(begun), Kind::directory));
    begun.wait();
    const auto count = [&] {
        ++directory_jobs;
        all.count_down();
    };
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(pool.try_add(count, Kind::directory));
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
    EXPECT_TRUE(pool.try_add(second.job(begun), Kind::directory));
    begun.wait();
    EXPECT_FALSE(result_of([&] { return pool.try_wait(); }));
    first.open();
    second.open();
}

TEST(WorkerPool, WhoWaitsForAPlaceComesBeforeJobsThatNobodyHasTaken) {
    constexpr int many = 1'000'000;
    std::atomic<bool> has_place = false;
    std::atomic<int> carried_out = 0;
    WorkerPool pool(3, 1, 100);
    // There is always a next one, until the other job has its place.
    const std::function<void()> next = [&] {
        if (!has_place && ++carried_out < many) pool.try_add(next, Kind::directory);
    };
    for (int i = 0; i < 10; ++i) ASSERT_TRUE(pool.try_add(next, Kind::directory));
    std::promise<bool> answer;
    ASSERT_TRUE(pool.try_add(
        [&] {
            has_place = pool.try_wait();
            answer.set_value(has_place);
        },
        Kind::undecided));
    EXPECT_TRUE(answer.get_future().get());
    EXPECT_LT(carried_out, many);
}

TEST(WorkerPool, AnUndecidedJobMayBeginOnceTheLastOneHasBecomeADirectoryJob) {
    Gate gate;
    std::latch begun(2), waits(1), may_become(1), has_become(1);
    std::promise<void> next;
    WorkerPool pool(4, 3, 100);
    for (int i = 0; i < 2; ++i) ASSERT_TRUE(pool.try_add(gate.job(begun), Kind::directory));
    begun.wait();
    ASSERT_TRUE(pool.try_add(
        [&, until_end = gate.job(has_become)] {
            waits.count_down();
            may_become.wait();
            EXPECT_TRUE(pool.try_wait());
            until_end();
        },
        Kind::undecided));
    waits.wait();
    ASSERT_TRUE(pool.try_add([&] { next.set_value(); }, Kind::undecided));
    may_become.count_down();
    has_become.wait();
    EXPECT_EQ(next.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
    gate.open();
}

TEST(WorkerPool, AWorkerIsLeftToJobsThatAreKnownNotToWait) {
    Gate gate;
    std::latch begun(3);
    WorkerPool pool(4, 2, 100);
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(pool.try_add(gate.job(begun), Kind::undecided));
    begun.wait();
    for (const Kind kind : {Kind::undecided, Kind::directory})
        for (int i = 0; i < 5; ++i) ASSERT_TRUE(pool.try_add([] {}, kind));
    for (int i = 0; i < 10; ++i) {
        std::promise<bool> answer;
        ASSERT_TRUE(pool.try_add([&] { answer.set_value(pool.try_wait()); }));
        EXPECT_FALSE(answer.get_future().get()) << "it must not become one of those";
    }
    gate.open();
}

TEST(WorkerPool, TakesNoMoreThanMayWaitOfEachKind) {
    Gate gate;
    std::latch begun(1);
    WorkerPool pool(1, 1, 2);
    ASSERT_TRUE(pool.try_add(gate.job(begun)));
    begun.wait();
    for (const Kind kind : kinds) {
        EXPECT_TRUE(pool.try_add([] {}, kind));
        EXPECT_TRUE(pool.try_add([] {}, kind));
        EXPECT_FALSE(pool.try_add([] {}, kind));
    }
    gate.open();
}

TEST(WorkerPool, KeepsTheOrderOfArrivalAcrossAllKinds) {
    Gate gate;
    std::latch begun(1);
    std::string order;
    {
        WorkerPool pool(1, 1, 100);
        ASSERT_TRUE(pool.try_add(gate.job(begun)));
        begun.wait();
        for (const std::size_t kind : {2, 0, 1, 2, 2, 0, 1})
            ASSERT_TRUE(
                pool.try_add([&order, kind] { order += std::to_string(kind); }, kinds[kind]));
        gate.open();
    }
    EXPECT_EQ(order, "2012201");
}

}  // namespace
}  // namespace orvo::web
