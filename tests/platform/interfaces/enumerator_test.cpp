#include "platform/interfaces/enumerator.h"

#include <gmock/gmock.h>

#include "platform/interfaces/border.h"

namespace orvo {
namespace {

class EnumeratorTest : public testing::Test {
protected:
    abi::HRESULT next(const Object& from, std::uint32_t count, std::vector<Variant>& items) {
        std::vector<abi::VARIANT> raw(count);
        std::uint32_t fetched = 99;
        const abi::HRESULT code =
            abi::call_slot<abi::HRESULT, std::uint32_t, abi::VARIANT*, std::uint32_t*>(
                from.get(), abi::slot_enum_next, count, raw.data(), &fetched);
        items.clear();
        for (std::uint32_t i = 0; i < fetched; ++i) items.push_back(Variant::attach(raw[i]));
        return code;
    }
    abi::HRESULT skip(std::uint32_t count) {
        return abi::call_slot<abi::HRESULT, std::uint32_t>(enumerator.get(), abi::slot_enum_skip,
                                                           count);
    }
    Object clone() {
        Object made;
        abi::call_slot<abi::HRESULT, abi::IUnknown**>(enumerator.get(), abi::slot_enum_clone,
                                                      made.put());
        return made;
    }

    const Object enumerator = make_enumerator({u"a", 2, u"c"});
    std::vector<Variant> items;
};

TEST_F(EnumeratorTest, GivesAsManyItemsAsAskedForAndTellsWhenThereAreFewer) {
    EXPECT_EQ(next(enumerator, 2, items), abi::s_ok);
    EXPECT_THAT(items, testing::ElementsAre(u"a", 2));
    EXPECT_EQ(next(enumerator, 2, items), abi::s_false);
    EXPECT_THAT(items, testing::ElementsAre(u"c"));
    EXPECT_EQ(next(enumerator, 1, items), abi::s_false);
    EXPECT_TRUE(items.empty());
}

TEST_F(EnumeratorTest, SkipsAndStartsAgain) {
    EXPECT_EQ(skip(2), abi::s_ok);
    EXPECT_EQ(next(enumerator, 1, items), abi::s_ok);
    EXPECT_THAT(items, testing::ElementsAre(u"c"));
    EXPECT_EQ(skip(1), abi::s_false);
    EXPECT_EQ(abi::call_slot<abi::HRESULT>(enumerator.get(), abi::slot_enum_reset), abi::s_ok);
    EXPECT_EQ(next(enumerator, 1, items), abi::s_ok);
    EXPECT_THAT(items, testing::ElementsAre(u"a"));
}

TEST_F(EnumeratorTest, ACloneWalksOnFromTheSamePlace) {
    skip(1);
    const Object other = clone();
    EXPECT_EQ(next(other, 3, items), abi::s_false);
    EXPECT_THAT(items, testing::ElementsAre(2, u"c"));
    EXPECT_EQ(next(enumerator, 1, items), abi::s_ok);
    EXPECT_THAT(items, testing::ElementsAre(2));
}

TEST_F(EnumeratorTest, NeedsARoomForTheCountOfSeveralItems) {
    abi::VARIANT raw[2]{};
    const auto ask = [&](std::uint32_t count) {
        return abi::call_slot<abi::HRESULT, std::uint32_t, abi::VARIANT*, std::uint32_t*>(
            enumerator.get(), abi::slot_enum_next, count, raw, nullptr);
    };
    EXPECT_EQ(ask(2), abi::e_pointer);
    EXPECT_EQ(ask(1), abi::s_ok);
    EXPECT_EQ(Variant::attach(raw[0]), Variant(u"a"));
}

}  // namespace
}  // namespace orvo
