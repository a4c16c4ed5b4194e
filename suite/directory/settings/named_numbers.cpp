#include "suite/directory/settings/named_numbers.h"

#include <cmath>
#include <optional>
#include <string>

#include "platform/values/values.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory {
namespace {

[[noreturn]] void refuse(const std::string& why) { raise_code(result_code::parameter_error, why); }

Values array_of(const Variant& argument, const std::string& what) {
    try {
        if (argument.is_array()) return argument.to<Values>();
    } catch (const Failure&) {  // more than one dimension: said below
    }
    refuse("The " + what + " of the settings are not an array.");
}

std::string name_in(const Variant& value) {
    if (!value.is_text()) refuse("The name of a setting is not a text.");
    return to_utf8(value.text_view());
}

std::optional<double> digits(TextView text) {
    if (text.empty() || text.size() > 18) return std::nullopt;
    double number = 0;
    for (const char16_t unit : text) {
        if (unit < u'0' || unit > u'9') return std::nullopt;
        number = number * 10 + (unit - u'0');
    }
    return number;
}

std::optional<double> number_in(const Variant& value) {
    switch (value.kind()) {
        case Kind::int16:
        case Kind::int32:
        case Kind::int64:
        case Kind::byte:
        case Kind::single:
        case Kind::real:
        case Kind::currency:
        case Kind::decimal:
            return value.to<double>();
        case Kind::text:
            return digits(value.text_view());
        default:
            return std::nullopt;
    }
}

std::size_t place_of(const std::string& name, std::span<const NumberSetting> settings) {
    for (std::size_t place = 0; place < settings.size(); ++place)
        if (ascii::equal_ignoring_case(settings[place].name, name)) return place;
    std::string known;
    for (const NumberSetting& setting : settings)
        known += (known.empty() ? "" : ", ") + std::string(setting.name);
    refuse("There is no setting '" + name + "'. There are: " + known + ".");
}

std::int64_t checked(const Variant& value, const NumberSetting& setting) {
    const std::optional<double> number = number_in(value);
    if (!number || std::trunc(*number) != *number ||
        *number < static_cast<double>(setting.lowest) ||
        *number > static_cast<double>(setting.highest))
        refuse("The setting '" + std::string(setting.name) + "' has to be a whole number from " +
               std::to_string(setting.lowest) + " to " + std::to_string(setting.highest) + ".");
    return static_cast<std::int64_t>(*number);
}

}  // namespace

std::vector<GivenNumber> read_numbers(const Variant& names, const Variant& values,
                                      std::span<const NumberSetting> settings) {
    const Values given_names = array_of(names, "names");
    const Values given_values = array_of(values, "values");
    if (given_names.count() != given_values.count())
        refuse("There are " + std::to_string(given_names.count()) + " names of settings and " +
               std::to_string(given_values.count()) + " values.");
    std::vector<GivenNumber> given;
    auto value = given_values.begin();
    for (const Variant& name : given_names) {
        const std::size_t place = place_of(name_in(name), settings);
        for (const GivenNumber& earlier : given)
            if (earlier.setting == place)
                refuse("The setting '" + std::string(settings[place].name) + "' is given twice.");
        given.push_back({place, checked(*value++, settings[place])});
    }
    return given;
}

DescribedSetting described(const NumberSetting& setting, const std::string& unit,
                           std::int64_t otherwise) {
    return {std::string(setting.name),
            unit + ", " + std::to_string(setting.lowest) + " to " + std::to_string(setting.highest),
            std::to_string(otherwise), setting.about};
}

}  // namespace orvo::directory
