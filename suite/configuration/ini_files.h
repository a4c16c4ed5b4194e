#pragma once

// Configuration files, read once per process and shared.

#include <filesystem>
#include <memory>

#include "suite/configuration/ini_parser.h"

namespace orvo {

// Beyond this a file is taken for something else than a configuration file.
inline constexpr std::size_t largest_ini_file = 1024 * 1024;

// A file as it stands now. Answers what was read before when the file's time and size are the same;
// only a file that was at rest for two seconds when it was read is answered so, because a time
// stamp cannot tell two changes at the same moment apart. Raises, with the file's name in front of
// the reason:
//
//     file_not_found     "<file>: there is no such file"
//     file_not_readable  "<file>: this is not a file", "<file>: it is larger than 1048576 bytes",
//                        "<file>: it cannot be read (<the system's reason>)"
//     malformed_file     see `parse_ini`
//
// Any thread.
std::shared_ptr<const IniValues> load_ini_file(const std::filesystem::path& file);

// The same, without a look at what was read before.
std::shared_ptr<const IniValues> reload_ini_file(const std::filesystem::path& file);

// Paths between the system and the house; "\" in a text means "/". A text that names no file (it is
// empty or holds a NUL) raises file_not_found.
std::filesystem::path path_of(TextView text);
Text text_of(const std::filesystem::path& path);

}  // namespace orvo
