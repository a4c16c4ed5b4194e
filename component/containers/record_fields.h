#pragma once

// Short words for a record set's fields. All raise what the record set raises, 3265 for a name that
// no column has; they are used by the record set's thread.

#include <utility>
#include <vector>

#include "platform/interfaces/call.h"
#include "platform/objects/recordset/record_set_contract.h"

namespace orvo {

// The value of a field in the current row.
inline Variant field_value(const Ref<RecordSet>& records, const char16_t* name) {
    return call<&Field::Value>(call<&Fields::Item>(call<&RecordSet::Fields>(records), name));
}

// The fields of one record set, for loops over its rows: each field is looked up by name once, at
// its first use, and its value is that of the row which is current when it is asked. Holds the
// fields, not the rows.
class RowFields {
public:
    explicit RowFields(const Ref<RecordSet>& records)
        : fields_(call<&RecordSet::Fields>(records)) {}

    Variant value(TextView name) { return call<&Field::Value>(field(name)); }
    void put_value(TextView name, const Variant& value) {
        call<&Field::SetValue>(field(name), value);
    }

private:
    const Ref<Field>& field(TextView name) {
        for (const auto& [known, field] : found_)
            if (known == name) return field;
        Ref<Field> field = call<&Fields::Item>(fields_, Text(name));
        return found_.emplace_back(name, std::move(field)).second;
    }

    Ref<Fields> fields_;
    std::vector<std::pair<Text, Ref<Field>>> found_;
};

}  // namespace orvo
