#include "host/web/server/streamed_answer.h"

#include <poll.h>

#include <array>
#include <boost/asio/post.hpp>
#include <charconv>

#include "host/web/server/http_session.h"

namespace orvo::web {

StreamedAnswer::StreamedAnswer(boost::asio::io_context& loop, std::shared_ptr<HttpSession> session)
    : loop_(loop), session_(std::move(session)), descriptor_(session_->descriptor()) {}

void StreamedAnswer::begin(const HttpResponse& head) {
    has_begun_ = true;
    HttpResponse copy{head.status, head.content_type, head.headers};
    boost::asio::post(
        loop_, [session = session_, copy = std::move(copy)] { session->begin_answer(copy); });
}

void StreamedAnswer::send(std::string piece) {
    length_ += piece.size();
    boost::asio::post(loop_, [session = session_, piece = std::move(piece)]() mutable {
        session->send_piece(std::move(piece));
    });
}

bool StreamedAnswer::is_connected() const {
    // The session keeps the socket open, be it cut, as long as it lives.
    pollfd watched{descriptor_, POLLRDHUP, 0};
    return poll(&watched, 1, 0) == 0;
}

std::string chunk_head(std::size_t size) {
    std::array<char, 16> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), size, 16).ptr;
    return std::string(digits.data(), end) + "\r\n";
}

}  // namespace orvo::web
