#include "suite/directory/embedded/store/migration.h"

#include <cstddef>
#include <string>

#include "suite/directory/embedded/store/backup.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::embedded {
namespace {

std::size_t version_of(Database& database) {
    return static_cast<std::size_t>(database.number("PRAGMA user_version", 0));
}

std::filesystem::path free_name(const std::filesystem::path& file, std::size_t version) {
    const std::string name = file.string() + ".before-v" + std::to_string(version);
    std::string numbered = name;
    for (int number = 2; std::filesystem::exists(numbered); ++number)
        numbered = name + "-" + std::to_string(number);
    return numbered;
}

}  // namespace

void migrate(const std::filesystem::path& file, std::span<const MigrationStep> steps) {
    const std::size_t newest = steps.size() + 1;
    Database database(file);
    const std::size_t version = version_of(database);
    if (version == 0 || version > newest)
        raise_code(result_code::server_down, quoted_name(file.string()) + ": it has version " +
                                                 std::to_string(version) +
                                                 ", and this program knows versions from 1 to " +
                                                 std::to_string(newest) + ".");
    if (version == newest) return;
    copy_database(database, free_name(file, newest), [](int, int) {});
    database.run("BEGIN IMMEDIATE");
    // Another process may have been quicker.
    for (std::size_t from = version_of(database); from < newest; ++from) steps[from - 1](database);
    database.execute("PRAGMA user_version = " + std::to_string(newest));
    database.run("COMMIT");
}

}  // namespace orvo::directory::embedded
