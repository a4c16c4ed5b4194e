#include "suite/directory/ldap/wire/ber.h"

namespace orvo::directory::ldap::ber {
namespace {

// Of the digits of a length; longer messages are refused before they come here.
constexpr std::size_t most_digits = 4;

}  // namespace

std::string header(unsigned char tag, std::size_t length) {
    std::string bytes(1, static_cast<char>(tag));
    if (length < 0x80) return bytes + static_cast<char>(length);
    std::string digits;
    for (; length > 0; length >>= 8)
        digits.insert(digits.begin(), static_cast<char>(length & 0xFF));
    return bytes + static_cast<char>(0x80 | digits.size()) + digits;
}

std::optional<Element> take_element(std::string_view& bytes) {
    if (bytes.size() < 2) return std::nullopt;
    const auto tag = static_cast<unsigned char>(bytes[0]);
    std::size_t length = static_cast<unsigned char>(bytes[1]);
    bytes.remove_prefix(2);
    if (length >= 0x80) {
        std::size_t digits = length - 0x80;
        if (digits < 1 || digits > most_digits || bytes.size() < digits) return std::nullopt;
        for (length = 0; digits > 0; --digits) {
            length = length * 256 + static_cast<unsigned char>(bytes[0]);
            bytes.remove_prefix(1);
        }
    }
    if (bytes.size() < length) return std::nullopt;
    const Element element{tag, bytes.substr(0, length)};
    bytes.remove_prefix(length);
    return element;
}

std::optional<int> number_in(std::string_view content) {
    if (content.empty() || content.size() > 4 || (content[0] & 0x80)) return std::nullopt;
    int number = 0;
    for (char byte : content) number = number * 256 + static_cast<unsigned char>(byte);
    return number;
}

std::string content_of(int number) {
    std::string digits;
    do {
        digits.insert(digits.begin(), static_cast<char>(number & 0xFF));
        number >>= 8;
    } while (number > 0);
    // The first bit is the sign's.
    if (digits[0] & 0x80) digits.insert(digits.begin(), '\0');
    return digits;
}

}  // namespace orvo::directory::ldap::ber
