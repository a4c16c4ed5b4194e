#include "host/web/messages/http_message.h"

#include <algorithm>

namespace orvo::web {
namespace {

char lower_ascii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

bool equal_ascii_ignoring_case(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, lower_ascii, lower_ascii);
}

std::string_view HttpRequest::header(std::string_view name) const {
    for (const auto& [key, value] : headers)
        if (equal_ascii_ignoring_case(key, name)) return value;
    return {};
}

std::string_view reason_of_status(int status) {
    switch (status) {
        case 200:
            return "OK";
        case 204:
            return "No Content";
        case 206:
            return "Partial Content";
        case 301:
            return "Moved Permanently";
        case 302:
            return "Found";
        case 303:
            return "See Other";
        case 304:
            return "Not Modified";
        case 400:
            return "Bad Request";
        case 401:
            return "Unauthorized";
        case 403:
            return "Forbidden";
        case 404:
            return "Not Found";
        case 405:
            return "Method Not Allowed";
        case 408:
            return "Request Timeout";
        case 411:
            return "Length Required";
        case 413:
            return "Payload Too Large";
        case 414:
            return "URI Too Long";
        case 415:
            return "Unsupported Media Type";
        case 416:
            return "Range Not Satisfiable";
        case 431:
            return "Request Header Fields Too Large";
        case 500:
            return "Internal Server Error";
        case 501:
            return "Not Implemented";
        case 503:
            return "Service Unavailable";
        case 504:
            return "Gateway Timeout";
        case 507:
            return "Insufficient Storage";
        default:
            return "";
    }
}

}  // namespace orvo::web
