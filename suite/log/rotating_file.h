#pragma once

// A file of lines that several processes write, and that begins anew when it is full.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string_view>

#include "platform/output/append_handle.h"

namespace orvo {

// When a line would make the file larger than `largest`, the file is renamed (a.log becomes
// a.1.log, that becomes a.2.log, …) and a new one is begun; together there are never more than
// `count` files, of which there are at least two. A line is never cut: one that is larger than that
// has a file of its own.
struct Rotation {
    std::uint64_t largest = 10 * 1024 * 1024;  // bytes
    std::size_t count = 10;

    auto operator<=>(const Rotation&) const = default;
};

// The name of the file that was renamed so many times; with 0 the file itself.
std::filesystem::path rotated_file(const std::filesystem::path& file, std::size_t times);

// Lines are whole, and each is in one of the files, whoever else writes or renames: a writer holds
// the file's lock meanwhile, and looks whether the file still has its name. A file that somebody
// else has moved away is begun anew. Any thread.
class RotatingFile {
public:
    using Sync = std::function<void(const AppendHandle&)>;

    // Nothing is opened before the first line. `sync`: for tests.
    RotatingFile(
        std::filesystem::path file, Rotation rotation,
        Sync sync = [](const AppendHandle& handle) { handle.sync(); });

    // `line` with its line end. The system has it when append returns, the disk when
    // append_on_disk does. Raise std::system_error: after append then nothing was written.
    void append(std::string_view line) { written(line); }
    void append_on_disk(std::string_view line) { sync_(*written(line)); }

private:
    std::shared_ptr<AppendHandle> written(std::string_view line);
    std::unique_lock<AppendHandle> locked_with_room_for(std::size_t bytes);
    void rename_all() const;

    const std::filesystem::path file_;
    const Rotation rotation_;
    const Sync sync_;
    std::mutex mutex_;
    // Shared with those who wait for the disk, while others go on to a new file.
    std::shared_ptr<AppendHandle> handle_;
};

}  // namespace orvo
