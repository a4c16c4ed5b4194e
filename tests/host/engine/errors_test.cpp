// Failures: what scripts catch, and what their caller learns.

#include "platform/values/failure.h"
#include "tests/host/engine/script_test.h"

namespace orvo::script {
namespace {

using ScriptErrors = ScriptTest;

TEST_F(ScriptErrors, OfAutomationAreCaughtWithAllTheirParts) {
    run("try { shelf.Fail(-2147024816); } catch (e) { "
        "give(e.number, e.description, e.message, e.source, e instanceof Error, e.name); }");
    ASSERT_EQ(given.size(), 6u);
    EXPECT_EQ(given[0], Variant(error_number(0x80070050)));
    EXPECT_EQ(given[1], Variant(u"It failed: \u0416"));
    EXPECT_EQ(given[2], Variant(u"It failed: \u0416"));
    EXPECT_EQ(given[3], Variant(u"Shelf.Fail"));
    EXPECT_EQ(given[4], Variant(true));
    EXPECT_EQ(given[5], Variant(u"Error"));
}

TEST_F(ScriptErrors, RunTimeNumbersAreResultCodesInAScript) {
    EXPECT_EQ(text("(function () { try { shelf.Fail(91); } catch (e) { "
                   "return (e.number + 0x100000000).toString(16); } })()"),
              "800a005b");
}

TEST_F(ScriptErrors, OfTheLanguageHaveADescription) {
    EXPECT_EQ(text("(function () { try { null.x; } catch (e) { "
                   "return e.name + '|' + e.number + '|' + (e.description === e.message); } })()"),
              "TypeError|-2146823281|true");
    EXPECT_EQ(text("(function () { var e = new Error('a'); e.description = 'b'; e.number = 5; "
                   "return e.description + e.number + e.message; })()"),
              "b5a");
}

TEST_F(ScriptErrors, OfTheLanguageHaveTheNumberThatItsEnginesAlwaysHad) {
    const std::pair<const char*, const char*> cases[] = {
        {"null.x", "5007"},
        {"var u; u.x", "5007"},
        {"var u; u.x = 1", "5007"},
        {"nosuch", "5009"},
        {"var u; u()", "5002"},
        {"({}).f()", "438"},
        {"new Array(-1)", "5029"},
        {"(function f() { f(); })()", "28"},
        {"Date.prototype.getTime.call(1)", "5006"},
        {"RegExp.prototype.exec.call(1)", "5016"},
        {"Number.prototype.toFixed.call('x')", "5001"},
        {"new RegExp('[')", "5019"},
        {"new RegExp('*')", "5018"},
        {"new RegExp('[b-a]')", "5021"},
        {"new RegExp('(')", "5017"},
        {"eval('a b')", "1002"},
        {"throw new TypeError('of my own')", "0"},
        {"var e = new TypeError('x'); e.number = 7; throw e", "7"},
    };
    for (const auto& [raises, number] : cases)
        EXPECT_EQ(text(std::string("(function () { try { ") + raises +
                       "; } catch (e) { return e.number & 0xFFFF; } })()"),
                  number)
            << raises;
    EXPECT_EQ(text("(function () { try { nosuch; } catch (e) { return e.number; } })()"),
              "-2146823279");
}

TEST_F(ScriptErrors, ShowNothingToAWalkThroughThem) {
    EXPECT_EQ(
        text("(function () { var seen = ''; try { shelf.Fail(5); } catch (e) { for (var k in e) "
             "seen += k; } for (k in new Error(5, 'x')) seen += k; return seen; })()"),
        "");
}

TEST_F(ScriptErrors, AreMadeOfANumberAndAText) {
    const auto parts = [&](const std::string& made) {
        return text("(function () { var e = " + made +
                    "; return [e.name, e.number, e.description, e.message].join('|'); })()");
    };
    EXPECT_EQ(parts("new Error(5, 'x')"), "Error|5|x|x");
    EXPECT_EQ(parts("Error(5, 'x')"), "Error|5|x|x");
    EXPECT_EQ(parts("new TypeError(-2146828283, 'x')"), "TypeError|-2146828283|x|x");
    EXPECT_EQ(parts("new Error(0x800A0005, 'x')"), "Error|-2146828283|x|x");
    EXPECT_EQ(parts("new Error(5)"), "Error|5|5|5");
    EXPECT_EQ(parts("new Error('x', 5)"), "Error|0|x|x");
    EXPECT_EQ(parts("new Error('5')"), "Error|0|5|5");
    EXPECT_EQ(parts("new Error()"), "Error|0||");
}

TEST_F(ScriptErrors, OfEveryKindAreMadeWithANumber) {
    for (const std::string kind : {"Error", "EvalError", "RangeError", "ReferenceError",
                                   "SyntaxError", "TypeError", "URIError"}) {
        EXPECT_EQ(text("(function () { var e = new " + kind + "(7, 'x'); return [e instanceof " +
                       kind + ", e instanceof Error, e.constructor === " + kind + ", " + kind +
                       ".name, e, e.number, Object.prototype.toString.call(e)].join('|'); })()"),
                  "true|true|true|" + kind + "|" + kind + ": x|7|[object Error]");
    }
    EXPECT_EQ(text("(function () { try { null.x; } catch (e) { "
                   "return e instanceof TypeError && e.constructor === TypeError; } })()"),
              "true");
}

TEST_F(ScriptErrors, OfAScriptsOwnTellTheirNumberAndPlaceWhereNobodyCatchesThem) {
    const ScriptError failed = error("\nfunction f() {\n  throw new Error(5, 'x');\n}\nf();");
    EXPECT_EQ(failed.trouble, Trouble::uncaught);
    EXPECT_STREQ(failed.what(), "test.js, line 3: x");
    EXPECT_EQ(failed.number, 5);
    EXPECT_EQ(failed.description, u"x");
    EXPECT_EQ(failed.source, u"");
    EXPECT_STREQ(error("throw new Error(5)").what(), "test.js, line 1: 5");
    EXPECT_EQ(error("throw new Error(5)").number, 5);
    EXPECT_STREQ(error("throw new Error('x')").what(), "test.js, line 1: Error: x");
    EXPECT_EQ(error("var e = new Error('x'); e.number = 0x80072030; throw e").number,
              error_number(0x80072030));
}

TEST_F(ScriptErrors, ThatNobodyCatchesTellPlaceAndParts) {
    const ScriptError failed = error("var a = 1;\nfunction f() {\n  shelf.Fail(1234);\n}\nf();");
    EXPECT_EQ(failed.trouble, Trouble::uncaught);
    EXPECT_EQ(failed.place.file, "test.js");
    EXPECT_EQ(failed.place.line, 3);
    EXPECT_EQ(failed.message, "It failed: \xD0\x96");
    EXPECT_EQ(failed.number, error_number(0x800A04D2));
    EXPECT_EQ(failed.source, u"Shelf.Fail");
    EXPECT_EQ(failed.description, u"It failed: \u0416");
    EXPECT_STREQ(failed.what(), "test.js, line 3: It failed: \xD0\x96");
}

TEST_F(ScriptErrors, OfTheLanguageTellTheirKind) {
    const ScriptError failed = error("\n\nnosuch()");
    EXPECT_STREQ(failed.what(), "test.js, line 3: ReferenceError: identifier 'nosuch' undefined");
    EXPECT_EQ(failed.number, 0);
}

TEST_F(ScriptErrors, MayBeAnyValue) {
    EXPECT_STREQ(error("\nfunction f() {\n throw 'sorry'; }\nf()").what(),
                 "test.js, line 3: sorry");
    EXPECT_STREQ(error("throw 5").what(), "test.js, line 1: 5");
    EXPECT_STREQ(error("throw undefined").what(), "test.js, line 1: undefined");
    EXPECT_STREQ(error("throw shelf").what(), "test.js, line 1: [object]");
    EXPECT_STREQ(error("throw {toString: function () { throw 1; }}").what(), "test.js, line 1: 1");
    EXPECT_STREQ(error("throw {number: 7, description: 'd'}").what(),
                 "test.js, line 1: [object Object]");
}

TEST_F(ScriptErrors, ThatThrowWhenAskedAreDescribedAllTheSame) {
    EXPECT_EQ(error("var e = new Error('x'); Object.defineProperty(e, 'message', "
                    "{get: function () { throw e; }}); throw e;")
                  .message,
              "a failure that cannot be described");
}

TEST_F(ScriptErrors, LeaveTheEngineReadyForMore) {
    error("throw 1");
    error("shelf.Fail(7)");
    EXPECT_EQ(text("shelf.Add(1, 1)"), "2");
}

TEST_F(ScriptErrors, OfHostFunctionsAreFailuresToo) {
    engine.set_function("refuse", [](std::span<const Variant>) -> Variant {
        throw std::runtime_error("out of cheese");
    });
    EXPECT_EQ(text("(function () { try { refuse(); } catch (e) { return e.description; } })()"),
              "out of cheese");
}

TEST_F(ScriptErrors, LaterWordsOfTheLanguageAreNamesWhereTheyCanBe) {
    EXPECT_EQ(
        text("(function () { var let = 1, of = 2, o = {class: 3, let: 4, import: 5}; let\n"
             "of; for (of = 0; of < 1; ++of) ; async = let + of; return let in o || o.class + "
             "o.let; })()"),
        "7");
}

TEST_F(ScriptErrors, OfSyntaxTellTheirLine) {
    struct Case {
        const char* source;
        const char* what;
    };
    for (
        const Case& wrong : {
            Case{"var a = 1;\nvar = 2;", "test.js, line 2: invalid variable declaration"},
            Case{"\nreturn 1;", "test.js, line 2: invalid return"},
            Case{"a;\nf(1", "test.js, line 2: the '(' of this line is never closed"},
            Case{"a;\nb)", "test.js, line 2: this ')' closes nothing"},
            Case{"\n'abc", "test.js, line 2: the text that begins here has no end"},
            Case{"\n/* abc\n", "test.js, line 2: the comment that begins here has no end"},
            Case{"a\n= /abc",
                 "test.js, line 2: the regular expression that begins here has no "
                 "end"},
            Case{"a = `b`",
                 "test.js, line 1: this language has no texts between ` and `; join texts with "
                 "\"+\""},
            Case{
                "function f(b, a = 1) {}",
                "test.js, line 1: this language has no \"(a = 1)\"; ask in the function: if (a === "
                "undefined) a = 1"},
            Case{
                "(function (a = 1) {})",
                "test.js, line 1: this language has no \"(a = 1)\"; ask in the function: if (a === "
                "undefined) a = 1"},
            Case{"function f(a, {b}) {}",
                 "test.js, line 1: this language has no \"({a})\"; take an object, and read its "
                 "parts "
                 "one by one"},
            Case{"\nvar {a} = b;",
                 "test.js, line 2: this language has no \"var {\"; read the parts one by one"},
            Case{"for (var [a, b] in c) {}",
                 "test.js, line 1: this language has no \"var [\"; read the parts one by one"},
            Case{"a?.b",
                 "test.js, line 1: this language has no \"?.\"; ask first whether the object is "
                 "there: a && a.b"},
            Case{"a ?? b", "test.js, line 1: this language has no \"??\"; write a != null ? a : b"},
            Case{"function* f() {}",
                 "test.js, line 1: this language has no \"function*\"; fill an array"},
            Case{"function f() { yield 1; }",
                 "test.js, line 1: this language has no \"yield\"; fill an array"},
            Case{"a;\nlet b = 1;", "test.js, line 2: this language has no \"let\"; use \"var\""},
            Case{"let {a} = b", "test.js, line 1: this language has no \"let\"; use \"var\""},
            Case{"a = (b) => b",
                 "test.js, line 1: this language has no \"=>\"; write function (a) { return b; }"},
            Case{"\nclass A {}",
                 "test.js, line 2: this language has no \"class\"; use a function and its "
                 "prototype"},
            Case{"for (a of b) c",
                 "test.js, line 1: this language has no \"of\"; count with an index, or use "
                 "\"in\" for names"},
            Case{"f(...a)",
                 "test.js, line 1: this language has no \"...\"; use concat, or apply for a call"},
            Case{"async function f() {}",
                 "test.js, line 1: this language has no \"async\"; calls return when their work "
                 "is done"},
            Case{"__orvo_tick = 1",
                 "test.js, line 1: names that begin with '__orvo_' belong to "
                 "the script engine"},
            Case{"new Date(1) = 2",
                 "test.js, line 1: an assignment to this call cannot be carried "
                 "out; keep the object in a variable and write "
                 "object.Member(index) = value"},
        }) {
        const ScriptError failed = error(wrong.source);
        EXPECT_EQ(failed.trouble, Trouble::syntax) << wrong.source;
        EXPECT_STREQ(failed.what(), wrong.what);
    }
}

TEST_F(ScriptErrors, AreCaughtAsTheyWereThrown) {
    struct Case {
        const char* source;
        const char* caught;
    };
    for (const Case& one : {
             Case{"var e = new Error('a');"
                  "Object.defineProperty(e, 'message', {get: function () { throw 'other'; }});"
                  "try { throw e; } catch (caught) { give(String(caught === e)); }",
                  "true"},
             Case{"var e = Object.freeze(new Error('x (stack index 5)'));"
                  "try { throw e; } catch (caught) { give(caught === e ? e.message : 'another'); }",
                  "x (stack index 5)"},
             Case{"try { throw new Error('x (stack index 5)'); }"
                  "catch (caught) { give(caught.message); }",
                  "x (stack index 5)"},
             Case{"var looks = 0; var e = new Error('a');"
                  "Object.defineProperty(e, 'message', {get: function () { ++looks; }});"
                  "try { throw e; } catch (caught) { give(String(looks)); }",
                  "0"},
             Case{"try { throw Object.create(new Error('x (stack index 5)')); }"
                  "catch (caught) { give(String(caught.hasOwnProperty('message'))); }",
                  "false"},
         }) {
        given.clear();
        EXPECT_NO_THROW(run(one.source)) << one.source;
        ASSERT_EQ(given.size(), 1u) << one.source;
        EXPECT_EQ(to_utf8(given[0].text_view()), one.caught) << one.source;
    }
}

TEST_F(ScriptErrors, TellNothingOfTheEnginesOwnStack) {
    EXPECT_EQ(error("1 instanceof 1").message, "TypeError: object required, found 1");
    EXPECT_EQ(error("[1].forEach(5)").message, "TypeError: function required, found 5");
    EXPECT_EQ(error("throw new Error('x (stack index 5)')").message, "Error: x (stack index 5)");
}

TEST_F(ScriptErrors, AnAssignmentToAnyOtherCallIsNoneToAVariable) {
    EXPECT_STREQ(error("function f() {}\nf(1) = 2").what(),
                 "test.js, line 2: ReferenceError: only a call of an Automation object can be "
                 "assigned to");
}

TEST_F(ScriptErrors, AreReportedWhereAGeneratedLineComesFrom) {
    const LineMap lines{{}, {"shop.page", 12}, {"header.inc", 3}};
    EXPECT_STREQ(error("1;\n2;\nthrow 'a'", lines).what(), "header.inc, line 3: a");
    EXPECT_STREQ(error("1;\nnosuch;\n3", lines).what(),
                 "shop.page, line 12: ReferenceError: identifier 'nosuch' undefined");
    EXPECT_STREQ(error("nosuch", lines).what(),
                 "test.js, line 1: ReferenceError: identifier 'nosuch' undefined");
    EXPECT_STREQ(error("1;\n2;\n3;\nnosuch", lines).what(),
                 "test.js, line 4: ReferenceError: identifier 'nosuch' undefined");
    EXPECT_STREQ(error("1;\nvar = 2;", lines).what(),
                 "shop.page, line 12: invalid variable declaration");
    EXPECT_STREQ(error("1;\n'", lines).what(),
                 "shop.page, line 12: the text that begins here has no end");
}

TEST_F(ScriptErrors, InAFunctionOfAnEarlierProgramNameThatProgram) {
    engine.run(Program::compile("\nfunction f() { nosuch; }", "first.js"));
    EXPECT_STREQ(error("f()").what(),
                 "first.js, line 2: ReferenceError: identifier 'nosuch' undefined");
}

}  // namespace
}  // namespace orvo::script
