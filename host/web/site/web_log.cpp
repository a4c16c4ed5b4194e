#include "host/web/site/web_log.h"

#include <unistd.h>

#include <system_error>

#include "host/web/intrinsics/page_context.h"
#include "host/web/messages/random_token.h"

namespace orvo::web {

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

WebLog::WebLog(const std::filesystem::path& access) : errors_(STDERR_FILENO) {
    if (!access.empty()) access_.emplace(access);
}

void WebLog::request(const HttpRequest& request, const HttpResponse& response,
                     std::chrono::steady_clock::duration duration, std::string_view note) {
    if (!access_) return;
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(duration).count();
    std::string line = log_time() + ' ' + request.remote_address + ' ' +
                       on_one_line(request.method) + ' ' + on_one_line(path_part(request.target)) +
                       ' ' + std::to_string(response.status) + ' ' +
                       std::to_string(response.length()) + ' ' + std::to_string(milliseconds) +
                       "ms " + (request.id.empty() ? "-" : on_one_line(request.id));
    if (!note.empty()) line += " \"" + on_one_line(note) + '"';
    line += '\n';
    const std::string why = access_->write(line);
    if (!why.empty()) trouble("requests are not logged until there is room: " + why);
}

void WebLog::trouble(std::string_view sentence) {
    errors_.write(log_time() + " orvo-web: " + on_one_line(sentence) + '\n');
}

std::string WebLog::failure(std::string_view path, std::string_view text,
                            std::string_view request) {
    const std::string reference = random_token().substr(0, 8);
    const std::string of_request = request.empty() ? "" : ' ' + on_one_line(request);
    errors_.write(log_time() + " orvo-web " + reference + of_request + ' ' + on_one_line(path) +
                  ": " + on_one_line(text) + '\n');
    return reference;
}

void WebLog::reopen() {
    if (!access_) return;
    try {
        access_->reopen();
    } catch (const std::system_error& failure) {
        trouble(failure.what());
    }
}

}  // namespace orvo::web
