#pragma once

// Characters as bytes: the encodings of text files and streams. Any thread; nothing fails but for
// want of memory. Bytes that are no character become U+FFFD, characters that an encoding lacks "?".

#include <optional>
#include <string>
#include <string_view>

#include "platform/values/text.h"

namespace orvo {

enum class Encoding { utf8, utf16, utf16_big, latin1, windows1252, ascii };

// By a name in use, without regard to case ("utf-8", "Unicode", "iso-8859-1", …).
std::optional<Encoding> encoding_named(TextView name);

std::string encoded(Encoding encoding, TextView text);
// All of the bytes: one that is cut off in a character ends with U+FFFD.
Text decoded(Encoding encoding, std::string_view bytes);

// The byte order mark that texts of this encoding begin with; empty where there is none.
std::string_view mark_of(Encoding encoding);

// How many bytes the first character of `bytes` takes; at least 1, and never more than there are.
std::size_t first_character(Encoding encoding, std::string_view bytes);

// How many of the bytes make whole characters: the others are the beginning of one.
std::size_t whole_characters(Encoding encoding, std::string_view bytes);

}  // namespace orvo
