#include "host/web/web_log.h"

#include <array>
#include <cstdio>
#include <iostream>

#include "host/web/cookies.h"
#include "host/web/page_context.h"
#include "host/web/random_token.h"

namespace orvo::web {
namespace {

// "2026-11-21T02:32:11Z"
std::string now() {
    const DateParts parts = parts_of(current_date());
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ", parts.year,
                  parts.month, parts.day, parts.hour, parts.minute, parts.second);
    return text.data();
}

}  // namespace

std::string on_one_line(std::string_view text) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string line;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F && c != '\\') {
            line += c;
        } else {
            line += "\\x";
            line += digits[byte >> 4];
            line += digits[byte & 15];
        }
    }
    return line;
}

WebLog::WebLog(const std::filesystem::path& access) {
    if (access.empty()) return;
    access_.open(access, std::ios::app);
    if (!access_) throw std::runtime_error(access.string() + ": the log cannot be written");
}

void WebLog::request(const HttpRequest& request, const HttpResponse& response,
                     std::chrono::steady_clock::duration duration, std::string_view note) {
    if (!access_.is_open()) return;
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(duration).count();
    std::string line = now() + ' ' + request.remote_address + ' ' + on_one_line(request.method) +
                       ' ' + on_one_line(path_part(request.target)) + ' ' +
                       std::to_string(response.status) + ' ' + std::to_string(response.length()) +
                       ' ' + std::to_string(milliseconds) + "ms";
    if (!note.empty()) line += " \"" + on_one_line(note) + '"';
    line += '\n';
    const std::lock_guard guard(lock_);
    access_ << line << std::flush;
}

void WebLog::trouble(std::string_view sentence) {
    const std::string line = now() + " orvo-web: " + on_one_line(sentence) + '\n';
    const std::lock_guard guard(lock_);
    std::cerr << line << std::flush;
}

std::string WebLog::failure(std::string_view path, std::string_view text) {
    const std::string reference = random_token().substr(0, 8);
    const std::string line = now() + " orvo-web " + reference + ' ' + on_one_line(path) + ": " +
                             on_one_line(text) + '\n';
    const std::lock_guard guard(lock_);
    std::cerr << line << std::flush;
    return reference;
}

}  // namespace orvo::web
