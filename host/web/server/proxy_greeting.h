#pragma once

// How a connection of a trusted proxy begins. For the sources of the server alone.

#include <boost/asio/ip/tcp.hpp>
#include <functional>
#include <optional>
#include <string>

#include "host/web/server/proxy_header.h"

namespace orvo::web {

struct ProxyGreeting {
    std::optional<ProxyHeader> header = {};
    // Without a header what the proxy did instead: "sent no PROXY header"; empty where it has gone.
    std::string trouble = {};
};

// Reads the header and nothing of what follows it, which waits in the socket for the next reader,
// be that TLS. The socket has to live until it is done. As long as the other side likes.
void read_proxy_greeting(boost::asio::ip::tcp::socket& socket,
                         std::function<void(ProxyGreeting)> done);

}  // namespace orvo::web
