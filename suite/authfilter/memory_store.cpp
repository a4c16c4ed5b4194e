#include "suite/authfilter/memory_store.h"

#include <algorithm>

#include "platform/values/failure.h"
#include "suite/directory/names/written_name.h"

namespace orvo::authfilter {
namespace {

constexpr std::chrono::minutes sweep_interval{1};

[[noreturn]] void refuse(TextView what, std::size_t most) {
    throw Failure(runtime_error::out_of_memory, {},
                  u"The authorization filter holds " + decimal(static_cast<long long>(most)) +
                      u" live " + Text(what) + u", its most; a new one is refused");
}

}  // namespace

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
    if (login.is_only_one) end_others_of(login, user);
    if (!logins_.contains(login.guid) && logins_.size() >= limits_.most) {
        sweep();
        if (logins_.size() >= limits_.most) refuse(u"logins", limits_.most);
    }
    end_login(login.guid);
    guids_of_user_[user].insert(login.guid);
    logins_.insert_or_assign(login.guid, HeldLogin{login, now_() + login.timeout, std::move(user)});
}

bool MemoryStore::ask(const Text& guid, std::int32_t application) {
    const std::lock_guard guard(lock_);
    const auto found = logins_.find(guid);
    if (found == logins_.end()) return false;
    const auto now = now_();
    auto& [login, ends, user] = found->second;
    if (ends <= now) return false;
    ends = now + login.timeout;
    return std::ranges::find(login.applications, application) != login.applications.end();
}

void MemoryStore::forget(const Text& guid) {
    const std::lock_guard guard(lock_);
    end_login(guid);
    records_.erase(guid);
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
    records_.erase(found);
    return records_.end();
}

bool MemoryStore::has_live_login(const Text& guid) const {
    const auto found = logins_.find(guid);
    return found != logins_.end() && found->second.ends > now_();
}

void MemoryStore::hold(const Text& guid, Record record) {
    if (!records_.contains(guid) && records_.size() >= limits_.most) {
        sweep();
        if (records_.size() >= limits_.most) refuse(u"records", limits_.most);
    }
    records_.insert_or_assign(guid,
                              HeldRecord{std::move(record), now_() + limits_.record_lifetime});
}

void MemoryStore::end_login(const Text& guid) {
    const auto found = logins_.find(guid);
    if (found == logins_.end()) return;
    const auto user = guids_of_user_.find(found->second.user);
    user->second.erase(guid);
    if (user->second.empty()) guids_of_user_.erase(user);
    logins_.erase(found);
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

// The entry that the record tells of, so that a name counts as one however it was typed; without a
// readable one the name.
Text MemoryStore::user_key(const Login& login) const {
    const auto record = records_.find(login.guid);
    if (record != records_.end() && !record->second.record.account_path.empty()) {
        const auto name = directory::DistinguishedName::try_parse(
            directory::full_name(record->second.record.account_path));
        if (name) return from_utf8(name->key());
    }
    return lower(trimmed(login.user));
}

void MemoryStore::end_others_of(const Login& login, const Text& user) {
    const auto held = guids_of_user_.find(user);
    if (held == guids_of_user_.end()) return;
    for (const Text& guid : std::vector<Text>(held->second.begin(), held->second.end())) {
        if (guid == login.guid) continue;
        end_login(guid);
        records_.erase(guid);
    }
}

void MemoryStore::sweep() {
    const auto now = now_();
    std::vector<Text> ended;
    for (const auto& [guid, held] : logins_)
        if (held.ends <= now) ended.push_back(guid);
    for (const Text& guid : ended) end_login(guid);
    std::erase_if(records_, [&](const auto& held) {
        return held.second.ends <= now && !logins_.contains(held.first);
    });
    next_sweep_ = now + sweep_interval;
}

void MemoryStore::sweep_if_due() {
    if (now_() >= next_sweep_) sweep();
}

}  // namespace orvo::authfilter
