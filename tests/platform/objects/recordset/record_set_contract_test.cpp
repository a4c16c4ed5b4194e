#include "platform/objects/recordset/record_set_contract.h"

#include <gtest/gtest.h>

#include "platform/interfaces/dispatch.h"

namespace orvo {
namespace {

static_assert(slot_of<&RecordSet::Properties> == 7);
static_assert(slot_of<&RecordSet::AbsolutePosition> == 8);
static_assert(slot_of<&RecordSet::SetActiveConnectionObject> == 10);
static_assert(slot_of<&RecordSet::ActiveConnection> == 12);
static_assert(slot_of<&RecordSet::IsBof> == 13);
static_assert(slot_of<&RecordSet::Bookmark> == 14);
static_assert(slot_of<&RecordSet::CacheSize> == 16);
static_assert(slot_of<&RecordSet::CursorType> == 18);
static_assert(slot_of<&RecordSet::IsEof> == 20);
static_assert(slot_of<&RecordSet::Fields> == 21);
static_assert(slot_of<&RecordSet::LockType> == 22);
static_assert(slot_of<&RecordSet::MaxRecords> == 24);
static_assert(slot_of<&RecordSet::RecordCount> == 26);
static_assert(slot_of<&RecordSet::SetSourceObject> == 27);
static_assert(slot_of<&RecordSet::Source> == 29);
static_assert(slot_of<&RecordSet::AddNew> == 30);
static_assert(slot_of<&RecordSet::CancelUpdate> == 31);
static_assert(slot_of<&RecordSet::Close> == 32);
static_assert(slot_of<&RecordSet::Delete> == 33);
static_assert(slot_of<&RecordSet::GetRows> == 34);
static_assert(slot_of<&RecordSet::Move> == 35);
static_assert(slot_of<&RecordSet::MoveNext> == 36);
static_assert(slot_of<&RecordSet::MovePrevious> == 37);
static_assert(slot_of<&RecordSet::MoveFirst> == 38);
static_assert(slot_of<&RecordSet::MoveLast> == 39);
static_assert(slot_of<&RecordSet::Open> == 40);
static_assert(slot_of<&RecordSet::Requery> == 41);
static_assert(slot_of<&RecordSet::Update> == 43);
static_assert(slot_of<&RecordSet::AbsolutePage> == 44);
static_assert(slot_of<&RecordSet::EditMode> == 46);
static_assert(slot_of<&RecordSet::Filter> == 47);
static_assert(slot_of<&RecordSet::PageCount> == 49);
static_assert(slot_of<&RecordSet::PageSize> == 50);
static_assert(slot_of<&RecordSet::Sort> == 52);
static_assert(slot_of<&RecordSet::SetSort> == 53);
static_assert(slot_of<&RecordSet::Status> == 54);
static_assert(slot_of<&RecordSet::State> == 55);
static_assert(slot_of<&RecordSet::UpdateBatch> == 57);
static_assert(slot_of<&RecordSet::CancelBatch> == 58);
static_assert(slot_of<&RecordSet::CursorLocation> == 59);
static_assert(slot_of<&RecordSet::Supports> == 62);
static_assert(slot_of<&RecordSet::Collect> == 63);
static_assert(slot_of<&RecordSet::MarshalOptions> == 65);
static_assert(slot_of<&RecordSet::SetMarshalOptions> == 66);
static_assert(slot_of<&RecordSet::Find> == 67);
static_assert(slot_of<&RecordSet::Cancel> == 68);
static_assert(slot_of<&RecordSet::GetString> == 75);
static_assert(slot_of<&RecordSet::CompareBookmarks> == 78);
static_assert(slot_of<&RecordSet::Clone> == 79);
static_assert(table_of<RecordSet>.slot_count == 85);

static_assert(slot_of<&Fields::Count> == 7);
static_assert(slot_of<&Fields::NewEnum> == 8);
static_assert(slot_of<&Fields::Item> == 10);
static_assert(slot_of<&Fields::Delete> == 12);
static_assert(slot_of<&Fields::Append> == 13);
static_assert(slot_of<&Fields::CancelUpdate> == 16);

static_assert(slot_of<&Field::Properties> == 7);
static_assert(slot_of<&Field::ActualSize> == 8);
static_assert(slot_of<&Field::Name> == 11);
static_assert(slot_of<&Field::Type> == 12);
static_assert(slot_of<&Field::Value> == 13);
static_assert(slot_of<&Field::SetValue> == 14);
static_assert(slot_of<&Field::NumericScale> == 16);
static_assert(slot_of<&Field::AppendChunk> == 17);
static_assert(slot_of<&Field::GetChunk> == 18);
static_assert(slot_of<&Field::OriginalValue> == 19);
static_assert(slot_of<&Field::SetPrecision> == 23);
static_assert(slot_of<&Field::SetType> == 25);
static_assert(slot_of<&Field::SetAttributes> == 27);
static_assert(slot_of<&Field::Status> == 28);

template <class I>
abi::DISPID id_of(TextView name) {
    return detail::callee<I>::info().id_of(name);
}

TEST(RecordSetContract, KnowsItsMembersByThePlatformsNumbers) {
    EXPECT_EQ(id_of<RecordSet>(u"Fields"), 0);
    EXPECT_EQ(id_of<RecordSet>(u"Collect"), -8);
    EXPECT_EQ(id_of<RecordSet>(u"AddNew"), 1012);
    EXPECT_EQ(id_of<RecordSet>(u"EOF"), 1006);
    EXPECT_EQ(id_of<RecordSet>(u"AbsolutePage"), 1047);
    EXPECT_EQ(id_of<RecordSet>(u"Status"), 1029);
    EXPECT_EQ(id_of<RecordSet>(u"Find"), 1058);
    EXPECT_EQ(id_of<RecordSet>(u"Clone"), 1034);
    EXPECT_EQ(id_of<Fields>(u"Item"), 0);
    EXPECT_EQ(id_of<Fields>(u"_NewEnum"), -4);
    EXPECT_EQ(id_of<Fields>(u"Append"), 0x60040001);
    EXPECT_EQ(id_of<Field>(u"Value"), 0);
    EXPECT_EQ(id_of<Field>(u"Name"), 1100);
    EXPECT_EQ(id_of<Field>(u"NumericScale"), 0x60030008);
}

}  // namespace
}  // namespace orvo
