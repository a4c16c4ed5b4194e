#include "platform/objects/dictionary/dictionary.h"

#include "platform/interfaces/enumerator.h"
#include "platform/system/vartypes.h"
#include "platform/values/array_shape.h"

namespace orvo {
namespace {

constexpr std::int32_t element_not_found = 32811;

// Of an entry without texts and arrays: what list and index need for it.
constexpr std::size_t bytes_of_entry = 160;

// What a value keeps beside itself. An object tells for itself what it holds.
std::size_t bytes_beside(const Variant& value) {
    if (value.is_text()) return value.text_view().size() * sizeof(char16_t);
    if (!value.is_array()) return 0;
    const abi::VARIANT& raw = *value.get();
    std::size_t bytes = element_count(value) * raw.parray->cbElements;
    const auto type = static_cast<abi::VARTYPE>(raw.vt & ~abi::VT_ARRAY);
    if (type == abi::VT_VARIANT || type == abi::VT_BSTR)
        for (std::size_t i = 0; i < element_count(value); ++i)
            bytes += bytes_beside(element_at(value, i));
    return bytes;
}

}  // namespace

std::size_t DictionaryObject::Entry::bytes() const {
    return bytes_of_entry + bytes_beside(key) + bytes_beside(item);
}

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
    std::list<Entry> added;
    added.push_back({wanted.key, std::move(item), wanted.hash});
    held_.add(added.back().bytes());
    try {
        index_.insert(added.begin());
    } catch (...) {  // list and index hold the same entries
        held_.subtract(added.back().bytes());
        throw;
    }
    entries_.splice(entries_.end(), added);
}

void DictionaryObject::SetItem(Variant& key, Variant& item) {
    const Wanted asked = wanted(key);
    const auto found = index_.find(asked);
    if (found == index_.end()) return append(asked, item);
    held_.add(bytes_beside(item));
    const Variant before = std::exchange((*found)->item, item);
    held_.subtract(bytes_beside(before));
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
    held_.add(bytes_beside(kept));
    held_.subtract(bytes_beside(place->key));
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
    held_.subtract(removed.back().bytes());
}

void DictionaryObject::RemoveAll() {
    index_.clear();
    std::list<Entry> removed = std::move(entries_);
    entries_.clear();
    held_.set(0);
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
