#pragma once

// What tests of the server on the wire share: a handler, options, and the parts of an answer.

#include "tests/host/web/running_server.h"
#include "tests/host/web/wire.h"

namespace orvo::web {

// Answers what it was asked: method, target, and the body.
inline HttpResponse echo(const HttpRequest& request) {
    HttpResponse response;
    response.content_type = "text/plain";
    response.headers = {{"Set-Cookie", "a=1"}, {"Set-Cookie", "b=2"}};
    response.body = request.method + ' ' + request.target + ' ' +
                    std::string(request.header("X-Odd")) + '[' + request.body.text() + ']';
    return response;
}

inline ServerOptions quick() {
    ServerOptions options;
    options.workers = 2;
    options.request_time = std::chrono::milliseconds(300);
    options.idle_time = std::chrono::milliseconds(2000);
    options.largest_body = 1000;
    return options;
}

// "HTTP/1.1 200 OK" and so on; empty where the server said nothing.
inline std::string status_line(const std::string& answer) {
    return answer.substr(0, answer.find('\r'));
}

inline std::string body(const std::string& answer) {
    const auto end = answer.find("\r\n\r\n");
    return end == std::string::npos ? "" : answer.substr(end + 4);
}

inline std::string get(const std::string& path, const std::string& version = "1.1") {
    return "GET " + path + " HTTP/" + version + "\r\nHost: h\r\n\r\n";
}

}  // namespace orvo::web
