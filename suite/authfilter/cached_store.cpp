#include "suite/authfilter/cached_store.h"

#include <utility>

namespace orvo::authfilter {

RedisStore::Options CachedStore::told(RedisStore::Options options,
                                      std::function<void(const std::string&)> on_change) {
    options.on_change = std::move(on_change);
    return options;
}

CachedStore::CachedStore(std::shared_ptr<const store::SiteStore> site, RedisStore::Options options,
                         std::function<Clock::time_point()> now)
    : now_(std::move(now)),
      next_sweep_(now_() + longest_use),
      shared_(site, told(std::move(options), [this](const std::string& name) { drop(name); })),
      changes_(
          site->redis, site->redis->key(RedisStore::change_channel),
          [this](std::string_view name) { drop(name); }, [this] { drop_all(); }) {}

std::optional<Record> CachedStore::find(const Text& guid) {
    const auto live = copy_of(stored_name(guid));
    if (!live) return shared_.find(guid);
    if (!live->record) return std::nullopt;
    return live->record->clone();
}

bool CachedStore::ask(const Text& guid, std::int32_t application) {
    const std::string name = stored_name(guid);
    auto live = copy_of(name);
    if (!live) live = read(guid, name);
    return live && live->has(application);
}

Text CachedStore::user_of(const Text& guid) {
    const auto live = copy_of(stored_name(guid));
    return live ? live->user() : shared_.user_of(guid);
}

std::shared_ptr<const RedisStore::Live> CachedStore::copy_of(const std::string& name) {
    if (!changes_.is_listening()) return nullptr;
    const std::lock_guard guard(lock_);
    const auto found = copies_.find(name);
    return found != copies_.end() && found->second.ends > now_() ? found->second.live : nullptr;
}

// What is dropped while it is read is not kept: it may be older than what it was dropped for.
std::shared_ptr<const RedisStore::Live> CachedStore::read(const Text& guid,
                                                          const std::string& name) {
    std::uint64_t reading = 0;
    {
        const std::lock_guard guard(lock_);
        sweep_if_due();
        reading = ++readings_;
        copies_.insert_or_assign(name, Copy{nullptr, reading, now_() + longest_use});
    }
    std::shared_ptr<const Live> live;
    if (auto seen = shared_.ask_all(guid)) live = std::make_shared<const Live>(std::move(*seen));
    const std::lock_guard guard(lock_);
    const auto place = copies_.find(name);
    if (place != copies_.end() && place->second.reading == reading) {
        place->second.live = live;
        if (!live) copies_.erase(place);
    }
    return live;
}

void CachedStore::drop(std::string_view name) {
    const std::lock_guard guard(lock_);
    copies_.erase(std::string(name));
}

void CachedStore::drop_all() {
    const std::lock_guard guard(lock_);
    copies_.clear();
}

void CachedStore::sweep_if_due() {
    const auto now = now_();
    if (now < next_sweep_) return;
    std::erase_if(copies_, [&](const auto& copy) { return copy.second.ends <= now; });
    next_sweep_ = now + longest_use;
}

}  // namespace orvo::authfilter
