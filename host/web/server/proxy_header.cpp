#include "host/web/server/proxy_header.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace orvo::web {
namespace {

// Of version 1, a line; and of version 2, octets.
constexpr std::string_view line_begin = "PROXY ";
constexpr std::string_view octets_begin("\r\n\r\n\0\r\nQUIT\n", 12);

constexpr std::size_t longest_line = 107;  // with its CR LF, as the protocol has it
constexpr std::size_t largest = 4096;      // of version 2, with whatever a proxy adds

// Of version 2: signature, version and command, family and transport, length of what follows.
constexpr std::size_t fixed_size = 16;
constexpr unsigned from_proxy = 0x20, passed_on = 0x21;
constexpr unsigned tcp_v4 = 0x11, tcp_v6 = 0x21, stream_of_system = 0x31, not_said = 0x00;
constexpr unsigned tls_part = 0x20;
constexpr unsigned client_has_tls = 0x01;

[[noreturn]] void refuse_unread() {
    throw std::runtime_error("sent a PROXY header that cannot be read");
}

unsigned octet(std::string_view bytes, std::size_t place) {
    return static_cast<unsigned char>(bytes[place]);
}

unsigned two_octets(std::string_view bytes, std::size_t place) {
    return octet(bytes, place) << 8 | octet(bytes, place + 1);
}

template <std::size_t size>
std::array<unsigned char, size> octets(std::string_view bytes, std::size_t place) {
    std::array<unsigned char, size> octets;
    for (std::size_t i = 0; i < size; ++i) octets[i] = static_cast<unsigned char>(bytes[place + i]);
    return octets;
}

IpAddress address_of(std::string_view text, bool is_v4) {
    const auto address = IpAddress::try_read(text);
    if (!address || is_v4 != (text.find(':') == text.npos)) refuse_unread();
    return *address;
}

int port_of(std::string_view text) {
    const auto port = try_port(text);
    if (!port) refuse_unread();
    return *port;
}

// Of the parts behind the addresses: type, length, value.
std::optional<bool> tls_of(std::string_view parts) {
    std::optional<bool> is_secure;
    while (!parts.empty()) {
        if (parts.size() < 3) refuse_unread();
        const std::size_t size = two_octets(parts, 1);
        if (parts.size() < 3 + size) refuse_unread();
        if (octet(parts, 0) == tls_part) {
            if (size < 5 || is_secure) refuse_unread();
            is_secure = (octet(parts, 3) & client_has_tls) != 0;
        }
        parts.remove_prefix(3 + size);
    }
    return is_secure;
}

}  // namespace

std::size_t ProxyHeaderReader::take(std::string_view bytes) {
    std::size_t taken = 0;
    while (!is_complete_ && taken < bytes.size()) {
        bytes_ += bytes[taken++];
        look();
    }
    return taken;
}

void ProxyHeaderReader::look() {
    const std::string_view begin = bytes_.front() == '\r' ? octets_begin : line_begin;
    const std::size_t seen = std::min(bytes_.size(), begin.size());
    if (bytes_.compare(0, seen, begin, 0, seen) != 0)
        throw std::runtime_error("sent no PROXY header");
    if (begin == line_begin)
        look_at_line();
    else
        look_at_octets();
}

void ProxyHeaderReader::look_at_line() {
    if (bytes_.back() == '\n') {
        read_line();
        is_complete_ = true;
    } else if (bytes_.size() == longest_line) {
        refuse_unread();
    }
}

void ProxyHeaderReader::look_at_octets() {
    if (bytes_.size() < fixed_size) return;
    const std::size_t size = fixed_size + two_octets(bytes_, 14);
    if (size > largest)
        throw std::runtime_error("sent a PROXY header that is longer than " +
                                 std::to_string(largest) + " bytes");
    if (bytes_.size() < size) return;
    read_octets();
    is_complete_ = true;
}

void ProxyHeaderReader::read_line() {
    std::string_view line(bytes_);
    if (!line.ends_with("\r\n")) refuse_unread();
    line.remove_suffix(2);
    line.remove_prefix(line_begin.size());
    std::vector<std::string_view> words;
    while (true) {
        const auto blank = line.find(' ');
        words.push_back(line.substr(0, blank));
        if (blank == line.npos) break;
        line.remove_prefix(blank + 1);
    }
    // Whatever follows it.
    if (words.front() == "UNKNOWN") return;
    const bool is_v4 = words.front() == "TCP4";
    if (words.size() != 5 || (!is_v4 && words.front() != "TCP6")) refuse_unread();
    header_.ends = {address_of(words[1], is_v4), port_of(words[3]), address_of(words[2], is_v4),
                    port_of(words[4])};
}

void ProxyHeaderReader::read_octets() {
    const unsigned command = octet(bytes_, 12), family = octet(bytes_, 13);
    if (command != from_proxy && command != passed_on) refuse_unread();
    if (command == from_proxy) return;
    std::string_view rest = std::string_view(bytes_).substr(fixed_size);
    const std::size_t size = family == tcp_v4             ? 12
                             : family == tcp_v6           ? 36
                             : family == stream_of_system ? 216
                                                          : 0;
    if ((size == 0 && family != not_said) || rest.size() < size) refuse_unread();
    if (family == tcp_v4)
        header_.ends = {IpAddress::of_v4(octets<4>(rest, 0)), static_cast<int>(two_octets(rest, 8)),
                        IpAddress::of_v4(octets<4>(rest, 4)),
                        static_cast<int>(two_octets(rest, 10))};
    if (family == tcp_v6)
        header_.ends = {
            IpAddress::of_v6(octets<16>(rest, 0)), static_cast<int>(two_octets(rest, 32)),
            IpAddress::of_v6(octets<16>(rest, 16)), static_cast<int>(two_octets(rest, 34))};
    // What follows where no family is said is not said either.
    if (family != not_said) header_.is_secure = tls_of(rest.substr(size));
}

}  // namespace orvo::web
