#include "host/web/random_token.h"

#include <openssl/crypto.h>
#include <openssl/rand.h>

#include <array>
#include <stdexcept>

namespace orvo::web {

std::string random_token() {
    static constexpr char digits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    std::array<unsigned char, 33> bytes{};
    if (RAND_bytes(bytes.data(), 32) != 1)
        throw std::runtime_error("the system has no randomness to give");
    std::string token;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const unsigned group = bytes[i] << 16 | bytes[i + 1] << 8 | bytes[i + 2];
        for (int shift = 18; shift >= 0; shift -= 6) token += digits[group >> shift & 63];
    }
    token.resize(43);
    return token;
}

bool equal_secretly(std::string_view a, std::string_view b) {
    return a.size() == b.size() && CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
}

}  // namespace orvo::web
