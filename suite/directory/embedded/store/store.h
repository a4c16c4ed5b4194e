#pragma once

// The embedded directory's file: entries in a tree of names, found by name or by what indexes say
// of a filter. It knows the schema, but neither who asks nor what a password is: that is for the
// rooms above.
//
// One SQLite database with a write-ahead log. Any number of processes and threads use one file;
// whoever reads never waits for a writer.

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>

#include "suite/directory/embedded/store/backup.h"
#include "suite/directory/embedded/store/reading.h"
#include "suite/directory/embedded/store/writing.h"
#include "suite/directory/schema/schema.h"

namespace orvo::directory::embedded {

// Thread-safe.
class Store {
public:
    // A new file of mode 0600 with this schema. Raises result code 80 where there is one already,
    // or the log of one, and where it cannot be made.
    static void create(const std::filesystem::path& file, const Schema& schema);

    // The store of a file, one for the process as long as somebody holds it. Raises 81 with the
    // file and the reason where it is not there, cannot be opened, is no directory (nothing is
    // written then) or one of a newer version. A file of an older version is migrated
    // (migration.h).
    static std::shared_ptr<Store> open(const std::filesystem::path& file);

    explicit Store(std::shared_ptr<StoreFile> file);

    const std::filesystem::path& path() const;
    std::shared_ptr<const Schema> schema() const;

    // Raises 81 where the file is no longer there under its name, or another one is.
    void require_file() const;

    Reading read();
    // `wait`: that it waits for other writers, here and in other processes.
    Writing write(Durability durability = Durability::full,
                  std::chrono::milliseconds wait = std::chrono::seconds(5));

    // Copies the store as it is now to a new file of mode 0600, while others read and write. Raises
    // 80 where the copy cannot be made, or something of that name is there.
    void backup(const std::filesystem::path& to, const Progress& tell);

    // Changes with every commit, also of other processes: what was derived from the store is
    // current as long as it is the same, while the store is open.
    std::uint64_t version() const;

private:
    std::shared_ptr<StoreFile> file_;
    std::uint64_t device_, number_;  // of the file
};

}  // namespace orvo::directory::embedded
