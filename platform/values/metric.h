#pragma once

// What is counted while work goes on, and read now and then by somebody else. Any thread; each
// operation is one or two atomic additions, and none waits for another.

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>

namespace orvo {

// Only grows.
class Counter {
public:
    void add(std::uint64_t count = 1) noexcept {
        value_.fetch_add(count, std::memory_order_relaxed);
    }
    std::uint64_t value() const noexcept { return value_.load(std::memory_order_relaxed); }

private:
    std::atomic<std::uint64_t> value_ = 0;
};

// Goes up and down.
class Gauge {
public:
    void add(std::int64_t count = 1) noexcept {
        value_.fetch_add(count, std::memory_order_relaxed);
    }
    void set(std::int64_t value) noexcept { value_.store(value, std::memory_order_relaxed); }
    std::int64_t value() const noexcept { return value_.load(std::memory_order_relaxed); }

private:
    std::atomic<std::int64_t> value_ = 0;
};

// How long something took, in buckets that are the same everywhere: from half a millisecond, which
// a file takes, to the limits of pages and searches.
class DurationHistogram {
public:
    // The upper bounds, in seconds, each in its bucket; what takes longer is in one more bucket.
    static constexpr std::array<double, 15> bounds{
        0.0005, 0.001, 0.0025, 0.005, 0.01, 0.025, 0.05, 0.1, 0.25, 0.5, 1, 2.5, 5, 10, 30};

    struct Reading {
        std::array<std::uint64_t, bounds.size() + 1> buckets{};  // how many in each
        double seconds = 0;                                      // of all together

        std::uint64_t count() const {
            std::uint64_t all = 0;
            for (const std::uint64_t one : buckets) all += one;
            return all;
        }
    };

    void observe(std::chrono::nanoseconds duration) noexcept {
        const double seconds = std::chrono::duration<double>(duration).count();
        std::size_t bucket = 0;
        while (bucket < bounds.size() && seconds > bounds[bucket]) ++bucket;
        buckets_[bucket].add();
        nanoseconds_.add(static_cast<std::uint64_t>(duration.count()));
    }
    // What others add meanwhile may be in the one number and not yet in the other.
    Reading reading() const noexcept {
        Reading reading;
        for (std::size_t i = 0; i < buckets_.size(); ++i) reading.buckets[i] = buckets_[i].value();
        reading.seconds = static_cast<double>(nanoseconds_.value()) / 1e9;
        return reading;
    }

private:
    std::array<Counter, bounds.size() + 1> buckets_;
    Counter nanoseconds_;
};

}  // namespace orvo
