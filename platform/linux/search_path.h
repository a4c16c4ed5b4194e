#pragma once

// Where manifests lie. Any thread, while no other one changes the environment. Raises only what
// std::filesystem raises where the current folder is gone and a relative path is given.

#include <filesystem>
#include <optional>
#include <vector>

namespace orvo::runtime {

// The folders in which manifests are looked for, in order, as the environment says now. They need
// not exist.
std::vector<std::filesystem::path> manifest_folders();

// The folder to which a module's manifest is written: the first of ORVO_COMPONENTS, otherwise the
// user's. None when neither that nor the user's home is known.
std::optional<std::filesystem::path> registration_folder();

}  // namespace orvo::runtime
