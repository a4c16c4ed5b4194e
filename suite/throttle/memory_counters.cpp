#include "suite/throttle/memory_counters.h"

#include <algorithm>

namespace orvo::throttle {
namespace {

Room room_in(const Budget& budget, const Limit& limit, Moment now) {
    const int wrong = budget.wrong(limit, now);
    if (wrong >= limit.most) return Room::none;
    return wrong + budget.under_way_at(now) >= limit.most ? Room::busy : Room::free;
}

std::size_t worth_of(const Budget& budget, const Limit& limit, Moment now) {
    return 2 * budget.wrong(limit, now) >= limit.most ? 1 : 0;
}

Room room_of_address(const Budget& budget, const Limit& limit, Moment now) {
    const Room room = room_in(budget, limit, now);
    return room == Room::busy && worth_of(budget, limit, now) > 0 ? Room::none : room;
}

// Of addresses that users have not logged in from alone.
bool counts_for_address(const Attempt& attempt, Source source) {
    return source == Source::unknown_addresses && !attempt.is_of_user_only;
}

void end(Budget& budget, Outcome outcome, const Limit& limit, Moment now) {
    budget.end(now);
    if (outcome == Outcome::wrong) budget.count_wrong(limit, now);
}

}  // namespace

Moment steady_now() {
    return std::chrono::duration_cast<Moment>(std::chrono::steady_clock::now().time_since_epoch());
}

void MemoryCounters::set_most(std::size_t most) {
    const std::lock_guard lock(mutex_);
    most_ = most;
}

MemoryCounters::KnownAddress* MemoryCounters::User::find(const std::string& address,
                                                         const Limits& limits, Moment now) {
    if (address.empty()) return nullptr;
    const auto found = std::ranges::find(known, address, &KnownAddress::address);
    return found != known.end() && now - found->login < limits.known_for ? &*found : nullptr;
}

Budget& MemoryCounters::User::budget(const Attempt& attempt, Source source, const Limits& limits,
                                     Moment now) {
    if (source == Source::programs) return programs;
    KnownAddress* address =
        source == Source::known_address ? find(attempt.address, limits, now) : nullptr;
    return address ? address->budget : unknown_addresses;
}

Source MemoryCounters::source_of(User* user, const Attempt& attempt, const Limits& limits,
                                 Moment now) {
    if (attempt.address.empty()) return Source::programs;
    return user && user->find(attempt.address, limits, now) ? Source::known_address
                                                            : Source::unknown_addresses;
}

Place MemoryCounters::reserve(const Attempt& attempt, const Limits& limits) {
    const std::lock_guard lock(mutex_);
    const Moment now = now_();
    User none;
    User* user = users_.find(attempt.user);
    Place place{.source = source_of(user, attempt, limits, now)};
    Budget& counted = (user ? *user : none).budget(attempt, place.source, limits, now);
    counted.cut_to(limits.user, now);
    place.room = room_in(counted, limits.user, now);
    place.wrong = counted.wrong(limits.user, now);
    if (counts_for_address(attempt, place.source))
        if (Budget* address = addresses_.find(attempt.address)) {
            address->cut_to(limits.address, now);
            place.room = std::max(place.room, room_of_address(*address, limits.address, now));
        }
    if (place.room != Room::free) return place;

    User& begun = users_.find_or_make(attempt.user);
    begun.budget(attempt, place.source, limits, now).begin(now);
    keep_user(attempt.user, begun, limits, now);
    if (counts_for_address(attempt, place.source)) {
        Budget& address = addresses_.find_or_make(attempt.address);
        address.begin(now);
        keep_address(attempt.address, address, limits, now);
    }
    return place;
}

void MemoryCounters::settle(const Attempt& attempt, const Place& place, Outcome outcome,
                            const Limits& limits) {
    const std::lock_guard lock(mutex_);
    const Moment now = now_();
    User& user = users_.find_or_make(attempt.user);
    Budget& budget = user.budget(attempt, place.source, limits, now);
    end(budget, outcome, limits.user, now);
    if (outcome == Outcome::right) {
        if (place.source != Source::unknown_addresses) budget.forget_wrong();
        if (!attempt.address.empty()) note_login(user, attempt.address, now);
    }
    keep_user(attempt.user, user, limits, now);
    if (!counts_for_address(attempt, place.source)) return;
    Budget& address = addresses_.find_or_make(attempt.address);
    end(address, outcome, limits.address, now);
    keep_address(attempt.address, address, limits, now);
}

void MemoryCounters::note_login(User& user, const std::string& address, Moment now) {
    const auto found = std::ranges::find(user.known, address, &KnownAddress::address);
    if (found != user.known.end()) {
        found->login = now;
        return;
    }
    if (user.known.size() == most_known_addresses)
        user.known.erase(std::ranges::min_element(user.known, {}, &KnownAddress::login));
    user.known.push_back({address, now});
}

bool MemoryCounters::clear(const std::string& user) {
    const std::lock_guard lock(mutex_);
    const Moment now = now_();
    User* found = users_.find(user);
    if (!found) return false;
    bool had_any = false;
    const auto forget = [&](Budget& budget) {
        had_any |= budget.until > now;
        budget.forget_wrong();
    };
    forget(found->unknown_addresses);
    forget(found->programs);
    for (KnownAddress& known : found->known) forget(known.budget);
    return had_any;
}

bool MemoryCounters::clear_address(const std::string& address) {
    const std::lock_guard lock(mutex_);
    Budget* found = addresses_.find(address);
    if (!found || found->until <= now_()) return false;
    found->forget_wrong();
    return true;
}

std::vector<CountedBudget> MemoryCounters::state(const Attempt& attempt, const Limits& limits) {
    using Of = CountedBudget::Of;
    const std::lock_guard lock(mutex_);
    const Moment now = now_();
    User none;
    User* found = users_.find(attempt.user);
    const Source asked = source_of(found, attempt, limits, now);
    std::vector<CountedBudget> all;
    const auto add = [&](Of of, const Budget& budget, const Limit& limit, bool is_asked) {
        all.push_back(
            {of, budget.wrong(limit, now), limit.most, budget.free_in(limit, now), is_asked});
    };
    const User& user = found ? *found : none;
    add(Of::unknown_addresses, user.unknown_addresses, limits.user,
        asked == Source::unknown_addresses);
    add(Of::programs, user.programs, limits.user, asked == Source::programs);
    for (const KnownAddress& known : user.known)
        if (now - known.login < limits.known_for)
            add(Of::known_address, known.budget, limits.user, known.address == attempt.address);
    if (attempt.address.empty()) return all;
    const Budget* address = addresses_.find(attempt.address);
    add(Of::address, address ? *address : Budget(), limits.address,
        asked == Source::unknown_addresses);
    return all;
}

std::size_t MemoryCounters::user_count() const {
    const std::lock_guard lock(mutex_);
    return users_.size();
}

std::size_t MemoryCounters::address_count() const {
    const std::lock_guard lock(mutex_);
    return addresses_.size();
}

void MemoryCounters::keep_user(const std::string& key, User& user, const Limits& limits,
                               Moment now) {
    std::erase_if(user.known, [&](const KnownAddress& known) {
        return now - known.login >= limits.known_for && known.budget.is_empty(now);
    });
    const auto is_idle = [&](const User& other) {
        return other.unknown_addresses.is_empty(now) && other.programs.is_empty(now) &&
               std::ranges::all_of(other.known, [&](const KnownAddress& known) {
                   return now - known.login >= limits.known_for && known.budget.is_empty(now);
               });
    };
    const std::size_t worth = user.known.empty()
                                  ? std::max(worth_of(user.unknown_addresses, limits.user, now),
                                             worth_of(user.programs, limits.user, now))
                                  : 2;
    users_.keep(key, worth, most_, is_idle);
}

void MemoryCounters::keep_address(const std::string& key, Budget& budget, const Limits& limits,
                                  Moment now) {
    addresses_.keep(key, worth_of(budget, limits.address, now), most_,
                    [now](const Budget& other) { return other.is_empty(now); });
}

}  // namespace orvo::throttle
