#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace orvo::admin {

// The octets of a file. Raises std::runtime_error with the file and the reason.
std::string text_of_file(const std::filesystem::path& file);

// A name or another text out of a directory, for a terminal: control characters are "?".
std::string printable(std::string_view text);

// As one word of a command that is typed into a shell: "'Doe, John'".
std::string shell_word(std::string_view text);

bool is_utf8(std::string_view octets);

// What a failure says.
std::string told(const std::exception& failure);

}  // namespace orvo::admin
