#pragma once

// The files of a site's folder, and the paths that browsers have for them. Any thread.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvo::web {

// The file of a path below the root, where there is one that may be read as a part of the site:
// not outside the folder, also by way of links, and no part of its name begins with a dot.
std::optional<std::filesystem::path> try_site_file(const std::filesystem::path& root,
                                                   const std::string& path);

// "/a/b" for a canonical path below the root, "" for the root itself; nothing for one outside.
std::optional<std::string> path_in_site(const std::filesystem::path& root,
                                        const std::filesystem::path& real);

// By its name: "/a.asp".
bool is_page(std::string_view path);

// What an address asks for.
struct SitePath {
    std::string path;  // of the address; of a folder, of its default page
    // Where the links in it lead, as a path of the site: as far as there is such a file or folder,
    // then as in the address. The same path where that is outside the site.
    std::string real_path = {};
    std::optional<std::filesystem::path> file = {};  // what may be read
    bool lacks_slash = false;                        // a folder, without "/" at the end
};
// path: decoded, begins with "/" and has neither "." nor ".." among its parts.
SitePath find_in_site(const std::filesystem::path& root, const std::string& path,
                      const std::vector<std::string>& default_pages);

// A link in the folder, or further down, that leads to nothing; those whose name begins with a dot
// are not looked at, nor what lies behind links to folders.
std::optional<std::filesystem::path> try_dangling_link(const std::filesystem::path& root);

}  // namespace orvo::web
