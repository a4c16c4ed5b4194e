#pragma once

#include <cstdint>
#include <istream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvo::admin {

struct CsvRow {
    std::int64_t line = 0;  // in the file, of its beginning; from 1
    std::vector<std::string> cells;
};

// What is wrong with a file; what() is "line 12: " and the reason.
class CsvError : public std::runtime_error {
public:
    CsvError(std::int64_t line, const std::string& reason)
        : std::runtime_error("line " + std::to_string(line) + ": " + reason) {}
};

// Reads a CSV file (RFC 4180), one row after another. Cells are UTF-8 and as they are written, with
// their spaces. Empty lines are passed over, and so is a byte order mark. What separates the cells
// is
// "," or, in a file whose first line has ";" or a tab and no ",", that.
class CsvReader {
public:
    static constexpr std::size_t usual_longest = std::size_t{1} << 20;

    // `in` lives longer. `longest`: a row of more octets is refused.
    explicit CsvReader(std::istream& in, std::size_t longest = usual_longest);
    ~CsvReader();
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    // Nothing at the end. Raises CsvError, and nothing can be read after that; std::runtime_error
    // where the file cannot be read.
    std::optional<CsvRow> next();

private:
    struct Parser;

    // A line with its end; false at the end of the file.
    bool read_line(std::string& line);
    void choose_separator(const std::string& first_line);

    std::istream& in_;
    const std::size_t longest_;
    std::int64_t line_ = 0;  // that was read last
    std::unique_ptr<Parser> parser_;
};

}  // namespace orvo::admin
