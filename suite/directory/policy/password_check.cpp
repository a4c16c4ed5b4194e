#include "suite/directory/policy/password_check.h"

#include <string>

#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::directory {
namespace {

// Numbers of an account's state that some servers put into the message, after "data ".
struct DataCode {
    std::string_view code;
    int number;
};
constexpr DataCode data_codes[] = {
    {"532", password_check::expired},  {"533", password_check::disabled},
    {"701", password_check::disabled}, {"773", password_check::expired},
    {"775", password_check::locked},
};

std::optional<int> judged_by_data_code(std::string_view message) {
    constexpr std::string_view mark = "data ";
    const std::size_t found = message.find(mark);
    if (found == std::string_view::npos) return std::nullopt;
    const std::string_view rest = message.substr(found + mark.size());
    for (const DataCode& row : data_codes)
        if (rest.substr(0, rest.find_first_of(", ")) == row.code) return row.number;
    return std::nullopt;
}

// "Account inactivated. Contact system administrator.", and the like.
bool says_disabled(std::string_view message) {
    const std::string words = ascii::lower(message);
    return words.find("account") != std::string::npos &&
           (words.find("inactivated") != std::string::npos ||
            words.find("disabled") != std::string::npos);
}

std::optional<int> judged_by_policy(int code, std::string_view message,
                                    const PasswordPolicy& policy) {
    // 0 and 2 are reported for the right password only.
    if (policy.error == 0 || policy.error == 2) return password_check::expired;
    // Some servers have that number for both, and tell them apart in the message.
    if (policy.error == 1)
        return says_disabled(message) ? password_check::disabled : password_check::locked;
    if (policy.logins_left && code == result_code::success) return password_check::expired;
    return std::nullopt;
}

std::optional<int> judged_by_message(std::string_view message) {
    if (const std::optional<int> number = judged_by_data_code(message)) return number;
    if (says_disabled(message)) return password_check::disabled;
    return std::nullopt;
}

}  // namespace

std::optional<int> judged(int code, std::string_view message, const PasswordPolicy& policy) {
    const std::optional<int> by_policy = judged_by_policy(code, message, policy);
    switch (code) {
        case result_code::success:
            return by_policy.value_or(password_check::right);
        case result_code::invalid_credentials:
            if (by_policy) return by_policy;
            return judged_by_message(message).value_or(password_check::wrong);
        case result_code::unwilling_to_perform:
            return by_policy ? by_policy : judged_by_message(message);
        case result_code::constraint_violation:  // "too many failed attempts", where it is used
            return by_policy.value_or(password_check::too_many_failures);
        case result_code::no_such_object:
        case result_code::invalid_name:
        case result_code::inappropriate_authentication:
            return password_check::wrong;
        default:
            return std::nullopt;
    }
}

}  // namespace orvo::directory
