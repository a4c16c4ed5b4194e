#include "suite/throttle/attempt.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <optional>

#include "suite/directory/names/ascii.h"
#include "suite/directory/names/entry_key.h"
#include "suite/directory/names/written_name.h"

namespace orvo::throttle {
namespace {

constexpr std::size_t longest_user = 256, longest_address = 64;
constexpr const char* untold_user = "?";

template <class Number>
std::optional<Number> number(std::string_view digits, int base, Number most) {
    Number value = 0;
    const char* end = digits.data() + digits.size();
    const auto read = std::from_chars(digits.data(), end, value, base);
    if (read.ec != std::errc() || read.ptr != end || value > most) return std::nullopt;
    return value;
}

std::optional<std::uint32_t> ipv4(std::string_view text) {
    std::uint32_t address = 0;
    for (int part = 0; part < 4; ++part) {
        const std::size_t dot = part < 3 ? text.find('.') : text.size();
        if (dot == std::string_view::npos) return std::nullopt;
        const auto octet = number<std::uint32_t>(text.substr(0, dot), 10, 255);
        if (!octet) return std::nullopt;
        address = address << 8 | *octet;
        text.remove_prefix(std::min(dot + 1, text.size()));
    }
    return address;
}

std::string written(std::uint32_t address) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += (text.empty() ? "" : ".") + std::to_string(address >> shift & 255);
    return text;
}

// The groups on one side of "::"; an IPv4 address at the end is two.
class Groups {
public:
    bool read(std::string_view text, bool is_end) {
        while (!text.empty()) {
            const std::size_t colon = std::min(text.find(':'), text.size());
            if (!add(text.substr(0, colon), is_end && colon == text.size())) return false;
            text.remove_prefix(colon);
            if (text.size() == 1) return false;
            text.remove_prefix(std::min<std::size_t>(1, text.size()));
        }
        return true;
    }
    std::size_t size() const { return size_; }
    std::uint16_t operator[](std::size_t place) const { return groups_[place]; }

private:
    bool add(std::string_view text, bool is_last) {
        if (const auto address = is_last ? ipv4(text) : std::nullopt)
            return add(*address >> 16) && add(*address & 0xFFFF);
        const auto group =
            text.size() <= 4 ? number<std::uint32_t>(text, 16, 0xFFFF) : std::nullopt;
        return group && add(*group);
    }
    bool add(std::uint32_t group) {
        if (size_ == groups_.size()) return false;
        groups_[size_++] = static_cast<std::uint16_t>(group);
        return true;
    }

    std::array<std::uint16_t, 8> groups_{};
    std::size_t size_ = 0;
};

using Ipv6 = std::array<std::uint16_t, 8>;

std::optional<Ipv6> ipv6(std::string_view text) {
    constexpr std::string_view gap = "::";
    text = text.substr(0, text.find('%'));  // of a link
    const std::size_t at = text.find(gap);
    Groups front, back;
    if (!front.read(text.substr(0, at), at == std::string_view::npos)) return std::nullopt;
    if (at == std::string_view::npos
            ? front.size() != 8
            : !back.read(text.substr(at + gap.size()), true) || front.size() + back.size() > 7)
        return std::nullopt;
    Ipv6 address{};
    for (std::size_t i = 0; i < front.size(); ++i) address[i] = front[i];
    for (std::size_t i = 0; i < back.size(); ++i) address[8 - back.size() + i] = back[i];
    return address;
}

std::string key_of(const Ipv6& address) {
    const bool is_mapped = address[5] == 0xFFFF && std::all_of(address.begin(), address.begin() + 5,
                                                               [](auto group) { return !group; });
    if (is_mapped) return written(std::uint32_t{address[6]} << 16 | address[7]);
    char network[32];
    std::snprintf(network, sizeof network, "%x:%x:%x:%x::/64", address[0], address[1], address[2],
                  address[3]);
    return network;
}

}  // namespace

std::string user_key(TextView distinguished_name) {
    std::string key = directory::EntryKey(to_utf8(directory::full_name(distinguished_name))).loose;
    if (key.empty()) return untold_user;
    key.resize(std::min(key.size(), longest_user));
    return key;
}

std::string address_key(TextView address) {
    std::string text = directory::ascii::lower(to_utf8(address));
    if (const auto four = ipv4(text)) return written(*four);
    if (const auto six = ipv6(text)) return key_of(*six);
    text.resize(std::min(text.size(), longest_address));
    return text;
}

}  // namespace orvo::throttle
