#pragma once

// The files of a test.

#include <filesystem>
#include <string>
#include <string_view>

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

    // Writes a file anew, and the folders above it, and answers its path. `name` is relative.
    std::filesystem::path write(const std::filesystem::path& name, std::string_view content) const;

private:
    std::filesystem::path path_;
};

// Every byte of a file; raises std::system_error where it cannot be opened.
std::string content_of(const std::filesystem::path& file);

}  // namespace orvo
