#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <istream>
#include <string>

namespace orvo::admin {

// A file that is read from its begin to its end, or standard input ("-").
class InputFile {
public:
    // Raises std::runtime_error with the file and the reason.
    explicit InputFile(const std::filesystem::path& file);

    std::istream& stream() { return *stream_; }
    const std::string& name() const { return name_; }  // for sentences
    std::uint64_t size() const { return size_; }       // 0: nobody knows
    std::uint64_t position() const;

private:
    std::string name_;
    std::ifstream file_;
    std::istream* stream_;
    std::uint64_t size_ = 0;
};

}  // namespace orvo::admin
