#include "host/web/administration/record_rows.h"

#include "platform/interfaces/late_call.h"

namespace orvo::web {

RecordRows RecordRows::read(const Object& record_set) {
    RecordRows read;
    std::vector<Object> fields;
    const Object all = late::get(record_set, u"Fields").to<Object>();
    const auto count = late::get(all, u"Count").to<std::int32_t>();
    for (std::int32_t i = 0; i < count; ++i) {
        fields.push_back(late::get(all, u"Item", {i}).to<Object>());
        read.columns.push_back(late::get(fields.back(), u"Name").to<Text>());
    }
    for (; !late::get(record_set, u"EOF").to<bool>(); late::call(record_set, u"MoveNext")) {
        std::vector<Variant>& row = read.rows.emplace_back();
        for (const Object& field : fields) row.push_back(late::get(field, u"Value"));
    }
    return read;
}

}  // namespace orvo::web
