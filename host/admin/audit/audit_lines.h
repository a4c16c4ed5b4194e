#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "suite/audit/audit_event.h"

namespace orvo::admin {

// The events of an audit's files, the oldest first, while others write and rename them. Raises
// std::system_error with the file where one cannot be read.
class AuditLines {
public:
    // `file`: the newest; those that were renamed are found beside it.
    explicit AuditLines(std::filesystem::path file);

    // Nothing at the end; more may have been written when it is asked again.
    std::optional<audit::Event> next();
    // Where the file has been renamed and all of it was read: goes on with the one that has its
    // name now.
    bool try_next_file();

    // Lines that are none of an audit, which next() passes over, and where the first of them is:
    // "audit.jsonl, line 3".
    std::uint64_t strange() const { return strange_; }
    const std::string& first_strange() const { return first_strange_; }

private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    struct Open {
        std::filesystem::path name;
        std::unique_ptr<std::FILE, Close> file;
        std::uint64_t inode;
        std::uint64_t line = 0;
    };

    static std::optional<Open> try_open(const std::filesystem::path& name);
    bool try_line(Open& open);
    void note_strange(const Open& open);

    const std::filesystem::path file_;
    std::vector<Open> files_;  // the oldest last
    std::string line_;         // which may have come in part
    std::uint64_t strange_ = 0;
    std::string first_strange_;
};

}  // namespace orvo::admin
