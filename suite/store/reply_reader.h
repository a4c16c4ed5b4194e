#pragma once

// Replies, out of the bytes as they come.

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "suite/store/reply.h"

struct redisReader;

namespace orvo::store {

// A reply that is larger is not read to its end.
inline constexpr std::size_t largest_reply = 32 * 1024 * 1024;

// What was read of the replies that come over one connection. Raises Lost for what is no reply, is
// nested more than seven lists deep, or is too large; it is of no use afterwards. One thread at a
// time.
class ReplyReader {
public:
    ReplyReader();

    void feed(std::string_view bytes);
    // The next one; nothing where more has to come.
    std::optional<Reply> next();

private:
    struct Building;
    struct Free {
        void operator()(redisReader* reader) const;
    };

    std::unique_ptr<redisReader, Free> reader_;
    std::size_t unfinished_ = 0;  // bytes that came since the last whole reply
};

// A command as it is sent.
std::string wire_form(std::span<const std::string_view> words);

}  // namespace orvo::store
