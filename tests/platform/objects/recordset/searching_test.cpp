#include "platform/objects/recordset/builder.h"
#include "tests/platform/objects/recordset/record_set_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr TextView wrong_arguments =
    u"Arguments are of the wrong type, are out of acceptable range, or are in conflict with one "
    u"another.";

class SearchingTest : public RecordSetTest {
protected:
    std::vector<std::string> filtered(const Variant& criteria) {
        filter(criteria);
        return names();
    }
    std::vector<std::string> sorted(const Text& order) {
        sort(order);
        return names();
    }
    std::string found(const Text& criteria, std::int64_t skip = 0,
                      std::int32_t direction = adSearchForward) {
        find(criteria, skip, direction);
        return here();
    }
    static Ref<RecordSet> directory() {
        RecordSetBuilder builder({u"name", u"role", u"since"});
        builder.add({u"Ann", Values{u"3", u"7"}, Date{37623}});
        builder.add({u"Bob", Variant(), Date{37624}});
        builder.add({u"Cid", u"7", Variant()});
        builder.add({u"Dee", 12, Variant::null()});
        return builder.open();
    }
};

class Sort : public SearchingTest {};

TEST_F(Sort, OrdersTextsWithoutRegardToCase) {
    open_with({u"bob", u"Ann", u"cid", u"Dee"});
    EXPECT_THAT(sorted(u"name"), ElementsAre("Ann", "bob", "cid", "Dee"));
    EXPECT_THAT(sorted(u"NAME desc"), ElementsAre("Dee", "cid", "bob", "Ann"));
}

TEST_F(Sort, PutsAccentsBesideTheirLetters) {
    open_with({u"Zo\u00EB", u"\u00C9mile", u"Emma", u"Emil", u"emil", u"\u00E9mil", u"Emile"});
    EXPECT_THAT(sorted(u"name"), ElementsAre("Emil", "emil", "\u00E9mil", "Emile", "\u00C9mile",
                                             "Emma", "Zo\u00EB"));
    EXPECT_THAT(sorted(u"name DESC"), ElementsAre("Zo\u00EB", "Emma", "\u00C9mile", "Emile",
                                                  "\u00E9mil", "emil", "Emil"));
    EXPECT_THAT(filtered(u"name > 'Emil' AND name < 'Emma'"),
                ElementsAre("\u00C9mile", "Emile", "\u00E9mil"))
        << "a filter sees the same order, but for case";
}

TEST_F(Sort, PutsANameAndItWithAnExclamationMarkTogether) {
    open_with({u"Emil B", u"\u00C9mil", u"Emil!", u"Emil!a", u"emil", u"Emil"});
    EXPECT_THAT(sorted(u"name"),
                ElementsAre("Emil", "emil", "Emil!", "\u00C9mil", "Emil B", "Emil!a"));
    EXPECT_THAT(filtered(u"name >= 'emil!' AND name <= '\u00E9mil'"),
                ElementsAre("Emil!", "\u00C9mil"));
}

TEST_F(Sort, RegardsCaseOnlyWhereAllColumnsHaveTheSameLetters) {
    open();
    add(1, u"SMITH", u"Cid");
    add(2, u"Smith", u"Bob");
    add(3, u"smith", u"Ann");
    add(4, u"Smith", u"cid");
    sort(u"name, mail");
    std::vector<std::int32_t> numbers;
    for (first(); !eof(); next()) numbers.push_back(get(u"number").to<std::int32_t>());
    EXPECT_THAT(numbers, ElementsAre(3, 2, 1, 4));
}

TEST_F(Sort, TakesSeveralColumns) {
    open();
    add(2, u"Ann");
    add(1, u"Bob");
    add(2, u"Cid");
    add(Variant::null(), u"Dee");
    EXPECT_THAT(sorted(u"number ASC, name DESC"), ElementsAre("Dee", "Bob", "Cid", "Ann"));
    EXPECT_THAT(sorted(u"[number] DESC ,[name]"), ElementsAre("Ann", "Cid", "Bob", "Dee"));
}

TEST_F(Sort, KeepsTheOrderOfAddingAmongEquals) {
    open();
    for (const char16_t* name : {u"d", u"a", u"c", u"b"}) add(1, name);
    EXPECT_THAT(sorted(u"number"), ElementsAre("d", "a", "c", "b"));
    EXPECT_THAT(sorted(u"number DESC"), ElementsAre("d", "a", "c", "b"));
}

TEST_F(Sort, IsUndoneByTheEmptyText) {
    open_with({u"c", u"a", u"b"});
    EXPECT_THAT(sorted(u"name"), ElementsAre("a", "b", "c"));
    EXPECT_THAT(sorted(u""), ElementsAre("c", "a", "b"));
    EXPECT_EQ(call<&RecordSet::Sort>(rs), u"");
}

TEST_F(Sort, StandsOnTheFirstRowAfterwards) {
    open_with({u"c", u"a", u"b"});
    last();
    sort(u"name");
    EXPECT_EQ(here(), "a");
}

TEST_F(Sort, RefusesWhatItCannotRead) {
    open_with({u"a"});
    const TextView no_item =
        u"Item cannot be found in the collection corresponding to the requested name or ordinal.";
    expect_failure(3265, u"ADODB.Recordset", no_item, [&] { sort(u"none"); });
    for (const char16_t* text :
         {u"name up", u"name,", u",name", u"name DESC number", u"[name", u"name,,number"})
        expect_failure(3001, u"ADODB.Recordset", wrong_arguments, [&] { sort(text); });
    EXPECT_EQ(call<&RecordSet::Sort>(rs), u"");
}

TEST_F(Sort, OrdersDirectoryValuesByTheirFirstAndNoneBeforeAll) {
    rs = directory();
    EXPECT_THAT(sorted(u"role"), ElementsAre("Bob", "Dee", "Ann", "Cid"));
    EXPECT_THAT(sorted(u"since DESC"), ElementsAre("Bob", "Ann", "Cid", "Dee"));
}

class Find : public SearchingTest {};

TEST_F(Find, ComparesNumbersAndTexts) {
    open_with({u"Ann", u"Bob", u"Cid", u"Dee"});
    EXPECT_EQ(found(u"number = 3"), "Cid");
    first();
    EXPECT_EQ(found(u"number > 1"), "Bob");
    EXPECT_EQ(found(u"number >= 3"), "Cid");
    EXPECT_EQ(found(u"number <> 3"), "Dee");
    first();
    EXPECT_EQ(found(u"name = 'bob'"), "Bob");
    EXPECT_EQ(found(u"[name] > #cam#"), "Cid");
    first();
    EXPECT_EQ(found(u"NAME<='b'"), "Ann");
    EXPECT_EQ(found(u"number<1"), "EOF");
}

TEST_F(Find, BeginsAtTheCurrentRow) {
    open_with({u"Ann", u"Bob", u"Cid"});
    next();
    EXPECT_EQ(found(u"number > 0"), "Bob");
    EXPECT_EQ(found(u"number > 0", 1), "Cid");
    EXPECT_EQ(found(u"number > 0", 1, adSearchBackward), "Bob");
    find(u"number > 0", 0, adSearchForward, adBookmarkFirst);
    EXPECT_EQ(here(), "Ann");
}

TEST_F(Find, WithoutAMatchEndsAtTheEndOfItsDirection) {
    open_with({u"Ann", u"Bob", u"Cid"});
    next();
    EXPECT_EQ(found(u"name = 'x'"), "EOF");
    EXPECT_EQ(found(u"number > 0"), "EOF") << "standing at the end finds nothing";
    last();
    EXPECT_EQ(found(u"name = 'x'", 0, adSearchBackward), "BOF");
    EXPECT_EQ(number_raised([&] { find(u"number > 0"); }), 3021) << "no current row";
}

TEST_F(Find, LikeTakesAStarAtTheEndOrAtBothEnds) {
    open_with({u"Ann", u"Bob", u"Anton"});
    EXPECT_EQ(found(u"name LIKE 'ant*'"), "Anton");
    first();
    EXPECT_EQ(found(u"name like '*O*'"), "Bob");
    EXPECT_EQ(found(u"name LIKE 'an%'"), "Anton");
    first();
    EXPECT_EQ(found(u"name LIKE 'bob'"), "Bob");
    for (const char16_t* text : {u"name LIKE '*b'", u"name LIKE 'a*n'", u"name LIKE '*a*b*'"})
        expect_failure(3001, u"ADODB.Recordset", wrong_arguments, [&] { find(text); });
    EXPECT_EQ(here(), "Bob");
}

TEST_F(Find, KnowsNullAndDates) {
    open();
    add(1, u"Ann", u"a@x");
    add(Variant::null(), u"Bob");
    first();
    EXPECT_EQ(found(u"mail = Null"), "Bob");
    first();
    EXPECT_EQ(found(u"mail <> Null"), "Ann");
    EXPECT_EQ(found(u"number <> 1"), "EOF") << "Null is not unequal to a number";
    rs = directory();
    EXPECT_EQ(found(u"since = #2003-01-03#"), "Bob");
}

TEST_F(Find, RefusesAllButOneComparison) {
    open_with({u"Ann"});
    for (const char16_t* text :
         {u"", u"name", u"name =", u"= 'x'", u"name = 'x' AND number = 1",
          u"name = 'x' OR name = 'y'", u"(name = 'x')", u"name = x", u"name = 'x", u"name = 'o''x'",
          u"number = 'abc'", u"name == 'x'", u"[name = 'x'", u"number LIKE 5"})
        expect_failure(3001, u"ADODB.Recordset", wrong_arguments, [&] { find(text); });
    EXPECT_EQ(number_raised([&] { find(u"none = 1"); }), 3265);
    EXPECT_EQ(number_raised([&] { find(u"number = 1", 0, 2); }), 3001);
}

class Filter : public SearchingTest {};

TEST_F(Filter, CountsAndWalksTheVisibleRowsOnly) {
    open_with({u"Ann", u"Bob", u"Cid", u"Dee"});
    last();
    filter(u"number >= 2 AND number < 4");
    EXPECT_EQ(here(), "Bob") << "the first visible row";
    EXPECT_EQ(count(), 2);
    EXPECT_THAT(names(), ElementsAre("Bob", "Cid"));
    filter(std::int32_t{adFilterNone});
    EXPECT_EQ(here(), "Ann");
    EXPECT_EQ(count(), 4);
}

TEST_F(Filter, JoinsClausesByAndAndOr) {
    open_with({u"Ann", u"Bob", u"Cid", u"Dee"});
    EXPECT_THAT(filtered(u"name = 'ann' OR name = 'DEE'"), ElementsAre("Ann", "Dee"));
    EXPECT_THAT(filtered(u"(number = 1 AND name = 'Ann') or (number = 3 and name LIKE 'c*')"),
                ElementsAre("Ann", "Cid"));
    EXPECT_THAT(filtered(u"number = 1 OR number > 2 AND name = 'Dee'"), ElementsAre("Ann", "Dee"));
    EXPECT_THAT(filtered(u"((number = 2))"), ElementsAre("Bob"));
    EXPECT_THAT(filtered(u"number = 99"), IsEmpty());
    EXPECT_TRUE(bof());
    EXPECT_TRUE(eof());
}

TEST_F(Filter, MayNotJoinAGroupOfAlternativesByAnd) {
    open_with({u"Ann"});
    const Text group = u"(name = 'a' OR name = 'b')";
    for (const Text& text : {group + u" AND number = 1", u"number = 1 AND " + group})
        expect_failure(3001, u"ADODB.Recordset", wrong_arguments, [&] { filter(text); });
    EXPECT_EQ(call<&RecordSet::Filter>(rs), Variant(0));
}

TEST_F(Filter, TakesADoubledQuoteForAQuote) {
    open_with({u"O'Brien", u"OBrien"});
    EXPECT_THAT(filtered(u"name = 'o''brien'"), ElementsAre("O'Brien"));
    EXPECT_THAT(filtered(u"name = #O'Brien#"), ElementsAre("O'Brien"));
}

TEST_F(Filter, TakesBookmarks) {
    open_with({u"Ann", u"Bob", u"Cid"});
    const Variant ann = call<&RecordSet::Bookmark>(rs);
    last();
    const Variant cid = call<&RecordSet::Bookmark>(rs);
    EXPECT_THAT(filtered(Values{cid, ann}), ElementsAre("Ann", "Cid"));
    EXPECT_THAT(filtered(u""), ElementsAre("Ann", "Bob", "Cid"));
}

TEST_F(Filter, AndSortWorkTogether) {
    open_with({u"c", u"a", u"b", u"d"});
    filter(u"number < 4");
    sort(u"name DESC");
    EXPECT_THAT(names(), ElementsAre("c", "b", "a"));
    EXPECT_THAT(filtered(u""), ElementsAre("d", "c", "b", "a"));
}

TEST_F(Filter, RefusesWhatItCannotRead) {
    open_with({u"Ann"});
    for (const char16_t* text : {u"name", u"(number = 1", u"number = 1)", u"number = 1 name = 'x'",
                                 u"number = 1 AND", u"number = 1ANDname = 'x'"})
        expect_failure(3001, u"ADODB.Recordset", wrong_arguments, [&] { filter(text); });
    for (const std::int32_t group : {4, 6, 99})
        EXPECT_EQ(number_raised([&] { filter(group); }), 3001);
    EXPECT_EQ(count(), 1);
}

TEST_F(Filter, OfDirectoryValuesMatchesAnyOfThem) {
    rs = directory();
    EXPECT_THAT(filtered(u"role = '7'"), ElementsAre("Ann", "Cid"));
    EXPECT_THAT(filtered(u"role = 12"), ElementsAre("Dee"));
    EXPECT_THAT(filtered(u"role > 5"), ElementsAre("Ann", "Cid", "Dee"));
    EXPECT_THAT(filtered(u"role = Null"), ElementsAre("Bob"));
    EXPECT_THAT(filtered(u"role <> Null AND since >= #2003-01-02#"), ElementsAre("Ann"));
}

}  // namespace
}  // namespace orvo
