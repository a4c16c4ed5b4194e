#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/admin/transfer/import_source.h"

namespace orvo::admin {

// The rows of an import that nobody was made or changed by. Each is told on standard error with its
// line and the reason, and written to a file where there is one.
class RefusedRows {
public:
    // `file`: a new one, which nobody else can read, made with the first row; empty: none. Raises
    // std::runtime_error where it is there already. `from`: for sentences.
    RefusedRows(std::filesystem::path file, std::string from);

    // Raises std::runtime_error where the file cannot be written.
    void add(const ImportRow& row, const ImportSource& source, const std::string& reason);

    std::int64_t count() const { return count_; }

private:
    void write(std::string_view text);

    const std::filesystem::path file_;
    const std::string from_;
    std::ofstream out_;
    std::int64_t count_ = 0;
};

}  // namespace orvo::admin
