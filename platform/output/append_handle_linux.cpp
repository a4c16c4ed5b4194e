#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/output/append_handle.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

constexpr mode_t for_owner_and_group = 0640;
constexpr int flags = O_WRONLY | O_APPEND | O_CLOEXEC | O_NOFOLLOW;

[[noreturn]] void raise_system_error(int number = errno) {
    throw std::system_error(number, std::generic_category());
}

// Calls until no signal has come between.
template <class Call>
auto repeated(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) result = call();
    return result;
}

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ != -1) close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return number_; }
    int detach() { return std::exchange(number_, -1); }

private:
    int number_;
};

// -1 where another process has made the file meanwhile.
int try_make(const fs::path& file) {
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    fs::create_directories(folder);
    const Descriptor in(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (in.get() == -1) raise_system_error();
    Descriptor made(open(file.c_str(), flags | O_CREAT | O_EXCL, for_owner_and_group));
    if (made.get() == -1) {
        if (errno == EEXIST) return -1;
        raise_system_error();
    }
    struct stat owner;
    if (geteuid() == 0 &&
        (fstat(in.get(), &owner) == -1 || fchown(made.get(), owner.st_uid, owner.st_gid) == -1))
        raise_system_error();
    if (fsync(in.get()) == -1) raise_system_error();
    return made.detach();
}

int opened(const fs::path& file) {
    for (;;) {
        int descriptor = open(file.c_str(), flags);
        if (descriptor == -1 && errno != ENOENT) raise_system_error();
        if (descriptor == -1) descriptor = try_make(file);
        if (descriptor != -1) return descriptor;
    }
}

struct stat status_of(int descriptor) {
    struct stat status;
    if (fstat(descriptor, &status) == -1) raise_system_error();
    return status;
}

// Of the whole file, and the descriptor's: it ends with its last copy.
int set_lock(int descriptor, short kind) {
    struct flock whole {};
    whole.l_type = kind;
    whole.l_whence = SEEK_SET;
    return repeated([&] { return fcntl(descriptor, F_OFD_SETLKW, &whole); });
}

}  // namespace

class AppendHandle::File {
public:
    explicit File(int opened) : descriptor(opened) {}
    const Descriptor descriptor;
};

AppendHandle::AppendHandle(const fs::path& file) : file_(*new File(opened(file))) {}

AppendHandle::~AppendHandle() { delete &file_; }

void AppendHandle::lock() {
    if (set_lock(file_.descriptor.get(), F_WRLCK) == -1) raise_system_error();
}

void AppendHandle::unlock() noexcept { set_lock(file_.descriptor.get(), F_UNLCK); }

bool AppendHandle::is_file_of(const fs::path& name) const {
    const struct stat own = status_of(file_.descriptor.get());
    struct stat named;
    if (lstat(name.c_str(), &named) == -1) {
        if (errno == ENOENT) return false;
        raise_system_error();
    }
    return own.st_dev == named.st_dev && own.st_ino == named.st_ino;
}

std::uint64_t AppendHandle::size() const {
    return static_cast<std::uint64_t>(status_of(file_.descriptor.get()).st_size);
}

void AppendHandle::append(std::string_view bytes) {
    const int descriptor = file_.descriptor.get();
    const off_t before = status_of(descriptor).st_size;
    const auto done = repeated([&] { return write(descriptor, bytes.data(), bytes.size()); });
    if (done == static_cast<ssize_t>(bytes.size())) return;
    const int reason = done == -1 ? errno : ENOSPC;
    if (done > 0 && ftruncate(descriptor, before) == -1) raise_system_error();
    raise_system_error(reason);
}

void AppendHandle::sync() const {
    if (repeated([&] { return fdatasync(file_.descriptor.get()); }) == -1) raise_system_error();
}

}  // namespace orvo
