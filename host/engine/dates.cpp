// Dates made of the texts that people and HTTP write, and written as HTTP does.

#include <cmath>

#include "host/engine/passage.h"
#include "host/engine/written_date.h"

namespace orvo::script {
namespace {

constexpr double latest_time = 8.64e15;
constexpr double milliseconds_of_a_minute = 60 * 1000;

// The language takes years below 100 for those of 1900; this one is none of them.
constexpr int any_leap_year = 2000;

double number_of(duk_context* context, const char* method, duk_idx_t arguments) {
    push_stash(context, method);
    duk_insert(context, -2 - arguments);
    duk_call_method(context, arguments);
    const double number = duk_to_number(context, -1);
    duk_pop(context);
    return number;
}

double local_time(duk_context* context, const WrittenDate& date) {
    push_stash(context, stash::date_maker);
    duk_push_int(context, any_leap_year);
    duk_push_int(context, date.month - 1);
    for (int part : {date.day, date.hour, date.minute, date.second, date.millisecond})
        duk_push_int(context, part);
    duk_new(context, 7);
    duk_push_number(context, static_cast<double>(date.year));
    duk_push_int(context, date.month - 1);
    duk_push_int(context, date.day + date.hour / 24);
    return number_of(context, stash::date_set_year, 3);
}

// The value at `index`, a text, as a time; NaN for a text that is no date.
double time_of(duk_context* context, duk_idx_t index) {
    duk_size_t size = 0;
    const char* text = duk_get_lstring(context, index, &size);
    const std::optional<WrittenDate> date = read_date({text, size});
    if (!date) return std::nan("");
    const double time = date->zone ? date->milliseconds() - *date->zone * milliseconds_of_a_minute
                                   : local_time(context, *date);
    return std::abs(time) <= latest_time ? time : std::nan("");
}

duk_ret_t parse(duk_context* context) {
    refuse_construction(context);
    duk_set_top(context, 1);
    duk_to_string(context, 0);
    duk_push_number(context, time_of(context, 0));
    return 1;
}

duk_ret_t make_date(duk_context* context) {
    const duk_idx_t count = duk_get_top(context);
    push_stash(context, stash::date_maker);
    if (!duk_is_constructor_call(context)) {
        duk_call(context, 0);
        return 1;
    }
    duk_insert(context, 0);
    if (count == 1) {
        duk_to_primitive(context, 1, DUK_HINT_NONE);
        if (duk_is_string(context, 1)) {
            duk_push_number(context, time_of(context, 1));
            duk_replace(context, 1);
        }
    }
    duk_new(context, count);
    return 1;
}

duk_ret_t write_as_http(duk_context* context) {
    refuse_construction(context);
    duk_push_this(context);
    const double time = number_of(context, stash::date_time, 0);
    if (std::isnan(time))
        duk_push_literal(context, "Invalid Date");
    else
        duk_push_string(context, http_date(time).text);
    return 1;
}

// A date of the script's is one of Automation's wherever it is given to an object.
duk_ret_t as_variant_date(duk_context* context) {
    refuse_construction(context);
    push_stash(context, stash::date_maker);
    duk_push_this(context);
    const double time = number_of(context, stash::date_time, 0);
    if (std::isnan(time))
        raise_number(context, runtime_error::invalid_call,
                     "Invalid procedure call or argument: this Date is no date");
    duk_push_number(context, time);
    duk_new(context, 1);
    return 1;
}

}  // namespace

void add_dates(duk_context* context) {
    push_stash(context, stash::date_maker);
    push_own_function(context, make_date, "Date", 7);
    for (const char* name : {"UTC", "now"}) {
        duk_get_prop_string(context, -2, name);
        define_part(context, name);
    }
    push_own_function(context, parse, "parse", 1);
    define_part(context, "parse");

    duk_get_prop_literal(context, -2, "prototype");
    push_own_function(context, write_as_http, "toUTCString", 0);
    duk_dup_top(context);
    define_part(context, "toUTCString", 1);
    define_part(context, "toGMTString");
    push_own_function(context, as_variant_date, "getVarDate", 0);
    define_part(context, "getVarDate");

    duk_dup(context, -2);
    define_part(context, "constructor");
    duk_swap_top(context, -2);
    take_prototype(context, -2);
    define_global(context, "Date");
    duk_pop_2(context);
}

}  // namespace orvo::script
