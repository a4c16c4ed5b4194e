#pragma once

// Short words for a record set's fields.

#include "platform/abi/call.h"
#include "platform/recordset/contract.h"

namespace orvo {

// The value of a field in the current row.
inline Variant field_value(const Ref<RecordSet>& records, const char16_t* name) {
    return call<&Field::Value>(call<&Fields::Item>(call<&RecordSet::Fields>(records), name));
}
inline void put_field_value(const Ref<RecordSet>& records, const char16_t* name,
                            const Variant& value) {
    call<&Field::SetValue>(call<&Fields::Item>(call<&RecordSet::Fields>(records), name), value);
}

}  // namespace orvo
