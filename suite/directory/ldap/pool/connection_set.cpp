#include "suite/directory/ldap/pool/connection_set.h"

#include <algorithm>
#include <utility>

#include "suite/directory/policy/failures.h"

namespace orvo::directory::ldap {
namespace {

// Connections on their way to be closed; declared before the lock, so that it is done without it.
using Closing = std::deque<Connection>;

void move_front(std::deque<Connection>& from, Closing& to) {
    to.push_back(std::move(from.front()));
    from.pop_front();
}

bool equal_in_constant_time(std::string_view one, std::string_view other) {
    if (one.size() != other.size()) return false;
    unsigned difference = 0;
    for (std::size_t i = 0; i < one.size(); ++i)
        difference |= static_cast<unsigned char>(one[i]) ^ static_cast<unsigned char>(other[i]);
    return difference == 0;
}

}  // namespace

ConnectionSet::ConnectionSet(Use use, std::shared_ptr<ServerGroup> group, std::string user,
                             Secret password, const SharedSettings& settings,
                             const WriteMarks& writes)
    : use_(use),
      group_(std::move(group)),
      user_(std::move(user)),
      user_key_(user_),
      settings_(settings),
      writes_(writes),
      password_(std::move(password)) {}

std::uint64_t ConnectionSet::acquire_place(PlaceWaits& waits) {
    std::unique_lock lock(mutex_);
    const auto is_free = [&] {
        const std::size_t maximum = settings_.get().maximum_size;
        return maximum == 0 || leased_ < maximum;
    };
    if (!waiting_.empty() || !is_free()) {
        const PoolSettings settings = settings_.get();
        const auto begin = std::chrono::steady_clock::now();
        const auto own = waiting_.emplace(waiting_.end());
        const bool is_served = own->wait_for(lock, settings.wait,
                                             [&] { return own == waiting_.begin() && is_free(); });
        waiting_.erase(own);
        waits.durations.observe(std::chrono::steady_clock::now() - begin);
        if (!is_served) {
            waits.failures.add();
            wake_next();
            raise_code(result_code::busy,
                       "All " + std::to_string(settings.maximum_size) + " connections of " +
                           (use_ == Use::password_checks ? "the password checks below one container"
                                                         : "this user") +
                           " to '" + group_->key() + "' were in use for " +
                           std::to_string(settings.wait.count()) +
                           " ms (MaximumSize and WaitLimit of the connection pool).");
        }
    }
    ++leased_;
    wake_next();
    return generation_;
}

std::size_t ConnectionSet::waiting() const {
    const std::lock_guard lock(mutex_);
    return waiting_.size();
}

// Who finds a place wakes the next: there may be another.
void ConnectionSet::wake_next() {
    if (!waiting_.empty()) waiting_.front().notify_one();
}

std::optional<Connection> ConnectionSet::take_idle(const ServerRef& server,
                                                   const PoolSettings& settings,
                                                   Clock::time_point now) {
    Closing closing;
    const std::lock_guard lock(mutex_);
    while (!idle_.empty() && !idle_.front().is_usable(settings, now)) move_front(idle_, closing);
    const auto found = std::find_if(idle_.rbegin(), idle_.rend(), [&](const Connection& one) {
        return one.server == server && one.is_usable(settings, now);
    });
    if (found != idle_.rend()) {
        std::optional<Connection> taken(std::move(*found));
        idle_.erase(std::next(found).base());
        return taken;
    }
    const bool is_too_many =
        settings.maximum_size != 0 && leased_ + idle_.size() > settings.maximum_size;
    if (is_too_many && !idle_.empty()) move_front(idle_, closing);
    return std::nullopt;
}

std::optional<Connection> ConnectionSet::give_up_idle(const ServerRef& server,
                                                      const PoolSettings& settings,
                                                      Clock::time_point now) {
    return give_up_first(server, settings, now, [](const Connection&) { return true; });
}

std::optional<Connection> ConnectionSet::give_up_checked(const ServerRef& server,
                                                         const ConnectionSet& user,
                                                         const PoolSettings& settings,
                                                         Clock::time_point now) {
    return give_up_first(server, settings, now, [&](const Connection& one) {
        return one.checked && one.checked->user == user.user() &&
               now - one.checked->at < settings.recheck && user.is_news(one.checked->at) &&
               writes_.mark(user.user_key()) == one.checked->mark &&
               user.has_password(one.checked->password);
    });
}

std::optional<Connection> ConnectionSet::give_up_first(
    const ServerRef& server, const PoolSettings& settings, Clock::time_point now,
    const std::function<bool(const Connection&)>& fits) {
    const std::lock_guard lock(mutex_);
    const auto found = std::ranges::find_if(idle_, [&](const Connection& one) {
        return one.server == server && one.is_usable(settings, now) && fits(one);
    });
    if (found == idle_.end()) return std::nullopt;
    std::optional<Connection> given(std::move(*found));
    idle_.erase(found);
    return given;
}

void ConnectionSet::release_place() {
    const std::lock_guard lock(mutex_);
    --leased_;
    wake_next();
}

bool ConnectionSet::release(Connection connection, std::uint64_t generation,
                            const PoolSettings& settings, Clock::time_point now) {
    Closing closing;
    const std::lock_guard lock(mutex_);
    connection.used = now;
    const bool is_kept =
        generation == generation_ && connection.is_usable(settings, now) &&
        (settings.maximum_size == 0 ? use_ == Use::as_user
                                    : leased_ + idle_.size() <= settings.maximum_size);
    (is_kept ? idle_ : closing).push_back(std::move(connection));
    --leased_;
    wake_next();
    return is_kept;
}

void ConnectionSet::evict_unusable(const PoolSettings& settings, Clock::time_point now) {
    Closing closing;
    const std::lock_guard lock(mutex_);
    while (!idle_.empty() && !idle_.front().is_usable(settings, now)) move_front(idle_, closing);
    for (Connection& one : idle_)
        if (one.checked && now - one.checked->at >= settings.recheck) one.checked.reset();
}

bool ConnectionSet::evict_oldest() {
    Closing closing;
    const std::lock_guard lock(mutex_);
    if (idle_.empty()) return false;
    move_front(idle_, closing);
    return true;
}

void ConnectionSet::evict_all() {
    Closing closing;
    const std::lock_guard lock(mutex_);
    closing.swap(idle_);
}

ConnectionSet::Counts ConnectionSet::counts() const {
    const std::lock_guard lock(mutex_);
    return {leased_, idle_.size(), waiting_.size()};
}

std::size_t ConnectionSet::idle() const {
    const std::lock_guard lock(mutex_);
    return idle_.size();
}

void ConnectionSet::wake_waiting() {
    const std::lock_guard lock(mutex_);
    wake_next();
}

bool ConnectionSet::has_password(const Secret& password) const {
    const std::lock_guard lock(mutex_);
    return equal_in_constant_time(password_.reveal(), password.reveal());
}

Secret ConnectionSet::password() const {
    const std::lock_guard lock(mutex_);
    return password_.clone();
}

void ConnectionSet::note_accepted(Clock::time_point at, std::uint64_t mark,
                                  std::uint64_t generation) {
    const std::lock_guard lock(mutex_);
    if (generation != generation_) return;
    verdict_ = Verdict{at, mark, std::nullopt};
    ++verdicts_;
}

void ConnectionSet::note_refused(const Failure& failure, Clock::time_point at, std::uint64_t mark,
                                 std::uint64_t generation) {
    Closing closing;
    const std::lock_guard lock(mutex_);
    if (generation != generation_) return;
    end_generation(closing);
    verdict_ = Verdict{at, mark, failure};
    ++verdicts_;
}

bool ConnectionSet::is_news(Clock::time_point at) const {
    const std::lock_guard lock(mutex_);
    return !verdict_ || verdict_->at < at;
}

const ConnectionSet::Verdict* ConnectionSet::current_verdict(const PoolSettings& settings,
                                                             Clock::time_point now) const {
    return verdict_ && now - verdict_->at < settings.recheck &&
                   writes_.mark(user_key_) == verdict_->mark
               ? &*verdict_
               : nullptr;
}

bool ConnectionSet::is_accepted(const PoolSettings& settings, Clock::time_point now) const {
    const std::lock_guard lock(mutex_);
    const Verdict* verdict = current_verdict(settings, now);
    return verdict && !verdict->refusal;
}

std::optional<Failure> ConnectionSet::refusal(const PoolSettings& settings,
                                              Clock::time_point now) const {
    const std::lock_guard lock(mutex_);
    const Verdict* verdict = current_verdict(settings, now);
    return verdict ? verdict->refusal : std::nullopt;
}

ConnectionSet::Question::Question(ConnectionSet& set, const PoolSettings& settings,
                                  const Clock& clock, std::chrono::milliseconds limit)
    : set_(set) {
    if (settings.recheck.count() == 0) return;
    std::unique_lock lock(set.mutex_);
    const auto is_answered = [&, before = set.verdicts_] {
        return set.verdicts_ != before || set.current_verdict(settings, clock.now()) != nullptr;
    };
    const bool is_over =
        set.answered_.wait_for(lock, limit, [&] { return !set.is_asked_ || is_answered(); });
    is_asked_ = is_over && !is_answered();
    if (is_asked_) set.is_asked_ = true;
}

ConnectionSet::Question::~Question() {
    if (!is_asked_) return;
    {
        const std::lock_guard lock(set_.mutex_);
        set_.is_asked_ = false;
    }
    set_.answered_.notify_all();
}

void ConnectionSet::invalidate() {
    Closing closing;
    const std::lock_guard lock(mutex_);
    end_generation(closing);
}

void ConnectionSet::change_password(const Secret& password) {
    Closing closing;
    const std::lock_guard lock(mutex_);
    end_generation(closing);
    password_ = password.clone();
}

void ConnectionSet::end_generation(Closing& closing) {
    ++generation_;
    verdict_.reset();
    closing.swap(idle_);
}

}  // namespace orvo::directory::ldap
