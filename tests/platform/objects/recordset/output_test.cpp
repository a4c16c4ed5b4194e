#include "platform/objects/recordset/builder.h"
#include "tests/platform/objects/recordset/record_set_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

class OutputTest : public RecordSetTest {
protected:
    Variant rows(std::int32_t count = adGetRowsRest, const Variant& start = Variant::missing(),
                 const Variant& columns = Variant::missing()) {
        return call<&RecordSet::GetRows>(rs, count, start, columns);
    }
    Text string(std::int32_t count = -1, std::optional<Text> column = {},
                std::optional<Text> row = {}, std::optional<Text> null = {}) {
        return call<&RecordSet::GetString>(rs, adClipString, count, column, row, null);
    }
    // One element, as a caller of the system's array functions reads it.
    static Variant at(const Variant& array, std::int32_t field, std::int32_t row) {
        std::int32_t indices[] = {field, row};
        Variant element;
        EXPECT_EQ(abi::SafeArrayGetElement(array.get()->parray, indices, element.put()), 0);
        return element;
    }
    static std::pair<std::int32_t, std::int32_t> upper_bounds(const Variant& array) {
        std::pair<std::int32_t, std::int32_t> bounds;
        abi::SafeArrayGetUBound(array.get()->parray, 1, &bounds.first);
        abi::SafeArrayGetUBound(array.get()->parray, 2, &bounds.second);
        return bounds;
    }
};

TEST_F(OutputTest, RowsComeAsAnArrayOfFieldsByRows) {
    open();
    add(1, u"Ann", u"a@x");
    add(2, u"Bob");
    first();
    const Variant all = rows();
    EXPECT_EQ(all.get()->vt, abi::VT_ARRAY | abi::VT_VARIANT);
    EXPECT_EQ(upper_bounds(all), std::pair(2, 1));
    EXPECT_EQ(at(all, 0, 0), Variant(1));
    EXPECT_EQ(at(all, 1, 1), Variant(u"Bob"));
    EXPECT_EQ(at(all, 2, 0), Variant(u"a@x"));
    EXPECT_EQ(at(all, 2, 1), Variant::null());
    EXPECT_EQ(here(), "EOF");
}

TEST_F(OutputTest, RowsAreReadInPortions) {
    open_with({u"Ann", u"Bob", u"Cid"});
    EXPECT_EQ(at(rows(2), 1, 1), Variant(u"Bob"));
    EXPECT_EQ(here(), "Cid");
    EXPECT_EQ(upper_bounds(rows(100)), std::pair(2, 0));
    expect_failure(3021, u"ADODB.Recordset",
                   u"Either BOF or EOF is True, or the current record has been deleted. Requested "
                   u"operation requires a current record.",
                   [&] { rows(); });
    EXPECT_EQ(upper_bounds(rows(1, adBookmarkFirst)), std::pair(2, 0));
    EXPECT_EQ(here(), "Bob");
    EXPECT_EQ(number_raised([&] { rows(-2); }), 3001);
}

TEST_F(OutputTest, RowsMayHaveChosenFieldsOnly) {
    open_with({u"Ann"});
    EXPECT_EQ(at(rows(-1, missing, u"name"), 0, 0), Variant(u"Ann"));
    const Variant two = rows(-1, adBookmarkFirst, Values{u"NAME", 0});
    EXPECT_EQ(upper_bounds(two), std::pair(1, 0));
    EXPECT_EQ(at(two, 1, 0), Variant(1));
    first();
    EXPECT_EQ(number_raised([&] { rows(-1, missing, u"none"); }), 3265);
    EXPECT_EQ(here(), "Ann") << "nothing was read";
}

TEST_F(OutputTest, RowsFollowOrderAndFilter) {
    open_with({u"c", u"a", u"b", u"d"});
    sort(u"name DESC");
    filter(u"name < 'd'");
    const Variant all = rows(-1, missing, u"name");
    EXPECT_EQ(upper_bounds(all), std::pair(0, 2));
    EXPECT_EQ(at(all, 0, 0), Variant(u"c"));
    EXPECT_EQ(at(all, 0, 2), Variant(u"a"));
}

TEST_F(OutputTest, AStringHasTabsAndReturns) {
    open();
    add(1, u"Ann", u"a@x");
    add(2, u"Bob");
    first();
    EXPECT_EQ(string(), u"1\tAnn\ta@x\r2\tBob\t\r");
    EXPECT_EQ(here(), "EOF");
}

TEST_F(OutputTest, AStringTakesDelimitersAndAWordForNull) {
    open_with({u"Ann", u"Bob"});
    EXPECT_EQ(string(1, u", ", u";", u"none"), u"1, Ann, none;");
    EXPECT_EQ(here(), "Bob");
    EXPECT_EQ(string(-1, u"", u""), u"2Bob") << "an empty delimiter is one";
    first();
    EXPECT_EQ(number_raised([&] { call<&RecordSet::GetString>(rs, 1, -1, {}, {}, {}); }), 3001);
}

TEST_F(OutputTest, AStringJoinsTheValuesOfADirectorysAttribute) {
    RecordSetBuilder builder({u"a", u"b"});
    builder.add({Values{u"x", 2}, Variant()});
    rs = builder.open();
    EXPECT_EQ(string(-1, u"|", u"\n", u"-"), u"x, 2|-\n");
}

TEST(RecordSetBuilder, MakesAnOpenReadOnlyRecordSetAtItsFirstRow) {
    RecordSetBuilder builder({u"cn", u"mail"});
    builder.reserve(2);
    builder.add({u"jsmith", Values{u"a@x", u"b@x"}});
    builder.add({u"kim", Variant()});
    const auto rs = builder.open();
    EXPECT_EQ(call<&RecordSet::State>(rs), adStateOpen);
    EXPECT_EQ(call<&RecordSet::RecordCount>(rs), 2);
    EXPECT_EQ(call<&RecordSet::Collect>(rs, u"CN"), Variant(u"jsmith"));
    EXPECT_EQ(call<&RecordSet::Collect>(rs, 1), Variant(Values{u"a@x", u"b@x"}));
    EXPECT_EQ(call<&RecordSet::LockType>(rs), adLockReadOnly);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::SetCollect>(rs, 0, 1); }), 3251);
    call<&RecordSet::MoveNext>(rs);
    EXPECT_EQ(call<&RecordSet::Collect>(rs, u"mail"), Variant());
    const auto fields = call<&RecordSet::Fields>(rs);
    EXPECT_EQ(call<&Field::Type>(call<&Fields::Item>(fields, 0)), adVariant);
}

TEST(RecordSetBuilder, MakesOneThatCanBeUpdatedWhereAsked) {
    RecordSetBuilder builder({u"cn"});
    const auto rs = builder.open(RecordSetBuilder::Access::updatable);
    EXPECT_TRUE(call<&RecordSet::IsEof>(rs));
    call<&RecordSet::AddNew>(rs, u"cn", u"kim");
    EXPECT_EQ(call<&RecordSet::RecordCount>(rs), 1);
}

TEST(RecordSetBuilder, RefusesARowOfAnotherWidth) {
    RecordSetBuilder builder({u"cn", u"mail"});
    EXPECT_EQ(number_raised([&] { builder.add({u"kim"}); }), 3001);
}

TEST(RecordSetBuilder, LetsTheFirstOfTwoColumnsWithOneNameBeFound) {
    RecordSetBuilder builder({u"cn", u"CN"});
    builder.add({1, 2});
    const auto rs = builder.open();
    EXPECT_EQ(call<&RecordSet::Collect>(rs, u"Cn"), Variant(1));
    EXPECT_EQ(call<&RecordSet::Collect>(rs, 1), Variant(2));
}

}  // namespace
}  // namespace orvo
