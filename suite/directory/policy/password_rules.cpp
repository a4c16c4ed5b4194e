#include "suite/directory/policy/password_rules.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <string_view>
#include <variant>

#include "suite/directory/names/ascii.h"

namespace orvo::directory {
namespace {

using Seconds = PasswordRules::Seconds;
using Field = std::variant<bool PasswordRules::*, int PasswordRules::*, Seconds PasswordRules::*>;

struct Row {
    std::string_view attribute;
    Field field;
};
constexpr Row rows[] = {
    {"pwdLockout", &PasswordRules::lockout},
    {"pwdMaxFailure", &PasswordRules::max_failure},
    {"pwdMaxRecordedFailure", &PasswordRules::max_recorded_failure},
    {"pwdFailureCountInterval", &PasswordRules::failure_count_interval},
    {"pwdLockoutDuration", &PasswordRules::lockout_duration},
    {"pwdMaxAge", &PasswordRules::max_age},
    {"pwdExpireWarning", &PasswordRules::expire_warning},
    {"pwdGraceAuthNLimit", &PasswordRules::grace_auth_n_limit},
    {"pwdGraceExpiry", &PasswordRules::grace_expiry},
    {"pwdMustChange", &PasswordRules::must_change},
    {"pwdAllowUserChange", &PasswordRules::allow_user_change},
    {"pwdSafeModify", &PasswordRules::safe_modify},
    {"pwdMinAge", &PasswordRules::min_age},
    {"pwdInHistory", &PasswordRules::in_history},
    {"pwdCheckQuality", &PasswordRules::check_quality},
    {"pwdMinLength", &PasswordRules::min_length},
    {"pwdMaxLength", &PasswordRules::max_length},
};

// Below 0 as 0, and too large as the largest: no rule is looser by being too large to be counted.
int number_in(std::string_view value) {
    constexpr int largest = std::numeric_limits<int>::max();
    int number = 0;
    const auto [rest, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (error == std::errc::result_out_of_range) number = value.starts_with('-') ? 0 : largest;
    return std::max(number, 0);
}

void set(PasswordRules& rules, const Field& field, std::string_view value) {
    if (const auto* flag = std::get_if<bool PasswordRules::*>(&field))
        rules.*(*flag) = value == "TRUE";
    else if (const auto* number = std::get_if<int PasswordRules::*>(&field))
        rules.*(*number) = number_in(value);
    else
        rules.*std::get<Seconds PasswordRules::*>(field) = Seconds(number_in(value));
}

}  // namespace

PasswordRules PasswordRules::from(const EntryData& policy) {
    PasswordRules rules;
    for (const Attribute& attribute : policy.attributes)
        for (const Row& row : rows)
            if (!attribute.values.empty() &&
                ascii::equal_ignoring_case(attribute.name, row.attribute))
                set(rules, row.field, attribute.values.front());
    rules.max_recorded_failure = std::max(rules.max_recorded_failure, rules.max_failure);
    return rules;
}

}  // namespace orvo::directory
