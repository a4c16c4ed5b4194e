#include "host/web/server/answer_head.h"

#include <algorithm>
#include <array>

namespace orvo::web {
namespace {

bool is_own(std::string_view name) {
    constexpr std::array<std::string_view, 4> names{"Content-Length", "Transfer-Encoding",
                                                    "Connection", "Content-Type"};
    return std::ranges::any_of(
        names, [&](std::string_view own) { return equal_ascii_ignoring_case(own, name); });
}

void append(std::string& head, std::string_view name, std::string_view value) {
    const auto begin = head.size();
    head += name;
    head += ": ";
    head += value;
    std::replace_if(
        head.begin() + static_cast<std::ptrdiff_t>(begin), head.end(),
        [](char c) { return c == '\r' || c == '\n' || c == '\0'; }, ' ');
    head += "\r\n";
}

}  // namespace

bool has_body(int status) { return status >= 200 && status != 204 && status != 304; }

std::string answer_head(const HttpResponse& response, Framing framing, const Headers& more) {
    std::string head = "HTTP/1.1 " + std::to_string(response.status) + ' ';
    head += reason_of_status(response.status);
    head += "\r\n";
    if (framing != Framing::none) append(head, "Content-Type", response.content_type);
    for (const auto& [name, value] : response.headers)
        if (!is_own(name)) append(head, name, value);
    if (framing == Framing::length)
        append(head, "Content-Length", std::to_string(response.length()));
    if (framing == Framing::chunks) append(head, "Transfer-Encoding", "chunked");
    for (const auto& [name, value] : more) append(head, name, value);
    return head + "\r\n";
}

}  // namespace orvo::web
