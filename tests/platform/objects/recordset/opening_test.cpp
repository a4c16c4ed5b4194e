#include "tests/platform/objects/recordset/record_set_test.h"

namespace orvo {
namespace {

class OpeningTest : public RecordSetTest {
protected:
    std::int32_t open_with_source(const Variant& source, const Variant& connection) {
        return number_raised([&] {
            call<&RecordSet::Open>(rs, source, connection, adOpenUnspecified, adLockUnspecified,
                                   -1);
        });
    }
};

TEST_F(OpeningTest, AClosedRecordSetRefusesNearlyEverything) {
    const TextView text = u"Operation is not allowed when the object is closed.";
    expect_failure(3704, u"ADODB.Recordset", text, [&] { count(); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { bof(); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { eof(); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { first(); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { last(); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { next(); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { previous(); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { move(1); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { add_new(); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { update(); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { erase(); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { get(u"name"); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { position(); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { edit_mode(); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { find(u"name = 'x'"); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { call<&RecordSet::CancelUpdate>(rs); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { call<&RecordSet::Close>(rs); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { call<&RecordSet::Bookmark>(rs); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { call<&RecordSet::Clone>(rs, -1); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { call<&RecordSet::Supports>(rs, 0); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { call<&RecordSet::PageCount>(rs); });
    expect_failure(3704, u"ADODB.Recordset", text, [&] { call<&RecordSet::Requery>(rs, -1); });
    expect_failure(3704, u"ADODB.Recordset", text,
                   [&] { call<&RecordSet::GetRows>(rs, -1, missing, missing); });
    expect_failure(3704, u"ADODB.Recordset", text,
                   [&] { call<&RecordSet::GetString>(rs, 2, -1, {}, {}, {}); });
}

TEST_F(OpeningTest, TheStateIsAlwaysReadable) {
    EXPECT_EQ(call<&RecordSet::State>(rs), 0);
    open();
    EXPECT_EQ(call<&RecordSet::State>(rs), 1);
    call<&RecordSet::Close>(rs);
    EXPECT_EQ(call<&RecordSet::State>(rs), 0);
}

TEST_F(OpeningTest, AnEmptyRecordSetIsAtBothEnds) {
    open();
    EXPECT_TRUE(bof());
    EXPECT_TRUE(eof());
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(position(), -1);
    const TextView text =
        u"Either BOF or EOF is True, or the current record has been deleted. Requested operation "
        u"requires a current record.";
    expect_failure(3021, u"ADODB.Recordset", text, [&] { first(); });
    expect_failure(3021, u"ADODB.Recordset", text, [&] { last(); });
    expect_failure(3021, u"ADODB.Recordset", text, [&] { next(); });
    expect_failure(3021, u"ADODB.Recordset", text, [&] { previous(); });
    expect_failure(3021, u"ADODB.Recordset", text, [&] { get(u"name"); });
    expect_failure(3021, u"ADODB.Recordset", text, [&] { erase(); });
}

TEST_F(OpeningTest, AnOpenRecordSetCannotBeOpenedOrSetUpAgain) {
    open();
    const TextView text = u"Operation is not allowed when the object is open.";
    expect_failure(3705, u"ADODB.Recordset", text, [&] { open(); });
    expect_failure(3705, u"ADODB.Recordset", text, [&] { call<&RecordSet::SetSource>(rs, u"x"); });
    expect_failure(3705, u"ADODB.Recordset", text,
                   [&] { call<&RecordSet::SetCursorType>(rs, adOpenStatic); });
    expect_failure(3705, u"ADODB.Recordset", text,
                   [&] { call<&RecordSet::SetLockType>(rs, adLockOptimistic); });
    expect_failure(3705, u"ADODB.Recordset", text,
                   [&] { call<&RecordSet::SetCursorLocation>(rs, adUseClient); });
    expect_failure(3705, u"ADODB.Recordset", text, [&] { call<&RecordSet::SetMaxRecords>(rs, 5); });
}

TEST_F(OpeningTest, NeedsColumnsAndNoSource) {
    const TextView text =
        u"The connection cannot be used to perform this operation. It is either closed or invalid "
        u"in this context.";
    expect_failure(3709, u"ADODB.Recordset", text, [] {
        call<&RecordSet::Open>(make<RecordSetObject>(), Variant::missing(), Variant::missing(), -1,
                               -1, -1);
    });
    EXPECT_EQ(open_with_source(u"select", missing), 3709);
    EXPECT_EQ(open_with_source(missing, u"dsn"), 3709);
    call<&RecordSet::SetSource>(rs, u"select");
    EXPECT_EQ(open_with_source(missing, missing), 3709);
    call<&RecordSet::SetSource>(rs, u"");
    call<&RecordSet::Open>(rs, Variant(), Variant(Object()), -1, -1, -1);
    EXPECT_EQ(call<&RecordSet::State>(rs), 1);
}

TEST_F(OpeningTest, MakesAStaticClientCursorThatCanBeUpdated) {
    EXPECT_EQ(call<&RecordSet::CursorType>(rs), adOpenForwardOnly);
    EXPECT_EQ(call<&RecordSet::LockType>(rs), adLockReadOnly);
    EXPECT_EQ(call<&RecordSet::CursorLocation>(rs), adUseServer);
    open();
    EXPECT_EQ(call<&RecordSet::CursorType>(rs), adOpenStatic);
    EXPECT_EQ(call<&RecordSet::LockType>(rs), adLockOptimistic);
    EXPECT_EQ(call<&RecordSet::CursorLocation>(rs), adUseClient);
    for (const std::int32_t option : {adAddNew, adDelete, adUpdate, adBookmark, adFind,
                                      adMovePrevious, adHoldRecords, adApproxPosition})
        EXPECT_TRUE(call<&RecordSet::Supports>(rs, option)) << std::hex << option;
    EXPECT_FALSE(call<&RecordSet::Supports>(rs, adUpdateBatch));
    EXPECT_FALSE(call<&RecordSet::Supports>(rs, 0x20000)) << "Resync";
}

TEST_F(OpeningTest, TakesTheLockTypeFromThePropertyOrTheArgument) {
    call<&RecordSet::SetLockType>(rs, adLockBatchOptimistic);
    open();
    EXPECT_EQ(call<&RecordSet::LockType>(rs), adLockBatchOptimistic);
    EXPECT_TRUE(call<&RecordSet::Supports>(rs, adUpdateBatch));
    call<&RecordSet::Close>(rs);
    append(u"name", adInteger);
    open(adLockPessimistic);
    EXPECT_EQ(call<&RecordSet::LockType>(rs), adLockOptimistic)
        << "the nearest a client cursor has";
    EXPECT_EQ(number_raised([&] { call<&RecordSet::SetLockType>(make<RecordSetObject>(), 9); }),
              3001);
}

TEST_F(OpeningTest, AReadOnlyOneRefusesChanges) {
    open(adLockReadOnly);
    EXPECT_EQ(call<&RecordSet::LockType>(rs), adLockReadOnly);
    EXPECT_FALSE(call<&RecordSet::Supports>(rs, adAddNew));
    const TextView text = u"Object or provider is not capable of performing requested operation.";
    expect_failure(3251, u"ADODB.Recordset", text, [&] { add_new(); });
    expect_failure(3251, u"ADODB.Recordset", text, [&] { erase(); });
    expect_failure(3251, u"ADODB.Field", text, [&] { call<&Field::SetValue>(field(0), 1); });
}

TEST_F(OpeningTest, ClosingDropsTheColumns) {
    open_with({u"Ann"});
    sort(u"name");
    call<&RecordSet::Close>(rs);
    EXPECT_EQ(call<&Fields::Count>(fields()), 0);
    EXPECT_EQ(call<&RecordSet::Sort>(rs), u"");
    EXPECT_EQ(number_raised([&] { open(); }), 3709);
    append(u"name", adVarWChar, 5);
    open();
    EXPECT_EQ(count(), 0);
}

TEST_F(OpeningTest, ClosingDuringAnEditIsRefusedUnlessChangesAreKeptAsABatch) {
    open_with({u"Ann"});
    put(u"name", u"Bob");
    expect_failure(3219, u"ADODB.Recordset", u"Operation is not allowed in this context.",
                   [&] { call<&RecordSet::Close>(rs); });
    EXPECT_EQ(call<&RecordSet::State>(rs), 1);
    call<&RecordSet::CancelUpdate>(rs);
    call<&RecordSet::Close>(rs);

    rs = make<RecordSetObject>();
    append(u"name", adVarWChar, 5);
    open(adLockBatchOptimistic);
    add_new();
    call<&RecordSet::Close>(rs);
    EXPECT_EQ(call<&RecordSet::State>(rs), 0);
}

TEST_F(OpeningTest, SortAndFilterMayBeSetBefore) {
    sort(u"name DESC");
    filter(u"number > 1");
    open_with({});
    add(1, u"Ann");
    add(2, u"Bob");
    add(3, u"Cid");
    EXPECT_EQ(names(), (std::vector<std::string>{"Cid", "Bob"}));
    EXPECT_EQ(call<&RecordSet::Sort>(rs), u"name DESC");
    EXPECT_EQ(call<&RecordSet::Filter>(rs), Variant(u"number > 1"));
}

TEST_F(OpeningTest, HasNoConnection) {
    open();
    EXPECT_EQ(call<&RecordSet::ActiveConnection>(rs), Variant(Object()));
    call<&RecordSet::SetActiveConnectionObject>(rs, nullptr);
    call<&RecordSet::SetActiveConnection>(rs, Variant(Object()));
    EXPECT_EQ(number_raised([&] { call<&RecordSet::SetActiveConnection>(rs, u"dsn"); }), 3251);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::Requery>(rs, -1); }), 3251);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::SetSourceObject>(rs, rs.object()); }), 3251);
}

TEST_F(OpeningTest, KeepsTheSettingsThatHaveNoEffectHere) {
    EXPECT_EQ(call<&RecordSet::CacheSize>(rs), 1);
    call<&RecordSet::SetCacheSize>(rs, 100);
    EXPECT_EQ(call<&RecordSet::CacheSize>(rs), 100);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::SetCacheSize>(rs, 0); }), 3001);
    EXPECT_EQ(call<&RecordSet::MaxRecords>(rs), 0);
    call<&RecordSet::SetMaxRecords>(rs, 50);
    EXPECT_EQ(call<&RecordSet::MaxRecords>(rs), 50);
    EXPECT_EQ(call<&RecordSet::Source>(rs), Variant(u""));
}

}  // namespace
}  // namespace orvo
