// What older engines of the language had beside the language.

#include "host/engine/passage.h"
#include "platform/values/failure.h"

namespace orvo::script {
namespace {

// A method of texts that makes an element of HTML.
struct Element {
    const char* method;
    const char* name;
    const char* attribute;  // null: none
};
constexpr Element elements[] = {
    {"anchor", "a", "name"},      {"big", "big", nullptr},       {"blink", "blink", nullptr},
    {"bold", "b", nullptr},       {"fixed", "tt", nullptr},      {"fontcolor", "font", "color"},
    {"fontsize", "font", "size"}, {"italics", "i", nullptr},     {"link", "a", "href"},
    {"small", "small", nullptr},  {"strike", "strike", nullptr}, {"sub", "sub", nullptr},
    {"sup", "sup", nullptr},
};

// The value on top of the stack as the value of an attribute.
void quote(duk_context* context) {
    duk_to_string(context, -1);
    duk_get_prop_literal(context, -1, "split");
    duk_swap_top(context, -2);
    duk_push_literal(context, "\"");
    duk_call_method(context, 1);
    duk_get_prop_literal(context, -1, "join");
    duk_swap_top(context, -2);
    duk_push_literal(context, "&quot;");
    duk_call_method(context, 1);
}

duk_ret_t make_element(duk_context* context) {
    refuse_construction(context);
    const Element& element = elements[duk_get_current_magic(context)];
    duk_set_top(context, 1);
    duk_push_this(context);
    if (duk_is_null_or_undefined(context, 1))
        raise_error(context, stash::type_error, "an element is made of a text");
    duk_to_string(context, 1);
    duk_push_literal(context, "<");
    duk_push_string(context, element.name);
    if (element.attribute != nullptr) {
        duk_push_literal(context, " ");
        duk_push_string(context, element.attribute);
        duk_push_literal(context, "=\"");
        duk_dup(context, 0);
        quote(context);
        duk_push_literal(context, "\"");
    }
    duk_push_literal(context, ">");
    duk_dup(context, 1);
    duk_push_literal(context, "</");
    duk_push_string(context, element.name);
    duk_push_literal(context, ">");
    duk_concat(context, duk_get_top(context) - 2);
    return 1;
}

duk_ret_t engine_name(duk_context* context) {
    duk_push_literal(context, "JScript");
    return 1;
}

duk_ret_t engine_version(duk_context* context) {
    duk_push_int(context, duk_get_current_magic(context));
    return 1;
}

duk_ret_t get_object(duk_context* context) {
    raise_number(
        context, runtime_error::cannot_create_object,
        "Automation server can't create object: no objects can be found by GetObject; make "
        "a new one with CreateObject");
}

duk_ret_t collect_garbage(duk_context* context) {
    duk_gc(context, 0);
    return 0;
}

void add_function(duk_context* context, const char* name, duk_c_function function, int length,
                  int magic = 0) {
    push_own_function(context, function, name, length);
    duk_set_magic(context, -1, magic);
    define_part(context, name);
}

}  // namespace

void add_older_library(duk_context* context) {
    duk_get_global_literal(context, "String");
    duk_get_prop_literal(context, -1, "prototype");
    int magic = 0;
    for (const Element& element : elements)
        add_function(context, element.method, make_element, element.attribute != nullptr, magic++);
    duk_pop_2(context);

    duk_push_global_object(context);
    add_function(context, "ScriptEngine", engine_name, 0);
    add_function(context, "ScriptEngineMajorVersion", engine_version, 0, 5);
    add_function(context, "ScriptEngineMinorVersion", engine_version, 0, 8);
    add_function(context, "ScriptEngineBuildVersion", engine_version, 0, 0);
    add_function(context, "GetObject", get_object, 2);
    add_function(context, "CollectGarbage", collect_garbage, 0);
    duk_pop(context);
}

}  // namespace orvo::script
