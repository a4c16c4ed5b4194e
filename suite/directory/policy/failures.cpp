#include "suite/directory/policy/failures.h"

namespace orvo::directory {

void raise_code(int code, std::string_view message, std::string_view nearest_entry) {
    throw directory_failure(code, {}, message, nearest_entry);
}

std::string quoted_name(std::string_view name) {
    constexpr std::size_t longest = 200;
    constexpr std::size_t longest_character = 4;
    if (name.size() <= longest) return "'" + std::string(name) + "'";
    std::size_t end = longest;
    // No half of a character, where it is text at all.
    while (end > longest - longest_character && (name[end] & 0xC0) == 0x80) --end;
    return "'" + std::string(name.substr(0, end)) + "...'";
}

void require_well_formed(TextView name) {
    if (!is_well_formed(name))
        raise_code(result_code::invalid_name, "A name cannot hold half of a surrogate pair.");
}

void require_whole(TextView name) {
    require_well_formed(name);
    if (name.find(u'\0') != TextView::npos)
        raise_code(result_code::invalid_name, "A name cannot hold a NUL.");
}

}  // namespace orvo::directory
