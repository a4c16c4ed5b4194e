#include "platform/objects/dictionary/dictionary.h"

#include "platform/interfaces/enumerator.h"
#include "platform/values/values.h"

namespace orvo {
namespace {

constexpr std::int32_t element_not_found = 32811;

}  // namespace

dictionary::Texts DictionaryObject::texts() const {
    return mode_ == BinaryCompare ? dictionary::Texts::exactly : dictionary::Texts::ignoring_case;
}

bool DictionaryObject::is_same(const Wanted& wanted, const Entry& entry) const {
    return wanted.hash == entry.hash && dictionary::are_equal(wanted.key, entry.key, texts());
}

DictionaryObject::Index::iterator DictionaryObject::find_or_raise(const Wanted& wanted) {
    const auto found = index_.find(wanted);
    if (found == index_.end()) raise_runtime_error(element_not_found);
    return found;
}

void DictionaryObject::append(const Wanted& wanted, Variant item) {
    entries_.push_back({wanted.key, std::move(item), wanted.hash});
    try {
        index_.insert(std::prev(entries_.end()));
    } catch (...) {  // list and index hold the same entries
        entries_.pop_back();
        throw;
    }
}

void DictionaryObject::SetItem(Variant& key, Variant& item) {
    const Wanted asked = wanted(key);
    const auto found = index_.find(asked);
    if (found != index_.end())
        (*found)->item = item;
    else
        append(asked, item);
}

Variant DictionaryObject::Item(Variant& key) {
    const Wanted asked = wanted(key);
    const auto found = index_.find(asked);
    if (found != index_.end()) return (*found)->item;
    append(asked, {});
    return {};
}

void DictionaryObject::Add(Variant& key, Variant& item) {
    const Wanted asked = wanted(key);
    if (index_.contains(asked)) raise_runtime_error(runtime_error::duplicate_key);
    append(asked, item);
}

bool DictionaryObject::Exists(Variant& key) { return index_.contains(wanted(key)); }

template <auto part>
Variant DictionaryObject::all() const {
    Values values(0, static_cast<std::int32_t>(entries_.size()));
    auto value = values.begin();
    for (const Entry& entry : entries_) *value++ = entry.*part;
    return values;
}

Variant DictionaryObject::Items() { return all<&Entry::item>(); }

Variant DictionaryObject::Keys() { return all<&Entry::key>(); }

void DictionaryObject::SetKey(Variant& key, Variant& new_key) {
    const auto found = find_or_raise(wanted(key));
    const Wanted asked = wanted(new_key);
    const Place place = *found;
    const auto other = index_.find(asked);
    if (other != index_.end() && *other != place) raise_runtime_error(runtime_error::duplicate_key);
    Variant kept = new_key;
    auto node = index_.extract(found);
    place->key = std::move(kept);
    place->hash = asked.hash;
    index_.insert(std::move(node));
}

void DictionaryObject::Remove(Variant& key) {
    const auto found = find_or_raise(wanted(key));
    const Place place = *found;
    index_.erase(found);
    // An item's own destruction may come back to this dictionary: the entry is out of it by then.
    std::list<Entry> removed;
    removed.splice(removed.begin(), entries_, place);
}

void DictionaryObject::RemoveAll() {
    index_.clear();
    std::list<Entry> removed = std::move(entries_);
    entries_.clear();
}

void DictionaryObject::SetCompareMode(std::int32_t mode) {
    if (!entries_.empty() || mode < 0) raise_runtime_error(runtime_error::invalid_call);
    mode_ = mode;
}

Object DictionaryObject::NewEnum() {
    std::vector<Variant> keys;
    keys.reserve(entries_.size());
    for (const Entry& entry : entries_) keys.push_back(entry.key);
    return make_enumerator(std::move(keys));
}

Variant DictionaryObject::HashVal(Variant& key) {
    return static_cast<std::int32_t>(wanted(key).hash & 0x7FFFFFFF);
}

template struct detail::callee<Dictionary>;

}  // namespace orvo
