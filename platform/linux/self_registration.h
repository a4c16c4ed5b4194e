#pragma once

// Registering a module from outside, as a tool does. Any thread.

#include <filesystem>
#include <span>

#include "platform/linux/manifest.h"

namespace orvo::runtime {

// Load a module and have it register itself or take itself out again (DllRegisterServer,
// DllUnregisterServer). Where a module cannot do the latter, because its file is gone, say, the
// manifest that is named after it is taken out. Raise Failure with the module and the reason.
void register_module_file(const std::filesystem::path& module);
void unregister_module_file(const std::filesystem::path& module);

// The same for a module without these exports. Its manifest is named after its file. Refused, too,
// is a class that the module does not know.
void register_module_classes(const std::filesystem::path& module,
                             std::span<const ManifestClass> classes);
void unregister_module_classes(const std::filesystem::path& module);

}  // namespace orvo::runtime
