// Conversions beside the recorded ones: exactness, references, objects, the invariant locale.

#include <gtest/gtest.h>

#include <clocale>
#include <limits>

#include "counted.h"
#include "printed.h"

namespace {

using namespace orvo::abi;
using orvo::testing::Counted;
using orvo::testing::Owned;
using orvo::testing::printed;
using orvo::testing::printed_result;

std::string changed(const VARIANT& from, VARTYPE type, LCID locale = fixed_locale,
                    std::uint16_t flags = 0) {
    Owned to;
    HRESULT outcome = VariantChangeTypeEx(&to, &from, locale, flags, type);
    return succeeded(outcome) ? printed(to) : printed_result(outcome);
}

std::string text_to(const std::u16string& text, VARTYPE type, LCID locale = fixed_locale) {
    Owned from;
    from.set_text(text);
    return changed(from, type, locale);
}

VARIANT real(double value, VARTYPE type = VT_R8) {
    VARIANT made{};
    made.vt = type;
    made.dblVal = value;
    return made;
}

VARIANT whole(std::int64_t value, VARTYPE type = VT_I8) {
    VARIANT made{};
    made.vt = type;
    made.llVal = value;
    return made;
}

TEST(TextToNumber, IsExactUpToTheWholeWidthOfTheType) {
    EXPECT_EQ(text_to(u"9223372036854775807", VT_I8), "I8 9223372036854775807");
    EXPECT_EQ(text_to(u"-9223372036854775808", VT_I8), "I8 -9223372036854775808");
    EXPECT_EQ(text_to(u"9223372036854775808", VT_I8), "OVERFLOW");
    EXPECT_EQ(text_to(u"18446744073709551615", VT_UI8), "UI8 18446744073709551615");
    EXPECT_EQ(text_to(u"922337203685477.5807", VT_CY), "CY int64=9223372036854775807");
    EXPECT_EQ(text_to(u"-922337203685477.5808", VT_CY), "CY int64=-9223372036854775808");
    EXPECT_EQ(text_to(u"79228162514264337593543950335", VT_DECIMAL),
              "DECIMAL ffffffffffffffffffffffff/0");
    EXPECT_EQ(text_to(u"79228162514264337593543950336", VT_DECIMAL), "OVERFLOW");
    EXPECT_EQ(text_to(u"-1.50", VT_DECIMAL), "DECIMAL -000000000000000000000096/2");
}

TEST(TextToNumber, RoundsOnceHoweverManyDigitsThereAre) {
    EXPECT_EQ(text_to(u"2.5" + std::u16string(60, u'0') + u"1", VT_I4), "I4 3");
    EXPECT_EQ(text_to(u"2.5" + std::u16string(60, u'0'), VT_I4), "I4 2");
    EXPECT_EQ(text_to(u"2.4" + std::u16string(60, u'9'), VT_I4), "I4 2");
    EXPECT_EQ(text_to(std::u16string(50, u'0') + u"7", VT_I4), "I4 7");
    EXPECT_EQ(text_to(u"1" + std::u16string(50, u'0') + u"e-50", VT_I4), "I4 1");
    EXPECT_EQ(text_to(u"1e-400", VT_R8), "R8 0");
    EXPECT_EQ(text_to(u"0e99999999999", VT_R8), "R8 0");
    EXPECT_EQ(text_to(u"1e99999999999", VT_I4), "OVERFLOW");
}

TEST(TextToNumber, ReadsPatternsAsNumbersOfTheSameWidth) {
    EXPECT_EQ(text_to(u"&HFFFF", VT_I2), "I2 -1");
    EXPECT_EQ(text_to(u"&hffff", VT_I4), "I4 65535");
    EXPECT_EQ(text_to(u"&HFFFFFFFF", VT_I4), "I4 -1");
    EXPECT_EQ(text_to(u"&H1FFFFFFFF", VT_I4), "OVERFLOW");
    EXPECT_EQ(text_to(u"&HFFFF", VT_R8), "R8 65535");
    EXPECT_EQ(text_to(u"&O17", VT_CY), "CY int64=150000");
    for (const char16_t* text : {u"&H", u"&HG", u"&O8", u"&", u"-&H1", u"&H11112222333344445"})
        EXPECT_EQ(text_to(text, VT_I4), "TYPEMISMATCH") << printed_result(0);
}

TEST(TextToNumber, RefusesWhatIsNoNumber) {
    for (const char16_t* text :
         {u".", u"-", u"()", u"(5", u"5)", u"(-5)", u"1e", u"1e+", u",5", u"1.2.3", u"1.2,3", u"$",
          u"$$5", u"+-5", u"-5-", u"5 5", u"NaN", u"inf", u"0b1"}) {
        EXPECT_EQ(text_to(text, VT_I4), "TYPEMISMATCH");
        EXPECT_EQ(text_to(text, VT_R8), "TYPEMISMATCH");
    }
}

TEST(TextToNumber, KnowsNoDollarInTheInvariantLocale) {
    EXPECT_EQ(text_to(u"$5", VT_I4, 0x7F), "TYPEMISMATCH");
    EXPECT_EQ(text_to(u"-$5", VT_I4), "I4 -5");
    EXPECT_EQ(text_to(u"1.5", VT_R8, 0x7F), "R8 1.5");
}

TEST(TextToDate, TakesTheOrderThatIsPossible) {
    EXPECT_EQ(text_to(u"13/2/2003", VT_DATE), "DATE 37665");
    EXPECT_EQ(text_to(u"2003-13-01", VT_DATE), "DATE 37634");
    EXPECT_EQ(text_to(u"Jan 2, 2003", VT_DATE), "DATE 37623");
    EXPECT_EQ(text_to(u"2-jan-2003", VT_DATE), "DATE 37623");
    EXPECT_EQ(text_to(u"12:30 PM", VT_DATE), "DATE 0.5208333333");
    EXPECT_EQ(text_to(u"12 am", VT_DATE), "DATE 0");
    EXPECT_EQ(text_to(u"12:30 1/2/2003", VT_DATE), "DATE 37623.52083");
    EXPECT_EQ(text_to(u"1899-12-29 06:00", VT_DATE), "DATE -1.25");
    EXPECT_EQ(text_to(u"100-01-01", VT_DATE), "DATE -657434");
    EXPECT_EQ(text_to(u"9999-12-31", VT_DATE), "DATE 2958465");
}

TEST(TextToDate, RefusesWhatIsNoDate) {
    for (const char16_t* text : {u"",
                                 u" ",
                                 u"24:00",
                                 u"12:60",
                                 u"1:2:60",
                                 u"13:00 PM",
                                 u"2003-01-02T13:14:15",
                                 u"1.2.2003",
                                 u"1 2 2003",
                                 u"2003",
                                 u"January",
                                 u"January January 2003",
                                 u"1/2/3/4",
                                 u"1/2/",
                                 u"1/2/2003,",
                                 u"12:30 12:30",
                                 u"12:",
                                 u"0/1/2003",
                                 u"1/0/2003",
                                 u"31/4/2003"})
        EXPECT_EQ(text_to(text, VT_DATE), "TYPEMISMATCH") << std::string(text, text + 5);
}

TEST(RealToText, RoundsTiesAwayFromZeroAndNothingElse) {
    EXPECT_EQ(changed(real(100000000000000.5), VT_BSTR), "BSTR \"100000000000001\"");
    EXPECT_EQ(changed(real(999999999999999.5), VT_BSTR), "BSTR \"1E+15\"");
    EXPECT_EQ(changed(real(0.1 + 0.2), VT_BSTR), "BSTR \"0.3\"");
    EXPECT_EQ(changed(real(-0.0), VT_BSTR), "BSTR \"0\"");
    EXPECT_EQ(changed(real(1e-4), VT_BSTR), "BSTR \"0.0001\"");
    EXPECT_EQ(changed(real(std::numeric_limits<double>::max()), VT_BSTR),
              "BSTR \"1.79769313486232E+308\"");
    EXPECT_EQ(changed(real(5e-324), VT_BSTR), "BSTR \"4.94065645841247E-324\"");
}

TEST(RealToNumber, RefusesWhatNoWholeNumberCanHold) {
    double nan = std::numeric_limits<double>::quiet_NaN();
    for (VARTYPE type : {VT_I1, VT_I2, VT_I4, VT_I8, VT_UI1, VT_UI8, VT_CY, VT_DATE, VT_DECIMAL})
        for (double value : {nan, 1e300, -1e300}) EXPECT_EQ(changed(real(value), type), "OVERFLOW");
    EXPECT_EQ(changed(real(9223372036854775807.0), VT_I8), "OVERFLOW");
    EXPECT_EQ(changed(real(-9223372036854775808.0), VT_I8), "I8 -9223372036854775808");
    EXPECT_EQ(changed(real(1e300), VT_R4), "OVERFLOW");
    EXPECT_EQ(changed(real(0.03125), VT_CY), "CY int64=312");
    EXPECT_EQ(changed(real(0.09375), VT_CY), "CY int64=938");
}

TEST(Decimal, ChangesIntoEveryOtherNumberAndBack) {
    Owned decimal;
    put_decimal(decimal, DECIMAL{0, 3, 0x80, 0, 2500});
    EXPECT_EQ(changed(decimal, VT_BSTR), "BSTR \"-2.5\"");
    EXPECT_EQ(changed(decimal, VT_I4), "I4 -2");
    EXPECT_EQ(changed(decimal, VT_R8), "R8 -2.5");
    EXPECT_EQ(changed(decimal, VT_CY), "CY int64=-25000");
    EXPECT_EQ(changed(decimal, VT_BOOL), "BOOL -1");
    EXPECT_EQ(changed(real(0.1), VT_DECIMAL), "DECIMAL 000000000000000000000001/1");
    EXPECT_EQ(changed(whole(-7), VT_DECIMAL), "DECIMAL -000000000000000000000007/0");
    EXPECT_EQ(changed(Owned(), VT_DECIMAL), "DECIMAL 000000000000000000000000/0");
}

TEST(Boolean, HasAllBitsSetInUnsignedTypes) {
    VARIANT yes = whole(0, VT_BOOL);
    yes.boolVal = variant_true;
    EXPECT_EQ(changed(yes, VT_UI1), "UI1 255");
    EXPECT_EQ(changed(yes, VT_UI8), "UI8 18446744073709551615");
    EXPECT_EQ(changed(yes, VT_BSTR), "BSTR \"-1\"");
    EXPECT_EQ(changed(yes, VT_BSTR, fixed_locale, VARIANT_ALPHABOOL), "BSTR \"True\"");
}

TEST(Null, BecomesNothingElse) {
    EXPECT_EQ(changed(whole(0, VT_NULL), VT_BSTR), "TYPEMISMATCH");
    EXPECT_EQ(changed(whole(0, VT_NULL), VT_NULL), "Null");
    EXPECT_EQ(changed(Owned(), VT_NULL), "Null");
}

TEST(DateToText, HasLeadingZerosAndTwentyFourHoursInTheInvariantLocale) {
    EXPECT_EQ(changed(real(37623, VT_DATE), VT_BSTR, 0x7F), "BSTR \"01/02/2003\"");
    EXPECT_EQ(changed(real(37623.5522569444, VT_DATE), VT_BSTR, 0x7F),
              "BSTR \"01/02/2003 13:15:15\"");
    EXPECT_EQ(changed(real(0.75, VT_DATE), VT_BSTR, 0x7F), "BSTR \"18:00:00\"");
}

TEST(DateToText, RoundsTheLastSecondIntoTheNextDay) {
    EXPECT_EQ(changed(real(1.9999999, VT_DATE), VT_BSTR), "BSTR \"1/1/1900 12:00:00 AM\"");
    EXPECT_EQ(changed(real(-1.9999999, VT_DATE), VT_BSTR), "BSTR \"12/30/1899 12:00:00 AM\"");
    EXPECT_EQ(changed(real(0.9999999, VT_DATE), VT_BSTR), "BSTR \"12:00:00 AM\"");
    EXPECT_EQ(changed(real(37623.999999, VT_DATE), VT_BSTR), "BSTR \"1/3/2003 12:00:00 AM\"");
    EXPECT_EQ(changed(real(37623.0000001, VT_DATE), VT_BSTR), "BSTR \"1/2/2003 12:00:00 AM\"");
    EXPECT_EQ(changed(real(2958465.9999999, VT_DATE), VT_BSTR), "BSTR \"12/31/9999 11:59:59 PM\"");
    EXPECT_EQ(changed(real(2958466, VT_DATE), VT_BSTR), "E_INVALIDARG");
}

TEST(Conversion, MayBeDoneInPlace) {
    Owned value;
    value.set_text(u"42");
    EXPECT_EQ(VariantChangeType(&value, &value, 0, VT_I4), s_ok);
    EXPECT_EQ(printed(value), "I4 42");
    EXPECT_EQ(VariantChangeType(&value, &value, 0, VT_BSTR), s_ok);
    EXPECT_EQ(printed(value), "BSTR \"42\"");
    EXPECT_EQ(VariantChangeType(&value, &value, 0, VT_DATE), disp_e_typemismatch);
    EXPECT_EQ(printed(value), "BSTR \"42\"") << "a failure leaves it as it was";
}

TEST(Conversion, FollowsReferences) {
    BSTR text = SysAllocString(u"12");
    VARIANT inner{}, outer{};
    inner.vt = VT_BYREF | VT_BSTR;
    inner.pbstrVal = &text;
    outer.vt = VT_BYREF | VT_VARIANT;
    outer.pvarVal = &inner;
    EXPECT_EQ(changed(outer, VT_I2), "I2 12");
    EXPECT_EQ(changed(outer, VT_BSTR), "BSTR \"12\"");
    SysFreeString(text);
}

TEST(Conversion, OfAnObjectReadsItsDefaultValue) {
    Counted object;
    object.default_value = whole(17, VT_I4);
    VARIANT value{};
    value.vt = VT_DISPATCH;
    value.pdispVal = &object;
    EXPECT_EQ(changed(value, VT_BSTR), "BSTR \"17\"");
    EXPECT_EQ(object.invoked, 1);
    EXPECT_EQ(object.locale, 0x400u);
    EXPECT_EQ(object.flags, DISPATCH_PROPERTYGET);
    EXPECT_FALSE(object.had_details);
    EXPECT_EQ(changed(value, VT_BSTR, fixed_locale, VARIANT_NOVALUEPROP), "TYPEMISMATCH");
    EXPECT_EQ(object.invoked, 1);
    object.default_result = result(0x80040201);
    EXPECT_EQ(changed(value, VT_BSTR), "80040201") << "the object's own failure";
    EXPECT_EQ(object.references, 1);
}

TEST(Conversion, OfAnObjectHoldsItWhileItsDefaultValueIsRead) {
    Counted object;
    object.default_value = whole(17, VT_I4);
    VARIANT variable{};
    variable.vt = VT_DISPATCH;
    variable.pdispVal = &object;
    int held = 0;
    object.during = [&] {
        VariantClear(&variable);
        held = object.references;
    };
    EXPECT_EQ(changed(variable, VT_BSTR), "BSTR \"17\"");
    EXPECT_EQ(held, 1) << "by the conversion, as the variable has let go of it";
    EXPECT_EQ(object.references, 0);
}

TEST(Conversion, OfAnObjectThatIsItsOwnDefaultValueEnds) {
    Counted object;
    object.default_value.vt = VT_DISPATCH;
    object.default_value.pdispVal = &object;
    VARIANT value = object.default_value;
    EXPECT_EQ(changed(value, VT_I4), "TYPEMISMATCH");
    EXPECT_EQ(object.references, 1);
}

TEST(Conversion, BetweenObjectTypesAsksTheObject) {
    Counted object;
    VARIANT value{};
    value.vt = VT_UNKNOWN;
    value.punkVal = &object;
    {
        Owned to;
        EXPECT_EQ(VariantChangeType(&to, &value, 0, VT_DISPATCH), s_ok);
        EXPECT_EQ(to.vt, VT_DISPATCH);
        EXPECT_EQ(object.references, 2);
    }
    object.has_dispatch = false;
    EXPECT_EQ(changed(value, VT_DISPATCH), "TYPEMISMATCH");
    EXPECT_EQ(object.references, 1);
}

TEST(Conversion, DoesNotFollowTheProgramsLocale) {
    std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "C.UTF-8"})
        if (std::setlocale(LC_ALL, name)) break;
    EXPECT_EQ(changed(real(1.5), VT_BSTR), "BSTR \"1.5\"");
    EXPECT_EQ(text_to(u"1,234.5", VT_R8), "R8 1234.5");
    std::setlocale(LC_ALL, before.c_str());
}

}  // namespace
