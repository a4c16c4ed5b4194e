#include "suite/store/store_url.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>

namespace orvo::store {
namespace {

// Digits alone, six at most.
std::optional<int> small_number(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool is_number = error == std::errc() && end == text.data() + text.size() &&
                           text.size() <= 6 && text.front() != '-';
    return is_number ? std::optional(number) : std::nullopt;
}

bool is_host(std::string_view host) {
    return !host.empty() && std::ranges::all_of(host, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '-' || c == '_' || c == '.';
    });
}

bool is_numeric_6(std::string_view host) {
    return host.find(':') != host.npos && std::ranges::all_of(host, [](char c) {
               return (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F') || (c >= '0' && c <= '9') ||
                      c == ':' || c == '.';
           });
}

// "host", "host:port", "[::1]:port".
std::optional<Address> try_read_address(std::string_view text) {
    Address address{.host = {}, .port = 0};
    std::string_view behind;
    if (text.starts_with('[')) {
        const std::size_t end = text.find(']');
        if (end == text.npos || !is_numeric_6(text.substr(1, end - 1))) return std::nullopt;
        address.host = text.substr(1, end - 1);
        behind = text.substr(end + 1);
    } else {
        const std::size_t end = std::min(text.find(':'), text.size());
        if (!is_host(text.substr(0, end))) return std::nullopt;
        address.host = text.substr(0, end);
        behind = text.substr(end);
    }
    if (behind.empty()) return address;
    const std::optional<int> port = small_number(behind.substr(1));
    if (behind.front() != ':' || !port || *port < 1 || *port > 65535) return std::nullopt;
    address.port = *port;
    return address;
}

}  // namespace

std::string read_url(std::string_view url, Settings& settings) {
    if (url == "memory") return {};
    settings.is_encrypted = url.starts_with("rediss://");
    if (!settings.is_encrypted && !url.starts_with("redis://"))
        return "it is neither \"memory\" nor does it begin with \"redis://\" or \"rediss://\"";
    url.remove_prefix(settings.is_encrypted ? 9 : 8);
    if (const std::size_t end = url.rfind('@'); end != url.npos) {
        const std::string_view user = url.substr(0, end);
        if (user.find(':') != user.npos)
            return "a password does not belong into it but into StorePassword";
        if (user.empty()) return "there is no user in front of \"@\"";
        settings.user = user;
        url.remove_prefix(end + 1);
    }
    if (const std::size_t end = url.find('/'); end != url.npos) {
        const std::string_view database = url.substr(end + 1);
        url = url.substr(0, end);
        const std::optional<int> number = database.empty() ? 0 : small_number(database);
        if (!number) return "its database is no number";
        settings.database = *number;
    }
    for (;;) {
        const std::size_t end = std::min(url.find(','), url.size());
        const std::optional<Address> address = try_read_address(url.substr(0, end));
        if (!address) return "a host in it is none";
        settings.addresses.push_back(*address);
        if (end == url.size()) return {};
        url.remove_prefix(end + 1);
    }
}

}  // namespace orvo::store
