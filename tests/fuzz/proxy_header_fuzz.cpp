// The header with which a proxy begins a connection. The input is the connection's bytes; the first
// one says in which pieces they come.

#include <stdexcept>

#include "host/web/server/proxy_header.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

using namespace orvo::web;

struct Reading {
    std::size_t taken = 0;
    bool is_complete = false;
    std::string refusal = {};
    ProxyHeader header = {};
};

Reading read(std::string_view bytes, std::size_t piece) {
    Reading reading;
    ProxyHeaderReader reader;
    try {
        while (!reader.is_complete() && reading.taken < bytes.size()) {
            const std::string_view next = bytes.substr(reading.taken, piece);
            const std::size_t count = reader.take(next);
            require(count <= next.size() && (count == next.size() || reader.is_complete()),
                    "all is taken until the header ends");
            reading.taken += count;
        }
    } catch (const std::runtime_error& failure) {
        reading.refusal = failure.what();
    }
    reading.is_complete = reader.is_complete();
    reading.header = reader.header();
    return reading;
}

bool same(const ProxyHeader& a, const ProxyHeader& b) {
    if (a.is_secure != b.is_secure || a.ends.has_value() != b.ends.has_value()) return false;
    return !a.ends || (a.ends->client == b.ends->client && a.ends->server == b.ends->server &&
                       a.ends->client_port == b.ends->client_port &&
                       a.ends->server_port == b.ends->server_port);
}

// As a proxy of the first version would say it.
std::string line_of(const ProxyHeader::Ends& ends) {
    const bool is_v4 = ends.client.is_v4() && ends.server.is_v4();
    const auto text = [&](const IpAddress& address) {
        return (!is_v4 && address.is_v4() ? "::ffff:" : "") + address.text();
    };
    return std::string(is_v4 ? "PROXY TCP4 " : "PROXY TCP6 ") + text(ends.client) + ' ' +
           text(ends.server) + ' ' + std::to_string(ends.client_port) + ' ' +
           std::to_string(ends.server_port) + "\r\n";
}

}  // namespace

void proxy_header_properties(std::string_view input) {
    if (input.empty()) return;
    const std::size_t piece = static_cast<unsigned char>(input.front()) % 32 + 1;
    const std::string_view bytes = input.substr(1);
    const Reading whole = read(bytes, bytes.size() + 1), pieces = read(bytes, piece);
    require(whole.refusal == pieces.refusal && whole.is_complete == pieces.is_complete,
            "a header is the same in whatever pieces it comes");
    require(whole.taken <= 4096, "a header is limited");
    require(whole.refusal.empty() || whole.refusal.starts_with("sent "), "a refusal says why");
    if (!whole.is_complete) return;
    require(whole.taken == pieces.taken && same(whole.header, pieces.header),
            "a header is the same in whatever pieces it comes");
    require(read(std::string(bytes.substr(0, whole.taken)) + "GET", 7).taken == whole.taken,
            "what follows a header is not taken");
    if (!whole.header.ends) return;
    const Reading again = read(line_of(*whole.header.ends), piece);
    ProxyHeader expected = whole.header;
    expected.is_secure = {};
    require(again.is_complete && same(again.header, expected), "both versions say the same");
}

}  // namespace orvo::fuzz
