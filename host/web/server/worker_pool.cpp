#include "host/web/server/worker_pool.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace orvo::web {
namespace {

// Where the directory answers at all, a place gets free sooner than this.
constexpr std::chrono::milliseconds patience_for_place{500};

}  // namespace

WorkerPool::WorkerPool(int workers, int most_directory_jobs, std::size_t most_waiting)
    : most_directory_jobs_(most_directory_jobs),
      most_in_doubt_(std::max(most_directory_jobs, workers - 1)),
      most_waiting_(most_waiting) {
    for (int i = 0; i < workers; ++i) threads_.emplace_back([this] { work(); });
}

WorkerPool::~WorkerPool() {
    {
        const std::lock_guard guard(lock_);
        is_ending_ = true;
    }
    changed_.notify_all();
    for (std::thread& thread : threads_) thread.join();
}

bool WorkerPool::try_add(Job job, Kind kind) {
    {
        const std::lock_guard guard(lock_);
        if (queue(kind).size() >= most_waiting_) {
            ++refused_[static_cast<std::size_t>(kind)];
            return false;
        }
        queue(kind).push_back({++added_, std::move(job)});
    }
    changed_.notify_one();
    return true;
}

bool WorkerPool::try_wait() {
    std::unique_lock guard(lock_);
    if (*kind_ == Kind::directory) return true;
    if (*kind_ == Kind::other) {
        if (!may_run(Kind::undecided)) {
            ++turned_away_;
            return false;
        }
        change_kind(Kind::undecided);
    }
    ++waiting_for_place_;
    while (!has_place()) {
        const auto is_freed = [&, seen = freed_places_] { return freed_places_ != seen; };
        if (!place_freed_.wait_for(guard, patience_for_place, is_freed)) break;
    }
    --waiting_for_place_;
    if (!has_place()) {
        ++turned_away_;
        return false;
    }
    change_kind(Kind::directory);
    // The last undecided job may have become one: the next of them may run.
    if (!queue(Kind::undecided).empty()) changed_.notify_one();
    return true;
}

WorkerPool::Counts WorkerPool::counts() const {
    const std::lock_guard guard(lock_);
    Counts counts{threads_.size(), {}, running_, waiting_for_place_, refused_, turned_away_};
    for (std::size_t i = 0; i < kinds; ++i) counts.waiting[i] = queues_[i].size();
    return counts;
}

void WorkerPool::change_kind(Kind kind) {
    --running(*kind_);
    ++running(*kind_ = kind);
}

bool WorkerPool::may_run(Kind kind) const {
    if (kind == Kind::other) return true;
    const int in_doubt = running(Kind::directory) + running(Kind::undecided);
    if (kind == Kind::undecided) return running(kind) == 0 || in_doubt < most_in_doubt_;
    return running(kind) + waiting_for_place_ < most_directory_jobs_ && in_doubt < most_in_doubt_;
}

std::optional<WorkerPool::Kind> WorkerPool::next() const {
    std::optional<Kind> first;
    for (const Kind kind : {Kind::other, Kind::undecided, Kind::directory}) {
        if (queue(kind).empty() || !may_run(kind)) continue;
        if (!first || queue(kind).front().number < queue(*first).front().number) first = kind;
    }
    return first;
}

thread_local WorkerPool::Kind* WorkerPool::kind_ = nullptr;

void WorkerPool::work() {
    Kind kind = Kind::other;
    kind_ = &kind;
    std::unique_lock guard(lock_);
    while (true) {
        const std::optional<Kind> found = next();
        if (!found) {
            const auto is_empty = [](const auto& queue) { return queue.empty(); };
            if (is_ending_ && std::ranges::all_of(queues_, is_empty)) return;
            changed_.wait(guard);
            continue;
        }
        kind = *found;
        Job job = std::move(queue(kind).front().job);
        queue(kind).pop_front();
        ++running(kind);
        guard.unlock();
        job();
        job = nullptr;
        guard.lock();
        --running(kind);
        if (kind == Kind::other) continue;
        if (kind == Kind::directory) {
            ++freed_places_;
            place_freed_.notify_one();
        }
        // A worker may sleep although such jobs wait: there was no place for one.
        if (is_ending_)
            changed_.notify_all();
        else if (!queue(Kind::directory).empty() || !queue(Kind::undecided).empty())
            changed_.notify_one();
    }
}

}  // namespace orvo::web
