#include "suite/directory/ldap/wire/server_address.h"

#include <algorithm>
#include <string_view>

#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::ldap {
namespace {

constexpr std::string_view blanks = " \t\r\n";

[[noreturn]] void refuse(std::string_view server, std::string_view why) {
    raise_code(result_code::parameter_error,
               "The server '" + std::string(server) + "' " + std::string(why));
}

std::string decoded(std::string_view value, std::string_view server) {
    std::string result;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '%') {
            result += value[i];
            continue;
        }
        if (i + 2 >= value.size() || !ascii::is_hexadecimal(value[i + 1]) ||
            !ascii::is_hexadecimal(value[i + 2]))
            refuse(server, "has a '%' that two hexadecimal digits do not follow.");
        result += static_cast<char>(ascii::digit_value(value[i + 1]) * 16 +
                                    ascii::digit_value(value[i + 2]));
        i += 2;
    }
    return result;
}

void read_port(std::string_view digits, ServerHost& host, std::string_view server) {
    unsigned port = 0;
    for (char c : digits) {
        if (!ascii::is_digit(c)) refuse(server, "has a port that is not a number.");
        port = std::min(port * 10 + static_cast<unsigned>(ascii::digit_value(c)), 65536u);
    }
    if (port < 1 || port > 65535) refuse(server, "has a port outside 1 to 65535.");
    host.port = static_cast<std::uint16_t>(port);
}

void read_host_and_port(std::string_view text, ServerHost& host, std::string_view server) {
    std::string_view after;
    if (text.starts_with('[')) {
        const std::size_t end = text.find(']');
        if (end == std::string_view::npos) refuse(server, "has a '[' without a ']'.");
        host.name = text.substr(1, end - 1);
        after = text.substr(end + 1);
        if (!std::all_of(host.name.begin(), host.name.end(),
                         [](char c) { return ascii::is_hexadecimal(c) || c == ':' || c == '.'; }))
            refuse(server, "has no address in its brackets.");
        if (!after.empty() && after[0] != ':') refuse(server, "goes on after the ']'.");
    } else {
        const std::size_t colon = text.find(':');
        host.name = text.substr(0, colon);
        if (colon != std::string_view::npos) after = text.substr(colon);
        if (after.find(':', 1) != std::string_view::npos)
            refuse(server, "has several ':'; an IPv6 address is written in brackets.");
        if (host.name.find_first_of("\"%,;<=>@[\\]^`{|}()") != std::string::npos)
            refuse(server, "has a character that is not allowed in a host name.");
    }
    if (host.name.empty()) refuse(server, "has no host name.");
    if (!after.empty()) read_port(after.substr(1), host, server);
}

void read_option(std::string_view option, ServerHost& host, std::string_view server) {
    const std::size_t equals = option.find('=');
    const std::string name = ascii::lower(option.substr(0, equals));
    const bool has_value = equals != std::string_view::npos;
    if (name == "starttls") {
        if (has_value) refuse(server, "gives the option 'starttls' a value; it takes none.");
        if (host.security == Security::tls) refuse(server, "asks for both ldaps and 'starttls'.");
        host.security = Security::start_tls;
    } else if (name == "cafile") {
        if (has_value) host.ca_file = decoded(option.substr(equals + 1), server);
        if (host.ca_file.empty()) refuse(server, "gives the option 'cafile' no file.");
    } else {
        refuse(server, "has the unknown option '" + name + "'.");
    }
}

void read_options(std::string_view options, ServerHost& host, std::string_view server) {
    while (!options.empty()) {
        const std::size_t end = std::min(options.find('&'), options.size());
        read_option(options.substr(0, end), host, server);
        options.remove_prefix(std::min(end + 1, options.size()));
    }
    if (!host.ca_file.empty() && host.security == Security::none)
        refuse(server, "has the option 'cafile', but its connection is not encrypted.");
}

ServerHost read_server(std::string_view server) {
    ServerHost host;
    std::string_view rest = server;
    const std::size_t scheme_end = rest.find("://");
    if (scheme_end != std::string_view::npos) {
        const std::string scheme = ascii::lower(rest.substr(0, scheme_end));
        if (scheme == "ldaps") {
            host.security = Security::tls;
            host.port = 636;
        } else if (scheme != "ldap") {
            refuse(server, "has the unknown scheme '" + scheme + "'.");
        }
        rest.remove_prefix(scheme_end + 3);
    }
    const std::size_t query = rest.find('?');
    const std::string_view options =
        query == std::string_view::npos ? std::string_view() : rest.substr(query + 1);
    rest = rest.substr(0, query);
    const std::size_t path = std::min(rest.find('/'), rest.size());
    if (rest.find_first_not_of('/', path) != std::string_view::npos)
        refuse(server, "has a path; the container is a setting of its own.");
    read_host_and_port(rest.substr(0, path), host, server);
    read_options(options, host, server);
    return host;
}

}  // namespace

std::string ServerHost::url() const {
    const std::string scheme = security == Security::tls ? "ldaps://" : "ldap://";
    const bool is_ipv6 = name.find(':') != std::string::npos;
    return scheme + (is_ipv6 ? "[" + name + "]" : name) + ":" + std::to_string(port);
}

std::string ServerHost::setting() const {
    std::string result = url();
    const bool is_asking = security == Security::start_tls;
    if (is_asking) result += "/?starttls";
    if (ca_file.empty()) return result;
    result += is_asking ? "&cafile=" : "/?cafile=";
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (const char c : ca_file) {
        const auto byte = static_cast<unsigned char>(c);
        if (ascii::is_alphanumeric(c) || c == '/' || c == '.' || c == '-' || c == '_')
            result += c;
        else
            result += {'%', digits[byte >> 4], digits[byte & 15]};
    }
    return result;
}

ServerAddress ServerAddress::parse(TextView text) {
    const std::string bytes = to_utf8(text);
    ServerAddress address;
    std::size_t begin = bytes.find_first_not_of(blanks);
    while (begin != std::string::npos) {
        const std::size_t end = std::min(bytes.find_first_of(blanks, begin), bytes.size());
        address.hosts_.push_back(read_server(std::string_view(bytes).substr(begin, end - begin)));
        begin = bytes.find_first_not_of(blanks, end);
    }
    if (address.hosts_.empty()) raise_code(result_code::parameter_error, "No server is given.");
    return address;
}

std::string ServerHost::key() const {
    std::string result = ascii::lower(url());
    if (security == Security::start_tls) result += "/?starttls";
    if (!ca_file.empty()) result += "&cafile=" + ca_file;
    return result;
}

std::string ServerAddress::key() const {
    std::string result;
    for (const ServerHost& host : hosts_) {
        if (!result.empty()) result += ' ';
        result += host.key();
    }
    return result;
}

}  // namespace orvo::directory::ldap
