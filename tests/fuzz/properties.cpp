#include "tests/fuzz/properties.h"

#include <algorithm>
#include <charconv>

namespace orvo::fuzz {

void require(bool holds, const char* property) {
    if (!holds) throw Broken(property);
}

void require_place(std::string_view description, std::string_view before, std::size_t last) {
    const std::size_t found = description.find(before);
    require(found != description.npos, "a refusal tells the place");
    const std::string_view rest = description.substr(found + before.size());
    std::size_t place = 0;
    std::from_chars(rest.data(), rest.data() + rest.size(), place);
    require(place >= 1 && place <= last, "the place of a refusal is in the text");
}

void require_refusal(const Failure& failure, std::int32_t number, std::string_view before,
                     std::size_t last) {
    require(failure.number == number, "a text is refused by its own failure");
    require_place(to_utf8(failure.description), before, last);
}

std::size_t line_count(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1;
}

std::pair<std::string_view, std::string_view> first_line_and_rest(std::string_view text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    return {text.substr(0, end), text.substr(std::min(end + 1, text.size()))};
}

}  // namespace orvo::fuzz
