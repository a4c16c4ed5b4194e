#include "platform/objects/files/usable_path.h"

#include "platform/interfaces/call.h"
#include "platform/interfaces/late_call.h"
#include "platform/objects/context/app_server.h"
#include "platform/objects/files/file_access.h"
#include "platform/objects/files/opened_file.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void raise_not_allowed(const fs::path& path) {
    throw Failure(
        runtime_error::permission_denied, {},
        u"Permission denied: the site does not allow pages to use " + from_utf8(path.string()));
}

// Whether the thread's context allows the file.
bool is_allowed(const Ref<ObjectContext>& context, const fs::path& resolved) {
    Variant access;
    try {
        access = call<&ObjectContext::Item>(context, file_access_item);
    } catch (const Failure&) {  // it has no such item
        return false;
    }
    return late::call(access.to<Object>(), u"Allows", {from_utf8(resolved.string())}).to<bool>();
}

}  // namespace

UsablePath usable_path(const Text& given) {
    if (given.empty()) raise_runtime_error(runtime_error::invalid_call);
    return usable_path(fs::path(to_utf8(replaced(given, u"\\", u"/"))));
}

UsablePath usable_path(const fs::path& given) {
    // The system would take what stands in front of it.
    if (given.native().find('\0') != std::string::npos)
        raise_runtime_error(runtime_error::invalid_call);
    std::error_code error;
    fs::path path = fs::absolute(given, error).lexically_normal();
    if (!path.has_filename()) path = path.parent_path();
    const Ref<ObjectContext> context = AppServerObject().GetObjectContext();
    if (!context) return {path};
    // Before ".." is taken away: a link may lead elsewhere.
    fs::path resolved = fs::weakly_canonical(fs::absolute(given, error), error);
    if (error) raise_not_allowed(given);
    if (!resolved.has_filename()) resolved = resolved.parent_path();
    if (!is_allowed(context, resolved)) raise_not_allowed(given);
    return {resolved, true};
}

void require_allowed_below(const UsablePath& folder) {
    const Ref<ObjectContext> context = AppServerObject().GetObjectContext();
    if (!context) return;
    std::error_code error;
    for (fs::recursive_directory_iterator entry(folder.path, error), end; !error && entry != end;
         entry.increment(error))
        if (!is_allowed(context, entry->path())) raise_not_allowed(entry->path());
    if (error) raise_file_error(error.value());
}

}  // namespace orvo
