#pragma once

// Changes of a directory's file.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "suite/directory/embedded/store/index_rows.h"
#include "suite/directory/embedded/store/reading.h"

namespace orvo::directory::embedded {

// What survives once a change is committed: `full`, a lost power supply; `process`, a killed
// process, while the last changes before a power failure may be lost, whole and in their order.
enum class Durability { full, process };

// A write transaction, and a view of what it has changed. There is one at a time: it waits for
// others as long as StoreSettings says, and raises result code 51 after that. Ends without effect
// unless committed.
class Writing : public Reading {
public:
    Writing(std::shared_ptr<StoreFile> file, std::chrono::milliseconds wait, Durability durability);
    ~Writing();

    // An entry whose parent is there, or that stands at the top. Raises result code 34 for a name
    // that is none, 68 where there is one of this name.
    void add(const EntryData& entry);
    // All its attributes, and its name as it is written now. Raises 32 where it is not there.
    void replace(const EntryData& entry);
    // An entry without children. Raises 32 where it is not there.
    void remove(const DistinguishedName& name);
    // Before many entries are added, an import, say: index rows are put in order and written
    // together, which at 100,000 users takes half the time. Until the commit,
    // or until an entry is replaced or removed, `search`, `has_children` and `problems` do not see
    // what was added since; about 150 MB of memory are used, and room for temporary files.
    void expect_many();
    void set_setting(const std::string& name, const std::string& value);

    // The last call: returns once the changes are as durable as was said. Raises 80 with SQLite's
    // reason (a full disk, a file that can only be read); nothing is changed then.
    void commit();

private:
    struct Stored;
    Stored stored(const std::string& key);
    void list(std::int64_t entry, std::int64_t parent, const ListedName& name, bool is_there);
    void write_values(std::int64_t entry, const std::vector<IndexedValue>& gone,
                      const std::vector<IndexedValue>& come);
    void write_collected();
    void release_turn() noexcept;

    bool has_turn_ = false;
    bool is_collecting_ = false;          // index rows, in temporary tables
    AttributeNumber last_attribute_ = 0;  // before this transaction
};

}  // namespace orvo::directory::embedded
