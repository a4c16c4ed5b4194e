#pragma once

// What is in a store's file.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

#include "suite/directory/embedded/store/sqlite.h"
#include "suite/directory/schema/schema.h"

namespace orvo::directory::embedded {

// In the header of the file (`PRAGMA application_id`): it is a directory.
inline constexpr std::int32_t application_id = 0x4F72766F;

// The version of the tables (`PRAGMA user_version`), and of the keys in them: a change of how
// values are compared or listed is a new version, too.
inline constexpr int tables_version = 1;

// In a transaction, in an empty database.
void create_tables(Database& database, const Schema& schema);

std::shared_ptr<const Schema> read_schema(Database& database);

}  // namespace orvo::directory::embedded
