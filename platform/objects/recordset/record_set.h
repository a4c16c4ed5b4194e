#pragma once

// The record set of this house; what it promises stands in record_set_contract.h.

#include "platform/interfaces/hosted.h"
#include "platform/objects/recordset/cursor.h"
#include "platform/objects/recordset/record_set_contract.h"

namespace orvo {

// A record set that lives in memory, without a connection: a static client cursor.
class RecordSetObject : public RecordSet {
public:
    RecordSetObject() : RecordSetObject(std::make_shared<recordset::Cursor>()) {}
    explicit RecordSetObject(std::shared_ptr<recordset::Cursor> cursor);

    Ref<orvo::Properties> Properties() override;
    LongPtr AbsolutePosition() override { return cursor_->position(); }
    void SetAbsolutePosition(LongPtr position) override { cursor_->set_position(position); }
    void SetActiveConnectionObject(const Object& connection) override;
    void SetActiveConnection(const Variant& connection) override;
    Variant ActiveConnection() override { return Variant(Object()); }
    bool IsBof() override { return cursor_->is_bof(); }
    Variant Bookmark() override { return cursor_->bookmark(); }
    void SetBookmark(const Variant& bookmark) override { cursor_->set_bookmark(bookmark); }
    std::int32_t CacheSize() override { return cache_size_; }
    void SetCacheSize(std::int32_t size) override;
    std::int32_t CursorType() override;
    void SetCursorType(std::int32_t type) override;
    bool IsEof() override { return cursor_->is_eof(); }
    Ref<orvo::Fields> Fields() override;
    std::int32_t LockType() override;
    void SetLockType(std::int32_t type) override;
    LongPtr MaxRecords() override { return max_records_; }
    void SetMaxRecords(LongPtr maximum) override;
    LongPtr RecordCount() override { return static_cast<std::int64_t>(cursor_->count()); }
    void SetSourceObject(const Object& source) override;
    void SetSource(const Text& source) override;
    Variant Source() override { return Variant(source_); }
    void AddNew(const Variant& fields, const Variant& values) override;
    void CancelUpdate() override { cursor_->cancel_update(); }
    void Close() override { cursor_->close(); }
    void Delete(std::int32_t affected) override { cursor_->erase(affected); }
    Variant GetRows(std::int32_t rows, const Variant& start, const Variant& fields) override;
    void Move(LongPtr rows, const Variant& start) override { cursor_->move(rows, start); }
    void MoveNext() override { cursor_->move_next(); }
    void MovePrevious() override { cursor_->move_previous(); }
    void MoveFirst() override { cursor_->move_first(); }
    void MoveLast() override { cursor_->move_last(); }
    void Open(const Variant& source, const Variant& connection, std::int32_t cursor_type,
              std::int32_t lock_type, std::int32_t options) override;
    void Requery(std::int32_t options) override;
    void Update(const Variant& fields, const Variant& values) override;
    LongPtr AbsolutePage() override;
    void SetAbsolutePage(LongPtr page) override;
    std::int32_t EditMode() override { return cursor_->edit_mode(); }
    Variant Filter() override { return cursor_->filter(); }
    void SetFilter(const Variant& criteria) override { cursor_->set_filter(criteria); }
    LongPtr PageCount() override;
    std::int32_t PageSize() override { return page_size_; }
    void SetPageSize(std::int32_t size) override;
    Text Sort() override { return cursor_->sort(); }
    void SetSort(const Text& order) override { cursor_->set_sort(order); }
    std::int32_t Status() override { return cursor_->status(); }
    std::int32_t State() override { return cursor_->is_open() ? adStateOpen : adStateClosed; }
    void UpdateBatch(std::int32_t affected) override { cursor_->update_batch(affected); }
    void CancelBatch(std::int32_t affected) override { cursor_->cancel_batch(affected); }
    std::int32_t CursorLocation() override;
    void SetCursorLocation(std::int32_t location) override;
    bool Supports(std::int32_t options) override;
    Variant Collect(const Variant& index) override;
    void SetCollect(const Variant& index, const Variant& value) override;
    std::int32_t MarshalOptions() override { return marshal_options_; }
    void SetMarshalOptions(std::int32_t options) override;
    void Cancel() override {}
    void Find(const Text& criteria, LongPtr skipped, std::int32_t direction,
              const Variant& start) override;
    Text GetString(std::int32_t format, std::int32_t rows,
                   const std::optional<Text>& column_delimiter,
                   const std::optional<Text>& row_delimiter,
                   const std::optional<Text>& null_text) override;
    std::int32_t CompareBookmarks(const Variant& a, const Variant& b) override;
    Ref<RecordSet> Clone(std::int32_t lock_type) override;

private:
    std::size_t column(const Variant& index) const;
    void assign(const Variant& fields, const Variant& values);

    std::shared_ptr<recordset::Cursor> cursor_;
    Ref<orvo::Fields> fields_;
    Text source_;
    std::int32_t cache_size_ = 1;
    std::int32_t page_size_ = 10;
    std::int64_t max_records_ = 0;
    std::int32_t marshal_options_ = adMarshalAll;
    // What was asked for before the opening; nothing where it was left open.
    std::optional<std::int32_t> cursor_type_;
    std::optional<std::int32_t> lock_type_;
    std::optional<std::int32_t> cursor_location_;
};

extern template struct detail::callee<RecordSet>;

template <>
inline constexpr auto class_of<RecordSetObject> =
    describe_class<RecordSet>("ADODB.Recordset", "00000535-0000-0010-8000-00aa006d2ea4");

}  // namespace orvo
