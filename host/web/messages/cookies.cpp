#include "host/web/messages/cookies.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

#include "host/web/messages/encoding.h"
#include "platform/values/failure.h"

namespace orvo::web {
namespace {

std::string_view without_blanks(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string_view without_quotes(std::string_view value) {
    const bool is_quoted = value.size() >= 2 && value.front() == '"' && value.back() == '"';
    return is_quoted ? value.substr(1, value.size() - 2) : value;
}

Text decoded(std::string_view text) { return from_utf8(form_decoded(text)); }

// Calls visit(name, value) for each cookie of a request, as they came. Raises Refusal.
template <class Visit>
void for_each_cookie(const HttpRequest& request, Visit visit) {
    std::size_t count = 0;
    for (const auto& [header, all] : request.headers) {
        if (!equal_ascii_ignoring_case(header, "cookie")) continue;
        for (std::string_view rest = all; !rest.empty();) {
            const auto end = rest.find(';');
            const auto pair = without_blanks(rest.substr(0, end));
            rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
            const auto equals = pair.find('=');
            if (equals == std::string_view::npos || equals == 0) continue;
            if (++count > most_fields) throw Refusal(400, "The request has too many cookies.");
            visit(pair.substr(0, equals), pair.substr(equals + 1));
        }
    }
}

}  // namespace

RequestFields cookies_of(const HttpRequest& request) {
    RequestFields cookies;
    for_each_cookie(request, [&](std::string_view raw_name, std::string_view value) {
        Text name = decoded(raw_name);
        if (!cookies.find(name)) cookies.add(std::move(name), decoded(without_quotes(value)));
    });
    return cookies;
}

RequestFields cookie_keys_of(const HttpRequest& request, TextView name) {
    std::optional<std::string_view> found;
    for_each_cookie(request, [&](std::string_view raw_name, std::string_view value) {
        if (!found && lower(decoded(raw_name)) == lower(name)) found = without_quotes(value);
    });
    const bool has_keys = found && found->find('=') != std::string_view::npos;
    return has_keys ? parse_urlencoded(*found) : RequestFields();
}

std::optional<std::string_view> try_exact_cookie(const HttpRequest& request,
                                                 std::string_view name) {
    std::optional<std::string_view> found;
    for_each_cookie(request, [&](std::string_view other, std::string_view value) {
        if (!found && other == name) found = value;
    });
    return found;
}

std::string_view session_cookie_name(bool is_secure) {
    return is_secure ? "__Host-orvosession" : "orvosession";
}

std::string session_id_of(const HttpRequest& request) {
    return std::string(
        try_exact_cookie(request, session_cookie_name(request.is_secure)).value_or(""));
}

std::string cookie_attribute(TextView name, const Text& value) {
    const bool may_be = std::ranges::all_of(
        value, [](char16_t unit) { return unit >= 0x20 && unit < 0x7F && unit != u';'; });
    if (!may_be)
        throw Failure(runtime_error::invalid_call, {},
                      u"A cookie's " + Text(name) +
                          u" cannot have a \";\", a line end or anything beyond ASCII in it");
    return to_utf8(value);
}

std::string header_text(const OutgoingCookie& cookie) {
    std::string text = to_utf8(url_encode(cookie.name)) + '=';
    if (cookie.keys.empty()) {
        text += to_utf8(url_encode(cookie.value));
    } else {
        bool is_first = true;
        for (const auto& [key, value] : cookie.keys) {
            if (!std::exchange(is_first, false)) text += '&';
            text += to_utf8(url_encode(key)) + '=' + to_utf8(url_encode(value));
        }
    }
    if (!cookie.path.empty()) text += "; Path=" + cookie_attribute(u"Path", cookie.path);
    if (!cookie.domain.empty()) text += "; Domain=" + cookie_attribute(u"Domain", cookie.domain);
    if (cookie.expires) text += "; Expires=" + http_date(*cookie.expires);
    if (cookie.is_secure) text += "; Secure";
    if (cookie.is_http_only) text += "; HttpOnly";
    if (!cookie.same_site.empty())
        text += "; SameSite=" + cookie_attribute(u"SameSite", cookie.same_site);
    return text;
}

Date current_date() {
    const std::chrono::duration<double> now = std::chrono::system_clock::now().time_since_epoch();
    return Date{25569 + now.count() / 86400};
}

Date in_greenwich(Date local) {
    const DateParts parts = parts_of(local);
    std::tm here{};
    here.tm_year = parts.year - 1900;
    here.tm_mon = parts.month - 1;
    here.tm_mday = parts.day;
    here.tm_hour = parts.hour;
    here.tm_min = parts.minute;
    here.tm_sec = parts.second;
    here.tm_isdst = -1;  // to be found out
    const std::time_t seconds = std::mktime(&here);
    std::tm there{};
    const bool is_known = gmtime_r(&seconds, &there) != nullptr;
    const int year = there.tm_year + 1900;
    if (!is_known || year < 100 || year > 9999) return local;
    return date_from_parts({year, there.tm_mon + 1, there.tm_mday, there.tm_hour, there.tm_min,
                            std::min(there.tm_sec, 59)});
}

std::string http_date(Date date) {
    static constexpr std::array<const char*, 7> days{"Sat", "Sun", "Mon", "Tue",
                                                     "Wed", "Thu", "Fri"};
    static constexpr std::array<const char*, 12> months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const DateParts parts = parts_of(date);
    const double midnight = date_from_parts({parts.year, parts.month, parts.day}).days;
    const auto weekday = (static_cast<int>(std::fmod(midnight, 7.0)) + 7) % 7;
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%s, %02d %s %04d %02d:%02d:%02d GMT",
                  days[static_cast<std::size_t>(weekday)], parts.day,
                  months[static_cast<std::size_t>(parts.month - 1)], parts.year, parts.hour,
                  parts.minute, parts.second);
    return text.data();
}

}  // namespace orvo::web
