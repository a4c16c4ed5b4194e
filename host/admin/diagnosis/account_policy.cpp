#include <algorithm>
#include <cstdio>

#include "host/admin/diagnosis/account.h"
#include "suite/directory/policy/account_state.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::admin {

using namespace directory;
using std::chrono::days;
using std::chrono::floor;
using std::chrono::seconds;
using std::chrono::sys_seconds;

std::string readable(sys_seconds time) {
    const std::string digits = time_in_seconds(time);
    const auto part = [&](std::size_t at) { return digits.substr(at, 2); };
    return digits.substr(0, 4) + "-" + part(4) + "-" + part(6) + " " + part(8) + ":" + part(10) +
           ":" + part(12) + " UTC";
}

std::string readable_from(sys_seconds now, sys_seconds time) {
    const auto count = floor<days>(time - now).count();
    return "in " + std::to_string(count) + (count == 1 ? " day" : " days") + ", on " +
           readable(time);
}

std::string wrong_passwords(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " wrong password" : " wrong passwords");
}

bool is_in_force(const Account& account, bool PasswordRules::*rule) {
    if (account.policy.kind == Policy::Kind::hidden) return true;
    return account.policy.kind == Policy::Kind::known && account.policy.rules.*rule;
}

Finding not_locked(const Account& account, std::size_t failures) {
    if (failures == 0) return found("no");
    std::string text = "no, after " + wrong_passwords(failures);
    if (account.policy.kind == Policy::Kind::known && account.policy.rules.lockout &&
        account.policy.rules.max_failure > 0)
        text += "; " + std::to_string(account.policy.rules.max_failure) + " lock it";
    return found(text);
}

Finding expired(const Account& account, sys_seconds expiry, int logins_left) {
    const std::string text = "It expired on " + readable(expiry);
    const std::string set_new = "orvo users password " + shell_word(account.user);
    if (logins_left == 0) return failed(text + "; no grace login is left.", set_new);
    return failed(text + "; " + std::to_string(logins_left) +
                      (logins_left == 1 ? " grace login is left." : " grace logins are left."),
                  "Let the user change it on the site's page for that, or " + set_new);
}

namespace {

bool has_policy(const Account& account) { return account.policy.kind != Policy::Kind::none; }

Finding enabled(const Account& account) {
    const AccountState state = AccountState::from(account.entry);
    const auto now = floor<seconds>(account.now);
    if (has_policy(account)) {
        const auto start = try_seconds(state.start_time);
        if (start && now < *start)
            return failed("It is not valid before " + readable(*start) + " (pwdStartTime).");
        const auto end = try_seconds(state.end_time);
        if (end && *end <= now)
            return failed("It has not been valid since " + readable(*end) + " (pwdEndTime).");
    }
    if (state.locked_time != account::locked_for_good) return found("yes");
    if (is_in_force(account, &PasswordRules::lockout))
        return failed("It has been disabled (pwdAccountLockedTime " + state.locked_time + ").",
                      "orvo users enable " + shell_word(account.user));
    return found("yes: pwdAccountLockedTime counts for nothing, as no password policy locks");
}

Finding locked(const Account& account) {
    const AccountState state = AccountState::from(account.entry);
    const auto since = try_seconds(state.locked_time);
    if (!since || !is_in_force(account, &PasswordRules::lockout))
        return not_locked(account, state.failure_times.size());
    std::string text =
        "Since " + readable(*since) + ", after " + wrong_passwords(state.failure_times.size());
    if (account.policy.kind == Policy::Kind::hidden) {
        text += "; until when, the password policy says, which the service account cannot see.";
    } else if (!state.is_locked(account.policy.rules, account.now)) {
        return found("no: a lock has ended, set on " + readable(*since));
    } else if (account.policy.rules.lockout_duration == seconds(0)) {
        text += ", until somebody unlocks it.";
    } else {
        text += ", until " + readable(*since + account.policy.rules.lockout_duration) + ".";
    }
    return failed(text, "orvo users unlock " + shell_word(account.user));
}

Finding age(const Account& account) {
    const AccountState state = AccountState::from(account.entry);
    const std::string set_new = "orvo users password " + shell_word(account.user);
    if (state.reset == true && is_in_force(account, &PasswordRules::must_change))
        return failed("It has to be changed at the next login (pwdReset).",
                      "Let the user change it on the site's page for that, or " + set_new);
    const auto changed = try_seconds(state.changed_time);
    if (account.policy.kind == Policy::Kind::hidden)
        return unknown(changed ? "It was set on " + readable(*changed) +
                                     "; when it expires, the password policy says, which the "
                                     "service account cannot see."
                               : "The service account cannot see the password policy.");
    if (!has_policy(account) || account.policy.rules.max_age == seconds(0) || !changed)
        return found("does not expire");
    const PasswordRules& rules = account.policy.rules;
    const auto now = floor<seconds>(account.now);
    const sys_seconds expiry = *changed + rules.max_age;
    if (now <= expiry) return found("expires " + readable_from(now, expiry));
    const bool is_over = rules.grace_expiry != seconds(0) && now > expiry + rules.grace_expiry;
    const int used = static_cast<int>(state.grace_times.size());
    const int left = is_over ? 0 : std::max(rules.grace_auth_n_limit - used, 0);
    return expired(account, expiry, left);
}

Finding not_told(const Account&) { return unknown("This kind of server is not known."); }

}  // namespace

const AccountReader policy_reader{enabled, locked, age};
const AccountReader unknown_reader{not_told, not_told, not_told};

}  // namespace orvo::admin
