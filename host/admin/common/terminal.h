#pragma once

#include <cstddef>
#include <string>

namespace orvo::admin {

// What one of the program's streams leads to.
struct Terminal {
    bool is_there = false;     // otherwise a file or a pipe
    bool has_colours = false;  // never where NO_COLOR is set, or the terminal is a dumb one
    std::size_t width = 0;     // in columns; 0: as wide as anything

    static Terminal of_output();
    static Terminal of_errors();
};

// The text in the terminal's bold, or as it is.
std::string bold(const Terminal& terminal, const std::string& text);

}  // namespace orvo::admin
