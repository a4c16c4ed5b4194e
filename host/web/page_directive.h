#pragma once

// The small languages inside a page: directives, includes, and what is not known here.

#include <optional>
#include <string>
#include <string_view>

#include "host/engine/script_engine.h"

namespace orvo::web {

// What stands between "<%@" and "%>". Raises PageError for a language other than ECMAScript
// ("JScript", "JavaScript"), a code page other than 65001, or anything else.
void check_directive(std::string_view text, const script::Place& place);

struct Include {
    std::string path;
    bool is_virtual = false;
};

// "<!-- #include file="x" -->"; nothing for any other comment. Raises PageError for an include that
// names no file.
std::optional<Include> try_include(std::string_view comment, const script::Place& place);

// Where a `<script runat="server">` begins; npos where there is none.
std::size_t find_server_script(std::string_view text);

}  // namespace orvo::web
