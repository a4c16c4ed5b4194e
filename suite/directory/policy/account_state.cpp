#include "suite/directory/policy/account_state.h"

#include <algorithm>

#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::directory {
namespace {

using std::chrono::floor;
using std::chrono::seconds;
using std::chrono::sys_seconds;

constexpr int error_expired = 0;
constexpr int error_locked = 1;
constexpr int error_to_be_changed = 2;

const std::vector<std::string>& values_of(const EntryData& entry, const char* name) {
    static const std::vector<std::string> none;
    for (const Attribute& attribute : entry.attributes)
        if (ascii::equal_ignoring_case(attribute.name, name)) return attribute.values;
    return none;
}

std::string first_of(const EntryData& entry, const char* name) {
    const std::vector<std::string>& values = values_of(entry, name);
    return values.empty() ? std::string() : values.front();
}

enum class Lock { none, holds, has_ended };

// A time that cannot be read, as that of an account locked for good (of the year 0), holds.
Lock lock_of(const AccountState& state, const PasswordRules& rules, sys_seconds now) {
    if (state.locked_time.empty() || !rules.lockout) return Lock::none;
    const std::optional<sys_seconds> since = try_seconds(state.locked_time);
    if (!since) return Lock::holds;
    if (now < *since) return Lock::none;
    if (rules.lockout_duration == seconds(0) || now < *since + rules.lockout_duration)
        return Lock::holds;
    return Lock::has_ended;
}

void record_failure(BindOutcome& outcome, const PasswordRules& rules, const AccountState& state,
                    Moment now) {
    if (rules.max_recorded_failure == 0) return;
    const auto counts = [&](const std::string& time) {
        if (rules.failure_count_interval == seconds(0)) return true;
        const std::optional<sys_seconds> then = try_seconds(time);
        return then && floor<seconds>(now) <= *then + rules.failure_count_interval;
    };
    const auto before = std::ranges::count_if(state.failure_times, counts);
    // The first failure after a lock has ended by time never locks, though those before it count.
    const bool is_first = lock_of(state, rules, floor<seconds>(now)) == Lock::has_ended;
    if (rules.max_failure > 0 && before + 1 >= rules.max_failure && !is_first)
        outcome.changes.push_back({account::locked_time, {time_in_seconds(now)}});

    std::vector<std::string> times = state.failure_times;
    while (std::ranges::find(times, time_in_microseconds(now)) != times.end())
        now += std::chrono::microseconds(1);
    times.push_back(time_in_microseconds(now));
    const auto remembered = static_cast<std::size_t>(rules.max_recorded_failure);
    if (times.size() > remembered) times.erase(times.begin(), times.end() - remembered);
    outcome.changes.push_back({account::failure_times, std::move(times)});
}

// Whether an expired password is good for one more login, which is written down.
bool is_grace_left(BindOutcome& outcome, const PasswordRules& rules, const AccountState& state,
                   seconds since_expiry, Moment now) {
    const bool is_over = rules.grace_expiry != seconds(0) && since_expiry > rules.grace_expiry;
    const int used = static_cast<int>(state.grace_times.size());
    if (is_over || used >= rules.grace_auth_n_limit) return false;
    outcome.policy.logins_left = rules.grace_auth_n_limit - used - 1;
    std::vector<std::string> times = state.grace_times;
    times.push_back(time_in_microseconds(now));
    outcome.changes.push_back({account::grace_times, std::move(times)});
    return true;
}

// A password that is to be changed anyway is not refused for its age.
void judge_age(BindOutcome& outcome, const PasswordRules& rules, const AccountState& state,
               Moment now) {
    const std::optional<sys_seconds> changed = try_seconds(state.changed_time);
    if (rules.max_age == seconds(0) || !changed) return;
    const seconds left = rules.max_age - (floor<seconds>(now) - *changed);
    if (left >= seconds(0) || outcome.is_restricted()) {
        if (left < rules.expire_warning)
            outcome.policy.seconds_before_expiry =
                static_cast<int>(std::max(left, seconds(0)).count());
    } else if (!is_grace_left(outcome, rules, state, -left, now)) {
        outcome.code = result_code::invalid_credentials;
        outcome.policy.error = error_expired;
    }
}

}  // namespace

AccountState AccountState::from(const EntryData& user) {
    AccountState state;
    state.changed_time = first_of(user, account::changed_time);
    state.locked_time = first_of(user, account::locked_time);
    state.failure_times = values_of(user, account::failure_times);
    state.grace_times = values_of(user, account::grace_times);
    if (const std::string reset = first_of(user, account::reset); !reset.empty())
        state.reset = reset == "TRUE";
    state.history = values_of(user, account::history);
    state.start_time = first_of(user, account::start_time);
    state.end_time = first_of(user, account::end_time);
    return state;
}

bool AccountState::is_locked(const PasswordRules& rules, Moment moment) const {
    const sys_seconds now = floor<seconds>(moment);
    if (!start_time.empty()) {
        const std::optional<sys_seconds> start = try_seconds(start_time);
        if (!start || now < *start) return true;
    }
    if (!end_time.empty()) {
        const std::optional<sys_seconds> end = try_seconds(end_time);
        if (!end || *end <= now) return true;
    }
    return lock_of(*this, rules, now) == Lock::holds;
}

BindOutcome outcome_of_bind(const PasswordRules& rules, const AccountState& state, bool is_right,
                            Moment now) {
    BindOutcome outcome;
    if (state.is_locked(rules, now)) {
        outcome.code = result_code::invalid_credentials;
        outcome.policy.error = error_locked;
        return outcome;
    }
    if (lock_of(state, rules, floor<seconds>(now)) == Lock::has_ended)
        outcome.changes.push_back({account::locked_time, {}});
    if (!is_right) {
        outcome.code = result_code::invalid_credentials;
        record_failure(outcome, rules, state, now);
        return outcome;
    }
    if (!state.failure_times.empty()) outcome.changes.push_back({account::failure_times, {}});
    if (rules.must_change && state.reset == true) outcome.policy.error = error_to_be_changed;
    judge_age(outcome, rules, state, now);
    return outcome;
}

std::vector<Replacement> changes_with_unlocking(const AccountState& state) {
    if (state.failure_times.empty()) return {};
    return {{account::failure_times, {}}};
}

}  // namespace orvo::directory
