#include "platform/objects/dictionary/dictionary.h"

#include <gmock/gmock.h>

#include <functional>
#include <random>

#include "platform/interfaces/call.h"
#include "platform/interfaces/enumerator.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/values.h"

namespace orvo {
namespace {

static_assert(slot_of<&Dictionary::SetItemObject> == 7);
static_assert(slot_of<&Dictionary::SetItem> == 8);
static_assert(slot_of<&Dictionary::Item> == 9);
static_assert(slot_of<&Dictionary::Add> == 10);
static_assert(slot_of<&Dictionary::Count> == 11);
static_assert(slot_of<&Dictionary::Exists> == 12);
static_assert(slot_of<&Dictionary::Items> == 13);
static_assert(slot_of<&Dictionary::SetKey> == 14);
static_assert(slot_of<&Dictionary::Keys> == 15);
static_assert(slot_of<&Dictionary::Remove> == 16);
static_assert(slot_of<&Dictionary::RemoveAll> == 17);
static_assert(slot_of<&Dictionary::SetCompareMode> == 18);
static_assert(slot_of<&Dictionary::CompareMode> == 19);
static_assert(slot_of<&Dictionary::NewEnum> == 20);
static_assert(slot_of<&Dictionary::HashVal> == 21);

template <class Body>
void expect_failure(std::int32_t number, TextView description, Body&& body) {
    try {
        body();
        ADD_FAILURE() << "nothing was raised";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, number);
        EXPECT_EQ(failure.source, u"Scripting.Dictionary");
        EXPECT_EQ(to_utf8(failure.description), to_utf8(description));
    }
}

class DictionaryTest : public testing::Test {
protected:
    void add(Variant key, Variant item = 1) { call<&Dictionary::Add>(dictionary, key, item); }
    bool exists(Variant key) { return call<&Dictionary::Exists>(dictionary, key); }
    Variant get(Variant key) { return call<&Dictionary::Item>(dictionary, key); }
    void put(Variant key, Variant item) { call<&Dictionary::SetItem>(dictionary, key, item); }
    void remove(Variant key) { call<&Dictionary::Remove>(dictionary, key); }
    void rename(Variant key, Variant to) { call<&Dictionary::SetKey>(dictionary, key, to); }
    std::int32_t count() { return call<&Dictionary::Count>(dictionary); }
    Variant keys() { return call<&Dictionary::Keys>(dictionary); }
    Variant items() { return call<&Dictionary::Items>(dictionary); }
    void compare(std::int32_t mode) { call<&Dictionary::SetCompareMode>(dictionary, mode); }

    const Ref<Dictionary> dictionary = make<DictionaryObject>();
};

TEST_F(DictionaryTest, HoldsItemsByKey) {
    add(u"cn", u"Ann");
    add(7, Values{u"a", u"b"});
    EXPECT_EQ(count(), 2);
    EXPECT_TRUE(exists(u"cn"));
    EXPECT_FALSE(exists(u"mail"));
    EXPECT_EQ(get(u"cn"), Variant(u"Ann"));
    EXPECT_EQ(get(7), Variant(Values{u"a", u"b"}));
}

TEST_F(DictionaryTest, LeavesTheCallersValuesAsTheyAre) {
    Variant key = u"cn";
    Variant item = Values{1, 2};
    call<&Dictionary::Add>(dictionary, key, item);
    EXPECT_EQ(key, Variant(u"cn"));
    EXPECT_EQ(item, Variant(Values{1, 2}));
}

TEST_F(DictionaryTest, ReadingAMissingKeyAddsIt) {
    EXPECT_EQ(get(u"cn"), Variant());
    EXPECT_TRUE(exists(u"cn"));
    EXPECT_EQ(count(), 1);
}

TEST_F(DictionaryTest, WritingAnItemAddsOrReplacesIt) {
    put(u"cn", 1);
    put(u"mail", 2);
    put(u"cn", 3);
    EXPECT_EQ(items(), Variant(Values{3, 2})) << "a replaced item keeps its place";
    Variant key = u"self";
    Variant object = Variant(dictionary.object());
    call<&Dictionary::SetItemObject>(dictionary, key, object);
    EXPECT_EQ(get(u"self"), object);
    remove(u"self");
}

TEST_F(DictionaryTest, AddingAKeyTwiceRaises457) {
    add(u"cn");
    expect_failure(457, u"This key is already associated with an element of this collection",
                   [&] { add(u"cn"); });
    EXPECT_EQ(count(), 1);
}

TEST_F(DictionaryTest, RemovingAMissingKeyRaises32811) {
    expect_failure(32811, u"Element not found", [&] { remove(u"cn"); });
    add(u"cn");
    remove(u"cn");
    EXPECT_FALSE(exists(u"cn"));
    EXPECT_EQ(count(), 0);
}

TEST_F(DictionaryTest, KeepsTheOrderOfAdding) {
    for (const char16_t* key : {u"c", u"a", u"b", u"d"}) add(key, key);
    remove(u"a");
    add(u"a");
    EXPECT_EQ(keys(), Variant(Values{u"c", u"b", u"d", u"a"}));
    EXPECT_EQ(items(), Variant(Values{u"c", u"b", u"d", 1}));
}

TEST_F(DictionaryTest, GivesEmptyArraysFromZeroWhenItIsEmpty) {
    for (const Variant& array : {keys(), items()}) {
        EXPECT_EQ(array.to<Values>().lower_bound(), 0);
        EXPECT_EQ(array.to<Values>().upper_bound(), -1);
    }
}

TEST_F(DictionaryTest, NumbersAndDatesAreEqualByValue) {
    add(1, u"one");
    EXPECT_TRUE(exists(1.0));
    EXPECT_TRUE(exists(std::int16_t(1)));
    EXPECT_TRUE(exists(Currency{10000}));
    EXPECT_TRUE(exists(Date{1}));
    EXPECT_FALSE(exists(u"1"));
    EXPECT_FALSE(exists(1.5));
    EXPECT_FALSE(exists(true));
    add(Date{37623});
    EXPECT_TRUE(exists(37623));
    add(0.0);
    EXPECT_TRUE(exists(-0.0));
    EXPECT_FALSE(exists(Variant())) << "Empty is a key of its own";
}

TEST_F(DictionaryTest, EmptyNullAndBooleansAreKeys) {
    for (const Variant& key : {Variant(), Variant::null(), Variant(true), Variant(false)}) {
        add(key);
        EXPECT_TRUE(exists(key));
    }
    EXPECT_EQ(count(), 4);
}

TEST_F(DictionaryTest, ObjectsAreEqualToThemselves) {
    const Object one = make<DictionaryObject>().object();
    const Object other = make<DictionaryObject>().object();
    add(one);
    add(Object());
    EXPECT_TRUE(exists(one));
    EXPECT_FALSE(exists(other));
    EXPECT_TRUE(exists(Variant(Object())));
}

TEST_F(DictionaryTest, ArraysAreNoKeys) {
    expect_failure(5, u"Invalid procedure call or argument", [&] { add(Values{1}); });
    EXPECT_EQ(count(), 0);
}

TEST_F(DictionaryTest, ComparesTextsExactlyUnlessToldOtherwise) {
    add(u"cn");
    EXPECT_FALSE(exists(u"CN"));
    EXPECT_EQ(call<&Dictionary::CompareMode>(dictionary), 0);
    call<&Dictionary::RemoveAll>(dictionary);
    compare(TextCompare);
    EXPECT_EQ(call<&Dictionary::CompareMode>(dictionary), 1);
    add(u"Zoë");
    EXPECT_TRUE(exists(u"ZOË"));
    EXPECT_EQ(keys(), Variant(Values{u"Zoë"}));
}

TEST_F(DictionaryTest, ChangesTheCompareModeOnlyWhileEmpty) {
    add(u"cn");
    expect_failure(5, u"Invalid procedure call or argument", [&] { compare(TextCompare); });
    remove(u"cn");
    expect_failure(5, u"Invalid procedure call or argument", [&] { compare(-1); });
    compare(DatabaseCompare);
    EXPECT_EQ(call<&Dictionary::CompareMode>(dictionary), 2);
}

TEST_F(DictionaryTest, GivesAnEntryAnotherKey) {
    compare(TextCompare);
    add(u"a", 1);
    add(u"b", 2);
    rename(u"a", u"c");
    EXPECT_EQ(keys(), Variant(Values{u"c", u"b"})) << "in its place";
    EXPECT_EQ(get(u"c"), Variant(1));
    EXPECT_FALSE(exists(u"a"));
    rename(u"c", u"C");
    EXPECT_EQ(keys(), Variant(Values{u"C", u"b"}));
    expect_failure(32811, u"Element not found", [&] { rename(u"none", u"x"); });
    expect_failure(457, u"This key is already associated with an element of this collection",
                   [&] { rename(u"C", u"B"); });
    EXPECT_EQ(count(), 2);
}

TEST_F(DictionaryTest, EqualKeysHaveEqualHashes) {
    auto hash = [&](Variant key) { return call<&Dictionary::HashVal>(dictionary, key); };
    EXPECT_EQ(hash(1), hash(1.0));
    EXPECT_NE(hash(u"cn"), hash(u"CN"));
    compare(TextCompare);
    EXPECT_EQ(hash(u"cn"), hash(u"CN"));
}

TEST_F(DictionaryTest, IsWalkedByItsKeys) {
    add(u"a");
    add(2);
    EXPECT_THAT(late::items_of(dictionary.object()), testing::ElementsAre(u"a", 2));
}

TEST_F(DictionaryTest, TakesItsItemsAsTheDefaultMember) {
    const Object late = dictionary.object();
    late::put(late, u"Item", u"Ann", {u"cn"});
    EXPECT_EQ(late::get(late, u"Item", {u"cn"}), Variant(u"Ann"));
    late::call(late, u"Add", {u"mail", Values{u"a@x"}});
    EXPECT_EQ(late::call(late, u"Exists", {u"mail"}), Variant(true));
    EXPECT_EQ(late::get(late, u"Count"), Variant(2));
    EXPECT_EQ(late::call(late, u"Keys"), Variant(Values{u"cn", u"mail"}));
    late::put(late, u"Key", u"name", {u"cn"});
    EXPECT_EQ(late::call(late, u"Keys"), Variant(Values{u"name", u"mail"}));
    expect_failure(32811, u"Element not found", [&] { late::call(late, u"Remove", {u"x"}); });
    late::call(late, u"RemoveAll");
    late::put(late, u"CompareMode", 1);
    EXPECT_EQ(late::get(late, u"CompareMode"), Variant(1));
}

TEST_F(DictionaryTest, LeavesAScriptsVariablesAsTheyAre) {
    Variant arguments[] = {u"cn", Values{u"a"}};
    late::call_by_reference(dictionary.object(), u"Add", arguments);
    EXPECT_EQ(arguments[0], Variant(u"cn"));
    EXPECT_EQ(arguments[1], Variant(Values{u"a"}));
    EXPECT_EQ(get(u"cn"), Variant(Values{u"a"}));
}

TEST_F(DictionaryTest, RandomUseAgreesWithAPlainListOfPairs) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::vector<std::pair<std::int32_t, std::int32_t>> model;
    auto key_of = [&](std::int32_t number) {
        return random() % 2 ? Variant(number) : Variant(double(number));
    };
    auto find = [&](std::int32_t key) {
        return std::find_if(model.begin(), model.end(),
                            [&](const auto& pair) { return pair.first == key; });
    };
    for (std::int32_t i = 0; i < 5000; ++i) {
        const auto key = static_cast<std::int32_t>(random() % 40);
        const auto known = find(key);
        const bool is_known = known != model.end();
        switch (random() % 5) {
            case 0:
                put(key_of(key), i);
                if (is_known)
                    known->second = i;
                else
                    model.emplace_back(key, i);
                break;
            case 1:
                if (!is_known) break;
                remove(key_of(key));
                model.erase(known);
                break;
            case 2:
                ASSERT_EQ(exists(key_of(key)), is_known);
                break;
            case 3:
                if (is_known) {
                    ASSERT_EQ(get(key_of(key)), Variant(known->second));
                }
                break;
            default: {
                const auto to = static_cast<std::int32_t>(random() % 40);
                if (!is_known || find(to) != model.end()) break;
                rename(key_of(key), to);
                known->first = to;
            }
        }
        ASSERT_EQ(count(), static_cast<std::int32_t>(model.size()));
    }
    Values wanted;
    for (const auto& [key, item] : model) wanted.push_back(item);
    EXPECT_EQ(items(), Variant(wanted));
}

}  // namespace
}  // namespace orvo
