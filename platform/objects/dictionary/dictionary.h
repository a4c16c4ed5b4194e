#pragma once

// The dictionary of this house; what it promises stands in dictionary_contract.h.

#include <list>
#include <unordered_set>

#include "platform/interfaces/hosted.h"
#include "platform/objects/context/app_server.h"
#include "platform/objects/dictionary/dictionary_contract.h"
#include "platform/objects/dictionary/key.h"

namespace orvo {

class DictionaryObject : public Dictionary {
public:
    // held: where what it keeps is counted.
    explicit DictionaryObject(HeldMemory held = counted_memory()) : held_(std::move(held)) {}

    void SetItemObject(Variant& key, Variant& item) override { SetItem(key, item); }
    void SetItem(Variant& key, Variant& item) override;
    Variant Item(Variant& key) override;
    void Add(Variant& key, Variant& item) override;
    std::int32_t Count() override { return static_cast<std::int32_t>(entries_.size()); }
    bool Exists(Variant& key) override;
    Variant Items() override;
    void SetKey(Variant& key, Variant& new_key) override;
    Variant Keys() override;
    void Remove(Variant& key) override;
    void RemoveAll() override;
    void SetCompareMode(std::int32_t mode) override;
    std::int32_t CompareMode() override { return mode_; }
    Object NewEnum() override;
    Variant HashVal(Variant& key) override;

private:
    struct Entry {
        Variant key;
        Variant item;
        std::size_t hash;

        std::size_t bytes() const;
    };
    using Place = std::list<Entry>::iterator;

    // A key that is looked up.
    struct Wanted {
        const Variant& key;
        std::size_t hash;
    };
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(Place place) const { return place->hash; }
        std::size_t operator()(const Wanted& wanted) const { return wanted.hash; }
    };
    struct Same {
        using is_transparent = void;
        const DictionaryObject* owner;
        bool operator()(Place a, Place b) const { return a == b; }
        bool operator()(const Wanted& a, Place b) const { return owner->is_same(a, *b); }
        bool operator()(Place a, const Wanted& b) const { return owner->is_same(b, *a); }
    };
    using Index = std::unordered_set<Place, Hash, Same>;

    dictionary::Texts texts() const;
    bool is_same(const Wanted& wanted, const Entry& entry) const;
    Wanted wanted(const Variant& key) const { return {key, dictionary::hash_of(key, texts())}; }
    Index::iterator find_or_raise(const Wanted& wanted);
    void append(const Wanted& wanted, Variant item);
    template <auto part>
    Variant all() const;

    HeldMemory held_;
    std::list<Entry> entries_;  // in the order of adding
    Index index_{0, Hash{}, Same{this}};
    std::int32_t mode_ = BinaryCompare;
};

extern template struct detail::callee<Dictionary>;

template <>
inline constexpr auto class_of<DictionaryObject> =
    describe_class<Dictionary>("Scripting.Dictionary", "ee09b103-97e0-11cf-978f-00a02463e06f");

}  // namespace orvo
