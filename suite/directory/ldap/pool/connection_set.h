#pragma once

// The connections of one user to one group of servers.

#include <condition_variable>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/values/failure.h"
#include "platform/values/secret.h"
#include "suite/directory/ldap/memory/write_marks.h"
#include "suite/directory/ldap/pool/connection.h"
#include "suite/directory/settings/shared_settings.h"

namespace orvo::directory::ldap {

// How long operations have waited for a place. Any thread.
struct PlaceWaits {
    DurationHistogram durations;
    Counter failures;  // of these: none became free in time
};

// Connections that are authenticated as one user with one password, or on which the passwords of
// those below one container are checked. Owns the idle ones, the places of all, those who wait for
// a place, and what is known of the credentials. Thread-safe; nothing here waits for a server but a
// Question, for somebody else's answer.
class ConnectionSet {
public:
    enum class Use { as_user, password_checks };

    // `user`: UTF-8; empty with an empty password: nobody's connections. For password checks both
    // are empty.
    ConnectionSet(Use use, std::shared_ptr<ServerGroup> group, std::string user, Secret password,
                  const SharedSettings& settings, const WriteMarks& writes);
    ConnectionSet(const ConnectionSet&) = delete;

    // How many connections it has, and who waits for one.
    struct Counts {
        std::size_t in_use;
        std::size_t idle;
        std::size_t waiting;
    };
    Counts counts() const;

    Use use() const { return use_; }
    ServerGroup& group() const { return *group_; }
    const std::string& user() const { return user_; }
    // The user's entry.
    const EntryKey& user_key() const { return user_key_; }

    // -- Places. A connection in use needs one; there are PoolSettings::maximum_size of them (0:
    // any number). Idle connections make way where there would be more connections than places.

    // Takes a place, after those who have waited longer; within PoolSettings::wait. The generation
    // that it belongs to. Raises result code 51 where none becomes free in time.
    // Waiting is counted in `waits`.
    std::uint64_t acquire_place(PlaceWaits& waits);
    // How many wait for a place.
    std::size_t waiting() const;
    // For who has taken a place: an idle connection to this server, the one released last.
    // Connections that are not usable any more, or are too many, are closed.
    std::optional<Connection> take_idle(const ServerRef& server, const PoolSettings& settings,
                                        Clock::time_point now);
    // For somebody else, who binds it anew: the idle connection to this server that was released
    // first. Nothing where there is none that is usable.
    std::optional<Connection> give_up_idle(const ServerRef& server, const PoolSettings& settings,
                                           Clock::time_point now);
    // For a user: an idle connection to this server that a password check has authenticated with
    // the user's credentials within RecheckAfter, while this process has not written to the user's
    // entry since, and nothing later is known of them.
    std::optional<Connection> give_up_checked(const ServerRef& server, const ConnectionSet& user,
                                              const PoolSettings& settings, Clock::time_point now);
    // Gives the place back without a connection.
    void release_place();
    // Gives the place back with its connection, which is idle from now on; or is closed, where the
    // generation of the place is over, it is not usable or there are too many. True where it is
    // idle now.
    bool release(Connection connection, std::uint64_t generation, const PoolSettings& settings,
                 Clock::time_point now);
    // Closes idle connections that are not usable any more, and forgets checks older than
    // RecheckAfter.
    void evict_unusable(const PoolSettings& settings, Clock::time_point now);
    // Closes the idle connection that was released first. False where there is none.
    bool evict_oldest();
    void evict_all();
    std::size_t idle() const;
    // The settings have changed: there may be more places.
    void wake_waiting();

    // -- Credentials.

    // In constant time for passwords of one length.
    bool has_password(const Secret& password) const;
    Secret password() const;
    // The server's answer to a bind with the set's password, asked at `at` when the user's entry
    // had this write mark and the set this generation; one of a former generation says nothing. A
    // refusal closes what was opened with these credentials.
    void note_accepted(Clock::time_point at, std::uint64_t mark, std::uint64_t generation);
    void note_refused(const Failure& failure, Clock::time_point at, std::uint64_t mark,
                      std::uint64_t generation);
    // Whether the server accepted them not longer ago than RecheckAfter, and this process has not
    // written to the user's entry since.
    bool is_accepted(const PoolSettings& settings, Clock::time_point now) const;
    // Likewise, that it refused them: with which failure.
    std::optional<Failure> refusal(const PoolSettings& settings, Clock::time_point now) const;
    // Somebody asks the server about credentials of which nothing is known. While one does, others
    // who have the same question wait for the answer, at most for `limit`: an outdated password
    // that many offer at once is one failure there. Who still waits then asks as well. With
    // RecheckAfter 0 everybody asks.
    class Question {
    public:
        Question(ConnectionSet& set, const PoolSettings& settings, const Clock& clock,
                 std::chrono::milliseconds limit);
        Question(const Question&) = delete;
        ~Question();

    private:
        ConnectionSet& set_;
        bool is_asked_ = false;
    };
    // What the server said of the credentials counts no more, and connections made until now are
    // not used again: the user's password or entry has changed.
    void invalidate();
    // The same after the user's own change: who works with these credentials goes on with the new
    // password.
    void change_password(const Secret& password);

    // Held while the user changes the own password, from asking the server to noting the new one:
    // of two who do so at once the later is the one that counts, here as there.
    std::recursive_mutex& own_change() { return own_change_; }

private:
    struct Verdict {
        Clock::time_point at;
        std::uint64_t mark;
        std::optional<Failure> refusal;  // none: accepted
    };

    std::optional<Connection> give_up_first(const ServerRef& server, const PoolSettings& settings,
                                            Clock::time_point now,
                                            const std::function<bool(const Connection&)>& fits);
    // Whether nothing was asked about the credentials at this time or later.
    bool is_news(Clock::time_point at) const;
    const Verdict* current_verdict(const PoolSettings& settings, Clock::time_point now) const;
    void wake_next();
    void end_generation(std::deque<Connection>& closing);

    const Use use_;
    const std::shared_ptr<ServerGroup> group_;
    const std::string user_;
    const EntryKey user_key_;
    const SharedSettings& settings_;
    const WriteMarks& writes_;
    std::recursive_mutex own_change_;

    mutable std::mutex mutex_;  // for the rest
    Secret password_;
    std::optional<Verdict> verdict_;
    std::uint64_t verdicts_ = 0;  // so far
    std::uint64_t generation_ = 0;
    std::size_t leased_ = 0;       // places that are taken
    std::deque<Connection> idle_;  // the latest released last
    bool is_asked_ = false;        // by a Question
    std::condition_variable answered_;
    // Those who wait for a place, in the order in which they came.
    std::list<std::condition_variable> waiting_;
};

}  // namespace orvo::directory::ldap
