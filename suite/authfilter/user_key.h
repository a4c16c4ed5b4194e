#pragma once

#include "platform/values/text.h"

namespace orvo::authfilter {

// What tells users apart: the entry that an account path names, so that a name counts as one
// however it was typed; without a path that can be read the name, without regard to case. Empty
// where there is neither.
Text user_key_of(const Text& account_path, const Text& name);

}  // namespace orvo::authfilter
