#pragma once

// The border between C++ and Duktape.
//
// Duktape leaves functions by jumps that destroy nothing, and C++ exceptions must not pass through
// it. So a function that scripts call is a class derived from Passage, with a method
// `duk_ret_t run(duk_context*)`: its object stands outside of what Duktape may leave. Inside `run`
// nothing that needs a destructor is a local variable, and what may throw stands in attempt().

#include <duktape.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/engine/runtime.h"
#include "platform/interfaces/border.h"
#include "platform/values/values.h"

namespace orvo::script {

class Passage {
public:
    virtual ~Passage() = default;

    // Runs `body`, which calls nothing of Duktape's; what it throws is raised inside the script.
    template <class Body>
    void attempt(duk_context* context, Body&& body) {
        if (!succeeds(body)) raise(context);
    }

    // The script's value at `index`, for an Automation object. An array of the script's becomes one
    // of variants, a date one of local time; other objects of the script's own are their text or
    // raise 13.
    void read(duk_context* context, duk_idx_t index, Variant& to);
    // All values from `first` to the top of the stack.
    void read_all(duk_context* context, duk_idx_t first, std::vector<Variant>& to);

    // Pushes the script's value for one of Automation's.
    void push(duk_context* context, const Variant& value);
    void push_text(duk_context* context, TextView text);
    // What the object that is pushed next stands for; throws only for lack of memory.
    void keep(Handle handle) { handle_ = std::move(handle); }
    // Pushes a plain object with this prototype (a name in the stash) that stands for it.
    void push_kept(duk_context* context, const char* prototype);

protected:
    // Whether other objects of the script's own are given away as their texts; leaves the stack as
    // it was.
    virtual bool takes_texts(duk_context*) { return false; }

private:
    template <class Body>
    bool succeeds(Body& body) noexcept {
        try {
            body();
            return true;
        } catch (...) {
            failure_ = current_failure("");
            return false;
        }
    }
    [[noreturn]] void raise(duk_context* context);
    void read_object(duk_context* context, duk_idx_t index, Variant& to);
    void read_array(duk_context* context, duk_idx_t index, Variant& to);
    void read_date(duk_context* context, duk_idx_t index, Variant& to);
    void push_date(duk_context* context, Date date);
    void push_object(duk_context* context);
    // Makes the object on top of the stack stand for what handle_ holds.
    void hand_over(duk_context* context);

    std::optional<Failure> failure_;
    std::string bytes_;
    std::vector<Values> arrays_;  // those being read, the outermost first
    std::size_t elements_ = 0;
    std::optional<Handle> handle_;
};

// A function of the script's that is a Passage; `Duktape/C` calls it.
template <class Work>
duk_ret_t function_of(duk_context* context) {
    bool raised;
    {
        Work work;
        raised = duk_safe_call(
                     context,
                     [](duk_context* inner, void* data) -> duk_ret_t {
                         return static_cast<Work*>(data)->run(inner);
                     },
                     &work, duk_get_top(context), 1) != DUK_EXEC_SUCCESS;
    }
    return raised ? duk_throw(context) : 1;
}

// What the value at `index` stands for outside; null for the script's own values.
Handle* handle_of(duk_context* context, duk_idx_t index);

// The same, of an Automation object; raises 424 inside the script for anything else.
Handle& object_at(duk_context* context, duk_idx_t index);

// Raises an error inside the script: of one of the language's own kinds (a name in the stash), or
// with a number. Duktape's own ways name the C++ source as the error's place.
[[noreturn]] void raise_error(duk_context* context, const char* constructor, const char* message);
[[noreturn]] void raise_number(duk_context* context, std::int32_t number, const char* text);

// Read and write a property by one of the names below. Duktape knows a literal again by its
// address, which spares it looking the text up: the name is one of those below at every call.
void get_key(duk_context* context, duk_idx_t object, const char* key);
void put_key(duk_context* context, duk_idx_t object, const char* key);

// Takes the value on top of the stack as the stash's `name`, and pushes it.
void put_stash(duk_context* context, const char* name);
void push_stash(duk_context* context, const char* name);

// Hidden properties: scripts cannot name them.
inline constexpr const char* handle_key = DUK_HIDDEN_SYMBOL("handle");
inline constexpr const char* target_key = DUK_HIDDEN_SYMBOL("target");
inline constexpr const char* member_key = DUK_HIDDEN_SYMBOL("member");
inline constexpr const char* arguments_key = DUK_HIDDEN_SYMBOL("arguments");
inline constexpr const char* methods_key = DUK_HIDDEN_SYMBOL("methods");

// Names in the stash.
namespace stash {
inline constexpr const char* owner_prototype = "owner";  // of all that own a handle: its finalizer
inline constexpr const char* array_prototype = "array";
inline constexpr const char* enumerator_prototype = "enumerator";
inline constexpr const char* member_prototype = "member";
inline constexpr const char* slot_prototype = "slot";
inline constexpr const char* traps = "traps";  // what a proxy of an Automation object does
inline constexpr const char* date_maker = "Date";
inline constexpr const char* date_time = "getTime";
inline constexpr const char* date_offset = "getTimezoneOffset";
inline constexpr const char* date_set_year = "setFullYear";
inline constexpr const char* pattern_maker = "RegExp";
inline constexpr const char* last_match = "last match";
inline constexpr const char* match_part = "match part";  // a function that tells a part of it
inline constexpr const char* class_name = "toString";
inline constexpr const char* evaluate = "eval";  // the language's own
inline constexpr const char* indirect_evaluate = "indirect eval";
inline constexpr const char* evaluated = "evaluated";  // what eval is about to be called with
inline constexpr const char* error = "Error";
inline constexpr const char* type_error = "TypeError";
inline constexpr const char* syntax_error = "SyntaxError";
inline constexpr const char* reference_error = "ReferenceError";
}  // namespace stash

// Defines what scripts see of Automation objects: the traps and prototypes above, and the slots of
// assignments to calls.
void add_members(duk_context* context);
// A function object that calls an Automation object's default member, as a proxy's target.
void push_callable(duk_context* context);

// Defines VBArray and Enumerator.
void add_collections(duk_context* context);

// Takes the value on top of the stack as a global like the language's own: walking through the
// globals does not find it.
void define_global(duk_context* context, const char* name);
// Defines a global that scripts cannot change either.
void put_lasting_global(duk_context* context, const char* name, duk_c_function function,
                        duk_idx_t parameters);
// Takes the value on top of the stack as a property of the object below it, or so many values
// further below; scripts can change it, and walking through the object does not find it.
void define_part(duk_context* context, const char* name, duk_idx_t further = 0);
// Raises a TypeError where the function that runs is called by `new`.
void refuse_construction(duk_context* context);
// Pushes a function that takes any number of arguments and looks like one of the language's own.
void push_own_function(duk_context* context, duk_c_function function, const char* name, int length);
// Gives the constructor on top of the stack the prototype at `prototype`.
void take_prototype(duk_context* context, duk_idx_t prototype);

// Defines the constructors of errors anew, so that they take a number in front of the text.
void add_errors(duk_context* context);

// Defines Date anew, so that it reads what people and HTTP write.
void add_dates(duk_context* context);

// Defines what remembers the last match, and RegExp.prototype.compile.
void add_patterns(duk_context* context);
// Pushes the two functions by which the adaptations tell of it: last_match and tell_match.
void push_match_functions(duk_context* context);

// Defines what older engines of the language had: HTML's methods of texts, ScriptEngine, GetObject
// and CollectGarbage.
void add_older_library(duk_context* context);

// The globals that make Automation objects.
inline constexpr const char* creation_names[] = {"ActiveXObject", "CreateObject"};

// Defines ActiveXObject, CreateObject and the collections, and adapts the language's own library;
// code: library_code(), which is C++ and so asked for before Duktape is entered.
void add_library(duk_context* context, const std::string& code);
const std::string& library_code();
// Pushes a function that calls the host's function of this number.
void push_host_function(duk_context* context, std::size_t index);

}  // namespace orvo::script
