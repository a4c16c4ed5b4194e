#include "host/admin/common/texts.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include "host/admin/common/component_failure.h"
#include "platform/values/failure.h"
#include "suite/directory/names/ascii.h"

namespace orvo::admin {

std::string text_of_file(const std::filesystem::path& file) {
    errno = 0;
    std::ifstream in(file, std::ios::binary);
    in.peek();  // finds out what can be opened but not read: a folder
    if (!in.is_open() || in.bad())
        throw std::runtime_error(file.string() + ": " + std::generic_category().message(errno));
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string printable(std::string_view text) {
    std::string result(text);
    std::ranges::replace_if(
        result, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }, '?');
    return result;
}

std::string shell_word(std::string_view text) {
    const auto is_plain = [](char c) {
        return static_cast<unsigned char>(c) >= 0x80 || directory::ascii::is_alphanumeric(c) ||
               std::string_view("@%+=:,./_-").find(c) != std::string_view::npos;
    };
    if (!text.empty() && std::ranges::all_of(text, is_plain)) return std::string(text);
    std::string word = "'";
    for (const char c : text)
        if (c == '\'')
            word += "'\\''";
        else
            word += c;
    return word + '\'';
}

bool is_utf8(std::string_view octets) { return to_utf8(from_utf8(octets)) == octets; }

std::string told(const std::exception& failure) {
    if (const auto by_component = try_told_by_component(failure)) return printable(*by_component);
    const auto* own = dynamic_cast<const Failure*>(&failure);
    return printable(own ? to_utf8(own->description) : failure.what());
}

}  // namespace orvo::admin
