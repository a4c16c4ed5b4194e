#include "suite/store/pool.h"

#include <utility>

namespace orvo::store {
namespace {

// Between the beginnings of two probes.
constexpr std::chrono::milliseconds probe_interval{200};

}  // namespace

Pool::Pool(Settings settings)
    : settings_(std::move(settings)), masters_(settings_), prober_([this] { return probe(); }) {}

Pool::Lease Pool::acquire(const Deadline& deadline) {
    std::unique_lock lock(mutex_);
    const bool is_free = released_.wait_until(
        lock, deadline.at(), [&] { return away_ || in_use_ < settings_.most_connections; });
    if (!is_free)
        throw Lost("all " + std::to_string(in_use_) + " connections are in use", Lost::Why::silent);
    if (away_) throw Lost(*away_);
    ++in_use_;
    const std::uint64_t generation = generation_;
    if (auto idle = take_idle()) return Lease(*this, std::move(idle), generation);
    lock.unlock();
    const auto begin = Clock::now();
    try {
        return Lease(*this, connect(deadline), generation);
    } catch (const Lost& lost) {
        release(nullptr, generation);
        if (lost.why != Lost::Why::silent || was_silent_for_long(begin)) go_away(lost.what());
        throw Lost(lost.what(), lost.why);
    }
}

std::unique_ptr<Connection> Pool::take_idle() {
    while (!idle_.empty()) {
        auto connection = std::move(idle_.back());
        idle_.pop_back();
        if (connection->is_usable()) return connection;
    }
    return nullptr;
}

std::unique_ptr<Connection> Pool::connect(const Deadline& deadline) {
    auto connection = masters_.connect(deadline);
    const std::lock_guard lock(mutex_);
    ++connects_;
    return connection;
}

void Pool::release(std::unique_ptr<Connection> connection, std::uint64_t generation) {
    const std::lock_guard lock(mutex_);
    --in_use_;
    if (connection && generation == generation_) idle_.push_back(std::move(connection));
    released_.notify_one();
}

void Pool::Lease::discard(const Lost& lost) {
    connection_.reset();
    pool_.end_generation(generation_);
    if (lost.why == Lost::Why::silent && pool_.was_silent_for_long(begin_))
        pool_.go_away(lost.what());
}

void Pool::end_generation(std::uint64_t generation) {
    const std::lock_guard lock(mutex_);
    if (generation != generation_) return;
    ++generation_;
    idle_.clear();
}

bool Pool::was_silent_for_long(Clock::time_point begin) const {
    return Clock::now() - begin >= settings_.time_limit / 2;
}

void Pool::go_away(const std::string& reason) {
    {
        const std::lock_guard lock(mutex_);
        if (away_) return;
        away_ = reason;
        ++generation_;
        idle_.clear();
    }
    released_.notify_all();
    prober_.wake();
}

std::optional<Pool::Clock::time_point> Pool::probe() {
    const auto begin = Clock::now();
    try {
        auto connection = connect(Deadline(settings_.time_limit));
        const std::lock_guard lock(mutex_);
        away_.reset();
        if (in_use_ < settings_.most_connections) idle_.push_back(std::move(connection));
        return std::nullopt;
    } catch (const Lost& lost) {
        const std::lock_guard lock(mutex_);
        away_ = lost.what();
        return begin + probe_interval;
    }
}

bool Pool::is_reachable() const {
    const std::lock_guard lock(mutex_);
    return !away_;
}

Pool::Counts Pool::counts() const {
    const std::lock_guard lock(mutex_);
    return {connects_, in_use_ + idle_.size(), in_use_};
}

}  // namespace orvo::store
