#include "suite/directory/schema/attribute_values.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

#include "platform/values/failure.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/account_state.h"
#include "suite/directory/policy/result_codes.h"
#include "suite/directory/schema/generalized_time.h"

namespace orvo::directory {
namespace {

constexpr std::int64_t currency_scale = 10000;

Variant decode_integer(std::string_view value) {
    std::int64_t number = 0;
    const char* end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end) return from_utf8(value);
    if (number >= std::numeric_limits<std::int32_t>::min() &&
        number <= std::numeric_limits<std::int32_t>::max())
        return static_cast<std::int32_t>(number);
    constexpr std::int64_t limit = std::numeric_limits<std::int64_t>::max() / currency_scale;
    if (number >= -limit && number <= limit) return Currency{number * currency_scale};
    return from_utf8(value);
}

// Digits without leading zeros, of any length; nothing for other texts.
std::optional<std::string> try_integer(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    if (text.empty()) return std::nullopt;
    for (char c : text)
        if (!ascii::is_digit(c)) return std::nullopt;
    const std::size_t first = text.find_first_not_of('0');
    if (first == std::string_view::npos) return "0";
    return (negative ? "-" : "") + std::string(text.substr(first));
}

std::string encode_integer(const Variant& value) {
    if (value.is_text()) {
        if (std::optional<std::string> integer = try_integer(to_utf8(trimmed(value.text_view()))))
            return *integer;
    }
    if (value.kind() == Kind::boolean) return value.to<bool>() ? "1" : "0";
    if (value.kind() == Kind::currency) {
        const std::int64_t units = value.to<Currency>().units;
        if (units % currency_scale != 0) raise_runtime_error(runtime_error::type_mismatch);
        return std::to_string(units / currency_scale);
    }
    const bool may_have_fraction = value.is_text() || value.is_object() ||
                                   value.kind() == Kind::single || value.kind() == Kind::real ||
                                   value.kind() == Kind::decimal || value.kind() == Kind::date;
    if (may_have_fraction) {
        const double number = value.to<double>();
        if (number != std::trunc(number)) raise_runtime_error(runtime_error::type_mismatch);
    }
    return std::to_string(value.to<std::int64_t>());
}

std::string encode_time(TimeForm form, const Variant& value) {
    if (value.is_text()) {
        std::string text = to_utf8(value.text_view());
        if (const std::optional<Date> date = try_date(text))
            return form == TimeForm::whole_seconds ? text : generalized_time(*date, form);
        // Of what is locked for good: a time before all dates of Automation.
        if (text == account::locked_for_good) return text;
    }
    return generalized_time(value.to<Date>(), form);
}

std::string encode_value(Syntax syntax, TimeForm times, const Variant& value) {
    if (std::optional<std::string> bytes = value.try_bytes()) return *bytes;
    switch (syntax) {
        case Syntax::integer:
            return encode_integer(value);
        case Syntax::boolean:
            return value.to<bool>() ? "TRUE" : "FALSE";
        case Syntax::time:
            return encode_time(times, value);
        case Syntax::text:
        case Syntax::bytes:
            break;
    }
    const Text text = value.to<Text>();
    if (!is_well_formed(text))
        throw directory_failure(result_code::invalid_syntax, {},
                                "A text cannot hold half of a surrogate pair.");
    return to_utf8(text);
}

// The text of bytes; nothing where they are not UTF-8.
std::optional<Text> try_text(std::string_view bytes) {
    Text text = from_utf8(bytes);
    if (to_utf8(text) != bytes) return std::nullopt;
    return text;
}

void append(std::vector<std::string>& values, Syntax syntax, TimeForm times, const Variant& value) {
    if (value.is_empty()) return;
    if (value.is_null()) raise_runtime_error(runtime_error::invalid_use_of_null);
    if (value.is_text() && value.text_view().empty()) return;
    std::string encoded = encode_value(syntax, times, value);
    if (!encoded.empty()) values.push_back(std::move(encoded));
}

Text taken_by(Syntax syntax) {
    switch (syntax) {
        case Syntax::integer:
            return u"whole numbers";
        case Syntax::boolean:
            return u"true or false";
        case Syntax::time:
            return u"times";
        case Syntax::bytes:
        case Syntax::text:
            break;
    }
    return u"texts";
}

}  // namespace

Variant decode_value(Syntax syntax, std::string_view value) {
    switch (syntax) {
        case Syntax::integer:
            return decode_integer(value);
        case Syntax::boolean:
            if (ascii::equal_ignoring_case(value, "TRUE")) return true;
            if (ascii::equal_ignoring_case(value, "FALSE")) return false;
            break;
        case Syntax::time:
            if (std::optional<Date> date = try_date(value)) return *date;
            break;
        case Syntax::bytes:
            return Variant::bytes(value);
        case Syntax::text:
            break;
    }
    return from_utf8(value);
}

Values decode_values(const AttributeType* type, std::span<const std::string> values) {
    if (values.empty()) return {Variant()};
    Values result(0, static_cast<std::int32_t>(values.size()));
    std::int32_t index = 0;
    for (const std::string& value : values) {
        Variant& element = result[index++];
        if (type) {
            element = decode_value(type->syntax, value);
        } else if (std::optional<Text> text = try_text(value)) {
            element = *text;
        } else {
            element = Variant::bytes(value);
        }
    }
    return result;
}

std::vector<std::string> encode_values(const AttributeType* type, const Variant& value) {
    const Syntax syntax = type ? type->syntax : Syntax::text;
    const TimeForm times = type ? type->time_form : TimeForm::whole_seconds;
    std::vector<std::string> result;
    try {
        if (!value.is_array() || value.try_bytes()) {
            append(result, syntax, times, value);
            return result;
        }
        for (const Variant& element : value.to<Values>()) append(result, syntax, times, element);
    } catch (const Failure& failure) {  // of many attributes, a caller has to learn which it is
        if (!type || failure.number != runtime_error::type_mismatch) throw;
        throw Failure(
            failure.number, failure.source,
            failure.description + u": " + from_utf8(type->name()) + u" takes " + taken_by(syntax));
    }
    return result;
}

}  // namespace orvo::directory
