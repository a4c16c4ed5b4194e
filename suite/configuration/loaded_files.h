#pragma once

// Which configuration files this process works with. For parts of the suite that are not given a
// configuration but the name of what is configured: the directory provider finds the file that says
// how a server's directory is to be read.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "suite/configuration/ini_parser.h"

namespace orvo {

struct LoadedFile {
    std::filesystem::path path;
    std::shared_ptr<const IniValues> values;  // as they were when it was loaded last
};

// Notes a file that a configuration object has loaded. Any thread.
void note_loaded(const std::filesystem::path& path, const std::shared_ptr<const IniValues>& values);

// The latest that is new or has changed comes last. Any thread.
std::vector<LoadedFile> loaded_files();

// A number that is another one once a file is new or has changed. Costs nothing. Any thread.
std::uint64_t loaded_files_generation();

}  // namespace orvo
