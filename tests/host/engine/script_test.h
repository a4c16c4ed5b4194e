#pragma once

#include <gtest/gtest.h>

#include "host/engine/script_engine.h"
#include "tests/host/engine/shelf.h"

namespace orvo::script {

class ScriptTest : public testing::Test {
protected:
    ScriptTest() {
        engine.set_global("shelf", shelf);
        engine.set_global("tag", make<Tag>().object());
        engine.set_global("box", make<Box>(shelf).object());
        engine.set_function("give", [this](std::span<const Variant> values) {
            given.assign(values.begin(), values.end());
            return Variant();
        });
    }
    ~ScriptTest() override { Shelf::run = nullptr; }

    Ending run(std::string_view source) { return engine.run(Program::compile(source, "test.js")); }
    // What an expression gives, as Automation sees it.
    Variant value(const std::string& expression) {
        run("give(" + expression + "\n)");
        return given.at(0);
    }
    // The same as a text of the script's own making.
    std::string text(const std::string& expression) {
        return to_utf8(value("String(" + expression + ")").text_view());
    }
    ScriptError error(std::string_view source, LineMap lines = {}) {
        try {
            engine.run(Program::compile(source, "test.js", std::move(lines)));
        } catch (const ScriptError& error) {
            return error;
        }
        return ScriptError(Trouble::uncaught, {}, "nothing was raised");
    }

    const Object shelf = make<Shelf>().object();
    std::vector<Variant> given;
    Engine engine;
};

}  // namespace orvo::script
