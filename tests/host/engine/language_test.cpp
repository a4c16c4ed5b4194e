// The language's own library, as far as the engine adapts it.

#include "tests/host/engine/script_test.h"

namespace orvo::script {
namespace {

using ScriptLanguage = ScriptTest;

TEST_F(ScriptLanguage, IsECMAScript5) {
    EXPECT_EQ(text("[3, 1, 2].sort().map(function (n) { return n * 2; }).join()"), "2,4,6");
    EXPECT_EQ(text("JSON.stringify({a: [1, null, 'x']})"), "{\"a\":[1,null,\"x\"]}");
    EXPECT_EQ(text("(function () { 'use strict'; return this === undefined; })()"), "true");
    EXPECT_EQ(text("(function () { \"use strict\"\nfor (;;) return this === undefined; })()"),
              "true");
}

TEST_F(ScriptLanguage, EvalRunsAmongTheGlobals) {
    EXPECT_EQ(text("eval('(' + '{\"a\": [1, 2]}' + ')').a[1]"), "2");
    EXPECT_EQ(text("(eval('var made = 5'), made)"), "5");
    EXPECT_EQ(text("eval(7)"), "7");
    EXPECT_EQ(text("(function () { var own = 1; return eval('typeof own'); })()"), "undefined");
    EXPECT_EQ(text("(eval('shelf(\"e\") = 9'), shelf('e'))"), "9");
    EXPECT_EQ(text("(function () { try { eval('a b'); } catch (e) { return e.name; } })()"),
              "SyntaxError");
    EXPECT_EQ(
        text("(function () { try { eval('\"'); } catch (e) { return e.name + ': ' + e.message; "
             "} })()"),
        "SyntaxError: the text that begins here has no end");
}

TEST_F(ScriptLanguage, FunctionsAreMadeFromText) {
    EXPECT_EQ(text("new Function('a', 'b', 'return a + b // sum')(1, 2)"), "3");
    EXPECT_EQ(text("Function()() === undefined"), "true");
    EXPECT_EQ(text("(function () {}) instanceof Function"), "true");
}

TEST_F(ScriptLanguage, SortingIsStableAndKeepsHolesAtTheEnd) {
    EXPECT_EQ(text("[3, 20, 1, 10].sort().join()"), "1,10,20,3");
    EXPECT_EQ(text("[3, 20, 1, 10].sort(function (a, b) { return a - b; }).join()"), "1,3,10,20");
    EXPECT_EQ(text("['b1', 'a1', 'b2', 'a2', 'b3'].sort(function (a, b) { "
                   "return a.charCodeAt(0) - b.charCodeAt(0); }).join()"),
              "a1,a2,b1,b2,b3");
    EXPECT_EQ(text("(function () { var a = [2, , undefined, 1]; a.sort(); "
                   "return a.join() + ' ' + (2 in a) + (3 in a); })()"),
              "1,2,, truefalse");
    EXPECT_EQ(text("[].sort().length"), "0");
    EXPECT_EQ(error("[1].sort(1)").message, "TypeError: a function is needed to compare by");
}

TEST_F(ScriptLanguage, ArraysKeepTheirMethods) {
    EXPECT_EQ(text("[1, 2, 3].slice(1).concat([4], 5).reverse().indexOf(4)"), "1");
    EXPECT_EQ(text("Array.prototype.map.call('ab', function (c) { return c + c; }).join()"),
              "aa,bb");
    EXPECT_EQ(error("Array.prototype.map.call(null)").message.substr(0, 9), "TypeError");
    EXPECT_EQ(text("[shelf].concat(tag).length"), "2");
}

TEST_F(ScriptLanguage, NothingLeadsToTheEnginesOwnSide) {
    EXPECT_EQ(text("typeof Duktape + typeof CBOR + typeof Buffer + typeof String.fromBufferRaw"),
              "undefinedundefinedundefinedundefined");
    EXPECT_EQ(text("(function () { var n = '__orvo' + '_tick', was = this[n]; this[n] = null; "
                   "return delete this[n] ? 'gone' : typeof was; })()"),
              "function");
    EXPECT_EQ(text("Object.getOwnPropertyNames(shelf).length"), "0");
}

TEST_F(ScriptLanguage, DateMayBeReplacedWithoutHarm) {
    EXPECT_EQ(text("(Date.prototype.getTime = null, Date = null, Object.prototype.toString = null, "
                   "1)"),
              "1");
    engine.set_global("x", date_from_parts({2024, 1, 2}));
    EXPECT_EQ(value("x"), Variant(date_from_parts({2024, 1, 2})));
}

}  // namespace
}  // namespace orvo::script
