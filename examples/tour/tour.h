#pragma once

// What the parts of the tour share.

#include <string>

#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/failure.h"
#include "platform/values/values.h"

namespace tour {

using namespace orvo;

// One line: what, and what came of it.
void show(const std::string& what, const Text& value);
void show(const std::string& what, const Variant& value);
// Says so, and lets the tour end with a failure, where something is not as it should be.
void expect(bool right, const std::string& what);

// The containers. `info`: loaded settings.
void work_with_members(const Object& info);
void work_with_profiles(const Object& info);

}  // namespace tour
