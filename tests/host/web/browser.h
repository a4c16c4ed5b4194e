#pragma once

#include <httplib.h>

#include <map>

namespace orvo::web {

// A client that keeps cookies, of one host and without regard to their attributes.
class Browser {
public:
    explicit Browser(int port) : client_("127.0.0.1", port) {
        client_.set_keep_alive(true);
        client_.set_tcp_nodelay(true);
        client_.set_read_timeout(std::chrono::seconds(60));
    }

    httplib::Result get(const std::string& path) { return noted(client_.Get(path, headers())); }
    httplib::Result post(const std::string& path, const httplib::Params& form) {
        return noted(client_.Post(path, headers(), form));
    }

    std::map<std::string, std::string> cookies;

private:
    httplib::Headers headers() const {
        std::string all;
        for (const auto& [name, value] : cookies) all += name + '=' + value + "; ";
        return {{"Cookie", all}};
    }
    httplib::Result noted(httplib::Result result) {
        if (!result) return result;
        const auto [first, last] = result->headers.equal_range("Set-Cookie");
        for (auto header = first; header != last; ++header) {
            const std::string pair = header->second.substr(0, header->second.find(';'));
            const auto equals = pair.find('=');
            cookies[pair.substr(0, equals)] = pair.substr(equals + 1);
        }
        return result;
    }

    httplib::Client client_;
};

}  // namespace orvo::web
