#pragma once

// How texts stand on a terminal. Texts are UTF-8.

#include <cstddef>
#include <string>
#include <string_view>

namespace orvo::admin {

// Columns that the text takes: two for each wide character, none for an accent that is combined.
std::size_t width_of(std::string_view text);

// The text in at most `width` columns, with "…" at the end where some of it is left out.
std::string cut_to(std::string_view text, std::size_t width);

}  // namespace orvo::admin
