#pragma once

// Which files a page may use: only those below some folders, after all links are resolved. A thread
// without an object context (a script file's) may use any.

#include <filesystem>
#include <vector>

#include "platform/values/object.h"
#include "platform/values/text.h"

namespace orvo {

// The item of an object context that says so (platform/objects/context/context_scope.h). A context
// without the item allows no files at all.
inline constexpr const char16_t* file_access_item = u"OrvoPlatform.FileAccess";

// That item: files below these folders, which are there. Raises 76 for a folder that is not. It
// belongs to the calling thread, as the context does.
Object make_file_access(const std::vector<std::filesystem::path>& folders);

}  // namespace orvo
