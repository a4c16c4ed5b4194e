// What a shared store gives back of a session.

#include "host/web/sessions/kept_bytes.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {

using namespace orvo::web;

void kept_bytes_properties(std::string_view input) {
    const auto session = try_session_of(input);
    if (session) require(bytes_of(*session) == input, "a session has one form");
    const auto values = try_values_of(input);
    if (!values) return;
    require(bytes_of(*values) == input, "values have one form");
    for (const Text& name : values->names())
        require(values->get(name) == values->get(lower(name)), "each is found by its name");
}

}  // namespace orvo::fuzz
