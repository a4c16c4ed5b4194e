#pragma once

#include <optional>

#include "host/web/messages/forwarded.h"

namespace orvo::web {

// The two ends of a connection, or of the one that a proxy passes on in it (PROXY protocol).
struct Endpoints {
    IpAddress remote = {};
    int remote_port = 0;
    IpAddress local = {};
    int local_port = 0;
    bool is_secure = false;  // TLS
};

// Puts into a request who has sent it and how: remote_*, local_*, is_secure. Where that is a
// trusted proxy, those are what it says of its client, as is then the header Host; such headers of
// others have no effect, and none of them stays in the request. Also puts its identifier there: the
// X-Request-Id of a trusted proxy where that is a good one, otherwise a new one. Answers the
// client's address.
//
// Raises what forwarded_client() does; the request has the sender's address then.
IpAddress put_client(HttpRequest& request, const Endpoints& sender, const TrustedProxies& proxies);

}  // namespace orvo::web
