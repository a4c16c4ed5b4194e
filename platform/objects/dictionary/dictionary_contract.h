#pragma once

// The dictionary, as callers see it: items by key, in the order in which they were added.
//
// On Windows the system has an implementation of its own; identifiers, slot numbers and member
// numbers are its binary interface. All keys and items are passed by reference; none is changed.
//
// Keys: numbers and dates are equal by value, whatever their type (1 and 1.0, but not "1" and 1);
// texts by the compare mode; objects are equal to themselves. An array is no key (5).
//
// A dictionary belongs to the thread that made it, and owns copies of its keys and items.

#include "platform/interfaces/interface.h"
#include "platform/values/variant.h"

namespace orvo {

enum CompareMode : std::int32_t { BinaryCompare = 0, TextCompare = 1, DatabaseCompare = 2 };

class Dictionary {
public:
    virtual void SetItemObject(Variant& key, Variant& item) = 0;
    // Adds a key that is not there yet.
    virtual void SetItem(Variant& key, Variant& item) = 0;
    // Reading a key that is not there adds it, with an empty item.
    virtual Variant Item(Variant& key) = 0;
    // Raises 457 for a key that is there already.
    virtual void Add(Variant& key, Variant& item) = 0;
    virtual std::int32_t Count() = 0;
    virtual bool Exists(Variant& key) = 0;
    // All items, as an array from 0.
    virtual Variant Items() = 0;
    // Gives an entry another key. Raises 32811 where there is no such entry, 457 where another one
    // has the new key.
    virtual void SetKey(Variant& key, Variant& new_key) = 0;
    virtual Variant Keys() = 0;
    // Raises 32811 where there is no such key.
    virtual void Remove(Variant& key) = 0;
    virtual void RemoveAll() = 0;
    // How texts are compared as keys: 0 exactly, all others without regard to case. Raises 5 while
    // there are entries, and for a negative mode.
    virtual void SetCompareMode(std::int32_t mode) = 0;
    virtual std::int32_t CompareMode() = 0;
    // Over the keys.
    virtual Object NewEnum() = 0;
    virtual Variant HashVal(Variant& key) = 0;

protected:
    ~Dictionary() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<Dictionary> = describe<Dictionary>(
    "IDictionary", "42c642c1-97e1-11cf-978f-00a02463e06f",
    put_reference<&Dictionary::SetItemObject>("Item", "Key", "item").as_default(),
    put<&Dictionary::SetItem>("Item", "Key", "item").as_default(),
    get<&Dictionary::Item>("Item", "Key").as_default(),
    method<&Dictionary::Add>("Add", "Key", "Item").id(1),
    get<&Dictionary::Count>("Count").id(2),
    method<&Dictionary::Exists>("Exists", "Key").id(3),
    method<&Dictionary::Items>("Items").id(4),
    put<&Dictionary::SetKey>("Key", "Key", "newKey").id(5),
    method<&Dictionary::Keys>("Keys").id(6),
    method<&Dictionary::Remove>("Remove", "Key").id(7),
    method<&Dictionary::RemoveAll>("RemoveAll").id(8),
    put<&Dictionary::SetCompareMode>("CompareMode", "mode").id(9),
    get<&Dictionary::CompareMode>("CompareMode").id(9),
    method<&Dictionary::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM),
    get<&Dictionary::HashVal>("HashVal", "Key").id(10).hidden());
// clang-format on

inline constexpr const char16_t* dictionary_progid = u"Scripting.Dictionary";

}  // namespace orvo
