#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "tests/support/temp_folder.h"

namespace orvo {

// Writes section [THROTTLE] of a sample shop's site configuration anew: "On=no\n", say. Wrong
// passwords of one test would count in another one otherwise.
inline void write_throttle_section(const std::filesystem::path& site_ini,
                                   const std::string& lines) {
    const std::string head = "[THROTTLE]\n";
    std::string text = content_of(site_ini);
    const std::size_t begin = text.find(head);
    if (begin == std::string::npos)
        throw std::runtime_error(site_ini.string() + ": there is no section [THROTTLE]");
    const std::size_t end = std::min(text.find("\n[", begin), text.size());
    text.replace(begin, end - begin, head + lines);
    std::ofstream(site_ini) << text;
}

}  // namespace orvo
