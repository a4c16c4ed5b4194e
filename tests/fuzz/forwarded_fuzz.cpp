// What proxies say of their clients. Each line of the input is a header: its first character says
// which one.

#include <algorithm>

#include "host/web/server/endpoints.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

using namespace orvo::web;

const IpAddress proxy = IpAddress::of_v4({10, 0, 0, 1});
const IpAddress stranger = IpAddress::of_v4({203, 0, 113, 9});

TrustedProxies proxies() {
    TrustedProxies trusted;
    trusted.networks.try_add("10.0.0.0/8");
    trusted.networks.try_add("::1");
    return trusted;
}

// F: Forwarded, A: X-Forwarded-For, P: X-Forwarded-Proto, H: X-Forwarded-Host; others are none.
Headers headers_of(std::string_view input) {
    Headers headers;
    while (!input.empty()) {
        const auto [line, rest] = first_line_and_rest(input);
        const char kind = line.empty() ? ' ' : line.front();
        const char* name = kind == 'F'   ? "Forwarded"
                           : kind == 'A' ? "X-Forwarded-For"
                           : kind == 'P' ? "X-Forwarded-Proto"
                           : kind == 'H' ? "X-Forwarded-Host"
                                         : nullptr;
        if (name) headers.emplace_back(name, line.substr(1));
        input = rest;
    }
    return headers;
}

void take_away(Headers& headers, std::string_view name) {
    std::erase_if(headers, [&](const auto& header) { return header.first == name; });
}

std::optional<ForwardedClient> try_client(const Headers& headers, const IpAddress& sender) {
    try {
        return forwarded_client(headers, sender, proxies());
    } catch (const Refusal& refusal) {
        require(refusal.status == 400, "what cannot be read is refused as such");
        return std::nullopt;
    }
}

void check_stranger(const Headers& headers) {
    const auto client = try_client(headers, stranger);
    require(client && client->address == stranger && client->port == 0 && !client->is_secure &&
                client->host.empty(),
            "who is not trusted says nothing that counts");
}

// A trusted proxy adds its own to what a stranger has made up.
void check_added(Headers headers) {
    Headers x = headers;
    headers.emplace_back("Forwarded", "for=203.0.113.9;proto=http;host=shop.example");
    const auto client = try_client(headers, proxy);
    require(!client || (client->address == stranger && client->is_secure == false &&
                        client->host == "shop.example"),
            "nobody says what a proxy behind him says otherwise");

    for (const char* name : {"Forwarded", "X-Forwarded-Proto", "X-Forwarded-Host"})
        take_away(x, name);
    x.emplace_back("X-Forwarded-For", "203.0.113.9");
    x.emplace_back("X-Forwarded-Proto", "http");
    const auto x_client = try_client(x, proxy);
    require(x_client && x_client->address == stranger && x_client->is_secure == false &&
                x_client->host.empty(),
            "what a stranger made up does not even count as broken");
}

void check_request(const Headers& headers) {
    HttpRequest request;
    request.headers = headers;
    request.headers.emplace_back("Host", "inner");
    try {
        const IpAddress client =
            put_client(request, {proxy, 1, IpAddress(), 8080, false}, proxies());
        require(request.remote_address == client.text() &&
                    IpAddress::try_read(request.remote_address) == client,
                "a client has an address");
        require(request.headers.size() == 1 && request.headers.front().first == "Host",
                "no page sees what proxies say");
        const std::string& host = request.headers.front().second;
        require(!host.empty() && host.find_first_of(" \t\r\n/\\@?#,\"<>") == host.npos,
                "a host is one");
        require(request.local_port > 0 && request.local_port < 65536, "a port is one");
        require(request.remote_port >= 0 && request.remote_port < 65536, "a port is one");
    } catch (const Refusal&) {
        require(request.remote_address == proxy.text(), "it was the proxy, then");
    }
}

}  // namespace

void forwarded_properties(std::string_view input) {
    const Headers headers = headers_of(input);
    check_stranger(headers);
    check_added(headers);
    check_request(headers);
}

}  // namespace orvo::fuzz
