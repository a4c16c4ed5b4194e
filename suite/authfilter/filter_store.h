#pragma once

// Where the authorization filter keeps its records and logins. All connectors of a process share
// one store; a store that several machines share implements the same operations.

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/values/secret.h"
#include "platform/values/text.h"

namespace orvo::authfilter {

// How many logins, and records, one user has, where the site does not say it.
inline constexpr std::int32_t usual_logins_of_one_user = 100;

// The credentials under one GUID.
struct Record {
    Text user_name = {};
    Text account_path = {};
    Secret password = {};
    Text nt_user = {};
    Secret nt_password = {};

    Record clone() const {
        return {user_name, account_path, password.clone(), nt_user, nt_password.clone()};
    }
};

struct Login {
    Text guid;
    Text user;
    std::vector<std::int32_t> applications;
    // Ends the user's other logins. Users are the same who have the same account path in their
    // records, or else the same name, without regard to case.
    bool is_only_one = false;
    // How long it lives after the last question for it; above zero.
    std::chrono::minutes timeout;
};

// One of a user's live logins.
struct LiveLoginFacts {
    std::uint64_t number;  // tells it from all others of the process; a renewed one has another
    std::chrono::seconds age;
    std::chrono::seconds idle;  // since the last question for it
    bool is_asker;              // it is the one that asks
};

// Each operation is atomic and may be called from any thread. GUIDs are compared exactly. A store
// that is full or cannot be reached raises.
class Store {
public:
    virtual ~Store() = default;

    virtual std::optional<Record> find(const Text& guid) = 0;
    // Holds an empty record from now on; false where there is a record already. Of two that create
    // the same one, one gets it.
    virtual bool try_create(const Text& guid) = 0;
    // In place of what there was, if anything. A record of another user ends the login that the
    // GUID had.
    virtual void save(const Text& guid, const Record& record) = 0;

    // In place of the login that the GUID had, whosever that was. A login that is ended for being
    // one of several takes its GUID's record with it.
    virtual void begin(const Login& login) = 0;
    // Whether the GUID has a live login with this application; one that is alive lives on from now,
    // whatever the answer.
    virtual bool ask(const Text& guid, std::int32_t application) = 0;

    // Whom the GUID has logged in, by the account path of its record, or else by name; empty where
    // it has no live login. Does not count as a question for it.
    virtual Text user_of(const Text& guid) = 0;

    // The GUID's login and record.
    virtual void forget(const Text& guid) = 0;

    // The live logins of the user whom the GUID has logged in, the last one first; none where it
    // has no live login. Does not count as a question for any.
    virtual std::vector<LiveLoginFacts> logins_of(const Text& guid) = 0;
    // Ends one of these, and forgets its GUID's record; false where it is none of them.
    virtual bool try_end(const Text& guid, std::uint64_t number) = 0;
    // Ends the other logins of the user whom the GUID has logged in, and forgets their records; how
    // many those were, 0 where the GUID has no live login.
    virtual std::size_t end_others(const Text& guid) = 0;
    // Ends all logins of an account, but for the one under `except` (empty: none), and forgets all
    // of its records but that one's; how many logins those were. `account`: an account path; for
    // logins whose records have none, a name.
    virtual std::size_t end_all_of(const Text& account, const Text& except) = 0;

    // More logins of one user than this there are not, nor more records: a new one ends the one
    // that was used longest ago. Counts from the next new one.
    virtual void set_most_of_user(std::size_t most) = 0;
};

}  // namespace orvo::authfilter
