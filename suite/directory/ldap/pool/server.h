#pragma once

// One directory server, for all of the process.

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

#include "suite/directory/ldap/pool/server_facts.h"
#include "suite/directory/ldap/pool/server_state.h"
#include "suite/directory/ldap/wire/operation_figures.h"
#include "suite/directory/ldap/wire/server_address.h"

namespace orvo::directory::ldap {

// Whether a server is up, and what is known of it. Those who use it tell how it answers; Servers
// probes it while it is not up. Thread-safe.
//
//   up ── an operation failed ──> suspected ── a probe failed ──> down
//   suspected ── a probe or an operation was answered ──> up
//   down ── a probe or an operation was answered ──> up, but not steady before `failback_after`
//
// One that is suspected again within `failback_after` of coming up is not steady at once either.
class Server {
public:
    Server(ServerHost host, const Clock& clock);
    Server(const Server&) = delete;

    const ServerHost& host() const { return host_; }
    const std::string& url() const { return url_; }
    const Clock& clock() const { return clock_; }

    // An operation was answered: a server that was not up is up.
    void note_answer(std::chrono::microseconds took);
    // An operation timed out, lost its connection or was refused because the server is busy or
    // closing. Connections of before are not used again (generation). True where the server was up
    // until now: it is to be probed at once.
    bool note_failure(const std::string& reason);
    // What came of a probe. `jitter`: 0 to 1, spreads the next one after a failure.
    void note_good_probe(std::chrono::seconds failback_after);
    void note_failed_probe(const std::string& reason, double jitter);

    // Whether there is another server to turn to, so that this one is probed when it fails.
    void expect_probes() { is_probed_.store(true); }
    bool is_probed() const { return is_probed_.load(); }
    // When it is to be probed next: while it is not up, and until it has been up again for
    // `failback_after`. Nothing: it need not be.
    std::optional<Clock::time_point> next_probe(std::chrono::seconds failback_after) const;

    bool is_up() const { return condition_.load() == ServerState::Condition::up; }
    // When an operation or a probe last failed.
    Clock::time_point last_failure() const;
    // Up, and where it has been down, up again for so long.
    bool is_steady(std::chrono::seconds failback_after) const;
    // Changes with each failure; a connection is good for the generation it was opened in.
    std::uint64_t generation() const { return generation_.load(); }
    ServerState state() const;
    // What was asked of it.
    const std::shared_ptr<OperationFigures>& figures() const { return figures_; }

    // What the server is and knows; null where nobody has read it yet.
    StoredFacts facts() const;
    void keep_facts(std::shared_ptr<const ServerFacts> facts);

private:
    void become_up();

    const ServerHost host_;
    const std::string url_;
    const Clock& clock_;
    const std::shared_ptr<OperationFigures> figures_ = std::make_shared<OperationFigures>();
    std::atomic<ServerState::Condition> condition_ = ServerState::Condition::up;
    std::atomic<bool> is_probed_ = false;
    mutable std::atomic<bool> was_down_ = false;  // until it is steady again
    std::atomic<std::uint64_t> generation_ = 0;
    std::atomic<std::uint64_t> operations_ = 0;
    std::atomic<std::uint64_t> failures_ = 0;
    std::atomic<std::int64_t> latency_ = 0;  // in microseconds

    mutable std::mutex mutex_;  // for the rest
    std::string reason_;
    Clock::time_point since_;
    Clock::time_point next_probe_;
    Clock::time_point last_failure_;
    int failures_in_all_ = 0;                   // how often it was up before one
    Clock::time_point::duration was_up_for_{};  // before the last failure
    int failed_probes_ = 0;                     // one after the other
    StoredFacts facts_;
};

}  // namespace orvo::directory::ldap
