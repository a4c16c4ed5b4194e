// What older engines of the language had: the last match, HTML's methods, what tells the engine.

#include "tests/host/engine/script_test.h"

namespace orvo::script {
namespace {

using OlderLanguage = ScriptTest;

constexpr const char* parts =
    "function parts() { return [RegExp.$1, RegExp.$2, RegExp.$3, RegExp.lastMatch, RegExp['$&'], "
    "RegExp.lastParen, RegExp.leftContext, RegExp.rightContext, RegExp.input, RegExp.index, "
    "RegExp.lastIndex].join('|'); }";

TEST_F(OlderLanguage, RemembersTheLastMatch) {
    run(parts);
    EXPECT_EQ(text("parts()"), "|||||||||-1|-1");
    EXPECT_EQ(text("(/b(c)(x)?/.exec('abcd'), parts())"), "c|||bc|bc||a|d|abcd|1|3");
    EXPECT_EQ(text("(/(z)/.test('abcd'), parts())"), "c|||bc|bc||a|d|abcd|1|3");
    EXPECT_EQ(text("(/(d)/.test('abcd'), parts())"), "d|||d|d|d|abc||abcd|3|4");
    EXPECT_EQ(text("('foo bar baz'.replace(/(b)(a.)/g, '$2'), parts())"),
              "b|az||baz|baz|az|foo bar ||foo bar baz|8|11");
    EXPECT_EQ(text("('foo bar baz'.match(/b(a)./), RegExp.$1 + RegExp.index)"), "a4");
    EXPECT_EQ(text("('foo bar baz'.match(/b(a)./g), RegExp.$1 + RegExp.index)"), "a8");
    EXPECT_EQ(text("('foo bar baz'.search(/b(a)./g), RegExp.$1 + RegExp.index)"), "a4");
    EXPECT_EQ(text("('none'.match(/(x)/), 'none'.search(/(x)/), 'none'.replace(/(x)/, 'y'), "
                   "RegExp.$1 + RegExp.index)"),
              "a4");
    EXPECT_EQ(text("('aXbXc'.replace(/x*/gi, '-'), RegExp.index)"), "5");
    EXPECT_EQ(text("(RegExp.$1 = 'mine', RegExp.$1 === 'mine')"), "false");
    EXPECT_EQ(text("(/q/.exec('q'), (function () { try { nosuch } catch (e) { return e.number; } "
                   "})(), RegExp.lastMatch)"),
              "q");
}

TEST_F(OlderLanguage, LeavesWhatMatchesAsItWas) {
    EXPECT_EQ(text("/a/.test()"), "false");
    EXPECT_EQ(text("/undefined/.test()"), "true");
    EXPECT_EQ(text("(function () { var p = /a/g; p.test('aa'); var i = p.lastIndex; p.test('aa'); "
                   "return i + p.lastIndex + String(p.test('aa')) + p.lastIndex; })()"),
              "3false0");
    EXPECT_EQ(text("'a.b'.replace('.', function (m, at, all) { return m + at + all; })"),
              "a.1a.bb");
    EXPECT_EQ(error("RegExp.prototype.test.call({}, 'a')").message.substr(0, 9), "TypeError");
    EXPECT_EQ(error("String.prototype.match.call(null, /a/)").message.substr(0, 9), "TypeError");
    EXPECT_EQ(text("[''.match.length, ''.replace.length, ''.search.length, /a/.exec.length, "
                   "/a/.test.length, ''.match.name].join()"),
              "1,2,1,1,1,match");
    EXPECT_EQ(text("(function () { for (var k in RegExp) return k; return 'nothing'; })()"),
              "nothing");
}

TEST_F(OlderLanguage, ChangesAPatternByCompile) {
    EXPECT_EQ(
        text("(function () { var p = /x/g; p.lastIndex = 3; var same = p.compile('(y+)', 'i'); "
             "return [same === p, p, p.source, p.global, p.ignoreCase, p.lastIndex, "
             "p.exec('aYY')[1], 'yyz'.replace(p, '-')].join(); })()"),
        "true,/(y+)/i,(y+),false,true,0,YY,-z");
    EXPECT_EQ(
        text("(function () { var p = /x/; try { p.compile('('); } catch (e) { return e.name + p; "
             "} })()"),
        "SyntaxError/x/");
    EXPECT_EQ(error("RegExp.prototype.compile.call({}, 'a')").message,
              "TypeError: RegExp required");
}

TEST_F(OlderLanguage, MakesElementsOfTexts) {
    EXPECT_EQ(text("'x'.bold() + 'x'.big() + 'x'.blink() + 'x'.fixed() + 'x'.italics()"),
              "<b>x</b><big>x</big><blink>x</blink><tt>x</tt><i>x</i>");
    EXPECT_EQ(text("'x'.small() + 'x'.strike() + 'x'.sub() + 'x'.sup()"),
              "<small>x</small><strike>x</strike><sub>x</sub><sup>x</sup>");
    EXPECT_EQ(text("'x'.anchor('a\"b') + 'x'.link('u') + 'x'.fontcolor('red') + 'x'.fontsize(7)"),
              "<a name=\"a&quot;b\">x</a><a href=\"u\">x</a><font color=\"red\">x</font>"
              "<font size=\"7\">x</font>");
    EXPECT_EQ(text("''.bold.call(5)"), "<b>5</b>");
    EXPECT_EQ(error("''.bold.call(null)").message.substr(0, 9), "TypeError");
}

TEST_F(OlderLanguage, TellsItsEngine) {
    EXPECT_EQ(text("ScriptEngine()"), "JScript");
    EXPECT_EQ(text("ScriptEngineMajorVersion() + ScriptEngineMinorVersion() / 10"), "5.8");
    EXPECT_EQ(text("typeof ScriptEngineBuildVersion()"), "number");
    EXPECT_EQ(text("CollectGarbage()"), "undefined");
    const ScriptError refused = error("GetObject('a')");
    EXPECT_EQ(refused.number, error_number(0x800A01AD));
    EXPECT_EQ(refused.message.substr(0, 38), "Automation server can't create object:");
}

}  // namespace
}  // namespace orvo::script
