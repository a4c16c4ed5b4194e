#pragma once

// What is asked of the system for a file that several processes append to.

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace orvo {

// An open file, for appending. Threads take turns between lock() and unlock(); sync() any of them
// may call at any time. All raise std::system_error.
class AppendHandle {
public:
    // Opens the file, not through a link. Where there is none it and its folders are made, on disk
    // when this returns, readable by the group; what a privileged process makes belongs to whom the
    // folder belongs to.
    explicit AppendHandle(const std::filesystem::path& file);
    ~AppendHandle();
    AppendHandle(const AppendHandle&) = delete;
    AppendHandle& operator=(const AppendHandle&) = delete;

    // Waits until no other handle, of whatever process, holds the lock.
    void lock();
    void unlock() noexcept;

    // Whether the name is this file's now: another may have been given it meanwhile.
    bool is_file_of(const std::filesystem::path& name) const;
    std::uint64_t size() const;
    // All of it in one write, with the lock held; what a full disk took a part of is cut off again.
    void append(std::string_view bytes);
    // What was appended survives a lost power supply when this returns.
    void sync() const;

private:
    class File;
    File& file_;
};

}  // namespace orvo
