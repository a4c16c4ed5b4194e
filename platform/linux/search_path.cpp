#include "platform/linux/search_path.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

namespace orvo::runtime {

namespace {

using std::filesystem::path;

constexpr const char* subfolder = "orvo/components";

std::string_view variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::vector<path> folders_in_front() {
    std::vector<path> folders;
    std::string_view rest = variable("ORVO_COMPONENTS");
    while (!rest.empty()) {
        std::string_view folder = rest.substr(0, rest.find(':'));
        rest.remove_prefix(folder.size() == rest.size() ? rest.size() : folder.size() + 1);
        if (!folder.empty()) folders.push_back(std::filesystem::absolute(folder));
    }
    return folders;
}

std::optional<path> users_folder() {
    // A relative data folder is none, as its definition demands.
    if (path data = variable("XDG_DATA_HOME"); data.is_absolute()) return data / subfolder;
    if (path home = variable("HOME"); home.is_absolute()) return home / ".local/share" / subfolder;
    return std::nullopt;
}

// The folder of the tree in which this library is installed, wherever that has been moved to.
std::optional<path> own_folder() {
    Dl_info library{};
    if (dladdr(reinterpret_cast<const void*>(&own_folder), &library) == 0) return std::nullopt;
    std::error_code error;
    const path file = std::filesystem::canonical(library.dli_fname, error);
    if (error) return std::nullopt;
    return (file.parent_path() / ORVO_WAY_TO_DATA / subfolder).lexically_normal();
}

}  // namespace

std::vector<path> manifest_folders() {
    std::vector<path> folders = folders_in_front();
    if (std::optional<path> folder = users_folder()) folders.push_back(*folder);
    const path usual[] = {path("/usr/local/share") / subfolder, path("/usr/share") / subfolder};
    static const std::optional<path> own = own_folder();
    if (own && std::ranges::find(usual, *own) == std::end(usual)) folders.push_back(*own);
    folders.insert(folders.end(), std::begin(usual), std::end(usual));
    return folders;
}

std::optional<path> registration_folder() {
    std::vector<path> front = folders_in_front();
    return front.empty() ? users_folder() : front.front();
}

}  // namespace orvo::runtime
