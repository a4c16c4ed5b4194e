// VBArray and Enumerator: how scripts read arrays and walk through collections.

#include <span>

#include "host/engine/passage.h"
#include "platform/interfaces/enumerator.h"
#include "platform/values/array_shape.h"

namespace orvo::script {
namespace {

constexpr std::int32_t enumerator_expected = 5015;
constexpr std::int32_t array_expected = 5013;

// What the methods of VBArray share: the array that they are called on.
class ArrayMethod : public Passage {
protected:
    const Variant& array(duk_context* context) {
        duk_push_this(context);
        return array_at(context, -1);
    }
    static const Variant& array_at(duk_context* context, duk_idx_t index) {
        const Handle* handle = handle_of(context, index);
        if (handle == nullptr || handle->kind != Handle::Kind::value || !handle->value.is_array())
            raise_number(context, array_expected, "VBArray expected");
        return handle->value;
    }
};

// new VBArray(array) is the array itself: its methods are there already.
class MakeArray : public ArrayMethod {
public:
    duk_ret_t run(duk_context* context) {
        array_at(context, 0);
        duk_dup(context, 0);
        return 1;
    }
};

class ArrayDimensions : public ArrayMethod {
public:
    duk_ret_t run(duk_context* context) {
        const Variant& all = array(context);
        std::size_t count = 0;
        attempt(context, [&] { count = bounds_of(all).size(); });
        duk_push_number(context, static_cast<double>(count));
        return 1;
    }
};

template <std::int32_t ArrayBounds::*bound>
class ArrayBound : public ArrayMethod {
public:
    duk_ret_t run(duk_context* context) {
        const int dimension = duk_is_undefined(context, 0) ? 1 : duk_to_int(context, 0);
        const Variant& all = array(context);
        std::int32_t found = 0;
        attempt(context, [&] {
            const std::vector<ArrayBounds> bounds = bounds_of(all);
            if (dimension < 1 || static_cast<std::size_t>(dimension) > bounds.size())
                raise_runtime_error(runtime_error::subscript_out_of_range);
            found = bounds[static_cast<std::size_t>(dimension - 1)].*bound;
        });
        duk_push_int(context, found);
        return 1;
    }
};

class ArrayItem : public ArrayMethod {
public:
    duk_ret_t run(duk_context* context) {
        read_all(context, 0, arguments_);
        const Variant& all = array(context);
        attempt(context, [&] {
            std::vector<std::int32_t> indices;
            for (const Variant& argument : arguments_)
                indices.push_back(argument.to<std::int32_t>());
            item_ = element(all, indices);
        });
        push(context, item_);
        return 1;
    }

private:
    std::vector<Variant> arguments_;
    Variant item_;
};

// All elements, the first index running fastest.
class ArrayElements : public ArrayMethod {
public:
    duk_ret_t run(duk_context* context) {
        const Variant& all = array(context);
        std::size_t count = 0;
        attempt(context, [&] { count = element_count(all); });
        duk_push_array(context);
        for (std::size_t i = 0; i < count; ++i) {
            attempt(context, [&] { item_ = element_at(all, i); });
            push(context, item_);
            duk_put_prop_index(context, -2, static_cast<duk_uarridx_t>(i));
        }
        return 1;
    }

private:
    Variant item_;
};

// new Enumerator(collection): an Automation collection, an array of either kind, or nothing.
class MakeEnumerator : public Passage {
public:
    duk_ret_t run(duk_context* context) {
        Runtime::of(context).check(context);
        const bool has_items = !duk_is_null_or_undefined(context, 0);
        if (has_items) read(context, 0, collection_);
        attempt(context, [&] {
            std::vector<Variant> items;
            if (collection_.is_array()) {
                items.resize(element_count(collection_));
                for (std::size_t i = 0; i < items.size(); ++i)
                    items[i] = element_at(collection_, i);
            } else if (collection_.is_object()) {
                items = late::items_of(collection_.to<Object>());
            } else if (has_items) {
                throw Failure(enumerator_expected, {}, u"Enumerator: object is not a collection");
            }
            keep({.kind = Handle::Kind::enumeration, .items = std::move(items)});
        });
        push_kept(context, stash::enumerator_prototype);
        return 1;
    }

private:
    Variant collection_;
};

Handle& enumeration_of(duk_context* context) {
    duk_push_this(context);
    Handle* handle = handle_of(context, -1);
    if (handle == nullptr || handle->kind != Handle::Kind::enumeration)
        raise_number(context, enumerator_expected, "Enumerator expected");
    return *handle;
}

duk_ret_t at_end(duk_context* context) {
    const Handle& all = enumeration_of(context);
    duk_push_boolean(context, all.next >= all.items.size());
    return 1;
}

duk_ret_t move_first(duk_context* context) {
    enumeration_of(context).next = 0;
    return 0;
}

duk_ret_t move_next(duk_context* context) {
    Handle& all = enumeration_of(context);
    if (all.next < all.items.size()) ++all.next;
    return 0;
}

class CurrentItem : public Passage {
public:
    duk_ret_t run(duk_context* context) {
        const Handle& all = enumeration_of(context);
        if (all.next >= all.items.size()) return 0;
        push(context, all.items[all.next]);
        return 1;
    }
};

struct Method {
    const char* name;
    duk_c_function function;
    duk_idx_t parameters;
};

// A prototype whose objects stand for something, and the global function that makes them.
void add_class(duk_context* context, const char* name, duk_c_function make, const char* prototype,
               std::span<const Method> methods) {
    duk_push_c_function(context, make, 1);
    duk_push_object(context);
    push_stash(context, stash::owner_prototype);
    duk_set_prototype(context, -2);
    for (const Method& method : methods) {
        duk_push_c_function(context, method.function, method.parameters);
        duk_put_prop_string(context, -2, method.name);
    }
    duk_dup_top(context);
    put_stash(context, prototype);
    duk_put_prop_string(context, -2, "prototype");
    define_global(context, name);
}

}  // namespace

void add_collections(duk_context* context) {
    static constexpr Method array_methods[] = {
        {"dimensions", function_of<ArrayDimensions>, 0},
        {"lbound", function_of<ArrayBound<&ArrayBounds::lower>>, 1},
        {"ubound", function_of<ArrayBound<&ArrayBounds::upper>>, 1},
        {"getItem", function_of<ArrayItem>, DUK_VARARGS},
        {"toArray", function_of<ArrayElements>, 0},
    };
    add_class(context, "VBArray", function_of<MakeArray>, stash::array_prototype, array_methods);
    static constexpr Method enumerator_methods[] = {
        {"atEnd", at_end, 0},
        {"item", function_of<CurrentItem>, 0},
        {"moveFirst", move_first, 0},
        {"moveNext", move_next, 0},
    };
    add_class(context, "Enumerator", function_of<MakeEnumerator>, stash::enumerator_prototype,
              enumerator_methods);
}

}  // namespace orvo::script
