#include "tests/platform/objects/recordset/record_set_test.h"

namespace orvo {
namespace {

class MovesTest : public RecordSetTest {
protected:
    MovesTest() { open_with({u"Ann", u"Bob", u"Cid", u"Dee"}); }

    void go_before_first() {
        first();
        previous();
    }
    void go_behind_last() {
        last();
        next();
    }
    template <class Body>
    void expect_no_record(Body&& body) {
        expect_failure(3021, u"ADODB.Recordset",
                       u"Either BOF or EOF is True, or the current record has been deleted. "
                       u"Requested operation requires a current record.",
                       body);
    }
    void erase_all() {
        for (first(); !eof(); next()) erase();
    }
};

TEST_F(MovesTest, WalkForwardToTheEnd) {
    EXPECT_EQ(here(), "Ann");
    next();
    EXPECT_EQ(here(), "Bob");
    last();
    EXPECT_EQ(here(), "Dee");
    next();
    EXPECT_EQ(here(), "EOF");
    EXPECT_FALSE(bof());
}

TEST_F(MovesTest, WalkBackToTheBegin) {
    last();
    previous();
    EXPECT_EQ(here(), "Cid");
    first();
    previous();
    EXPECT_EQ(here(), "BOF");
    EXPECT_FALSE(eof());
}

TEST_F(MovesTest, BeforeTheFirstAllButPreviousAreAllowed) {
    go_before_first();
    expect_no_record([&] { previous(); });
    EXPECT_EQ(here(), "BOF");
    next();
    EXPECT_EQ(here(), "Ann");
    go_before_first();
    first();
    EXPECT_EQ(here(), "Ann");
    go_before_first();
    last();
    EXPECT_EQ(here(), "Dee");
}

TEST_F(MovesTest, BehindTheLastAllButNextAreAllowed) {
    go_behind_last();
    expect_no_record([&] { next(); });
    EXPECT_EQ(here(), "EOF");
    previous();
    EXPECT_EQ(here(), "Dee");
    go_behind_last();
    first();
    EXPECT_EQ(here(), "Ann");
    go_behind_last();
    last();
    EXPECT_EQ(here(), "Dee");
}

TEST_F(MovesTest, ByANumberOfRowsEndAtTheEnds) {
    move(2);
    EXPECT_EQ(here(), "Cid");
    move(-1);
    EXPECT_EQ(here(), "Bob");
    move(0);
    EXPECT_EQ(here(), "Bob");
    move(3);
    EXPECT_EQ(here(), "EOF");
    move(-4);
    EXPECT_EQ(here(), "Ann");
    move(-100);
    EXPECT_EQ(here(), "BOF");
    move(3);
    EXPECT_EQ(here(), "Cid");
}

TEST_F(MovesTest, ByNoRowsNeedARow) {
    go_before_first();
    expect_no_record([&] { move(0); });
    expect_no_record([&] { move(-1); });
    go_behind_last();
    expect_no_record([&] { move(0); });
    expect_no_record([&] { move(1); });
}

TEST_F(MovesTest, CountFromABookmarkOrANamedPlace) {
    move(1, adBookmarkFirst);
    EXPECT_EQ(here(), "Bob");
    const Variant bob = call<&RecordSet::Bookmark>(rs);
    last();
    move(1, bob);
    EXPECT_EQ(here(), "Cid");
    move(-1, adBookmarkLast);
    EXPECT_EQ(here(), "Cid");
    move(1, adBookmarkCurrent);
    EXPECT_EQ(here(), "Dee");
    move(0, bob);
    EXPECT_EQ(here(), "Bob");
    EXPECT_EQ(number_raised([&] { move(0, 5000); }), 3001);
}

TEST_F(MovesTest, PositionsCountFromOne) {
    EXPECT_EQ(position(), 1);
    last();
    EXPECT_EQ(position(), 4);
    next();
    EXPECT_EQ(position(), adPosEOF);
    go_before_first();
    EXPECT_EQ(position(), adPosBOF);
    call<&RecordSet::SetAbsolutePosition>(rs, 3);
    EXPECT_EQ(here(), "Cid");
    for (const std::int64_t wrong : {0, 5, -2})
        EXPECT_EQ(number_raised([&] { call<&RecordSet::SetAbsolutePosition>(rs, wrong); }), 3001);
    EXPECT_EQ(here(), "Cid");
}

TEST_F(MovesTest, PagesHoldAsManyRowsAsTheirSize) {
    EXPECT_EQ(call<&RecordSet::PageSize>(rs), 10);
    EXPECT_EQ(call<&RecordSet::PageCount>(rs), 1);
    call<&RecordSet::SetPageSize>(rs, 3);
    EXPECT_EQ(call<&RecordSet::PageCount>(rs), 2);
    EXPECT_EQ(call<&RecordSet::AbsolutePage>(rs), 1);
    call<&RecordSet::SetAbsolutePage>(rs, 2);
    EXPECT_EQ(here(), "Dee");
    EXPECT_EQ(call<&RecordSet::AbsolutePage>(rs), 2);
    next();
    EXPECT_EQ(call<&RecordSet::AbsolutePage>(rs), adPosEOF);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::SetAbsolutePage>(rs, 3); }), 3001);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::SetPageSize>(rs, 0); }), 3001);
}

TEST_F(MovesTest, BookmarksLeadBackToTheirRow) {
    next();
    const Variant bob = call<&RecordSet::Bookmark>(rs);
    last();
    const Variant dee = call<&RecordSet::Bookmark>(rs);
    call<&RecordSet::SetBookmark>(rs, bob);
    EXPECT_EQ(here(), "Bob");
    EXPECT_EQ(call<&RecordSet::CompareBookmarks>(rs, bob, dee), 0);
    EXPECT_EQ(call<&RecordSet::CompareBookmarks>(rs, bob, bob), 1);
    EXPECT_EQ(call<&RecordSet::CompareBookmarks>(rs, dee, bob), 2);
    call<&RecordSet::SetBookmark>(rs, Variant(bob.to<std::int32_t>()));
    EXPECT_EQ(here(), "Bob") << "a language may have made another number of it";
    sort(u"name DESC");
    call<&RecordSet::SetBookmark>(rs, bob);
    EXPECT_EQ(here(), "Bob");
    EXPECT_EQ(position(), 3);
    erase();
    EXPECT_EQ(number_raised([&] { call<&RecordSet::SetBookmark>(rs, bob); }), 3021);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::SetBookmark>(rs, u"abc"); }), 3001);
    EXPECT_EQ(number_raised([&] { call<&RecordSet::SetBookmark>(rs, Variant()); }), 3001);
    go_behind_last();
    expect_no_record([&] { call<&RecordSet::Bookmark>(rs); });
}

TEST_F(MovesTest, ADeletedRowStaysCurrentUntilAMove) {
    next();
    erase();
    EXPECT_EQ(here(), "gap");
    EXPECT_FALSE(bof());
    EXPECT_FALSE(eof());
    EXPECT_EQ(count(), 3);
    EXPECT_EQ(position(), adPosUnknown);
    EXPECT_EQ(edit_mode(), adEditDelete);
    EXPECT_EQ(call<&RecordSet::Status>(rs), adRecDeleted);
    expect_no_record([&] { get(u"name"); });
    expect_no_record([&] { put(u"name", u"x"); });
    expect_no_record([&] { erase(); });
    expect_no_record([&] { move(0); });
    next();
    EXPECT_EQ(here(), "Cid") << "the row that followed it";
    erase();
    previous();
    EXPECT_EQ(here(), "Ann") << "the row that stood before it";
    EXPECT_EQ(names(), (std::vector<std::string>{"Ann", "Dee"}));
}

TEST_F(MovesTest, DeletingTheLastRowLeavesNeitherEndReached) {
    last();
    erase();
    EXPECT_FALSE(bof());
    EXPECT_FALSE(eof());
    next();
    EXPECT_EQ(here(), "EOF");
}

TEST_F(MovesTest, DeletingTheOnlyRowEndsAtBothEndsAfterAMove) {
    erase_all();
    EXPECT_EQ(here(), "empty");
    expect_no_record([&] { next(); });
    add(1, u"Eve");
    erase();
    EXPECT_FALSE(eof());
    expect_no_record([&] { first(); });
    EXPECT_EQ(here(), "empty");
}

}  // namespace
}  // namespace orvo
