#pragma once

// Enumerators (IEnumVARIANT): what "For Each" walks through. An enumerator owns its items and
// belongs to the thread that made it, as any object does.

#include <vector>

#include "platform/values/variant.h"

namespace orvo {

// An enumerator over these items, as a collection's member `_NewEnum` answers it. Clones walk the
// same items on their own.
Object make_enumerator(std::vector<Variant> items);

namespace late {

// The items of anybody's collection, as "For Each" meets them. Raises 91 on an empty object, 451
// (object not a collection) for one that has no enumerator.
std::vector<Variant> items_of(const Object& collection);

}  // namespace late
}  // namespace orvo
