#pragma once

// Late-bound calls: members by name, arguments and results as variants, as a script makes them.
// Called on the object's own thread; arguments are borrowed, results are the caller's own. A call
// holds a reference of its own to the object while it runs. All raise 91 on an empty object, 438
// for a member that the object lacks, and what the member raised.

#include <initializer_list>
#include <span>

#include "platform/values/object.h"
#include "platform/values/variant.h"

namespace orvo::late {

Variant call(const Object& object, TextView member, std::initializer_list<Variant> arguments = {});

// The same, with arguments that the member may change.
Variant call_by_reference(const Object& object, TextView member, std::span<Variant> arguments);

Variant get(const Object& object, TextView property, std::initializer_list<Variant> indices = {});

void put(const Object& object, TextView property, const Variant& value,
         std::initializer_list<Variant> indices = {});

// The object's default value, or one item of it (`session("REMOTE_USER")`).
Variant value_of(const Object& object, std::initializer_list<Variant> indices = {});
void put_value(const Object& object, const Variant& value,
               std::initializer_list<Variant> indices = {});

}  // namespace orvo::late
