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
    EXPECT_EQ(text("(eval('shelf(\"e\") = 9'), shelf('e'))"), "9");
    EXPECT_EQ(text("(function () { try { eval('a b'); } catch (e) { return e.name; } })()"),
              "SyntaxError");
    EXPECT_EQ(
        text("(function () { try { eval('\"'); } catch (e) { return e.name + ': ' + e.message; "
             "} })()"),
        "SyntaxError: the text that begins here has no end");
}

TEST_F(ScriptLanguage, EvalByItsNameSeesTheVariablesAroundIt) {
    EXPECT_EQ(text("(function () { var own = 1; return eval('own + 1'); })()"), "2");
    EXPECT_EQ(text("(function () { eval('var made_here = 3'); return made_here; })()"), "3");
    EXPECT_EQ(text("typeof made_here"), "undefined");
    EXPECT_EQ(text("(function (a) { return eval('arguments.length + a'); })(1, 2)"), "3");
    EXPECT_EQ(text("(function () { return eval('this.x'); }).call({x: 4})"), "4");
    EXPECT_EQ(text("(function () { var own = 1; return eval(\"eval('own')\"); })()"), "1");
    EXPECT_EQ(text("(function () { 'use strict'; eval('var a = 1'); return typeof a; })()"),
              "undefined");
    EXPECT_EQ(text("(function () { 'use strict'; try { eval('with ({}) ;'); } catch (e) { "
                   "return e.name; } })()"),
              "SyntaxError");
    EXPECT_EQ(text("eval('try { throw 1 } catch (e) { 5 } finally { }')"), "5");
    EXPECT_EQ(text("eval('6; for (var k in {a: 1}) {}')"), "6");
    EXPECT_EQ(text("eval() === undefined"), "true");
    EXPECT_EQ(text("eval('\"\\ud800\"').length"), "1");
}

TEST_F(ScriptLanguage, EvalByAnyOtherNameRunsAmongTheGlobals) {
    for (const char* indirect :
         {"(0, eval)('typeof own')", "other('typeof own')", "eval.call(null, 'typeof own')",
          "['typeof own'].map(eval)[0]", "all.eval('typeof own')"})
        EXPECT_EQ(text(std::string("(function (all) { var own = 1, other = eval; return ") +
                       indirect + "; })(this)"),
                  "undefined")
            << indirect;
    EXPECT_EQ(text("(function () { function eval(text) { return text + '!'; } "
                   "return eval('no script at all'); })()"),
              "no script at all!");
    EXPECT_EQ(text("(function (eval) { return eval({a: 7}); })(function (o) { return o.a; })"),
              "7");
    // Whatever happened before, the name stands for what rewrites.
    run("try { eval('a b'); } catch (e) {} try { eval(nosuch); } catch (e) {} "
        "try { eval('throw 1'); } catch (e) {} var kept = eval;");
    engine.set_time_limit(std::chrono::milliseconds(50));
    EXPECT_EQ(error("kept('for (;;) ;')").trouble, Trouble::time_limit);
}

TEST_F(ScriptLanguage, StrictScriptsHaveTheGlobalsAsThisAtTheirTop) {
    EXPECT_EQ(error("'use strict'; give(this === (0, eval)('this'))").message,
              "nothing was raised");
    EXPECT_EQ(given.at(0), Variant(true));
}

// What a property is: its attributes, and the length of a function.
constexpr const char* shape =
    "function shape(object, name) { var p = Object.getOwnPropertyDescriptor(object, name); "
    "return (p.writable ? 'w' : '-') + (p.enumerable ? 'e' : '-') + (p.configurable ? 'c' : '-') + "
    "(typeof p.value === 'function' ? p.value.length + p.value.name : ''); }";

TEST_F(ScriptLanguage, WhatIsReplacedLooksAsBefore) {
    run(shape);
    EXPECT_EQ(text("shape(this, 'eval')"), "w-c1eval");
    EXPECT_EQ(text("shape(this, 'Function')"), "w-c1Function");
    EXPECT_EQ(text("shape(Function, 'prototype')"), "---0");
    EXPECT_EQ(text("shape(Function.prototype, 'constructor')"), "w-c1Function");
    EXPECT_EQ(text("shape(Array.prototype, 'sort')"), "w-c1sort");
    for (const std::string kind : {"Error", "EvalError", "RangeError", "ReferenceError",
                                   "SyntaxError", "TypeError", "URIError"}) {
        EXPECT_EQ(text("shape(this, '" + kind + "')"), "w-c1" + kind);
        EXPECT_EQ(text("shape(" + kind + ", 'prototype')"), "---");
        EXPECT_EQ(text("shape(" + kind + ".prototype, 'constructor')"), "w-c1" + kind);
        EXPECT_EQ(text(kind + "(1)"), kind + ": 1");
    }
    for (const std::string name : {"tag", "give", "VBArray", "Enumerator"})
        EXPECT_EQ(text("shape(this, '" + name + "').slice(0, 3)"), "w-c") << name;
    for (const std::string function : {"eval", "Array.prototype.sort"}) {
        EXPECT_EQ(text("'prototype' in " + function), "false") << function;
        EXPECT_EQ(text("Object.getPrototypeOf(" + function + ") === Function.prototype"), "true");
        EXPECT_EQ(error("new " + function + "()").message,
                  "TypeError: [object Function] not constructable");
    }
    EXPECT_EQ(text("String(eval)"), "function eval() { [native code] }");
    EXPECT_EQ(text("Object.getPrototypeOf(Error) === Function.prototype"), "true");
}

TEST_F(ScriptLanguage, ATextThatIsNoFunctionMakesNone) {
    for (const char* wrong : {"Function('a b', '')", "Function('}, function () {')",
                              "Function('/*', '*/) {')", "Function('a;', '')"})
        EXPECT_EQ(error(wrong).message.substr(0, 11), "SyntaxError") << wrong;
}

TEST_F(ScriptLanguage, FunctionsAreMadeFromText) {
    EXPECT_EQ(text("Function('a', 'b, c', '').length"), "3");
    EXPECT_EQ(text("(function () { 'use strict'; return Function('return this')() !== undefined; "
                   "})()"),
              "true");
    EXPECT_EQ(text("Function('return eval(\"this\")').call('x') == 'x'"), "true");
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

TEST_F(ScriptLanguage, NoListShowsTheEnginesOwnNames) {
    EXPECT_EQ(
        text("Object.getOwnPropertyNames(this).concat(Reflect.ownKeys(this), "
             "Object.getOwnPropertyNames(Number.prototype), Reflect.ownKeys(Number.prototype))"
             ".filter(function (name) { return /orvo/.test(name); })"),
        "");
    EXPECT_EQ(text("[Object.getOwnPropertyNames(this).indexOf('Math') >= 0, "
                   "Object.getOwnPropertyNames({b: 1, a: 2}), Object.getOwnPropertyNames.length, "
                   "Object.getOwnPropertyNames('ab'), Reflect.ownKeys([1])]"),
              "true,b,a,1,0,1,length,0,length");
    EXPECT_EQ(error("Object.getOwnPropertyNames(null)").message.substr(0, 9), "TypeError");
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
