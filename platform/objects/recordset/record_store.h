#pragma once

// Where the values of a record set live. Used by one thread; nothing is raised but for want of
// memory.

#include <vector>

#include "platform/objects/recordset/column.h"

namespace orvo::recordset {

// A record's place in its store, from 0; never given to another record.
using RecordId = std::uint32_t;

// New values by column; nothing where a column is not set.
using Edits = std::vector<std::optional<Variant>>;

struct Record {
    std::vector<Variant> values;  // one for each column; none of a record that is gone
    std::vector<Variant> before;  // before the batch's first change; empty where none
    std::int32_t status = adRecUnmodified;

    bool is_deleted() const { return status & adRecDeleted; }
    // Deleted for good: nothing can bring it back.
    bool is_gone() const { return values.empty(); }
};

// Whether changes are final at once, or can be taken back until the batch is accepted.
enum class Keeping : unsigned char { at_once, as_batch };

// Columns and records of one record set and its clones. Every change gives the store a new version,
// by which the others notice it.
class RecordStore {
public:
    std::vector<Column> columns;

    RecordId size() const { return static_cast<RecordId>(records_.size()); }
    const Record& operator[](RecordId id) const { return records_[id]; }
    std::uint64_t version() const { return version_; }

    void reserve(std::size_t count) { records_.reserve(count); }
    RecordId add(std::vector<Variant> values, std::int32_t status = adRecUnmodified);
    void change(RecordId id, Edits edits, Keeping keeping);
    void erase(RecordId id, Keeping keeping);

    // Of records of a batch: makes their changes final, or takes them back.
    void accept(const std::vector<RecordId>& ids);
    void take_back(const std::vector<RecordId>& ids);

private:
    void forget(Record& record);

    std::vector<Record> records_;
    std::uint64_t version_ = 0;
};

}  // namespace orvo::recordset
