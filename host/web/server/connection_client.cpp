#include "host/web/server/connection_client.h"

#include <utility>

namespace orvo::web {
namespace {

const TrustedProxies nobody;

std::string counted(const IpAddress& client, const TrustedProxies& proxies) {
    return proxies.networks.contain(client) ? std::string() : client.counted_as();
}

}  // namespace

std::optional<ConnectionClient> ConnectionClient::try_enter(const Endpoints& endpoints,
                                                            const TrustedProxies& proxies,
                                                            ConnectionLimits& limits) {
    std::string counted_as = counted(endpoints.remote, proxies);
    if (!limits.try_enter(counted_as)) return std::nullopt;
    return ConnectionClient(endpoints, proxies, limits, std::move(counted_as));
}

ConnectionClient::ConnectionClient(const Endpoints& endpoints, const TrustedProxies& proxies,
                                   ConnectionLimits& limits, std::string counted_as)
    : endpoints_(endpoints),
      proxies_(proxies),
      believed_(&proxies),
      limits_(&limits),
      counted_as_(std::move(counted_as)) {}

ConnectionClient::ConnectionClient(ConnectionClient&& other) noexcept
    : endpoints_(other.endpoints_),
      proxies_(other.proxies_),
      believed_(other.believed_),
      limits_(std::exchange(other.limits_, nullptr)),
      counted_as_(std::move(other.counted_as_)) {}

ConnectionClient::~ConnectionClient() {
    if (limits_) limits_->leave(counted_as_);
}

bool ConnectionClient::sends_header() const { return proxies_.begin_with_header && is_proxy(); }

bool ConnectionClient::try_take(const ProxyGreeting& greeting) {
    if (!greeting.trouble.empty())
        limits_->note_refusal(endpoints_.remote.text() + ' ' + greeting.trouble);
    if (!greeting.header) return false;
    if (!greeting.header->ends) {
        believed_ = &nobody;
        return true;
    }
    const auto& [client, client_port, server, server_port] = *greeting.header->ends;
    endpoints_ = {client, client_port, server, server_port,
                  greeting.header->is_secure.value_or(endpoints_.is_secure)};
    return try_count_for(client);
}

void ConnectionClient::begin_request(HttpRequest& request) {
    if (!try_count_for(put_client(request, endpoints_, *believed_)))
        throw Refusal(503, "There are too many requests from your address. Please try again.");
}

void ConnectionClient::end_request() {
    if (is_proxy()) try_count_for(endpoints_.remote);
}

void ConnectionClient::tell(HttpRequest& request) const {
    try {
        put_client(request, endpoints_, *believed_);
    } catch (const Refusal&) {
        // It was the proxy, then.
    }
}

bool ConnectionClient::try_count_for(const IpAddress& client) {
    return limits_->try_change(counted_as_, counted(client, proxies_));
}

}  // namespace orvo::web
