#include "suite/directory/ldap/pool/connection_pool.h"

#include <algorithm>
#include <utility>

#include "suite/directory/ldap/memory/write_marks.h"
#include "suite/directory/ldap/wire/failures.h"

namespace orvo::directory::ldap {
namespace {

using std::chrono::steady_clock;

// So long after an answer a connection is taken to be open without looking: where it is not, the
// operation notices and is done on a new one.
constexpr std::chrono::milliseconds surely_open{100};

[[noreturn]] void raise_busy(const Identity& identity, const PoolSettings& settings) {
    const bool checks = identity.kind() == Identity::Kind::password_checks;
    raise_code(result_code::busy,
               "All " + std::to_string(settings.maximum_size) + " connections of " +
                   (checks ? "the password checks below one container" : "this user") + " to '" +
                   identity.server_key() + "' were in use for " +
                   std::to_string(settings.wait.count()) +
                   " ms (MaximumSize and WaitLimit of the connection pool).");
}

void forget_unused(std::vector<std::weak_ptr<Identity>>& set) {
    std::erase_if(set, [](const auto& identity) { return identity.expired(); });
}

}  // namespace

ConnectionPool& ConnectionPool::of_process() {
    static ConnectionPool made;
    return made;
}

PoolSettings ConnectionPool::settings() const {
    const std::lock_guard lock(mutex_);
    return settings_;
}

void ConnectionPool::configure(const Variant& names, const Variant& values) {
    Closing closing;
    const std::lock_guard lock(mutex_);
    settings_ = changed(settings_, names, values);
    close_old(steady_clock::now(), closing);
    for (auto& [key, set] : identities_)
        for (const auto& weak : set)
            if (const auto identity = weak.lock()) {
                if (settings_.maximum_size != 0) closing.splice(closing.end(), identity->kept_);
                wake_next(*identity);
            }
}

Credentials ConnectionPool::enter(const ServerAddress& server, const std::string& user,
                                  const Secret& password) {
    const PasswordDigest digest(password);
    const std::string server_key = server.key();
    // The length keeps two keys apart whatever is in their parts.
    const std::string key = std::to_string(server_key.size()) + ' ' + server_key + user;
    const std::lock_guard lock(mutex_);
    Credentials credentials;
    credentials.identity = find_or_make(Identity::Kind::user, key, server, user, digest);
    credentials.password = credentials.identity->password_.lock();
    if (!credentials.password) {
        credentials.password = std::make_shared<Secret>(password.clone());
        credentials.identity->password_ = credentials.password;
    }
    return credentials;
}

Credentials ConnectionPool::password_checks(const ServerAddress& server,
                                            const std::string& container) {
    const std::string server_key = server.key();
    const std::string key =
        "checks " + std::to_string(server_key.size()) + ' ' + server_key + container;
    const std::lock_guard lock(mutex_);
    return {find_or_make(Identity::Kind::password_checks, key, server, {}, {}), nullptr};
}

std::shared_ptr<Identity> ConnectionPool::find_or_make(Identity::Kind kind, const std::string& key,
                                                       const ServerAddress& server,
                                                       const std::string& user,
                                                       const PasswordDigest& digest) {
    if (identities_.size() >= clean_at_) {
        for (auto row = identities_.begin(); row != identities_.end();) {
            forget_unused(row->second);
            row = row->second.empty() ? identities_.erase(row) : std::next(row);
        }
        clean_at_ = std::max<std::size_t>(64, 2 * identities_.size());
    }
    auto& set = identities_[key];
    forget_unused(set);
    for (const auto& weak : set)
        if (auto identity = weak.lock(); identity && identity->digest_ == digest) return identity;
    auto made = std::make_shared<Identity>(kind, server, user, digest);
    set.push_back(made);
    return made;
}

Lease ConnectionPool::lease(const Credentials& credentials, const std::optional<Limits>& limits) {
    Lease lease = place_for(credentials, limits);
    if (lease.connection_.empty()) lease.reopen();
    return lease;
}

Lease ConnectionPool::lease_presented(const Credentials& credentials, const Secret& presented,
                                      const std::optional<Limits>& limits) {
    const PasswordDigest digest(presented);
    Lease lease = place_for(credentials, limits);
    if (!lease.connection_.empty() && !is_trusted(*credentials.identity, digest)) {
        const Result bind = lease.authenticate(presented, digest);
        if (bind.code != result_code::server_down) check_bind(bind);
    }
    if (lease.connection_.empty()) {
        lease.open();
        check_bind(lease.authenticate(presented, digest));
    }
    return lease;
}

// A place for one more connection, with an idle connection where there is one that is alive.
Lease ConnectionPool::place_for(const Credentials& credentials,
                                const std::optional<Limits>& limits) {
    Identity& identity = *credentials.identity;
    Closing closing;
    std::unique_lock lock(mutex_);
    auto now = steady_clock::now();
    close_old(now, closing);
    if (!closing.empty()) {
        lock.unlock();
        closing.clear();
        lock.lock();
    }
    Lease lease(*this, credentials, limits.value_or(settings_.limits));
    if (wait_for_place(identity, lock)) now = steady_clock::now();
    lease.generation_ = identity.generation_;
    lease.connection_ = take_idle(identity);
    lease.is_shared_ = settings_.maximum_size != 0;
    if (!settings_.always_asks_policy) lease.policy_lasts_ = settings_.recheck;
    if (lease.is_shared_) ++identity.open_;
    const auto oldest = now - settings_.age;
    const auto longest_idle = now - settings_.idle;
    lock.unlock();

    const auto is_good = [&](const Connection& connection) {
        return connection.opened > oldest && connection.used > longest_idle &&
               (now - connection.used < surely_open || connection.session.seems_open());
    };
    while (!lease.connection_.empty() && !is_good(lease.connection_.front().connection)) {
        lease.connection_.clear();
        lock.lock();
        lease.connection_ = take_idle(identity);
        lock.unlock();
    }
    if (!lease.connection_.empty()) lease.session().set_limits(lease.limits_);
    return lease;
}

bool ConnectionPool::wait_for_place(Identity& identity, std::unique_lock<std::mutex>& lock) {
    const auto has_place = [&] {
        return settings_.maximum_size == 0 || !identity.idle_.empty() ||
               identity.open_ < settings_.maximum_size;
    };
    auto& waiting = identity.waiting_;
    if (waiting.empty() && has_place()) return false;
    const auto own = waiting.emplace(waiting.end());
    const bool is_served =
        own->wait_for(lock, settings_.wait, [&] { return own == waiting.begin() && has_place(); });
    waiting.erase(own);
    wake_next(identity);
    if (!is_served) raise_busy(identity, settings_);
    return true;
}

// There may be a place for who waits longest; who finds one wakes the next. Where an idle
// connection is taken or closed there is none that was not there before: it was one itself.
void ConnectionPool::wake_next(Identity& identity) {
    if (!identity.waiting_.empty()) identity.waiting_.front().notify_one();
}

void ConnectionPool::password_changed(const EntryKey& entry, const Secret& password,
                                      const Credentials& by) {
    Closing closing;
    const std::lock_guard lock(mutex_);
    for (auto& [key, set] : identities_) {
        for (const auto& weak : set) {
            const auto identity = weak.lock();
            if (!identity || identity->kind() != Identity::Kind::user || identity->user().empty() ||
                !identity->user_key().may_be(entry))
                continue;
            identity->accepted_.reset();
            ++identity->generation_;
            close_all(*identity, closing);
            const bool is_own = identity == by.identity && identity->user_key() == entry;
            if (!is_own || password.empty()) continue;
            identity->digest_ = PasswordDigest(password);
            *by.password = password.clone();
        }
    }
}

bool ConnectionPool::is_trusted(const Identity& identity, const PasswordDigest& digest) const {
    const std::lock_guard lock(mutex_);
    return identity.accepted_ && identity.digest_ == digest &&
           steady_clock::now() - identity.accepted_->at < settings_.recheck &&
           write_mark(identity.user_key()) == identity.accepted_->write_mark;
}

void ConnectionPool::was_accepted(const Lease& lease, const PasswordDigest& digest,
                                  const Acceptance& acceptance) {
    Identity& identity = *lease.credentials_.identity;
    const std::lock_guard lock(mutex_);
    if (identity.generation_ == lease.generation_ && identity.digest_ == digest)
        identity.accepted_ = acceptance;
}

void ConnectionPool::was_refused(const Lease& lease, const PasswordDigest& digest) {
    Identity& identity = *lease.credentials_.identity;
    Closing closing;
    const std::lock_guard lock(mutex_);
    if (!(identity.digest_ == digest)) return;
    identity.accepted_.reset();
    ++identity.generation_;
    close_all(identity, closing);
}

Secret ConnectionPool::password_of(const Credentials& credentials, PasswordDigest& digest) const {
    const std::lock_guard lock(mutex_);
    if (!credentials.password) return {};
    digest = credentials.identity->digest_;
    return credentials.password->clone();
}

void ConnectionPool::take_back(Lease& lease) {
    Identity& identity = *lease.credentials_.identity;
    Closing closing;
    const std::lock_guard lock(mutex_);
    IdleConnection& returned = lease.connection_.front();
    const auto now = returned.connection.used = steady_clock::now();
    const bool is_of_use =
        lease.generation_ == identity.generation_ &&
        now - returned.connection.opened < settings_.age &&
        (lease.is_shared_ ? identity.open_ <= settings_.maximum_size : settings_.maximum_size == 0);
    if (!is_of_use) {
        closing.splice(closing.end(), lease.connection_);
        if (lease.is_shared_) --identity.open_;
    } else if (!lease.is_shared_) {
        returned.identity.reset();
        identity.kept_.splice(identity.kept_.end(), lease.connection_);
    } else {
        // Where there is no memory the lease keeps its place, and leaves it at its end.
        identity.idle_.push_back(lease.connection_.begin());
        returned.identity = lease.credentials_.identity;
        idle_.splice(idle_.end(), lease.connection_);
    }
    lease.is_shared_ = false;
    wake_next(identity);
    close_old(now, closing);
    while (!identity.kept_.empty() &&
           now - identity.kept_.front().connection.used >= settings_.idle)
        closing.splice(closing.end(), identity.kept_, identity.kept_.begin());
}

void ConnectionPool::leave(const Lease& lease) {
    Identity& identity = *lease.credentials_.identity;
    const std::lock_guard lock(mutex_);
    --identity.open_;
    wake_next(identity);
}

// The one that worked last: those that nobody needs grow old.
IdleList ConnectionPool::take_idle(Identity& identity) {
    IdleList connection;
    if (!identity.idle_.empty()) {
        connection.splice(connection.end(), idle_, identity.idle_.back());
        identity.idle_.pop_back();
        --identity.open_;
    } else if (!identity.kept_.empty()) {
        connection.splice(connection.end(), identity.kept_, std::prev(identity.kept_.end()));
    }
    return connection;
}

void ConnectionPool::close_oldest(Closing& closing) {
    Identity& identity = *idle_.front().identity;
    identity.idle_.erase(identity.idle_.begin());
    --identity.open_;
    closing.splice(closing.end(), idle_, idle_.begin());
}

void ConnectionPool::close_old(steady_clock::time_point now, Closing& closing) {
    while (!idle_.empty() &&
           (settings_.maximum_size == 0 || idle_.size() > settings_.maximum_idle ||
            now - idle_.front().connection.used >= settings_.idle))
        close_oldest(closing);
}

void ConnectionPool::close_all(Identity& identity, Closing& closing) {
    for (const auto idle : identity.idle_) closing.splice(closing.end(), idle_, idle);
    identity.open_ -= identity.idle_.size();
    identity.idle_.clear();
    closing.splice(closing.end(), identity.kept_);
}

}  // namespace orvo::directory::ldap
