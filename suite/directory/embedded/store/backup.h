#pragma once

#include <filesystem>
#include <functional>

#include "suite/directory/embedded/store/sqlite.h"

namespace orvo::directory::embedded {

// Told how many pages of all have been copied.
using Progress = std::function<void(int done, int all)>;

// Copies a database as it is now, while others write to it, to a new file of mode 0600, which is
// there only once it is whole. Raises result code 80 where it cannot be made; where something is
// there already nothing is touched. `source` is in no transaction.
void copy_database(Database& source, const std::filesystem::path& to, const Progress& tell);

}  // namespace orvo::directory::embedded
