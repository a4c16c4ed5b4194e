#include "host/engine/rewrite.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orvo::script {
namespace {

struct Case {
    const char* source;
    const char* expected;
};
// A case is called by its source, on one line.
void PrintTo(const Case& tested, std::ostream* out) {
    *out << testing::PrintToString(tested.source);
}

class Rewritten : public testing::TestWithParam<Case> {};

TEST_P(Rewritten, IsAsExpectedLineByLine) {
    const auto& [source, expected] = GetParam();
    const std::string made = rewritten(source);
    EXPECT_EQ(made, expected);
    EXPECT_EQ(std::ranges::count(made, '\n'), std::ranges::count(std::string_view(source), '\n'));
}

#define LOOP "--__orvo_n<0&&(__orvo_n=__orvo_tick())"

INSTANTIATE_TEST_SUITE_P(
    Loops, Rewritten,
    testing::Values(Case{"while (a) b", "while (__orvo_tick(),a) b"},
                    Case{"do { a } while(b)", "do { a } while(__orvo_tick(),b)"},
                    Case{"for (;;) a", "for (;__orvo_tick(),true;) a"},
                    Case{"for (var i = 0; i < 3; ++i) a",
                         "for (var i = 0;__orvo_tick(), i < 3; ++i) a"},
                    Case{"o.while(a)", "o.while(a)"}, Case{"x = {while: 1}", "x = {while: 1}"},
                    Case{"'while (a)' // while (a)\n/* while\n(a) */",
                         "'while (a)' // while (a)\n/* while\n(a) */"},
                    Case{"/while (a)/", "/while (a)/"},
                    Case{"function f() { while (a) b }",
                         "function f() {var __orvo_n=__orvo_tick(); while (" LOOP ",a) b }"},
                    Case{"function f() { for (;;) { function g() {} } }",
                         "function f() {var __orvo_n=__orvo_tick(); for (;" LOOP
                         ",true;) { function g() {__orvo_tick();} } }"}));

INSTANTIATE_TEST_SUITE_P(
    LoopsOverNames, Rewritten,
    testing::Values(
        Case{"for (a in b) c", "for (a in __orvo_tick(), b) __orvo_tick(), c"},
        Case{"for (var a in b) {c}", "for (var a in __orvo_tick(), b) {if(__orvo_tick());c}"},
        Case{"for (a in b in c) d", "for (a in __orvo_tick(), b in c) __orvo_tick(), d"},
        Case{"for (a[x in y] in b) (c)", "for (a[x in y] in __orvo_tick(), b) __orvo_tick(), (c)"},
        Case{"for (a in b) c(1) = 2",
             "for (a in __orvo_tick(), b) __orvo_tick(), __orvo_slot(c,null,[1]).value = 2"},
        Case{"for (a in b) l: c", "for (a in __orvo_tick(), b) l: __orvo_tick(), c"},
        Case{"for (a in b) l: {c}", "for (a in __orvo_tick(), b) l: {if(__orvo_tick());c}"},
        Case{"if (x) for (a in b) if (c) d; else e",
             "if (x) for (a in __orvo_tick(), b) if (__orvo_tick(),c) d; else e"},
        Case{"for (a in b) switch (c) {}",
             "for (a in __orvo_tick(), b) switch (__orvo_tick(),c) {}"},
        Case{"for (a in b) try {c} catch (d) {e}",
             "for (a in __orvo_tick(), b) try {if(__orvo_tick());c} catch (d) "
             "{if(__orvo_tick());e}"},
        Case{"for (a in b) delete b[a]", "for (a in __orvo_tick(), b) __orvo_tick(), delete b[a]"},
        Case{"for (a in b) for (c in d) ;",
             "for (a in __orvo_tick(), b) for (c in __orvo_tick(), d) ;"},
        Case{"for (a in b) break", "for (a in __orvo_tick(), b) break"},
        Case{"for (a in b) var c = d", "for (a in __orvo_tick(), b) var c = d"},
        Case{"function f() { for (a in b) {} }",
             "function f() {var __orvo_n=__orvo_tick(); for (a in " LOOP ", b) {if(" LOOP ");} }"},
        Case{"x = 'a' in b", "x = 'a' in b"}));

INSTANTIATE_TEST_SUITE_P(
    WhereAFailureIsCaught, Rewritten,
    testing::Values(Case{"try {a} catch (b) {c} finally {d}",
                         "try {a} catch (b) {if(__orvo_tick());c} finally {if(__orvo_tick());d}"},
                    Case{"o.catch(a)\n{b}", "o.catch(a)\n{b}"},
                    Case{"x = {catch: {}, finally: {}}", "x = {catch: {}, finally: {}}"}));

INSTANTIATE_TEST_SUITE_P(
    Evaluations, Rewritten,
    testing::Values(
        Case{"x = eval(a).b", "x = (__orvo_eval(a),eval(__orvo_text(eval))).b"},
        Case{"a\neval(b)", "a\n;(__orvo_eval(b),eval(__orvo_text(eval)))"},
        Case{"return\neval(b)", "return\n(__orvo_eval(b),eval(__orvo_text(eval)))"},
        Case{"eval(eval(a))",
             "(__orvo_eval((__orvo_eval(a),eval(__orvo_text(eval)))),eval(__orvo_text(eval)))"},
        Case{"eval(f(a, b))", "(__orvo_eval(f(a, b)),eval(__orvo_text(eval)))"},
        Case{"eval(a)(1) = 2",
             "__orvo_slot((__orvo_eval(a),eval(__orvo_text(eval))),null,[1]).value = 2"},
        Case{"eval()", "eval()"}, Case{"eval(a, b)", "eval(a, b)"}, Case{"o.eval(a)", "o.eval(a)"},
        Case{"new eval(a)", "new eval(a)"}, Case{"(0, eval)(a)", "(0, eval)(a)"},
        Case{"x = eval", "x = eval"}, Case{"x = {eval: 1}", "x = {eval: 1}"},
        Case{"x = {get eval() { a }}", "x = {get eval() {__orvo_tick(); a }}"},
        Case{"x = {set eval(v) { a }}", "x = {set eval(v) {__orvo_tick(); a }}"},
        Case{"function eval(a) {}", "function eval(a) {__orvo_tick();}"}));

INSTANTIATE_TEST_SUITE_P(
    WordsThatAreNames, Rewritten,
    testing::Values(
        Case{"x = {get while() { a }}", "x = {get while() {__orvo_tick(); a }}"},
        Case{"x = {set if(v) {}, in: 1}", "x = {set if(v) {__orvo_tick();}, in: 1}"},
        Case{"x = {get: 1, set: 2, get get() {}}",
             "x = {get: 1, set: 2, get get() {__orvo_tick();}}"},
        Case{"x = {get 'a'() {}, get 1() {}}",
             "x = {get 'a'() {__orvo_tick();}, get 1() {__orvo_tick();}}"},
        Case{"x = {return: /'/, typeof: 1} / 2 / 3", "x = {return: /'/, typeof: 1} / 2 / 3"},
        Case{"for (x.in in y) z", "for (x.in in __orvo_tick(), y) __orvo_tick(), z"},
        Case{"function f() { 'a'\nin b }", "function f() {__orvo_tick(); 'a'\nin b }"}));

INSTANTIATE_TEST_SUITE_P(
    Functions, Rewritten,
    testing::Values(
        Case{"function f(a) {}", "function f(a) {__orvo_tick();}"},
        Case{"x = function () { return 1 }", "x = function () {__orvo_tick(); return 1 }"},
        Case{"function f() { 'use strict'; a }", "function f() { 'use strict';__orvo_tick(); a }"},
        Case{"function f() { 'a'\n'b'\nc }", "function f() { 'a'\n'b';__orvo_tick();\nc }"},
        Case{"function f() { 'a' + b }", "function f() {__orvo_tick(); 'a' + b }"},
        Case{"function f() { 'a'\n.length }", "function f() {__orvo_tick(); 'a'\n.length }"},
        Case{"function f() { 'a' }", "function f() { 'a';__orvo_tick(); }"},
        Case{"x = {get a() { b }, set a(v) {}}",
             "x = {get a() {__orvo_tick(); b }, set a(v) {__orvo_tick();}}"},
        Case{"if (a) { b } else { c }", "if (a) { b } else { c }"},
        Case{"switch (a) { case 1: { b } }", "switch (a) { case 1: { b } }"},
        Case{"a(b)\n{ c } /'/", "a(b)\n{ c } /'/"}, Case{"with (a) { b }", "with (a) { b }"}));

INSTANTIATE_TEST_SUITE_P(
    AssignmentsToCalls, Rewritten,
    testing::Values(Case{"o.Item('k') = v", "__orvo_slot(o,\"Item\",['k']).value = v"},
                    Case{"Session('x') = 1", "__orvo_slot(Session,null,['x']).value = 1"},
                    Case{"a.b.c(1, 2).d(3) = 4", "__orvo_slot(a.b.c(1, 2),\"d\",[3]).value = 4"},
                    Case{"a(1)(2) = 3", "__orvo_slot(a(1),null,[2]).value = 3"},
                    Case{"a[i].b(1) = 2", "__orvo_slot(a[i],\"b\",[1]).value = 2"},
                    Case{"a[x, y](1) = 2", "__orvo_slot(a,(x, y),[1]).value = 2"},
                    Case{"this.a(1) = 2", "__orvo_slot(this,\"a\",[1]).value = 2"},
                    Case{"(a || b)(1) = 2", "__orvo_slot((a || b),null,[1]).value = 2"},
                    Case{"new A(1).b(2) = 3", "__orvo_slot(new A(1),\"b\",[2]).value = 3"},
                    Case{"a() = 1", "__orvo_slot(a,null,[]).value = 1"},
                    Case{"o.delete(1) = 2", "__orvo_slot(o,\"delete\",[1]).value = 2"},
                    Case{"a(1) = b(2) = 3",
                         "__orvo_slot(a,null,[1]).value = __orvo_slot(b,null,[2]).value = 3"},
                    Case{"a(b(1) = 2) = 3",
                         "__orvo_slot(a,null,[__orvo_slot(b,null,[1]).value = 2]).value = 3"},
                    Case{"(a(1) = 2)(3) = 4",
                         "__orvo_slot((__orvo_slot(a,null,[1]).value = 2),null,[3]).value = 4"},
                    Case{"a(1) += 2", "__orvo_slot(a,null,[1]).value += 2"},
                    Case{"a(1) >>>= 2", "__orvo_slot(a,null,[1]).value >>>= 2"},
                    Case{"a(1)++", "__orvo_slot(a,null,[1]).value++"},
                    Case{"x = --a(1)", "x = --__orvo_slot(a,null,[1]).value"},
                    Case{"a(1)\n++b", "a(1)\n++b"}, Case{"++a(1).b", "++a(1).b"},
                    Case{"a // one\n .b // two\n (1) // three\n = 2",
                         "__orvo_slot(a // one\n ,\"b\" // two\n ,[1]).value // three\n = 2"},
                    Case{"for (a(1) = 0; b; ) c",
                         "for (__orvo_slot(a,null,[1]).value = 0;__orvo_tick(), b; ) c"}));

INSTANTIATE_TEST_SUITE_P(
    WhatIsNone, Rewritten,
    testing::Values(Case{"a(1) == 2", "a(1) == 2"}, Case{"a(1) === 2", "a(1) === 2"},
                    Case{"a(1).b = 2", "a(1).b = 2"}, Case{"a(1)[b] = 2", "a(1)[b] = 2"},
                    Case{"(a) = 1", "(a) = 1"}, Case{"if (a) (b) = 1", "if (a) (b) = 1"},
                    Case{"while (a) (b) = 1", "while (__orvo_tick(),a) (b) = 1"},
                    Case{"return (a) = 1", "return (a) = 1"}, Case{"'a(1) = 2'", "'a(1) = 2'"},
                    Case{"x = /a(1) = 2/", "x = /a(1) = 2/"},
                    Case{"<!-- a(1) = 2", "<!-- a(1) = 2"},
                    Case{"a\n--> b(1) = 2", "a\n--> b(1) = 2"}));

INSTANTIATE_TEST_SUITE_P(
    PatternsAndDivisions, Rewritten,
    testing::Values(Case{"a / b / c(1)", "a / b / c(1)"},
                    Case{"x = a / (b) / c", "x = a / (b) / c"},
                    Case{"if (a) /'/.test(b)", "if (a) /'/.test(b)"},
                    Case{"x = b ? {} / 1 : 2 / 3", "x = b ? {} / 1 : 2 / 3"},
                    Case{"{ a } /'/", "{ a } /'/"},
                    Case{"function f() {} /'/", "function f() {__orvo_tick();} /'/"},
                    Case{"x = function () {} / 2 / 3", "x = function () {__orvo_tick();} / 2 / 3"},
                    Case{"x = a++ / 2 / 3", "x = a++ / 2 / 3"}, Case{"return /'/", "return /'/"},
                    Case{"x = /[/']\\/'/g", "x = /[/']\\/'/g"},
                    Case{"x = /\\\\/ / '/'.length", "x = /\\\\/ / '/'.length"},
                    Case{"a = b\n/ c / d", "a = b\n/ c / d"},
                    Case{"x = [] / 2 / 3", "x = [] / 2 / 3"}, Case{"a: /'/", "a: /'/"},
                    Case{"typeof /'/", "typeof /'/"}, Case{"o.typeof / 2 / 3", "o.typeof / 2 / 3"},
                    Case{"1.5e+3/2/3", "1.5e+3/2/3"}, Case{"0x1F/2/3", "0x1F/2/3"}));

TEST(RewrittenRefuses, WhatCannotBeAssignedTo) {
    for (const char* source :
         {"new A(1) = 2", "[1](2) = 3", "x = {}(1) = 2", "(x, function () {}(1) = 2)", "'a'(1) = 2",
          "1(2) = 3", ".a(1) = 2"}) {
        try {
            const std::string made = rewritten(std::string("\n") + source);
            ADD_FAILURE() << made;
        } catch (const SyntaxProblem& problem) {
            EXPECT_EQ(problem.line, 2) << source;
            EXPECT_STREQ(problem.what(),
                         "an assignment to this call cannot be carried out; keep the object in a "
                         "variable and write object.Member(index) = value");
        }
    }
}

TEST(RewrittenRefuses, NamesOfItsOwn) {
    for (const char* source :
         {"__orvo_n", "a.__orvo_tick", "\\u005f_orvo_n", "_\\u005Forvo_n", "__\\u006frvo_n"})
        EXPECT_THROW(rewritten(source), SyntaxProblem) << source;
    EXPECT_EQ(rewritten("_orvo_n"), "_orvo_n");
}

TEST(Rewritten, LeavesOutTheByteOrderMark) {
    EXPECT_EQ(rewritten("\xEF\xBB\xBF"
                        "a"),
              "a");
}

}  // namespace
}  // namespace orvo::script
