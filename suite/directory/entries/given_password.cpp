#include "suite/directory/entries/given_password.h"

#include <optional>

#include "platform/values/array_shape.h"
#include "platform/values/failure.h"
#include "platform/values/wiped.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_form.h"

namespace orvo::directory {

namespace {

Secret read(const Variant& value) {
    if (std::optional<std::string> bytes = value.try_bytes()) {
        Secret secret = Secret::of_bytes(*bytes);
        overwrite(bytes->data(), bytes->size());
        return secret;
    }
    if (value.is_array()) {
        const std::size_t count = element_count(value);
        if (count > 1 || bounds_of(value).size() > 1)
            raise_runtime_error(runtime_error::type_mismatch);
        return count == 0 ? Secret() : read(Wiped(element_at(value, 0)).value);
    }
    auto secret = value.to<Secret>();
    if (!secret.is_well_formed())
        raise_code(result_code::invalid_syntax, "A password cannot hold half of a surrogate pair.");
    return secret;
}

}  // namespace

Secret password_in(const Variant& value) {
    Secret password = read(value);
    if (const auto why = unusable(password)) raise_code(why->code, why->sentence);
    return password;
}

}  // namespace orvo::directory
