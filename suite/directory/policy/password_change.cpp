#include "suite/directory/policy/password_change.h"

#include <algorithm>
#include <string>

#include "suite/directory/policy/result_codes.h"
#include "suite/directory/policy/stored_password.h"

namespace orvo::directory {
namespace {

using std::chrono::floor;
using std::chrono::seconds;
using std::chrono::sys_seconds;

constexpr int error_not_allowed = 3;
constexpr int error_former_needed = 4;
constexpr int error_quality = 5;
constexpr int error_too_short = 6;
constexpr int error_too_young = 7;
constexpr int error_in_history = 8;
constexpr int error_too_long = 9;

constexpr std::string_view octet_string = "1.3.6.1.4.1.1466.115.121.1.40";

ChangeRefusal refusal(int code, std::string_view message, int error) {
    return {code, message, {{}, {}, error}};
}

bool is_too_young(const PasswordRules& rules, const AccountState& state, Moment now) {
    if (state.reset == true) return false;
    const std::optional<sys_seconds> changed = try_seconds(state.changed_time);
    return changed && floor<seconds>(now) - *changed < rules.min_age;
}

// The error of the password's form; nothing where it has none.
std::optional<int> error_of_quality(const PasswordRules& rules, std::string_view password) {
    if (rules.check_quality == 0) return std::nullopt;
    const std::size_t size = password.size();
    if (size == 0 || size < static_cast<std::size_t>(rules.min_length)) return error_too_short;
    if (rules.max_length > 0 && size > static_cast<std::size_t>(rules.max_length))
        return error_too_long;
    if (rules.check_quality > 1 && is_known_hash(password)) return error_quality;
    return std::nullopt;
}

struct Former {
    std::string_view time;
    std::string_view stored;
    const std::string* written;
};

// The readable ones, the oldest first.
std::vector<Former> former_passwords(const AccountState& state) {
    std::vector<Former> formers;
    for (const std::string& written : state.history) {
        const std::size_t first = written.find('#');
        const std::size_t second =
            written.find('#', first == std::string::npos ? first : first + 1);
        const std::size_t third =
            written.find('#', second == std::string::npos ? second : second + 1);
        if (third == std::string::npos) continue;
        const std::string_view text = written;
        formers.push_back({text.substr(0, first), text.substr(third + 1), &written});
    }
    std::ranges::stable_sort(formers, {}, &Former::time);
    return formers;
}

// The newest ones, no more than `count`.
std::vector<Former> newest(std::vector<Former> formers, int count) {
    const auto kept = static_cast<std::size_t>(count);
    if (formers.size() > kept) formers.erase(formers.begin(), formers.end() - count);
    return formers;
}

std::vector<std::string> history_with(const PasswordRules& rules, const AccountState& state,
                                      std::string_view stored, Moment now) {
    std::vector<std::string> history;
    for (const Former& former :
         newest(former_passwords(state), rules.in_history - (stored.empty() ? 0 : 1)))
        history.push_back(*former.written);
    if (!stored.empty())
        history.push_back(time_in_seconds(now) + "#" + std::string(octet_string) + "#" +
                          std::to_string(stored.size()) + "#" + std::string(stored));
    return history;
}

}  // namespace

ChangeRefusal refusal_of_change(const PasswordRules& rules, const AccountState& state,
                                const PasswordChange& change, Moment now) {
    if (change.former == FormerPassword::wrong)
        return {result_code::unwilling_to_perform, "unwilling to verify old password"};
    if (change.by == ChangedBy::administrator) return {};
    if (!rules.allow_user_change && change.by == ChangedBy::user)
        return refusal(result_code::insufficient_access,
                       "User alteration of password is not allowed", error_not_allowed);
    if (rules.safe_modify && change.former == FormerPassword::not_told)
        return refusal(result_code::insufficient_access,
                       "Must supply old password to be changed as well as new one",
                       error_former_needed);
    if (is_too_young(rules, state, now))
        return refusal(result_code::constraint_violation, "Password is too young to change",
                       error_too_young);
    if (const auto error = error_of_quality(rules, change.password.reveal()))
        return refusal(result_code::constraint_violation, "Password fails quality checking policy",
                       *error);
    if (rules.in_history == 0 || change.stored.empty()) return {};
    if (is_hash_of(change.stored, change.password))
        return refusal(result_code::constraint_violation,
                       "Password is not being changed from existing value", error_in_history);
    for (const Former& former : newest(former_passwords(state), rules.in_history))
        if (is_hash_of(former.stored, change.password))
            return refusal(result_code::constraint_violation,
                           "Password is in history of old passwords", error_in_history);
    return {};
}

std::vector<Replacement> changes_with_password(const PasswordRules& rules,
                                               const AccountState& state, ChangedBy by,
                                               std::string_view stored, Moment now) {
    std::vector<Replacement> changes;
    changes.push_back({account::changed_time, {time_in_seconds(now)}});
    if (!state.grace_times.empty()) changes.push_back({account::grace_times, {}});
    if (!state.locked_time.empty()) changes.push_back({account::locked_time, {}});
    if (!state.failure_times.empty()) changes.push_back({account::failure_times, {}});
    if (rules.must_change && by == ChangedBy::administrator)
        changes.push_back({account::reset, {"TRUE"}});
    else if (state.reset)
        changes.push_back({account::reset, {}});
    if (rules.in_history > 0) {
        if (!state.history.empty() || !stored.empty())
            changes.push_back({account::history, history_with(rules, state, stored, now)});
    } else if (!state.history.empty()) {
        changes.push_back({account::history, {}});
    }
    return changes;
}

}  // namespace orvo::directory
