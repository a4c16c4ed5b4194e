#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/automation/secret.h"

namespace orvo::directory::ldap {

// The keyed hash SipHash-2-4 with a result of 128 bits. `key` has 16 bytes. What it costs depends
// on the length of `bytes` and on nothing else.
std::array<std::uint64_t, 2> siphash_128(std::string_view bytes,
                                         const std::array<std::uint64_t, 2>& key);

// Stands for a password where two are to be told apart without keeping them: a keyed hash, whose
// key is made anew at random by every process, so that a digest says nothing outside of it and
// cannot be searched for. Comparing costs the same whatever is compared.
class PasswordDigest {
public:
    PasswordDigest() = default;
    explicit PasswordDigest(const Secret& password);

    bool operator==(const PasswordDigest& other) const {
        return ((words_[0] ^ other.words_[0]) | (words_[1] ^ other.words_[1])) == 0;
    }

private:
    std::array<std::uint64_t, 2> words_{};
};

}  // namespace orvo::directory::ldap
