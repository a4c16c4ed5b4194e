#include "platform/objects/recordset/fields.h"

#include "platform/interfaces/enumerator.h"
#include "tests/platform/objects/recordset/record_set_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

class FieldsTest : public RecordSetTest {
protected:
    Ref<RecordSet> fresh() { return make<RecordSetObject>(); }

    // The value as a column of this type keeps it.
    Variant kept(std::int32_t type, const Variant& value, std::int64_t size = 0,
                 std::int32_t attributes = adFldUnspecified) {
        rs = fresh();
        append(u"c", type, size, attributes);
        open();
        add_new();
        put(u"c", value);
        return get(u"c");
    }
    std::int32_t refusal(std::int32_t type, const Variant& value, std::int64_t size = 0) {
        return number_raised([&] { kept(type, value, size); });
    }
};

TEST_F(FieldsTest, StandInTheOrderOfAppending) {
    EXPECT_EQ(call<&Fields::Count>(fields()), 3);
    EXPECT_EQ(call<&Field::Name>(field(0)), u"number");
    EXPECT_EQ(call<&Field::Name>(field(2)), u"mail");
}

TEST_F(FieldsTest, AreFoundByNameWithoutRegardToCaseAndByPlace) {
    EXPECT_EQ(field(u"NaMe"), field(1));
    EXPECT_EQ(field(Variant(std::int16_t(1))), field(1.0));
    EXPECT_EQ(field(u"name"), field(u"name")) << "one object for each column";
}

TEST_F(FieldsTest, ThatAreNotThereRaise3265) {
    const TextView text =
        u"Item cannot be found in the collection corresponding to the requested name or ordinal.";
    expect_failure(3265, u"ADODB.Fields", text, [&] { field(u"none"); });
    expect_failure(3265, u"ADODB.Fields", text, [&] { field(3); });
    expect_failure(3265, u"ADODB.Fields", text, [&] { field(-1); });
    EXPECT_EQ(number_raised([&] { field(Variant()); }), 3265);
    EXPECT_EQ(number_raised([&] { field(Variant::null()); }), 3265);
    open();
    expect_failure(3265, u"ADODB.Recordset", text, [&] { get(u"none"); });
}

TEST_F(FieldsTest, CannotHaveOneNameTwice) {
    expect_failure(3367, u"ADODB.Fields", u"Object is already in collection. Cannot append.",
                   [&] { append(u"NAME", adInteger); });
}

TEST_F(FieldsTest, CannotBeAppendedOrDeletedWhileOpen) {
    open();
    const TextView text = u"Operation is not allowed when the object is open.";
    expect_failure(3705, u"ADODB.Fields", text, [&] { append(u"more", adInteger); });
    expect_failure(3705, u"ADODB.Fields", text, [&] { call<&Fields::Delete>(fields(), 0); });
}

TEST_F(FieldsTest, CannotBeOfATypeWithoutColumns) {
    const TextView text =
        u"Arguments are of the wrong type, are out of acceptable range, or are in conflict with "
        u"one another.";
    for (const std::int32_t type : {0, 9, 10, 13, 132, 136, 138, 0x2003, 999})
        expect_failure(3001, u"ADODB.Fields", text, [&] { append(u"more", type); });
    expect_failure(3001, u"ADODB.Fields", text, [&] { append(u"more", adVarWChar); });
    expect_failure(3001, u"ADODB.Fields", text, [&] { append({}, adInteger); });
    EXPECT_EQ(call<&Fields::Count>(fields()), 3);
}

TEST_F(FieldsTest, CanBeDeletedWhileClosed) {
    const Ref<Field> name = field(u"name");
    call<&Fields::Delete>(fields(), u"number");
    EXPECT_EQ(call<&Fields::Count>(fields()), 2);
    EXPECT_EQ(call<&Field::Name>(field(0)), u"name");
    EXPECT_EQ(number_raised([&] { call<&Field::Name>(name); }), 3265) << "taken before";
}

TEST_F(FieldsTest, AreDescribedByTypeSizeAndAttributes) {
    EXPECT_EQ(call<&Field::Type>(field(0)), 3);
    EXPECT_EQ(call<&Field::DefinedSize>(field(0)), 4);
    EXPECT_EQ(call<&Field::Attributes>(field(0)), 0x20);
    EXPECT_EQ(call<&Field::Precision>(field(0)), 10);
    EXPECT_EQ(call<&Field::Type>(field(1)), 202);
    EXPECT_EQ(call<&Field::DefinedSize>(field(1)), 20);
    EXPECT_EQ(call<&Field::Attributes>(field(1)), adFldUpdatable);
    EXPECT_EQ(call<&Field::NumericScale>(field(1)), 0);
    EXPECT_EQ(call<&Field::Status>(field(1)), 0);
    append(u"long", adLongVarWChar);
    EXPECT_EQ(call<&Field::Attributes>(field(u"long")), 0x86);
    append(u"fixed", adDouble);
    EXPECT_EQ(call<&Field::Attributes>(field(u"fixed")), 0x14);
}

TEST_F(FieldsTest, CanBeDescribedAnewWhileClosed) {
    call<&Field::SetType>(field(u"number"), adNumeric);
    call<&Field::SetPrecision>(field(u"number"), std::uint8_t{12});
    call<&Field::SetNumericScale>(field(u"number"), std::uint8_t{2});
    call<&Field::SetDefinedSize>(field(u"name"), 30);
    call<&Field::SetAttributes>(field(u"name"), adFldIsNullable);
    EXPECT_EQ(call<&Field::Type>(field(0)), 131);
    EXPECT_EQ(call<&Field::Precision>(field(0)), 12);
    EXPECT_EQ(call<&Field::NumericScale>(field(0)), 2);
    EXPECT_EQ(call<&Field::DefinedSize>(field(1)), 30);
    EXPECT_EQ(call<&Field::Attributes>(field(1)), 0x20);
    open();
    EXPECT_EQ(number_raised([&] { call<&Field::SetType>(field(0), adInteger); }), 3705);
}

TEST_F(FieldsTest, AreEnumerated) {
    const auto items = late::items_of(fields().object());
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[1].to<Object>(), field(u"name").object());
}

TEST_F(FieldsTest, HaveNoDynamicProperties) {
    for (const auto& properties :
         {call<&RecordSet::Properties>(rs), call<&Field::Properties>(field(0))}) {
        EXPECT_EQ(call<&Properties::Count>(properties), 0);
        EXPECT_TRUE(late::items_of(properties.object()).empty());
        EXPECT_EQ(number_raised([&] { call<&Properties::Item>(properties, 0); }), 3265);
    }
}

TEST_F(FieldsTest, KeepValuesInTheTypeOfTheirColumn) {
    EXPECT_EQ(kept(adInteger, u"42"), Variant(42));
    EXPECT_EQ(kept(adInteger, 2.5), Variant(2));
    EXPECT_EQ(kept(adInteger, Variant()), Variant(0));
    EXPECT_EQ(kept(adSmallInt, 7), Variant(std::int16_t(7)));
    EXPECT_EQ(kept(adDouble, 7), Variant(7.0));
    EXPECT_EQ(kept(adBigInt, 7), Variant(std::int64_t(7)));
    EXPECT_EQ(kept(adCurrency, u"1.5"), Variant(Currency{15000}));
    EXPECT_EQ(kept(adBoolean, u"True"), Variant(true));
    EXPECT_EQ(kept(adDate, u"2003-01-02"), Variant(Date{37623}));
    EXPECT_EQ(kept(adDBTimeStamp, 37623.5), Variant(Date{37623.5}));
    EXPECT_EQ(kept(adVarWChar, 42, 5), Variant(u"42"));
    EXPECT_EQ(kept(adVarWChar, true, 5), Variant(u"True"));
    EXPECT_EQ(kept(adVarWChar, Variant(), 5), Variant(u""));
    EXPECT_EQ(kept(adLongVarWChar, Text(5000, u'x')), Variant(Text(5000, u'x')));
    EXPECT_EQ(kept(adBSTR, u"any"), Variant(u"any"));
    EXPECT_EQ(kept(adVarBinary, Variant::bytes("abc"), 3), Variant::bytes("abc"));
    EXPECT_EQ(kept(adVariant, Values{1, u"a"}), Variant(Values{1, u"a"}));
    EXPECT_EQ(kept(adVariant, Variant()), Variant());
    EXPECT_EQ(kept(adDecimal, 5).kind(), Kind::decimal);
}

TEST_F(FieldsTest, RefuseValuesOfAWrongType) {
    expect_failure(3421, u"ADODB.Recordset",
                   u"Application uses a value of the wrong type for the current operation.",
                   [&] { kept(adInteger, u"abc"); });
    EXPECT_EQ(refusal(adInteger, u""), 3421);
    EXPECT_EQ(refusal(adInteger, Values{1}), 3421);
    EXPECT_EQ(refusal(adInteger, Variant::missing()), 3421);
    EXPECT_EQ(refusal(adInteger, Variant(Object())), 3421);
    EXPECT_EQ(refusal(adVarWChar, Values{u"a"}, 5), 3421);
    EXPECT_EQ(refusal(adVarWChar, Variant::bytes("ab"), 5), 3421);
    EXPECT_EQ(refusal(adDate, u"abc"), 3421);
    EXPECT_EQ(refusal(adVarBinary, u"abc", 5), 3421);
}

TEST_F(FieldsTest, RefuseValuesThatDoNotFit) {
    expect_failure(field_failed, u"ADODB.Recordset",
                   u"Multiple-step operation generated errors. Check each status value.",
                   [&] { kept(adVarWChar, u"123456", 5); });
    EXPECT_EQ(kept(adVarWChar, u"12345", 5), Variant(u"12345"));
    EXPECT_EQ(refusal(adSmallInt, 70000), field_failed);
    EXPECT_EQ(refusal(adInteger, 3e10), field_failed);
    EXPECT_EQ(refusal(adDate, Variant()), field_failed) << "Empty is no date";
    EXPECT_EQ(refusal(adVarBinary, Variant::bytes("abc"), 2), field_failed);
}

TEST_F(FieldsTest, TakeNullOnlyWhereTheyMayBeNull) {
    EXPECT_EQ(kept(adInteger, Variant::null(), 0, adFldIsNullable), Variant::null());
    EXPECT_EQ(kept(adVariant, Variant::null()), Variant::null());
    EXPECT_EQ(refusal(adInteger, Variant::null()), field_failed);
    EXPECT_EQ(refusal(adVarWChar, Variant::null(), 5), field_failed);
}

TEST_F(FieldsTest, TakeTheDefaultValueOfAnObject) {
    open_with({u"Ann"});
    put(u"mail", Variant(field(u"name").object()));
    EXPECT_EQ(get(u"mail"), Variant(u"Ann"));
}

TEST_F(FieldsTest, LeaveTheValueWhenTheyRefuseAnother) {
    open_with({u"Ann"});
    EXPECT_EQ(number_raised([&] { put(u"number", u"abc"); }), 3421);
    EXPECT_EQ(get(u"number"), Variant(1));
    EXPECT_EQ(edit_mode(), adEditNone) << "no edit has begun";
}

TEST_F(FieldsTest, TellTheSizeOfTheirValue) {
    open();
    add(5, u"Ann");
    EXPECT_EQ(call<&Field::ActualSize>(field(u"number")), 4);
    EXPECT_EQ(call<&Field::ActualSize>(field(u"name")), 6) << "wide text, in bytes";
    EXPECT_EQ(call<&Field::ActualSize>(field(u"mail")), 0) << "Null";
}

TEST_F(FieldsTest, HaveAValueOnlyWhereThereIsACurrentRow) {
    const TextView no_row =
        u"Either BOF or EOF is True, or the current record has been deleted. Requested operation "
        u"requires a current record.";
    expect_failure(3704, u"ADODB.Field", u"Operation is not allowed when the object is closed.",
                   [&] { call<&Field::Value>(field(0)); });
    open();
    expect_failure(3021, u"ADODB.Field", no_row, [&] { call<&Field::Value>(field(0)); });
    expect_failure(3021, u"ADODB.Field", no_row, [&] { call<&Field::SetValue>(field(0), 1); });
    expect_failure(3021, u"ADODB.Field", no_row, [&] { call<&Field::OriginalValue>(field(0)); });
}

TEST_F(FieldsTest, OutliveTheRecordSetTheyWereTakenFrom) {
    open_with({u"Ann"});
    const Ref<Field> name = field(u"name");
    rs = nullptr;
    EXPECT_EQ(call<&Field::Value>(name), Variant(u"Ann"));
}

}  // namespace
}  // namespace orvo
