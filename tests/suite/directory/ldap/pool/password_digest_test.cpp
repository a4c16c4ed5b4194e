#include "suite/directory/ldap/pool/password_digest.h"

#include <gtest/gtest.h>

#include <string>

namespace orvo::directory::ldap {
namespace {

using Words = std::array<std::uint64_t, 2>;

// The bytes 0, 1, 2, …
std::string counted(std::size_t size) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(i);
    return bytes;
}

const Words key{0x0706050403020100, 0x0f0e0d0c0b0a0908};

TEST(SipHash, GivesThePublishedValues) {
    EXPECT_EQ(siphash_128("", key), (Words{0xe6a825ba047f81a3, 0x930255c71472f66d}));
    EXPECT_EQ(siphash_128(counted(1), key), (Words{0x44af996bd8c187da, 0x45fc229b11597634}));
    EXPECT_EQ(siphash_128(counted(7), key), (Words{0x53c1dbd8beebf1a1, 0x3982f01fa64ab8c0}));
    EXPECT_EQ(siphash_128(counted(8), key), (Words{0x61f55862baa9623b, 0xb49714f364e2830f}));
    EXPECT_EQ(siphash_128(counted(15), key), (Words{0x11a8b03399e99354, 0xd9c3cf970fec087e}));
    EXPECT_EQ(siphash_128(counted(16), key), (Words{0xbb54b067caa4e26e, 0x77052385bf1533fd}));
}

TEST(SipHash, DependsOnEveryBitOfItsKey) {
    EXPECT_NE(siphash_128("shop-sample", key), siphash_128("shop-sample", {key[0], key[1] ^ 1}));
    EXPECT_NE(siphash_128("shop-sample", key), siphash_128("shop-sample", {key[0] ^ 1, key[1]}));
}

TEST(PasswordDigest, IsTheSameForTheSamePasswordAndForNoOther) {
    const PasswordDigest digest(Secret(u"shop-sample"));
    EXPECT_TRUE(digest == PasswordDigest(Secret(u"shop-sample")));
    for (const char16_t* other : {u"", u"shop-sampl", u"shop-sample ", u"Shop-sample"})
        EXPECT_FALSE(digest == PasswordDigest(Secret(other))) << to_utf8(other);
}

}  // namespace
}  // namespace orvo::directory::ldap
