#pragma once

// Scripts: ECMAScript 5 that makes and calls Automation objects, as the language of server pages
// and of script files.
//
//   const Program program = Program::compile(source, "members.page");  // once, for all threads
//   Engine engine({.create_object = create_object});                   // one per run or thread
//   engine.set_global("Session", session);
//   engine.set_time_limit(10s);
//   engine.run(program);                                               // raises ScriptError
//
// How objects, values and failures look inside a script: docs/script.md.

#include <chrono>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/objects/context/memory_budget.h"
#include "platform/values/object.h"
#include "platform/values/variant.h"

namespace orvo::script {

class Runtime;  // the engine's own

// A line of a file that a person wrote; lines count from 1, 0 is "not known".
struct Place {
    std::string file;
    int line = 0;
};

// Where the lines of a generated source come from: element 0 tells of line 1. Lines behind the last
// element, and those whose element has no file, are places of the generated source itself.
using LineMap = std::vector<Place>;

enum class Trouble {
    syntax,        // the text is no script
    uncaught,      // a failure that the script did not catch
    time_limit,    // it ran longer than it may
    memory_limit,  // it needed more memory than it may
};

// What ended a script, or kept it from being one. All text in UTF-8 but for the Automation texts.
struct ScriptError : std::exception {
    ScriptError(Trouble trouble, Place place, std::string message);

    Trouble trouble;
    Place place;
    // For people, one sentence: the failure's description, or "TypeError: …" for the language's
    // own.
    std::string message;
    // Of an Automation failure: its result code, source and description; 0 and empty otherwise.
    std::int32_t number = 0;
    Text source;
    Text description;

    // "FILE, line N: MESSAGE".
    const char* what() const noexcept override { return what_.c_str(); }

private:
    std::string what_;
};

// A script that has been read. Never changes; copies share it, any thread may run it at any time.
class Program {
public:
    // source: UTF-8, with or without its mark. Where a line of it was generated, `lines` tells what
    // it was made from, and every error is reported there; `file` is the name for all other lines.
    // Raises ScriptError with Trouble::syntax.
    static Program compile(std::string_view source, std::string file, LineMap lines = {});

    const std::string& file() const;

    struct Content;  // the engine's own

private:
    friend class Engine;
    explicit Program(std::shared_ptr<const Content> content) : content_(std::move(content)) {}
    std::shared_ptr<const Content> content_;
};

// A function of the host's that scripts call. What it raises, the script can catch.
using HostFunction = std::function<Variant(std::span<const Variant> arguments)>;

// Whether a member of an Automation object is given the script's own objects as their texts.
using TakesTexts = std::function<bool(const Object& object, std::int32_t member)>;

struct EngineOptions {
    // What `new ActiveXObject(progID)` and `CreateObject(progID)` do; without it scripts have
    // neither.
    std::function<Object(const Text& progid)> create_object = {};
    // Asked only where such an object is given away; without it no member is.
    TakesTexts takes_texts = {};
    // Bytes that the script's own code and values may take.
    std::size_t memory_limit = std::size_t{64} << 20;
    // What they are taken from together with others', instead: other engines' of the thread, and
    // objects that tell what they hold (platform/objects/context/memory_account.h).
    std::shared_ptr<MemoryBudget> memory = {};
};

enum class Ending {
    finished,  // the last statement was carried out
    stopped,   // by stop()
};

// The globals of one script, and the programs that run among them one after the other. Belongs to
// the thread that made it, as do the objects that it holds; it releases them at the latest when it
// is destroyed.
class Engine {
public:
    explicit Engine(EngineOptions options = {});
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    // Raise ScriptError (memory_limit).
    void set_global(const std::string& name, const Variant& value);
    void set_function(const std::string& name, HostFunction function);

    // From now on; counts for all runs until it is set again. The clock is looked at in every loop,
    // at the start of every function, at every call of a host's object and as the language's own
    // library asks for memory. It cannot break off a single call of the host's, nor one of the
    // library's that asks for none.
    void set_time_limit(std::chrono::milliseconds limit);
    void clear_time_limit();

    // Carries a program out. May be called from within a member that a script calls: the inner
    // program sees the same globals. Raises ScriptError.
    Ending run(const Program& program);

    // For a member that a script calls (Quit, End, Redirect): nothing more is carried out once that
    // member returns, whatever the script catches, and all runs end as stopped. A stopped engine
    // runs no further program (`run` answers stopped at once).
    void stop();

private:
    std::unique_ptr<Runtime> runtime_;
};

}  // namespace orvo::script
