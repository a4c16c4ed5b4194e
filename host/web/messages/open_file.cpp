#include "host/web/messages/open_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace orvo::web {
namespace {

[[noreturn]] void raise(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// For file systems that have no files without a name.
int unlinked_file(const std::filesystem::path& folder) {
    std::string name = folder / "orvo-web-XXXXXX";
    const int descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor >= 0) unlink(name.c_str());
    return descriptor;
}

}  // namespace

std::shared_ptr<const OpenFile> OpenFile::try_open(const std::filesystem::path& path) {
    // A pipe must not keep the caller waiting.
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return nullptr;
    const std::shared_ptr<OpenFile> file(new OpenFile(descriptor));
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
    file->size_ = static_cast<std::uint64_t>(status.st_size);
    file->modified_ =
        std::chrono::system_clock::time_point(std::chrono::seconds(status.st_mtim.tv_sec) +
                                              std::chrono::nanoseconds(status.st_mtim.tv_nsec));
    return file;
}

std::shared_ptr<OpenFile> OpenFile::temporary() {
    const std::filesystem::path folder = std::filesystem::temp_directory_path();
    int descriptor = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor < 0) descriptor = unlinked_file(folder);
    if (descriptor < 0) raise("a temporary file cannot be made");
    return std::shared_ptr<OpenFile>(new OpenFile(descriptor));
}

OpenFile::~OpenFile() { close(descriptor_); }

std::size_t OpenFile::read(std::uint64_t offset, std::span<char> to) const {
    std::size_t done = 0;
    while (done < to.size()) {
        const ssize_t count = pread(descriptor_, to.data() + done, to.size() - done,
                                    static_cast<off_t>(offset + done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) raise("a file cannot be read");
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

void OpenFile::append(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count =
            pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(size_));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) raise("a temporary file cannot be written");
        bytes.remove_prefix(static_cast<std::size_t>(count));
        size_ += static_cast<std::uint64_t>(count);
    }
}

std::uint64_t OpenFile::free_room() const {
    struct statvfs status {};
    if (fstatvfs(descriptor_, &status) != 0) raise("the disk cannot be asked");
    return std::uint64_t{status.f_bavail} * status.f_frsize;
}

}  // namespace orvo::web
