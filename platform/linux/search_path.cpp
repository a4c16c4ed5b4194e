#include "platform/linux/search_path.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>

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

}  // namespace

std::vector<path> manifest_folders() {
    std::vector<path> folders = folders_in_front();
    if (std::optional<path> folder = users_folder()) folders.push_back(*folder);
    const path usual[] = {path("/usr/local/share") / subfolder, path("/usr/share") / subfolder};
    // Where the product is installed, if that is neither of the two.
    const path own = ORVO_INSTALLED_DATA "/" + std::string(subfolder);
    if (std::ranges::find(usual, own) == std::end(usual)) folders.push_back(own);
    folders.insert(folders.end(), std::begin(usual), std::end(usual));
    return folders;
}

std::optional<path> registration_folder() {
    std::vector<path> front = folders_in_front();
    return front.empty() ? users_folder() : front.front();
}

}  // namespace orvo::runtime
