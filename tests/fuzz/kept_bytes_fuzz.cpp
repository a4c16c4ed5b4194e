// What a shared store gives back of a session.

#include "host/web/sessions/kept_bytes.h"
#include "platform/values/value_bytes.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {

using namespace orvo::web;

namespace {

// Values that are no number equal nothing, not even themselves.
std::string bytes_of(const Variant& value) {
    std::string bytes;
    append_value(bytes, value);
    return bytes;
}

}  // namespace

void kept_bytes_properties(std::string_view input) {
    const auto session = try_session_of(input);
    if (session) require(web::bytes_of(*session) == input, "a session has one form");
    const auto values = try_values_of(input);
    if (!values) return;
    require(web::bytes_of(*values) == input, "values have one form");
    for (std::size_t i = 0; i < values->count(); ++i)
        require(bytes_of(values->get(lower(values->name_at(i)))) == bytes_of(values->value_at(i)),
                "each is found by its name");
}

}  // namespace orvo::fuzz
