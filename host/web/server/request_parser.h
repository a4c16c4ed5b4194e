#pragma once

// Requests from the bytes of a connection. The library below it stays behind this header.

#include <cstddef>
#include <memory>
#include <string_view>

#include "host/web/messages/http_message.h"

namespace orvo::web {

struct RequestLimits {
    std::size_t longest_line = 8000;       // the request line
    std::size_t largest_head = 32 * 1024;  // request line and headers
    std::size_t most_headers = 100;
    std::size_t largest_body = 1024 * 1024;
    std::size_t largest_upload = 1024 * 1024;  // of a form that may have files (multipart)
};

// Reads one request after the other, strictly: what two readers could understand differently is
// refused, so that no request hides in another one. Refused are lines that do not end with CR LF,
// headers on several lines, blanks before a colon, a length beside a transfer encoding, more
// than one length, even where they are equal. One thread.
class RequestParser {
public:
    explicit RequestParser(const RequestLimits& limits);
    ~RequestParser();

    // Takes all of these bytes; true once a request has come as a whole. What follows it is kept
    // for the next one. Raises Refusal, after which nothing more can be read: 400 for what is no
    // request, 411 for a form without a length, 413, 414 and 431 for what is too large, 501 for a
    // transfer encoding other than chunked, 507 where there is no room for what came.
    bool feed(std::string_view bytes);

    // Whether anything of a request has come. Empty lines in front of one do not count.
    bool has_begun() const;
    bool has_head() const;
    // Whether the client waits for "100 Continue" before it sends what belongs to the request.
    bool expects_continue() const;
    // Whether the client lets the connection be used again.
    bool keeps_alive() const;
    // Bytes of the body so far, without those of its framing.
    std::uint64_t body_size() const;

    // What is known of the request that is being read; method and target are "-" before that.
    const HttpRequest& request() const;
    // The request that has come. The next one is read from now on: call feed({}) for what is kept.
    HttpRequest take();

private:
    class Reader;

    void scan_head();
    void parse_head();
    bool parse_body();
    [[noreturn]] void refuse_head() const;

    const RequestLimits limits_;
    std::string bytes_;            // not parsed yet
    std::size_t scanned_ = 0;      // bytes of the head that were looked at
    std::size_t line_begin_ = 0;   // of the line that is looked at
    std::size_t head_length_ = 0;  // 0: its end has not come
    std::unique_ptr<Reader> reader_;
};

}  // namespace orvo::web
