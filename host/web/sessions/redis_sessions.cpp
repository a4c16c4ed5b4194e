#include "host/web/sessions/redis_sessions.h"

#include "host/web/messages/random_token.h"
#include "host/web/sessions/kept_bytes.h"
#include "host/web/sessions/session_scripts.h"
#include "platform/values/failure.h"
#include "platform/values/secret.h"

namespace orvo::web {
namespace {

constexpr std::size_t most_ended_at_once = 100;

std::string milliseconds_of(std::chrono::milliseconds time) { return std::to_string(time.count()); }

// Of the session's name, so that they are neither in order nor tell how many there are.
Text public_id_of(const std::string& name) {
    return decimal(std::stoll(name.substr(0, 13), nullptr, 16));
}

void wipe(std::string& bytes) { overwrite(bytes.data(), bytes.size()); }

}  // namespace

// What one request of this process has of a session, whose others wait for it.
class RedisSessions::Turn {
public:
    Turn(RedisSessions& store, std::string name, SessionPatience& patience)
        : store_(store), name_(std::move(name)) {
        std::unique_lock guard(store_.lock_);
        // References to what an unordered map holds stay good while it is there: as long as
        // somebody has the turn or waits for it.
        SessionTurns& turns = store_.turns_[name_];
        if (turns.is_taken) {
            ++store_.counts_.waited;
            try {
                wait_for_turn(turns, guard, store_.turn_ended_, store_.limits_.most_waiting,
                              patience);
            } catch (const Refusal&) {
                ++store_.counts_.refused;
                store_.drop_unused(name_);
                throw;
            }
        }
        turns.is_taken = true;
    }
    ~Turn() {
        {
            const std::lock_guard guard(store_.lock_);
            store_.turns_.at(name_).is_taken = false;
            store_.drop_unused(name_);
        }
        store_.turn_ended_.notify_all();
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    const std::string& name() const { return name_; }

private:
    RedisSessions& store_;
    const std::string name_;
};

class RedisSessions::Lease final : public SessionLease {
public:
    // stored: what the store has of it; empty: it is a new one.
    Lease(RedisSessions& sessions, std::unique_ptr<Turn> turn, std::string id, std::string name,
          std::string token, SessionData data, std::string stored)
        : sessions_(sessions),
          turn_(std::move(turn)),
          id_(std::move(id)),
          name_(std::move(name)),
          token_(std::move(token)),
          data_(std::move(data)),
          stored_(std::move(stored)),
          stored_name_(name_) {
        if (!stored_.empty()) sessions_.store_.locks().hold(key(), token_);
    }
    ~Lease() override {
        try {
            close();
        } catch (const std::exception&) {
            // The request has failed already, or has nobody to tell.
        }
        wipe(stored_);
    }

    const std::string& id() const override { return id_; }
    SessionData& data() override { return data_; }
    void renew_id() override {
        id_ = random_token();
        name_ = store::Keyring::name_of(id_);
    }
    void abandon() override { is_abandoned_ = true; }
    void save() override { put(SharedLocks::life); }
    void close() override {
        if (std::exchange(is_closed_, true)) return;
        const std::unique_ptr<Turn> turn = std::move(turn_);
        if (is_abandoned_)
            end();
        else
            put({});
    }

private:
    std::string key() const { return sessions_.key_of(stored_name_); }
    bool is_new() const { return stored_.empty(); }
    bool is_long() const {
        return std::chrono::steady_clock::now() - begin_ > sessions_.long_request_;
    }

    void put(std::chrono::milliseconds locked) {
        std::string bytes = bytes_of(data_);
        const bool is_changed = name_ != stored_name_ || bytes != stored_;
        if (!is_changed && (locked.count() > 0 || !is_long())) {
            wipe(bytes);
            if (locked.count() == 0) sessions_.store_.locks().release_soon(key(), token_);
            return;
        }
        const std::string key_to_be = sessions_.key_of(name_);
        std::vector<std::string> keys = sessions_.keys_of(key_to_be);
        keys.insert(keys.begin(), key());
        const SessionLimits limits = sessions_.limits();
        std::vector<std::string> arguments{
            token_,
            stored_name_,
            name_,
            milliseconds_of(limits.absolute),
            milliseconds_of(data_.timeout),
            std::to_string(rank_of(data_)),
            is_changed ? sessions_.store_.seal(bytes, key_to_be) : std::string(),
            milliseconds_of(locked),
            is_new() ? "1" : "0",
            std::to_string(limits.most),
            std::to_string(limits.most_bytes),
            sessions_.key_of({})};
        const store::Reply reply = asked(session_scripts::store(), keys, std::move(arguments));
        const auto code = reply.list().at(0).integer();
        if (code > 0)
            sessions_.tell_ended(reply.list().at(1).list(),
                                 static_cast<std::size_t>(reply.list().at(2).integer()));
        if (code == 2) throw Refusal(503, "There are too many sessions.");
        if (code == 0) return lose(is_changed);
        if (is_new()) {
            const std::lock_guard guard(sessions_.lock_);
            ++sessions_.counts_.created;
        }
        std::swap(stored_, bytes);
        wipe(bytes);
        SharedLocks& locks = sessions_.store_.locks();
        if (name_ != stored_name_) locks.let_go(token_);
        stored_name_ = name_;
        if (locked.count() > 0)
            locks.hold(key(), token_);
        else
            locks.let_go(token_);
    }

    void end() {
        std::int64_t code = 1;
        if (!is_new())
            code = asked(session_scripts::end(), sessions_.keys_of(key()), {token_, stored_name_})
                       .integer();
        if (code == 0) return lose(true);
        sessions_.store_.locks().let_go(token_);
        if (code == 1) sessions_.tell_ended(std::move(data_), SessionEnd::abandoned);
    }

    void lose(bool is_changed) {
        sessions_.store_.locks().let_go(token_);
        if (!is_changed) return;
        {
            const std::lock_guard guard(sessions_.lock_);
            ++sessions_.counts_.lost;
        }
        throw Refusal(503, "Another request has had this session meanwhile. Please try again.");
    }

    store::Reply asked(const store::Script& script, const std::vector<std::string>& keys,
                       std::vector<std::string> arguments) {
        try {
            return sessions_.store_.run_repeatable(script, keys, std::move(arguments));
        } catch (...) {
            sessions_.store_.locks().release_later({{keys.front(), token_}});
            throw;
        }
    }

    RedisSessions& sessions_;
    std::unique_ptr<Turn> turn_;
    std::string id_;
    std::string name_;  // of the identifier that it has now
    const std::string token_;
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    SessionData data_;
    std::string stored_;
    std::string stored_name_;
    bool is_abandoned_ = false;
    bool is_closed_ = false;
};

RedisSessions::RedisSessions(SharedStore& store, SessionLimits limits,
                             std::chrono::milliseconds long_request)
    : store_(store),
      long_request_(long_request),
      list_keys_{store.key("sessions", "0"), store.key("sessions", "1"), store.key("sessions", "2"),
                 store.key("sessions", "size")},
      limits_(limits) {}

RedisSessions::~RedisSessions() = default;

std::unique_ptr<SessionLease> RedisSessions::open(const std::string& id,
                                                  std::chrono::milliseconds patience,
                                                  const std::function<bool()>& try_wait) {
    if (id.size() != token_length) return nullptr;
    SessionPatience request(patience, try_wait);
    auto turn = std::make_unique<Turn>(*this, store::Keyring::name_of(id), request);
    const std::string key = key_of(turn->name());
    const std::string token = random_token();
    GrowingPause pause;
    while (true) {
        const store::Reply reply = ask_for(turn->name(), key, token);
        const auto& answer = reply.list();
        const auto code = answer.at(0).integer();
        if (code == 0) return nullptr;
        if (code == 2) {
            tell_ended({store::Reply(turn->name()), answer.at(1)}, 0);
            return nullptr;
        }
        if (code == 3) {
            auto bytes = store_.unseal(answer.at(1).text(), key);
            auto session = bytes ? try_session_of(*bytes) : std::nullopt;
            if (!session) {
                store_.locks().release_later({{key, token}});
                return nullptr;
            }
            std::string name = turn->name();
            return std::make_unique<Lease>(*this, std::move(turn), id, std::move(name), token,
                                           std::move(*session), std::move(*bytes));
        }
        wait_for_others(request, pause);
    }
}

// Locks that other requests have given back are released along the way.
store::Reply RedisSessions::ask_for(const std::string& name, const std::string& key,
                                    const std::string& token) {
    if (!store_.is_reachable()) throw StoreAway();
    std::vector<std::string> keys = keys_of(key);
    std::vector<std::string> arguments{token, milliseconds_of(SharedLocks::life),
                                       milliseconds_of(limits().absolute), name};
    std::vector<SharedLocks::Lock> others = store_.locks().take_along();
    for (const SharedLocks::Lock& lock : others) {
        keys.push_back(lock.key);
        arguments.push_back(lock.token);
    }
    try {
        return store_.run_repeatable(session_scripts::open(), keys, std::move(arguments));
    } catch (...) {
        others.push_back({key, token});
        store_.locks().release_later(std::move(others));
        throw;
    }
}

// Another machine has it.
void RedisSessions::wait_for_others(SessionPatience& request, GrowingPause& pause) {
    const auto until = std::chrono::steady_clock::now() + pause.next();
    // As a rule it is about to be released.
    if (!pause.is_long()) return std::this_thread::sleep_until(until);
    const bool is_first = !request.has_waited();
    const bool may_wait = request.may_wait();
    const bool is_over = until > request.end();
    {
        const std::lock_guard guard(lock_);
        if (is_first) ++counts_.waited;
        if (!may_wait || is_over) ++counts_.refused;
    }
    if (!may_wait) SessionPatience::refuse();
    if (is_over) SessionPatience::give_up();
    std::this_thread::sleep_until(until);
}

std::unique_ptr<SessionLease> RedisSessions::create() {
    if (!store_.is_reachable()) throw StoreAway();
    std::string id = random_token();
    SessionData data;
    std::string name = store::Keyring::name_of(id);
    data.form_token = random_token();
    data.public_id = public_id_of(name);
    data.timeout = limits().timeout;
    return std::make_unique<Lease>(*this, nullptr, std::move(id), std::move(name), random_token(),
                                   std::move(data), std::string());
}

SessionLogin RedisSessions::login_of(const std::string& id) {
    if (id.size() != token_length) return {};
    const std::string name = store::Keyring::name_of(id);
    const std::string key = key_of(name);
    const store::Reply reply = store_.run_repeatable(session_scripts::look(), keys_of(key),
                                                     {milliseconds_of(limits().absolute), name});
    if (reply.is_null()) return {};
    const auto session = try_unsealed(key, reply.text());
    return session ? login_in(session->values) : SessionLogin();
}

void RedisSessions::require() { store_.run_repeatable({"PING"}); }

void RedisSessions::set_limits(const SessionLimits& limits) {
    const std::lock_guard guard(lock_);
    limits_ = limits;
}

SessionLimits RedisSessions::limits() const {
    const std::lock_guard guard(lock_);
    return limits_;
}

SessionCounts RedisSessions::counts() const {
    const std::lock_guard guard(lock_);
    return counts_;
}

std::optional<SharedSessionCounts> RedisSessions::shared_counts() {
    try {
        const store::Reply reply = store_.run_repeatable(session_scripts::count(), list_keys_, {});
        const auto number = [&](std::size_t i) {
            return static_cast<std::uint64_t>(reply.list().at(i).integer());
        };
        return SharedSessionCounts{.live = number(0), .bytes = number(1)};
    } catch (const StoreAway&) {
        return {};
    }
}

void RedisSessions::on_end(std::function<void(SessionData)> take) {
    const std::lock_guard guard(end_lock_);
    take_ended_ = std::move(take);
}

// A few at a time: those that a machine has taken end with it.
void RedisSessions::end_idle() {
    try {
        const store::Reply ended = store_.run(session_scripts::take(), list_keys_,
                                              {std::to_string(most_ended_at_once), key_of({})});
        tell_ended(ended.list(), 0);
    } catch (const StoreAway&) {
        // They are ended later, here or by another machine.
    }
}

std::optional<SessionData> RedisSessions::try_unsealed(const std::string& key,
                                                       const std::string& sealed) const {
    auto bytes = store_.unseal(sealed, key);
    if (!bytes) return {};
    auto session = try_session_of(*bytes);
    wipe(*bytes);
    return session;
}

void RedisSessions::tell_ended(SessionData session, SessionEnd why) {
    {
        const std::lock_guard guard(lock_);
        ++counts_.ended[static_cast<std::size_t>(why)];
    }
    const std::lock_guard guard(end_lock_);
    if (take_ended_) take_ended_(std::move(session));
}

void RedisSessions::tell_ended(const store::Reply::List& ended, std::size_t for_room) {
    const std::size_t count = ended.size() / 2;
    for (std::size_t i = 0; i < count; ++i)
        if (auto session = try_unsealed(key_of(ended[2 * i].text()), ended[2 * i + 1].text()))
            tell_ended(std::move(*session),
                       i + for_room < count ? SessionEnd::idle : SessionEnd::room);
}

std::vector<std::string> RedisSessions::keys_of(const std::string& key) const {
    std::vector<std::string> keys{key};
    keys.insert(keys.end(), list_keys_.begin(), list_keys_.end());
    return keys;
}

void RedisSessions::drop_unused(const std::string& name) {
    const auto found = turns_.find(name);
    if (found != turns_.end() && !found->second.is_taken && found->second.waiting == 0)
        turns_.erase(found);
}

}  // namespace orvo::web
