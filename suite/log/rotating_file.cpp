#include "suite/log/rotating_file.h"

#include <string>
#include <system_error>

namespace orvo {

namespace fs = std::filesystem;

fs::path rotated_file(const fs::path& file, std::size_t times) {
    if (times == 0) return file;
    fs::path name = file.stem();
    name += "." + std::to_string(times);
    name += file.extension();
    return file.parent_path() / name;
}

RotatingFile::RotatingFile(fs::path file, Rotation rotation, Sync sync)
    : file_(std::move(file)), rotation_(rotation), sync_(std::move(sync)) {}

std::shared_ptr<AppendHandle> RotatingFile::written(std::string_view line) {
    const std::lock_guard lock(mutex_);
    const auto turn = locked_with_room_for(line.size());
    handle_->append(line);
    return handle_;
}

// Who holds the lock of the file that has the name is the only one to rename files.
std::unique_lock<AppendHandle> RotatingFile::locked_with_room_for(std::size_t bytes) {
    for (;;) {
        if (!handle_) handle_ = std::make_shared<AppendHandle>(file_);
        std::unique_lock turn(*handle_);
        if (handle_->is_file_of(file_)) {
            const std::uint64_t size = handle_->size();
            if (size == 0 || size + bytes <= rotation_.largest) return turn;
            rename_all();
        }
        turn.unlock();
        handle_.reset();
    }
}

void RotatingFile::rename_all() const {
    for (std::size_t times = rotation_.count - 1; times > 0; --times) {
        std::error_code error;
        fs::rename(rotated_file(file_, times - 1), rotated_file(file_, times), error);
        if (error && error != std::errc::no_such_file_or_directory) throw std::system_error(error);
    }
}

}  // namespace orvo
