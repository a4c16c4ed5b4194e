#include "platform/objects/files/file_access.h"

#include <algorithm>

#include "platform/interfaces/hosted.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

class FileAccess {
public:
    FileAccess(std::vector<fs::path> folders, ExceptedFiles excepted)
        : folders_(std::move(folders)), excepted_(std::move(excepted)) {}

    // Of a path with all links resolved.
    bool Allows(const Text& path) {
        const fs::path asked = to_utf8(path);
        const bool is_inside = std::ranges::any_of(folders_, [&](const fs::path& folder) {
            return std::ranges::mismatch(folder, asked).in1 == folder.end();
        });
        return is_inside && !(excepted_ && excepted_(asked));
    }

private:
    std::vector<fs::path> folders_;
    ExceptedFiles excepted_;
};

}  // namespace

template <>
inline constexpr auto table_of<FileAccess> =
    describe<FileAccess>("IFileAccess", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2c12",
                         method<&FileAccess::Allows>("Allows", "path"));

template <>
inline constexpr auto class_of<FileAccess> = describe_class<FileAccess>("OrvoPlatform.FileAccess");

Object make_file_access(std::vector<fs::path> folders, ExceptedFiles excepted) {
    return make<FileAccess>(std::move(folders), std::move(excepted)).object();
}

}  // namespace orvo
