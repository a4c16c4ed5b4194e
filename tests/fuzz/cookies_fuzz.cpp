// Cookies of a request, the session's among them, and what an answer makes of their texts. Each
// line of the input is a Cookie header.

#include <algorithm>

#include "host/web/messages/cookies.h"
#include "host/web/messages/random_token.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

using namespace orvo::web;

HttpRequest request_of(std::string_view input, bool is_secure) {
    HttpRequest request;
    request.is_secure = is_secure;
    while (!input.empty()) {
        const auto [line, rest] = first_line_and_rest(input);
        request.headers.emplace_back("Cookie", line);
        input = rest;
    }
    return request;
}

// How many cookies of exactly this name and value stand in the headers, looked for by hand.
std::size_t count_of(std::string_view input, std::string_view name, std::string_view value) {
    std::size_t count = 0;
    std::string pieces(input);
    std::ranges::replace(pieces, '\n', ';');
    for (std::size_t begin = 0; begin <= pieces.size();) {
        const std::size_t end = std::min(pieces.find(';', begin), pieces.size());
        std::string_view piece = std::string_view(pieces).substr(begin, end - begin);
        while (!piece.empty() && (piece.front() == ' ' || piece.front() == '\t'))
            piece.remove_prefix(1);
        while (!piece.empty() && (piece.back() == ' ' || piece.back() == '\t'))
            piece.remove_suffix(1);
        if (piece.size() == name.size() + 1 + value.size() && piece.starts_with(name) &&
            piece[name.size()] == '=' && piece.ends_with(value))
            ++count;
        begin = end + 1;
    }
    return count;
}

void check_session(std::string_view input, bool is_secure) {
    const HttpRequest request = request_of(input, is_secure);
    const std::string id = session_id_of(request);
    const std::string_view name = session_cookie_name(is_secure);
    require(id.empty() || count_of(input, name, id) > 0,
            "the session is named by the cookie of this very name, as it came");
    // Whatever stands behind the one that counts.
    HttpRequest more = request;
    more.headers.emplace_back("Cookie", std::string(name) + "=planted");
    const std::string again = session_id_of(more);
    require(id.empty() ? again == "planted" || (again.empty() && count_of(input, name, "") > 0)
                       : again == id,
            "the first of two cookies counts");
    require(equal_secretly(id, again) == (id == again), "secrets are equal where they are equal");
    require(!equal_secretly(random_token(), input), "no token is found by chance");
}

// What an answer sets, a browser sends back.
void check_return(const Text& name, const Text& value) {
    const std::string header = header_text({.name = name, .value = value});
    require(header.find_first_of(std::string_view("\r\n\0", 3)) == header.npos,
            "a cookie is one line");
    require(std::ranges::count(header, ';') == 3, "a cookie has the attributes that it was given");
    HttpRequest request;
    request.headers.emplace_back("Cookie", header.substr(0, header.find(';')));
    const RequestFields back = cookies_of(request);
    require(back.all().size() == 1 && back.all().front().name == name &&
                back.all().front().values == std::vector<Text>{value},
            "a cookie comes back as it was set");
}

void check_return_of_keys(const Text& name, const Text& value) {
    const std::string header = header_text({.name = name, .keys = {{value, value}}});
    HttpRequest request;
    request.headers.emplace_back("Cookie", header.substr(0, header.find(';')));
    const RequestFields back = cookie_keys_of(request, name);
    require(back.all().size() == 1 && back.all().front().name == value &&
                back.all().front().values == std::vector<Text>{value},
            "a key of a cookie comes back as it was set");
}

void check_attribute(const Text& text) {
    try {
        const std::string header = header_text({.name = u"a", .path = text, .domain = text});
        const int parts = text.empty() ? 2 : 4;
        require(std::ranges::count(header, ';') == parts &&
                    header.find_first_of(std::string_view("\r\n\0", 3)) == header.npos,
                "an attribute begins no other one");
    } catch (const Failure& failure) {
        require(failure.number == runtime_error::invalid_call, "it is refused as an argument");
    }
}

}  // namespace

void cookies_properties(std::string_view input) {
    try {
        const RequestFields cookies = cookies_of(request_of(input, false));
        require(cookies.all().size() <= most_fields, "cookies are limited");
        for (const auto& cookie : cookies.all()) {
            require(!cookie.name.empty() && cookie.values.size() == 1,
                    "a cookie has a name and one value");
            require(cookies.find(cookie.name) == &cookie, "a cookie is found by its name");
            check_return(cookie.name, cookie.values.front());
            check_return_of_keys(cookie.name, cookie.values.front());
            check_attribute(cookie.values.front());
        }
        for (const bool is_secure : {false, true}) check_session(input, is_secure);
    } catch (const Refusal& refusal) {
        require(refusal.status == 400, "too many cookies are refused as such");
    }
}

}  // namespace orvo::fuzz
