#include "host/web/static_files.h"

#include <array>
#include <chrono>
#include <fstream>
#include <iterator>

#include "host/web/cookies.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

struct Kind {
    std::string_view ending;
    std::string_view content_type;
};

constexpr std::array kinds{
    Kind{".html", "text/html; charset=utf-8"},
    Kind{".htm", "text/html; charset=utf-8"},
    Kind{".css", "text/css; charset=utf-8"},
    Kind{".js", "text/javascript; charset=utf-8"},
    Kind{".json", "application/json"},
    Kind{".txt", "text/plain; charset=utf-8"},
    Kind{".csv", "text/csv; charset=utf-8"},
    Kind{".xml", "application/xml"},
    Kind{".svg", "image/svg+xml"},
    Kind{".png", "image/png"},
    Kind{".jpg", "image/jpeg"},
    Kind{".jpeg", "image/jpeg"},
    Kind{".gif", "image/gif"},
    Kind{".webp", "image/webp"},
    Kind{".ico", "image/x-icon"},
    Kind{".woff", "font/woff"},
    Kind{".woff2", "font/woff2"},
    Kind{".pdf", "application/pdf"},
};

std::string last_modified(const fs::path& file) {
    const auto time = std::chrono::file_clock::to_sys(fs::last_write_time(file));
    const double seconds =
        std::chrono::floor<std::chrono::seconds>(time).time_since_epoch() / std::chrono::seconds(1);
    return http_date(Date{25569 + seconds / 86400});
}

}  // namespace

std::string_view content_type_of(const fs::path& file) {
    const std::string ending = file.extension().string();
    for (const Kind& kind : kinds)
        if (equal_ascii_ignoring_case(kind.ending, ending)) return kind.content_type;
    return {};
}

HttpResponse static_file(const fs::path& file, const HttpRequest& request) {
    HttpResponse response;
    response.content_type = content_type_of(file);
    const std::string modified = last_modified(file);
    response.headers = {{"Last-Modified", modified}, {"Cache-Control", "no-cache"}};
    if (request.header("If-Modified-Since") == modified) {
        response.status = 304;
        return response;
    }
    std::ifstream stream(file, std::ios::binary);
    response.body.assign(std::istreambuf_iterator<char>(stream), {});
    if (!stream.is_open()) throw Refusal(403, "The file cannot be read.");
    return response;
}

}  // namespace orvo::web
