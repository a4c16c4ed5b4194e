#pragma once

// IP addresses and networks: of the other ends of connections, and of settings.

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvo::web {

// IPv4 or IPv6; IPv4 within IPv6 (::ffff:192.0.2.1) is IPv4.
class IpAddress {
public:
    IpAddress() = default;  // 0.0.0.0
    // Of the octets as they are on the wire.
    static IpAddress of_v4(const std::array<unsigned char, 4>& octets);
    static IpAddress of_v6(const std::array<unsigned char, 16>& octets);
    // "192.0.2.1", "2001:db8::1"; empty for anything else: names, zones, brackets.
    static std::optional<IpAddress> try_read(std::string_view text);

    bool is_v4() const { return is_v4_; }
    std::string text() const;
    // Whom connections are counted for: the address, of IPv6 the network: "2001:db8::/64".
    std::string counted_as() const;
    // The address with its first `bits` bits, and 0 behind them.
    IpAddress begin_of_network(int bits) const;
    bool operator==(const IpAddress&) const = default;

private:
    bool is_v4_ = true;
    std::array<unsigned char, 16> octets_{};  // of IPv4 the first four
};

struct SocketAddress {
    // "127.0.0.1:9090", "[::1]:9090"; empty for anything else.
    static std::optional<SocketAddress> try_read(std::string_view text);

    IpAddress ip = {};
    int port = 0;
    bool operator==(const SocketAddress&) const = default;
};

// 0 to 65535, in digits alone and without zeros in front; empty for anything else.
std::optional<int> try_port(std::string_view text);

// A set of addresses and networks.
class Networks {
public:
    // "192.0.2.1", "10.0.0.0/8", "fd00::/8". False for anything else, and for a network whose
    // address has bits behind those that count.
    bool try_add(std::string_view text);
    bool contain(const IpAddress& address) const;
    bool empty() const { return networks_.empty(); }
    bool operator==(const Networks&) const = default;

private:
    struct Network {
        IpAddress begin;
        int bits;
        bool operator==(const Network&) const = default;
    };

    std::vector<Network> networks_;
};

}  // namespace orvo::web
