#pragma once

#include <filesystem>
#include <functional>
#include <span>

#include "suite/directory/embedded/store/sqlite.h"

namespace orvo::directory::embedded {

// What brings the tables from one version to the next, within a transaction.
using MigrationStep = std::function<void(Database&)>;

// Brings a directory's file from its version to the newest, steps.size() + 1: the first step is
// that from version 1. A copy of an older file is kept beside it (".before-v2" where the newest is
// 2, with a number where such a copy is there already); then all steps are one transaction, and
// where one fails the file is as it was. Raises result code 81 for a file of a newer version.
void migrate(const std::filesystem::path& file, std::span<const MigrationStep> steps);

}  // namespace orvo::directory::embedded
