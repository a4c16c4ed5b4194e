#include "platform/values/guid.h"

#include <charconv>

namespace orvo {

using abi::GUID;

namespace {

constexpr std::string_view form = "{00000000-0000-0000-0000-000000000000}";

void append(std::string& text, std::uint64_t number, int digits) {
    constexpr char letters[] = "0123456789ABCDEF";
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
        text += letters[number >> shift & 0xF];
}

template <class T>
bool read(std::string_view text, std::size_t from, std::size_t digits, T& number) {
    const char* begin = text.data() + from;
    auto [end, error] = std::from_chars(begin, begin + digits, number, 16);
    return error == std::errc() && end == begin + digits;
}

}  // namespace

std::string braced(const GUID& guid) {
    std::string text = "{";
    append(text, guid.Data1, 8);
    text += '-';
    append(text, guid.Data2, 4);
    text += '-';
    append(text, guid.Data3, 4);
    for (int i = 0; i < 8; ++i) {
        if (i == 0 || i == 2) text += '-';
        append(text, guid.Data4[i], 2);
    }
    return text += '}';
}

Text guid_text(const GUID& guid) {
    const std::string text = braced(guid);
    return from_utf8(std::string_view(text).substr(1, text.size() - 2));
}

bool read_braced(std::string_view text, GUID& guid) {
    if (text.size() != form.size()) return false;
    for (std::size_t i = 0; i < form.size(); ++i)
        if (form[i] != '0' && text[i] != form[i]) return false;
    GUID result;
    if (!read(text, 1, 8, result.Data1) || !read(text, 10, 4, result.Data2) ||
        !read(text, 15, 4, result.Data3))
        return false;
    for (std::size_t i = 0; i < 8; ++i)
        if (!read(text, (i < 2 ? 20 : 21) + 2 * i, 2, result.Data4[i])) return false;
    guid = result;
    return true;
}

}  // namespace orvo
