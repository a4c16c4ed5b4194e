#pragma once

// A running orvo-web, over its administration socket.

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/admin/common/options.h"

namespace orvo::admin {

struct HostRequest {
    CommonOptions common;
    RowOptions rows;
    std::filesystem::path socket = usual_host_socket;
    bool about_servers = false;
};

struct HostTable {
    std::vector<std::string> columns;
    std::vector<std::vector<std::string>> rows;
};

// Raises std::runtime_error, with what to do, where nobody listens there, the host refuses, or says
// nothing for `patience`.
HostTable ask_host(const std::filesystem::path& socket, const std::string& request,
                   std::chrono::milliseconds patience = std::chrono::seconds(10));
// The same; nothing where there is no socket, or nobody listens: no host runs there.
std::optional<HostTable> try_ask_host(const std::filesystem::path& socket,
                                      const std::string& request);

int show_pool(const HostRequest& request);
int clear_cache(const HostRequest& request);

}  // namespace orvo::admin
