#pragma once

// What came with a request, in memory or, where there is more of it, on disk.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "host/web/messages/open_file.h"

namespace orvo::web {

// A value that does not change; copies share what they hold. Any threads at once.
class RequestBody {
public:
    RequestBody() = default;
    explicit RequestBody(std::string bytes);

    std::uint64_t size() const;
    bool empty() const { return size() == 0; }
    // How many bytes from `offset` were copied: fewer than asked for at the end alone. Raises
    // std::system_error where the disk fails.
    std::size_t read(std::uint64_t offset, std::span<char> to) const;
    // The whole of it.
    std::string text() const;

private:
    friend class RequestBodyWriter;

    std::shared_ptr<const std::string> bytes_;  // one of them, or neither
    std::shared_ptr<const OpenFile> file_;
};

// Takes a body piece by piece: `most_in_memory` bytes are kept in memory, more go to a temporary
// file without a name. One thread.
class RequestBodyWriter {
public:
    static constexpr std::size_t most_in_memory = 64 * 1024;
    // Stays free on the disk for others.
    static constexpr std::uint64_t spared_room = 64 * 1024 * 1024;

    // Raises Refusal (507) where the disk has no room for it.
    void append(std::string_view bytes);
    std::uint64_t size() const { return file_ ? file_->size() : bytes_.size(); }
    // Leaves this empty.
    RequestBody take();

private:
    std::string bytes_;
    std::shared_ptr<OpenFile> file_;
    std::uint64_t next_check_ = 0;
};

}  // namespace orvo::web
