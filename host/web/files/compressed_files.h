#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "host/web/messages/open_file.h"

namespace orvo::web {

// Files in gzip's form, kept in memory as long as there is room; those that were not wanted for the
// longest time go first (LRU). Any thread.
class CompressedFiles {
public:
    // Larger files are sent as they are.
    static constexpr std::uint64_t largest_file = 4 * 1024 * 1024;
    // Below that nothing is gained.
    static constexpr std::uint64_t smallest_file = 512;

    explicit CompressedFiles(std::size_t most_bytes = 32 * 1024 * 1024) : most_bytes_(most_bytes) {}

    // Null where the file is not worth it. version: names file and content. Raises
    // std::system_error where the file cannot be read.
    std::shared_ptr<const std::string> of(const std::string& version, const OpenFile& file);

    std::size_t kept() const;  // bytes

private:
    struct Entry {
        std::string version;
        std::shared_ptr<const std::string> content;  // null: it did not get smaller
    };
    using Entries = std::list<Entry>;

    static std::size_t size_of(const Entry& entry);
    bool find(const std::string& version, std::shared_ptr<const std::string>& content);
    void keep(Entry entry);

    const std::size_t most_bytes_;
    mutable std::mutex lock_;
    Entries entries_;  // the one used last in front
    std::unordered_map<std::string, Entries::iterator> by_version_;
    std::size_t kept_ = 0;
};

// Raises std::bad_alloc.
std::string gzip_of(std::string_view bytes);

}  // namespace orvo::web
