// Heaps serve one script after the other; scripts see nothing of that.

#include "host/engine/script_engine.h"
#include "tests/host/engine/script_test.h"

namespace orvo::script {
namespace {

// Tells all that can be reached from the globals: names, attributes, values, prototypes.
constexpr const char* inventory = R"js((function (global) {
    var seen = [], lines = [];
    function tell(value) {
        if (value === null || typeof value !== "object" && typeof value !== "function")
            return typeof value + " " + String(value);
        var at = seen.indexOf(value);
        if (at >= 0) return "#" + at;
        seen.push(value);
        return "#" + (seen.length - 1) + " " + Object.prototype.toString.call(value) +
               Object.isExtensible(value);
    }
    tell(global);
    for (var i = 0; i < seen.length; ++i) {
        lines.push(i + " prototype " + tell(Object.getPrototypeOf(seen[i])));
        Object.getOwnPropertyNames(seen[i]).forEach(function (name) {
            if (name === "seen" || name === "caller" || name === "callee") return;
            var part = Object.getOwnPropertyDescriptor(seen[i], name);
            lines.push(i + " " + name + " " + part.writable + part.enumerable + part.configurable +
                       tell(part.get) + tell(part.set) + tell(part.value));
        });
    }
    return lines.join("\n");
})(this))js";

constexpr const char* vandal = R"js(
    var left_behind = 1;
    Object.prototype.everywhere = "x";
    Array.prototype.sort = null;
    delete String.prototype.bold;
    delete this.JSON;
    Math.floor = function () { return 7; };
    Object.defineProperty(this, "fixed", {value: 1});
    Object.freeze(Date.prototype);
    Object.preventExtensions(RegExp);
    /(s)(e)/.exec("secret");
    Error.prototype.toString = function () { return "nothing"; };
    eval = 3;
    var held = [], text = "";
    for (var i = 0; i < 20000; ++i) { held.push({at: i}); text += "part " + i; }
    throw held;
)js";

class ScriptHeaps : public testing::Test {
protected:
    static std::string told(const char* expression) {
        std::string text;
        Engine engine;
        engine.set_function("give", [&](std::span<const Variant> values) {
            text = to_utf8(values[0].text_view());
            return Variant();
        });
        engine.run(Program::compile("give(String(" + std::string(expression) + "))", "test.js"));
        return text;
    }
    static void spoil() {
        try {
            Engine().run(Program::compile(vandal, "vandal.js"));
            ADD_FAILURE() << "nothing was thrown";
        } catch (const ScriptError& error) {
            EXPECT_EQ(error.trouble, Trouble::uncaught) << error.what();
        }
    }
};

TEST_F(ScriptHeaps, AScriptFindsNothingOfTheOneBeforeIt) {
    const std::string before = told(inventory);
    EXPECT_GT(before.size(), 10'000u);
    for (int round = 0; round < 3; ++round) {
        spoil();
        EXPECT_EQ(told(inventory), before);
        EXPECT_EQ(told("RegExp.$1 + typeof held"), "undefined");
    }
}

TEST_F(ScriptHeaps, AScriptEndedByALimitLeavesNothingEither) {
    const std::string before = told(inventory);
    for (const char* endless : {"Math.max = 1; for (;;) {}",
                                "Math.max = 1; for (var a = [];;) "
                                "a.push(a, 'x');"}) {
        Engine engine({.memory_limit = 1 << 20});
        engine.set_time_limit(std::chrono::milliseconds(200));
        EXPECT_THROW(engine.run(Program::compile(endless, "endless.js")), ScriptError);
    }
    EXPECT_EQ(told(inventory), before);
}

TEST_F(ScriptHeaps, RandomNumbersAreOthersInEveryScript) {
    const char* several = "[Math.random(), Math.random(), Math.random()]";
    EXPECT_NE(told(several), told(several));
    EXPECT_EQ(told("(function () { for (var i = 0, n; i < 1000; ++i) { n = Math.random(); if (!(n "
                   ">= 0 && n < 1)) return n; } return 'fine'; })()"),
              "fine");
}

TEST_F(ScriptHeaps, WhatAScriptMayTakeDoesNotDependOnTheOneBefore) {
    const Program program = Program::compile("var all = new Array(3e5).join('x');", "test.js");
    for (int round = 0; round < 5; ++round) {
        Engine engine({.memory_limit = 2 << 20});
        EXPECT_EQ(engine.run(program), Ending::finished);
    }
}

TEST_F(ScriptHeaps, ScriptsThatRunAtOnceHaveOneEach) {
    Engine outer;
    outer.set_function("inner", [](std::span<const Variant>) {
        spoil();
        return Variant(from_utf8(told("typeof mine")));
    });
    std::string text;
    outer.set_function("give", [&](std::span<const Variant> values) {
        text = to_utf8(values[0].text_view());
        return Variant();
    });
    outer.run(Program::compile("var mine = 'kept'; give(inner() + ' ' + mine + Math.floor(2.5));",
                               "outer.js"));
    EXPECT_EQ(text, "undefined kept2");
}

}  // namespace
}  // namespace orvo::script
