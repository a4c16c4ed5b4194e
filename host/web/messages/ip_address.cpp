#include "host/web/messages/ip_address.h"

#include <arpa/inet.h>

#include <algorithm>
#include <charconv>

namespace orvo::web {
namespace {

constexpr std::array<unsigned char, 12> v4_within_v6{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF};

std::optional<int> try_number(std::string_view text, int most) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool is_plain = text != "-0" && (text.size() < 2 || text.front() != '0');
    if (error != std::errc{} || end != text.data() + text.size() || !is_plain || number < 0 ||
        number > most)
        return std::nullopt;
    return number;
}

}  // namespace

IpAddress IpAddress::of_v4(const std::array<unsigned char, 4>& octets) {
    IpAddress address;
    std::ranges::copy(octets, address.octets_.begin());
    return address;
}

IpAddress IpAddress::of_v6(const std::array<unsigned char, 16>& octets) {
    if (std::equal(v4_within_v6.begin(), v4_within_v6.end(), octets.begin()))
        return of_v4({octets[12], octets[13], octets[14], octets[15]});
    IpAddress address;
    address.is_v4_ = false;
    address.octets_ = octets;
    return address;
}

std::optional<IpAddress> IpAddress::try_read(std::string_view text) {
    const std::string ended(text);
    if (ended.find('\0') != ended.npos) return std::nullopt;
    std::array<unsigned char, 4> v4{};
    if (inet_pton(AF_INET, ended.c_str(), v4.data()) == 1) return of_v4(v4);
    std::array<unsigned char, 16> v6{};
    if (inet_pton(AF_INET6, ended.c_str(), v6.data()) == 1) return of_v6(v6);
    return std::nullopt;
}

std::string IpAddress::text() const {
    std::array<char, INET6_ADDRSTRLEN> text{};
    return inet_ntop(is_v4_ ? AF_INET : AF_INET6, octets_.data(), text.data(), text.size());
}

std::string IpAddress::counted_as() const {
    return is_v4_ ? text() : begin_of_network(64).text() + "/64";
}

IpAddress IpAddress::begin_of_network(int bits) const {
    IpAddress begin = *this;
    for (int i = 0; i < static_cast<int>(octets_.size()); ++i) {
        const int kept = std::clamp(bits - 8 * i, 0, 8);
        begin.octets_[static_cast<std::size_t>(i)] &= static_cast<unsigned char>(0xFF00 >> kept);
    }
    return begin;
}

std::optional<int> try_port(std::string_view text) { return try_number(text, 65535); }

std::optional<SocketAddress> SocketAddress::try_read(std::string_view text) {
    const auto colon = text.rfind(':');
    if (colon == text.npos) return std::nullopt;
    std::string_view host = text.substr(0, colon);
    const bool is_in_brackets = host.starts_with('[') && host.ends_with(']');
    if (is_in_brackets) host = host.substr(1, host.size() - 2);
    const auto ip = IpAddress::try_read(host);
    const auto port = try_port(text.substr(colon + 1));
    if (!ip || !port || is_in_brackets == (host.find(':') == host.npos)) return std::nullopt;
    return SocketAddress{*ip, *port};
}

bool Networks::try_add(std::string_view text) {
    const auto slash = text.find('/');
    const std::string_view name = text.substr(0, slash);
    const auto address = IpAddress::try_read(name);
    // How many bits of one that is written as IPv6 count is not said of IPv4.
    if (!address || (address->is_v4() && name.find(':') != name.npos)) return false;
    const int most = address->is_v4() ? 32 : 128;
    const auto bits = slash == text.npos ? most : try_number(text.substr(slash + 1), most);
    if (!bits || address->begin_of_network(*bits) != *address) return false;
    networks_.push_back({*address, *bits});
    return true;
}

bool Networks::contain(const IpAddress& address) const {
    return std::ranges::any_of(networks_, [&](const Network& network) {
        return address.begin_of_network(network.bits) == network.begin;
    });
}

}  // namespace orvo::web
