#pragma once

// The small languages inside a page: directives, includes, and what is not known here.

#include <optional>
#include <string>
#include <string_view>

#include "host/engine/script_engine.h"

namespace orvo::web {

// What a page's directives settle.
struct PageSettings {
    bool has_session = true;  // EnableSessionState
};

// What stands between "<%@" and "%>". Understood are Language (ECMAScript: "JScript",
// "JavaScript"), CodePage (65001), LCID (1033, or 127 for no country's), EnableSessionState, and a
// Transaction that none is needed for. Raises PageError for any other value, and anything else.
void read_directive(std::string_view text, const script::Place& place, PageSettings& settings);

// Raises PageError for the name of another language.
void require_ecmascript(std::string_view language, const script::Place& place);

struct Include {
    std::string path;
    bool is_virtual = false;
};

// "<!-- #include file="x" -->"; nothing for any other comment. Raises PageError for an include that
// names no file.
std::optional<Include> try_include(std::string_view comment, const script::Place& place);

}  // namespace orvo::web
