#include <numeric>

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
    chunks_.reset();
    is_editing_ = false;
}

Variant Cursor::unset_value(const Column& column) const {
    return column.is_nullable() && column.form() != Form::any ? Variant::null() : Variant();
}

bool Cursor::has_record() const { return at_ == At::record || at_ == At::gap; }

bool Cursor::is_on_record() const { return at_ == At::record && !(*store_)[record_].is_deleted(); }

void Cursor::require_current() {
    begin();
    require_updatable();
    if (!is_on_record() && at_ != At::new_record) raise_runtime_error(no_current_record);
}

Variant Cursor::value(std::size_t column) {
    begin();
    if (chunks_ && chunks_->column != column) chunks_.reset();
    if (is_editing_ && edits_[column]) return *edits_[column];
    if (at_ == At::new_record) return unset_value(columns()[column]);
    if (!is_on_record()) raise_runtime_error(no_current_record);
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
    require_current();
    Variant kept = coerced(columns()[column], value);
    chunks_.reset();
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
    if (affected != adAffectCurrent && affected != adAffectGroup)
        raise_runtime_error(wrong_arguments);
    if (affected == adAffectCurrent && !is_on_record()) raise_runtime_error(no_current_record);
    require_affected(affected);
    const std::vector<RecordId> erased = affected_by(affected);
    affected_ = erased;
    if (erased.empty()) return;
    end_edit();
    for (const RecordId id : erased) store_->erase(id, keeping_);
    if (affected == adAffectCurrent && !view().shows_deleted())
        view().erase(place_);
    else
        view().rebuild();
    if (affected == adAffectGroup) place_ = 0;
    record_ = erased.front();
    at_ = At::gap;
}

void Cursor::require_affected(std::int32_t affected) const {
    switch (affected) {
        case adAffectCurrent:
            if (at_ != At::new_record && (!has_record() || (*store_)[record_].is_gone()))
                raise_runtime_error(no_current_record);
            return;
        case adAffectGroup:
            if (!view_->condition()) raise_runtime_error(wrong_arguments);
            return;
        case adAffectAll:
        case adAffectAllChapters:
            return;
        default:
            raise_runtime_error(wrong_arguments);
    }
}

std::vector<RecordId> Cursor::affected_by(std::int32_t affected) const {
    if (affected == adAffectCurrent) return {record_};
    const bool has_criteria = filter_.is_text() && view_->condition();
    if (affected == adAffectGroup || (affected == adAffectAll && has_criteria)) {
        std::vector<RecordId> seen(view_->size());
        for (std::size_t place = 0; place < seen.size(); ++place) seen[place] = (*view_)[place];
        return seen;
    }
    std::vector<RecordId> all(store_->size());
    std::iota(all.begin(), all.end(), RecordId{0});
    return all;
}

void Cursor::note_affected(const std::vector<RecordId>& ids) {
    affected_.clear();
    for (const RecordId id : ids)
        if ((*store_)[id].status != adRecUnmodified) affected_.push_back(id);
}

// A record that was deleted under the cursor may be back.
void Cursor::after_batch() {
    synchronise();
    if (at_ != At::gap) return;
    if (const auto place = view().find(record_)) go_to(static_cast<std::int64_t>(*place));
}

void Cursor::update_batch(std::int32_t affected) {
    begin();
    require_updatable();
    if (keeping_ != Keeping::as_batch) {
        if (affected != adAffectCurrent) raise_runtime_error(not_capable);
        require_current();
        return update();
    }
    require_affected(affected);
    update();
    const std::vector<RecordId> ids = affected_by(affected);
    note_affected(ids);
    store_->accept(ids);
    after_batch();
}

void Cursor::cancel_batch(std::int32_t affected) {
    begin();
    require_updatable();
    if (keeping_ == Keeping::as_batch)
        require_affected(affected);
    else if (affected != adAffectCurrent)
        raise_runtime_error(not_capable);
    const bool is_of_new_record = at_ == At::new_record && affected == adAffectCurrent;
    if (is_editing_) cancel_update();
    if (keeping_ != Keeping::as_batch || is_of_new_record) return;
    const std::vector<RecordId> ids = affected_by(affected);
    note_affected(ids);
    store_->take_back(ids);
    after_batch();
}

std::int32_t Cursor::edit_mode() {
    begin();
    if (has_record() && (*store_)[record_].is_deleted()) return adEditDelete;
    if (!is_editing_) return adEditNone;
    return at_ == At::new_record ? adEditAdd : adEditInProgress;
}

std::int32_t Cursor::status() {
    begin();
    if (at_ == At::new_record) return adRecNew;
    if (!has_record()) raise_runtime_error(no_current_record);
    const std::int32_t kept = (*store_)[record_].status;
    if (kept & adRecDeleted) return adRecDeleted;
    return is_editing_ && kept == adRecUnmodified ? adRecModified : kept;
}

}  // namespace orvo::recordset
