#include "platform/values/values.h"

#include <gmock/gmock.h>

#include <limits>
#include <utility>

#include "counted_object.h"
#include "platform/system/automation.h"
#include "tests/support/raised.h"

namespace orvo {
namespace {

using testing::ElementsAre;

TEST(Values, WithoutElementsRunFromZeroToMinusOne) {
    const Values none;
    EXPECT_EQ(none.lower_bound(), 0);
    EXPECT_EQ(none.upper_bound(), -1);
    EXPECT_EQ(none.count(), 0);
    EXPECT_TRUE(none.elements().empty());
    EXPECT_NE(none.get(), nullptr);
    expect_subscript_out_of_range([&] { none[0]; });
}

TEST(Values, KeepTheElementsOfTheirListInOrder) {
    const Values list{u"a", 2, Variant::null()};
    EXPECT_EQ(list.count(), 3);
    EXPECT_THAT(list, ElementsAre(Variant(u"a"), Variant(2), Variant::null()));
}

TEST(Values, MayHaveTheLowestAndTheHighestBounds) {
    constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(Values(highest, 1).upper_bound(), highest);
    EXPECT_EQ(Values(highest, 1).count(), 1);
    EXPECT_EQ(Values(lowest, 1).upper_bound(), lowest);
    EXPECT_EQ(Values(lowest, 0).upper_bound(), highest);
    EXPECT_EQ(Values(lowest, 0).count(), 0);
}

TEST(Values, AreIndexedByTheirOwnBounds) {
    Values list(-1, 3);
    EXPECT_EQ(list.lower_bound(), -1);
    EXPECT_EQ(list.upper_bound(), 1);
    EXPECT_TRUE(list[-1].is_empty());
    list[1] = u"last";
    EXPECT_EQ(list.elements().back(), Variant(u"last"));
    for (const std::int32_t index : {-2, 2, std::numeric_limits<std::int32_t>::max(),
                                     std::numeric_limits<std::int32_t>::min()}) {
        expect_subscript_out_of_range([&] { list[index]; });
    }
    expect_subscript_out_of_range([] { Values(0, -1); });
}

TEST(Values, ResizingKeepsWhatFitsAndTheLowerBound) {
    CountedObject object;
    Values list(1, 2);
    list[1] = u"first";
    list[2] = Object::share(object.unknown());
    list.resize(3);
    EXPECT_EQ(list.upper_bound(), 3);
    EXPECT_EQ(list[1], Variant(u"first"));
    EXPECT_TRUE(list[3].is_empty());
    EXPECT_EQ(object.references(), 1);
    list.resize(1);
    EXPECT_EQ(list.lower_bound(), 1);
    EXPECT_EQ(list.count(), 1);
    EXPECT_EQ(object.references(), 0);
    list.resize(0);
    EXPECT_EQ(list.count(), 0);
    list.resize(2);
    EXPECT_EQ(list.lower_bound(), 1);
    EXPECT_TRUE(list[1].is_empty());
    expect_subscript_out_of_range([&] { list.resize(-1); });
    EXPECT_EQ(list.count(), 2);
}

TEST(Values, PushBackAppends) {
    Values list;
    for (int i = 0; i < 100; ++i) list.push_back(decimal(i));
    list.push_back(list[99]);
    ASSERT_EQ(list.count(), 101);
    EXPECT_EQ(list[0], Variant(u"0"));
    EXPECT_EQ(list[99], Variant(u"99"));
    EXPECT_EQ(list[100], Variant(u"99"));
}

TEST(Values, CopiesAreDeepAndMovesAreNot) {
    Values original{u"a", Values{1}};
    Values copy = original;
    EXPECT_EQ(copy, original);
    copy[0] = u"changed";
    EXPECT_EQ(original[0], Variant(u"a"));
    EXPECT_FALSE(copy == original);

    const auto* array = original.get();
    Values moved = std::move(original);
    EXPECT_EQ(moved.get(), array);
    EXPECT_EQ(original.count(), 0);
    EXPECT_EQ(original, Values());
    original.push_back(1);
    EXPECT_THAT(original, ElementsAre(Variant(1)));
}

TEST(Values, EqualWhenBoundsAndElementsAre) {
    EXPECT_EQ((Values{1, u"a"}), (Values{1, u"a"}));
    EXPECT_FALSE((Values{1}) == (Values{2}));
    EXPECT_FALSE((Values{1}) == (Values{1, 2}));
    EXPECT_FALSE(Values(0, 1) == Values(1, 1));
}

TEST(Values, CrossTheBorderWithoutACopy) {
    Values list{u"a"};
    const auto* array = list.get();
    const Variant value(std::move(list));
    EXPECT_EQ(value.get()->parray, array);
    EXPECT_EQ(value.get()->vt, abi::VT_ARRAY | abi::VT_VARIANT);

    Values other{u"b"};
    abi::SAFEARRAY* given = other.detach();
    EXPECT_EQ(other.count(), 0);
    EXPECT_EQ(Values::attach(given), (Values{u"b"}));
}

TEST(Values, AMovedFromArrayStillHandsAnArrayOver) {
    Values list{1};
    const Values taken = std::move(list);
    const Variant value(std::move(list));
    ASSERT_NE(value.get()->parray, nullptr);
    EXPECT_EQ(value.to<Values>(), Values());
}

TEST(Values, AttachRefusesAnArrayOfAnythingElse) {
    EXPECT_EQ(Values::attach(nullptr), Values());
    abi::SAFEARRAY* numbers = abi::SafeArrayCreateVector(abi::VT_I4, 0, 1);
    expect_type_mismatch([&] { Values::attach(numbers); });
    abi::SafeArrayDestroy(numbers);
    abi::SAFEARRAYBOUND bounds[] = {{1, 0}, {1, 0}};
    abi::SAFEARRAY* table = abi::SafeArrayCreate(abi::VT_VARIANT, 2, bounds);
    expect_type_mismatch([&] { Values::attach(table); });
    abi::SafeArrayDestroy(table);
}

TEST(Values, ALockedArrayCannotBeResized) {
    Values list{1};
    ASSERT_EQ(abi::SafeArrayLock(list.get()), abi::s_ok);
    expect_raises(10, u"This array is fixed or temporarily locked", [&] { list.resize(2); });
    ASSERT_EQ(abi::SafeArrayUnlock(list.get()), abi::s_ok);
    EXPECT_EQ(list.count(), 1);
}

}  // namespace
}  // namespace orvo
