#pragma once

// A file that is open, whatever happens to its name meanwhile.

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string_view>

namespace orvo::web {

// Closed at its end. Reading: any threads at once. Writing: one thread, while nobody reads.
class OpenFile {
public:
    // A regular file, for reading; null where there is none, or where it may not be read.
    static std::shared_ptr<const OpenFile> try_open(const std::filesystem::path& path);
    // Empty, without a name, in the system's folder for temporary files: its room is free again
    // when it is closed. Raises std::system_error.
    static std::shared_ptr<OpenFile> temporary();

    ~OpenFile();
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    // As they were when it was opened, or as it was written since.
    std::uint64_t size() const { return size_; }
    std::chrono::system_clock::time_point modified() const { return modified_; }

    // How many bytes from `offset` were copied: fewer than asked for at the end alone. Raises
    // std::system_error.
    std::size_t read(std::uint64_t offset, std::span<char> to) const;
    // Behind what is there. Raises std::system_error, where the disk is full too.
    void append(std::string_view bytes);
    // Of the disk that it lies on, for users without privileges, in bytes.
    std::uint64_t free_room() const;

private:
    explicit OpenFile(int descriptor) : descriptor_(descriptor) {}

    const int descriptor_;
    std::uint64_t size_ = 0;
    std::chrono::system_clock::time_point modified_;
};

}  // namespace orvo::web
