#pragma once

// Paths as scripts give them. On the thread whose context decides.

#include <filesystem>

#include "platform/values/text.h"

namespace orvo {

// A path that a script gave, ready to be used.
struct UsablePath {
    std::filesystem::path path;  // absolute; where access is limited, with links resolved
    bool is_limited = false;     // a link that has come into its place meanwhile is not followed
};

// "\" means "/"; a relative path begins at the current folder. Raises 5 for an empty text and for a
// path with a NUL, 70 where the thread's context does not allow the file.
UsablePath usable_path(const Text& given);
UsablePath usable_path(const std::filesystem::path& given);

// Raises 70 where a folder, or one in it, holds something that the thread's context does not allow.
// Links count for themselves, not for what they lead to.
void require_allowed_below(const UsablePath& folder);

}  // namespace orvo
