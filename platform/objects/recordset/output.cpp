#include "platform/objects/recordset/output.h"

#include "platform/objects/recordset/errors.h"
#include "platform/system/automation.h"
#include "platform/values/values.h"

namespace orvo::recordset {
namespace {

void append_text(Text& out, const Variant& value, const Text& null) {
    if (value.is_null() || value.is_empty()) {
        out += null;
    } else if (value.is_text()) {
        out += value.text_view();
    } else if (value.is_array()) {
        const Values elements = value.to<Values>();
        const Variant* first = elements.elements().data();
        for (const Variant& element : elements) {
            if (&element != first) out += u", ";
            append_text(out, element, null);
        }
    } else {
        out += value.to<Text>();
    }
}

}  // namespace

std::vector<std::size_t> chosen_columns(const Cursor& cursor, const Variant& fields) {
    std::vector<std::size_t> columns;
    if (fields.is_missing() || fields.is_empty()) {
        for (std::size_t i = 0; i < cursor.columns().size(); ++i) columns.push_back(i);
    } else if (fields.is_array()) {
        for (const Variant& field : fields.to<Values>())
            columns.push_back(column_at(cursor.columns(), field));
    } else {
        columns.push_back(column_at(cursor.columns(), fields));
    }
    return columns;
}

Variant get_rows(Cursor& cursor, std::int32_t count, const Variant& start, const Variant& fields) {
    cursor.require_open();
    const std::vector<std::size_t> columns = chosen_columns(cursor, fields);
    const std::vector<RecordId> records = cursor.take(count, start);
    abi::SAFEARRAYBOUND bounds[] = {{static_cast<std::uint32_t>(columns.size()), 0},
                                    {static_cast<std::uint32_t>(records.size()), 0}};
    abi::VARIANT raw{};
    raw.vt = abi::VT_ARRAY | abi::VT_VARIANT;
    raw.parray = abi::SafeArrayCreate(abi::VT_VARIANT, 2, bounds);
    if (raw.parray == nullptr) raise_runtime_error(runtime_error::out_of_memory);
    Variant rows = Variant::attach(raw);
    // The first dimension varies fastest: the values of one record stand side by side.
    auto* cell = static_cast<abi::VARIANT*>(rows.get()->parray->pvData);
    for (const RecordId id : records)
        for (const std::size_t column : columns)
            Variant(cursor.record(id).values[column]).detach(*cell++);
    return rows;
}

Text get_string(Cursor& cursor, std::int32_t count, const Delimiters& delimiters) {
    Text out;
    for (const RecordId id : cursor.take(count, Variant::missing())) {
        bool is_first = true;
        for (const Variant& value : cursor.record(id).values) {
            if (!is_first) out += delimiters.column;
            is_first = false;
            append_text(out, value, delimiters.null);
        }
        out += delimiters.row;
    }
    return out;
}

}  // namespace orvo::recordset
