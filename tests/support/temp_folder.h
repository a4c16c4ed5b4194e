#pragma once

#include <filesystem>

namespace orvo {

// A folder of a test's own below the system's place for temporary files; only the current user can
// look into it. Removed, with everything in it, at the end of the object's life.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace orvo
