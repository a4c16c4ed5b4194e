#include "host/admin/common/random_texts.h"

#include <sys/random.h>

#include <cerrno>
#include <string_view>
#include <system_error>

namespace orvo::admin {
namespace {

unsigned char random_byte() {
    unsigned char byte = 0;
    if (getrandom(&byte, 1, 0) != 1)
        throw std::system_error(errno, std::generic_category(), "random numbers");
    return byte;
}

}  // namespace

std::string random_password(std::size_t length) {
    static constexpr std::string_view alphabet =
        "abcdefghjkmnpqrstuvwxyzABCDEFGHJKLMNPQRSTUVWXYZ23456789";
    // What is above would make some letters likelier than others.
    constexpr unsigned usable = 256 / alphabet.size() * alphabet.size();
    std::string password;
    while (password.size() < length)
        if (const unsigned char byte = random_byte(); byte < usable)
            password += alphabet[byte % alphabet.size()];
    return password;
}

std::string random_guid() {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string guid;
    for (int i = 0; i < 16; ++i) {
        const unsigned char byte = random_byte();
        guid += digits[byte >> 4];
        guid += digits[byte & 15];
    }
    return guid;
}

}  // namespace orvo::admin
