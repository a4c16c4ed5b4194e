#pragma once

// What a request for a file says of the copy that the browser has, and of the bytes that it wants.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace orvo::web {

// "Sun, 06 Nov 1994 08:49:37 GMT", the form in which dates are sent today; empty for any other
// text.
std::optional<std::chrono::sys_seconds> try_http_date(std::string_view text);
std::string http_date_of(std::chrono::sys_seconds time);

// Whether one of the tags of an If-None-Match is `tag` ("\"x\""), weak or strong, or it is "*".
bool has_tag(std::string_view tags, std::string_view tag);

// Whether an Accept-Encoding wants gzip.
bool accepts_gzip(std::string_view encodings);

struct ByteRange {
    std::uint64_t first;
    std::uint64_t length;  // 0: none of these bytes is there
    bool operator==(const ByteRange&) const = default;
};

// The one range of bytes that a Range asks for, of `size` there are. Empty where it asks for
// something else, which several ranges are too: the whole is sent then.
std::optional<ByteRange> try_range(std::string_view range, std::uint64_t size);

}  // namespace orvo::web
