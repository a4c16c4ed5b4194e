#pragma once

// Registering a module from outside, as a tool does. Any thread.

#include <filesystem>

namespace orvo::runtime {

// Load a module and have it register itself or take itself out again (DllRegisterServer,
// DllUnregisterServer). Raise Failure with the module and the reason.
void register_module_file(const std::filesystem::path& module);
void unregister_module_file(const std::filesystem::path& module);

}  // namespace orvo::runtime
