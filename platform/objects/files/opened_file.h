#pragma once

// A file of the system's that is read or written in order. A failure is the run-time error that a
// script knows: 53 and 76 for what is not there, 58 for what is, 70 for what is not allowed, 61 for
// a full disk, 52, 57, 67 for others.

#include <span>
#include <string_view>

#include "platform/objects/files/usable_path.h"

namespace orvo {

// Raises what a system's error number stands for.
[[noreturn]] void raise_file_error(int error);

class OpenedFile {
public:
    enum class Use {
        read,
        append,   // and make it where it is not there
        create,   // only where it is not there
        replace,  // make it, or empty it
        rewrite,  // empty it; only where it is there
    };
    // Where access is limited, only a file (no folder, no device) can be opened.
    OpenedFile(const UsablePath& path, Use use);
    ~OpenedFile();
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;

    // Up to that many bytes; 0 at the end.
    std::size_t read(std::span<char> to);
    void write(std::string_view bytes);
    // Of a file, its length; 0 for what has none.
    std::uint64_t size() const;

private:
    int number_;
};

}  // namespace orvo
