#pragma once

#include <filesystem>

#include "host/common/command_line.h"
#include "host/web/server/http_server.h"

namespace orvo::web {

struct Options {
    std::filesystem::path site = {};
    std::filesystem::path config = {};  // empty: the site's own
    ServerOptions server = {};
    std::filesystem::path access_log = {};
    bool shows_details = false;
};

// orvo-web's; what is read goes to `options`.
struct WebCommandLine : CommandLine {
    WebCommandLine();

    Options options;
};

}  // namespace orvo::web
