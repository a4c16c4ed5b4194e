#pragma once

// Read once, then a constant.

#include "platform/objects/recordset/record_store.h"

namespace orvo::recordset {

// An order of records: by one column after the other, and by their age among equals. Accents count
// where the letters of all columns are the same, case where the accents are, too: that somebody
// spells a name in capitals does not keep the next column from putting people in order.
class SortOrder {
public:
    SortOrder() = default;
    // "column [ASC|DESC], …"; a name may stand in brackets. Raises 3001 where it cannot be read,
    // 3265 for a column that is not there.
    SortOrder(TextView text, const std::vector<Column>& columns);

    bool empty() const { return keys_.empty(); }
    // Whether record `a` stands before record `b`.
    bool is_before(const RecordStore& store, RecordId a, RecordId b) const;

private:
    struct Key {
        std::size_t column;
        bool is_descending;
    };
    std::vector<Key> keys_;
};

}  // namespace orvo::recordset
