#pragma once

// Which files a page may use: only those below some folders, after all links are resolved. A thread
// without an object context (a script file's) may use any.

#include <filesystem>
#include <functional>
#include <vector>

#include "platform/values/object.h"
#include "platform/values/text.h"

namespace orvo {

// The item of an object context that says so (platform/objects/context/context_scope.h). A context
// without the item allows no files at all.
inline constexpr const char16_t* file_access_item = u"OrvoPlatform.FileAccess";

// Files that are not to be used although they lie below an allowed folder.
using ExceptedFiles = std::function<bool(const std::filesystem::path& resolved)>;

// That item: files below these folders, whose links are resolved. It belongs to the calling thread,
// as the context does.
Object make_file_access(std::vector<std::filesystem::path> folders, ExceptedFiles excepted = {});

}  // namespace orvo
