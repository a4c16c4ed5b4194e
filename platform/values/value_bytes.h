#pragma once

// Values as bytes, for what is kept outside of the process. Bytes read back are taken as they come
// from elsewhere: anything that the writing functions do not write is refused, so that one value
// has one form. Any thread; failures are raised as Failure.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/values/variant.h"

namespace orvo {

// Arrays within arrays, at most.
inline constexpr int deepest_value = 32;

// Appends the value exactly as it is: its type, the bounds of arrays, the bytes of texts. Raises 5
// for an object that is not the empty one, wherever in the value it is, for arrays deeper than
// `deepest_value`, and 13 for an array with more than one dimension.
void append_value(std::string& bytes, const Variant& value);
// Takes one from the front of `bytes`; nothing where none stands there, and then what is left of
// `bytes` has no meaning.
std::optional<Variant> try_take_value(std::string_view& bytes);

// The same for a number, seven bits to a byte, and for bytes behind their number.
void append_number(std::string& bytes, std::uint64_t number);
std::optional<std::uint64_t> try_take_number(std::string_view& bytes);
void append_block(std::string& bytes, std::string_view block);
std::optional<std::string_view> try_take_block(std::string_view& bytes);

}  // namespace orvo
