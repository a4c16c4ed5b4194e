#include "platform/objects/recordset/errors.h"
#include "platform/objects/recordset/output.h"
#include "platform/objects/recordset/record_set.h"
#include "platform/values/values.h"

namespace orvo {

using namespace recordset;

std::size_t RecordSetObject::column(const Variant& index) const {
    return column_at(cursor_->columns(), index);
}

// `fields` is one name or place with one value, or an array of them with as many values.
void RecordSetObject::assign(const Variant& fields, const Variant& values) {
    if (!fields.is_array()) {
        cursor_->set_value(column(fields), values);
        return;
    }
    const Values all_fields = fields.to<Values>();
    if (!values.is_array()) raise_runtime_error(wrong_arguments);
    const Values all_values = values.to<Values>();
    if (all_fields.count() != all_values.count()) raise_runtime_error(wrong_arguments);
    for (std::size_t i = 0; const Variant& field : all_fields)
        cursor_->set_value(column(field), all_values.elements()[i++]);
}

void RecordSetObject::AddNew(const Variant& fields, const Variant& values) {
    cursor_->add_new();
    if (fields.is_missing() || fields.is_empty()) return;
    try {
        assign(fields, values);
        cursor_->update();
    } catch (...) {  // the row is added in one step or not at all
        cursor_->cancel_update();
        throw;
    }
}

void RecordSetObject::Update(const Variant& fields, const Variant& values) {
    cursor_->require_current();
    if (!fields.is_missing() && !fields.is_empty()) assign(fields, values);
    cursor_->update();
}

Variant RecordSetObject::Collect(const Variant& index) { return cursor_->value(column(index)); }

void RecordSetObject::SetCollect(const Variant& index, const Variant& value) {
    cursor_->set_value(column(index), value);
}

}  // namespace orvo
