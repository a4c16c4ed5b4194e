#include "host/admin/people/entry_values.h"

#include <cstdio>

namespace orvo::admin {
namespace {

std::string generalized_time(Date date) {
    using namespace std::chrono;
    const Date::Time time = date.time() + milliseconds(500);  // to the nearest second
    const auto day = floor<days>(time);
    const year_month_day calendar{day};
    const hh_mm_ss clock(floor<seconds>(time - day));
    char text[32];
    std::snprintf(text, sizeof text, "%04d%02u%02u%02ld%02ld%02lldZ",
                  static_cast<int>(calendar.year()), static_cast<unsigned>(calendar.month()),
                  static_cast<unsigned>(calendar.day()), clock.hours().count(),
                  clock.minutes().count(), static_cast<long long>(clock.seconds().count()));
    return text;
}

std::string text_of(const Value& value) {
    switch (value.get()->vt) {
        case abi::VT_DATE:
            return generalized_time(value.to<Date>());
        case abi::VT_BOOL:
            return value.to<bool>() ? "TRUE" : "FALSE";
        case abi::VT_ARRAY | abi::VT_UI1: {
            const auto bytes = value.to<std::vector<std::uint8_t>>();
            return {bytes.begin(), bytes.end()};
        }
        default:
            return value.to<std::string>();
    }
}

}  // namespace

std::vector<std::string> texts_of(const Value& value) {
    std::vector<std::string> texts;
    const bool is_list = value.is_array() && value.get()->vt != (abi::VT_ARRAY | abi::VT_UI1);
    for (const Value& one : is_list ? value.to<std::vector<Value>>() : std::vector{value})
        if (std::string text = text_of(one); !text.empty()) texts.push_back(std::move(text));
    return texts;
}

}  // namespace orvo::admin
