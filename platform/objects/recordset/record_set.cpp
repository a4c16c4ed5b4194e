#include "platform/objects/recordset/record_set.h"

#include "platform/objects/recordset/errors.h"
#include "platform/objects/recordset/fields.h"
#include "platform/objects/recordset/output.h"
#include "platform/values/values.h"

namespace orvo {

using namespace recordset;

namespace {

// What stands for "no source" and "no connection".
bool is_nothing(const Variant& value) {
    return value.is_missing() || value.is_empty() || value.is_null() ||
           (value.is_text() && value.text_view().empty()) ||
           (value.is_object() && !value.to<Object>());
}

void require(bool condition) {
    if (!condition) raise_runtime_error(wrong_arguments);
}

bool is_lock_type(std::int32_t type) {
    return type >= adLockReadOnly && type <= adLockBatchOptimistic;
}

}  // namespace

RecordSetObject::RecordSetObject(std::shared_ptr<Cursor> cursor)
    : cursor_(std::move(cursor)), fields_(make<FieldsObject>(cursor_)) {}

Ref<Properties> RecordSetObject::Properties() { return make<EmptyProperties>(); }

Ref<Fields> RecordSetObject::Fields() { return fields_; }

void RecordSetObject::SetActiveConnectionObject(const Object& connection) {
    SetActiveConnection(Variant(connection));
}

void RecordSetObject::SetActiveConnection(const Variant& connection) {
    if (!is_nothing(connection)) raise_runtime_error(not_capable);
}

void RecordSetObject::SetSourceObject(const Object&) { raise_runtime_error(not_capable); }

void RecordSetObject::SetSource(const Text& source) {
    cursor_->require_closed();
    source_ = source;
}

std::int32_t RecordSetObject::CursorType() {
    return cursor_->is_open() ? adOpenStatic : cursor_type_.value_or(adOpenForwardOnly);
}

void RecordSetObject::SetCursorType(std::int32_t type) {
    cursor_->require_closed();
    require(type >= adOpenForwardOnly && type <= adOpenStatic);
    cursor_type_ = type;
}

std::int32_t RecordSetObject::LockType() {
    if (!cursor_->is_open()) return lock_type_.value_or(adLockReadOnly);
    if (!cursor_->is_updatable()) return adLockReadOnly;
    return cursor_->keeping() == Keeping::as_batch ? adLockBatchOptimistic : adLockOptimistic;
}

void RecordSetObject::SetLockType(std::int32_t type) {
    cursor_->require_closed();
    require(is_lock_type(type));
    lock_type_ = type;
}

std::int32_t RecordSetObject::CursorLocation() {
    return cursor_->is_open() ? adUseClient : cursor_location_.value_or(adUseServer);
}

void RecordSetObject::SetCursorLocation(std::int32_t location) {
    cursor_->require_closed();
    require(location >= adUseNone && location <= adUseClient);
    cursor_location_ = location;
}

void RecordSetObject::SetCacheSize(std::int32_t size) {
    require(size >= 1);
    cache_size_ = size;
}

void RecordSetObject::SetMarshalOptions(std::int32_t options) {
    require(options == adMarshalAll || options == adMarshalModifiedOnly);
    marshal_options_ = options;
}

void RecordSetObject::SetMaxRecords(LongPtr maximum) {
    cursor_->require_closed();
    require(maximum >= 0);
    max_records_ = maximum;
}

void RecordSetObject::Open(const Variant& source, const Variant& connection,
                           std::int32_t cursor_type, std::int32_t lock_type, std::int32_t) {
    cursor_->require_closed();
    if (!is_nothing(source) || !is_nothing(connection) || !source_.empty())
        raise_runtime_error(no_connection);
    require(cursor_type >= adOpenUnspecified && cursor_type <= adOpenStatic);
    if (lock_type == adLockUnspecified) lock_type = lock_type_.value_or(adLockOptimistic);
    require(is_lock_type(lock_type));
    cursor_->open(lock_type != adLockReadOnly,
                  lock_type == adLockBatchOptimistic ? Keeping::as_batch : Keeping::at_once);
}

void RecordSetObject::Requery(std::int32_t) {
    cursor_->require_open();
    raise_runtime_error(not_capable);
}

Variant RecordSetObject::GetRows(std::int32_t rows, const Variant& start, const Variant& fields) {
    return get_rows(*cursor_, rows, start, fields);
}

Text RecordSetObject::GetString(std::int32_t format, std::int32_t rows,
                                const std::optional<Text>& column_delimiter,
                                const std::optional<Text>& row_delimiter,
                                const std::optional<Text>& null_text) {
    cursor_->require_open();
    require(format == adClipString);
    Delimiters delimiters;
    delimiters.column = column_delimiter.value_or(delimiters.column);
    delimiters.row = row_delimiter.value_or(delimiters.row);
    delimiters.null = null_text.value_or(delimiters.null);
    return get_string(*cursor_, rows, delimiters);
}

LongPtr RecordSetObject::PageCount() {
    const auto count = static_cast<std::int64_t>(cursor_->count());
    return (count + page_size_ - 1) / page_size_;
}

void RecordSetObject::SetPageSize(std::int32_t size) {
    require(size >= 1);
    page_size_ = size;
}

LongPtr RecordSetObject::AbsolutePage() {
    const std::int64_t position = cursor_->position();
    return position < 1 ? position : (position - 1) / page_size_ + 1;
}

void RecordSetObject::SetAbsolutePage(LongPtr page) {
    require(page >= 1 && page <= PageCount());
    cursor_->set_position((page - 1) * page_size_ + 1);
}

bool RecordSetObject::Supports(std::int32_t options) {
    cursor_->require_open();
    std::int32_t supported =
        adHoldRecords | adMovePrevious | adBookmark | adApproxPosition | adFind;
    if (cursor_->is_updatable()) supported |= adAddNew | adDelete | adUpdate;
    if (cursor_->is_updatable() && cursor_->keeping() == Keeping::as_batch)
        supported |= adUpdateBatch;
    return (options & supported) == options;
}

void RecordSetObject::Find(const Text& criteria, LongPtr skipped, std::int32_t direction,
                           const Variant& start) {
    cursor_->find(criteria, skipped, direction, start);
}

std::int32_t RecordSetObject::CompareBookmarks(const Variant& a, const Variant& b) {
    return cursor_->compare_bookmarks(a, b);
}

Ref<RecordSet> RecordSetObject::Clone(std::int32_t lock_type) {
    require(lock_type == adLockUnspecified || lock_type == adLockReadOnly);
    return make<RecordSetObject>(cursor_->clone(lock_type != adLockReadOnly));
}

template struct detail::callee<RecordSet>;

}  // namespace orvo
