#include "platform/objects/recordset/fields.h"

#include "platform/interfaces/enumerator.h"
#include "platform/objects/recordset/errors.h"

namespace orvo::recordset {

Object EmptyProperties::NewEnum() { return make_enumerator({}); }

Object EmptyProperties::Item(const Variant&) { raise_runtime_error(no_such_item); }

std::size_t FieldObject::index() const {
    if (generation_ != cursor_->generation()) raise_runtime_error(no_such_item);
    return index_;
}

Ref<Properties> FieldObject::Properties() { return make<EmptyProperties>(); }

LongPtr FieldObject::ActualSize() { return actual_size(column(), cursor_->value(index())); }

void FieldObject::SetType(std::int32_t type) {
    Column& changed = closed();
    changed = described(changed.name, type, changed.size, adFldUnspecified);
}

void FieldObject::SetDefinedSize(LongPtr size) {
    Column& changed = closed();
    changed = described(changed.name, changed.type, size, changed.attributes);
}

Object FieldsObject::NewEnum() {
    std::vector<Variant> items;
    for (std::size_t i = 0; i < cursor_->columns().size(); ++i) items.push_back(field(i).object());
    return make_enumerator(std::move(items));
}

const Ref<Field>& FieldsObject::field(std::size_t column) {
    if (generation_ != cursor_->generation()) {
        fields_.clear();
        generation_ = cursor_->generation();
    }
    if (fields_.size() <= column) fields_.resize(cursor_->columns().size());
    Ref<Field>& field = fields_[column];
    if (!field) field = make<FieldObject>(cursor_, column);
    return field;
}

Ref<Field> FieldsObject::Item(const Variant& index) {
    return field(column_at(cursor_->columns(), index));
}

void FieldsObject::Append(const Text& name, std::int32_t type, LongPtr size,
                          std::int32_t attributes, const Variant&) {
    std::vector<Column>& columns = cursor_->closed_columns();
    if (name.empty()) raise_runtime_error(wrong_arguments);
    if (find_column(columns, name)) raise_runtime_error(duplicate_item);
    columns.push_back(described(name, type, size, attributes));
}

void FieldsObject::Delete(const Variant& index) {
    cursor_->require_closed();
    cursor_->erase_column(column_at(cursor_->columns(), index));
}

}  // namespace orvo::recordset

namespace orvo {

template struct detail::callee<Properties>;
template struct detail::callee<Field>;
template struct detail::callee<Fields>;

}  // namespace orvo
