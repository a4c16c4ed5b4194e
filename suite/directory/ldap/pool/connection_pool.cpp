#include "suite/directory/ldap/pool/connection_pool.h"

#include <algorithm>
#include <utility>

namespace orvo::directory::ldap {
namespace {

// So many refused credentials are remembered; whoever tries passwords one after the other fills no
// memory.
constexpr std::size_t most_refused = 1000;

void forget_unused(std::vector<std::weak_ptr<ConnectionSet>>& sets) {
    std::erase_if(sets, [](const auto& set) { return set.expired(); });
}

// The length keeps two keys apart whatever is in their parts.
std::string key_of(std::string_view kind, const ServerGroup& group, const std::string& name) {
    return std::string(kind) + std::to_string(group.key().size()) + ' ' + group.key() + name;
}

}  // namespace

ConnectionPool::ConnectionPool(const Clock& clock, WriteMarks& writes, Servers& servers)
    : clock_(clock), writes_(writes), servers_(servers) {}

void ConnectionPool::configure(const Variant& names, const Variant& values) {
    settings_.change(names, values);
    {
        Dropped dropped;
        const std::lock_guard lock(mutex_);
        evict_idle(settings(), clock_.now(), dropped);
    }
    for (const ConnectionSetRef& set : all_sets()) set->wake_waiting();
}

ConnectionSetRef ConnectionPool::set_of(const ServerAddress& address, const std::string& user,
                                        const Secret& password) {
    auto group = servers_.group(address);
    std::string key = key_of("user ", *group, user);
    return find_or_make(ConnectionSet::Use::as_user, std::move(key), std::move(group), user,
                        password);
}

ConnectionSetRef ConnectionPool::checks_below(const ServerAddress& address,
                                              const std::string& container) {
    auto group = servers_.group(address);
    std::string key = key_of("checks ", *group, container);
    return find_or_make(ConnectionSet::Use::password_checks, std::move(key), std::move(group), {},
                        {});
}

ConnectionSetRef ConnectionPool::find_or_make(ConnectionSet::Use use, std::string key,
                                              std::shared_ptr<ServerGroup> group,
                                              const std::string& user, const Secret& password) {
    const std::lock_guard lock(mutex_);
    if (sets_.size() >= clean_at_) {
        for (auto row = sets_.begin(); row != sets_.end();) {
            forget_unused(row->second);
            row = row->second.empty() ? sets_.erase(row) : std::next(row);
        }
        clean_at_ = std::max<std::size_t>(64, 2 * sets_.size());
    }
    auto& known = sets_[std::move(key)];
    forget_unused(known);
    for (const auto& weak : known)
        if (ConnectionSetRef set = weak.lock(); set && set->has_password(password)) return set;
    auto made = std::make_shared<ConnectionSet>(use, std::move(group), user, password.clone(),
                                                settings_, writes_);
    known.push_back(made);
    return made;
}

void ConnectionPool::tidy(ConnectionSet& set) {
    Dropped dropped;
    const std::lock_guard lock(mutex_);
    const auto now = clock_.now();
    const PoolSettings current = settings();
    set.evict_unusable(current, now);
    while (!refused_.empty() && refused_.front().until <= now) {
        dropped.push_back(std::move(refused_.front().set));
        refused_.pop_front();
    }
    evict_unused(current, now, dropped);
}

void ConnectionPool::keep(const ConnectionSetRef& set) {
    Dropped dropped;
    const std::lock_guard lock(mutex_);
    const PoolSettings current = settings();
    if (current.maximum_size == 0) {
        // Switched off while the connection was in use.
        if (set->use() == ConnectionSet::Use::password_checks) set->evict_all();
        return;
    }
    const auto now = clock_.now();
    const auto known = idle_places_.find(set.get());
    const auto place =
        known == idle_places_.end() ? idle_.insert(idle_.end(), {set, now}) : known->second;
    place->used = now;
    if (known == idle_places_.end())
        idle_places_.emplace(set.get(), place);
    else
        idle_.splice(idle_.end(), idle_, place);
    evict_idle(current, now, dropped);
}

void ConnectionPool::evict_unused(const PoolSettings& settings, Clock::time_point now,
                                  Dropped& dropped) {
    while (!idle_.empty() &&
           (settings.maximum_size == 0 || now - idle_.front().used >= settings.idle)) {
        idle_.front().set->evict_all();
        dropped.push_back(drop(idle_.begin()));
    }
}

void ConnectionPool::evict_idle(const PoolSettings& settings, Clock::time_point now,
                                Dropped& dropped) {
    evict_unused(settings, now, dropped);
    if (idle_.size() * settings.maximum_size <= settings.maximum_idle) return;
    std::size_t count = count_idle();
    while (count > settings.maximum_idle && !idle_.empty()) {
        if (idle_.front().set->evict_oldest()) --count;
        // Others take its connections meanwhile.
        if (idle_.front().set->idle() == 0) dropped.push_back(drop(idle_.begin()));
    }
}

ConnectionSetRef ConnectionPool::drop(IdleSets::iterator place) {
    ConnectionSetRef set = std::move(place->set);
    idle_places_.erase(set.get());
    idle_.erase(place);
    return set;
}

std::size_t ConnectionPool::count_idle() const {
    std::size_t count = 0;
    for (const Idle& idle : idle_) count += idle.set->idle();
    return count;
}

std::optional<Connection> ConnectionPool::take_from_others(const ServerRef& server) {
    ConnectionSetRef dropped;
    const std::lock_guard lock(mutex_);
    const PoolSettings current = settings();
    if (count_idle() < current.maximum_idle) return std::nullopt;
    const auto now = clock_.now();
    for (auto place = idle_.begin(); place != idle_.end(); ++place) {
        if (place->set->use() != ConnectionSet::Use::as_user) continue;
        auto given = place->set->give_up_idle(server, current, now);
        if (!given) continue;
        if (place->set->idle() == 0) dropped = drop(place);
        return given;
    }
    return std::nullopt;
}

std::optional<Connection> ConnectionPool::take_checked(ConnectionSet& user, const ServerRef& server,
                                                       std::uint64_t generation) {
    ConnectionSetRef dropped;
    const std::lock_guard lock(mutex_);
    const PoolSettings current = settings();
    const auto now = clock_.now();
    for (auto place = idle_.begin(); place != idle_.end(); ++place) {
        if (place->set->use() != ConnectionSet::Use::password_checks) continue;
        auto given = place->set->give_up_checked(server, user, current, now);
        if (!given) continue;
        if (place->set->idle() == 0) dropped = drop(place);
        user.note_accepted(given->checked->at, given->checked->mark, generation);
        given->checked.reset();
        return given;
    }
    return std::nullopt;
}

void ConnectionPool::remember_refusal(const ConnectionSetRef& set) {
    Dropped dropped;
    const std::lock_guard lock(mutex_);
    const auto lasts = settings().recheck;
    if (lasts.count() == 0) return;
    refused_.push_back({set, clock_.now() + lasts});
    if (refused_.size() <= most_refused) return;
    dropped.push_back(std::move(refused_.front().set));
    refused_.pop_front();
}

std::vector<ConnectionSetRef> ConnectionPool::all_sets() const {
    const std::lock_guard lock(mutex_);
    std::vector<ConnectionSetRef> sets;
    for (const auto& [key, known] : sets_)
        for (const auto& weak : known)
            if (ConnectionSetRef set = weak.lock()) sets.push_back(std::move(set));
    return sets;
}

void ConnectionPool::password_changed(const EntryKey& entry, const Secret& password,
                                      const ConnectionSetRef& by) {
    // First, so that no set which is found now takes a connection that was checked before.
    writes_.note(entry);
    for (const ConnectionSetRef& set : all_sets()) {
        if (set->use() != ConnectionSet::Use::as_user || set->user().empty() ||
            !set->user_key().may_be(entry))
            continue;
        if (set == by && set->user_key() == entry && !password.empty())
            set->change_password(password);
        else
            set->invalidate();
    }
}

}  // namespace orvo::directory::ldap
