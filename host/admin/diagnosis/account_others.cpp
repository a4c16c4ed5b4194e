#include <charconv>

#include "host/admin/diagnosis/account.h"
#include "suite/directory/names/ascii.h"

namespace orvo::admin {
namespace {

using namespace directory;
using std::chrono::floor;
using std::chrono::seconds;
using std::chrono::sys_seconds;

std::int64_t number_of(const Account& account, const char* attribute) {
    const std::string value = value_of(account.entry, attribute);
    std::int64_t number = 0;
    std::from_chars(value.data(), value.data() + value.size(), number);
    return number;
}

sys_seconds now_of(const Account& account) { return floor<seconds>(account.now); }

std::string unlock(const Account& account) { return "orvo users unlock " + account.user; }
std::string enable(const Account& account) { return "orvo users enable " + account.user; }
std::string set_new(const Account& account) { return "orvo users password " + account.user; }

Finding expiring(const Account& account, sys_seconds expiry) {
    if (now_of(account) <= expiry)
        return found("expires " + readable_from(now_of(account), expiry));
    return failed("It expired on " + readable(expiry) + ".", set_new(account));
}

Finding to_be_changed(const Account& account) {
    return failed("It has to be changed at the next login.",
                  "Let the user change it on the site's page for that, or " + set_new(account));
}

// 389 directory server: a time of 1970 stands for "until somebody does something about it". A
// password that is to be changed has the second after it once its user has logged in.
constexpr sys_seconds at_once{};
constexpr sys_seconds at_once_and_told = at_once + seconds(1);

Finding enabled_389(const Account& account) {
    if (!ascii::equal_ignoring_case(value_of(account.entry, "nsAccountLock"), "true"))
        return found("yes");
    return failed("It has been disabled (nsAccountLock).", enable(account));
}

Finding locked_389(const Account& account) {
    const std::int64_t failures = number_of(account, "passwordRetryCount");
    const auto until = try_seconds(value_of(account.entry, "accountUnlockTime"));
    if (until && *until == at_once) return failed("Until somebody unlocks it.", unlock(account));
    if (until && now_of(account) < *until)
        return failed("Until " + readable(*until) + ".", unlock(account));
    if (failures == 0) return found("no");
    return found("no, after " + wrong_passwords(static_cast<std::size_t>(failures)));
}

Finding age_389(const Account& account) {
    const auto expiry = try_seconds(value_of(account.entry, "passwordExpirationTime"));
    if (!expiry) return found("does not expire");
    return *expiry <= at_once_and_told ? to_be_changed(account) : expiring(account, *expiry);
}

// Active Directory: steps of 100 ns since 1601; 0 and the largest number stand for never.
std::optional<sys_seconds> file_time(std::int64_t steps) {
    constexpr std::int64_t steps_in_second = 10'000'000;
    constexpr seconds epoch{11'644'473'600};
    constexpr std::int64_t year_9999 = 2'650'467'743'990'000'000;
    if (steps <= 0 || steps > year_9999) return std::nullopt;
    return sys_seconds(seconds(steps / steps_in_second) - epoch);
}

constexpr std::int64_t is_disabled = 0x2;
constexpr std::int64_t is_locked_out = 0x10;
constexpr std::int64_t never_expires = 0x10000;

Finding enabled_active_directory(const Account& account) {
    if (number_of(account, "userAccountControl") & is_disabled)
        return failed("It has been disabled (userAccountControl).", enable(account));
    const auto end = file_time(number_of(account, "accountExpires"));
    if (end && *end <= now_of(account))
        return failed("It has not been valid since " + readable(*end) + " (accountExpires).");
    return found("yes");
}

Finding locked_active_directory(const Account& account) {
    const std::int64_t failures = number_of(account, "badPwdCount");
    if (number_of(account, "msDS-User-Account-Control-Computed") & is_locked_out) {
        const auto since = file_time(number_of(account, "lockoutTime"));
        return failed(since
                          ? "Since " + readable(*since) + "; until when, the domain's policy says."
                          : "The domain's policy has locked it.",
                      unlock(account));
    }
    if (failures == 0) return found("no");
    return found("no, after " + wrong_passwords(static_cast<std::size_t>(failures)));
}

Finding age_active_directory(const Account& account) {
    if (number_of(account, "userAccountControl") & never_expires) return found("does not expire");
    const std::string last_set = value_of(account.entry, "pwdLastSet");
    if (last_set.empty()) return unknown("The service account may not read pwdLastSet.");
    if (last_set == "0") return to_be_changed(account);
    const auto expiry = file_time(number_of(account, "msDS-UserPasswordExpiryTimeComputed"));
    return expiry ? expiring(account, *expiry) : found("does not expire");
}

}  // namespace

const AccountReader directory_389_reader{enabled_389, locked_389, age_389};
const AccountReader active_directory_reader{enabled_active_directory, locked_active_directory,
                                            age_active_directory};

}  // namespace orvo::admin
