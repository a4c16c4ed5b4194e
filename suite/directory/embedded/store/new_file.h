#pragma once

#include <filesystem>

namespace orvo::directory::embedded {

// A file in the making: it stands beside the one that it is to become, and is gone with this object
// unless it has become it. Mode 0600.
class NewFile {
public:
    // Raises result code 80 where `target` is there, where the log of a former one is, or where it
    // cannot be made.
    explicit NewFile(std::filesystem::path target);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    const std::filesystem::path& path() const { return path_; }
    // Gives it its name, which it keeps after a power failure. Raises 80 where somebody else was
    // quicker: no file is ever replaced. Nobody has it open.
    void publish();

private:
    std::filesystem::path target_;
    std::filesystem::path path_;
};

}  // namespace orvo::directory::embedded
