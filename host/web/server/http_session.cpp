#include "host/web/server/http_session.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <utility>

#include "host/web/messages/error_page.h"
#include "host/web/server/server_core.h"
#include "host/web/server/streamed_answer.h"

namespace orvo::web {
namespace {

using std::chrono::milliseconds;

// How long and how much is read after the last answer, for closing on unread bytes would take the
// answer back.
constexpr milliseconds end_patience{500};
constexpr std::size_t most_drained = 4 * 1024 * 1024;
constexpr std::size_t small_buffer = 4 * 1024;
constexpr std::size_t large_buffer = 64 * 1024;

constexpr const char* busy = "The server is busy. Please try again in a moment.";

WorkerPool::Kind kind_of(Lane lane) {
    if (lane == Lane::directory) return WorkerPool::Kind::directory;
    return lane == Lane::undecided ? WorkerPool::Kind::undecided : WorkerPool::Kind::other;
}

}  // namespace

HttpSession::HttpSession(ServerCore& core, std::unique_ptr<Transport> transport,
                         ConnectionClient client)
    : core_(core),
      transport_(std::move(transport)),
      client_(std::move(client)),
      parser_(core.limits),
      timer_(core.loop) {
    core_.sessions.insert(this);
}

HttpSession::~HttpSession() { core_.leave(this); }

void HttpSession::begin() {
    set_deadline(Clock::now() + core_.options.greeting_time);
    if (!client_.sends_header()) return greet();
    transport_->read_proxy_greeting([self = shared_from_this()](const ProxyGreeting& greeting) {
        if (self->state_ != State::greeting) return;
        if (self->client_.try_take(greeting))
            self->greet();
        else
            self->close();
    });
}

void HttpSession::greet() {
    transport_->greet([self = shared_from_this()](std::size_t is_done) {
        if (self->state_ != State::greeting) return;
        if (is_done)
            self->next_request();
        else
            self->close();
    });
}

bool HttpSession::is_asked() const {
    return (state_ == State::reading && parser_.has_head()) || state_ == State::answering ||
           state_ == State::writing || state_ == State::ending;
}

void HttpSession::close() {
    if (state_ == State::closed) return;
    state_ = State::closed;
    timer_.cancel();
    transport_->cut();
    count_unsent(0, unsent_);
    // What is written at this moment is still read.
    if (!is_writing_) out_.clear();
}

// Reading.

void HttpSession::next_request() {
    state_ = State::idle;
    request_ = nullptr;
    has_told_to_continue_ = has_begun_answer_ = is_chunked_ = false;
    client_.end_request();
    sent_ = 0;
    begun_ = Clock::now();
    set_deadline(begun_ + core_.options.idle_time);
    take_in({});
    if (core_.is_stopping && !is_asked()) close();
}

void HttpSession::read() {
    const std::size_t size = parser_.has_head() ? large_buffer : small_buffer;
    if (in_.size() != size) in_ = std::vector<char>(size);
    is_reading_ = true;
    transport_->read(in_, [self = shared_from_this()](std::size_t count) {
        self->is_reading_ = false;
        self->has_read(count);
    });
}

void HttpSession::has_read(std::size_t count) {
    if (state_ == State::ending) return drain(count);
    if (state_ != State::idle && state_ != State::reading) return;
    if (count == 0) return close();
    take_in({in_.data(), count});
}

void HttpSession::take_in(std::string_view bytes) {
    try {
        const bool is_complete = parser_.feed(bytes);
        if (state_ == State::idle && parser_.has_begun()) {
            state_ = State::reading;
            begun_ = Clock::now();
        }
        if (parser_.expects_continue() && !std::exchange(has_told_to_continue_, true)) {
            send({"HTTP/1.1 100 Continue\r\n\r\n"});
            write();
        }
        if (is_complete) return dispatch();
    } catch (const Refusal& refusal) {
        return refuse(parser_.request(), refusal);
    }
    if (state_ == State::reading)
        set_deadline(extended(begun_, core_.options.request_time, parser_.body_size()));
    read();
}

// Answering.

void HttpSession::dispatch() {
    state_ = State::answering;
    is_last_ = !parser_.keeps_alive();
    request_ = std::make_shared<HttpRequest>(parser_.take());
    is_head_ = request_->method == "HEAD";
    is_old_ = request_->version == "HTTP/1.0";
    set_deadline(Clock::time_point::max());
    try {
        client_.begin_request(*request_);
    } catch (const Refusal& refusal) {
        return refuse(*request_, refusal);
    }

    const Lane lane = core_.hooks.lane ? core_.hooks.lane(*request_) : Lane::page;
    request_->lane = lane;
    if (lane == Lane::at_once) return answer(core_.handler(*request_));
    const bool is_taken = lane == Lane::aside
                              ? try_give_to(core_.pools.aside, WorkerPool::Kind::other)
                              : try_give_to(core_.pools.workers, kind_of(lane));
    if (!is_taken) refuse(*request_, Refusal(503, busy));
}

bool HttpSession::try_give_to(WorkerPool& pool, WorkerPool::Kind kind) {
    auto job = [self = shared_from_this(), request = request_, &core = core_, &pool]() mutable {
        StreamedAnswer stream(core.loop, self);
        request->stream = &stream;
        if (&pool == &core.pools.workers) request->try_wait = [&pool] { return pool.try_wait(); };
        HttpResponse response = core.handler(*request);
        request->stream = nullptr;
        request = nullptr;
        stream.release();
        // The session goes where it lives.
        boost::asio::post(core.loop,
                          [self = std::move(self), response = std::move(response)]() mutable {
                              self->end_answer(std::move(response));
                          });
    };
    return pool.try_add(std::move(job), kind);
}

void HttpSession::refuse(const HttpRequest& request, const Refusal& refusal) {
    HttpResponse response = error_response({refusal.status, refusal.what()});
    if (refusal.status == 503) response.headers.emplace_back("Retry-After", "5");
    // Where a request was not read as a whole, what follows cannot be told from it.
    if (state_ != State::answering) is_last_ = true;
    if (core_.hooks.refused) {
        HttpRequest known = request;
        if (known.remote_address.empty()) client_.tell(known);
        known.lane = std::nullopt;
        core_.hooks.refused(known, response, Clock::now() - begun_);
    }
    answer(std::move(response));
}

void HttpSession::answer(HttpResponse response) {
    if (state_ == State::closed) return;
    state_ = State::writing;
    const bool is_bodiless = !has_body(response.status);
    send_head(response, is_bodiless ? Framing::none : Framing::length);
    if (is_bodiless || is_head_) {
        // Nothing follows the head.
    } else if (response.file) {
        if (response.file->length > 0) out_.push_back({{}, std::move(response.file)});
    } else if (!response.body.empty()) {
        send({std::move(response.body)});
    }
    write();
}

void HttpSession::send_head(const HttpResponse& response, Framing framing) {
    is_last_ = is_last_ || core_.is_leaving || framing == Framing::close;
    Headers more;
    if (is_last_)
        more.emplace_back("Connection", "close");
    else if (is_old_)
        more.emplace_back("Connection", "keep-alive");
    const bool is_secure = request_ ? request_->is_secure : client_.endpoints().is_secure;
    if (is_secure && core_.options.strict_transport.count() > 0)
        more.emplace_back("Strict-Transport-Security",
                          "max-age=" + std::to_string(core_.options.strict_transport.count()));
    begun_ = Clock::now();
    sent_ = 0;
    send({answer_head(response, framing, more)});
}

void HttpSession::begin_answer(const HttpResponse& head) {
    if (state_ != State::answering) return;
    has_begun_answer_ = true;
    is_chunked_ = !is_old_ && !is_head_ && has_body(head.status);
    const bool has_no_body = is_head_ || !has_body(head.status);
    send_head(head, is_chunked_ ? Framing::chunks : has_no_body ? Framing::none : Framing::close);
    write();
}

void HttpSession::send_piece(std::string piece) {
    if (state_ != State::answering || is_head_ || piece.empty()) return;
    // The time for the browser to take it begins where there was nothing to take.
    if (out_.empty()) begun_ = Clock::now(), sent_ = 0;
    if (is_chunked_) {
        send({chunk_head(piece.size())});
        piece += "\r\n";
    }
    send({std::move(piece)});
    write();
}

void HttpSession::end_answer(HttpResponse response) {
    if (state_ != State::answering) return;
    if (!has_begun_answer_) return answer(std::move(response));
    send_piece(std::move(response.body));
    if (is_chunked_) send({"0\r\n\r\n"});
    if (state_ == State::closed) return;
    state_ = State::writing;
    write();
}

// Writing.

void HttpSession::send(Piece piece) {
    if (state_ == State::closed) return;
    count_unsent(piece.bytes.size(), 0);
    // What is small goes out together.
    if (out_.size() > (is_writing_ ? 1u : 0u) && !out_.back().file &&
        out_.back().bytes.size() + piece.bytes.size() <= large_buffer)
        out_.back().bytes += piece.bytes;
    else
        out_.push_back(std::move(piece));
    core_.limit_unsent();
}

void HttpSession::count_unsent(std::size_t more, std::size_t less) {
    unsent_ = unsent_ + more - less;
    core_.unsent = core_.unsent + more - less;
}

void HttpSession::write() {
    if (is_writing_ || state_ == State::closed) return;
    if (out_.empty()) {
        if (state_ == State::writing) return has_answered();
        // The handler may take its time for the next piece.
        if (state_ == State::answering) set_deadline(Clock::time_point::max());
        return;
    }
    if (out_.front().file) load_file();
    if (state_ == State::closed) return;
    if (state_ == State::answering || state_ == State::writing)
        set_deadline(extended(begun_, core_.options.answer_time, sent_));
    is_writing_ = true;
    transport_->write(std::string_view(out_.front().bytes).substr(sent_of_first_),
                      [self = shared_from_this()](std::size_t count) {
                          self->is_writing_ = false;
                          self->has_written(count);
                      });
}

// Puts the next bytes of the file in front of the rest of it.
void HttpSession::load_file() {
    FilePart& part = *out_.front().file;
    std::string bytes(std::min<std::uint64_t>(part.length, large_buffer), '\0');
    bytes.resize(part.file->read(part.offset, bytes));
    // It was cut short meanwhile: the length that was promised does not come.
    if (bytes.empty()) return close();
    part.offset += bytes.size();
    part.length -= bytes.size();
    if (part.length == 0) out_.pop_front();
    count_unsent(bytes.size(), 0);
    out_.push_front({std::move(bytes)});
}

void HttpSession::has_written(std::size_t count) {
    if (state_ == State::closed) return out_.clear();
    if (count == 0) return close();
    sent_ += count;
    sent_of_first_ += count;
    if (sent_of_first_ == out_.front().bytes.size()) {
        count_unsent(0, std::exchange(sent_of_first_, 0));
        out_.pop_front();
    }
    write();
}

void HttpSession::has_answered() {
    if (is_last_) return finish();
    next_request();
}

// Ending.

void HttpSession::finish() {
    state_ = State::ending;
    set_deadline(Clock::now() + end_patience);
    // A read that still runs, as one has waited in vain, goes on for what follows.
    if (is_reading_) return transport_->shut_down_sending();
    transport_->finish([self = shared_from_this()](std::size_t) {
        if (self->state_ == State::ending) self->drain(1);
    });
}

void HttpSession::drain(std::size_t count) {
    drained_ += count;
    if (count == 0 || drained_ > most_drained) return close();
    in_.resize(large_buffer);
    transport_->drain(in_, [self = shared_from_this()](std::size_t more) {
        if (self->state_ == State::ending) self->drain(more);
    });
}

// Time.

HttpSession::Clock::time_point HttpSession::extended(Clock::time_point begin, milliseconds time,
                                                     std::uint64_t bytes) const {
    return begin + time + milliseconds(bytes * 1000 / core_.options.least_rate);
}

void HttpSession::set_deadline(Clock::time_point deadline) {
    deadline_ = deadline;
    // A deadline that moves away is looked at when the timer fires: mostly it has moved again.
    if (deadline_ < timer_due_) start_timer();
}

void HttpSession::start_timer() {
    timer_due_ = deadline_;
    timer_.expires_at(deadline_);
    timer_.async_wait([self = shared_from_this()](boost::system::error_code error) {
        if (error) return;
        self->timer_due_ = Clock::time_point::max();
        if (self->state_ == State::closed) return;
        if (Clock::now() >= self->deadline_)
            self->deadline_passed();
        else
            self->set_deadline(self->deadline_);
    });
}

void HttpSession::deadline_passed() {
    if (state_ == State::reading && parser_.has_head())
        return refuse(parser_.request(), Refusal(408, "The request did not come in time."));
    close();
}

}  // namespace orvo::web
