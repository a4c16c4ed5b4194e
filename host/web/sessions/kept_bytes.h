#pragma once

// What pages keep, as the bytes that a shared store has of it. Any thread.

#include <optional>
#include <string>
#include <string_view>

#include "host/web/sessions/session_store.h"

namespace orvo::web {

// Names in their order and spelling, values exactly as they are. Raise 5 for an object (but the
// empty one) and what append_value refuses.
std::string bytes_of(const NamedValues& values);
std::string bytes_of(const SessionData& session);

// Nothing for bytes that the above do not write, of a version that is not known, say.
std::optional<NamedValues> try_values_of(std::string_view bytes);
std::optional<SessionData> try_session_of(std::string_view bytes);

}  // namespace orvo::web
