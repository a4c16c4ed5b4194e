#pragma once

// What is in a store's file.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

#include "suite/directory/embedded/store/migration.h"
#include "suite/directory/embedded/store/sqlite.h"
#include "suite/directory/schema/schema.h"

namespace orvo::directory::embedded {

// In the header of the file (`PRAGMA application_id`): it is a directory.
inline constexpr std::uint32_t application_id = 0x4F72766F;

// The steps from version 1 of the tables (`PRAGMA user_version`) to that of this program. A version
// is also how values are compared and listed: a change of that is a step that makes the index rows
// anew.
std::span<const MigrationStep> migration_steps();

// In a transaction, in an empty database.
void create_tables(Database& database, const Schema& schema);

std::shared_ptr<const Schema> read_schema(Database& database);

}  // namespace orvo::directory::embedded
