#include "suite/directory/ldap/pool/password_digest.h"

#include <algorithm>
#include <bit>
#include <random>

namespace orvo::directory::ldap {
namespace {

using Words = std::array<std::uint64_t, 2>;

class State {
public:
    explicit State(const Words& key)
        : v_{key[0] ^ 0x736f6d6570736575, key[1] ^ 0x646f72616e646f6d ^ 0xee,
             key[0] ^ 0x6c7967656e657261, key[1] ^ 0x7465646279746573} {}

    void take(std::uint64_t word) {
        v_[3] ^= word;
        rounds(2);
        v_[0] ^= word;
    }
    Words finish() {
        v_[2] ^= 0xee;
        rounds(4);
        const std::uint64_t first = all();
        v_[1] ^= 0xdd;
        rounds(4);
        return {first, all()};
    }

private:
    void rounds(int count) {
        for (; count > 0; --count) {
            v_[0] += v_[1];
            v_[2] += v_[3];
            v_[1] = std::rotl(v_[1], 13) ^ v_[0];
            v_[3] = std::rotl(v_[3], 16) ^ v_[2];
            v_[0] = std::rotl(v_[0], 32);
            v_[2] += v_[1];
            v_[0] += v_[3];
            v_[1] = std::rotl(v_[1], 17) ^ v_[2];
            v_[3] = std::rotl(v_[3], 21) ^ v_[0];
            v_[2] = std::rotl(v_[2], 32);
        }
    }
    std::uint64_t all() const { return v_[0] ^ v_[1] ^ v_[2] ^ v_[3]; }

    std::array<std::uint64_t, 4> v_;
};

// Up to eight bytes, the first one lowest.
std::uint64_t word_of(std::string_view bytes) {
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < std::min<std::size_t>(bytes.size(), 8); ++i)
        word |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[i])) << (8 * i);
    return word;
}

const Words& key_of_process() {
    static const Words key = [] {
        std::random_device random;
        Words words{};
        for (std::uint64_t& word : words)
            word = static_cast<std::uint64_t>(random()) << 32 | random();
        return words;
    }();
    return key;
}

}  // namespace

Words siphash_128(std::string_view bytes, const Words& key) {
    State state(key);
    const std::uint64_t length = bytes.size();
    for (; bytes.size() >= 8; bytes.remove_prefix(8)) state.take(word_of(bytes));
    state.take(length << 56 | word_of(bytes));
    return state.finish();
}

PasswordDigest::PasswordDigest(const Secret& password)
    : words_(siphash_128(password.reveal(), key_of_process())) {}

}  // namespace orvo::directory::ldap
