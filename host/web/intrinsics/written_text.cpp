#include "host/web/intrinsics/written_text.h"

#include <array>
#include <charconv>
#include <cmath>

#include "platform/interfaces/late_call.h"
#include "platform/values/failure.h"
#include "platform/values/values.h"

namespace orvo::web {
namespace {

// Values in values: default values that are objects, arrays in arrays.
constexpr int deepest_value = 16;

// The shortest digits that mean the number, with an exponent below 1e-6 and from 1e21 on.
std::string number_text(double number) {
    if (std::isnan(number)) return "NaN";
    if (std::isinf(number)) return number < 0 ? "-Infinity" : "Infinity";
    if (number == 0) return "0";
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(number),
                                   std::chars_format::scientific)
                         .ptr;
    const std::string_view text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    const auto mark = text.find('e');
    int exponent = 0;
    const char* first = text.data() + mark + (text[mark + 1] == '+' ? 2 : 1);
    std::from_chars(first, end, exponent);
    std::string digits(text.substr(0, mark));
    if (digits.size() > 1) digits.erase(1, 1);
    const int count = static_cast<int>(digits.size());
    if (exponent >= 21 || exponent < -6) {
        if (count > 1) digits.insert(1, 1, '.');
        digits += (exponent < 0 ? "e-" : "e+") + std::to_string(std::abs(exponent));
    } else if (exponent < 0) {
        digits.insert(0, "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0'));
    } else if (exponent + 1 < count) {
        digits.insert(static_cast<std::size_t>(exponent + 1), 1, '.');
    } else {
        digits.append(static_cast<std::size_t>(exponent + 1 - count), '0');
    }
    return number < 0 ? '-' + digits : digits;
}

Text text_of(const Variant& value, int depth) {
    if (value.is_empty() || value.is_null()) return {};
    if (value.is_text()) return Text(value.text_view());
    if (value.kind() == Kind::real) return from_utf8(number_text(value.to<double>()));
    if (depth == deepest_value) raise_runtime_error(runtime_error::type_mismatch);
    if (value.is_object()) {
        const Object object = value.to<Object>();
        return object ? text_of(late::value_of(object), depth + 1) : Text();
    }
    if (!value.is_array() || value.try_bytes()) return value.to<Text>();
    Text all;
    bool is_first = true;
    for (const Variant& element : value.to<Values>()) {
        if (!std::exchange(is_first, false)) all += u',';
        all += text_of(element, depth + 1);
    }
    return all;
}

}  // namespace

Text written_text(const Variant& value) { return text_of(value, 0); }

}  // namespace orvo::web
