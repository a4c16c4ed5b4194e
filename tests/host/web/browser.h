#pragma once

#include <map>

#include "tests/support/http_client.h"

namespace orvo::web {

// A client that keeps cookies, of one host and without regard to their attributes.
class Browser {
public:
    // patience: seconds until it gives up when nothing comes.
    explicit Browser(int port, int patience = 60) : client_(port, {}, patience) {}

    HttpResult get(const std::string& path) { return noted(client_.get(path, headers())); }
    HttpResult post(const std::string& path, const HttpFields& form) {
        return noted(client_.post(path, form, headers()));
    }

    std::map<std::string, std::string> cookies;

private:
    HttpFields headers() const {
        std::string all;
        for (const auto& [name, value] : cookies) all += name + '=' + value + "; ";
        return {{"Cookie", all}};
    }
    HttpResult noted(HttpResult result) {
        if (!result) return result;
        for (std::size_t i = 0; i < result->get_header_value_count("Set-Cookie"); ++i) {
            const std::string header = result->get_header_value("Set-Cookie", i);
            const std::string pair = header.substr(0, header.find(';'));
            const auto equals = pair.find('=');
            cookies[pair.substr(0, equals)] = pair.substr(equals + 1);
        }
        return result;
    }

    HttpClient client_;
};

}  // namespace orvo::web
