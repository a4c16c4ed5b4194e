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
#include "host/web/sessions/store_away.h"

namespace orvo::web {

struct SessionData {
    NamedValues values = {};
    std::chrono::minutes timeout{20};  // without a request
    // What a form of this session carries, so that other sites cannot send it.
    std::string form_token = {};
    // Text that tells sessions apart without opening them, for logs and pages.
    Text public_id = {};
};

struct SessionLimits {
    std::chrono::minutes timeout{20};    // what a new session has
    std::chrono::minutes absolute{720};  // after this it ends, however busy it is
    // Beyond this many those go that were used longest ago, by their rank (rank_of).
    std::size_t most = 50'000;
    // Bytes of values altogether, beyond which those go likewise; of a shared store with what it
    // needs for each session beside them, all machines together.
    std::size_t most_bytes = 256 * 1024 * 1024;
    // Requests that wait for one session while another one has it; more are refused.
    std::size_t most_waiting = 5;
};

// One session, for the length of one request: nobody else has it meanwhile. Every way to end it
// stores what was changed and lets others have it.
class SessionLease {
public:
    // As close(), but nobody hears of a failure.
    virtual ~SessionLease() = default;
    // What the browser's cookie says: 256 random bits.
    virtual const std::string& id() const = 0;
    virtual SessionData& data() = 0;
    // Gives the session a new identifier; the old one opens nothing once that is stored.
    virtual void renew_id() = 0;
    // The session ends with the lease.
    virtual void abandon() = 0;
    // Stores what was changed so far, for what is told to the browser before the request has ended.
    // Raises StoreAway, and Refusal (503) where others have had the session meanwhile; then nothing
    // has been stored.
    virtual void save() = 0;
    // Ends the lease; nothing of it is used from then on. Raises as save().
    virtual void close() = 0;
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
    lifetime,   // however busy it was; of a shared store this counts as idle
    room,       // for newer ones
    closing,    // of the program
};

// Of this process.
struct SessionCounts {
    // Sessions, and bytes of the values of those that no request has. Nothing where the process
    // alone cannot tell.
    std::optional<std::uint64_t> live = {};
    std::optional<std::uint64_t> bytes = {};
    // Since the store was made.
    std::uint64_t created = 0;
    std::array<std::uint64_t, 5> ended = {};  // by SessionEnd; of a shared store, by this process
    std::uint64_t waited = 0;   // requests that another one of their session kept waiting
    std::uint64_t refused = 0;  // of these
    std::uint64_t lost = 0;     // requests whose changes were not stored: others had the session
};

// Of all machines that share a store.
struct SharedSessionCounts {
    std::uint64_t live = 0;   // with those that have ended and that no machine has noticed yet
    std::uint64_t bytes = 0;  // as SessionLimits::most_bytes bounds them
};

// Where there are too many, those of a lower rank go first: 0 has no values, 1 no login, 2 has one.
inline constexpr std::size_t session_ranks = 3;
std::size_t rank_of(const SessionData& session);

// How many requests of one session may be there at once where the site does not say it. Each that
// waits holds one of the workers that may wait for the directory: half of them, or as many as a
// browser has connections to a site (six), but two are left to others where there are more than
// that.
int usual_requests_of_one_session(int directory_workers);

// Any thread. All but the counts raise StoreAway where the store is shared and cannot be reached.
class SessionStore {
public:
    virtual ~SessionStore() = default;
    // Who sees the sessions.
    virtual Reach reach() const = 0;
    // Of new sessions.
    virtual std::chrono::minutes timeout() const = 0;
    // Waits while another request has the session, at most `patience`. Before it waits it asks
    // `try_wait`, which may take its time and must not raise. Raises Refusal (503) where try_wait
    // says no, where too many requests wait for this session already, and where the patience is
    // over. Null for an identifier that the store did not give out, or whose session has ended;
    // such an identifier is never adopted.
    virtual std::unique_ptr<SessionLease> open(const std::string& id,
                                               std::chrono::milliseconds patience,
                                               const std::function<bool()>& try_wait = {}) = 0;
    // A shared store has it when it is saved or closed.
    virtual std::unique_ptr<SessionLease> create() = 0;
    // Who is logged in, as the last request left it; another one may have the session meanwhile,
    // and is not waited for. Empty texts for an identifier as above. Counts as a request.
    virtual SessionLogin login_of(const std::string& id) = 0;
    // For what is of no use without sessions: raises at once what would be raised later.
    virtual void require() = 0;

    // For sessions from now on; the bounds count when a session is stored next, and a new timeout
    // for new sessions.
    virtual void set_limits(const SessionLimits& limits) = 0;
    // Takes what a session held that has ended, however it did; of a shared store each goes to one
    // of the processes that ask for it. It is called on any thread and must neither wait nor call
    // the store.
    virtual void on_end(std::function<void(SessionData)> take) = 0;
    // Ends sessions that have been without a request for too long.
    virtual void end_idle() = 0;
    // The program ends: so do those that no request has and nobody else could open.
    virtual void end_all() = 0;

    // Waits for no other machine.
    virtual SessionCounts counts() const = 0;
    // Asks the shared store. Nothing while it cannot be reached, and where this one is no shared
    // one.
    virtual std::optional<SharedSessionCounts> shared_counts() { return {}; }
};

}  // namespace orvo::web
