#include <gtest/gtest.h>

#include "counted_object.h"
#include "platform/values/values.h"
#include "platform/values/variant.h"
#include "tests/support/raised.h"

namespace orvo {
namespace {

Variant decimal_value(std::uint64_t digits, std::uint8_t scale, bool negative) {
    abi::VARIANT raw{};
    abi::put_decimal(raw, {0, scale, static_cast<std::uint8_t>(negative ? 0x80 : 0), 0, digits});
    return Variant::attach(raw);
}

TEST(VariantEquality, NeedsTheSameTagAndTheSameContent) {
    EXPECT_EQ(Variant(), Variant());
    EXPECT_EQ(Variant::null(), Variant::null());
    EXPECT_FALSE(Variant() == Variant::null());
    EXPECT_FALSE(Variant() == Variant(0));
    EXPECT_EQ(Variant(1), Variant(1));
    EXPECT_FALSE(Variant(1) == Variant(2));
    EXPECT_FALSE(Variant(1) == Variant(std::int16_t{1}));
    EXPECT_FALSE(Variant(1) == Variant(u"1"));
    EXPECT_EQ(Variant(1.5), Variant(1.5));
    EXPECT_FALSE(Variant(std::int64_t{1} << 40) == Variant(std::int64_t{0}));
    EXPECT_EQ(Variant(Currency{5}), Variant(Currency{5}));
    EXPECT_FALSE(Variant(Date{1}) == Variant(1.0));
    EXPECT_EQ(Variant(true), Variant(true));
    EXPECT_FALSE(Variant(true) == Variant(false));
    EXPECT_EQ(Variant(u"a"), Variant(u"a"));
    EXPECT_FALSE(Variant(u"a") == Variant(u"A"));
    EXPECT_FALSE(Variant(u"a") == Variant(TextView(u"a\0", 2)));
    EXPECT_EQ(Variant::missing(), Variant::missing());
    EXPECT_EQ(decimal_value(15, 1, false), decimal_value(15, 1, false));
    EXPECT_FALSE(decimal_value(15, 1, false) == decimal_value(15, 1, true));
}

TEST(VariantEquality, ANullTextIsTheEmptyText) {
    abi::VARIANT null_text{};
    null_text.vt = abi::VT_BSTR;
    EXPECT_EQ(Variant::attach(null_text), Variant(u""));
}

TEST(VariantEquality, ComparesArraysByBoundsAndElements) {
    EXPECT_EQ(Variant(Values{1, u"a"}), Variant(Values{1, u"a"}));
    EXPECT_FALSE(Variant(Values{1, u"a"}) == Variant(Values{1, u"b"}));
    EXPECT_FALSE(Variant(Values{1}) == Variant(Values{1, 1}));
    EXPECT_FALSE(Variant(Values(0, 1)) == Variant(Values(1, 1)));
    EXPECT_EQ(Variant(Values()), Variant(Values()));
    EXPECT_EQ(Variant::bytes("ab"), Variant::bytes("ab"));
    EXPECT_FALSE(Variant::bytes("ab") == Variant::bytes("ac"));
    EXPECT_EQ(Variant::bytes(""), Variant::bytes(""));
    EXPECT_FALSE(Variant::bytes("") == Variant(Values()));
    EXPECT_EQ(Variant(Values{Values{1}}), Variant(Values{Values{1}}));
    EXPECT_FALSE(Variant(Values{Values{1}}) == Variant(Values{Values{2}}));
}

TEST(VariantEquality, ComparesObjectsByIdentity) {
    CountedObject one;
    CountedObject other;
    EXPECT_EQ(Variant(Object::share(one.unknown())), Variant(Object::share(one.dispatch())));
    EXPECT_FALSE(Variant(Object::share(one.unknown())) == Variant(Object::share(other.unknown())));
    EXPECT_FALSE(Variant(Object::share(one.unknown())) == Variant(Object()));
    EXPECT_EQ(Variant(Object()), Variant(Object()));
}

TEST(EqualsNumber, ComparesNumbersOfEveryTypeByTheirValue) {
    EXPECT_TRUE(equals_number(Variant(std::int16_t{3}), 3));
    EXPECT_TRUE(equals_number(Variant(3), 3));
    EXPECT_TRUE(equals_number(Variant(std::int64_t{3}), 3));
    EXPECT_FALSE(equals_number(Variant((std::int64_t{1} << 32) + 3), 3));
    EXPECT_TRUE(equals_number(Variant(3.0), 3));
    EXPECT_FALSE(equals_number(Variant(3.0001), 3));
    EXPECT_TRUE(equals_number(Variant(Currency{30000}), 3));
    EXPECT_FALSE(equals_number(Variant(Currency{30001}), 3));
    EXPECT_TRUE(equals_number(Variant(Date{3}), 3));
    EXPECT_FALSE(equals_number(Variant(Date{3.5}), 3));
    EXPECT_TRUE(equals_number(decimal_value(30, 1, true), -3));
    EXPECT_FALSE(equals_number(decimal_value(31, 1, true), -3));
    EXPECT_TRUE(equals_number(element(Variant::bytes("\x03"), 0), 3));
}

TEST(EqualsNumber, EmptyIsZeroTrueIsMinusOneAndNullEqualsNothing) {
    EXPECT_TRUE(equals_number(Variant(), 0));
    EXPECT_FALSE(equals_number(Variant(), 1));
    EXPECT_TRUE(equals_number(Variant(true), -1));
    EXPECT_FALSE(equals_number(Variant(true), 1));
    EXPECT_TRUE(equals_number(Variant(false), 0));
    EXPECT_FALSE(equals_number(Variant::null(), 0));
}

TEST(EqualsNumber, ReadsATextAsANumber) {
    EXPECT_TRUE(equals_number(Variant(u"12"), 12));
    EXPECT_TRUE(equals_number(Variant(u" 12.0 "), 12));
    EXPECT_FALSE(equals_number(Variant(u"12.5"), 12));
}

TEST(EqualsNumber, TakesAnEmptyTextForZeroAndAnyOtherTextForNoNumber) {
    EXPECT_TRUE(equals_number(Variant(u""), 0));
    EXPECT_FALSE(equals_number(Variant(u""), 1));
    for (const char16_t* text : {u" ", u"abc", u"12abc", u"True"})
        for (const std::int32_t number : {0, 12, -1})
            EXPECT_FALSE(equals_number(Variant(text), number));
}

TEST(EqualsNumber, RaisesTypeMismatchForWhatIsNoSimpleValue) {
    CountedObject object(Variant(1));
    expect_type_mismatch([&] { equals_number(Variant(Object::share(object.unknown())), 1); });
    expect_type_mismatch([] { equals_number(Variant(Object()), 0); });
    expect_type_mismatch([] { equals_number(Variant(Values{1}), 1); });
    expect_type_mismatch([] { equals_number(Variant::missing(), 0); });
}

TEST(Element, RaisesForNoArrayAndForNoSuchElement) {
    const Variant list(Values{u"a", u"b"});
    EXPECT_EQ(element(list, 1), Variant(u"b"));
    expect_subscript_out_of_range([&] { element(list, 2); });
    expect_subscript_out_of_range([&] { element(list, -1); });
    expect_subscript_out_of_range([] { element(Variant(Values()), 0); });
    expect_type_mismatch([] { element(Variant(), 0); });
    expect_type_mismatch([] { element(Variant(u"text"), 0); });
    expect_type_mismatch([] { element(Variant::null(), 0); });
}

}  // namespace
}  // namespace orvo
