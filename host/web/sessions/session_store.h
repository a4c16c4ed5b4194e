#pragma once

// Web sessions: what pages keep for one browser between its requests.

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/web/sessions/named_values.h"

namespace orvo::web {

struct SessionData {
    NamedValues values = {};
    std::chrono::minutes timeout{20};  // without a request
    // What a form of this session carries, so that other sites cannot send it.
    std::string form_token = {};
    // Text that tells sessions apart without opening them, for logs and pages.
    Text public_id = {};
};

// One session, for the length of one request: nobody else has it meanwhile. What was changed is
// stored when the lease goes.
class SessionLease {
public:
    virtual ~SessionLease() = default;
    // What the browser's cookie says: 256 random bits.
    virtual const std::string& id() const = 0;
    virtual SessionData& data() = 0;
    // Gives the session a new identifier; the old one opens nothing from now on.
    virtual void renew_id() = 0;
    // The session ends with the lease.
    virtual void abandon() = 0;
};

// What a login leaves in its session.
struct SessionLogin {
    Text guid;     // QUENDRAID
    Text account;  // REMOTE_ACCOUNT
};
// Empty texts where nobody has logged in.
SessionLogin login_in(const NamedValues& values);

// How sessions come to their end.
enum class SessionEnd {
    abandoned,  // by a page
    idle,       // without a request for too long
    lifetime,   // however busy it was
    room,       // for newer ones
    closing,    // of the program
};

// Of this process.
struct SessionCounts {
    // Sessions, and bytes of their values. Nothing where the process alone cannot tell.
    std::optional<std::uint64_t> live = {};
    std::optional<std::uint64_t> bytes = {};
    // Since the store was made.
    std::uint64_t created = 0;
    std::array<std::uint64_t, 5> ended = {};  // by SessionEnd
};

// Any thread. A store that several machines share implements the same.
class SessionStore {
public:
    virtual ~SessionStore() = default;
    // Waits while another request has the session, at most `patience`. Before it waits it asks
    // `try_wait`, which may take its time and must not raise. Raises Refusal (503) where try_wait
    // says no, where too many requests wait for this session already, and where the patience is
    // over. Null for an identifier that the store did not give out, or whose session has ended;
    // such an identifier is never adopted.
    virtual std::unique_ptr<SessionLease> open(const std::string& id,
                                               std::chrono::milliseconds patience,
                                               const std::function<bool()>& try_wait = {}) = 0;
    virtual std::unique_ptr<SessionLease> create() = 0;
    // Who is logged in, as the last request left it; another one may have the session meanwhile,
    // and is not waited for. Empty texts for an identifier as above. Counts as a request.
    virtual SessionLogin login_of(const std::string& id) = 0;

    // Takes what a session held that has ended, however it did. It is called on any thread and
    // must neither wait nor call the store.
    virtual void on_end(std::function<void(SessionData)> take) = 0;
    // Ends sessions that have been without a request for too long, or all that no request has.
    virtual void end_idle() = 0;
    virtual void end_all() = 0;

    // Waits for no other machine.
    virtual SessionCounts counts() const = 0;
};

}  // namespace orvo::web
