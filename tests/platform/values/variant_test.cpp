#include "platform/values/variant.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "counted_object.h"
#include "platform/values/values.h"
#include "tests/support/raised.h"

namespace orvo {
namespace {

static_assert(!std::is_constructible_v<Variant, std::nullptr_t>);
static_assert(!std::is_constructible_v<Variant, char>);
static_assert(!std::is_constructible_v<Variant, const char*>);
static_assert(!std::is_constructible_v<Variant, void*>);
static_assert(!std::is_constructible_v<Variant, unsigned>);
static_assert(std::is_nothrow_move_constructible_v<Variant>);
static_assert(std::is_nothrow_move_assignable_v<Variant>);

TEST(Variant, EachTypeHasItsTag) {
    CountedObject object;
    CountedObject plain({}, false);
    EXPECT_EQ(Variant().kind(), Kind::empty);
    EXPECT_EQ(Variant::null().kind(), Kind::null);
    EXPECT_EQ(Variant(std::int16_t{1}).kind(), Kind::int16);
    EXPECT_EQ(Variant(1).kind(), Kind::int32);
    EXPECT_EQ(Variant(std::int64_t{1}).kind(), Kind::int64);
    EXPECT_EQ(Variant(1.5).kind(), Kind::real);
    EXPECT_EQ(Variant(Currency{1}).kind(), Kind::currency);
    EXPECT_EQ(Variant(Date{1}).kind(), Kind::date);
    EXPECT_EQ(Variant(true).kind(), Kind::boolean);
    EXPECT_EQ(Variant(u"").kind(), Kind::text);
    EXPECT_EQ(Variant(Text(u"a")).kind(), Kind::text);
    EXPECT_EQ(Variant(Object()).kind(), Kind::object);
    EXPECT_EQ(Variant(Object::share(object.unknown())).kind(), Kind::object);
    EXPECT_EQ(Variant(Object::share(plain.unknown())).kind(), Kind::unknown);
    EXPECT_EQ(Variant::missing().kind(), Kind::error);
    EXPECT_EQ(object.references(), 0);
    EXPECT_EQ(plain.references(), 0);
}

TEST(Variant, HoldsAnObjectByTheInterfaceThatLateBindingCalls) {
    CountedObject object;
    const Variant value(Object::share(object.unknown()));
    EXPECT_EQ(value.get()->punkVal, object.dispatch());
    EXPECT_EQ(object.references(), 1);
}

TEST(Variant, MissingIsNeitherEmptyNorNullNorAnyOtherError) {
    EXPECT_TRUE(Variant::missing().is_missing());
    EXPECT_FALSE(Variant::missing().is_empty());
    EXPECT_FALSE(Variant::missing().is_null());
    EXPECT_FALSE(Variant().is_missing());
    EXPECT_FALSE(Variant::null().is_missing());
    EXPECT_FALSE(Variant(static_cast<std::int32_t>(0x80020004)).is_missing());
    abi::VARIANT other_error{};
    other_error.vt = abi::VT_ERROR;
    other_error.scode = abi::e_fail;
    EXPECT_FALSE(Variant::attach(other_error).is_missing());
}

TEST(Variant, KeepsATextWithItsNuls) {
    const TextView text(u"a\0b", 3);
    EXPECT_EQ(Variant(text).text_view(), text);
    EXPECT_EQ(Variant(text).to<Text>(), text);
    EXPECT_EQ(Variant(u"").text_view(), u"");
    EXPECT_EQ(Variant(1).text_view(), u"");
    EXPECT_NE(Variant(u"").get()->bstrVal, nullptr);
}

TEST(Variant, CopiesATextAndSharesAnObject) {
    const Variant text(u"text");
    const Variant copy = text;
    EXPECT_EQ(copy, text);
    EXPECT_NE(copy.get()->bstrVal, text.get()->bstrVal);

    CountedObject object;
    {
        const Variant first(Object::share(object.unknown()));
        Variant second = first;
        EXPECT_EQ(object.references(), 2);
        second = 5;
        EXPECT_EQ(object.references(), 1);
    }
    EXPECT_EQ(object.references(), 0);
}

TEST(Variant, MovingLeavesEmptyAndKeepsTheContentWhereItIs) {
    Variant from(u"text");
    const auto* content = from.get()->bstrVal;
    Variant to = std::move(from);
    EXPECT_TRUE(from.is_empty());
    EXPECT_EQ(to.get()->bstrVal, content);
    from = std::move(to);
    EXPECT_TRUE(to.is_empty());
    EXPECT_EQ(from.get()->bstrVal, content);
    Variant& alias = from;
    from = std::move(alias);
    EXPECT_EQ(from.text_view(), u"text");
    from = alias;
    EXPECT_EQ(from.text_view(), u"text");
}

TEST(Variant, CopiesArraysDownToTheirElements) {
    const Variant original(Values{u"a", Variant(Values{1, 2})});
    Variant copy = original;
    EXPECT_EQ(copy, original);
    EXPECT_NE(copy.get()->parray, original.get()->parray);
    EXPECT_NE(element(copy, 1).get()->parray, element(original, 1).get()->parray);
    auto* elements = static_cast<abi::VARIANT*>(copy.get()->parray->pvData);
    Variant::attach(elements[0]);
    EXPECT_TRUE(element(copy, 0).is_empty());
    EXPECT_EQ(element(original, 0).text_view(), u"a");
}

TEST(Variant, BytesAreAnArrayOfUnsignedBytes) {
    const std::string_view content("\0\x7F\x80\xFF", 4);
    const Variant value = Variant::bytes(content);
    EXPECT_TRUE(value.is_array());
    EXPECT_EQ(value.get()->vt, abi::VT_ARRAY | abi::VT_UI1);
    EXPECT_EQ(value.try_bytes(), content);
    EXPECT_EQ(element(value, 3), element(Variant::bytes("\xFF"), 0));
    EXPECT_EQ(element(value, 3).to<std::int32_t>(), 255);
    EXPECT_EQ(Variant::bytes("").try_bytes(), "");
    EXPECT_EQ(Variant(u"text").try_bytes(), std::nullopt);
    EXPECT_EQ(Variant(Values{1}).try_bytes(), std::nullopt);
    EXPECT_EQ(Variant().try_bytes(), std::nullopt);
}

TEST(Variant, AttachTakesOverAndLeavesTheSourceEmpty) {
    abi::VARIANT source{};
    source.vt = abi::VT_BSTR;
    source.bstrVal = abi::SysAllocString(u"taken");
    const auto* content = source.bstrVal;
    const Variant value = Variant::attach(source);
    EXPECT_EQ(value.get()->bstrVal, content);
    EXPECT_EQ(source.vt, abi::VT_EMPTY);
}

TEST(Variant, AttachAndCopyFollowAReference) {
    std::int32_t number = 7;
    abi::VARIANT by_reference{};
    by_reference.vt = abi::VT_BYREF | abi::VT_I4;
    by_reference.plVal = &number;
    EXPECT_EQ(Variant::copy_of(by_reference), Variant(7));
    EXPECT_EQ(by_reference.vt, abi::VT_BYREF | abi::VT_I4);

    Variant inner(u"inner");
    abi::VARIANT to_variant{};
    to_variant.vt = abi::VT_BYREF | abi::VT_VARIANT;
    to_variant.pvarVal = const_cast<abi::VARIANT*>(inner.get());
    EXPECT_EQ(Variant::copy_of(to_variant).text_view(), u"inner");
    EXPECT_EQ(Variant::attach(to_variant).text_view(), u"inner");
    EXPECT_EQ(to_variant.vt, abi::VT_EMPTY);
    EXPECT_EQ(inner.text_view(), u"inner");
}

TEST(Variant, CopyingAReferenceToAReferenceIsRefused) {
    std::int32_t number = 7;
    abi::VARIANT first{};
    first.vt = abi::VT_BYREF | abi::VT_I4;
    first.plVal = &number;
    abi::VARIANT second{};
    second.vt = abi::VT_BYREF | abi::VT_VARIANT;
    second.pvarVal = &first;
    abi::VARIANT third{};
    third.vt = abi::VT_BYREF | abi::VT_VARIANT;
    third.pvarVal = &second;
    expect_raises(5, u"Invalid procedure call or argument", [&] { Variant::copy_of(third); });
}

TEST(Variant, DetachGivesTheContentAwayAndPutClearsFirst) {
    Variant value(u"given");
    abi::VARIANT out{};
    value.detach(out);
    EXPECT_TRUE(value.is_empty());
    EXPECT_EQ(out.vt, abi::VT_BSTR);
    EXPECT_EQ(Variant::attach(out).text_view(), u"given");

    CountedObject object;
    Variant held(Object::share(object.unknown()));
    abi::VARIANT* slot = held.put();
    EXPECT_EQ(object.references(), 0);
    EXPECT_EQ(slot->vt, abi::VT_EMPTY);
    slot->vt = abi::VT_I4;
    slot->lVal = 3;
    EXPECT_EQ(held, Variant(3));
}

}  // namespace
}  // namespace orvo
