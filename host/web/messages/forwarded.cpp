#include "host/web/messages/forwarded.h"

#include <algorithm>

namespace orvo::web {
namespace {

[[noreturn]] void refuse() {
    throw Refusal(400, "What a proxy says of the client cannot be read.");
}

bool is_letter_or_digit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// Of a token, and of what is often sent without the quotes that it should have.
bool is_plain(char c) {
    return is_letter_or_digit(c) ||
           std::string_view("!#$%&'*+-.^_`|~:[]").find(c) != std::string_view::npos;
}

std::string_view trimmed(std::string_view text) {
    const auto begin = text.find_first_not_of(" \t");
    if (begin == text.npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

// What one proxy has said: who asked it, and how. Empty: it has not said so.
struct Hop {
    std::string client = {};
    std::string proto = {};
    std::string host = {};
};

// Forwarded: for=192.0.2.7;proto=https, for="[2001:db8::1]:4711"
class ForwardedReader {
public:
    explicit ForwardedReader(std::string_view text) : rest_(text) {}

    void read(std::vector<Hop>& hops) {
        while (true) {
            skip_blanks();
            if (!take(',')) {
                if (rest_.empty()) return;
                hops.push_back(hop());
                if (rest_.empty()) return;
                if (!take(',')) refuse();
            }
        }
    }

private:
    Hop hop() {
        Hop hop;
        bool has_by = false, has_for = false, has_proto = false, has_host = false;
        do {
            skip_blanks();
            // A semicolon with nothing behind it.
            if (rest_.empty() || rest_.front() == ',' || rest_.front() == ';') continue;
            const std::string name = word();
            if (!take('=')) refuse();
            const std::string value = !rest_.empty() && rest_.front() == '"' ? quoted() : word();
            if (value.empty()) refuse();
            const auto is = [&](std::string_view known, bool& has) {
                if (!equal_ascii_ignoring_case(name, known)) return false;
                if (std::exchange(has, true)) refuse();
                return true;
            };
            if (is("for", has_for)) hop.client = value;
            if (is("proto", has_proto)) hop.proto = value;
            if (is("host", has_host)) hop.host = value;
            is("by", has_by);  // whom it asked says nothing of the client
            skip_blanks();
        } while (take(';'));
        return hop;
    }

    void skip_blanks() {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t"), rest_.size()));
    }
    bool take(char c) {
        if (rest_.empty() || rest_.front() != c) return false;
        rest_.remove_prefix(1);
        return true;
    }
    std::string word() {
        const auto end = std::find_if_not(rest_.begin(), rest_.end(), is_plain);
        std::string word(rest_.begin(), end);
        if (word.empty()) refuse();
        rest_.remove_prefix(word.size());
        return word;
    }
    std::string quoted() {
        std::string text;
        take('"');
        while (!take('"')) {
            take('\\');
            if (rest_.empty()) refuse();
            text += rest_.front();
            rest_.remove_prefix(1);
        }
        return text;
    }

    std::string_view rest_;
};

// The values of all headers of this name, in their order.
std::vector<std::string> list_of(const Headers& headers, std::string_view name) {
    std::vector<std::string> values;
    for (const auto& [key, value] : headers) {
        if (!equal_ascii_ignoring_case(key, name)) continue;
        std::string_view rest = value;
        while (true) {
            const auto comma = rest.find(',');
            values.emplace_back(trimmed(rest.substr(0, comma)));
            if (comma == rest.npos) break;
            rest.remove_prefix(comma + 1);
        }
    }
    return values;
}

// Of one value it was the nearest proxy that set it.
void put_values(std::vector<Hop>& hops, std::vector<std::string> values, std::string Hop::*field) {
    if (values.empty()) return;
    if (hops.empty()) hops.emplace_back();
    if (values.size() != 1 && values.size() != hops.size()) refuse();
    std::size_t place = hops.size() - values.size();
    for (std::string& value : values) {
        if (value.empty()) refuse();
        hops[place++].*field = std::move(value);
    }
}

// From the client to the nearest proxy.
std::vector<Hop> hops_of(const Headers& headers, const ForwardedHeaders& read) {
    std::vector<Hop> hops, x_hops;
    for (const auto& [name, value] : headers)
        if (read.forwarded && equal_ascii_ignoring_case(name, "Forwarded"))
            ForwardedReader(value).read(hops);
    const auto values = [&](bool is_read, std::string_view name) {
        return is_read ? list_of(headers, name) : std::vector<std::string>();
    };
    for (std::string& client : values(read.x_for, "X-Forwarded-For"))
        x_hops.push_back({.client = std::move(client)});
    put_values(x_hops, values(read.x_proto, "X-Forwarded-Proto"), &Hop::proto);
    put_values(x_hops, values(read.x_host, "X-Forwarded-Host"), &Hop::host);
    if (!hops.empty() && !x_hops.empty())
        throw Refusal(400, "Forwarded and X-Forwarded headers are not read together.");
    return hops.empty() ? x_hops : hops;
}

bool is_hidden(std::string_view client) {
    return client.empty() || client.front() == '_' ||
           equal_ascii_ignoring_case(client.substr(0, client.find(':')), "unknown");
}

int port_of(std::string_view text) {
    const auto port = try_port(text);
    if (!port) refuse();
    return *port;
}

// "192.0.2.7", "192.0.2.7:4711", "2001:db8::1", "[2001:db8::1]", "[2001:db8::1]:4711"
void put_address(std::string_view text, ForwardedClient& client) {
    std::string_view port;
    if (text.starts_with('[')) {
        const auto end = text.find(']');
        if (end == text.npos) refuse();
        port = text.substr(end + 1);
        text = text.substr(1, end - 1);
        if (text.find(':') == text.npos) refuse();
    } else if (std::ranges::count(text, ':') == 1) {
        port = text.substr(text.find(':'));
        text = text.substr(0, text.find(':'));
    }
    if (!port.empty() && (port.front() != ':' || port.size() == 1)) refuse();
    const auto address = IpAddress::try_read(text);
    if (!address) refuse();
    // A port may be hidden, too ("_p1").
    const bool has_port = !port.empty() && port[1] != '_';
    client.port = has_port ? port_of(port.substr(1)) : 0;
    client.address = *address;
}

bool is_https(std::string_view proto) {
    if (equal_ascii_ignoring_case(proto, "https")) return true;
    if (!equal_ascii_ignoring_case(proto, "http")) refuse();
    return false;
}

// "example.org", "example.org:8443", "[::1]:8443"
void check_host(std::string_view host) {
    const auto bracket = host.starts_with('[') ? host.find(']') : 0;
    if (bracket == host.npos) refuse();
    const auto colon = host.find(':', bracket);
    if (colon != host.npos) port_of(host.substr(colon + 1));
    std::string_view name = host.substr(0, colon);
    if (bracket > 0) {
        if (!name.ends_with(']') || !IpAddress::try_read(name.substr(1, name.size() - 2))) refuse();
        return;
    }
    const auto is_of_name = [](char c) {
        return is_letter_or_digit(c) || c == '.' || c == '-' || c == '_';
    };
    if (name.empty() || !std::ranges::all_of(name, is_of_name)) refuse();
}

}  // namespace

ForwardedClient forwarded_client(const Headers& headers, const IpAddress& sender,
                                 const TrustedProxies& proxies) {
    ForwardedClient client{.address = sender};
    if (!proxies.networks.contain(sender)) return client;
    std::vector<Hop> hops = hops_of(headers, proxies.headers);
    for (auto hop = hops.rbegin(); hop != hops.rend() && proxies.networks.contain(client.address);
         ++hop) {
        // An outer proxy knows better than an inner one.
        if (!hop->proto.empty()) client.is_secure = is_https(hop->proto);
        if (!hop->host.empty()) {
            check_host(hop->host);
            client.host = std::move(hop->host);
        }
        if (is_hidden(hop->client)) break;
        put_address(hop->client, client);
    }
    return client;
}

void remove_forwarded(Headers& headers) {
    std::erase_if(headers, [](const auto& header) {
        const std::string_view name = header.first;
        return equal_ascii_ignoring_case(name, "Forwarded") ||
               equal_ascii_ignoring_case(name.substr(0, 12), "X-Forwarded-");
    });
}

}  // namespace orvo::web
