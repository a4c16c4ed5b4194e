#include "platform/values/array_shape.h"

#include <gtest/gtest.h>

#include <array>

#include "platform/system/automation.h"
#include "platform/values/values.h"
#include "tests/support/raised.h"

namespace orvo {
namespace {

// An array of 32-bit integers with 2 by 3 elements, first index from 1, second from -1; the element
// (i, j) is 10 * i + j.
Variant grid() {
    abi::SAFEARRAYBOUND bounds[] = {{2, 1}, {3, -1}};
    abi::VARIANT raw{};
    raw.vt = abi::VT_ARRAY | abi::VT_I4;
    raw.parray = abi::SafeArrayCreate(abi::VT_I4, 2, bounds);
    for (std::int32_t i = 1; i <= 2; ++i) {
        for (std::int32_t j = -1; j <= 1; ++j) {
            std::int32_t indices[] = {i, j};
            std::int32_t value = 10 * i + j;
            abi::SafeArrayPutElement(raw.parray, indices, &value);
        }
    }
    return Variant::attach(raw);
}

Variant at(const Variant& array, std::initializer_list<std::int32_t> indices) {
    return element(array, std::span(indices.begin(), indices.size()));
}

TEST(ArrayShape, TellsTheBoundsOfEachDimension) {
    EXPECT_EQ(bounds_of(grid()), (std::vector<ArrayBounds>{{1, 2}, {-1, 1}}));
    EXPECT_EQ(bounds_of(Values{1, 2}), (std::vector<ArrayBounds>{{0, 1}}));
    EXPECT_EQ(bounds_of(Values()), (std::vector<ArrayBounds>{{0, -1}}));
    EXPECT_EQ(bounds_of(Variant::bytes("abc")), (std::vector<ArrayBounds>{{0, 2}}));
}

TEST(ArrayShape, FindsElementsByTheirIndices) {
    const Variant numbers = grid();
    EXPECT_EQ(at(numbers, {1, -1}), Variant(9));
    EXPECT_EQ(at(numbers, {2, 0}), Variant(20));
    EXPECT_EQ(at(numbers, {2, 1}), Variant(21));
    EXPECT_EQ(at(Values{u"a", u"b"}, {1}), Variant(u"b"));
}

TEST(ArrayShape, WalksWithTheFirstIndexRunningFastest) {
    const Variant numbers = grid();
    ASSERT_EQ(element_count(numbers), 6u);
    std::vector<std::int32_t> seen;
    for (std::size_t i = 0; i < 6; ++i) seen.push_back(element_at(numbers, i).to<std::int32_t>());
    EXPECT_EQ(seen, (std::vector<std::int32_t>{9, 19, 10, 20, 11, 21}));
    expect_subscript_out_of_range([&] { element_at(numbers, 6); });
}

TEST(ArrayShape, RefusesIndicesThatAreNotThere) {
    const Variant numbers = grid();
    for (const auto& wrong : {std::vector<std::int32_t>{0, 0}, {3, 0}, {1, -2}, {1, 2}, {1}, {}})
        expect_subscript_out_of_range([&] { element(numbers, wrong); });
}

TEST(ArrayShape, IsNothingThatOtherValuesHave) {
    for (const Variant& other : {Variant(), Variant(1), Variant(u"abc")}) {
        EXPECT_THROW(bounds_of(other), Failure);
        EXPECT_THROW(element_count(other), Failure);
        EXPECT_THROW(element_at(other, 0), Failure);
    }
}

}  // namespace
}  // namespace orvo
