// The language's errors, made with a number in front of the text too.

#include "host/engine/passage.h"

namespace orvo::script {
namespace {

constexpr const char* original_key = DUK_HIDDEN_SYMBOL("original");

// Error(text), Error(number), Error(number, text), with and without `new`.
duk_ret_t make_error(duk_context* context) {
    duk_set_top(context, 2);
    const bool has_number = duk_is_number(context, 0);
    const bool has_text = !duk_is_undefined(context, 1);
    duk_push_current_function(context);
    get_key(context, -1, original_key);
    duk_dup(context, has_number && has_text ? 1 : 0);
    duk_new(context, 1);
    if (has_number) {
        duk_push_int(context, duk_to_int32(context, 0));
        define_part(context, "number");
    }
    return 1;
}

}  // namespace

void add_errors(duk_context* context) {
    for (const char* name : {"Error", "EvalError", "RangeError", "ReferenceError", "SyntaxError",
                             "TypeError", "URIError"}) {
        push_own_function(context, make_error, name, 1);
        duk_get_global_string(context, name);
        // All other kinds are derived from the first.
        if (duk_get_global_literal(context, "Error") && !duk_strict_equals(context, -1, -2))
            duk_set_prototype(context, -3);
        else
            duk_pop(context);
        duk_get_prop_literal(context, -1, "prototype");
        duk_dup(context, -3);
        duk_put_prop_literal(context, -2, "constructor");
        duk_swap_top(context, -2);
        put_key(context, -3, original_key);
        duk_swap_top(context, -2);
        take_prototype(context, -2);
        define_global(context, name);
        duk_pop(context);
    }
}

}  // namespace orvo::script
