#pragma once

// A request and its answer, apart from the library that reads and writes them. Bytes are as on the
// wire.

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvo::web {

using Headers = std::vector<std::pair<std::string, std::string>>;

struct HttpRequest {
    std::string method = "GET";
    std::string target = "/";  // "/members/list.asp?page=2"
    std::string version = "HTTP/1.1";
    Headers headers = {};
    std::string body = {};
    std::string remote_address = {};
    std::string local_address = {};
    int local_port = 0;
    bool is_secure = false;

    // The first of that name, without regard to case; empty where there is none.
    std::string_view header(std::string_view name) const;
};

struct HttpResponse {
    int status = 200;
    std::string content_type = "text/html; charset=utf-8";
    Headers headers;
    std::string body;
};

// A request that is not carried out: the answer's status, and a sentence for whoever sent it.
struct Refusal : std::runtime_error {
    Refusal(int status, const std::string& reason) : std::runtime_error(reason), status(status) {}
    int status;
};

// "Not Found"
std::string_view reason_of_status(int status);

bool equal_ascii_ignoring_case(std::string_view a, std::string_view b);

}  // namespace orvo::web
