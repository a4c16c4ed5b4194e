#pragma once

// The numbers of record sets, under the names by which their callers know them. Constants.

#include <cstdint>

namespace orvo {

enum DataType : std::int32_t {
    adEmpty = 0,
    adSmallInt = 2,
    adInteger = 3,
    adSingle = 4,
    adDouble = 5,
    adCurrency = 6,
    adDate = 7,
    adBSTR = 8,
    adIDispatch = 9,
    adError = 10,
    adBoolean = 11,
    adVariant = 12,
    adIUnknown = 13,
    adDecimal = 14,
    adTinyInt = 16,
    adUnsignedTinyInt = 17,
    adUnsignedSmallInt = 18,
    adUnsignedInt = 19,
    adBigInt = 20,
    adUnsignedBigInt = 21,
    adFileTime = 64,
    adGUID = 72,
    adBinary = 128,
    adChar = 129,
    adWChar = 130,
    adNumeric = 131,
    adUserDefined = 132,
    adDBDate = 133,
    adDBTime = 134,
    adDBTimeStamp = 135,
    adChapter = 136,
    adVarChar = 200,
    adLongVarChar = 201,
    adVarWChar = 202,
    adLongVarWChar = 203,
    adVarBinary = 204,
    adLongVarBinary = 205,
};

enum FieldAttribute : std::int32_t {
    adFldUnspecified = -1,
    adFldMayDefer = 0x2,
    adFldUpdatable = 0x4,
    adFldFixed = 0x10,
    adFldIsNullable = 0x20,
    adFldMayBeNull = 0x40,
    adFldLong = 0x80,
};

enum CursorType : std::int32_t {
    adOpenUnspecified = -1,
    adOpenForwardOnly = 0,
    adOpenKeyset = 1,
    adOpenDynamic = 2,
    adOpenStatic = 3,
};

enum LockType : std::int32_t {
    adLockUnspecified = -1,
    adLockReadOnly = 1,
    adLockPessimistic = 2,
    adLockOptimistic = 3,
    adLockBatchOptimistic = 4,
};

enum CursorLocation : std::int32_t { adUseNone = 1, adUseServer = 2, adUseClient = 3 };

enum ObjectState : std::int32_t { adStateClosed = 0, adStateOpen = 1 };

enum EditMode : std::int32_t {
    adEditNone = 0,
    adEditInProgress = 1,
    adEditAdd = 2,
    adEditDelete = 4,
};

enum Position : std::int32_t { adPosUnknown = -1, adPosBOF = -2, adPosEOF = -3 };

enum SearchDirection : std::int32_t { adSearchForward = 1, adSearchBackward = -1 };

enum Affect : std::int32_t {
    adAffectCurrent = 1,
    adAffectGroup = 2,
    adAffectAll = 3,
    adAffectAllChapters = 4,
};

enum RecordStatus : std::int32_t {
    adRecOK = 0,
    adRecNew = 1,
    adRecModified = 2,
    adRecDeleted = 4,
    adRecUnmodified = 8,
};

enum FilterGroup : std::int32_t {
    adFilterNone = 0,
    adFilterPendingRecords = 1,
    adFilterAffectedRecords = 2,
    adFilterFetchedRecords = 3,
    adFilterConflictingRecords = 5,
};

enum MarshalOptions : std::int32_t { adMarshalAll = 0, adMarshalModifiedOnly = 1 };

// Where a search or a block of rows starts; bookmarks are other numbers.
enum BookmarkPlace : std::int32_t {
    adBookmarkCurrent = 0,
    adBookmarkFirst = 1,
    adBookmarkLast = 2,
};

enum CompareResult : std::int32_t {
    adCompareLessThan = 0,
    adCompareEqual = 1,
    adCompareGreaterThan = 2,
};

enum CursorOption : std::int32_t {
    adHoldRecords = 0x100,
    adMovePrevious = 0x200,
    adAddNew = 0x1000400,
    adDelete = 0x1000800,
    adUpdate = 0x1008000,
    adBookmark = 0x2000,
    adApproxPosition = 0x4000,
    adUpdateBatch = 0x10000,
    adFind = 0x80000,
};

enum StringFormat : std::int32_t { adClipString = 2 };

inline constexpr std::int32_t adGetRowsRest = -1;

}  // namespace orvo
