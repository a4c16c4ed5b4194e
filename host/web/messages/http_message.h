#pragma once

// A request and its answer, apart from the library that reads and writes them. Bytes are as on the
// wire.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/web/messages/request_body.h"

namespace orvo::web {

using Headers = std::vector<std::pair<std::string, std::string>>;

class AnswerStream;

// Who answers a request.
enum class Lane {
    page,       // a worker
    undecided,  // a worker; whether it waits for the directory turns out (try_wait)
    directory,  // a worker, as it waits for the directory: such requests together hold a share of
                // the workers at most
    at_once,    // the thread that reads and writes for all connections: must not wait for anything
    aside,      // a thread of its own, for what may wait but must not need a worker
};

struct HttpRequest {
    std::string method = "GET";
    std::string target = "/";  // "/members/list.asp?page=2"
    std::string version = "HTTP/1.1";
    Headers headers = {};
    RequestBody body = {};
    std::string remote_address = {};
    int remote_port = 0;
    std::string local_address = {};
    int local_port = 0;
    bool is_secure = false;
    std::string id = {};            // names it in logs; empty: nothing does
    std::optional<Lane> lane = {};  // that it came by; nothing: it was refused before
    // Where an answer can go out piece by piece; null: it goes out as a whole. The server's, as
    // long as the handler runs.
    AnswerStream* stream = nullptr;
    // Before a handler waits for something that others wait for too, as the directory: counts the
    // request among those of Lane::directory; false where there are as many as may be, and it must
    // not wait. Null: it may. The server's, as long as the handler runs.
    std::function<bool()> try_wait = {};

    // The first of that name, without regard to case; empty where there is none.
    std::string_view header(std::string_view name) const;
};

// A stretch of a file.
struct FilePart {
    std::shared_ptr<const OpenFile> file;
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

struct HttpResponse {
    int status = 200;
    std::string content_type = "text/html; charset=utf-8";
    Headers headers = {};
    std::string body = {};
    std::optional<FilePart> file = {};  // instead of body

    std::uint64_t length() const { return file ? file->length : body.size(); }
};

// An answer that goes out before its handler has ended. Once it has begun, the body of what the
// handler answers is the rest, and status and headers of that are ignored. Used by the handler's
// thread alone.
class AnswerStream {
public:
    virtual ~AnswerStream() = default;
    // Sends the head; once, before any piece. Its body is ignored.
    virtual void begin(const HttpResponse& head) = 0;
    // Never waits for the browser: what it does not take yet is kept for it, however much that is.
    virtual void send(std::string piece) = 0;
    virtual bool has_begun() const = 0;
    // Bytes of the pieces that were sent.
    virtual std::uint64_t length() const = 0;
    // False once the browser has gone.
    virtual bool is_connected() const = 0;
};

// A request that is not carried out: the answer's status, and a sentence for whoever sent it.
struct Refusal : std::runtime_error {
    Refusal(int status, const std::string& reason) : std::runtime_error(reason), status(status) {}
    int status;
};

// "Not Found"
std::string_view reason_of_status(int status);

bool equal_ascii_ignoring_case(std::string_view a, std::string_view b);

}  // namespace orvo::web
