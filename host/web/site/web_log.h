#pragma once

// What the server writes down of its work.

#include <chrono>
#include <filesystem>
#include <optional>

#include "host/web/messages/http_message.h"
#include "host/web/site/log_file.h"

namespace orvo::web {

// Two kinds of lines, in UTF-8 and each written at once: one for each request, and one for each
// failure of a page. Of a request only time, the client's address, method, path, status, size,
// duration, identifier ("-": none) and the page's own note are kept: no query, no header, no cookie
// and nothing of a form. Any thread.
class WebLog {
public:
    // access: where the requests go; empty: nowhere. All else goes to the standard error stream.
    // Raises std::system_error where the file cannot be opened.
    explicit WebLog(const std::filesystem::path& access);

    void request(const HttpRequest& request, const HttpResponse& response,
                 std::chrono::steady_clock::duration duration, std::string_view note);
    // What the server has to say of itself.
    void trouble(std::string_view sentence);
    // Answers the reference under which the line can be found. `request`: the identifier of the one
    // that failed; empty: none did.
    std::string failure(std::string_view path, std::string_view text,
                        std::string_view request = {});
    // Goes on in a file of the same name, after somebody has moved the one with the requests away.
    // Says where that fails, and then goes on as before.
    void reopen();

private:
    std::optional<LogFile> access_;
    LogFile errors_;
};

// On one line, with what is no printable ASCII character written as \xNN.
std::string on_one_line(std::string_view text);

}  // namespace orvo::web
