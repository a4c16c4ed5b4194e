#include "suite/directory/embedded/store/new_file.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include "suite/directory/policy/failures.h"

namespace orvo::directory::embedded {
namespace {

[[noreturn]] void raise(const std::filesystem::path& file, const std::string& reason) {
    raise_code(result_code::other, quoted_name(file.string()) + ": " + reason + ".");
}

[[noreturn]] void raise_errno(const std::filesystem::path& file) {
    raise(file, std::generic_category().message(errno));
}

void sync(const std::filesystem::path& file) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) raise_errno(file);
    const bool is_synced = ::fsync(descriptor) == 0;
    const int error = errno;
    ::close(descriptor);
    errno = error;
    if (!is_synced) raise_errno(file);
}

}  // namespace

NewFile::NewFile(std::filesystem::path target)
    : target_(std::filesystem::absolute(std::move(target))) {
    for (const char* ending : {"", "-wal", "-journal"}) {
        std::filesystem::path there = target_;
        there += ending;
        if (std::filesystem::exists(std::filesystem::symlink_status(there)))
            raise(there, "there is such a file already");
    }
    std::string name = target_.string() + ".new-XXXXXX";
    const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0) raise_errno(target_);
    ::close(descriptor);
    path_ = name;
}

NewFile::~NewFile() {
    std::error_code ignored;  // a file that cannot be removed harms nobody
    std::filesystem::remove(path_, ignored);
}

void NewFile::publish() {
    sync(path_);
    if (::link(path_.c_str(), target_.c_str()) != 0) raise_errno(target_);
    sync(target_.parent_path());
}

}  // namespace orvo::directory::embedded
