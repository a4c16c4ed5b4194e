#include "host/web/messages/request_body.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "host/web/messages/http_message.h"

namespace orvo::web {
namespace {

// How often the disk is asked whether there is still room.
constexpr std::uint64_t check_every = 1024 * 1024;

[[noreturn]] void refuse() {
    throw Refusal(507, "The server has no room for what was sent. Please try again later.");
}

}  // namespace

RequestBody::RequestBody(std::string bytes)
    : bytes_(std::make_shared<const std::string>(std::move(bytes))) {}

std::uint64_t RequestBody::size() const {
    if (file_) return file_->size();
    return bytes_ ? bytes_->size() : 0;
}

std::size_t RequestBody::read(std::uint64_t offset, std::span<char> to) const {
    if (file_) return file_->read(offset, to);
    if (offset >= size()) return 0;
    return bytes_->copy(to.data(), to.size(), offset);
}

std::string RequestBody::text() const {
    if (!file_) return bytes_ ? *bytes_ : std::string();
    std::string all(size(), '\0');
    all.resize(read(0, all));
    return all;
}

void RequestBodyWriter::append(std::string_view bytes) {
    if (!file_ && bytes_.size() + bytes.size() <= most_in_memory) {
        bytes_ += bytes;
        return;
    }
    try {
        if (!file_) {
            file_ = OpenFile::temporary();
            file_->append(std::exchange(bytes_, {}));
        }
        if (file_->size() >= next_check_) {
            next_check_ = file_->size() + check_every;
            if (file_->free_room() < spared_room + check_every) refuse();
        }
        file_->append(bytes);
    } catch (const std::system_error&) {
        refuse();
    }
}

RequestBody RequestBodyWriter::take() {
    RequestBody body;
    if (file_)
        body.file_ = std::exchange(file_, nullptr);
    else if (!bytes_.empty())
        body = RequestBody(std::exchange(bytes_, {}));
    next_check_ = 0;
    return body;
}

}  // namespace orvo::web
