#include "platform/objects/files/file_access.h"

#include <algorithm>

#include "platform/interfaces/hosted.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

class FileAccess {
public:
    explicit FileAccess(std::vector<fs::path> folders) : folders_(std::move(folders)) {}

    // Of a path with all links resolved.
    bool Allows(const Text& path) {
        const fs::path asked = to_utf8(path);
        return std::ranges::any_of(folders_, [&](const fs::path& folder) {
            return std::ranges::mismatch(folder, asked).in1 == folder.end();
        });
    }

private:
    std::vector<fs::path> folders_;
};

}  // namespace

template <>
inline constexpr auto table_of<FileAccess> =
    describe<FileAccess>("IFileAccess", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2c12",
                         method<&FileAccess::Allows>("Allows", "path"));

template <>
inline constexpr auto class_of<FileAccess> = describe_class<FileAccess>("OrvoPlatform.FileAccess");

Object make_file_access(const std::vector<fs::path>& folders) {
    std::vector<fs::path> resolved;
    for (const fs::path& folder : folders) {
        std::error_code error;
        resolved.push_back(fs::canonical(folder, error));
        if (error || !fs::is_directory(resolved.back()))
            throw Failure(runtime_error::path_not_found, {},
                          u"Path not found: " + from_utf8(folder.string()));
    }
    return make<FileAccess>(std::move(resolved)).object();
}

}  // namespace orvo
