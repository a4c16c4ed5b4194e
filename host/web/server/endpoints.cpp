#include "host/web/server/endpoints.h"

#include <algorithm>
#include <charconv>

#include "host/web/messages/request_id.h"

namespace orvo::web {
namespace {

void put_host(Headers& headers, const std::string& host) {
    const auto known = std::ranges::find_if(headers, [](const auto& header) {
        return equal_ascii_ignoring_case(header.first, "Host");
    });
    if (known == headers.end())
        headers.emplace_back("Host", host);
    else
        known->second = host;
}

// The nearest proxy has put its own behind what was there.
std::string given_id(const HttpRequest& request) {
    const auto is_id = [](const auto& header) {
        return equal_ascii_ignoring_case(header.first, "X-Request-Id");
    };
    const auto last = std::find_if(request.headers.rbegin(), request.headers.rend(), is_id);
    return last == request.headers.rend() ? std::string() : last->second;
}

// Of the server that the browser knows: what stands in its address.
int outer_port(std::string_view host, bool is_secure) {
    int port = 0;
    const auto colon = host.rfind(':');
    if (colon != host.npos && host.find(']', colon) == host.npos)
        std::from_chars(host.data() + colon + 1, host.data() + host.size(), port);
    return port > 0 && port <= 65535 ? port : is_secure ? 443 : 80;
}

}  // namespace

IpAddress put_client(HttpRequest& request, const Endpoints& sender, const TrustedProxies& proxies) {
    request.remote_address = sender.remote.text();
    request.remote_port = sender.remote_port;
    request.local_address = sender.local.text();
    request.local_port = sender.local_port;
    request.is_secure = sender.is_secure;
    const bool is_trusted = proxies.networks.contain(sender.remote);
    if (is_trusted) request.id = given_id(request);
    if (!is_request_id(request.id)) request.id = new_request_id();
    const ForwardedClient client = is_trusted
                                       ? forwarded_client(request.headers, sender.remote, proxies)
                                       : ForwardedClient{.address = sender.remote};
    remove_forwarded(request.headers);
    if (!is_trusted) return client.address;
    if (client.address != sender.remote || client.port != 0) {
        request.remote_address = client.address.text();
        request.remote_port = client.port;
    }
    if (client.is_secure) request.is_secure = *client.is_secure;
    if (!client.host.empty()) put_host(request.headers, client.host);
    request.local_port = outer_port(request.header("Host"), request.is_secure);
    return client.address;
}

}  // namespace orvo::web
