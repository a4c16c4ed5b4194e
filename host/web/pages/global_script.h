#pragma once

// global.asa: what a site does when it begins and ends, and when a browser's session does.
//
//     <script language="JScript" runat="server">
//     function Application_OnStart() { Application("visitors") = 0; }
//     function Session_OnStart() { Session("since") = new Date(); }
//     function Session_OnEnd() { … }
//     function Application_OnEnd() { … }
//     </script>

#include <filesystem>
#include <optional>
#include <set>
#include <string>

#include "host/engine/script_engine.h"

namespace orvo::web {

enum class GlobalEvent { application_start, application_end, session_start, session_end };
using Handlers = std::set<GlobalEvent>;

// "session_onstart"; handlers are found by it without regard to case.
const char* name_of(GlobalEvent event);
// A program that calls the handler of an event, if there is one, and one that calls
// found_function(event) for each that there is.
inline constexpr const char* found_function = "orvo_found_handler";
const script::Program& call_of(GlobalEvent event);
const script::Program& search_for_handlers();

// global.asa as it was read.
struct GlobalScript {
    script::Program program;
    Handlers handlers = {};

    bool handles(GlobalEvent event) const { return handlers.contains(event); }
};

// The path of global.asa, in whatever case its name is written; nothing where the site has none.
std::optional<std::string> find_global(const std::filesystem::path& root);

}  // namespace orvo::web
