#pragma once

// What the views of one open store share.

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

#include "suite/directory/embedded/store/attribute_names.h"
#include "suite/directory/embedded/store/sqlite.h"
#include "suite/directory/embedded/store/write_queue.h"
#include "suite/directory/schema/schema.h"

namespace orvo::directory::embedded {

// Used by one thread at a time.
struct Connection {
    // `schema` must live as long.
    Connection(const std::filesystem::path& file, const Schema& schema);

    const Schema& schema;
    Database database;
    AttributeNames names;
    bool is_synced = true;     // the log at each commit, not only where it is brought in
    bool is_for_many = false;  // it uses much memory, and is not kept
};

// Connections that nobody uses just now, and the order of the writers. Thread-safe.
class StoreFile {
public:
    explicit StoreFile(std::filesystem::path path);

    const std::filesystem::path& path() const { return path_; }
    const std::shared_ptr<const Schema>& schema() const { return schema_; }
    WriteQueue& writers() { return writers_; }

    std::unique_ptr<Connection> acquire();
    // A connection whose transaction is over.
    void release(std::unique_ptr<Connection> connection) noexcept;

    // A number that changes with every commit.
    std::uint64_t version();

private:
    static constexpr std::size_t most_idle = 16;

    std::filesystem::path path_;
    std::shared_ptr<const Schema> schema_;
    WriteQueue writers_;
    std::mutex idle_mutex_;
    std::vector<std::unique_ptr<Connection>> idle_;
    std::mutex watch_mutex_;
    Database watch_;  // never writes, so that every commit is one of others
};

}  // namespace orvo::directory::embedded
