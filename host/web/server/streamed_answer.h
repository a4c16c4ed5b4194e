#pragma once

#include <atomic>
#include <boost/asio/io_context.hpp>
#include <memory>

#include "host/web/messages/http_message.h"

namespace orvo::web {

class HttpSession;

// Hands the pieces of an answer from a handler's thread to the connection.
class StreamedAnswer : public AnswerStream {
public:
    StreamedAnswer(boost::asio::io_context& loop, std::shared_ptr<HttpSession> session);

    void begin(const HttpResponse& head) override;
    void send(std::string piece) override;
    bool has_begun() const override { return has_begun_; }
    std::uint64_t length() const override { return length_; }
    bool is_connected() const override;

    // Lets go of the session.
    void release() { session_ = nullptr; }

private:
    boost::asio::io_context& loop_;
    std::shared_ptr<HttpSession> session_;
    const int descriptor_;
    bool has_begun_ = false;
    std::uint64_t length_ = 0;
};

// What stands in front of a chunk's bytes.
std::string chunk_head(std::size_t size);

}  // namespace orvo::web
