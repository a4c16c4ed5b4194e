#include "host/web/request_head.h"

#include <algorithm>

namespace orvo::web {
namespace {

constexpr auto npos = std::string_view::npos;
constexpr std::size_t longest_line = 8000;

std::string_view without_blanks(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool is_token(std::string_view text) {
    constexpr std::string_view others = "!#$%&'*+-.^_`|~";
    return !text.empty() && std::ranges::all_of(text, [&](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               others.find(c) != npos;
    });
}

bool has_control(std::string_view text) {
    return std::ranges::any_of(text, [](char c) {
        return (static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == 0x7F;
    });
}

std::string_view take_line(std::string_view& text) {
    const auto end = text.find('\n');
    auto line = text.substr(0, end);
    text.remove_prefix(end == npos ? text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

void read_request_line(std::string_view line, HttpRequest& request) {
    const auto first = line.find(' ');
    const auto last = line.rfind(' ');
    if (first == npos || first == last) throw Refusal(400, "The request line cannot be read.");
    request.method = line.substr(0, first);
    request.target = line.substr(first + 1, last - first - 1);
    request.version = line.substr(last + 1);
    if (!is_token(request.method) || request.target.empty() || has_control(request.target) ||
        request.target.find_first_of(" \t#") != npos ||
        (request.version != "HTTP/1.1" && request.version != "HTTP/1.0"))
        throw Refusal(400, "The request line cannot be read.");
}

}  // namespace

void read_head(std::string_view head, std::size_t most_headers, HttpRequest& request) {
    if (head.substr(0, head.find('\n')).size() > longest_line)
        throw Refusal(
            414, "The address is longer than " + std::to_string(longest_line) + " characters.");
    if (!head.ends_with("\n\r\n") && !head.ends_with("\n\n"))
        throw Refusal(431, "The headers of the request are too large.");
    read_request_line(take_line(head), request);
    while (true) {
        const auto line = take_line(head);
        if (line.empty()) break;
        if (request.headers.size() >= most_headers)
            throw Refusal(
                431, "The request has more than " + std::to_string(most_headers) + " headers.");
        const auto colon = line.find(':');
        const auto name = line.substr(0, colon);
        const auto value = colon == npos ? line : without_blanks(line.substr(colon + 1));
        if (colon == npos || !is_token(name) || has_control(value))
            throw Refusal(400, "A header of the request cannot be read.");
        request.headers.emplace_back(name, value);
    }
    const auto hosts = std::ranges::count_if(request.headers, [](const auto& header) {
        return equal_ascii_ignoring_case(header.first, "host");
    });
    if (hosts > 1 || (hosts == 0 && request.version == "HTTP/1.1"))
        throw Refusal(400, "The request names no host, or several.");
}

std::size_t body_length(const HttpRequest& request, std::size_t largest) {
    std::string_view length;
    for (const auto& [name, value] : request.headers) {
        if (equal_ascii_ignoring_case(name, "transfer-encoding"))
            throw Refusal(411, "A form has to say its length in front.");
        if (!equal_ascii_ignoring_case(name, "content-length")) continue;
        const bool is_number = !value.empty() && std::ranges::all_of(value, [](char c) {
            return c >= '0' && c <= '9';
        });
        if (!is_number || (!length.empty() && length != value))
            throw Refusal(400, "The length of the request cannot be read.");
        length = value;
    }
    if (length.empty()) {
        if (request.method == "POST") throw Refusal(411, "A form has to say its length in front.");
        return 0;
    }
    if (length.size() > 12 || std::stoull(std::string(length)) > largest)
        throw Refusal(413, "The form is larger than " + std::to_string(largest) + " bytes.");
    return std::stoul(std::string(length));
}

}  // namespace orvo::web
