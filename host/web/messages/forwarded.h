#pragma once

// Of whom a proxy passes a request on: Forwarded (RFC 7239), or X-Forwarded-For, -Proto and -Host.

#include <optional>
#include <string>

#include "host/web/messages/http_message.h"
#include "host/web/messages/ip_address.h"

namespace orvo::web {

// The headers that are read. Whatever of them a proxy does not set itself it has to take away from
// requests: otherwise it passes on what a client has made up.
struct ForwardedHeaders {
    bool forwarded = true;
    bool x_for = true;
    bool x_proto = true;
    bool x_host = true;
    bool operator==(const ForwardedHeaders&) const = default;
};

struct TrustedProxies {
    Networks networks = {};
    // Whether each of their connections begins with a PROXY header.
    bool begin_with_header = false;
    ForwardedHeaders headers = {};
    bool operator==(const TrustedProxies&) const = default;
};

// The client in front of the first trusted proxy.
struct ForwardedClient {
    IpAddress address = {};
    int port = 0;                        // 0: not known
    std::optional<bool> is_secure = {};  // whether it asked by HTTPS; empty: no proxy says so
    std::string host = {};               // whom it asked, perhaps with a port; empty: as above
};

// What the headers say, where the connection is that of `sender`. They are read from their ends,
// where the nearest proxy has put its own, for as long as that which says it is trusted: what
// stands in front of the first address that is not is whatever the client liked. An address that a
// proxy does not tell ("unknown", "_hidden") ends the reading, too, and the client counts as that
// proxy. Without a trusted sender, or without headers, the client is the sender.
//
// Raises Refusal (400) for what cannot be read of what counts; where both Forwarded and
// X-Forwarded headers came, of which a proxy as a rule sets one kind, and the client has made up
// the other; and where X-Forwarded-Proto or -Host has neither one value nor one for each in
// X-Forwarded-For.
ForwardedClient forwarded_client(const Headers& headers, const IpAddress& sender,
                                 const TrustedProxies& proxies);

// Takes Forwarded and all X-Forwarded headers away.
void remove_forwarded(Headers& headers);

}  // namespace orvo::web
