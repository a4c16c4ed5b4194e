// What scripts see of Automation objects: proxies whose traps make late-bound calls.

#include "host/engine/call_site.h"
#include "host/engine/engine_text.h"
#include "host/engine/passage.h"
#include "platform/interfaces/late_member.h"

namespace orvo::script {
namespace {

using late::MemberId;
using late::MemberKind;

// A call of an object's member, with what it is made of and what it gives.
class MemberCall : public Passage {
protected:
    void find(duk_context* context, duk_idx_t object, duk_idx_t name) {
        object_ = &object_at(context, object);
        duk_size_t size = 0;
        const char* bytes = duk_get_lstring(context, name, &size);
        if (bytes == nullptr || duk_is_symbol(context, name)) return;
        Runtime::of(context).check(context);
        attempt(context, [&] { found_ = late::try_member(target(), from_engine({bytes, size})); });
    }
    void require_found(duk_context* context) {
        attempt(context, [&] {
            if (!found_) raise_runtime_error(runtime_error::member_not_found);
        });
    }
    void call(duk_context* context, MemberId member) {
        Runtime::of(context).check(context);
        attempt(context, [&] {
            const Object held = target();
            result_ = late::call_member(held, member, arguments_);
        });
        Runtime::of(context).check(context);
        push(context, result_);
    }
    // Reads a member without arguments and pushes its value, where it can be read so.
    bool try_read(duk_context* context, MemberId member) {
        Runtime::of(context).check(context);
        bool is_read = false;
        attempt(context, [&] {
            const Object held = target();
            std::optional<Variant> value = late::try_get_member(held, member);
            is_read = value.has_value();
            if (is_read) result_ = std::move(*value);
        });
        Runtime::of(context).check(context);
        if (is_read) push(context, result_);
        return is_read;
    }
    void put(duk_context* context, MemberId member) {
        Runtime::of(context).check(context);
        attempt(context, [&] {
            const Object held = target();
            late::put_member(held, member, result_, arguments_);
        });
        Runtime::of(context).check(context);
    }
    const Object& target() const { return object_->object; }

    Handle* object_ = nullptr;
    std::optional<MemberId> found_;
    std::vector<Variant> arguments_;
    Variant result_;
};

// A member that is called: "o.Method" before "(...)".
class BoundMember : public MemberCall {
public:
    duk_ret_t run(duk_context* context) {
        read_all(context, 0, arguments_);
        duk_push_current_function(context);
        return finish(context);
    }

protected:
    bool takes_texts(duk_context* context) override {
        const TakesTexts& asked = Runtime::of(context).options().takes_texts;
        if (!asked) return false;
        duk_push_current_function(context);
        get_key(context, -1, target_key);
        const Handle& handle = object_at(context, -1);
        get_key(context, -2, member_key);
        const MemberId member = duk_get_int(context, -1);
        duk_pop_3(context);
        bool is_taken = false;
        attempt(context, [&] { is_taken = asked(handle.object, member); });
        return is_taken;
    }
    duk_ret_t finish(duk_context* context) {
        get_key(context, -1, target_key);
        object_ = &object_at(context, -1);
        get_key(context, -2, member_key);
        call(context, duk_get_int(context, -1));
        return 1;
    }
};

// The value of a member that was not called: "o.Method + 1".
class BoundMemberValue : public BoundMember {
public:
    duk_ret_t run(duk_context* context) {
        duk_push_this(context);
        return finish(context);
    }
};

class GetTrap : public MemberCall {
public:
    duk_ret_t run(duk_context* context) {
        const bool is_lasting = object_at(context, 0).is_lasting;
        if (is_lasting && is_known_method(context)) return 1;
        find(context, 0, 1);
        if (!found_) return unknown_member(context);
        attempt(context, [&] { kind_ = late::try_kind_of(target(), *found_); });
        if (kind_ ? is_value(context) : is_read(context)) return 1;
        duk_push_c_function(context, function_of<BoundMember>, DUK_VARARGS);
        push_stash(context, stash::member_prototype);
        duk_set_prototype(context, -2);
        duk_dup(context, 0);
        put_key(context, -2, target_key);
        duk_push_int(context, *found_);
        put_key(context, -2, member_key);
        if (is_lasting && kind_ && kind_->is_method) keep_method(context);
        return 1;
    }

private:
    // The functions of an object that lasts as long as the script are made once. Others would keep
    // their object from being released as soon as the script lets go of it.
    bool is_known_method(duk_context* context) {
        get_key(context, 0, methods_key);
        if (duk_is_undefined(context, -1)) return false;
        duk_dup(context, 1);
        duk_get_prop(context, -2);
        return duk_is_function(context, -1) != 0;
    }
    void keep_method(duk_context* context) {
        get_key(context, 0, methods_key);
        if (duk_is_undefined(context, -1)) {
            duk_pop(context);
            duk_push_bare_object(context);
            duk_dup_top(context);
            put_key(context, 0, methods_key);
        }
        duk_dup(context, 1);
        duk_dup(context, -3);
        duk_put_prop(context, -3);
        duk_pop(context);
    }

    // Of a member whose kind is known: pushes what it is read as, unless it is a function.
    bool is_value(duk_context* context) {
        const bool is_called = kind_->is_method || kind_->is_readable;
        // Asking for the call costs as much as the reading: properties of the house's without
        // parameters are spared it, and not called.
        const bool is_plain = kind_->parameters == 0 && !kind_->is_foreign;
        const bool is_read =
            kind_->is_readable && kind_->required == 0 && (is_plain || !is_called_at_once(context));
        if (is_called && !is_read) return false;
        call(context, *found_);
        return true;
    }

    // Of any other member: the object itself decides whether it can be read, and is not asked where
    // the script calls it. Pushes what it is read as.
    bool is_read(duk_context* context) {
        if (is_called_at_once(context)) return false;
        return try_read(context, *found_);
    }

    // The language itself asks for these two where an object stands for a value.
    duk_ret_t unknown_member(duk_context* context) {
        if (duk_is_symbol(context, 1)) {
            duk_push_undefined(context);
            return 1;
        }
        const std::string_view name = duk_get_string(context, 1);
        if (name != "valueOf" && name != "toString") require_found(context);
        push_stash(context, stash::traps);
        duk_get_prop_string(context, -1, name == "valueOf" ? "default" : "text");
        return 1;
    }

    std::optional<MemberKind> kind_;
};

class SetTrap : public MemberCall {
public:
    duk_ret_t run(duk_context* context) {
        find(context, 0, 1);
        require_found(context);
        read(context, 2, result_);
        Runtime::of(context).check(context);
        attempt(context, [&] { put(); });
        Runtime::of(context).check(context);
        duk_push_true(context);
        return 1;
    }

private:
    void put() const {
        const Object held = target();
        try {
            late::put_member(held, *found_, result_);
        } catch (const Failure& failure) {
            if (failure.number != runtime_error::member_not_found) throw;
            const auto kind = late::try_kind_of(held, *found_);
            if (!kind || !kind->is_readable || kind->is_writable) throw;
            throw Failure(failure.number, failure.source,
                          failure.description + u": this property can only be read");
        }
    }
};

class HasTrap : public MemberCall {
public:
    duk_ret_t run(duk_context* context) {
        find(context, 0, 1);
        duk_push_boolean(context, found_.has_value());
        return 1;
    }
};

duk_ret_t refuse_deletion(duk_context* context) {
    raise_number(context, 445, "Object doesn't support this action");
}

duk_ret_t no_keys(duk_context* context) {
    duk_push_array(context);
    return 1;
}

// valueOf of an object: its default value, or itself where it has none.
class DefaultValue : public MemberCall {
public:
    duk_ret_t run(duk_context* context) {
        duk_push_this(context);
        object_ = &object_at(context, -1);
        attempt(context, [&] { kind_ = late::try_kind_of(target(), late::default_member); });
        if (!kind_)
            try_read(context, late::default_member);
        else if ((kind_->is_readable || kind_->is_method) && kind_->required == 0)
            call(context, late::default_member);
        return 1;
    }

private:
    std::optional<MemberKind> kind_;
};

duk_ret_t object_text(duk_context* context) {
    duk_push_this(context);
    duk_get_prop_string(context, -1, "valueOf");
    duk_dup(context, -2);
    duk_call_method(context, 0);
    if (duk_is_object(context, -1)) duk_push_string(context, "[object]");
    duk_to_string(context, -1);
    return 1;
}

// The object itself called: its default member, "Session(key)".
class DefaultCall : public MemberCall {
public:
    duk_ret_t run(duk_context* context) {
        read_all(context, 0, arguments_);
        duk_push_current_function(context);
        object_ = &object_at(context, -1);
        call(context, late::default_member);
        return 1;
    }
};

// What an assignment to a call is made to: see host/engine/rewrite.h.
class MakeSlot : public MemberCall {
public:
    duk_ret_t run(duk_context* context) {  // callee, name or null, arguments
        duk_set_top(context, 3);
        const bool has_name = !duk_is_null_or_undefined(context, 1);
        duk_push_object(context);
        push_stash(context, stash::slot_prototype);
        duk_set_prototype(context, -2);
        const Handle* handle = handle_of(context, 0);
        if (handle != nullptr && handle->kind == Handle::Kind::object) {
            duk_dup(context, 0);
            put_key(context, 3, target_key);
            if (has_name) {
                duk_to_string(context, 1);
                find(context, 0, 1);
                require_found(context);
            }
            duk_push_int(context, has_name ? *found_ : late::default_member);
            put_key(context, 3, member_key);
        } else {
            const bool is_member = !has_name && duk_is_object(context, 0) &&
                                   duk_has_prop_string(context, 0, member_key);
            if (!is_member)
                raise_error(context, stash::reference_error,
                            "only a call of an Automation object can be assigned to");
            for (const char* key : {target_key, member_key}) {
                get_key(context, 0, key);
                put_key(context, 3, key);
            }
        }
        duk_dup(context, 2);
        put_key(context, 3, arguments_key);
        return 1;
    }
};

class SlotAccess : public MemberCall {
protected:
    MemberId read_slot(duk_context* context) {
        duk_push_this(context);
        const duk_idx_t self = duk_get_top_index(context);
        get_key(context, self, arguments_key);
        const auto count = static_cast<duk_idx_t>(duk_get_length(context, -1));
        duk_require_stack(context, count + 8);
        const duk_idx_t list = duk_get_top_index(context);
        for (duk_idx_t i = 0; i < count; ++i)
            duk_get_prop_index(context, list, static_cast<duk_uarridx_t>(i));
        read_all(context, list + 1, arguments_);
        duk_set_top(context, self + 1);
        get_key(context, self, target_key);
        object_ = &object_at(context, -1);
        get_key(context, self, member_key);
        return duk_get_int(context, -1);
    }
};

class ReadSlot : public SlotAccess {
public:
    duk_ret_t run(duk_context* context) {
        call(context, read_slot(context));
        return 1;
    }
};

class WriteSlot : public SlotAccess {
public:
    duk_ret_t run(duk_context* context) {
        read(context, 0, result_);
        put(context, read_slot(context));
        duk_push_undefined(context);
        return 1;
    }
};

duk_ret_t give_up(duk_context* context) {
    get_key(context, 0, handle_key);
    auto* handle = static_cast<Handle*>(duk_get_pointer(context, -1));
    // An object that only inherits the handle does not end it.
    if (handle == nullptr || handle->owner != duk_get_heapptr(context, 0)) return 0;
    duk_push_pointer(context, nullptr);
    put_key(context, 0, handle_key);
    Runtime::of(context).remove(handle);
    return 0;
}

void put_function(duk_context* context, const char* name, duk_c_function function,
                  duk_idx_t parameters) {
    duk_push_c_function(context, function, parameters);
    duk_put_prop_string(context, -2, name);
}

}  // namespace

void push_callable(duk_context* context) {
    duk_push_c_function(context, function_of<DefaultCall>, DUK_VARARGS);
}

void add_members(duk_context* context) {
    duk_push_object(context);
    duk_push_c_function(context, give_up, 2);
    duk_set_finalizer(context, -2);
    put_stash(context, stash::owner_prototype);

    duk_push_object(context);
    put_function(context, "get", function_of<GetTrap>, 3);
    put_function(context, "set", function_of<SetTrap>, 4);
    put_function(context, "has", function_of<HasTrap>, 2);
    put_function(context, "deleteProperty", refuse_deletion, 2);
    put_function(context, "ownKeys", no_keys, 1);
    put_function(context, "default", function_of<DefaultValue>, 0);
    put_function(context, "text", object_text, 0);
    put_stash(context, stash::traps);

    duk_push_object(context);
    duk_get_global_string(context, "Function");
    duk_get_prop_string(context, -1, "prototype");
    duk_remove(context, -2);
    duk_set_prototype(context, -2);
    put_function(context, "valueOf", function_of<BoundMemberValue>, 0);
    put_function(context, "toString", function_of<BoundMemberValue>, 0);
    put_stash(context, stash::member_prototype);

    duk_push_object(context);
    duk_push_string(context, "value");
    duk_push_c_function(context, function_of<ReadSlot>, 0);
    duk_push_c_function(context, function_of<WriteSlot>, 1);
    duk_def_prop(context, -4, DUK_DEFPROP_HAVE_GETTER | DUK_DEFPROP_HAVE_SETTER);
    put_stash(context, stash::slot_prototype);

    put_lasting_global(context, "__orvo_slot", function_of<MakeSlot>, 3);
}

}  // namespace orvo::script
