#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/values/secret.h"
#include "suite/directory/ldap/pool/attempts.h"
#include "suite/directory/ldap/pool/server_facts.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::directory::ldap {

// Who works on which servers: an object's way to its connections, which it acquires from the pool
// one operation at a time (Attempts). The first operation authenticates the user. Used by one
// thread.
class ServerLogin {
    template <class Perform>
    auto run_with_server(const Operation& operation, Perform perform) {
        find_presented();
        Attempts attempts(*pool_, set_, operation);
        if (presented_) attempts.present();
        return ldap::run(attempts, [&](Session& session) {
            presented_.reset();
            return perform(session, attempts.server());
        });
    }
    template <class Perform>
    auto run(const Operation& operation, Perform perform) {
        return run_with_server(
            operation, [&](Session& session, const ServerRef&) { return perform(session); });
    }

public:
    // `limits`: instead of those that the pool has for all. Both credentials empty: as nobody.
    // Raises 0x8007052E for what the server is not asked about (login_name), and result code 89 for
    // a server that cannot be read.
    ServerLogin(ConnectionPool& pool, TextView server, TextView user, const Secret& password,
                const std::optional<Limits>& limits);

    // Runs an operation, from Session& to a kind of Result, that reads this entry, or searches.
    template <class Perform>
    auto read(std::string_view entry, Perform perform) {
        return run({Effect::none, entry, limits_}, perform);
    }
    template <class Perform>
    auto search(Perform perform) {
        return run({Effect::none, {}, limits_}, perform);
    }
    // One that writes to this entry.
    template <class Perform>
    auto write(std::string_view entry, Perform perform) {
        return run({Effect::change, entry, limits_}, perform);
    }

    // A write that gives the user whose entry this is this password, or with an empty one: none, or
    // removes the entry or makes it. Where it may have been done, nobody goes on with what the
    // server accepted before it (ConnectionPool::password_changed). Where nobody knows whether it
    // was, the user's objects keep the former password.
    template <class Perform>
    Result write_password(const std::string& name, const Secret& password, Perform perform) {
        const EntryKey entry(name);
        find_presented();
        const ConnectionSetRef own = set_;  // outlives its lock: set_ may be another meanwhile
        std::unique_lock<std::recursive_mutex> turn;
        if (own->user_key() == entry) turn = std::unique_lock(own->own_change());
        bool may_be_done = false;
        const auto noted = [&](Session& session) {
            Result result = perform(session);
            may_be_done |= result.may_be_done();
            return result;
        };
        const Secret unknown;
        const auto end_former = [&](const Secret& now) {
            if (may_be_done) pool_->password_changed(entry, now, set_);
        };
        try {
            const Result result = write(name, noted);
            end_former(result.ok() ? password : unknown);
            return result;
        } catch (...) {
            end_former(unknown);
            throw;
        }
    }

    // Authenticates the user, and nothing else.
    void authenticate() {
        find_presented();
        Attempts attempts(*pool_, set_, {Effect::none, {}, limits_});
        if (presented_) attempts.present();
        attempts.session();
        presented_.reset();
        attempts.finish();
    }
    // Whether there is another server to turn to.
    bool has_several_servers() const { return set_->group().servers().size() > 1; }

    // What the server knows, from the process's store or read now; `refreshed_facts` reads them
    // anew, at most once a minute: for an attribute that the stored schema does not know.
    std::shared_ptr<const ServerFacts> facts();
    std::shared_ptr<const ServerFacts> refreshed_facts();

    // What the user works with now.
    Secret password() const { return presented_ ? presented_->clone() : set_->password(); }

    const std::string& server_key() const { return set_->group().key(); }
    const std::string& user() const { return set_->user(); }
    const EntryKey& user_key() const { return set_->user_key(); }

private:
    void find_presented();
    std::shared_ptr<const ServerFacts> read_facts();

    ConnectionPool* pool_;
    ServerAddress address_;
    std::optional<Limits> limits_;
    ConnectionSetRef set_;
    std::optional<Secret> presented_;  // until the server has accepted it
};

}  // namespace orvo::directory::ldap
