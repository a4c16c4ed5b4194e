#include "host/web/server/proxy_header.h"

#include <gtest/gtest.h>

#include "tests/host/web/proxy_octets.h"

namespace orvo::web {
namespace {

// "192.0.2.7:4711 > 10.0.0.1:443 https", "the proxy", or why it is refused.
std::string read(std::string_view bytes) {
    ProxyHeaderReader reader;
    try {
        const std::size_t taken = reader.take(bytes);
        if (!reader.is_complete()) return "incomplete";
        EXPECT_EQ(taken, bytes.size());
    } catch (const std::runtime_error& failure) {
        EXPECT_FALSE(reader.is_complete());
        return failure.what();
    }
    const ProxyHeader& header = reader.header();
    const std::string secure = !header.is_secure ? "" : *header.is_secure ? " https" : " http";
    if (!header.ends) return "the proxy" + secure;
    return header.ends->client.text() + ':' + std::to_string(header.ends->client_port) + " > " +
           header.ends->server.text() + ':' + std::to_string(header.ends->server_port) + secure;
}

constexpr const char* none = "sent no PROXY header";
constexpr const char* unread = "sent a PROXY header that cannot be read";

TEST(ProxyHeader, IsALine) {
    EXPECT_EQ(read("PROXY TCP4 192.0.2.7 10.0.0.1 4711 443\r\n"), "192.0.2.7:4711 > 10.0.0.1:443");
    EXPECT_EQ(read("PROXY TCP6 2001:db8::7 ::1 0 65535\r\n"), "2001:db8::7:0 > ::1:65535");
    EXPECT_EQ(read("PROXY TCP6 ::ffff:192.0.2.7 ::1 1 2\r\n"), "192.0.2.7:1 > ::1:2");
    EXPECT_EQ(read("PROXY UNKNOWN\r\n"), "the proxy");
    EXPECT_EQ(read("PROXY UNKNOWN ffff::f ffff::f 65535 65535\r\n"), "the proxy");
}

TEST(ProxyHeader, IsALineAsTheProtocolHasIt) {
    for (const char* line :
         {"PROXY \r\n", "PROXY TCP4\r\n", "PROXY TCP4 192.0.2.7 10.0.0.1 4711\r\n",
          "PROXY TCP4 192.0.2.7 10.0.0.1 4711 443 \r\n", "PROXY TCP4 192.0.2.7 10.0.0.1 4711 443\n",
          "PROXY  TCP4 192.0.2.7 10.0.0.1 4711 443\r\n",
          "PROXY TCP4 192.0.2.7 10.0.0.1 04711 443\r\n",
          "PROXY TCP4 192.0.2.7 10.0.0.1 65536 443\r\n", "PROXY TCP4 192.0.2.7 10.0.0.1 -1 443\r\n",
          "PROXY TCP4 2001:db8::7 ::1 1 2\r\n", "PROXY TCP6 192.0.2.7 10.0.0.1 1 2\r\n",
          "PROXY TCP4 localhost 10.0.0.1 1 2\r\n", "PROXY UDP4 192.0.2.7 10.0.0.1 1 2\r\n",
          "PROXY tcp4 192.0.2.7 10.0.0.1 1 2\r\n", "PROXY TCP4\t192.0.2.7 10.0.0.1 1 2\r\n"})
        EXPECT_EQ(read(line), unread) << line;
    EXPECT_EQ(read("PROXY UNKNOWN " + std::string(91, 'x') + "\r\n"), "the proxy");
    EXPECT_EQ(read("PROXY UNKNOWN " + std::string(92, 'x') + "\r\n"), unread) << "too long";
    EXPECT_EQ(read("PROXY UNKNOWN " + std::string(92, 'x')), "incomplete");
    EXPECT_EQ(read("PROXY UNKNOWN " + std::string(93, 'x')), unread);
}

TEST(ProxyHeader, IsOctets) {
    EXPECT_EQ(read(proxy_octets(0x21, 0x11, v4_ends)), "192.0.2.7:4711 > 10.0.0.1:443");
    EXPECT_EQ(read(proxy_octets(0x21, 0x21, v6_ends)), "2001:db8::7:4711 > ::1:443");
    EXPECT_EQ(read(proxy_octets(0x21, 0x31, std::string(216, 'x'))), "the proxy");
    EXPECT_EQ(read(proxy_octets(0x21, 0x00, "")), "the proxy");
    EXPECT_EQ(read(proxy_octets(0x21, 0x00, "whatever")), "the proxy");
    EXPECT_EQ(read(proxy_octets(0x20, 0x00, "")), "the proxy");
    EXPECT_EQ(read(proxy_octets(0x20, 0x11, v4_ends)), "the proxy") << "a check of its own";
}

TEST(ProxyHeader, SaysWhetherTheClientSpeaksTls) {
    const std::string ends = "192.0.2.7:4711 > 10.0.0.1:443";
    const std::string other = proxy_part(0x01, "h2") + proxy_part(0x02, "shop.example");
    EXPECT_EQ(read(proxy_octets(0x21, 0x11, v4_ends + other)), ends);
    for (const auto& [client, said] : std::initializer_list<std::pair<char, const char*>>{
             {1, " https"}, {7, " https"}, {0, " http"}})
        EXPECT_EQ(
            read(proxy_octets(
                0x21, 0x11,
                v4_ends + other + proxy_part(0x20, std::string(1, client) + std::string(4, '\0')))),
            ends + said);
}

TEST(ProxyHeader, IsOctetsAsTheProtocolHasThem) {
    for (const std::string& bytes :
         {proxy_octets(0x11, 0x11, v4_ends), proxy_octets(0x22, 0x11, v4_ends),
          proxy_octets(0x21, 0x12, v4_ends), proxy_octets(0x21, 0x41, v4_ends),
          proxy_octets(0x21, 0x11, v4_ends.substr(1)), proxy_octets(0x21, 0x21, v4_ends),
          proxy_octets(0x21, 0x31, v4_ends), proxy_octets(0x21, 0x11, v4_ends + "xx"),
          proxy_octets(0x21, 0x11, v4_ends + proxy_part(1, "h2") + "\x01"),
          proxy_octets(0x21, 0x11, v4_ends + std::string("\x01\x00\x05h2", 5)),
          proxy_octets(0x21, 0x11, v4_ends + proxy_part(0x20, "\x01")),
          proxy_octets(0x21, 0x11,
                       v4_ends + proxy_part(0x20, "12345") + proxy_part(0x20, "12345"))})
        EXPECT_EQ(read(bytes), unread);
    EXPECT_EQ(read(proxy_octets(0x21, 0x00, std::string(4080, 'x'))), "the proxy");
    EXPECT_EQ(read(proxy_octets(0x21, 0x00, std::string(4081, 'x'))),
              "sent a PROXY header that is longer than 4096 bytes");
}

TEST(ProxyHeader, IsNothingElse) {
    for (const std::string_view bytes : {"GET / HTTP/1.1\r\n", "PROXX", "proxy TCP4",
                                         "\x16\x03\x01", "\r\n\r\nGET", "\n", "\r\n\r\r"})
        EXPECT_EQ(read(bytes), none) << bytes;
}

TEST(ProxyHeader, EndsWhereItEndsInWhateverPiecesItComes) {
    for (const std::string& header :
         {std::string("PROXY TCP4 192.0.2.7 10.0.0.1 4711 443\r\n"),
          proxy_octets(0x21, 0x11, v4_ends), proxy_octets(0x21, 0x00, "")})
        for (std::size_t piece = 1; piece <= header.size() + 3; ++piece) {
            const std::string bytes = header + "GET";
            ProxyHeaderReader reader;
            std::size_t taken = 0;
            while (!reader.is_complete()) {
                const auto next = std::string_view(bytes).substr(taken, piece);
                const std::size_t count = reader.take(next);
                ASSERT_TRUE(count == next.size() || reader.is_complete());
                taken += count;
            }
            EXPECT_EQ(taken, header.size());
            EXPECT_EQ(reader.take("more"), 0u);
        }
}

}  // namespace
}  // namespace orvo::web
