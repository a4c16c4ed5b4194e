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
                if (failure.number != runtime_error::cannot_create_object) throw;
                // The language has a sentence of its own for this.
                const Text name = name_.to<Text>();
                failure.description =
                    replaced(failure.description,
                             Text(runtime_error_text(runtime_error::cannot_create_object)),
                             u"Automation server can't create object");
                if (failure.description.find(name) == Text::npos)
                    failure.description += u": \"" + name + u"\"";
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
        get_key(context, -1, member_key);
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

// A text of a script's that is rewritten; what is no script raises SyntaxError.
class Rewriting : public Passage {
protected:
    void push_rewritten(duk_context* context, duk_idx_t index, Within within = Within::nothing) {
        duk_size_t size = 0;
        const char* bytes = duk_require_lstring(context, index, &size);
        attempt(context, [&] {
            try {
                source_ = rewritten({bytes, size}, within);
            } catch (const SyntaxProblem& problem) {
                refusal_ = problem.what();
            }
        });
        if (!refusal_.empty()) raise_error(context, stash::syntax_error, refusal_.c_str());
        duk_push_lstring(context, source_.data(), source_.size());
        source_ = {};
    }

private:
    std::string source_;
    std::string refusal_;
};

// The global eval, called as a function like any other: the text runs among the globals.
class Evaluate : public Rewriting {
public:
    duk_ret_t run(duk_context* context) {
        refuse_construction(context);
        duk_set_top(context, 1);
        push_stash(context, stash::evaluate);
        if (duk_is_string(context, 0) && !duk_is_symbol(context, 0))
            push_rewritten(context, 0);
        else
            duk_dup(context, 0);
        duk_call(context, 1);
        return 1;
    }
};

// Only the language's own eval sees the variables around its call, and only where it is called by
// its name. Between these two functions the name finds it; everywhere else it finds Evaluate, for
// what the language's own takes is not rewritten.
void swap_evaluation(duk_context* context, const char* from, const char* to) {
    duk_push_global_object(context);
    duk_get_prop_literal(context, -1, "eval");
    push_stash(context, from);
    if (duk_strict_equals(context, -1, -2)) {
        push_stash(context, to);
        duk_put_prop_literal(context, -4, "eval");
    }
    duk_pop_3(context);
}

duk_ret_t begin_evaluation(duk_context* context) {
    duk_dup(context, 0);
    put_stash(context, stash::evaluated);
    swap_evaluation(context, stash::indirect_evaluate, stash::evaluate);
    return 0;
}

class EvaluatedText : public Rewriting {
public:
    duk_ret_t run(duk_context* context) {
        swap_evaluation(context, stash::evaluate, stash::indirect_evaluate);
        push_stash(context, stash::evaluate);
        const bool is_own = duk_strict_equals(context, 0, -1) != 0;
        push_stash(context, stash::evaluated);
        if (is_own && duk_is_string(context, -1) && !duk_is_symbol(context, -1))
            push_rewritten(context, -1, Within::other_text);
        return 1;
    }
};

// Function(parameter, …, body)
class MakeFunction : public Rewriting {
public:
    duk_ret_t run(duk_context* context) {
        const duk_idx_t count = duk_get_top(context);
        // Each text is one of its own: none ends what the other has begun.
        for (duk_idx_t i = 0; i < count; ++i) {
            duk_to_string(context, i);
            push_rewritten(context, i);
            duk_pop(context);
        }
        duk_push_literal(context, "function anonymous(");
        for (duk_idx_t i = 0; i + 1 < count; ++i) {
            if (i > 0) duk_push_literal(context, ",");
            duk_dup(context, i);
        }
        duk_push_literal(context, "\n) {");
        if (count > 0) duk_dup(context, count - 1);
        duk_push_literal(context, "\n}");
        duk_concat(context, duk_get_top(context) - count);
        push_rewritten(context, -1);
        duk_push_literal(context, "eval");
        duk_compile(context, DUK_COMPILE_FUNCTION);
        return 1;
    }
};

// Called by Duktape for each value that is thrown.
duk_ret_t note_thrown(duk_context* context) {
    Runtime::of(context).note_thrown(context, duk_is_error(context, 0) != 0);
    duk_dup(context, 0);
    return 1;
}

duk_ret_t tick(duk_context* context) {
    duk_push_int(context, Runtime::of(context).tick(context));
    return 1;
}

// What a function of the adaptations' looks like from outside.
duk_ret_t call_target(duk_context* context) {
    refuse_construction(context);
    const duk_idx_t count = duk_get_top(context);
    duk_push_current_function(context);
    get_key(context, -1, target_key);
    duk_push_this(context);
    duk_remove(context, -3);
    duk_insert(context, 0);
    duk_insert(context, 0);
    duk_call_method(context, count);
    return 1;
}

// present(function, name, length): the function as one of the language's own.
duk_ret_t present(duk_context* context) {
    duk_del_prop_literal(context, 0, "fileName");
    push_own_function(context, call_target, duk_get_string(context, 1), duk_get_int(context, 2));
    duk_dup(context, 0);
    put_key(context, -2, target_key);
    return 1;
}

// A heap serves many scripts, and the language's own function would give each of them the same
// numbers.
duk_ret_t random_number(duk_context* context) {
    duk_push_number(context, Runtime::of(context).random_number());
    return 1;
}

void add_random(duk_context* context) {
    duk_get_global_literal(context, "Math");
    push_own_function(context, random_number, "random", 0);
    define_part(context, "random");
    duk_pop(context);
}

void add_evaluation(duk_context* context) {
    duk_get_global_string(context, "eval");
    put_stash(context, stash::evaluate);
    push_own_function(context, function_of<Evaluate>, "eval", 1);
    duk_dup_top(context);
    put_stash(context, stash::indirect_evaluate);
    define_global(context, "eval");
    put_lasting_global(context, evaluate_name, begin_evaluation, 1);
    put_lasting_global(context, text_name, function_of<EvaluatedText>, 1);

    duk_get_global_string(context, "Function");
    duk_get_prop_literal(context, -1, "prototype");
    push_own_function(context, function_of<MakeFunction>, "Function", 1);
    take_prototype(context, -2);
    duk_dup_top(context);
    define_global(context, "Function");
    duk_put_prop_literal(context, -2, "constructor");
    duk_pop_2(context);
}

void add_ticks(duk_context* context) {
    put_lasting_global(context, tick_name, tick, 0);
    duk_get_global_literal(context, "Number");
    duk_get_prop_literal(context, -1, "prototype");
    duk_push_string(context, tick_name);
    duk_push_c_function(context, tick, 0);
    duk_def_prop(context, -3, DUK_DEFPROP_HAVE_GETTER | DUK_DEFPROP_CLEAR_EC);
    duk_pop_2(context);
}

void keep_originals(duk_context* context) {
    for (const char* name :
         {stash::error, stash::type_error, stash::syntax_error, stash::reference_error}) {
        duk_get_global_string(context, name);
        put_stash(context, name);
    }
    duk_get_global_string(context, "Date");
    duk_get_prop_string(context, -1, "prototype");
    for (const char* name : {stash::date_time, stash::date_offset, stash::date_set_year}) {
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

void put_lasting_global(duk_context* context, const char* name, duk_c_function function,
                        duk_idx_t parameters) {
    duk_push_global_object(context);
    duk_push_string(context, name);
    duk_push_c_function(context, function, parameters);
    duk_def_prop(context, -3, DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_CLEAR_WEC);
    duk_pop(context);
}

void refuse_construction(duk_context* context) {
    if (duk_is_constructor_call(context))
        raise_error(context, stash::type_error, "[object Function] not constructable");
}

void define_part(duk_context* context, const char* name, duk_idx_t further) {
    duk_push_string(context, name);
    duk_swap_top(context, -2);
    duk_def_prop(context, -3 - further,
                 DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_SET_WRITABLE | DUK_DEFPROP_CLEAR_ENUMERABLE |
                     DUK_DEFPROP_SET_CONFIGURABLE | DUK_DEFPROP_FORCE);
}

void define_global(duk_context* context, const char* name) {
    duk_push_global_object(context);
    duk_swap_top(context, -2);
    define_part(context, name);
    duk_pop(context);
}

void push_own_function(duk_context* context, duk_c_function function, const char* name,
                       int length) {
    constexpr duk_uint_t as_built_in = DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_CLEAR_WRITABLE |
                                       DUK_DEFPROP_CLEAR_ENUMERABLE | DUK_DEFPROP_SET_CONFIGURABLE |
                                       DUK_DEFPROP_FORCE;
    duk_push_c_function(context, function, DUK_VARARGS);
    duk_get_global_literal(context, "Function");
    duk_get_prop_literal(context, -1, "prototype");
    duk_set_prototype(context, -3);
    duk_pop(context);
    duk_push_literal(context, "length");
    duk_push_int(context, length);
    duk_def_prop(context, -3, as_built_in);
    duk_push_literal(context, "name");
    duk_push_string(context, name);
    duk_def_prop(context, -3, as_built_in);
}

void take_prototype(duk_context* context, duk_idx_t prototype) {
    duk_push_literal(context, "prototype");
    duk_dup(context, prototype < 0 ? prototype - 1 : prototype);
    duk_def_prop(context, -3, DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_CLEAR_WEC);
}

void push_host_function(duk_context* context, std::size_t index) {
    duk_push_c_function(context, function_of<HostCall>, DUK_VARARGS);
    duk_push_int(context, static_cast<duk_int_t>(index));
    put_key(context, -2, member_key);
}

const std::string& library_code() {
    static const std::string code =
        compiled(rewritten(adaptations), "adaptations", DUK_COMPILE_FUNCTION);
    return code;
}

void add_library(duk_context* context, const std::string& code) {
    add_ticks(context);
    keep_originals(context);
    add_evaluation(context);
    add_errors(context);
    add_dates(context);
    add_patterns(context);
    for (const char* name : creation_names) {
        duk_push_c_function(context, function_of<CreateObject>, 1);
        define_global(context, name);
    }
    add_random(context);
    add_older_library(context);
    add_collections(context);

    duk_get_global_string(context, "Duktape");
    duk_push_c_function(context, note_thrown, 1);
    duk_put_prop_string(context, -2, "errThrow");
    duk_pop(context);

    std::memcpy(duk_push_fixed_buffer(context, code.size()), code.data(), code.size());
    duk_load_function(context);
    duk_push_global_object(context);
    duk_push_c_function(context, present, 3);
    push_match_functions(context);
    duk_call_method(context, 3);
    duk_pop(context);
}

}  // namespace orvo::script
