#include "host/web/messages/random_token.h"

#include <openssl/crypto.h>
#include <openssl/rand.h>

#include <array>
#include <span>
#include <stdexcept>

namespace orvo::web {
namespace {

void fill_randomly(std::span<unsigned char> bytes) {
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1)
        throw std::runtime_error("the system has no randomness to give");
}

}  // namespace

std::string random_token() {
    static constexpr char digits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    std::array<unsigned char, 33> bytes{};
    fill_randomly(std::span(bytes).first(32));
    std::string token;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const unsigned group = bytes[i] << 16 | bytes[i + 1] << 8 | bytes[i + 2];
        for (int shift = 18; shift >= 0; shift -= 6) token += digits[group >> shift & 63];
    }
    token.resize(token_length);
    return token;
}

std::string random_text(std::size_t length) {
    static constexpr std::string_view signs =
        "ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz23456789";
    // Bytes that would favour the first signs are passed over.
    constexpr std::size_t usable = 256 / signs.size() * signs.size();
    std::string text;
    while (text.size() < length) {
        unsigned char byte = 0;
        fill_randomly({&byte, 1});
        if (byte < usable) text += signs[byte % signs.size()];
    }
    return text;
}

bool equal_secretly(std::string_view a, std::string_view b) {
    return a.size() == b.size() && CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
}

}  // namespace orvo::web
