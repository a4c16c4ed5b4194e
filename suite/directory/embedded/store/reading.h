#pragma once

// What one view of a directory's file shows.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "suite/directory/embedded/store/selection.h"
#include "suite/directory/entries/entry_data.h"
#include "suite/directory/names/distinguished_name.h"

namespace orvo::directory::embedded {

struct Connection;
class StoreFile;

// The file as it was when the reading began, as long as this object lives. Used by one thread. Keep
// it short: the log cannot be cut meanwhile. Whatever SQLite refuses is result code 80 with its
// reason.
class Reading {
public:
    explicit Reading(std::shared_ptr<StoreFile> file);
    ~Reading();
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    // The whole entry, with operational attributes and password hashes; nothing where it is not
    // there. Its name is as it was written, attributes are called as the schema prefers.
    std::optional<EntryData> find(const DistinguishedName& name) const;
    // The name as written of the nearest entry above a name; empty: none.
    std::string nearest_above(const DistinguishedName& name) const;
    bool has_children(const DistinguishedName& name) const;

    // All entries, parents before their children, until `take` answers false.
    void every_entry(const std::function<bool(EntryData&&)>& take) const;

    // Hands over entries in the order of lists (order_key, the whole name among equals), until
    // `take` answers false: all in the scope that the filter is true of and, in all likelihood,
    // others, for callers evaluate it exactly. ">=" and "<=" that go by the order of lists
    // (split_by_order) bound what their attribute names. `take` may read, and change nothing.
    void search(const Selection& selection, const std::function<bool(EntryData&&)>& take) const;
    // How `search` would find them, a line for each step, for tests and administrators; SQLite's
    // own query plans are among them.
    std::vector<std::string> plan(const Selection& selection) const;

    // Empty where it is not set.
    std::string setting(const std::string& name) const;

    // What is wrong with the file, a sentence each: what SQLite finds, names against keys, parents,
    // and what the indexes hold against the entries. Reads everything.
    std::vector<std::string> problems() const;

protected:
    struct Unbegun {};
    Reading(std::shared_ptr<StoreFile> file, Unbegun) noexcept;

    Connection& connection() const { return *connection_; }
    StoreFile& file() const { return *file_; }
    // Whoever has ended it, however that went, needs the connection no more.
    void acquire_connection();
    void release_connection() noexcept;

private:
    std::shared_ptr<StoreFile> file_;
    std::unique_ptr<Connection> connection_;
};

}  // namespace orvo::directory::embedded
