#include "host/web/files/site_files.h"

#include <algorithm>

#include "host/web/messages/http_message.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

bool is_hidden(const fs::path& part) { return part.native().starts_with('.'); }

// As fs::canonical where there is such a file; beyond what there is, as the path says.
fs::path real_path(const fs::path& path) {
    std::error_code error;
    fs::path real = fs::canonical(path, error);
    if (error) real = fs::weakly_canonical(path, error);
    return error ? path : real;
}

}  // namespace

bool is_page(std::string_view path) {
    return path.size() > 4 && equal_ascii_ignoring_case(path.substr(path.size() - 4), ".asp");
}

std::optional<std::string> path_in_site(const fs::path& root, const fs::path& real) {
    const auto [end, rest] = std::ranges::mismatch(root, real);
    if (end != root.end()) return {};
    std::string path;
    for (auto part = rest; part != real.end(); ++part) path += "/" + part->string();
    return path;
}

std::optional<fs::path> try_site_file(const fs::path& root, const std::string& path) {
    if (!path.starts_with('/') || path.find('\0') != std::string::npos ||
        path.find('\\') != std::string::npos)
        return {};
    const fs::path below = fs::path(path).relative_path();
    if (std::ranges::any_of(below, is_hidden)) return {};
    std::error_code error;
    const fs::path file = fs::canonical(root / below, error);
    if (error || !fs::is_regular_file(file, error)) return {};
    // A link inside the site may lead to a hidden file of the site.
    const auto in_site = path_in_site(root, file);
    if (!in_site || std::ranges::any_of(fs::path(in_site->substr(1)), is_hidden)) return {};
    return file;
}

SitePath find_in_site(const fs::path& root, const std::string& path,
                      const std::vector<std::string>& default_pages) {
    SitePath found{.path = path};
    std::error_code error;
    if (fs::is_directory(root / fs::path(path).relative_path(), error)) {
        found.lacks_slash = !path.ends_with('/');
        if (!found.lacks_slash)
            for (const std::string& name : default_pages)
                if (try_site_file(root, path + name)) {
                    found.path += name;
                    break;
                }
    }
    found.file = try_site_file(root, found.path);
    const fs::path real =
        found.file ? *found.file : real_path(root / fs::path(found.path).relative_path());
    found.real_path = path_in_site(root, real).value_or(found.path);
    return found;
}

std::optional<fs::path> try_dangling_link(const fs::path& root) {
    std::error_code error;
    fs::recursive_directory_iterator entry(root, fs::directory_options::skip_permission_denied,
                                           error);
    for (const fs::recursive_directory_iterator end; !error && entry != end;
         entry.increment(error)) {
        if (is_hidden(entry->path().filename())) {
            entry.disable_recursion_pending();
            continue;
        }
        std::error_code nowhere;
        if (entry->is_symlink(nowhere) && !fs::exists(entry->path(), nowhere)) return entry->path();
    }
    return {};
}

}  // namespace orvo::web
