#pragma once

// What the text of a path says, whether there is such a file or not. "\" means "/". Any thread;
// nothing fails but for want of memory.

#include "platform/values/text.h"

namespace orvo::file_names {

Text build_path(const Text& path, const Text& name);
// The last part of a path, without "/" behind it; empty for a root.
Text name_of(const Text& path);
// The last part without and with what stands behind its last dot.
Text base_of(const Text& path);
Text extension_of(const Text& path);
// All but the last part; empty where there is no more.
Text parent_of(const Text& path);
// "/" for a path that begins there; there are no drives otherwise.
Text drive_of(const Text& path);

// Whether a name agrees with a pattern, in which "*" is any text and "?" any character.
bool agrees(TextView name, TextView pattern);
bool is_pattern(TextView name);

}  // namespace orvo::file_names
