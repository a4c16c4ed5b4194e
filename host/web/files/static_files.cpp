#include "host/web/files/static_files.h"

#include <array>
#include <chrono>
#include <cstdio>

#include "host/web/messages/request_conditions.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

// Of the tag of a file that is sent in gzip's form.
constexpr std::string_view compressed_ending = "-gz";

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

// Names a file's content: another one has another tag.
std::string tag_of(const OpenFile& file) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%llx-%llx",
                  static_cast<unsigned long long>(file.modified().time_since_epoch().count()),
                  static_cast<unsigned long long>(file.size()));
    return text.data();
}

bool is_text(std::string_view content_type) {
    return content_type.starts_with("text/") || content_type.ends_with("json") ||
           content_type.ends_with("xml");
}

std::string entity_tag(std::string_view tag, std::string_view ending = {}) {
    return '"' + std::string(tag) + std::string(ending) + '"';
}

// Whether the browser's copy is this content, in either form.
bool has_copy(const HttpRequest& request, std::string_view tag, std::chrono::sys_seconds modified) {
    const std::string_view tags = request.header("If-None-Match");
    if (!tags.empty())
        return has_tag(tags, entity_tag(tag)) || has_tag(tags, entity_tag(tag, compressed_ending));
    const auto since = try_http_date(request.header("If-Modified-Since"));
    return since && modified <= *since;
}

// Whether the copy of which the browser has a part is this content.
bool may_have_range(const HttpRequest& request, std::string_view tag, std::string_view modified) {
    if (request.method != "GET") return false;
    const std::string_view condition = request.header("If-Range");
    return condition.empty() || condition == entity_tag(tag) || condition == modified;
}

// What is small is read by the caller; the server's thread that writes reads the rest.
void put_whole(HttpResponse& response, const std::shared_ptr<const OpenFile>& file) {
    constexpr std::uint64_t small_file = 32 * 1024;
    if (file->size() > small_file) {
        response.file = FilePart{file, 0, file->size()};
    } else {
        response.body.resize(file->size());
        response.body.resize(file->read(0, response.body));
    }
}

}  // namespace

std::string_view content_type_of(const fs::path& file) {
    const std::string ending = file.extension().string();
    for (const Kind& kind : kinds)
        if (equal_ascii_ignoring_case(kind.ending, ending)) return kind.content_type;
    return {};
}

HttpResponse StaticFiles::answer(const fs::path& path, const HttpRequest& request) {
    const auto file = OpenFile::try_open(path);
    if (!file) throw Refusal(403, "The file cannot be read.");
    HttpResponse response;
    response.content_type = content_type_of(path);
    const std::string tag = tag_of(*file);
    const auto seconds = std::chrono::floor<std::chrono::seconds>(file->modified());
    const std::string modified = http_date_of(seconds);
    response.headers = {
        {"Last-Modified", modified}, {"Cache-Control", "no-cache"}, {"Accept-Ranges", "bytes"}};
    if (is_text(response.content_type)) response.headers.emplace_back("Vary", "Accept-Encoding");

    if (has_copy(request, tag, seconds)) {
        response.status = 304;
        response.headers.emplace_back("ETag", entity_tag(tag));
        return response;
    }
    std::optional<ByteRange> range;
    if (may_have_range(request, tag, modified))
        range = try_range(request.header("Range"), file->size());
    if (range) return part(std::move(response), file, *range, tag);

    std::shared_ptr<const std::string> compressed;
    if (is_text(response.content_type) && accepts_gzip(request.header("Accept-Encoding")))
        compressed = compressed_.of(path.string() + '\n' + tag, *file);
    if (compressed) {
        response.headers.emplace_back("ETag", entity_tag(tag, compressed_ending));
        response.headers.emplace_back("Content-Encoding", "gzip");
        response.body = *compressed;
    } else {
        response.headers.emplace_back("ETag", entity_tag(tag));
        put_whole(response, file);
    }
    return response;
}

HttpResponse StaticFiles::part(HttpResponse response, const std::shared_ptr<const OpenFile>& file,
                               const ByteRange& range, std::string_view tag) {
    const std::string size = std::to_string(file->size());
    response.headers.emplace_back("ETag", entity_tag(tag));
    if (range.length == 0) {
        response.status = 416;
        response.headers.emplace_back("Content-Range", "bytes */" + size);
        return response;
    }
    response.status = 206;
    response.headers.emplace_back("Content-Range",
                                  "bytes " + std::to_string(range.first) + '-' +
                                      std::to_string(range.first + range.length - 1) + '/' + size);
    response.file = FilePart{file, range.first, range.length};
    return response;
}

}  // namespace orvo::web
