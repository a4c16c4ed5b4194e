#include "suite/directory/ldap/memory/entry_cache.h"

#include <algorithm>
#include <utility>

#include "suite/directory/ldap/memory/attribute_lookup.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/password_attributes.h"

namespace orvo::directory::ldap {
namespace {

using std::chrono::milliseconds;

// The lengths keep two keys apart whatever is in their parts.
std::string text_of(const CacheKey& key) {
    return std::to_string(key.server.size()) + ' ' + std::to_string(key.user.size()) + ' ' +
           key.server + key.user + key.entry;
}

// What is known by both; where they differ, as the later one has it.
KnownEntry merged(KnownEntry known, KnownEntry later) {
    for (Attribute& attribute : later.attributes) {
        std::erase_if(known.attributes, [&](const Attribute& other) {
            return ascii::equal_ignoring_case(other.name, attribute.name);
        });
        known.attributes.push_back(std::move(attribute));
    }
    for (std::string& name : later.asked) known.asked.push_back(std::move(name));
    return known;
}

}  // namespace

std::optional<std::vector<std::string>> KnownEntry::try_values(const std::string& name,
                                                               const AttributeTypes& types) const {
    const auto found = find_attribute(attributes, name, types);
    if (found != attributes.end()) return found->values;
    const AttributeType* type = types.find(name);
    const bool comes_unasked =
        type && !type->is_operational && !type->no_user_modification && !is_secret(name);
    const bool is_missing =
        (is_whole && comes_unasked) ||
        std::ranges::any_of(asked, [&](const auto& other) { return types.same(other, name); });
    return is_missing ? std::optional(std::vector<std::string>()) : std::nullopt;
}

void KnownEntry::forget_secrets() {
    std::erase_if(attributes, [](const Attribute& attribute) { return is_secret(attribute.name); });
    std::erase_if(asked, is_secret);
}

CacheSettings EntryCache::settings() const {
    const std::lock_guard lock(mutex_);
    return settings_;
}

void EntryCache::configure(const Variant& names, const Variant& values) {
    const std::lock_guard lock(mutex_);
    settings_ = changed(settings_, names, values);
    is_on_ = settings_.entries != 0;
    lifetime_ = is_on_ ? milliseconds(settings_.time_to_live).count() : bind_lasts.count();
    while (order_.size() > settings_.entries) drop(std::prev(order_.end()));
}

std::size_t EntryCache::clear() {
    const std::lock_guard lock(mutex_);
    const std::size_t count = order_.size();
    by_key_.clear();
    order_.clear();
    return count;
}

bool EntryCache::is_current(const Remembered& known, const EntryKey& entry) const {
    return known.entry && clock_.now() - known.read_at < lifetime() &&
           writes_.mark(entry) == known.write_mark;
}

Remembered EntryCache::find(const CacheKey& key) {
    const std::lock_guard lock(mutex_);
    const auto kept = find_kept(text_of(key), key.mark);
    const bool is_known = kept != order_.end();
    ++(is_known ? hits_ : misses_);
    return is_known ? kept->known : Remembered();
}

EntryCache::Counts EntryCache::counts() const {
    const std::lock_guard lock(mutex_);
    return {hits_, misses_, order_.size()};
}

Remembered EntryCache::add(const CacheKey& key, KnownEntry read, Clock::time_point read_at,
                           std::uint64_t write_mark) {
    read.forget_secrets();
    std::string text = text_of(key);
    const std::lock_guard lock(mutex_);
    const auto kept = find_kept(text, key.mark);
    if (kept != order_.end()) {
        if (!read.is_whole && kept->known.write_mark == write_mark) {
            read = merged(*kept->known.entry, std::move(read));
            read_at = std::min(read_at, kept->known.read_at);
        }
        drop(kept);
    }
    const Remembered known{std::make_shared<const KnownEntry>(std::move(read)), read_at,
                           write_mark};
    order_.push_front({text, known});
    by_key_.emplace(std::move(text), order_.begin());
    evict();
    return known;
}

// The entry as it is kept, which is now the latest used; the end where there is none any more.
EntryCache::Order::iterator EntryCache::find_kept(const std::string& key, const EntryKey& entry) {
    const auto found = by_key_.find(key);
    if (found == by_key_.end()) return order_.end();
    const auto kept = found->second;
    if (!is_current(kept->known, entry)) {
        drop(kept);
        return order_.end();
    }
    order_.splice(order_.begin(), order_, kept);
    return kept;
}

void EntryCache::drop(Order::iterator kept) {
    by_key_.erase(kept->key);
    order_.erase(kept);
}

// Without room there are only those of the last moment.
void EntryCache::evict() {
    const auto is_over = [&](const Kept& kept) {
        return is_on_ ? order_.size() > settings_.entries
                      : clock_.now() - kept.known.read_at >= bind_lasts;
    };
    while (!order_.empty() && is_over(order_.back())) drop(std::prev(order_.end()));
}

}  // namespace orvo::directory::ldap
