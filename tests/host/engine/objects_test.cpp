// Automation objects as scripts see them.

#include "platform/values/failure.h"
#include "tests/host/engine/script_test.h"

namespace orvo::script {
namespace {

using ScriptObjects = ScriptTest;

TEST_F(ScriptObjects, PropertiesAreReadAndWrittenWithoutRegardToCase) {
    EXPECT_EQ(text("shelf.Label"), "shelf");
    EXPECT_EQ(text("(shelf.LABEL = 'red', shelf.label)"), "red");
    EXPECT_EQ(text("(shelf.Label += ' one', shelf.Label)"), "red one");
    EXPECT_EQ(text("shelf['Label']"), "red one");
}

TEST_F(ScriptObjects, MethodsAreCalledWithTheirArguments) {
    EXPECT_EQ(text("shelf.Add(40, 2)"), "42");
    EXPECT_EQ(text("shelf.add('40', 2)"), "42");
    EXPECT_EQ(text("(function () { var add = shelf.Add; return add(1, 2); })()"), "3");
}

TEST_F(ScriptObjects, LookingAtAMethodDoesNotCallIt) {
    EXPECT_EQ(text("(shelf.Touch, typeof shelf.Touch + ' ' + shelf.Calls)"), "function 0");
    EXPECT_EQ(text("(shelf.Touch(), shelf.Calls)"), "1");
}

TEST_F(ScriptObjects, ArgumentsArePassedByValue) {
    EXPECT_EQ(text("(function () { var t = 'a'; return shelf.Change(t) + t; })()"), "a!a");
}

TEST_F(ScriptObjects, IndexedPropertiesAreReadWithParentheses) {
    EXPECT_EQ(text("(shelf.Item('a') = 1, shelf.Item('A'))"), "1");
    EXPECT_EQ(text("shelf('a')"), "1");
    EXPECT_EQ(text("shelf.Item('none')"), "undefined");
}

TEST_F(ScriptObjects, CallsAreAssignedTo) {
    run("shelf('n') = 1; shelf('n') += 4; shelf('n')++; ++shelf('n'); shelf['Item']('m') = 'x';");
    EXPECT_EQ(text("shelf('n')"), "7");
    EXPECT_EQ(text("shelf('m')"), "x");
    EXPECT_EQ(text("shelf('k') = 'result'"), "result");
    EXPECT_EQ(text("(function () { var item = shelf.Item; item('z') = 3; return shelf('z'); })()"),
              "3");
    EXPECT_EQ(text("(shelf.Other('a') = 1, 'a put without a place is not lost')"),
              "a put without a place is not lost");
}

TEST_F(ScriptObjects, ADefaultPropertyThatAnswersAnObjectHandsArgumentsOnToIt) {
    run("shelf('n') = 1; shelf('tag') = tag;");
    EXPECT_EQ(text("box('n')"), "1");
    EXPECT_EQ(text("box('tag').Value + ' ' + box('tag')"), "tag tag");
    EXPECT_EQ(text("box('none')"), "undefined");
    EXPECT_EQ(text("box.Content('n')"), "1");
    EXPECT_EQ(text("(box().Label + ' ' + box.Content.Label)"), "shelf shelf");
    EXPECT_EQ(text("(function () { var get = box; return get('n'); })()"), "1");
}

TEST_F(ScriptObjects, SuchCallsAreAssignedTo) {
    run("box('n') = 1; box('n') += 4; box('n')++; ++box('n');");
    EXPECT_EQ(text("shelf('n') + ' ' + box('n')"), "7 7");
    EXPECT_EQ(text("box('k') = 'result'"), "result");
    EXPECT_EQ(text("(box.Content('k') += 's', shelf('k'))"), "results");
    EXPECT_EQ(error("box() = 1").description, u"Object doesn't support this property or method");
}

TEST_F(ScriptObjects, ArgumentsAreHandedOnFromObjectToObject) {
    engine.set_global("outer", make<Box>(make<Box>(shelf).object()).object());
    run("outer('n') = 5; outer('n')++;");
    EXPECT_EQ(text("outer('n') + ' ' + shelf('n')"), "6 6");
}

TEST_F(ScriptObjects, ArgumentsThatNobodyTakesAreRefused) {
    for (const Object& content : {make<Tag>().object(), Object()}) {
        engine.set_global("closed", make<Box>(content).object());
        for (const char* attempt : {"closed('n')", "closed('n') = 1"})
            EXPECT_EQ(static_cast<std::uint32_t>(error(attempt).number), 0x800A01C2) << attempt;
    }
}

TEST_F(ScriptObjects, OnlyCallsOfAutomationObjectsAreAssignedTo) {
    EXPECT_EQ(error("function f() {} f(1) = 2").message,
              "ReferenceError: only a call of an Automation object can be assigned to");
    EXPECT_EQ(error("var o = {m: function () {}}; o.m(1) = 2").message,
              "ReferenceError: only a call of an Automation object can be assigned to");
    EXPECT_EQ(error("shelf.Nowhere(1) = 2").description,
              u"Object doesn't support this property or method");
}

TEST_F(ScriptObjects, APropertyWithAnOptionalIndexIsValueAndFunction) {
    EXPECT_EQ(text("shelf.Volume"), "whole");
    EXPECT_EQ(text("'' + shelf.Volume"), "whole");
    EXPECT_EQ(text("shelf.Volume()"), "whole");
    EXPECT_EQ(text("shelf.Volume(2)"), "part 2");
}

TEST_F(ScriptObjects, TheDefaultValueStandsForTheObject) {
    EXPECT_EQ(text("'' + tag"), "tag");
    EXPECT_EQ(text("tag == 'tag'"), "true");
    EXPECT_EQ(text("tag.toString()"), "tag");
    EXPECT_EQ(text("'' + shelf"), "[object]");
    EXPECT_EQ(text("'' + box"), "[object]");
}

TEST_F(ScriptObjects, AreFunctionsOnlyWhereTheirDefaultMemberTakesArgumentsOrHandsThemOn) {
    EXPECT_EQ(text("typeof tag"), "object");
    EXPECT_EQ(text("typeof shelf"), "function");
    EXPECT_EQ(text("typeof box"), "function");
    EXPECT_EQ(error("new shelf('a')").message, "Object doesn't support this property or method");
}

TEST_F(ScriptObjects, MembersThatAreNotThereAreRefused) {
    const ScriptError read = error("var a;\nshelf.Nowhere");
    EXPECT_EQ(read.message, "Object doesn't support this property or method");
    EXPECT_EQ(static_cast<std::uint32_t>(read.number), 0x800A01B6);
    EXPECT_EQ(read.place.line, 2);
    EXPECT_EQ(error("shelf.Nowhere()").number, read.number);
    EXPECT_EQ(error("shelf.Nowhere = 1").number, read.number);
    const ScriptError written = error("shelf.Count = 1");
    EXPECT_EQ(written.number, read.number);
    EXPECT_EQ(written.message,
              "Object doesn't support this property or method: this property can only be read");
    EXPECT_EQ(error("shelf.Add = 1").message, read.message) << "that is a method";
    EXPECT_EQ(text("'Label' in shelf"), "true");
    EXPECT_EQ(text("'Nowhere' in shelf"), "false");
    EXPECT_EQ(error("delete shelf.Label").description, u"Object doesn't support this action");
}

TEST_F(ScriptObjects, HaveNoKeysToWalkThrough) {
    EXPECT_EQ(text("(function () { var all = ''; for (var k in shelf) all += k; return all; })()"),
              "");
    EXPECT_EQ(text("Object.keys(tag).length"), "0");
}

TEST_F(ScriptObjects, ObjectsThatMembersGiveAreCalledOn) {
    EXPECT_EQ(text("shelf.Other.Other.Add(1, 1)"), "2");
    EXPECT_EQ(text("shelf.Nothing === null"), "true");
    EXPECT_EQ(text("shelf.Echo(tag).Value"), "tag");
}

TEST_F(ScriptObjects, CollectionsAreWalkedThroughByEnumerator) {
    run("shelf('a') = 1; shelf('b') = 2; shelf('c') = 3;"
        "for (var all = '', e = new Enumerator(shelf); !e.atEnd(); e.moveNext()) all += e.item();");
    EXPECT_EQ(text("all"), "abc");
    EXPECT_EQ(text("e.item()"), "undefined");
    EXPECT_EQ(text("(e.moveNext(), e.moveFirst(), e.item())"), "a");
    EXPECT_EQ(text("new Enumerator(shelf.Echo([5, 6])).item()"), "5");
    EXPECT_EQ(text("new Enumerator().atEnd()"), "true");
    EXPECT_EQ(error("new Enumerator(tag)").description, u"Object not a collection");
    EXPECT_EQ(error("new Enumerator(1)").message, "Enumerator: object is not a collection");
    EXPECT_EQ(error("Enumerator.prototype.atEnd.call({})").message, "Enumerator expected");
}

TEST_F(ScriptObjects, AreMadeByTheHostsOwnWay) {
    Engine other({.create_object = [](const Text& progid) -> Object {
        if (progid == u"Test.Shelf") return make<Shelf>().object();
        if (progid == u"Test.Own") throw Failure(13, u"Own", u"no");
        raise_runtime_error(runtime_error::cannot_create_object);
    }});
    const auto run = [&](std::string_view source) {
        try {
            other.run(Program::compile(source, "test.js"));
            return std::string();
        } catch (const ScriptError& error) {
            return error.message;
        }
    };
    EXPECT_EQ(run("new ActiveXObject('Test.Shelf').Add(1, 2); CreateObject('Test.Shelf').Label"),
              "");
    EXPECT_EQ(run("new ActiveXObject('Test.None')"),
              "Automation server can't create object: \"Test.None\"");
    EXPECT_EQ(run("new ActiveXObject('Test.Own')"), "no");
    EXPECT_EQ(error("new ActiveXObject('Test.Shelf')").message,
              "ReferenceError: identifier 'ActiveXObject' undefined");
}

TEST_F(ScriptObjects, AreReleasedWhenTheScriptLetsGoOfThem) {
    int alive = 0;
    {
        Engine other;
        other.set_global("first", make<Shelf>(&alive).object());
        other.run(Program::compile("var second = first.Other, third = first.Other;", "test.js"));
        EXPECT_EQ(alive, 3);
        other.run(Program::compile("second = null; var f = third.Add; third = null;", "test.js"));
        EXPECT_EQ(alive, 2);
        other.run(Program::compile("f = null;", "test.js"));
        EXPECT_EQ(alive, 1);
        other.run(Program::compile("var heir = Object.create(first); heir = null;", "test.js"));
        EXPECT_EQ(alive, 1);
        other.run(Program::compile("first.Add(1, 2); var ring = {o: first.Other}; ring.r = ring;",
                                   "test.js"));
        EXPECT_EQ(alive, 2);
    }
    EXPECT_EQ(alive, 0);
}

TEST_F(ScriptObjects, ThatAreCalledByTheWayAreReleasedAtOnce) {
    int alive = 0;
    Engine other;
    other.set_global("first", make<Shelf>(&alive).object());
    other.run(
        Program::compile("for (var i = 0; i < 10; ++i) first.Other.Echo(first.Other.Touch());"
                         "var held = first.Other, f = held.Echo; f = held = null;",
                         "test.js"));
    EXPECT_EQ(alive, 1);
}

TEST_F(ScriptObjects, ThatAreGlobalsHaveOneFunctionForEachMethod) {
    EXPECT_EQ(text("[shelf.Echo === shelf.Echo, shelf.Echo === shelf.Touch, shelf.echo(2), "
                   "shelf.Echo(3), 'Echo' in shelf]"),
              "true,false,2,3,true");
    EXPECT_EQ(text("[shelf.Calls, shelf.Touch(), shelf.Calls, shelf.Touch(), shelf.Calls]"),
              "0,1,1,2,2");
    EXPECT_EQ(text("[shelf.Echo.call(null, 4), Object.getOwnPropertyNames(shelf).length]"), "4,0");
}

TEST_F(ScriptObjects, InArraysAndEnumeratorsAreReleasedToo) {
    int alive = 0;
    {
        Engine other;
        const Object held = make<Shelf>(&alive).object();
        other.set_global("list", Values{held, make<Shelf>(&alive).object()});
        other.run(
            Program::compile("var all = list.toArray(); var e = new Enumerator(list);"
                             "list = all = null;",
                             "test.js"));
        EXPECT_EQ(alive, 2);
        other.run(Program::compile("var heir = Object.create(e); heir = null;", "test.js"));
        EXPECT_EQ(alive, 2);
        other.run(Program::compile("e.item().Add(1, 2);", "test.js"));
    }
    EXPECT_EQ(alive, 0);
}

}  // namespace
}  // namespace orvo::script
