#include "platform/objects/files/opened_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/values/failure.h"

namespace orvo {
namespace {

int flags_of(OpenedFile::Use use) {
    switch (use) {
        case OpenedFile::Use::read:
            return O_RDONLY;
        case OpenedFile::Use::append:
            return O_WRONLY | O_APPEND | O_CREAT;
        case OpenedFile::Use::create:
            return O_WRONLY | O_CREAT | O_EXCL;
        case OpenedFile::Use::replace:
            return O_WRONLY | O_CREAT | O_TRUNC;
        case OpenedFile::Use::rewrite:
            return O_WRONLY | O_TRUNC;
    }
    return O_RDONLY;
}

}  // namespace

void raise_file_error(int error) {
    switch (error) {
        case ENOENT:
            raise_runtime_error(runtime_error::file_not_found);
        case ENOTDIR:
            raise_runtime_error(runtime_error::path_not_found);
        case EEXIST:
        case ENOTEMPTY:
            raise_runtime_error(runtime_error::file_already_exists);
        case EACCES:
        case EPERM:
        case EROFS:
        case ELOOP:
        case EISDIR:
        case ETXTBSY:
            raise_runtime_error(runtime_error::permission_denied);
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            raise_runtime_error(runtime_error::disk_full);
        case ENAMETOOLONG:
        case EINVAL:
            raise_runtime_error(runtime_error::bad_file_name);
        case EMFILE:
        case ENFILE:
            raise_runtime_error(runtime_error::too_many_files);
        case ENOMEM:
            raise_runtime_error(runtime_error::out_of_memory);
        default:
            raise_runtime_error(runtime_error::device_error);
    }
}

OpenedFile::OpenedFile(const UsablePath& path, Use use) {
    // A pipe that nobody writes to would be waited for.
    const int limits = path.is_limited ? O_NOFOLLOW | O_NONBLOCK : 0;
    number_ = ::open(path.path.c_str(), flags_of(use) | O_CLOEXEC | limits, 0666);
    if (number_ < 0) {
        const int error = errno;
        std::error_code ignored;
        if (error == ENOENT && !std::filesystem::is_directory(path.path.parent_path(), ignored))
            raise_runtime_error(runtime_error::path_not_found);
        raise_file_error(error);
    }
    struct stat status {};
    const bool is_known = ::fstat(number_, &status) == 0;
    if (is_known && !S_ISDIR(status.st_mode) && (S_ISREG(status.st_mode) || !path.is_limited))
        return;
    ::close(number_);
    raise_runtime_error(runtime_error::permission_denied);
}

OpenedFile::~OpenedFile() { ::close(number_); }

std::size_t OpenedFile::read(std::span<char> to) {
    for (;;) {
        const ssize_t count = ::read(number_, to.data(), to.size());
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR) raise_file_error(errno);
    }
}

void OpenedFile::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(number_, bytes.data(), bytes.size());
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            raise_file_error(errno);
    }
}

std::uint64_t OpenedFile::size() const {
    struct stat status {};
    if (::fstat(number_, &status) != 0) raise_file_error(errno);
    return S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

}  // namespace orvo
