#include "host/engine/passage.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "host/engine/engine_text.h"
#include "platform/interfaces/late_member.h"

namespace orvo::script {
namespace {

constexpr std::size_t most_elements = 1'000'000;  // of all arrays in one call
constexpr std::size_t deepest_array = 32;
constexpr double day_of_1970 = 25569;
constexpr double milliseconds_of_a_day = 24 * 60 * 60 * 1000;

// From a point on a continuous scale to an Automation date, whose fraction counts forward.
Date date_from_scale(double days) {
    const double whole = std::floor(days);
    const double time = days - whole;
    if (!(whole >= -657434 && whole <= 2958465)) raise_runtime_error(runtime_error::overflow);
    return {whole < 0 ? whole - time : whole + time};
}

// A default property without parameters hands the arguments on to the object that it answers.
bool is_callable(const Object& object) {
    const auto kind = late::try_kind_of(object, late::default_member);
    if (!kind || kind->is_method) return true;
    return kind->is_readable && (kind->parameters > 0 || kind->answers_object);
}

[[noreturn]] void raise_top(duk_context* context) {
    duk_throw_raw(context);
    std::abort();  // it does not return, but its declaration keeps that to itself
}

void push_error(duk_context* context, const char* constructor, const char* message) {
    push_stash(context, constructor);
    duk_push_string(context, message);
    duk_new(context, 1);
}

}  // namespace

void get_key(duk_context* context, duk_idx_t object, const char* key) {
    duk_get_prop_literal_raw(context, object, key, std::strlen(key));
}

void put_key(duk_context* context, duk_idx_t object, const char* key) {
    duk_put_prop_literal_raw(context, object, key, std::strlen(key));
}

void put_stash(duk_context* context, const char* name) {
    duk_push_heap_stash(context);
    duk_swap_top(context, -2);
    put_key(context, -2, name);
    duk_pop(context);
}

void push_stash(duk_context* context, const char* name) {
    duk_push_heap_stash(context);
    get_key(context, -1, name);
    duk_replace(context, -2);
}

Handle* handle_of(duk_context* context, duk_idx_t index) {
    if (!duk_is_object(context, index)) return nullptr;
    get_key(context, index, handle_key);
    auto* handle = static_cast<Handle*>(duk_get_pointer(context, -1));
    duk_pop(context);
    return handle;
}

Handle& object_at(duk_context* context, duk_idx_t index) {
    Handle* handle = handle_of(context, index);
    if (handle == nullptr || handle->kind != Handle::Kind::object)
        raise_number(context, runtime_error::object_required, "Object required");
    return *handle;
}

void raise_error(duk_context* context, const char* constructor, const char* message) {
    push_error(context, constructor, message);
    raise_top(context);
}

void raise_number(duk_context* context, std::int32_t number, const char* text) {
    push_error(context, stash::error, text);
    duk_push_string(context, text);
    define_part(context, "description");
    duk_push_int(context, result_of_number(number));
    define_part(context, "number");
    raise_top(context);
}

void Passage::raise(duk_context* context) {
    push_error(context, stash::error, "");
    push_text(context, failure_->description);
    duk_dup_top(context);
    define_part(context, "message", 1);
    define_part(context, "description");
    push_text(context, failure_->source);
    define_part(context, "source");
    duk_push_int(context, result_of_number(failure_->number));
    define_part(context, "number");
    raise_top(context);
}

void Passage::read(duk_context* context, duk_idx_t index, Variant& to) {
    index = duk_normalize_index(context, index);
    switch (duk_get_type(context, index)) {
        case DUK_TYPE_NONE:
        case DUK_TYPE_UNDEFINED:
            to = Variant();
            return;
        case DUK_TYPE_NULL:
            to = Variant::null();
            return;
        case DUK_TYPE_BOOLEAN:
            to = Variant(static_cast<bool>(duk_get_boolean(context, index)));
            return;
        case DUK_TYPE_NUMBER: {
            const double number = duk_get_number(context, index);
            const bool is_whole = number >= -2147483648.0 && number <= 2147483647.0 &&
                                  number == std::trunc(number) &&
                                  !(number == 0 && std::signbit(number));
            to = is_whole ? Variant(static_cast<std::int32_t>(number)) : Variant(number);
            return;
        }
        case DUK_TYPE_STRING: {
            duk_size_t size = 0;
            const char* bytes = duk_get_lstring(context, index, &size);
            const bool is_symbol = duk_is_symbol(context, index) != 0;
            attempt(context, [&] {
                if (is_symbol) raise_runtime_error(runtime_error::type_mismatch);
                to = Variant(from_engine({bytes, size}));
            });
            return;
        }
        default:
            read_object(context, index, to);
    }
}

void Passage::read_all(duk_context* context, duk_idx_t first, std::vector<Variant>& to) {
    const duk_idx_t top = duk_get_top(context);
    if (top <= first) return;
    attempt(context, [&] { to.resize(static_cast<std::size_t>(top - first)); });
    for (duk_idx_t i = first; i < top; ++i)
        read(context, i, to[static_cast<std::size_t>(i - first)]);
}

void Passage::read_object(duk_context* context, duk_idx_t index, Variant& to) {
    if (const Handle* handle = handle_of(context, index)) {
        attempt(context, [&] {
            if (handle->kind == Handle::Kind::enumeration)
                raise_runtime_error(runtime_error::type_mismatch);
            to = handle->kind == Handle::Kind::object ? Variant(handle->object) : handle->value;
        });
        return;
    }
    if (duk_is_array(context, index)) return read_array(context, index, to);
    if (duk_is_buffer_data(context, index)) {
        duk_size_t size = 0;
        const auto* bytes = static_cast<const char*>(duk_get_buffer_data(context, index, &size));
        attempt(context, [&] { to = Variant::bytes({bytes, size}); });
        return;
    }
    push_stash(context, stash::class_name);
    duk_dup(context, index);
    duk_call_method(context, 0);
    const std::string_view name = duk_safe_to_string(context, -1);
    if (name == "[object Date]") {
        duk_pop(context);
        return read_date(context, index, to);
    }
    if (name == "[object String]" || name == "[object Number]" || name == "[object Boolean]") {
        duk_pop(context);
        duk_dup(context, index);
        duk_to_primitive(context, -1, DUK_HINT_NONE);
        read(context, -1, to);
        duk_pop(context);
        return;
    }
    duk_pop(context);
    if (takes_texts(context)) {
        duk_dup(context, index);
        duk_to_string(context, -1);
        read(context, -1, to);
        return duk_pop(context);
    }
    attempt(context, [] {
        throw Failure(runtime_error::type_mismatch, {},
                      u"Type mismatch: an object of the script's own cannot be given away");
    });
}

void Passage::read_array(duk_context* context, duk_idx_t index, Variant& to) {
    const std::size_t count = duk_get_length(context, index);
    duk_require_stack(context, 8);
    attempt(context, [&] {
        if (arrays_.size() >= deepest_array)
            throw Failure(runtime_error::out_of_memory, {},
                          u"Out of memory: arrays in arrays too deep");
        elements_ += count;
        if (elements_ > most_elements)
            throw Failure(runtime_error::out_of_memory, {},
                          u"Out of memory: more than a million elements");
        arrays_.emplace_back(0, static_cast<std::int32_t>(count));
    });
    for (std::size_t i = 0; i < count; ++i) {
        duk_get_prop_index(context, index, static_cast<duk_uarridx_t>(i));
        // The element stays where it is, however many arrays are read meanwhile.
        Variant* element = nullptr;
        attempt(context, [&] { element = &arrays_.back().elements()[i]; });
        read(context, -1, *element);
        duk_pop(context);
    }
    attempt(context, [&] {
        to = Variant(std::move(arrays_.back()));
        arrays_.pop_back();
    });
}

void Passage::read_date(duk_context* context, duk_idx_t index, Variant& to) {
    auto ask = [&](const char* method) {
        push_stash(context, method);
        duk_dup(context, index);
        duk_call_method(context, 0);
        const double answer = duk_get_number(context, -1);
        duk_pop(context);
        return answer;
    };
    const double time = ask(stash::date_time);
    const double offset = ask(stash::date_offset) * 60 * 1000;
    attempt(context, [&] {
        if (std::isnan(time)) raise_runtime_error(runtime_error::invalid_call);
        to = Variant(date_from_scale((time - offset) / milliseconds_of_a_day + day_of_1970));
    });
}

void Passage::push(duk_context* context, const Variant& value) {
    duk_require_stack(context, 8);
    const Kind kind = value.kind();
    if (value.is_array() || kind == Kind::error || kind == Kind::unknown) {
        if (value.is_missing()) return duk_push_undefined(context);
        attempt(context, [&] { keep({.kind = Handle::Kind::value, .value = value}); });
        return push_kept(context, stash::array_prototype);
    }
    switch (kind) {
        case Kind::empty:
            return duk_push_undefined(context);
        case Kind::null:
            return duk_push_null(context);
        case Kind::text:
            return push_text(context, value.text_view());
        case Kind::object:
            attempt(context,
                    [&] { keep({.kind = Handle::Kind::object, .object = value.to<Object>()}); });
            return push_object(context);
        case Kind::boolean: {
            bool is_true = false;
            attempt(context, [&] { is_true = value.to<bool>(); });
            return duk_push_boolean(context, is_true);
        }
        case Kind::date: {
            Date date;
            attempt(context, [&] { date = value.to<Date>(); });
            return push_date(context, date);
        }
        default: {
            double number = 0;
            attempt(context, [&] { number = value.to<double>(); });
            return duk_push_number(context, number);
        }
    }
}

void Passage::push_text(duk_context* context, TextView text) {
    attempt(context, [&] { bytes_ = to_engine(text); });
    duk_push_lstring(context, bytes_.data(), bytes_.size());
}

void Passage::push_date(duk_context* context, Date date) {
    DateParts day;
    double time = 0;  // of the day, in milliseconds
    attempt(context, [&] {
        const double whole = std::trunc(date.days);
        day = parts_of({whole});
        time = std::round(std::abs(date.days - whole) * milliseconds_of_a_day);
    });
    push_stash(context, stash::date_maker);
    duk_push_int(context, day.year);
    duk_push_int(context, day.month - 1);
    duk_push_int(context, day.day);
    for (int part = 0; part < 3; ++part) duk_push_int(context, 0);
    duk_push_number(context, time);
    duk_new(context, 7);
}

void Passage::push_object(duk_context* context) {
    if (!handle_->object) {
        handle_.reset();
        return duk_push_null(context);
    }
    bool callable = false;
    attempt(context, [&] { callable = is_callable(handle_->object); });
    if (callable) {
        push_callable(context);
        push_stash(context, stash::owner_prototype);
        duk_set_prototype(context, -2);
        hand_over(context);
    } else {
        push_kept(context, stash::owner_prototype);
    }
    push_stash(context, stash::traps);
    duk_push_proxy(context, 0);
}

void Passage::push_kept(duk_context* context, const char* prototype) {
    duk_push_object(context);
    push_stash(context, prototype);
    duk_set_prototype(context, -2);
    hand_over(context);
}

void Passage::hand_over(duk_context* context) {
    // Once the property is there, writing it once more cannot fail.
    duk_push_pointer(context, nullptr);
    put_key(context, -2, handle_key);
    Handle* handle = nullptr;
    attempt(context, [&] { handle = Runtime::of(context).add(std::move(*handle_)); });
    handle->owner = duk_get_heapptr(context, -1);
    handle_.reset();
    duk_push_pointer(context, handle);
    put_key(context, -2, handle_key);
}

}  // namespace orvo::script
