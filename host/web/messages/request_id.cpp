#include "host/web/messages/request_id.h"

#include <algorithm>

#include "host/web/messages/random_token.h"

namespace orvo::web {

bool is_request_id(std::string_view text) {
    constexpr std::size_t longest = 64;
    const auto is_usual = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
               std::string_view("-_.:=+/").find(c) != std::string_view::npos;
    };
    return !text.empty() && text.size() <= longest && std::ranges::all_of(text, is_usual);
}

std::string new_request_id() { return random_token().substr(0, 16); }

}  // namespace orvo::web
