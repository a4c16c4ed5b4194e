#pragma once

// One connection of a browser. For the sources of the server alone.

#include <boost/asio/steady_timer.hpp>
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/web/server/answer_head.h"
#include "host/web/server/connection_client.h"
#include "host/web/server/request_parser.h"
#include "host/web/server/transport.h"
#include "host/web/server/worker_pool.h"

namespace orvo::web {

struct ServerCore;

// Reads a request, has it answered, sends the answer, and begins anew. It lives as long as an
// operation of its connection runs, or a handler of its request. The event thread's.
class HttpSession : public std::enable_shared_from_this<HttpSession> {
public:
    HttpSession(ServerCore& core, std::unique_ptr<Transport> transport, ConnectionClient client);
    ~HttpSession();
    HttpSession(const HttpSession&) = delete;
    HttpSession& operator=(const HttpSession&) = delete;

    void begin();
    // Whether a request has come, its head at least, whose answer is not sent yet.
    bool is_asked() const;
    // At once. What still comes of an answer is thrown away.
    void close();

    // An answer that is sent in pieces.
    void begin_answer(const HttpResponse& head);
    void send_piece(std::string piece);
    // The handler has ended.
    void end_answer(HttpResponse response);

    // Bytes of its answer that wait for the browser.
    std::size_t unsent() const { return unsent_; }

    int descriptor() { return transport_->descriptor(); }

private:
    using Clock = std::chrono::steady_clock;
    enum class State {
        greeting,   // of a proxy, and TLS
        idle,       // between two requests
        reading,    // a request
        answering,  // a handler runs; a part of its answer may already go out
        writing,    // what is left of the answer
        ending,     // nothing more is sent; what still comes is read
        closed,
    };
    // A part of the answer: bytes, or a stretch of a file.
    struct Piece {
        std::string bytes;
        std::optional<FilePart> file = {};
    };

    void greet();
    void next_request();
    void read();
    void has_read(std::size_t count);
    void take_in(std::string_view bytes);
    void dispatch();
    bool try_give_to(WorkerPool& pool, WorkerPool::Kind kind);
    void refuse(const HttpRequest& request, const Refusal& refusal);
    void answer(HttpResponse response);
    void send_head(const HttpResponse& response, Framing framing);
    void send(Piece piece);
    void count_unsent(std::size_t more, std::size_t less);
    void write();
    void load_file();
    void has_written(std::size_t count);
    void has_answered();
    void finish();
    void drain(std::size_t count);

    // Until when the state may last.
    void set_deadline(Clock::time_point deadline);
    void start_timer();
    void deadline_passed();
    Clock::time_point extended(Clock::time_point begin, std::chrono::milliseconds time,
                               std::uint64_t bytes) const;

    ServerCore& core_;
    const std::unique_ptr<Transport> transport_;
    ConnectionClient client_;
    RequestParser parser_;
    State state_ = State::greeting;
    std::vector<char> in_;
    bool is_reading_ = false;
    Clock::time_point begun_{};  // when the state's first byte was read or written
    bool has_told_to_continue_ = false;

    // Of the request that is answered. The handler's thread has it while the handler runs.
    std::shared_ptr<HttpRequest> request_;
    bool is_head_ = false;  // asked by HEAD: no body
    bool is_old_ = false;   // HTTP/1.0
    bool is_last_ = false;
    bool has_begun_answer_ = false;
    bool is_chunked_ = false;
    std::deque<Piece> out_;
    std::size_t unsent_ = 0;  // bytes in out_
    std::size_t sent_of_first_ = 0;
    bool is_writing_ = false;
    std::uint64_t sent_ = 0;
    std::size_t drained_ = 0;

    boost::asio::steady_timer timer_;
    Clock::time_point deadline_ = Clock::time_point::max();
    Clock::time_point timer_due_ = Clock::time_point::max();  // max: it does not run
};

}  // namespace orvo::web
