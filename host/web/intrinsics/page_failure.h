#pragma once

#include <filesystem>

#include "host/web/pages/page_compiler.h"
#include "platform/values/object.h"

namespace orvo::web {

// What Server.GetLastError tells an error page.
struct PageFailure {
    Text asp_code = {};         // "ASP 0113" of a page that took too long, otherwise empty
    std::int32_t number = 0;    // 0: nothing has failed
    Text category = {};         // who raised it: the component, "JScript runtime", "Pages", …
    std::string file = {};      // as a path of the site
    int line = 0;               // 0: not known
    Text source_line = {};      // the text of that line
    Text description = {};      //
    Text asp_description = {};  // where the server itself raised it
    Text reference = {};        // under which the log has it
};

// Reads the line that failed below the root.
PageFailure failure_of(const PageError& error, const std::filesystem::path& root);
PageFailure failure_of(const script::ScriptError& error, const std::filesystem::path& root);

// Of anything else that kept a request from being answered.
PageFailure failure_of(const std::exception& error);

Object asp_error(PageFailure failure);

}  // namespace orvo::web
