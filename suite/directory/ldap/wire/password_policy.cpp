#include "suite/directory/ldap/wire/password_policy.h"

#include <utility>

#include "suite/directory/ldap/wire/ber.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::directory::ldap {
namespace {

// An older control that says that the password was right and must be changed.
constexpr std::string_view expired_control = "2.16.840.1.113730.3.4.4";

// Codes that a directory of another make puts into the message of a refused bind, after "data ".
struct DataCode {
    std::string_view code;
    int number;
};
constexpr DataCode data_codes[] = {
    {"532", password_check::expired},  {"533", password_check::disabled},
    {"701", password_check::disabled}, {"773", password_check::expired},
    {"775", password_check::locked},
};

std::optional<int> judged_by_message(std::string_view message) {
    constexpr std::string_view mark = "data ";
    const std::size_t found = message.find(mark);
    if (found == std::string_view::npos) return std::nullopt;
    const std::string_view rest = message.substr(found + mark.size());
    for (const DataCode& row : data_codes)
        if (rest.substr(0, rest.find_first_of(", ")) == row.code) return row.number;
    return std::nullopt;
}

std::optional<int> judged_by_policy(const BindResult& bind) {
    for (const Control& control : bind.controls) {
        if (control.oid == expired_control) return password_check::expired;
        if (control.oid != policy_control) continue;
        const std::optional<PasswordPolicy> policy = PasswordPolicy::try_decode(control.value);
        if (!policy) continue;
        // 0 and 2 are reported for the right password only.
        if (policy->error == 0 || policy->error == 2) return password_check::expired;
        if (policy->error == 1) return password_check::locked;
        if (policy->logins_left && bind.ok()) return password_check::expired;
    }
    return std::nullopt;
}

}  // namespace

std::optional<PasswordPolicy> PasswordPolicy::try_decode(std::string_view value) {
    PasswordPolicy policy;
    if (value.empty()) return policy;
    const std::optional<ber::Element> sequence = ber::take_element(value);
    if (!sequence || sequence->tag != ber::sequence) return std::nullopt;
    std::string_view rest = sequence->content;
    while (!rest.empty()) {
        const std::optional<ber::Element> element = ber::take_element(rest);
        if (!element) return std::nullopt;
        if (element->tag == 0xA0) {
            std::string_view warnings = element->content;
            const std::optional<ber::Element> warning = ber::take_element(warnings);
            if (!warning) return std::nullopt;
            const std::optional<int> number = ber::number_in(warning->content);
            if (!number) return std::nullopt;
            if (warning->tag == 0x80) policy.seconds_before_expiry = number;
            if (warning->tag == 0x81) policy.logins_left = number;
        } else if (element->tag == 0x81) {
            policy.error = ber::number_in(element->content);
            if (!policy.error) return std::nullopt;
        }
    }
    return policy;
}

std::optional<int> judged(const BindResult& bind) {
    switch (bind.code) {
        case result_code::success:
        case result_code::invalid_credentials:
        case result_code::unwilling_to_perform:
        case result_code::constraint_violation:
            if (const std::optional<int> number = judged_by_policy(bind)) return number;
            break;
        default:
            break;
    }
    switch (bind.code) {
        case result_code::success:
            return password_check::right;
        case result_code::invalid_credentials:
            return judged_by_message(bind.message).value_or(password_check::wrong);
        case result_code::no_such_object:
        case result_code::invalid_name:
        case result_code::inappropriate_authentication:
            return password_check::wrong;
        case result_code::unwilling_to_perform:
            return judged_by_message(bind.message).value_or(password_check::disabled);
        case result_code::constraint_violation:  // "too many failed attempts", where it is used
        case result_code::admin_limit_exceeded:
        case result_code::busy:
            return password_check::too_many_failures;
        default:
            return std::nullopt;
    }
}

}  // namespace orvo::directory::ldap
