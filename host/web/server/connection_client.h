#pragma once

// Whose a connection is. For the sources of the server alone.

#include <string>

#include "host/web/server/connection_limits.h"
#include "host/web/server/endpoints.h"
#include "host/web/server/proxy_greeting.h"

namespace orvo::web {

// The client at the other end of a connection, which counts for it among the connections of one
// address. A trusted proxy counts for nobody: its connection counts for whom the proxy's header
// names, otherwise for the client of the request that is being answered. The event thread's.
class ConnectionClient {
public:
    // Empty where there are too many connections already, of this client or in all. `limits` and
    // `proxies` have to live as long.
    static std::optional<ConnectionClient> try_enter(const Endpoints& endpoints,
                                                     const TrustedProxies& proxies,
                                                     ConnectionLimits& limits);
    ConnectionClient(ConnectionClient&& other) noexcept;
    ConnectionClient& operator=(ConnectionClient&&) = delete;
    ~ConnectionClient();

    // Whether it is a trusted proxy's.
    bool is_proxy() const { return proxies_.networks.contain(endpoints_.remote); }
    // Whether the connection has to begin with a proxy's header.
    bool sends_header() const;
    // Takes over whom the header names. Where it names nobody, the connection is the proxy's own,
    // and what its requests say of other clients is not believed. False where the connection is to
    // be closed: without a header, which is noticed, or where that client has too many.
    bool try_take(const ProxyGreeting& greeting);

    // Puts into a request who has sent it; until end_request() the connection counts for that
    // client. Raises Refusal: 400 where a trusted proxy says what cannot be read, 503 where the
    // client has too many.
    void begin_request(HttpRequest& request);
    void end_request();
    // Puts into a request that is refused who has sent it, as far as that can be read.
    void tell(HttpRequest& request) const;

    const Endpoints& endpoints() const { return endpoints_; }

private:
    ConnectionClient(const Endpoints& endpoints, const TrustedProxies& proxies,
                     ConnectionLimits& limits, std::string counted_as);
    bool try_count_for(const IpAddress& client);

    Endpoints endpoints_;
    const TrustedProxies& proxies_;
    const TrustedProxies* believed_;  // in what requests say of their clients
    ConnectionLimits* limits_;        // null: moved from
    std::string counted_as_;
};

}  // namespace orvo::web
