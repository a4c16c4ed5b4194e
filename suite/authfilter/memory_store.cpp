#include "suite/authfilter/memory_store.h"

#include <algorithm>

#include "platform/values/failure.h"
#include "suite/authfilter/user_key.h"

namespace orvo::authfilter {
namespace {

constexpr std::chrono::minutes sweep_interval{1};

[[noreturn]] void refuse(TextView what, std::size_t most) {
    throw Failure(runtime_error::out_of_memory, {},
                  u"The authorization filter holds " + decimal(static_cast<long long>(most)) +
                      u" live " + Text(what) + u", its most; a new one is refused");
}

}  // namespace

void MemoryStore::GuidsByUser::remove(const Text& user, const Text& guid) {
    const auto found = guids_.find(user);
    if (found == guids_.end()) return;
    found->second.erase(guid);
    if (found->second.empty()) guids_.erase(found);
}

std::vector<Text> MemoryStore::GuidsByUser::of(const Text& user) const {
    const auto found = guids_.find(user);
    if (found == guids_.end()) return {};
    return {found->second.begin(), found->second.end()};
}

MemoryStore::MemoryStore(Limits limits, std::function<Clock::time_point()> now)
    : limits_(limits), now_(std::move(now)), next_sweep_(now_() + sweep_interval) {}

std::optional<Record> MemoryStore::find(const Text& guid) {
    const std::lock_guard guard(lock_);
    const auto found = live_record(guid);
    if (found == records_.end()) return {};
    found->second.ends = now_() + limits_.record_lifetime;
    return found->second.record.clone();
}

bool MemoryStore::try_create(const Text& guid) {
    const std::lock_guard guard(lock_);
    sweep_if_due();
    if (live_record(guid) != records_.end()) return false;
    hold(guid, {});
    return true;
}

void MemoryStore::save(const Text& guid, const Record& record) {
    Record copy = record.clone();
    const std::lock_guard guard(lock_);
    sweep_if_due();
    // Whoever takes a GUID over has none of the former user's applications.
    if (!is_of_same_user(guid, copy)) end_login(guid);
    hold(guid, std::move(copy));
}

void MemoryStore::begin(const Login& login) {
    const std::lock_guard guard(lock_);
    sweep_if_due();
    Text user = user_key(login);
    if (login.is_only_one) end_logins_of(user, login.guid);
    make_room_of_user(login.guid, user, logins_of_user_);
    if (!logins_.contains(login.guid) && logins_.size() >= limits_.most) {
        sweep();
        if (logins_.size() >= limits_.most) refuse(u"logins", limits_.most);
    }
    end_login(login.guid);
    logins_of_user_.add(user, login.guid);
    const auto now = now_();
    logins_.insert_or_assign(login.guid,
                             HeldLogin{login, now + login.timeout, std::move(user), ++begun_, now});
}

bool MemoryStore::ask(const Text& guid, std::int32_t application) {
    const std::lock_guard guard(lock_);
    const auto found = logins_.find(guid);
    if (found == logins_.end()) return false;
    const auto now = now_();
    HeldLogin& held = found->second;
    if (held.ends <= now) return false;
    held.ends = now + held.login.timeout;
    return std::ranges::find(held.login.applications, application) != held.login.applications.end();
}

Text MemoryStore::user_of(const Text& guid) {
    const std::lock_guard guard(lock_);
    if (!has_live_login(guid)) return {};
    const auto record = records_.find(guid);
    const bool has_path = record != records_.end() && !record->second.record.account_path.empty();
    return has_path ? record->second.record.account_path : logins_.at(guid).login.user;
}

void MemoryStore::forget(const Text& guid) {
    const std::lock_guard guard(lock_);
    end_login(guid);
    drop_record(guid);
}

std::vector<LiveLoginFacts> MemoryStore::logins_of(const Text& guid) {
    const std::lock_guard guard(lock_);
    std::vector<LiveLoginFacts> facts;
    if (!has_live_login(guid)) return facts;
    const auto now = now_();
    const auto seconds_since = [&](Clock::time_point time) {
        return std::chrono::floor<std::chrono::seconds>(now - time);
    };
    for (const Text& other : logins_of_user_.of(logins_.at(guid).user))
        if (const HeldLogin& held = logins_.at(other); held.ends > now)
            facts.push_back({held.number, seconds_since(held.began),
                             seconds_since(held.ends - held.login.timeout), other == guid});
    std::ranges::sort(facts, std::greater(), &LiveLoginFacts::number);
    return facts;
}

bool MemoryStore::try_end(const Text& guid, std::uint64_t number) {
    const std::lock_guard guard(lock_);
    if (!has_live_login(guid)) return false;
    for (const Text& other : logins_of_user_.of(logins_.at(guid).user)) {
        if (logins_.at(other).number != number || !has_live_login(other)) continue;
        end_login(other);
        drop_record(other);
        return true;
    }
    return false;
}

std::size_t MemoryStore::end_others(const Text& guid) {
    const std::lock_guard guard(lock_);
    if (!has_live_login(guid)) return 0;
    return end_logins_of(Text(logins_.at(guid).user), guid);
}

std::size_t MemoryStore::end_all_of(const Text& account, const Text& except) {
    const Text user = user_key_of(account, account);
    const std::lock_guard guard(lock_);
    const std::size_t live = end_logins_of(user, except);
    for (const Text& guid : records_of_user_.of(user))
        if (guid != except) drop_record(guid);
    return live;
}

void MemoryStore::set_most_of_user(std::size_t most) {
    const std::lock_guard guard(lock_);
    limits_.most_of_user = most;
}

std::size_t MemoryStore::record_count() const {
    const std::lock_guard guard(lock_);
    return records_.size();
}

std::size_t MemoryStore::login_count() const {
    const std::lock_guard guard(lock_);
    return logins_.size();
}

MemoryStore::Records::iterator MemoryStore::live_record(const Text& guid) {
    const auto found = records_.find(guid);
    if (found == records_.end() || found->second.ends > now_() || has_live_login(guid))
        return found;
    drop_record(found);
    return records_.end();
}

bool MemoryStore::has_live_login(const Text& guid) const {
    const auto found = logins_.find(guid);
    return found != logins_.end() && found->second.ends > now_();
}

void MemoryStore::hold(const Text& guid, Record record) {
    const Text user = user_key_of(record.account_path, record.user_name);
    if (!user.empty()) make_room_of_user(guid, user, records_of_user_);
    if (!records_.contains(guid) && records_.size() >= limits_.most) {
        sweep();
        if (records_.size() >= limits_.most) refuse(u"records", limits_.most);
    }
    drop_record(guid);
    if (!user.empty()) records_of_user_.add(user, guid);
    records_.insert_or_assign(
        guid, HeldRecord{std::move(record), now_() + limits_.record_lifetime, user});
}

void MemoryStore::end_login(const Text& guid) {
    const auto found = logins_.find(guid);
    if (found == logins_.end()) return;
    logins_of_user_.remove(found->second.user, guid);
    logins_.erase(found);
}

void MemoryStore::drop_record(const Text& guid) {
    if (const auto found = records_.find(guid); found != records_.end()) drop_record(found);
}

void MemoryStore::drop_record(Records::iterator record) {
    records_of_user_.remove(record->second.user, record->first);
    records_.erase(record);
}

bool MemoryStore::is_of_same_user(const Text& guid, const Record& record) const {
    const auto before = records_.find(guid);
    if (before != records_.end() && !before->second.record.user_name.empty())
        return before->second.record.account_path == record.account_path &&
               before->second.record.user_name == record.user_name;
    const auto login = logins_.find(guid);
    return login != logins_.end() &&
           equal_ignoring_case(login->second.login.user, record.user_name);
}

Text MemoryStore::user_key(const Login& login) const {
    const auto record = records_.find(login.guid);
    return user_key_of(record == records_.end() ? Text() : record->second.record.account_path,
                       login.user);
}

std::size_t MemoryStore::end_logins_of(const Text& user, const Text& except) {
    std::size_t live = 0;
    for (const Text& guid : logins_of_user_.of(user)) {
        if (guid == except) continue;
        if (has_live_login(guid)) ++live;
        end_login(guid);
        drop_record(guid);
    }
    return live;
}

// What the user has under other GUIDs is counted; the one that was used longest ago goes, those
// without a live login first.
void MemoryStore::make_room_of_user(const Text& guid, const Text& user, const GuidsByUser& held) {
    std::vector<Text> others = held.of(user);
    std::erase(others, guid);
    while (!others.empty() && others.size() >= limits_.most_of_user) {
        const auto oldest = std::ranges::min_element(others, {}, [this](const Text& other) {
            return std::pair(has_live_login(other), last_use(other));
        });
        end_login(*oldest);
        drop_record(*oldest);
        others.erase(oldest);
    }
}

Clock::time_point MemoryStore::last_use(const Text& guid) const {
    const auto login = logins_.find(guid);
    if (login != logins_.end()) return login->second.ends - login->second.login.timeout;
    return records_.at(guid).ends - limits_.record_lifetime;
}

void MemoryStore::sweep() {
    const auto now = now_();
    std::vector<Text> ended;
    for (const auto& [guid, held] : logins_)
        if (held.ends <= now) ended.push_back(guid);
    for (const Text& guid : ended) end_login(guid);
    for (auto record = records_.begin(); record != records_.end();) {
        const auto next = std::next(record);
        if (record->second.ends <= now && !logins_.contains(record->first)) drop_record(record);
        record = next;
    }
    next_sweep_ = now + sweep_interval;
}

void MemoryStore::sweep_if_due() {
    if (now_() >= next_sweep_) sweep();
}

}  // namespace orvo::authfilter
