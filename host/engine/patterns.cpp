// What the language's older engines remember of the last match: RegExp.$1 and its relatives.

#include "host/engine/passage.h"

namespace orvo::script {
namespace {

constexpr const char* original_key = DUK_HIDDEN_SYMBOL("original");

// Calls the function that the running one replaces, with the same values.
void call_original(duk_context* context) {
    refuse_construction(context);
    const duk_idx_t count = duk_get_top(context);
    duk_push_current_function(context);
    get_key(context, -1, original_key);
    duk_push_this(context);
    for (duk_idx_t i = 0; i < count; ++i) duk_dup(context, i);
    duk_call_method(context, count);
}

// exec and test are one: both remember what exec answers.
void execute(duk_context* context) {
    duk_set_top(context, 1);
    call_original(context);
    if (!duk_is_object(context, -1)) return;
    duk_dup_top(context);
    put_stash(context, stash::last_match);
}

duk_ret_t exec(duk_context* context) {
    execute(context);
    return 1;
}

duk_ret_t test(duk_context* context) {
    execute(context);
    duk_push_boolean(context, duk_is_object(context, -1));
    return 1;
}

// match, replace and search of a text: what they searched is remembered, and searched once more
// when somebody asks what they found.
duk_ret_t search(duk_context* context) {
    call_original(context);
    duk_push_this(context);
    const bool has_found = duk_is_number(context, -2)   ? duk_get_number(context, -2) >= 0
                           : duk_is_string(context, -2) ? !duk_strict_equals(context, -1, -2)
                                                        : duk_is_object(context, -2) != 0;
    push_stash(context, stash::pattern_maker);
    if (has_found && duk_is_string(context, -2) && duk_is_object(context, 0) &&
        duk_instanceof(context, 0, -1)) {
        duk_push_object(context);
        duk_dup(context, 0);
        duk_put_prop_literal(context, -2, "pattern");
        duk_dup(context, -3);
        duk_put_prop_literal(context, -2, "text");
        duk_push_boolean(context, duk_is_number(context, -4));
        duk_put_prop_literal(context, -2, "is_first");
        put_stash(context, stash::last_match);
    }
    duk_pop_2(context);
    return 1;
}

// pattern.compile(source, flags): the pattern becomes another one.
duk_ret_t compile(duk_context* context) {
    refuse_construction(context);
    duk_set_top(context, 2);
    duk_push_this(context);
    push_stash(context, stash::pattern_maker);
    if (!duk_is_object(context, 2) || !duk_instanceof(context, 2, 3))
        raise_error(context, stash::type_error, "RegExp required");
    duk_dup(context, 0);
    duk_dup(context, 1);
    duk_new(context, 2);
    // Where Duktape keeps what a pattern is.
    for (const char* part : {"\x82"
                             "Bytecode",
                             "\x82"
                             "Source"}) {
        duk_get_prop_string(context, 3, part);
        duk_push_string(context, part);
        duk_swap_top(context, -2);
        duk_def_prop(context, 2, DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_FORCE);
    }
    duk_push_int(context, 0);
    duk_put_prop_literal(context, 2, "lastIndex");
    duk_dup(context, 2);
    return 1;
}

// For the adaptations: the last match as exec answers it, or {pattern, text, is_first}.
duk_ret_t last_match(duk_context* context) {
    push_stash(context, stash::last_match);
    return 1;
}

duk_ret_t tell_match(duk_context* context) {
    put_stash(context, stash::match_part);
    return 0;
}

struct MatchPart {
    const char* name;
    const char* part;  // as the adaptations know it
};
constexpr MatchPart match_parts[] = {
    {"$1", "1"},
    {"$2", "2"},
    {"$3", "3"},
    {"$4", "4"},
    {"$5", "5"},
    {"$6", "6"},
    {"$7", "7"},
    {"$8", "8"},
    {"$9", "9"},
    {"input", "input"},
    {"$_", "input"},
    {"lastMatch", "lastMatch"},
    {"$&", "lastMatch"},
    {"lastParen", "lastParen"},
    {"$+", "lastParen"},
    {"leftContext", "leftContext"},
    {"$`", "leftContext"},
    {"rightContext", "rightContext"},
    {"$'", "rightContext"},
    {"index", "index"},
    {"lastIndex", "lastIndex"},
};

duk_ret_t read_match_part(duk_context* context) {
    push_stash(context, stash::match_part);
    duk_push_string(context, match_parts[duk_get_current_magic(context)].part);
    duk_call(context, 1);
    return 1;
}

duk_ret_t ignore(duk_context*) { return 0; }

// The parts of the last match as properties of the object on top of the stack.
void add_match_parts(duk_context* context) {
    int magic = 0;
    for (const MatchPart& part : match_parts) {
        duk_push_string(context, part.name);
        duk_push_c_function(context, read_match_part, 0);
        duk_set_magic(context, -1, magic++);
        duk_push_c_function(context, ignore, 1);
        duk_def_prop(context, -4,
                     DUK_DEFPROP_HAVE_GETTER | DUK_DEFPROP_HAVE_SETTER |
                         DUK_DEFPROP_CLEAR_ENUMERABLE | DUK_DEFPROP_SET_CONFIGURABLE);
    }
}

// Replaces a method of the object on top of the stack; `original` is the method that it calls.
void replace_method(duk_context* context, const char* name, duk_c_function function,
                    const char* original) {
    duk_get_prop_string(context, -1, name);
    duk_get_prop_literal(context, -1, "length");
    push_own_function(context, function, name, duk_get_int(context, -1));
    duk_get_prop_string(context, -4, original);
    put_key(context, -2, original_key);
    define_part(context, name, 2);
    duk_pop_2(context);
}

}  // namespace

void add_patterns(duk_context* context) {
    duk_get_global_literal(context, "RegExp");
    duk_get_prop_literal(context, -1, "prototype");
    replace_method(context, "test", test, "exec");
    replace_method(context, "exec", exec, "exec");
    push_own_function(context, compile, "compile", 2);
    define_part(context, "compile");
    duk_pop(context);
    add_match_parts(context);
    put_stash(context, stash::pattern_maker);

    duk_get_global_literal(context, "String");
    duk_get_prop_literal(context, -1, "prototype");
    for (const char* name : {"match", "replace", "search"})
        replace_method(context, name, search, name);
    duk_pop_2(context);
}

void push_match_functions(duk_context* context) {
    duk_push_c_function(context, last_match, 0);
    duk_push_c_function(context, tell_match, 1);
}

}  // namespace orvo::script
