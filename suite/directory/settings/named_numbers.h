#pragma once

// Settings that come as two arrays, of names and of values.

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "platform/values/described_setting.h"
#include "platform/values/variant.h"

namespace orvo::directory {

// A setting that may be given: a whole number between two others, both of them allowed.
struct NumberSetting {
    std::string_view name;
    std::int64_t lowest;
    std::int64_t highest;
    const char* about;  // sentences
};

// What was given: the setting's place in the table, and its number.
struct GivenNumber {
    std::size_t setting;
    std::int64_t number;
};

// Reads `names` and `values`, arrays of one length; a name in any case, a number as any numeric
// type or as a text of digits. Raises result code 89 with a description that names what cannot be
// used: an argument that is no array, arrays of different lengths, a name that is unknown, empty or
// given twice, a value that is no whole number between the bounds.
std::vector<GivenNumber> read_numbers(const Variant& names, const Variant& values,
                                      std::span<const NumberSetting> settings);

// `unit`: "seconds"; `otherwise`: its number where it is not given.
DescribedSetting described(const NumberSetting& setting, const std::string& unit,
                           std::int64_t otherwise);

}  // namespace orvo::directory
