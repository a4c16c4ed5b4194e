#pragma once

// What the parts of the engine share: one script's globals, its limits, what it holds.

#include <duktape.h>

#include <chrono>
#include <deque>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <random>

#include "host/engine/script_engine.h"
#include "host/engine/script_heap.h"
#include "host/engine/time_limit.h"

namespace orvo::script {

// What an object of the script's stands for outside of it.
struct Handle {
    enum class Kind {
        object,       // an Automation object
        value,        // an array, or a value that the language has no type for
        enumeration,  // the items of a collection, and where in them it stands
    };
    Kind kind;
    Object object = {};
    Variant value = {};
    std::vector<Variant> items = {};
    std::size_t next = 0;
    bool is_lasting = false;  // one of the script's globals
    // The script's object whose end is the handle's, and the handle's own place in the list.
    void* owner = nullptr;
    std::list<Handle>::iterator self = {};
};

// One script's globals, its limits, and what it holds of the world outside.
class Runtime {
public:
    explicit Runtime(EngineOptions options);
    ~Runtime();
    Runtime(const Runtime&) = delete;
    Runtime& operator=(const Runtime&) = delete;

    static Runtime& of(duk_context* context) { return ScriptHeap::runtime_of(context); }

    void set_global(const std::string& name, const Variant& value);
    void set_function(const std::string& name, HostFunction function);
    void set_time_limit(std::chrono::milliseconds limit);
    void clear_time_limit();
    Ending run(const std::shared_ptr<const Program::Content>& program);
    void stop() { is_stopped_ = true; }

    // For functions that the script calls; `context` is the script's.
    // Raises, inside the script, the failure that ends it, once it has to end.
    void check(duk_context* context);
    // The same for the ticks that rewriting adds: how many rounds of a loop may go by until the
    // next one.
    int tick(duk_context* context);
    // Keeps the place of the statement that runs now, where the value that is thrown is none that
    // knows its place, or where the time has run out.
    void note_thrown(duk_context* context, bool knows_place);

    // From 0 to below 1.
    double random_number();

    const EngineOptions& options() const { return options_; }
    const HostFunction& function(std::size_t index) const { return functions_[index]; }

    // The runtime's while an object of the script's refers to it.
    Handle* add(Handle handle);
    void remove(Handle* handle) noexcept;

private:
    Memory& memory() { return heap_->memory(); }
    // Calls `step(context, &work)` where Duktape may raise. Raises ScriptError.
    template <class Work>
    void protect(duk_ret_t (*step)(duk_context*, void*), Work& work);
    // Of the value on top of the stack, which is taken off.
    [[noreturn]] void raise_uncaught();
    [[noreturn]] void raise_late(Place place);
    void note_place(duk_context* context);
    Place noted_place() const;

    EngineOptions options_;
    TimeLimit time_;
    std::unique_ptr<ScriptHeap> heap_;
    duk_context* context_;
    std::list<Handle> handles_;
    std::deque<HostFunction> functions_;
    std::map<std::string, std::shared_ptr<const Program::Content>, std::less<>>
        programs_;                            // by file
    std::optional<std::mt19937_64> numbers_;  // once somebody asks for one
    bool is_stopped_ = false;
    bool is_end_noted_ = false;  // the place at which the time ran out
    // Where a value was thrown last that is no error object, and so knows no place itself.
    struct {
        std::shared_ptr<const Program::Content> program;
        int line = 0;
    } noted_;
};

}  // namespace orvo::script
