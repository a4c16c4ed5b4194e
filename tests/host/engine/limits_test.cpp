// What ends a script from outside: time, memory, depth, and being stopped.

#include "platform/interfaces/late_call.h"
#include "platform/values/failure.h"
#include "tests/host/engine/script_test.h"

namespace orvo::script {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

class ScriptLimits : public ScriptTest {
protected:
    ScriptError error_within(std::chrono::milliseconds limit, std::string_view source) {
        engine.set_time_limit(limit);
        const auto start = steady_clock::now();
        const ScriptError ended = error(source);
        EXPECT_LT(steady_clock::now() - start, 20s) << source;
        return ended;
    }
};

TEST_F(ScriptLimits, EndlessLoopsAreEnded) {
    for (const char* endless : {
             "while (true) ;",
             "while (true) {}",
             "do {} while (true)",
             "for (;;) ;",
             "for (var i = 0; ; ++i) {}",
             "for (var i = 0; i >= 0;) {}",
             "(function () { while (true) {} })()",
             "(function () { 'use strict'; for (;;) {} })()",
             "var o = {get x() { for (;;) {} }}; o.x",
             "while (true) { try { while (true) {} } catch (e) {} }",
             "(function f() { try { f(); } catch (e) { f(); } finally { f(); } })()",
             "(function () { for (;;) { try { continue; } finally { continue; } } })()",
             "outer: for (;;) { for (;;) { continue outer; } }",
             "(function f(n) { if (n > 0) { f(n - 1); f(n - 1); } })(60)",
             "var o = {}, i; for (i = 0; i < 60; ++i) (function (i) { Object.defineProperty(o, 'p' "
             "+ i, {get: function () { return o['p' + (i + 1)] + o['p' + (i + 1)]; }}); })(i); "
             "o.p0",
             "eval('for (;;) {}')",
             "new Function('for (;;) {}')()",
             "(function () {}).constructor('while (true) {}')()",
             "[1, 2].sort(function () { for (;;) {} })",
             "'aaa'.replace(/a/g, function () { for (;;) {} })",
             "for (;;) shelf.Add(1, 2)",
             "var o = {}; for (var i = 0; i < 1e4; ++i) o[i] = i; (function g() { for (var k in o) "
             "g(); })()",
         }) {
        const ScriptError ended = error_within(100ms, endless);
        EXPECT_EQ(ended.trouble, Trouble::time_limit) << endless << ": " << ended.what();
        EXPECT_EQ(ended.message, "The script ran longer than it may (100 ms)") << endless;
    }
}

TEST_F(ScriptLimits, TheEndlessLoopsPlaceIsTold) {
    const ScriptError ended =
        error_within(50ms, "var a;\nfunction f() {\n  while (true) a = 1;\n}\nf()");
    EXPECT_EQ(ended.place.file, "test.js");
    EXPECT_EQ(ended.place.line, 3);
}

TEST_F(ScriptLimits, CatchingTheEndDoesNotPutItOff) {
    EXPECT_EQ(error_within(50ms, "try { for (;;) {} } catch (e) {}").trouble, Trouble::time_limit);
    EXPECT_EQ(error_within(50ms, "try { for (;;) {} } catch (e) { shelf.Touch(); }").trouble,
              Trouble::time_limit);
    engine.clear_time_limit();
    EXPECT_EQ(text("shelf.Calls"), "0");
}

TEST_F(ScriptLimits, AScriptThatEndsInTimeIsLeftAlone) {
    engine.set_time_limit(60s);
    EXPECT_EQ(text("(function () { for (var i = 0, n = 0; i < 100000; ++i) n += i; return n; })()"),
              "4999950000");
}

// What the language's own library does in one call, or in few calls that each take long.
constexpr const char* long_calls[] = {
    "new Array(4e9).join()",
    "new Array(2e9).indexOf(1)",
    "new Array(2e9).lastIndexOf(1)",
    "new Array(4e9).reverse()",
    "new Array(4e9).shift()",
    "new Array(4e9).map(String)",
    "new Array(4e9).reduce(String, 0)",
    "[].concat(new Array(4e9))",
    "String(new Array(4e9))",
    "new Array(2e9).sort()",
    "new Array(2e9).sort(function () {})",
    "Array.prototype.forEach.call({length: 4e9}, String)",
    "(function () { var o = {}; for (var i = 0; i < 2000; ++i) o[i] = i; "
    "for (;;) JSON.stringify(o); })()",
    "(function () { var s = new Array(1e6).join('a'); for (;;) s.replace(/a/g, 'b'); })()",
    "(function () { var s = new Array(1e5).join('a'); for (;;) s.split(''); })()",
    "(function () { var s = new Array(1e6).join('a'); for (;;) s.indexOf('b'); })()",
    "var s = new Array(1e6).join('a'); for (;;) s.indexOf('b')",
    "var s = new Array(1e6).join('a'); for (;;) { for (var k in [1]) s.indexOf('b'); }",
    "(function () { var s = ''; for (;;) { s += 'abc'; if (s.length > 1e6) s = ''; } })()",
    "(function () { for (;;) eval('1'); })()",
    "/^(a+)+$/.test(new Array(40).join('a') + 'b')",
    "'x'.replace(/x/, function () { return /^(a|aa)+$/.test(new Array(80).join('a') + 'b'); })",
};

TEST_F(ScriptLimits, LongCallsOfTheLanguagesOwnAreBrokenOff) {
    for (const char* slow : long_calls)
        EXPECT_EQ(error_within(100ms, slow).trouble, Trouble::time_limit) << slow;
}

TEST_F(ScriptLimits, NobodyGoesOnFromACallThatWasBrokenOff) {
    for (const std::string slow : long_calls) {
        EXPECT_EQ(error_within(100ms, "try { " + slow +
                                          " } catch (e) { went_on = 'catch'; } finally "
                                          "{ went_on = 'finally'; } went_on = 'behind';")
                      .trouble,
                  Trouble::time_limit)
            << slow;
        engine.clear_time_limit();
        EXPECT_EQ(text("typeof went_on"), "undefined") << slow;
    }
}

TEST_F(ScriptLimits, ThePlaceOfACallThatWasBrokenOffIsTold) {
    const ScriptError ended = error_within(50ms, "var a;\n\na = new Array(2e9).indexOf(1);\n");
    EXPECT_EQ(ended.place.file, "test.js");
    EXPECT_EQ(ended.place.line, 3);
}

TEST_F(ScriptLimits, LongArraysAreFineInTime) {
    engine.set_time_limit(60s);
    EXPECT_EQ(text("new Array(1000002).join('x').length"), "1000001");
}

TEST_F(ScriptLimits, NoObjectStandsInFrontOfTheClock) {
    const std::string shadow =
        "var o = {}; o['__orvo_' + 'tick'] = Math.random; o['__orvo_' + 'n'] = 1e300;";
    for (const char* endless : {
             "with (o) for (;;) {}",
             "with (o) { while (true) ; }",
             "(function () { with (o) { do {} while (true) } })()",
             "(function () { for (;;) with (o) { for (var i = 0; i < 9; --i) {} } })()",
             "with (o) eval('for (;;) {}')",
             "with (o) (function () { var a; while (true) a = 1; })()",
             "with (o) for (;;) { try { for (;;) {} } catch (e) { for (;;) {} } finally {} }",
         })
        EXPECT_EQ(error_within(100ms, shadow + endless).trouble, Trouble::time_limit) << endless;
    for (const char* change : {"Number.prototype", "this"})
        EXPECT_EQ(error_within(100ms, "try { Object.defineProperty(" + std::string(change) +
                                          ", '__orvo_' + 'tick', {value: Math.random}); } catch (e)"
                                          " {} with (o = {}) for (;;) {}")
                      .trouble,
                  Trouble::time_limit);
}

TEST_F(ScriptLimits, ANewLimitBeginsAnew) {
    EXPECT_EQ(error_within(30ms, "for (;;) {}").trouble, Trouble::time_limit);
    engine.set_time_limit(60s);
    EXPECT_EQ(text("1 + 1"), "2");
}

TEST_F(ScriptLimits, MemoryIsLimited) {
    Engine little({.memory_limit = 2 << 20});
    for (const char* greedy : {
             "var a = []; for (;;) a.push({});",
             "var s = 'x'; for (;;) s += s;",
             "var s = 'x'; for (;;) s = [s, s].join('');",
             "new Uint8Array(100000000)",
             "function f() { var o = [f]; o.push(f()); return o; } f()",
             "var e = new Error('a'); Object.defineProperty(e, 'name', {get: function () {"
             " var s = 'x'; for (;;) s += s; }}); throw e;",
         }) {
        try {
            little.run(Program::compile(greedy, "test.js"));
            ADD_FAILURE() << greedy;
        } catch (const ScriptError& error) {
            EXPECT_EQ(error.trouble, Trouble::memory_limit) << greedy << ": " << error.what();
            EXPECT_EQ(error.message, "The script needed more memory than it may (2 MiB)");
        }
        EXPECT_EQ(little.run(Program::compile("a = s = null;", "test.js")), Ending::finished);
    }
}

TEST_F(ScriptLimits, LackOfMemoryInsideACallLosesNothing) {
    int alive = 0;
    {
        Engine little({.memory_limit = 1 << 20});
        little.set_global("first", make<Shelf>(&alive).object());
        try {
            little.run(
                Program::compile("var all = []; for (;;) { all.push(first.Other); first.Echo(['a', "
                                 "[all.length]]); }",
                                 "test.js"));
            ADD_FAILURE();
        } catch (const ScriptError& error) {
            EXPECT_EQ(error.trouble, Trouble::memory_limit) << error.what();
        }
        EXPECT_GT(alive, 100);
    }
    EXPECT_EQ(alive, 0);
}

TEST_F(ScriptLimits, WithHardlyAnyMemoryEveryStepFailsCleanly) {
    int alive = 0;
    const Program program = Program::compile(
        "var all = []; try { all.push(first.Other, first.Label, first.Echo(['a', new Date()])); "
        "first('x') = 1; first.Fail(1); } catch (e) { all.push(e.message); } "
        "var e = new Enumerator(first); eval('1'); all.join();",
        "test.js");
    int finished = 0;
    for (std::size_t limit = 0; limit < 60'000; limit += 150) {
        Engine little({.memory_limit = limit});
        try {
            little.set_global("first", make<Shelf>(&alive).object());
            little.run(program);
            ++finished;
        } catch (const ScriptError& error) {
            EXPECT_EQ(error.trouble, Trouble::memory_limit) << limit << ": " << error.what();
        }
    }
    EXPECT_GT(finished, 0);
    EXPECT_EQ(alive, 0);
}

TEST_F(ScriptLimits, DepthIsLimited) {
    EXPECT_EQ(error("function f() { return f() + 1; } f()").message, "RangeError: callstack limit");
    EXPECT_EQ(error("var a = {toString: function () { return '' + a; }}; '' + a").trouble,
              Trouble::uncaught);
    Shelf::run = [this] { engine.run(Program::compile("shelf.Run()", "inner.js")); };
    EXPECT_EQ(error("shelf.Run()").trouble, Trouble::uncaught);
}

TEST_F(ScriptLimits, AMemberEndsTheScriptWithStop) {
    Shelf::run = [this] { engine.stop(); };
    EXPECT_EQ(run("shelf.Touch(); try { shelf.Run(); shelf.Touch(); } catch (e) { shelf.Touch(); } "
                  "finally { shelf.Touch(); } shelf.Touch(); for (;;) {}"),
              Ending::stopped);
    EXPECT_EQ(late::get(shelf, u"Calls"), Variant(1));
    EXPECT_EQ(run("shelf.Touch()"), Ending::stopped);
    EXPECT_EQ(late::get(shelf, u"Calls"), Variant(1));
}

TEST_F(ScriptLimits, AProgramRunsInsideAMemberOfAnother) {
    Shelf::run = [this] {
        EXPECT_EQ(engine.run(Program::compile("var seen = outer + 1;", "inner.js")),
                  Ending::finished);
    };
    EXPECT_EQ(run("var outer = 41; shelf.Run(); give(seen)"), Ending::finished);
    EXPECT_EQ(given.at(0), Variant(42));
}

TEST_F(ScriptLimits, StoppingInsideAnInnerProgramStopsAll) {
    engine.set_function("end", [this](std::span<const Variant>) {
        engine.stop();
        return Variant();
    });
    Shelf::run = [this] {
        EXPECT_EQ(engine.run(Program::compile("end();", "inner.js")), Ending::stopped);
    };
    EXPECT_EQ(run("shelf.Run(); shelf.Touch();"), Ending::stopped);
    EXPECT_EQ(late::get(shelf, u"Calls"), Variant(0));
}

TEST_F(ScriptLimits, AnInnerProgramsFailureIsOneOfTheMember) {
    Shelf::run = [this] { engine.run(Program::compile("\nnosuch", "inner.js")); };
    EXPECT_EQ(text("(function () { try { shelf.Run(); } catch (e) { return e.description; } })()"),
              "inner.js, line 2: ReferenceError: identifier 'nosuch' undefined");
}

}  // namespace
}  // namespace orvo::script
