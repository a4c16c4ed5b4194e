#include <algorithm>
#include <charconv>

#include "host/admin/diagnosis/account.h"
#include "suite/directory/names/ascii.h"

namespace orvo::admin {
namespace {

using namespace directory;
using std::chrono::floor;
using std::chrono::seconds;
using std::chrono::sys_seconds;

std::int64_t number_of(const EntryData& entry, const char* attribute) {
    const std::string value = value_of(entry, attribute);
    std::int64_t number = 0;
    std::from_chars(value.data(), value.data() + value.size(), number);
    return number;
}

std::size_t count_of(const EntryData& entry, const char* attribute) {
    return static_cast<std::size_t>(std::max<std::int64_t>(number_of(entry, attribute), 0));
}

sys_seconds now_of(const Account& account) { return floor<seconds>(account.now); }

std::string unlock(const Account& account) {
    return "orvo users unlock " + shell_word(account.user);
}
std::string enable(const Account& account) {
    return "orvo users enable " + shell_word(account.user);
}
std::string set_new(const Account& account) {
    return "orvo users password " + shell_word(account.user);
}

Finding expiring(const Account& account, sys_seconds expiry) {
    if (now_of(account) <= expiry)
        return found("expires " + readable_from(now_of(account), expiry));
    return failed("It expired on " + readable(expiry) + ".", set_new(account));
}

Finding to_be_changed(const Account& account) {
    return failed("It has to be changed at the next login.",
                  "Let the user change it on the site's page for that, or " + set_new(account));
}

// 389 directory server: a time of 1970 stands for "until somebody does something about it". The
// second after it is that of a password that an administrator has set and its user has used or set
// anew since: nothing comes of it.
constexpr sys_seconds at_once{};
constexpr sys_seconds used_since = at_once + seconds(1);

Finding enabled_389(const Account& account) {
    if (!ascii::equal_ignoring_case(value_of(account.entry, "nsAccountLock"), "true"))
        return found("yes");
    return failed("It has been disabled (nsAccountLock).", enable(account));
}

Finding locked_389(const Account& account) {
    const auto until = is_in_force(account, &PasswordRules::lockout)
                           ? try_seconds(value_of(account.entry, "accountUnlockTime"))
                           : std::nullopt;
    if (until && *until == at_once) return failed("Until somebody unlocks it.", unlock(account));
    if (until && now_of(account) < *until)
        return failed("Until " + readable(*until) + ".", unlock(account));
    return not_locked(account, count_of(account.entry, "passwordRetryCount"));
}

Finding age_389(const Account& account) {
    const Policy& policy = account.policy;
    const auto expiry = try_seconds(value_of(account.entry, "passwordExpirationTime"));
    if (!expiry || *expiry == used_since) return found("does not expire");
    if (*expiry == at_once) {
        if (!is_in_force(account, &PasswordRules::must_change))
            return found("need not be changed: the password policy has no passwordMustChange");
        return to_be_changed(account);
    }
    if (policy.kind == Policy::Kind::known && policy.rules.max_age == seconds(0))
        return found("does not expire: the password policy has no passwordExp");
    if (now_of(account) <= *expiry || policy.kind != Policy::Kind::known)
        return expiring(account, *expiry);
    const auto used = number_of(account.entry, "passwordGraceUserTime");
    return expired(account, *expiry,
                   std::max(policy.rules.grace_auth_n_limit - static_cast<int>(used), 0));
}

// Active Directory: steps of 100 ns since 1601; 0 and the largest number stand for never.
constexpr std::int64_t steps_in_second = 10'000'000;

std::optional<sys_seconds> file_time(std::int64_t steps) {
    constexpr seconds epoch{11'644'473'600};
    constexpr std::int64_t year_9999 = 2'650'467'743'990'000'000;
    if (steps <= 0 || steps > year_9999) return std::nullopt;
    return sys_seconds(seconds(steps / steps_in_second) - epoch);
}

constexpr std::int64_t is_disabled = 0x2;
constexpr std::int64_t is_locked_out = 0x10;
constexpr std::int64_t never_expires = 0x10000;

Finding enabled_active_directory(const Account& account) {
    if (number_of(account.entry, "userAccountControl") & is_disabled)
        return failed("It has been disabled (userAccountControl).", enable(account));
    const auto end = file_time(number_of(account.entry, "accountExpires"));
    if (end && *end <= now_of(account))
        return failed("It has not been valid since " + readable(*end) + " (accountExpires).");
    return found("yes");
}

Finding locked_active_directory(const Account& account) {
    if (!(number_of(account.entry, "msDS-User-Account-Control-Computed") & is_locked_out))
        return not_locked(account, count_of(account.entry, "badPwdCount"));
    const auto since = file_time(number_of(account.entry, "lockoutTime"));
    if (!since) return failed("The domain's policy has locked it.", unlock(account));
    const seconds duration = account.policy.rules.lockout_duration;
    std::string end = ", until somebody unlocks it.";
    if (account.policy.kind != Policy::Kind::known)
        end = "; until when, the domain's policy says.";
    else if (duration != seconds(0))
        end = ", until " + readable(*since + duration) + " by the domain's policy.";
    return failed("Since " + readable(*since) + end, unlock(account));
}

Finding age_active_directory(const Account& account) {
    if (number_of(account.entry, "userAccountControl") & never_expires)
        return found("does not expire");
    const std::string last_set = value_of(account.entry, "pwdLastSet");
    if (last_set.empty()) return unknown("The service account may not read pwdLastSet.");
    if (last_set == "0") return to_be_changed(account);
    const auto expiry = file_time(number_of(account.entry, "msDS-UserPasswordExpiryTimeComputed"));
    return expiry ? expiring(account, *expiry) : found("does not expire");
}

// Steps below 0; none and the least number stand for "until somebody unlocks it".
seconds duration_in(std::int64_t steps) {
    constexpr std::int64_t longest = 10 * 366 * std::int64_t{86'400} * steps_in_second;
    return steps < -longest || steps >= 0 ? seconds(0) : seconds(-steps / steps_in_second);
}

}  // namespace

PasswordRules rules_of_389(const EntryData& policy) {
    const auto is_on = [&](const char* attribute) {
        return ascii::equal_ignoring_case(value_of(policy, attribute), "on");
    };
    PasswordRules rules;
    rules.lockout = is_on("passwordLockout");
    rules.max_failure = static_cast<int>(number_of(policy, "passwordMaxFailure"));
    rules.must_change = is_on("passwordMustChange");
    if (is_on("passwordExp")) rules.max_age = seconds(number_of(policy, "passwordMaxAge"));
    rules.grace_auth_n_limit = static_cast<int>(number_of(policy, "passwordGraceLimit"));
    return rules;
}

PasswordRules rules_of_active_directory(const EntryData& policy) {
    const auto number = [&](const char* of_domain, const char* of_some) {
        return values_of(policy, of_some).empty() ? number_of(policy, of_domain)
                                                  : number_of(policy, of_some);
    };
    PasswordRules rules;
    rules.max_failure = static_cast<int>(number("lockoutThreshold", "msDS-LockoutThreshold"));
    rules.lockout = rules.max_failure > 0;
    rules.lockout_duration = duration_in(number("lockoutDuration", "msDS-LockoutDuration"));
    return rules;
}

const AccountReader directory_389_reader{enabled_389, locked_389, age_389};
const AccountReader active_directory_reader{enabled_active_directory, locked_active_directory,
                                            age_active_directory};

}  // namespace orvo::admin
