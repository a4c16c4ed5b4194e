// Values on their way into a script and out of it.

#include <cmath>
#include <limits>

#include "tests/host/engine/script_test.h"

namespace orvo::script {
namespace {

class ScriptValues : public ScriptTest {
protected:
    // How a script sees a value that an Automation object gives.
    std::string seen(const Variant& given, const std::string& expression) {
        engine.set_global("x", given);
        return text(expression);
    }
};

TEST_F(ScriptValues, OfTheScriptBecomeAutomationValues) {
    EXPECT_EQ(value("undefined"), Variant());
    EXPECT_EQ(value("null"), Variant::null());
    EXPECT_EQ(value("true"), Variant(true));
    EXPECT_EQ(value("7"), Variant(7));
    EXPECT_EQ(value("-2147483648"), Variant(std::numeric_limits<std::int32_t>::min()));
    EXPECT_EQ(value("2147483648"), Variant(2147483648.0));
    EXPECT_EQ(value("0.5"), Variant(0.5));
    EXPECT_TRUE(std::signbit(value("-0").to<double>()));
    EXPECT_TRUE(std::isnan(value("NaN").to<double>()));
    EXPECT_EQ(value("'a'"), Variant(u"a"));
    EXPECT_EQ(value("''"), Variant(u""));
    EXPECT_EQ(value("new String('boxed')"), Variant(u"boxed"));
    EXPECT_EQ(value("new Number(3)"), Variant(3));
    EXPECT_EQ(value("new Boolean(false)"), Variant(false));
    EXPECT_EQ(value("shelf").to<Object>(), shelf);
}

TEST_F(ScriptValues, OfAutomationBecomeTheScripts) {
    EXPECT_EQ(seen({}, "x === undefined"), "true");
    EXPECT_EQ(seen(Variant::missing(), "x === undefined"), "true");
    EXPECT_EQ(seen(Variant::null(), "x === null"), "true");
    EXPECT_EQ(seen(Object(), "x === null"), "true");
    EXPECT_EQ(seen(true, "x === true"), "true");
    EXPECT_EQ(seen(std::int16_t{-3}, "x === -3"), "true");
    EXPECT_EQ(seen(std::int64_t{1} << 40, "x === 1099511627776"), "true");
    EXPECT_EQ(seen(2.25, "x === 2.25"), "true");
    EXPECT_EQ(seen(Currency{125000}, "x === 12.5"), "true");
    EXPECT_EQ(seen(u"text", "x === 'text'"), "true");
}

TEST_F(ScriptValues, TextsKeepEveryUnit) {
    const Text units{
        u'a', u'\0', u'\u0416', char16_t(0xD83D), char16_t(0xDE00), char16_t(0xDC00), u'\uFFFF'};
    EXPECT_EQ(seen(Variant(units), "x.length + ' ' + x.charCodeAt(3).toString(16)"), "7 d83d");
    EXPECT_EQ(value("x").text_view(), units);
    EXPECT_EQ(value("'\\u0416\\ud83d\\ude00\\0\\udc00'").text_view(),
              Text({u'\u0416', char16_t(0xD83D), char16_t(0xDE00), u'\0', char16_t(0xDC00)}));
    EXPECT_EQ(value("'\xF0\x9F\x98\x80\xD0\x96'").text_view(), u"\U0001F600\u0416");
}

TEST_F(ScriptValues, DatesAreLocalTimeOnBothSides) {
    const Date morning = date_from_parts({2024, 7, 2, 3, 4, 5});
    EXPECT_EQ(seen(morning,
                   "[x.getFullYear(), x.getMonth(), x.getDate(), x.getHours(), "
                   "x.getMinutes(), x.getSeconds(), x.getMilliseconds()].join()"),
              "2024,6,2,3,4,5,0");
    EXPECT_EQ(value("x"), Variant(morning));
    EXPECT_EQ(value("new Date(2024, 6, 2, 3, 4, 5)"), Variant(morning));
}

TEST_F(ScriptValues, DatesBeforeTheFirstDayCountTheirTimeForward) {
    for (const double days : {-1.25, -0.75, 0.0, 0.75, 1.5, -657434.0, 2958465.5}) {
        engine.set_global("x", Date{days});
        const Date back = value("x").to<Date>();
        EXPECT_EQ(parts_of(back), parts_of(Date{days})) << days;
    }
}

TEST_F(ScriptValues, DatesThatAutomationCannotHoldAreRefused) {
    EXPECT_EQ(error("give(new Date(NaN))").description, u"Invalid procedure call or argument");
    EXPECT_EQ(error("give(new Date(-99, 0, 1))").description, u"Overflow");
    EXPECT_EQ(error("give(new Date(10000, 0, 1))").description, u"Overflow");
}

TEST_F(ScriptValues, ArraysOfTheScriptBecomeArraysOfVariants) {
    EXPECT_EQ(value("[1, 'b', null, [true]]"),
              Variant(Values{1, u"b", Variant::null(), Values{true}}));
    EXPECT_EQ(value("[]"), Variant(Values()));
    EXPECT_EQ(value("[, 2]"), Variant(Values{Variant(), 2}));
}

TEST_F(ScriptValues, BytesOfTheScriptBecomeAnArrayOfBytes) {
    EXPECT_EQ(value("new Uint8Array([1, 0, 255])").try_bytes(), std::string("\1\0\xFF", 3));
}

TEST_F(ScriptValues, ArraysThatHoldThemselvesAreRefused) {
    EXPECT_EQ(error("var a = []; a[0] = a; give(a)").message,
              "Out of memory: arrays in arrays too deep");
    EXPECT_EQ(error("var a = []; a.length = 4000000000; give(a)").message,
              "Out of memory: more than a million elements");
}

TEST_F(ScriptValues, ArraysOfAutomationAreReadThroughVBArray) {
    engine.set_global("x", Values{u"a", 2, Variant::null()});
    EXPECT_EQ(text("new VBArray(x).toArray().join('|')"), "a|2|");
    EXPECT_EQ(text("x.toArray().length"), "3");
    EXPECT_EQ(text("new VBArray(x).dimensions()"), "1");
    EXPECT_EQ(text("new VBArray(x).lbound() + ' ' + new VBArray(x).ubound(1)"), "0 2");
    EXPECT_EQ(text("new VBArray(x).getItem(1)"), "2");
    EXPECT_EQ(error("new VBArray(x).getItem(3)").description, u"Subscript out of range");
    EXPECT_EQ(error("new VBArray(x).getItem()").description, u"Subscript out of range");
    EXPECT_EQ(error("new VBArray(x).ubound(2)").description, u"Subscript out of range");
    EXPECT_EQ(value("x"), Variant(Values{u"a", 2, Variant::null()}));
}

TEST_F(ScriptValues, AnArraysOwnBoundsAreKept) {
    Values months(1, 2);
    months[1] = u"January";
    months[2] = u"February";
    engine.set_global("x", months);
    EXPECT_EQ(text("[x.lbound(), x.ubound(), x.getItem(2)].join()"), "1,2,February");
}

TEST_F(ScriptValues, OnlyArraysAreVBArrays) {
    for (const char* other : {"new VBArray([1])", "new VBArray(shelf)", "new VBArray('a')",
                              "new VBArray()", "VBArray.prototype.toArray.call({})"}) {
        const ScriptError refused = error(other);
        EXPECT_EQ(refused.message, "VBArray expected") << other;
        EXPECT_EQ(static_cast<std::uint32_t>(refused.number), 0x800A1395) << other;
    }
}

TEST_F(ScriptValues, ObjectsOfTheScriptItselfAreNotGivenAway) {
    for (const char* own : {"give({})", "give(function () {})", "give(/a/)", "give([{}])",
                            "give(new Enumerator(shelf))"}) {
        const ScriptError refused = error(own);
        EXPECT_EQ(static_cast<std::uint32_t>(refused.number), 0x800A000D) << own;
        EXPECT_EQ(refused.message.substr(0, 13), "Type mismatch") << own;
    }
}

TEST_F(ScriptValues, AThrowingElementLeavesTheScriptAlive) {
    EXPECT_EQ(text("(function () { var a = [1, 2]; Object.defineProperty(a, 1, {get: function () "
                   "{ throw new Error('no'); }}); try { give(a); } catch (e) { return e.message; } "
                   "})()"),
              "no");
}

}  // namespace
}  // namespace orvo::script
