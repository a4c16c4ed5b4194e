#include "suite/directory/ldap/wire/password_policy.h"

#include "suite/directory/ldap/wire/ber.h"

namespace orvo::directory::ldap {
namespace {

// An older control that says that the password was right and must be changed.
constexpr std::string_view expired_control = "2.16.840.1.113730.3.4.4";

constexpr int expired_error = 0;

}  // namespace

std::optional<PasswordPolicy> try_decode_policy(std::string_view value) {
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

PasswordPolicy policy_in(std::span<const Control> controls) {
    for (const Control& control : controls) {
        if (control.oid == expired_control) return {{}, {}, expired_error};
        if (control.oid != policy_control) continue;
        if (const std::optional<PasswordPolicy> policy = try_decode_policy(control.value))
            return *policy;
    }
    return {};
}

}  // namespace orvo::directory::ldap
