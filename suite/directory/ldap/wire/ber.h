#pragma once

// The few pieces of BER that controls and extended operations are written in by hand.

#include <optional>
#include <string>
#include <string_view>

namespace orvo::directory::ldap::ber {

inline constexpr unsigned char integer = 0x02;
inline constexpr unsigned char octet_string = 0x04;
inline constexpr unsigned char sequence = 0x30;
inline constexpr unsigned char set = 0x31;

// A tag with the length of what follows, in the shortest form.
std::string header(unsigned char tag, std::size_t length);

// One element; `content` is a part of the text that it was cut from.
struct Element {
    unsigned char tag;
    std::string_view content;
};

// Cuts the first element off; nothing where there is no whole one.
std::optional<Element> take_element(std::string_view& bytes);

// The number that an integer's content stands for; nothing for a negative one and for one that does
// not fit.
std::optional<int> number_in(std::string_view content);

// The content of an integer that is not negative.
std::string content_of(int number);

}  // namespace orvo::directory::ldap::ber
