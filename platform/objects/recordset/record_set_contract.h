#pragma once

// Record sets, as callers see them: rows of named, typed fields, with one current row.
//
// On Windows the system has an implementation of its own; identifiers, slot numbers and member
// numbers are its binary interface. Here it is the unconnected kind: columns are appended to a
// closed record set, which is then opened without a source, or a provider has filled it.
//
// Errors: 3704 for nearly everything on a closed record set, 3021 where a current row is needed and
// there is none, 3251 for changes of a read-only one.
//
// A record set, its clones and fields belong to the thread that made them, and own their values:
// what is read is a copy.

#include "platform/objects/recordset/fields_contract.h"

namespace orvo {

class RecordSet {
public:
    virtual Ref<orvo::Properties> Properties() = 0;
    // Of the current row among the visible ones, from 1; adPosUnknown, adPosBOF, adPosEOF.
    virtual LongPtr AbsolutePosition() = 0;
    virtual void SetAbsolutePosition(LongPtr position) = 0;
    virtual void SetActiveConnectionObject(const Object& connection) = 0;
    virtual void SetActiveConnection(const Variant& connection) = 0;
    // Nothing.
    virtual Variant ActiveConnection() = 0;
    virtual bool IsBof() = 0;
    // A number that names the current row as long as the record set is open.
    virtual Variant Bookmark() = 0;
    virtual void SetBookmark(const Variant& bookmark) = 0;
    virtual std::int32_t CacheSize() = 0;
    virtual void SetCacheSize(std::int32_t size) = 0;
    virtual std::int32_t CursorType() = 0;
    virtual void SetCursorType(std::int32_t type) = 0;
    virtual bool IsEof() = 0;
    virtual Ref<orvo::Fields> Fields() = 0;
    virtual std::int32_t LockType() = 0;
    virtual void SetLockType(std::int32_t type) = 0;
    virtual LongPtr MaxRecords() = 0;
    virtual void SetMaxRecords(LongPtr maximum) = 0;
    // Of the visible rows, a row being added among them.
    virtual LongPtr RecordCount() = 0;
    virtual void SetSourceObject(const Object& source) = 0;
    virtual void SetSource(const Text& source) = 0;
    virtual Variant Source() = 0;
    // Begins a new row, or adds one at once: `fields` is a name or place, or an array of them, and
    // `values` accordingly.
    virtual void AddNew(const Variant& fields, const Variant& values) = 0;
    virtual void CancelUpdate() = 0;
    // Raises 3219 while an edit is in progress, unless changes are kept as a batch.
    virtual void Close() = 0;
    virtual void Delete(std::int32_t affected) = 0;
    // An array of fields × rows; the row behind the last one read becomes current.
    virtual Variant GetRows(std::int32_t rows, const Variant& start, const Variant& fields) = 0;
    virtual void Move(LongPtr rows, const Variant& start) = 0;
    virtual void MoveNext() = 0;
    virtual void MovePrevious() = 0;
    virtual void MoveFirst() = 0;
    virtual void MoveLast() = 0;
    // Raises 3709 for any source or connection, and without columns.
    virtual void Open(const Variant& source, const Variant& connection, std::int32_t cursor_type,
                      std::int32_t lock_type, std::int32_t options) = 0;
    // Raises 3251: there is no source to ask again.
    virtual void Requery(std::int32_t options) = 0;
    // Raises 3021 without a current row, and does nothing where no edit is in progress.
    virtual void Update(const Variant& fields, const Variant& values) = 0;
    virtual LongPtr AbsolutePage() = 0;
    virtual void SetAbsolutePage(LongPtr page) = 0;
    virtual std::int32_t EditMode() = 0;
    virtual Variant Filter() = 0;
    // A criteria text, an array of bookmarks or a group; the first row left becomes current. The
    // groups of pending and affected records have deleted ones among them, whose values raise 3021;
    // all records are fetched, and none is in conflict. A criteria text reads `column op value`,
    // joined by AND and OR, groups in parentheses; a group with OR may not be joined by AND (3001).
    virtual void SetFilter(const Variant& criteria) = 0;
    virtual LongPtr PageCount() = 0;
    virtual std::int32_t PageSize() = 0;
    virtual void SetPageSize(std::int32_t size) = 0;
    virtual Text Sort() = 0;
    // "column [ASC|DESC], …"; "" is the order of adding. Letters count first, then accents, then
    // "!" at the end, then case (text_order.h).
    virtual void SetSort(const Text& order) = 0;
    // As EditMode, of a record that the filter lets through no longer what it still is.
    virtual std::int32_t Status() = 0;
    virtual std::int32_t State() = 0;
    // Make the changes of a batch final, or take them back: those of the current row, of the rows
    // that a filter lets through, or of all. All are those that a criteria text lets through where
    // there is one. To take back a row being added changes no other. Where changes are final at
    // once, adAffectCurrent is Update or CancelUpdate, and anything else raises 3251.
    virtual void UpdateBatch(std::int32_t affected) = 0;
    virtual void CancelBatch(std::int32_t affected) = 0;
    virtual std::int32_t CursorLocation() = 0;
    virtual void SetCursorLocation(std::int32_t location) = 0;
    virtual bool Supports(std::int32_t options) = 0;
    // A field's value, without the field in between.
    virtual Variant Collect(const Variant& index) = 0;
    virtual void SetCollect(const Variant& index, const Variant& value) = 0;
    // Kept, and of no consequence: record sets are not marshalled by value.
    virtual std::int32_t MarshalOptions() = 0;
    virtual void SetMarshalOptions(std::int32_t options) = 0;
    // One `column op value`; begins at the current row, `skipped` rows on. Where none matches, the
    // end in the search's direction is reached.
    virtual void Find(const Text& criteria, LongPtr skipped, std::int32_t direction,
                      const Variant& start) = 0;
    // Nothing is ever under way that could be ended.
    virtual void Cancel() = 0;
    virtual Text GetString(std::int32_t format, std::int32_t rows,
                           const std::optional<Text>& column_delimiter,
                           const std::optional<Text>& row_delimiter,
                           const std::optional<Text>& null_text) = 0;
    virtual std::int32_t CompareBookmarks(const Variant& a, const Variant& b) = 0;
    // The same rows, with a place, order and filter of their own.
    virtual Ref<RecordSet> Clone(std::int32_t lock_type) = 0;

protected:
    ~RecordSet() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<RecordSet> = describe<RecordSet>(
    "_Recordset", "00000556-0000-0010-8000-00aa006d2ea4",
    get<&RecordSet::Properties>("Properties").id(500),
    get<&RecordSet::AbsolutePosition>("AbsolutePosition").id(1000),
    put<&RecordSet::SetAbsolutePosition>("AbsolutePosition", "position").id(1000),
    put_reference<&RecordSet::SetActiveConnectionObject>("ActiveConnection", "connection").id(1001),
    put<&RecordSet::SetActiveConnection>("ActiveConnection", "connection").id(1001),
    get<&RecordSet::ActiveConnection>("ActiveConnection").id(1001),
    get<&RecordSet::IsBof>("BOF").id(1002),
    get<&RecordSet::Bookmark>("Bookmark").id(1003),
    put<&RecordSet::SetBookmark>("Bookmark", "bookmark").id(1003),
    get<&RecordSet::CacheSize>("CacheSize").id(1004),
    put<&RecordSet::SetCacheSize>("CacheSize", "size").id(1004),
    get<&RecordSet::CursorType>("CursorType").id(1005),
    put<&RecordSet::SetCursorType>("CursorType", "type").id(1005),
    get<&RecordSet::IsEof>("EOF").id(1006),
    get<&RecordSet::Fields>("Fields").as_default(),
    get<&RecordSet::LockType>("LockType").id(1008),
    put<&RecordSet::SetLockType>("LockType", "type").id(1008),
    get<&RecordSet::MaxRecords>("MaxRecords").id(1009),
    put<&RecordSet::SetMaxRecords>("MaxRecords", "maximum").id(1009),
    get<&RecordSet::RecordCount>("RecordCount").id(1010),
    put_reference<&RecordSet::SetSourceObject>("Source", "source").id(1011),
    put<&RecordSet::SetSource>("Source", "source").id(1011),
    get<&RecordSet::Source>("Source").id(1011),
    method<&RecordSet::AddNew>("AddNew", optional("FieldList"), optional("Values")).id(1012),
    method<&RecordSet::CancelUpdate>("CancelUpdate").id(1013),
    method<&RecordSet::Close>("Close").id(1014),
    method<&RecordSet::Delete>("Delete", optional("AffectRecords", adAffectCurrent)).id(1015),
    method<&RecordSet::GetRows>("GetRows", optional("Rows", adGetRowsRest), optional("Start"),
                                optional("Fields"))
        .id(1016),
    method<&RecordSet::Move>("Move", "NumRecords", optional("Start")).id(1017),
    method<&RecordSet::MoveNext>("MoveNext").id(1018),
    method<&RecordSet::MovePrevious>("MovePrevious").id(1019),
    method<&RecordSet::MoveFirst>("MoveFirst").id(1020),
    method<&RecordSet::MoveLast>("MoveLast").id(1021),
    method<&RecordSet::Open>("Open", optional("Source"), optional("ActiveConnection"),
                             optional("CursorType", adOpenUnspecified),
                             optional("LockType", adLockUnspecified), optional("Options", -1))
        .id(1022),
    method<&RecordSet::Requery>("Requery", optional("Options", -1)).id(1023),
    reserved(36),  // _xResync
    method<&RecordSet::Update>("Update", optional("Fields"), optional("Values")).id(1025),
    get<&RecordSet::AbsolutePage>("AbsolutePage").id(1047),
    put<&RecordSet::SetAbsolutePage>("AbsolutePage", "page").id(1047),
    get<&RecordSet::EditMode>("EditMode").id(1026),
    get<&RecordSet::Filter>("Filter").id(1030),
    put<&RecordSet::SetFilter>("Filter", "Criteria").id(1030),
    get<&RecordSet::PageCount>("PageCount").id(1050),
    get<&RecordSet::PageSize>("PageSize").id(1048),
    put<&RecordSet::SetPageSize>("PageSize", "size").id(1048),
    get<&RecordSet::Sort>("Sort").id(1031),
    put<&RecordSet::SetSort>("Sort", "Criteria").id(1031),
    get<&RecordSet::Status>("Status").id(1029),
    get<&RecordSet::State>("State").id(1054),
    reserved(50),  // _xClone
    method<&RecordSet::UpdateBatch>("UpdateBatch", optional("AffectRecords", adAffectAll)).id(1035),
    method<&RecordSet::CancelBatch>("CancelBatch", optional("AffectRecords", adAffectAll)).id(1049),
    get<&RecordSet::CursorLocation>("CursorLocation").id(1051),
    put<&RecordSet::SetCursorLocation>("CursorLocation", "location").id(1051),
    reserved(55),  // NextRecordset
    method<&RecordSet::Supports>("Supports", "CursorOptions").id(1036),
    get<&RecordSet::Collect>("Collect", "Index").id(-8),
    put<&RecordSet::SetCollect>("Collect", "Index", "value").id(-8),
    get<&RecordSet::MarshalOptions>("MarshalOptions").id(1053),
    put<&RecordSet::SetMarshalOptions>("MarshalOptions", "options").id(1053),
    method<&RecordSet::Find>("Find", "Criteria", optional("SkipRecords"),
                             optional("SearchDirection", adSearchForward), optional("Start"))
        .id(1058),
    method<&RecordSet::Cancel>("Cancel").id(1055),
    reserved(63, 68),  // DataSource, _xSave, ActiveCommand, StayInSync
    method<&RecordSet::GetString>("GetString", optional("StringFormat", adClipString),
                                  optional("NumRows", -1), optional("ColumnDelimeter"),
                                  optional("RowDelimeter"), optional("NullExpr"))
        .id(1062),
    reserved(70, 71),  // DataMember
    method<&RecordSet::CompareBookmarks>("CompareBookmarks", "Bookmark1", "Bookmark2").id(1065),
    method<&RecordSet::Clone>("Clone", optional("LockType", adLockUnspecified)).id(1034),
    reserved(74, 78));  // Resync, Seek, Index, Save
// clang-format on

inline constexpr const char16_t* record_set_progid = u"ADODB.Recordset";

}  // namespace orvo
