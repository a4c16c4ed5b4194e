#pragma once

// The header of the PROXY protocol, versions 1 and 2, with which a proxy begins a connection that
// it passes on. For the sources of the server alone.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "host/web/messages/ip_address.h"

namespace orvo::web {

struct ProxyHeader {
    struct Ends {
        IpAddress client = {};
        int client_port = 0;
        IpAddress server = {};  // whom the client has called
        int server_port = 0;
    };
    // None: the connection is the proxy's own, as for a check of its health, or of no IP address.
    std::optional<Ends> ends = {};
    // Whether the client speaks TLS with the proxy; empty: the header does not say.
    std::optional<bool> is_secure = {};
};

// Reads one header from the bytes of a connection.
class ProxyHeaderReader {
public:
    // Takes from the beginning of `bytes`, which follow those taken before, what belongs to the
    // header, and answers how many that are: all of them until the header is complete. Raises
    // std::runtime_error as soon as they are none, with what they are: "sent no PROXY header",
    // "sent a PROXY header that cannot be read", "… that is longer than 4096 bytes".
    std::size_t take(std::string_view bytes);
    bool is_complete() const { return is_complete_; }
    const ProxyHeader& header() const { return header_; }

private:
    void look();
    void look_at_line();
    void look_at_octets();
    void read_line();
    void read_octets();

    std::string bytes_;
    bool is_complete_ = false;
    ProxyHeader header_;
};

}  // namespace orvo::web
