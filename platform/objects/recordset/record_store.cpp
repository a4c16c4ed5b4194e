#include "platform/objects/recordset/record_store.h"

namespace orvo::recordset {

RecordId RecordStore::add(std::vector<Variant> values, std::int32_t status) {
    records_.push_back({std::move(values), {}, status});
    ++version_;
    return size() - 1;
}

void RecordStore::change(RecordId id, Edits edits, Keeping keeping) {
    Record& record = records_[id];
    if (keeping == Keeping::as_batch && record.status == adRecUnmodified) {
        record.before = record.values;
        record.status = adRecModified;
    }
    for (std::size_t i = 0; i < edits.size(); ++i)
        if (edits[i]) record.values[i] = std::move(*edits[i]);
    ++version_;
}

void RecordStore::erase(RecordId id, Keeping keeping) {
    Record& record = records_[id];
    if (keeping == Keeping::at_once || record.status == adRecNew)
        forget(record);
    else
        record.status |= adRecDeleted;
    ++version_;
}

void RecordStore::accept(const std::vector<RecordId>& ids) {
    for (const RecordId id : ids) {
        Record& record = records_[id];
        if (record.is_deleted()) {
            forget(record);
        } else {
            record.before.clear();
            record.status = adRecUnmodified;
        }
    }
    ++version_;
}

void RecordStore::take_back(const std::vector<RecordId>& ids) {
    for (const RecordId id : ids) {
        Record& record = records_[id];
        if (record.status == adRecNew) {
            forget(record);
        } else if (!record.is_gone()) {
            if (!record.before.empty()) record.values = std::move(record.before);
            record.before.clear();
            record.status = adRecUnmodified;
        }
    }
    ++version_;
}

void RecordStore::forget(Record& record) { record = {{}, {}, adRecDeleted}; }

}  // namespace orvo::recordset
