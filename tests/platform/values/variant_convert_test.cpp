#include <gtest/gtest.h>

#include <limits>

#include "counted_object.h"
#include "platform/values/values.h"
#include "platform/values/variant.h"
#include "tests/support/raised.h"

namespace orvo {
namespace {

constexpr auto biggest = std::numeric_limits<std::int64_t>::max();

void expect_overflow(auto&& body) { expect_raises(6, u"Overflow", body); }
void expect_invalid_use_of_null(auto&& body) { expect_raises(94, u"Invalid use of Null", body); }
void expect_object_required(auto&& body) { expect_raises(424, u"Object required", body); }

Variant single(float value) {
    abi::VARIANT raw{};
    raw.vt = abi::VT_R4;
    raw.fltVal = value;
    return Variant::attach(raw);
}

TEST(ToText, IsTheSameInEveryLocale) {
    EXPECT_EQ(Variant().to<Text>(), u"");
    EXPECT_EQ(Variant(u"as it is ").to<Text>(), u"as it is ");
    EXPECT_EQ(Variant(true).to<Text>(), u"True");
    EXPECT_EQ(Variant(false).to<Text>(), u"False");
    EXPECT_EQ(Variant(std::int16_t{-7}).to<Text>(), u"-7");
    EXPECT_EQ(Variant(70000).to<Text>(), u"70000");
    EXPECT_EQ(Variant(biggest).to<Text>(), u"9223372036854775807");
    EXPECT_EQ(Variant(1.5).to<Text>(), u"1.5");
    EXPECT_EQ(Variant(0.1 + 0.2).to<Text>(), u"0.3");
    EXPECT_EQ(Variant(1e15).to<Text>(), u"1E+15");
    EXPECT_EQ(single(0.1f).to<Text>(), u"0.1");
    EXPECT_EQ(Variant(Currency{-5000}).to<Text>(), u"-0.5");
    EXPECT_EQ(Variant(Date{37623}).to<Text>(), u"1/2/2003");
    EXPECT_EQ(Variant(Date{37623.5515625}).to<Text>(), u"1/2/2003 1:14:15 PM");
    EXPECT_EQ(Variant(Date{0.25}).to<Text>(), u"6:00:00 AM");
}

TEST(ToText, RaisesWhatHasNoText) {
    expect_invalid_use_of_null([] { Variant::null().to<Text>(); });
    expect_type_mismatch([] { Variant::missing().to<Text>(); });
    expect_type_mismatch([] { Variant(Values{u"a"}).to<Text>(); });
}

TEST(ToInt32, RoundsHalvesToTheEvenNumber) {
    EXPECT_EQ(Variant().to<std::int32_t>(), 0);
    EXPECT_EQ(Variant(12).to<std::int32_t>(), 12);
    EXPECT_EQ(Variant(std::int16_t{-3}).to<std::int32_t>(), -3);
    EXPECT_EQ(Variant(true).to<std::int32_t>(), -1);
    EXPECT_EQ(Variant(2.5).to<std::int32_t>(), 2);
    EXPECT_EQ(Variant(3.5).to<std::int32_t>(), 4);
    EXPECT_EQ(Variant(-2.5).to<std::int32_t>(), -2);
    EXPECT_EQ(Variant(Currency{15000}).to<std::int32_t>(), 2);
    EXPECT_EQ(Variant(Date{37623.75}).to<std::int32_t>(), 37624);
    EXPECT_EQ(Variant(u" 42 ").to<std::int32_t>(), 42);
    EXPECT_EQ(Variant(u"1,234").to<std::int32_t>(), 1234);
    EXPECT_EQ(Variant(u"1e3").to<std::int32_t>(), 1000);
    EXPECT_EQ(Variant(u"&HFF").to<std::int32_t>(), 255);
}

TEST(ToInt32, RaisesOverflowAndTypeMismatch) {
    expect_overflow([] { Variant(2147483647.5).to<std::int32_t>(); });
    expect_overflow([] { Variant(u"99999999999").to<std::int32_t>(); });
    expect_overflow([] { Variant(biggest).to<std::int32_t>(); });
    for (const char16_t* text : {u"", u" ", u"abc", u"12abc", u"1 2", u"True", u"0x10"}) {
        expect_type_mismatch([=] { Variant(text).to<std::int32_t>(); });
    }
    expect_invalid_use_of_null([] { Variant::null().to<std::int32_t>(); });
    expect_type_mismatch([] { Variant::missing().to<std::int32_t>(); });
    expect_type_mismatch([] { Variant(Values{1}).to<std::int32_t>(); });
}

TEST(ToInt16, RaisesOverflowBeyondSixteenBits) {
    EXPECT_EQ(Variant(std::int16_t{5}).to<std::int16_t>(), 5);
    EXPECT_EQ(Variant(32767.4).to<std::int16_t>(), 32767);
    EXPECT_EQ(Variant(u"-32768").to<std::int16_t>(), -32768);
    expect_overflow([] { Variant(70000).to<std::int16_t>(); });
    expect_overflow([] { Variant(u"32768").to<std::int16_t>(); });
}

TEST(ToInt64, KeepsEveryBit) {
    EXPECT_EQ(Variant(biggest).to<std::int64_t>(), biggest);
    EXPECT_EQ(Variant(-5).to<std::int64_t>(), -5);
    EXPECT_EQ(Variant(u"99999999999").to<std::int64_t>(), 99999999999);
    expect_overflow([] { Variant(1e30).to<std::int64_t>(); });
}

TEST(ToDouble, ReadsNumbersAndTexts) {
    EXPECT_EQ(Variant(0.1).to<double>(), 0.1);
    EXPECT_EQ(Variant(u"1.5").to<double>(), 1.5);
    EXPECT_EQ(Variant(u"1E-2").to<double>(), 0.01);
    EXPECT_EQ(Variant(Date{37623.75}).to<double>(), 37623.75);
    EXPECT_EQ(Variant(true).to<double>(), -1);
    expect_overflow([] { Variant(u"1e400").to<double>(); });
    expect_type_mismatch([] { Variant(u"").to<double>(); });
}

TEST(ToBool, IsTrueForEveryNumberButZero) {
    EXPECT_TRUE(Variant(true).to<bool>());
    EXPECT_FALSE(Variant(false).to<bool>());
    EXPECT_FALSE(Variant().to<bool>());
    EXPECT_TRUE(Variant(0.1).to<bool>());
    EXPECT_FALSE(Variant(0).to<bool>());
    EXPECT_TRUE(Variant(-2).to<bool>());
    EXPECT_TRUE(Variant(u"TRUE").to<bool>());
    EXPECT_FALSE(Variant(u"#FALSE#").to<bool>());
    EXPECT_FALSE(Variant(u"0.0").to<bool>());
    EXPECT_TRUE(Variant(u"2").to<bool>());
    for (const char16_t* text : {u"", u"yes", u" True "}) {
        expect_type_mismatch([=] { Variant(text).to<bool>(); });
    }
    expect_invalid_use_of_null([] { Variant::null().to<bool>(); });
    abi::VARIANT one{};
    one.vt = abi::VT_BOOL;
    one.boolVal = 1;
    EXPECT_TRUE(Variant::attach(one).to<bool>());
}

TEST(ToCurrency, KeepsFourDecimals) {
    EXPECT_EQ(Variant(Currency{7}).to<Currency>(), Currency{7});
    EXPECT_EQ(Variant(12.5).to<Currency>(), Currency{125000});
    EXPECT_EQ(Variant(u"1.23456").to<Currency>(), Currency{12346});
    EXPECT_EQ(Variant(0.03125).to<Currency>(), Currency{312});
    expect_overflow([] { Variant(1e15).to<Currency>(); });
}

TEST(ToDate, ReadsNumbersAndDates) {
    EXPECT_EQ(Variant(Date{1.25}).to<Date>(), Date{1.25});
    EXPECT_EQ(Variant(37623).to<Date>(), Date{37623});
    EXPECT_EQ(Variant(u"2003-01-02 13:14:15").to<Date>(), Date{37623.5515625});
    EXPECT_EQ(Variant(u"1/2/2003").to<Date>(), Date{37623});
    EXPECT_EQ(Variant().to<Date>(), Date{0});
    expect_overflow([] { Variant(2958466).to<Date>(); });
    expect_type_mismatch([] { Variant(u"2/30/2003").to<Date>(); });
}

TEST(ToAnything, AnObjectIsAskedForItsDefaultValue) {
    CountedObject number(Variant(12));
    CountedObject text(Variant(u"27"));
    EXPECT_EQ(Variant(Object::share(number.unknown())).to<Text>(), u"12");
    EXPECT_EQ(Variant(Object::share(number.unknown())).to<std::int32_t>(), 12);
    EXPECT_EQ(Variant(Object::share(text.unknown())).to<double>(), 27);
    EXPECT_EQ(number.references(), 0);
    EXPECT_EQ(text.references(), 0);
    expect_raises(91, u"Object variable or With block variable not set",
                  [] { Variant(Object()).to<Text>(); });
}

TEST(ToObject, GivesTheObjectHeldAndRequiresOne) {
    CountedObject object;
    CountedObject plain({}, false);
    EXPECT_EQ(Variant(Object::share(object.unknown())).to<Object>(),
              Object::share(object.unknown()));
    EXPECT_EQ(Variant(Object::share(plain.unknown())).to<Object>().get(), plain.unknown());
    EXPECT_FALSE(Variant(Object()).to<Object>());
    EXPECT_EQ(object.references(), 0);
    for (const Variant& value : {Variant(), Variant::null(), Variant(1), Variant(u"text"),
                                 Variant::missing(), Variant(Values{1})}) {
        expect_object_required([&] { value.to<Object>(); });
    }
}

TEST(ToObject, FindsTheLateBoundInterfaceOfAnUnknown) {
    CountedObject object;
    abi::VARIANT unknown{};
    unknown.vt = abi::VT_UNKNOWN;
    unknown.punkVal = object.unknown();
    abi::add_ref(object.unknown());
    {
        const Variant value = Variant::attach(unknown);
        EXPECT_EQ(value.to<Object>().get(), object.dispatch());
        EXPECT_EQ(object.references(), 1);
    }
    EXPECT_EQ(object.references(), 0);
}

TEST(ToValues, CopiesAnArrayOfVariantsWithItsBounds) {
    Values list(5, 2);
    list[5] = u"a";
    list[6] = 2;
    const Variant value(list);
    Values copy = value.to<Values>();
    EXPECT_EQ(copy, list);
    copy[5] = u"changed";
    EXPECT_EQ(element(value, 5), Variant(u"a"));
}

TEST(ToValues, MakesVariantsOfOtherElements) {
    const Values bytes = Variant::bytes("\x01\xFF").to<Values>();
    ASSERT_EQ(bytes.count(), 2);
    EXPECT_EQ(bytes[1].kind(), Kind::byte);
    EXPECT_EQ(bytes[1].to<std::int32_t>(), 255);

    abi::VARIANT texts{};
    texts.vt = abi::VT_ARRAY | abi::VT_BSTR;
    texts.parray = abi::SafeArrayCreateVector(abi::VT_BSTR, 1, 2);
    static_cast<abi::BSTR*>(texts.parray->pvData)[0] = abi::SysAllocString(u"one");
    const Variant list = Variant::attach(texts);
    const Values values = list.to<Values>();
    EXPECT_EQ(values.lower_bound(), 1);
    EXPECT_EQ(values[1], Variant(u"one"));
    EXPECT_EQ(values[2], Variant(u""));
    EXPECT_EQ(element(list, 1), Variant(u"one"));
}

TEST(ToValues, RaisesTypeMismatchForWhatIsNoVector) {
    for (const Variant& value :
         {Variant(), Variant::null(), Variant(u"text"), Variant(Object()), Variant::missing()}) {
        expect_type_mismatch([&] { value.to<Values>(); });
    }
    abi::SAFEARRAYBOUND bounds[] = {{2, 0}, {3, 0}};
    abi::VARIANT table{};
    table.vt = abi::VT_ARRAY | abi::VT_VARIANT;
    table.parray = abi::SafeArrayCreate(abi::VT_VARIANT, 2, bounds);
    const Variant value = Variant::attach(table);
    expect_type_mismatch([&] { value.to<Values>(); });
    expect_subscript_out_of_range([&] { element(value, 0); });
}

TEST(ToValues, AnArrayThatWasNeverDimensionedHasNoElements) {
    abi::VARIANT none{};
    none.vt = abi::VT_ARRAY | abi::VT_BSTR;
    const Variant value = Variant::attach(none);
    EXPECT_EQ(value.to<Values>().count(), 0);
    expect_subscript_out_of_range([&] { element(value, 0); });
}

}  // namespace
}  // namespace orvo
