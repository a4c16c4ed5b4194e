#pragma once

// What other makers' objects tell of their members: type information (ITypeInfo).

#include <optional>

#include "platform/interfaces/late_member.h"

namespace orvo::detail {

// Nothing for an object that has no type information, or none of this member. The member is not
// called. On the object's own thread; raises nothing.
std::optional<late::MemberKind> try_described_kind(const Object& object, late::MemberId member);

}  // namespace orvo::detail
