#include "platform/objects/recordset/cursor.h"
#include "platform/objects/recordset/errors.h"

namespace orvo::recordset {

void Cursor::require_updatable() const {
    if (!is_updatable_) raise_runtime_error(not_capable);
}

void Cursor::begin_edit() {
    edits_.assign(columns().size(), {});
    is_editing_ = true;
}

void Cursor::end_edit() {
    edits_.clear();
    is_editing_ = false;
}

Variant Cursor::unset_value(const Column& column) const {
    return column.is_nullable() && column.form() != Form::any ? Variant::null() : Variant();
}

Variant Cursor::value(std::size_t column) {
    begin();
    if (is_editing_ && edits_[column]) return *edits_[column];
    if (at_ == At::new_record) return unset_value(columns()[column]);
    if (at_ != At::record) raise_runtime_error(no_current_record);
    return (*store_)[record_].values[column];
}

Variant Cursor::original(std::size_t column) {
    begin();
    if (at_ == At::new_record) return unset_value(columns()[column]);
    if (at_ != At::record) raise_runtime_error(no_current_record);
    const Record& record = (*store_)[record_];
    return record.before.empty() ? record.values[column] : record.before[column];
}

void Cursor::set_value(std::size_t column, const Variant& value) {
    begin();
    require_updatable();
    if (at_ != At::record && at_ != At::new_record) raise_runtime_error(no_current_record);
    Variant kept = coerced(columns()[column], value);
    if (!is_editing_) begin_edit();
    edits_[column] = std::move(kept);
}

void Cursor::add_new() {
    begin();
    require_updatable();
    begin_move();
    at_before_adding_ = at_;
    at_ = At::new_record;
    begin_edit();
}

void Cursor::update() {
    begin();
    if (!is_editing_) return;
    if (at_ == At::new_record)
        add();
    else
        change();
}

std::vector<Variant> Cursor::new_values() {
    const std::size_t count = columns().size();
    for (std::size_t i = 0; i < count; ++i)
        if (!edits_[i] && !columns()[i].is_nullable()) raise_runtime_error(field_failed);
    std::vector<Variant> values;
    values.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        values.push_back(edits_[i] ? std::move(*edits_[i]) : unset_value(columns()[i]));
    return values;
}

void Cursor::add() {
    record_ = store_->add(new_values(), keeping_ == Keeping::as_batch ? adRecNew : adRecUnmodified);
    end_edit();
    const auto place = view().insert(record_);
    at_ = place ? At::record : At::gap;
    place_ = place.value_or(view().size());
}

void Cursor::change() {
    Edits edits = std::move(edits_);
    end_edit();
    if (at_ != At::record) raise_runtime_error(no_current_record);
    store_->change(record_, std::move(edits), keeping_);
    const auto place = view().move(place_);
    if (place)
        place_ = *place;
    else
        at_ = At::gap;
}

void Cursor::cancel_update() {
    begin();
    if (!is_editing_) raise_runtime_error(not_allowed_here);
    end_edit();
    if (at_ != At::new_record) return;
    at_ = at_before_adding_;
    if (at_ == At::record) synchronise();
}

void Cursor::erase(std::int32_t affected) {
    begin();
    require_updatable();
    if (at_ == At::new_record) raise_runtime_error(not_allowed_here);
    if (affected == adAffectCurrent) {
        if (at_ != At::record) raise_runtime_error(no_current_record);
        end_edit();
        store_->erase(record_, keeping_);
        view().erase(place_);
    } else if (affected == adAffectGroup && view().condition()) {
        end_edit();
        while (view().size() > 0) {
            const std::size_t last = view().size() - 1;
            store_->erase(view()[last], keeping_);
            view().erase(last);
        }
        place_ = 0;
    } else {
        raise_runtime_error(wrong_arguments);
    }
    at_ = At::gap;
}

void Cursor::update_batch() {
    begin();
    if (keeping_ != Keeping::as_batch) raise_runtime_error(not_capable);
    update();
    store_->accept_batch();
    synchronise();
}

void Cursor::cancel_batch() {
    begin();
    if (keeping_ != Keeping::as_batch) raise_runtime_error(not_capable);
    if (is_editing_) cancel_update();
    store_->take_batch_back();
    synchronise();
}

std::int32_t Cursor::edit_mode() {
    begin();
    if (at_ == At::gap) return adEditDelete;
    if (!is_editing_) return adEditNone;
    return at_ == At::new_record ? adEditAdd : adEditInProgress;
}

std::int32_t Cursor::status() {
    begin();
    switch (at_) {
        case At::new_record:
            return adRecNew;
        case At::gap:
            return adRecDeleted;
        case At::record:
            break;
        default:
            raise_runtime_error(no_current_record);
    }
    const std::int32_t kept = (*store_)[record_].status;
    return is_editing_ && kept == adRecUnmodified ? adRecModified : kept;
}

}  // namespace orvo::recordset
