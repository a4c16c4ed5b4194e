#include "suite/directory/ldap/pool/server.h"

#include <algorithm>
#include <utility>

namespace orvo::directory::ldap {
namespace {

using Condition = ServerState::Condition;
using std::chrono::milliseconds;

constexpr milliseconds shortest_pause{1'000};
constexpr milliseconds longest_pause{60'000};
constexpr int doublings = 6;  // from the shortest to the longest

// From three quarters to five quarters of the pause that is due.
milliseconds pause_after(int failed_probes, double jitter) {
    const auto pause =
        std::min(longest_pause, shortest_pause * (1 << std::min(failed_probes - 1, doublings)));
    return milliseconds(
        static_cast<std::int64_t>(static_cast<double>(pause.count()) * (0.75 + jitter / 2)));
}

}  // namespace

Server::Server(ServerHost host, const Clock& clock)
    : host_(std::move(host)), url_(host_.url()), clock_(clock), since_(clock.now()) {}

void Server::note_answer(std::chrono::microseconds took) {
    operations_.fetch_add(1, std::memory_order_relaxed);
    const auto former = latency_.load(std::memory_order_relaxed);
    latency_.store(former == 0 ? took.count() : former + (took.count() - former) / 8,
                   std::memory_order_relaxed);
    if (is_up()) return;
    const std::lock_guard lock(mutex_);
    if (condition_.load() == Condition::down) was_down_.store(true);
    become_up();
}

bool Server::note_failure(const std::string& reason) {
    const std::lock_guard lock(mutex_);
    failures_.fetch_add(1, std::memory_order_relaxed);
    generation_.fetch_add(1);
    last_failure_ = clock_.now();
    if (!is_up()) return false;
    ++failures_in_all_;
    was_up_for_ = last_failure_ - since_;
    condition_.store(Condition::suspected);
    reason_ = reason;
    since_ = next_probe_ = last_failure_;
    return true;
}

// A server that answers probes and fails its users over and over is left, too.
void Server::note_good_probe(std::chrono::seconds failback_after) {
    const std::lock_guard lock(mutex_);
    const Condition former = condition_.load();
    next_probe_ = clock_.now() + shortest_pause;
    if (former == Condition::up) return;
    const bool fails_again = failures_in_all_ > 1 && was_up_for_ < failback_after;
    if (former == Condition::down || fails_again) was_down_.store(true);
    become_up();
}

Clock::time_point Server::last_failure() const {
    const std::lock_guard lock(mutex_);
    return last_failure_;
}

void Server::note_failed_probe(const std::string& reason, double jitter) {
    const std::lock_guard lock(mutex_);
    ++failed_probes_;
    generation_.fetch_add(1);
    if (condition_.exchange(Condition::down) != Condition::down) since_ = clock_.now();
    reason_ = reason;
    last_failure_ = clock_.now();
    next_probe_ = clock_.now() + pause_after(failed_probes_, jitter);
}

void Server::become_up() {
    if (condition_.exchange(Condition::up) == Condition::up) return;
    reason_.clear();
    since_ = clock_.now();
    failed_probes_ = 0;
}

bool Server::is_steady(std::chrono::seconds failback_after) const {
    if (!is_up()) return false;
    if (!was_down_.load()) return true;
    const std::lock_guard lock(mutex_);
    if (clock_.now() - since_ < failback_after) return false;
    was_down_.store(false);
    return true;
}

std::optional<Clock::time_point> Server::next_probe(std::chrono::seconds failback_after) const {
    if (!is_probed() || is_steady(failback_after)) return std::nullopt;
    const std::lock_guard lock(mutex_);
    return next_probe_;
}

ServerState Server::state() const {
    const std::lock_guard lock(mutex_);
    ServerState state;
    state.url = host_.setting();
    state.condition = condition_.load();
    state.reason = reason_;
    state.since = since_;
    if (is_probed() && !is_up()) state.next_probe = next_probe_;
    state.operations = operations_.load();
    state.failures = failures_.load();
    state.latency = std::chrono::microseconds(latency_.load());
    state.figures = figures_;
    return state;
}

StoredFacts Server::facts() const {
    const std::lock_guard lock(mutex_);
    return facts_;
}

void Server::keep_facts(std::shared_ptr<const ServerFacts> facts) {
    const std::lock_guard lock(mutex_);
    facts_ = {std::move(facts), clock_.now()};
}

}  // namespace orvo::directory::ldap
