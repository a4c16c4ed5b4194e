// The language's errors, made with a number in front of the text too.

#include "host/engine/passage.h"

namespace orvo::script {
namespace {

constexpr const char* original_key = DUK_HIDDEN_SYMBOL("original");

// Error(text), Error(number), Error(number, text), with and without `new`.
duk_ret_t make_error(duk_context* context) {
    const bool has_number = duk_is_number(context, 0);
    duk_push_current_function(context);
    duk_get_prop_string(context, -1, original_key);
    duk_dup(context, has_number ? 1 : 0);
    duk_new(context, 1);
    if (has_number) {
        duk_push_int(context, duk_to_int32(context, 0));
        duk_put_prop_string(context, -2, "number");
    }
    return 1;
}

}  // namespace

void add_errors(duk_context* context) {
    for (const char* name : {"Error", "EvalError", "RangeError", "ReferenceError", "SyntaxError",
                             "TypeError", "URIError"}) {
        duk_push_c_function(context, make_error, 2);
        duk_push_literal(context, "name");
        duk_push_string(context, name);
        duk_def_prop(context, -3, DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_SET_CONFIGURABLE);
        duk_get_global_string(context, name);

        duk_push_literal(context, "prototype");
        duk_get_prop_literal(context, -2, "prototype");
        duk_dup(context, -4);
        duk_put_prop_literal(context, -2, "constructor");
        duk_def_prop(context, -4, DUK_DEFPROP_HAVE_VALUE);

        duk_put_prop_string(context, -2, original_key);
        duk_put_global_string(context, name);
    }
}

}  // namespace orvo::script
