#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/web/http_server.h"

namespace orvo::web {

inline constexpr const char* usage =
    "usage: orvo-web SITE [options]\n"
    "Serves the pages of the folder SITE until it is interrupted.\n"
    "\n"
    "  --address ADDRESS   listen on this address (127.0.0.1)\n"
    "  --port PORT         listen on this port (0: any that is free)\n"
    "  --workers N         requests that are served at a time (16)\n"
    "  --certificate FILE  serve HTTPS with this certificate (PEM) ...\n"
    "  --key FILE          ... and its private key\n"
    "  --config FILE       settings of the site (SITE/site.ini, where there is one)\n"
    "  --access-log FILE   append a line for each request\n"
    "  --details           show the reasons of failures in the browser\n";

struct Options {
    std::filesystem::path site;
    std::filesystem::path config = {};  // empty: the site's own
    ServerOptions server = {};
    std::filesystem::path access_log = {};
    bool shows_details = false;
    bool wants_help = false;
};

// Raises std::invalid_argument with a sentence that says what is wrong.
Options read_options(const std::vector<std::string>& arguments);

}  // namespace orvo::web
