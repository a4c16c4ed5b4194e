#include "tests/platform/objects/recordset/record_set_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

class EditingTest : public RecordSetTest {
protected:
    void cancel() { call<&RecordSet::CancelUpdate>(rs); }
    std::int32_t status() { return call<&RecordSet::Status>(rs); }
    Variant original(const Variant& index) { return call<&Field::OriginalValue>(field(index)); }
};

TEST_F(EditingTest, ANewRowIsCurrentAndStaysCurrentAfterUpdate) {
    open_with({u"Ann", u"Bob"});
    add_new();
    EXPECT_EQ(edit_mode(), adEditAdd);
    EXPECT_EQ(status(), adRecNew);
    EXPECT_EQ(count(), 3) << "the row being added is counted";
    EXPECT_EQ(position(), 3);
    put(u"name", u"Cid");
    EXPECT_EQ(get(u"name"), Variant(u"Cid"));
    update();
    EXPECT_EQ(edit_mode(), adEditNone);
    EXPECT_EQ(here(), "Cid");
    next();
    EXPECT_EQ(here(), "EOF");
}

TEST_F(EditingTest, UnsetFieldsOfANewRowAreNullWhereTheyMayBe) {
    open();
    add_new();
    EXPECT_EQ(get(u"mail"), Variant::null());
    put(u"name", u"Ann");
    update();
    EXPECT_EQ(get(u"number"), Variant::null());
    EXPECT_EQ(get(u"mail"), Variant::null());
}

TEST_F(EditingTest, UnsetFieldsThatMayNotBeNullFailTheUpdate) {
    open();
    add_new();
    put(u"number", 1);
    expect_failure(field_failed, u"ADODB.Recordset",
                   u"Multiple-step operation generated errors. Check each status value.",
                   [&] { update(); });
    EXPECT_EQ(edit_mode(), adEditAdd) << "the row can still be completed";
    EXPECT_EQ(number_raised([&] { first(); }), field_failed) << "a move updates first";
    put(u"name", u"Ann");
    update();
    EXPECT_THAT(names(), ElementsAre("Ann"));
}

TEST_F(EditingTest, AddNewDuringAnEditUpdatesFirst) {
    open();
    add_new();
    put(u"name", u"Ann");
    add_new();
    put(u"name", u"Bob");
    first();
    EXPECT_EQ(edit_mode(), adEditNone);
    EXPECT_THAT(names(), ElementsAre("Ann", "Bob"));
}

TEST_F(EditingTest, AnyMoveDuringAnEditUpdatesFirst) {
    open_with({u"Ann", u"Bob"});
    put(u"name", u"Amy");
    EXPECT_EQ(edit_mode(), adEditInProgress);
    EXPECT_EQ(status(), adRecModified);
    next();
    put(u"name", u"Ben");
    previous();
    EXPECT_THAT(names(), ElementsAre("Amy", "Ben"));
}

TEST_F(EditingTest, AddNewWithListsIsOneStep) {
    open();
    call<&RecordSet::AddNew>(rs, Values{u"name", 0}, Values{u"Ann", 7});
    EXPECT_EQ(edit_mode(), adEditNone);
    EXPECT_EQ(get(u"number"), Variant(7));
    call<&RecordSet::AddNew>(rs, u"name", u"Bob");
    next();
    EXPECT_EQ(here(), "EOF");
    EXPECT_THAT(names(), ElementsAre("Ann", "Bob"));
}

TEST_F(EditingTest, AddNewWithListsAddsAllOrNothing) {
    open_with({u"Ann"});
    const auto added = [&](const Variant& fields, const Variant& values) {
        return number_raised([&] { call<&RecordSet::AddNew>(rs, fields, values); });
    };
    EXPECT_EQ(added(Values{u"name", u"number"}, Values{u"Bob"}), 3001);
    EXPECT_EQ(added(Values{u"name"}, u"Bob"), 3001);
    EXPECT_EQ(added(Values{u"name", u"none"}, Values{u"Bob", 1}), 3265);
    EXPECT_EQ(added(Values{u"name", u"number"}, Values{u"Bob", u"abc"}), 3421);
    EXPECT_EQ(added(Values{u"number"}, Values{1}), field_failed);
    EXPECT_EQ(edit_mode(), adEditNone);
    EXPECT_EQ(here(), "Ann");
    EXPECT_EQ(count(), 1);
}

TEST_F(EditingTest, UpdateWithListsChangesTheCurrentRow) {
    open_with({u"Ann"});
    call<&RecordSet::Update>(rs, Values{u"name", u"number"}, Values{u"Amy", 9});
    EXPECT_EQ(edit_mode(), adEditNone);
    EXPECT_EQ(get(u"name"), Variant(u"Amy"));
    EXPECT_EQ(get(u"number"), Variant(9));
    call<&RecordSet::Update>(rs, u"name", u"Eve");
    EXPECT_EQ(here(), "Eve");
}

TEST_F(EditingTest, UpdateWithoutAnEditDoesNothing) {
    open_with({u"Ann"});
    update();
    EXPECT_THAT(names(), ElementsAre("Ann"));
}

TEST_F(EditingTest, UpdateNeedsARowThatCouldBeChanged) {
    open_with({u"Ann"});
    const auto clone = call<&RecordSet::Clone>(rs, adLockReadOnly);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::Update>(clone, missing, missing); }), 3251);
    next();
    EXPECT_EQ(number_raised([&] { update(); }), 3021);
    previous();
    erase();
    EXPECT_EQ(number_raised([&] { update(); }), 3021);
}

TEST_F(EditingTest, CancelHasNothingToEnd) {
    call<&RecordSet::Cancel>(rs);
    open_with({u"Ann"});
    put(u"name", u"Amy");
    call<&RecordSet::Cancel>(rs);
    EXPECT_EQ(edit_mode(), adEditInProgress);
}

TEST_F(EditingTest, MarshalOptionsAreKept) {
    EXPECT_EQ(call<&RecordSet::MarshalOptions>(rs), adMarshalAll);
    call<&RecordSet::SetMarshalOptions>(rs, adMarshalModifiedOnly);
    EXPECT_EQ(call<&RecordSet::MarshalOptions>(rs), adMarshalModifiedOnly);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::SetMarshalOptions>(rs, 2); }), 3001);
}

TEST_F(EditingTest, CancellingANewRowMakesThePreviousOneCurrent) {
    open_with({u"Ann", u"Bob"});
    next();
    add_new();
    put(u"name", u"Cid");
    cancel();
    EXPECT_EQ(here(), "Bob");
    EXPECT_EQ(count(), 2);
    EXPECT_EQ(edit_mode(), adEditNone);
}

TEST_F(EditingTest, CancellingAnEditBringsTheOldValuesBack) {
    open_with({u"Ann"});
    put(u"name", u"Amy");
    EXPECT_EQ(original(u"name"), Variant(u"Ann"));
    cancel();
    EXPECT_EQ(get(u"name"), Variant(u"Ann"));
    expect_failure(3219, u"ADODB.Recordset", u"Operation is not allowed in this context.",
                   [&] { cancel(); });
}

TEST_F(EditingTest, ARowBeingAddedCannotBeDeleted) {
    open_with({u"Ann"});
    add_new();
    EXPECT_EQ(number_raised([&] { erase(); }), 3219);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::Bookmark>(rs); }), 3021);
}

TEST_F(EditingTest, DeletingARowDropsItsEdit) {
    open_with({u"Ann", u"Bob"});
    put(u"name", u"Amy");
    erase();
    next();
    EXPECT_THAT(names(), ElementsAre("Bob"));
}

TEST_F(EditingTest, DeletingTheGroupTakesTheFilteredRows) {
    open_with({u"Ann", u"Bob", u"Cid"});
    EXPECT_EQ(number_raised([&] { erase(adAffectGroup); }), 3001) << "there is no filter";
    EXPECT_EQ(number_raised([&] { erase(adAffectAll); }), 3001);
    filter(u"number >= 2");
    erase(adAffectGroup);
    EXPECT_EQ(count(), 0);
    filter(u"");
    EXPECT_THAT(names(), ElementsAre("Ann"));
}

TEST_F(EditingTest, AClonesRowsAreTheSameButItsPlaceIsItsOwn) {
    open_with({u"Ann", u"Bob", u"Cid"});
    last();
    const auto clone = call<&RecordSet::Clone>(rs, adLockUnspecified);
    EXPECT_EQ(here_in(clone), "Ann");
    put(u"name", u"Cyd");
    EXPECT_THAT(names_in(clone), ElementsAre("Ann", "Bob", "Cid")) << "not before the update";
    update();
    EXPECT_THAT(names_in(clone), ElementsAre("Ann", "Bob", "Cyd"));
    add(4, u"Dee");
    EXPECT_EQ(call<&RecordSet::RecordCount>(clone), 4);
    call<&RecordSet::SetBookmark>(clone, call<&RecordSet::Bookmark>(rs));
    EXPECT_EQ(here_in(clone), "Dee");
    erase();
    EXPECT_EQ(here_in(clone), "gap");
    call<&RecordSet::Close>(rs);
    EXPECT_THAT(names_in(clone), ElementsAre("Ann", "Bob", "Cyd"));
}

TEST_F(EditingTest, ACloneMayBeReadOnly) {
    open_with({u"Ann"});
    const auto clone = call<&RecordSet::Clone>(rs, adLockReadOnly);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::Delete>(clone, adAffectCurrent); }), 3251);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::Clone>(rs, adLockOptimistic); }), 3001);
}

TEST_F(EditingTest, ABatchRemembersItsChanges) {
    open_with({u"Ann", u"Bob", u"Cid"}, adLockBatchOptimistic);
    EXPECT_EQ(status(), adRecNew);
    call<&RecordSet::UpdateBatch>(rs, adAffectAll);
    EXPECT_EQ(status(), adRecUnmodified);
    put(u"name", u"Amy");
    update();
    EXPECT_EQ(status(), adRecModified);
    EXPECT_EQ(original(u"name"), Variant(u"Ann"));
    next();
    erase();
    add(4, u"Dee");
    filter(std::int32_t{adFilterPendingRecords});
    EXPECT_THAT(names(), ElementsAre("Amy", "gap", "Dee")) << "the deleted row is among them";
    filter(std::int32_t{adFilterNone});
    EXPECT_THAT(names(), ElementsAre("Amy", "Cid", "Dee"));
}

TEST_F(EditingTest, ADeletedRowOfABatchShowsItsOriginalAndNoValue) {
    open_with({u"Ann", u"Bob"}, adLockBatchOptimistic);
    call<&RecordSet::UpdateBatch>(rs, adAffectAll);
    erase();
    filter(std::int32_t{adFilterPendingRecords});
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(status(), adRecDeleted);
    EXPECT_EQ(edit_mode(), adEditDelete);
    EXPECT_EQ(original(u"name"), Variant(u"Ann"));
    EXPECT_EQ(number_raised([&] { get(u"name"); }), 3021);
    EXPECT_EQ(number_raised([&] { put(u"name", u"Amy"); }), 3021);
    EXPECT_EQ(number_raised([&] { erase(); }), 3021);
    EXPECT_EQ(
        number_raised([&] { call<&RecordSet::GetRows>(rs, adGetRowsRest, missing, missing); }),
        3021);
}

TEST_F(EditingTest, TheCurrentRowsChangesAloneCanBeMadeFinalOrTakenBack) {
    open_with({u"Ann", u"Bob", u"Cid"}, adLockBatchOptimistic);
    call<&RecordSet::UpdateBatch>(rs, adAffectAll);
    put(u"name", u"Amy");
    next();
    put(u"name", u"Ben");
    next();
    put(u"name", u"Cyd");
    call<&RecordSet::UpdateBatch>(rs, adAffectCurrent);
    EXPECT_EQ(status(), adRecUnmodified) << "the edit in progress is ended first";
    first();
    EXPECT_EQ(status(), adRecModified);
    call<&RecordSet::CancelBatch>(rs, adAffectCurrent);
    EXPECT_EQ(here(), "Ann");
    EXPECT_EQ(status(), adRecUnmodified);
    call<&RecordSet::CancelBatch>(rs, adAffectAll);
    EXPECT_THAT(names(), ElementsAre("Ann", "Bob", "Cyd"));
    EXPECT_EQ(number_raised([&] { call<&RecordSet::UpdateBatch>(rs, adAffectCurrent); }), 3021)
        << "there is no row behind the last";
}

TEST_F(EditingTest, ADeletedRowIsBackWhenItsDeletionIsTakenBack) {
    open_with({u"Ann", u"Bob"}, adLockBatchOptimistic);
    call<&RecordSet::UpdateBatch>(rs, adAffectAll);
    erase();
    EXPECT_EQ(here(), "gap");
    call<&RecordSet::CancelBatch>(rs, adAffectCurrent);
    EXPECT_EQ(here(), "Ann");
    erase();
    call<&RecordSet::UpdateBatch>(rs, adAffectCurrent);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::CancelBatch>(rs, adAffectCurrent); }), 3021)
        << "it is gone for good";
    EXPECT_THAT(names(), ElementsAre("Bob"));
}

TEST_F(EditingTest, ABatchIsCheckedBeforeAnythingChanges) {
    open_with({u"Ann", u"Bob"}, adLockBatchOptimistic);
    put(u"name", u"Amy");
    EXPECT_EQ(number_raised([&] { call<&RecordSet::UpdateBatch>(rs, 99); }), 3001);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::UpdateBatch>(rs, adAffectGroup); }), 3001);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::CancelBatch>(rs, 99); }), 3001);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::CancelBatch>(rs, adAffectGroup); }), 3001);
    EXPECT_EQ(edit_mode(), adEditInProgress);
    EXPECT_EQ(here(), "Amy");
    EXPECT_EQ(number_raised([&] { erase(adAffectGroup); }), 3001);
    EXPECT_EQ(edit_mode(), adEditInProgress);
    filter(u"name = 'Zoe'");
    erase(adAffectGroup);
    EXPECT_EQ(edit_mode(), adEditNone) << "nothing was deleted";
    EXPECT_EQ(here(), "empty");
}

TEST_F(EditingTest, TakingBackARowBeingAddedChangesNoOther) {
    open_with({u"Ann", u"Bob"}, adLockBatchOptimistic);
    call<&RecordSet::UpdateBatch>(rs, adAffectAll);
    put(u"name", u"Amy");
    add_new();
    call<&RecordSet::CancelBatch>(rs, adAffectCurrent);
    EXPECT_EQ(edit_mode(), adEditNone);
    EXPECT_EQ(here(), "Amy");
    EXPECT_EQ(status(), adRecModified) << "the row that was current before keeps its change";
    EXPECT_EQ(count(), 2);
    last();
    next();
    add_new();
    call<&RecordSet::CancelBatch>(rs, adAffectCurrent);
    EXPECT_EQ(here(), "EOF") << "there is no row to go back to, and none is needed";
}

TEST_F(EditingTest, AFiltersRowsAreAGroupOfABatch) {
    open_with({u"Ann", u"Bob", u"Cid"}, adLockBatchOptimistic);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::UpdateBatch>(rs, adAffectGroup); }), 3001)
        << "there is no filter";
    EXPECT_EQ(number_raised([&] { call<&RecordSet::UpdateBatch>(rs, 5); }), 3001);
    filter(u"number >= 2");
    call<&RecordSet::UpdateBatch>(rs, adAffectGroup);
    filter(std::int32_t{adFilterPendingRecords});
    EXPECT_THAT(names(), ElementsAre("Ann"));
    filter(u"name = 'Bob'");
    call<&RecordSet::UpdateBatch>(rs, adAffectAll);
    filter(std::int32_t{adFilterPendingRecords});
    EXPECT_THAT(names(), ElementsAre("Ann")) << "all are those that a criteria text lets through";
    call<&RecordSet::UpdateBatch>(rs, adAffectAllChapters);
    EXPECT_EQ(count(), 0);
}

TEST_F(EditingTest, TheLastAffectedRowsAreAGroup) {
    open_with({u"Ann", u"Bob", u"Cid"}, adLockBatchOptimistic);
    filter(std::int32_t{adFilterAffectedRecords});
    EXPECT_EQ(count(), 0);
    filter(std::int32_t{adFilterNone});
    call<&RecordSet::UpdateBatch>(rs, adAffectAll);
    filter(std::int32_t{adFilterAffectedRecords});
    EXPECT_THAT(names(), ElementsAre("Ann", "Bob", "Cid"));
    filter(std::int32_t{adFilterNone});
    next();
    put(u"name", u"Ben");
    call<&RecordSet::UpdateBatch>(rs, adAffectAll);
    filter(std::int32_t{adFilterAffectedRecords});
    EXPECT_THAT(names(), ElementsAre("Ben")) << "what had no changes was not affected";
    filter(std::int32_t{adFilterNone});
    last();
    erase();
    filter(std::int32_t{adFilterAffectedRecords});
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(status(), adRecDeleted);
}

TEST_F(EditingTest, AllRowsAreFetchedAndNoneIsInConflict) {
    open_with({u"Ann", u"Bob"});
    filter(std::int32_t{adFilterFetchedRecords});
    EXPECT_THAT(names(), ElementsAre("Ann", "Bob"));
    filter(std::int32_t{adFilterConflictingRecords});
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(number_raised([&] { filter(4); }), 3001);
    EXPECT_EQ(number_raised([&] { filter(6); }), 3001);
}

TEST_F(EditingTest, ABatchCanBeTakenBack) {
    open_with({u"Ann", u"Bob", u"Cid"}, adLockBatchOptimistic);
    call<&RecordSet::UpdateBatch>(rs, adAffectAll);
    put(u"name", u"Amy");
    next();
    erase();
    add(4, u"Dee");
    add_new();
    call<&RecordSet::CancelBatch>(rs, adAffectAll);
    EXPECT_EQ(edit_mode(), adEditDelete) << "the added row has gone from under the cursor";
    EXPECT_THAT(names(), ElementsAre("Ann", "Bob", "Cid"));
    call<&RecordSet::UpdateBatch>(rs, adAffectAll);
    EXPECT_THAT(names(), ElementsAre("Ann", "Bob", "Cid"));
}

TEST_F(EditingTest, WithoutABatchItsMembersAreNotThere) {
    open_with({u"Ann"});
    EXPECT_EQ(number_raised([&] { call<&RecordSet::UpdateBatch>(rs, adAffectAll); }), 3251);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::CancelBatch>(rs, adAffectAll); }), 3251);
    put(u"name", u"Amy");
    call<&RecordSet::CancelBatch>(rs, adAffectCurrent);
    EXPECT_EQ(here(), "Ann") << "but for the current row, which is an edit like any other";
    put(u"name", u"Amy");
    call<&RecordSet::UpdateBatch>(rs, adAffectCurrent);
    EXPECT_EQ(edit_mode(), adEditNone);
    EXPECT_EQ(here(), "Amy");
    call<&RecordSet::CancelBatch>(rs, adAffectCurrent);
    EXPECT_EQ(here(), "Amy") << "there is nothing to cancel";
}

TEST_F(EditingTest, AReadOnlySetHasNoBatch) {
    open_with({u"Ann"}, adLockBatchOptimistic);
    put(u"name", u"Amy");
    update();
    const auto clone = call<&RecordSet::Clone>(rs, adLockReadOnly);
    for (const std::int32_t affected : {adAffectCurrent, adAffectAll}) {
        EXPECT_EQ(number_raised([&] { call<&RecordSet::UpdateBatch>(clone, affected); }), 3251);
        EXPECT_EQ(number_raised([&] { call<&RecordSet::CancelBatch>(clone, affected); }), 3251);
    }
    EXPECT_EQ(status(), adRecNew);
    EXPECT_EQ(here(), "Amy");
    rs = make<RecordSetObject>();
    append(u"name", adVarWChar, 20);
    open(adLockReadOnly);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::CancelBatch>(rs, adAffectCurrent); }), 3251);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::UpdateBatch>(rs, adAffectCurrent); }), 3251);
}

TEST_F(EditingTest, AChangedRowMovesToItsPlaceInTheOrder) {
    open_with({u"Ann", u"Bob", u"Cid"});
    sort(u"name");
    put(u"name", u"Bz");
    update();
    EXPECT_EQ(here(), "Bz");
    EXPECT_EQ(position(), 2);
    EXPECT_THAT(names(), ElementsAre("Bob", "Bz", "Cid"));
    add(4, u"Bo");
    EXPECT_EQ(position(), 1);
}

TEST_F(EditingTest, ARowThatTheFilterNoLongerLetsThroughLeavesAGap) {
    open_with({u"Ann", u"Bob", u"Cid"});
    filter(u"number < 3");
    put(u"number", 5);
    update();
    EXPECT_EQ(here(), "gap");
    EXPECT_EQ(edit_mode(), adEditNone) << "it is not deleted";
    EXPECT_EQ(status(), adRecUnmodified);
    next();
    EXPECT_EQ(here(), "Bob");
    add(9, u"Eve");
    EXPECT_EQ(here(), "gap");
    EXPECT_EQ(count(), 1);
    filter(std::int32_t{adFilterNone});
    EXPECT_THAT(names(), ElementsAre("Ann", "Bob", "Cid", "Eve"));
}

TEST_F(EditingTest, ARowInAGapIsStillWhatItIs) {
    open_with({u"Ann", u"Bob", u"Cid"}, adLockBatchOptimistic);
    call<&RecordSet::UpdateBatch>(rs, adAffectAll);
    filter(u"number < 3");
    put(u"number", 5);
    update();
    EXPECT_EQ(status(), adRecModified);
    EXPECT_EQ(edit_mode(), adEditNone);
    const auto clone = call<&RecordSet::Clone>(rs, adLockUnspecified);
    call<&RecordSet::Delete>(clone, adAffectCurrent);
    EXPECT_EQ(status(), adRecDeleted) << "now it is";
    EXPECT_EQ(edit_mode(), adEditDelete);
    call<&RecordSet::MoveFirst>(rs);
    next();
    EXPECT_EQ(here(), "EOF");
    erase(adAffectGroup);
    EXPECT_EQ(status(), adRecDeleted) << "of a group";
    EXPECT_EQ(edit_mode(), adEditDelete);
}

}  // namespace
}  // namespace orvo
