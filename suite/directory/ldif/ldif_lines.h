#pragma once

// The lines of an LDIF file, put together where they are folded, without comments.

#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <stdexcept>
#include <string>

namespace orvo::directory {

// What is wrong with a file; what() is "line 12: " and the reason.
class LdifError : public std::runtime_error {
public:
    LdifError(std::int64_t line, const std::string& reason)
        : std::runtime_error("line " + std::to_string(line) + ": " + reason) {}
};

struct LdifLine {
    std::string text;         // empty: the end of a record
    std::int64_t number = 0;  // in the file, of the first of those put together; from 1
};

class LdifLines {
public:
    // `longest`: no value has more octets, and no more are ever held.
    LdifLines(std::istream& in, std::size_t longest) : in_(in), longest_(longest) {}

    // Nothing at the end. Raises LdifError for a line that goes on without one before it, and for
    // one that is too long; std::runtime_error where the file cannot be read.
    std::optional<LdifLine> next();

private:
    std::optional<std::string> read_line();

    std::istream& in_;
    std::size_t longest_;
    std::int64_t number_ = 0;
    std::optional<std::string> ahead_;  // read already, the line `number_`
    bool is_begun_ = false;
};

}  // namespace orvo::directory
