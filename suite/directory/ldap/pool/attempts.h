#pragma once

// The one rule for what is done when a server fails.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "suite/directory/ldap/pool/lease.h"

namespace orvo::directory::ldap {

// What an operation does to the directory: a server may count a bind against the user.
enum class Effect { none, bind, change };

struct Operation {
    Effect effect = Effect::none;
    // The entry that is read, written or bound as; empty: no one in particular, as in a search.
    std::string_view entry = {};
    std::optional<Limits> limits = {};  // instead of those of the settings
};

// One operation's way through the servers of its group.
//
//   Attempts attempts(pool, set, {Effect::none, name});
//   do { result = read(attempts.session()); } while (attempts.again(result));
//
// What has no effect is tried again: on a new connection where the one it had was lost, and on
// every further server that is up. What has one is tried again only where nothing of it was sent,
// and where the server has refused it in favour of another one of the group (a referral). A server
// that fails, or takes more than half of Limits::answer while there are others, is reported
// (Servers::note_failure), so that the next operation goes elsewhere at once. Used by one thread,
// for one operation.
class Attempts {
public:
    // Waits for a place; raises result code 51 where none becomes free in time.
    Attempts(ConnectionPool& pool, ConnectionSetRef set, const Operation& operation);

    // For somebody who presents the set's password: the server is asked about it unless it has
    // accepted it within RecheckAfter.
    void present() { is_presented_ = true; }

    // The session to try it on, which is authenticated as the set's user (one for password checks:
    // as anybody or nobody). Raises the failures of the servers where none can be reached, what a
    // bind of the user's is refused with, that of a bind whose answer got lost, and result code 51
    // where a changed password needs another place and none becomes free. May wait twice the limit
    // for an answer to somebody who asks the same (ConnectionSet::Question).
    Session& session();
    // The server that the session is connected to.
    const ServerRef& server() { return lease_.connection().server; }

    // For a password check, whose session has just found this password right: who logs in with it
    // next goes on with the connection.
    void note_right(const Secret& password);

    // The session was all that was wanted: the operation is over, and the connection idle.
    void finish() { lease_.release(); }
    // Whether to try it again after this result. Otherwise the operation is over, and the
    // connection idle or closed.
    bool again(const Result& result);

private:
    bool decide(const Result& result);
    void choose_server();
    void take_connection();
    void connect();
    void authenticate();
    Result bind();
    Result bind_once(const Secret& password);
    void note_failure(const ServerRef& server, const Result& result);
    void note_answer(const ServerRef& server, Clock::time_point::duration took);

    ConnectionPool& pool_;
    const ConnectionSetRef set_;
    const Operation operation_;
    const std::optional<EntryKey> entry_;
    Lease lease_;
    Limits limits_;
    bool is_presented_ = false;
    bool is_new_ = false;  // whether the connection was opened or taken over for this operation
    // When the operation or a bind was sent, and the write mark of the entry bound as.
    Clock::time_point asked_at_;
    std::uint64_t mark_ = 0;
    ServerRef server_;                                 // the one chosen
    std::vector<ServerRef> tried_;                     // not to be tried again
    std::optional<ConnectionSet::Question> question_;  // while the user is authenticated
    std::string reasons_;                              // why servers could not be connected to
};

// Runs an operation, from Session& to a kind of Result, as often as the rule allows. The result of
// the last attempt.
template <class Perform>
auto run(Attempts& attempts, Perform perform) {
    for (;;) {
        auto result = perform(attempts.session());
        if (!attempts.again(result)) return result;
    }
}

// Raises the failure of a bind that was not accepted. Whoever cannot be bound has the wrong
// credentials (0x8007052E), whatever a server calls it.
void check_bind(const Result& bind);

}  // namespace orvo::directory::ldap
