#include "suite/directory/embedded/store/store_file.h"

#include <utility>

#include "suite/directory/embedded/store/tables.h"

namespace orvo::directory::embedded {

// A connection keeps up to 4 MiB of pages. The log is cut to 64 MiB when it begins anew.
Connection::Connection(const std::filesystem::path& file, const Schema& of)
    : schema(of), database(file), names(database, of) {
    database.execute(
        "PRAGMA cache_size = -4096; PRAGMA journal_size_limit = 67108864; PRAGMA synchronous = "
        "FULL");
}

StoreFile::StoreFile(std::filesystem::path path) : path_(std::move(path)), watch_(path_) {
    schema_ = read_schema(watch_);
    idle_.reserve(most_idle);
}

std::unique_ptr<Connection> StoreFile::acquire() {
    {
        const std::lock_guard lock(idle_mutex_);
        if (!idle_.empty()) {
            auto connection = std::move(idle_.back());
            idle_.pop_back();
            return connection;
        }
    }
    return std::make_unique<Connection>(path_, *schema_);
}

void StoreFile::release(std::unique_ptr<Connection> connection) noexcept {
    const std::lock_guard lock(idle_mutex_);
    if (idle_.size() < most_idle && !connection->is_for_many)
        idle_.push_back(std::move(connection));
}

std::uint64_t StoreFile::version() {
    const std::lock_guard lock(watch_mutex_);
    return static_cast<std::uint64_t>(watch_.number("PRAGMA data_version", 0));
}

}  // namespace orvo::directory::embedded
