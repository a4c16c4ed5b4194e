// The globals that every script has beside the language's own.

#include <cstring>

#include "host/engine/adaptations.h"
#include "host/engine/engine_text.h"
#include "host/engine/passage.h"
#include "host/engine/program.h"
#include "host/engine/rewrite.h"

namespace orvo::script {
namespace {

// new ActiveXObject(progID), CreateObject(progID)
class CreateObject : public Passage {
public:
    duk_ret_t run(duk_context* context) {
        Runtime& runtime = Runtime::of(context);
        runtime.check(context);
        read(context, 0, name_);
        attempt(context, [&] {
            try {
                made_ = Variant(runtime.options().create_object(name_.to<Text>()));
            } catch (Failure& failure) {
                // The language has a sentence of its own for this.
                if (failure.number == runtime_error::cannot_create_object)
                    failure.description =
                        replaced(failure.description,
                                 Text(runtime_error_text(runtime_error::cannot_create_object)),
                                 u"Automation server can't create object");
                throw;
            }
        });
        runtime.check(context);
        push(context, made_);
        return 1;
    }

private:
    Variant name_;
    Variant made_;
};

class HostCall : public Passage {
public:
    duk_ret_t run(duk_context* context) {
        Runtime& runtime = Runtime::of(context);
        runtime.check(context);
        read_all(context, 0, arguments_);
        duk_push_current_function(context);
        duk_get_prop_string(context, -1, member_key);
        const auto index = static_cast<std::size_t>(duk_get_int(context, -1));
        attempt(context, [&] { result_ = runtime.function(index)(arguments_); });
        runtime.check(context);
        push(context, result_);
        return 1;
    }

private:
    std::vector<Variant> arguments_;
    Variant result_;
};

// eval(text), for text that was made at run time. It runs among the globals.
class Evaluate : public Passage {
public:
    duk_ret_t run(duk_context* context) {
        duk_size_t size = 0;
        const char* bytes = duk_require_lstring(context, 0, &size);
        attempt(context, [&] {
            try {
                source_ = rewritten(to_utf8(from_engine({bytes, size})));
            } catch (const SyntaxProblem& problem) {
                refusal_ = problem.what();
            }
        });
        if (!refusal_.empty()) raise_error(context, stash::syntax_error, refusal_.c_str());
        duk_push_literal(context, "eval");
        duk_compile_lstring_filename(context, DUK_COMPILE_EVAL, source_.data(), source_.size());
        duk_call(context, 0);
        return 1;
    }

private:
    std::string source_;
    std::string refusal_;
};

// Called by Duktape for each value that is thrown.
duk_ret_t note_thrown(duk_context* context) {
    if (!duk_is_error(context, 0)) Runtime::of(context).note_place(context);
    duk_dup(context, 0);
    return 1;
}

duk_ret_t is_limited(duk_context* context) {
    duk_push_boolean(context, Runtime::of(context).has_time_limit());
    return 1;
}

void keep_originals(duk_context* context) {
    for (const char* name : {stash::error, stash::type_error, stash::syntax_error}) {
        duk_get_global_string(context, name);
        put_stash(context, name);
    }
    duk_get_global_string(context, "Date");
    duk_get_prop_string(context, -1, "prototype");
    for (const char* name : {stash::date_time, stash::date_offset}) {
        duk_get_prop_string(context, -1, name);
        put_stash(context, name);
    }
    duk_pop(context);
    put_stash(context, stash::date_maker);
    duk_get_global_string(context, "Object");
    duk_get_prop_string(context, -1, "prototype");
    duk_get_prop_string(context, -1, stash::class_name);
    put_stash(context, stash::class_name);
    duk_pop_2(context);
}

}  // namespace

void push_host_function(duk_context* context, std::size_t index) {
    duk_push_c_function(context, function_of<HostCall>, DUK_VARARGS);
    duk_push_int(context, static_cast<duk_int_t>(index));
    duk_put_prop_string(context, -2, member_key);
}

const std::string& library_code() {
    static const std::string code =
        compiled(rewritten(adaptations), "adaptations", DUK_COMPILE_FUNCTION);
    return code;
}

void add_library(duk_context* context, const std::string& code) {
    keep_originals(context);
    add_errors(context);
    if (Runtime::of(context).options().create_object) {
        for (const char* name : {"ActiveXObject", "CreateObject"}) {
            duk_push_c_function(context, function_of<CreateObject>, 1);
            duk_put_global_string(context, name);
        }
    }
    add_collections(context);

    duk_get_global_string(context, "Duktape");
    duk_push_c_function(context, note_thrown, 1);
    duk_put_prop_string(context, -2, "errThrow");
    duk_pop(context);

    std::memcpy(duk_push_fixed_buffer(context, code.size()), code.data(), code.size());
    duk_load_function(context);
    duk_push_c_function(context, function_of<Evaluate>, 1);
    duk_push_c_function(context, is_limited, 0);
    duk_push_global_object(context);
    duk_insert(context, -3);
    duk_call_method(context, 2);
    duk_pop(context);
}

}  // namespace orvo::script
