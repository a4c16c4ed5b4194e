#pragma once

// Late binding by number: a caller that makes many calls asks for a member's number and kind once.
// Threads and ownership are those of platform/interfaces/late_call.h.
// All but the `try_` ones raise what platform/interfaces/late_call.h raises.

#include <optional>
#include <span>

#include "platform/values/object.h"
#include "platform/values/variant.h"

namespace orvo::late {

using MemberId = std::int32_t;
inline constexpr MemberId default_member = 0;

// Nothing for a name that the object does not know. Raises 91 on an empty object.
std::optional<MemberId> try_member(const Object& object, TextView name);

// What a member is, told without calling it.
struct MemberKind {
    bool is_method = false;
    bool is_readable = false;  // a property that can be read
    bool is_writable = false;
    bool answers_object = false;  // called or read, it always answers an object or nothing
    // Of the method or the reading: all parameters, and how many of them may not be left out.
    int parameters = 0;
    int required = 0;
    bool is_foreign = false;  // it is the object's type information that tells
    bool operator==(const MemberKind&) const = default;
};

// All false for a member that is not there. Nothing where it cannot be told: objects of the house
// tell of all their members, others of those that their type information knows.
std::optional<MemberKind> try_kind_of(const Object& object, MemberId member);

// As a method, or as a property that is read.
Variant call_member(const Object& object, MemberId member, std::span<const Variant> arguments);
// The same, with arguments that the member may change.
Variant call_member_by_reference(const Object& object, MemberId member,
                                 std::span<Variant> arguments);
// As a property only.
Variant get_member(const Object& object, MemberId member, std::span<const Variant> indices = {});
// The same without an index; nothing for a member that cannot be read so: a method, or a property
// that needs an index. Not every object tells the two apart: one that does not may carry a method
// out.
std::optional<Variant> try_get_member(const Object& object, MemberId member);
void put_member(const Object& object, MemberId member, const Variant& value,
                std::span<const Variant> indices = {});

}  // namespace orvo::late
