#include "host/admin/common/input_file.h"

#include <cerrno>
#include <iostream>
#include <stdexcept>
#include <system_error>

namespace orvo::admin {

InputFile::InputFile(const std::filesystem::path& file) : name_(file.string()), stream_(&file_) {
    if (file == "-") {
        name_ = "standard input";
        stream_ = &std::cin;
        return;
    }
    errno = 0;
    file_.open(file, std::ios::binary);
    file_.peek();  // finds out what can be opened but not read: a folder
    if (!file_.is_open() || file_.bad())
        throw std::runtime_error(name_ + ": " + std::generic_category().message(errno));
    file_.clear();
    std::error_code unknown;  // of a pipe, say
    size_ = std::filesystem::file_size(file, unknown);
    if (unknown) size_ = 0;
}

std::uint64_t InputFile::position() const {
    if (size_ == 0) return 0;
    const std::streamoff offset = stream_->rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in);
    return offset < 0 ? 0 : static_cast<std::uint64_t>(offset);
}

}  // namespace orvo::admin
