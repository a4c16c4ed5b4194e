#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "platform/automation/secret.h"
#include "suite/directory/ldap/pool/connection_pool.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::directory::ldap {

// Who works on which server: an object's way to its connections. They come from the pool of the
// process, one operation at a time. Used by one thread.
class ServerLogin {
public:
    // `limits`: instead of those that the pool has for all. Both credentials empty: as nobody.
    // Raises 0x8007052E for a name with an empty password, which the server is not asked about (it
    // would take that for nobody and report success), also for a name with a NUL and for half of a
    // surrogate pair in either, and result code 89 for a server that cannot be read.
    ServerLogin(TextView server, TextView user, TextView password,
                const std::optional<Limits>& limits);

    // Runs an operation, from Session& to a kind of Result, and once more on a new connection where
    // the server has closed the one it had. The first one that comes about has authenticated the
    // user; see ConnectionPool::lease_presented.
    template <class Operation>
    auto run(Operation operation) {
        Lease lease = take();
        auto result = operation(lease.session());
        if (result.code == result_code::server_down) {
            lease.reopen();
            result = operation(lease.session());
        }
        if (!result.connection_failed()) std::move(lease).give_back();
        return result;
    }

    // Runs an operation that gives the user whose entry this is this password, or with an empty
    // one: none, or removes the entry or makes it. Where it may have been done, at any try, nobody
    // goes on with what the server accepted before it; see ConnectionPool::password_changed. Where
    // nobody knows whether it was, the user's objects keep the former password.
    template <class Operation>
    Result run_login_change(const EntryKey& entry, const Secret& password, Operation operation) {
        Identity& own = *credentials_.identity;
        std::unique_lock<std::recursive_mutex> turn;
        if (own.user_key() == entry) turn = std::unique_lock(own.password_turn());
        bool may_be_done = false;
        const auto noted = [&](Session& session) {
            Result result = operation(session);
            may_be_done |= result.ok() || result.connection_failed();
            return result;
        };
        const Secret unknown;
        const auto end_former = [&](const Secret& now) {
            if (may_be_done)
                ConnectionPool::of_process().password_changed(entry, now, credentials_);
        };
        try {
            const Result result = run(noted);
            end_former(result.ok() ? password : unknown);
            return result;
        } catch (...) {
            end_former(unknown);
            throw;
        }
    }

    // Authenticates the user, and nothing else.
    void authenticate() {
        run([](Session&) { return Result(); });
    }

    const std::string& server_key() const { return credentials_.identity->server_key(); }
    const std::string& user() const { return credentials_.identity->user(); }
    const EntryKey& user_key() const { return credentials_.identity->user_key(); }

private:
    Lease take();

    std::optional<Limits> limits_;
    Credentials credentials_;
    std::optional<Secret> presented_;  // until the server has accepted it
};

}  // namespace orvo::directory::ldap
