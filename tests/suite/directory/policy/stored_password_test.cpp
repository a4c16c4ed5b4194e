#include "suite/directory/policy/stored_password.h"

#include <gtest/gtest.h>

#include <string>

#include "suite/directory/policy/password_hash.h"
#include "tests/support/processor_time.h"

namespace orvo::directory {
namespace {

// Of "shop-sample", as slappasswd, and crypt for its methods, make them.
constexpr const char* hashes[] = {
    "{SSHA}2DdJUy9i58Qq4hYFSoZcjCTjqwmvtq7H",
    "{SHA}kCKj7B0tBwchd8CS/j+KWTWIQA0=",
    "{SMD5}Ul1JDHWK9cT1e1v6BM9X7URJEBo=",
    "{MD5}VFD8sPJyWE9zSoGRGGrvRg==",
    "{SSHA256}dIAY6e+EylZXdqOSP9tr8O5pf0KjHEGZ+kEHITX1WAFlamzLjsEJqA==",
    "{SHA256}2sXivEhlWBOphgKXzWw7LRVEObh4MVxwT1X6QmwaHE0=",
    "{SSHA384}w42MrdP7bUKXPB8oB0BNQfv2GYNFpDBpDwpJT/Mduo967fi36tbCMKjXJYhWF+OoQOEeqZaBruM=",
    "{SHA384}N7AwCX31fUS7nKW5eqmzEX85ovkRVwxZ//LEs75kKUkPo9BtvfyJ35wdZaQQmvot",
    "{SSHA512}XVNv0kYsbvlqN4PAZrlARJsH39M+zaTh/9RVnNgIR0GFW0re+WuzPkQhtKp0hN72Y0IHjnPU7zXhMymzRm8X"
    "tS1aK6cFRL6b",
    "{SHA512}CRoZuaDuw8awGV4sSWe2pCy/gzg98tK16faxuKMSIeahCk6/k8en/TmNyT2p0KW7TSEkbIesl9ySpt9ninlg2"
    "Q==",
    "{PBKDF2}10000$zEZWjiU1Hq5ZyAuOUN49Iw$7R5Olc8eeSNMsbz9JL4ko0jUt9g",
    "{PBKDF2-SHA1}10000$.55QTGqNhrJ254TgUcPtig$JkdLDbBPDNsBWHhSBw2KAjMfJNQ",
    "{PBKDF2-SHA256}10000$I4ugWAP2C/taz2GsHgSSYQ$LcW65GjTNKjdceRZv5P65ZygOtI5f4Ay0dinSs/fXvI",
    "{PBKDF2-SHA512}10000$DwUto5zJH/6r3M9pUo8O/w$BOAdR90Yo.PV16CJ3bPzrI0ckxu7kUIT6tKjUNW.V0sx1Y1Cs"
    "9LOXTEvKtye7SmRPAoRlSkX5Jwh9PdLZQ8GMQ",
    "{CRYPT}lhOlK5Z.UJzDcpwkwW.FwPJI",
    "{CRYPT}nYIe4yRBeSxqE",
    "{CRYPT}$1$.6c9OObC$vz1Og4zb/VtO7uzKP4Mh7.",
    "{CRYPT}$2b$12$D7SkFL6/sBC8M.6iw1roeur5CnHelErHRzlgpVeU2iZT2xXKDJ2i6",
    "{CRYPT}$5$J7FMozibZGXmW0AF$xUtINfRq2DWBoSicxbNJXkAZKdxrZkDT.zVzatF54L6",
    "{CRYPT}$6$ww6E2QntQYyMJ7ri$aGpTuxRDWbAf8wL0DN9N3f7Qtqgqm0WnL4fb07dMldBuDqfpPrQaWw7wkNc."
    "GAMqLEDYYv69WMLiJbnNgg1uR0",
    "{CRYPT}$y$j9T$abcdefgh1234567890abcd.$UvetXDOpUud7d.10f9nFTL86MKxMnuB7k4i3TGAzWr8",
};

TEST(AStoredPassword, OfEverySchemeIsThatPasswordAndNoOther) {
    for (const std::string hash : hashes) {
        EXPECT_TRUE(is_known_hash(hash)) << hash;
        EXPECT_TRUE(is_hash_of(hash, Secret(u"shop-sample"))) << hash;
        EXPECT_FALSE(is_hash_of(hash, Secret(u"Shop-sample"))) << hash;
        EXPECT_FALSE(is_hash_of(hash, Secret(u"shop-sa"))) << hash;
        EXPECT_FALSE(is_hash_of(hash, Secret())) << hash;
    }
}

TEST(AStoredPassword, HasASchemeInAnyCase) {
    EXPECT_TRUE(is_hash_of("{ssha}2DdJUy9i58Qq4hYFSoZcjCTjqwmvtq7H", Secret(u"shop-sample")));
    EXPECT_TRUE(is_hash_of("{Crypt}nYIe4yRBeSxqE", Secret(u"shop-sample")));
}

TEST(AStoredPassword, OfAnotherLetterMoreOrLessIsAnother) {
    for (const std::string hash : hashes) {
        std::string other = hash;
        char& letter = other[other.size() - 5];
        letter = letter == 'a' ? 'b' : 'a';
        EXPECT_FALSE(is_hash_of(other, Secret(u"shop-sample"))) << other;
        EXPECT_FALSE(is_hash_of(hash.substr(0, hash.size() - 4), Secret(u"shop-sample"))) << hash;
    }
}

TEST(AStoredPassword, ThatCannotBeReadIsNobodys) {
    for (const char* stored : {
             "",
             "shop-sample",
             "{CLEARTEXT}shop-sample",
             "{shop-sample",
             "{}shop-sample",
             "{SSHA}",
             "{SSHA}kCKj7B0tBwchd8CS/j+KWTWIQA0=",     // no salt
             "{SHA}2DdJUy9i58Qq4hYFSoZcjCTjqwmvtq7H",  // too long
             "{SSHA}2DdJUy9i58Qq4hYFSoZcjCTjqwmvtq7",
             "{SSHA}2DdJUy9i58Qq4hYFSoZcjCTjqwm tq7H",
             "{SHA}====",
             "{CRYPT}",
             "{CRYPT}*0",
             "{CRYPT}*1",
             "{CRYPT}x",
             "{CRYPT}$9$unknown$hash",
             "{PBKDF2}",
             "{PBKDF2}10000",
             "{PBKDF2}10000$zEZWjiU1Hq5ZyAuOUN49Iw",
             "{PBKDF2}10000$zEZWjiU1Hq5ZyAuOUN49Iw$",
             "{PBKDF2}10000$$7R5Olc8eeSNMsbz9JL4ko0jUt9g",
             "{PBKDF2}0$zEZWjiU1Hq5ZyAuOUN49Iw$7R5Olc8eeSNMsbz9JL4ko0jUt9g",
             "{PBKDF2}-1$zEZWjiU1Hq5ZyAuOUN49Iw$7R5Olc8eeSNMsbz9JL4ko0jUt9g",
             "{PBKDF2}10000x$zEZWjiU1Hq5ZyAuOUN49Iw$7R5Olc8eeSNMsbz9JL4ko0jUt9g",
             "{PBKDF2}99999999999$zEZWjiU1Hq5ZyAuOUN49Iw$7R5Olc8eeSNMsbz9JL4ko0jUt9g",
         }) {
        EXPECT_FALSE(is_hash_of(stored, Secret(u"shop-sample"))) << stored;
        EXPECT_FALSE(is_hash_of(stored, Secret())) << stored;
    }
}

TEST(AStoredPassword, IsNotCutOffAtANul) {
    const std::string hash = "{CRYPT}nYIe4yRBeSxqE";
    EXPECT_FALSE(is_hash_of(hash, Secret(Text(u"shop-sample\0more", 16))));
}

TEST(AStoredPassword, WithoutAKnownSchemeIsNoHash) {
    for (const char* stored : {"", "plain", "{ARGON2}$argon2id$v=19$m=7168,t=5,p=1$a$b", "{SHA",
                               "{CLEARTEXT}plain", " {SHA}kCKj7B0tBwchd8CS/j+KWTWIQA0="})
        EXPECT_FALSE(is_known_hash(stored)) << stored;
}

TEST(ARenewal, IsDueForAllButYescryptOfTheCost) {
    for (const std::string hash : hashes)
        EXPECT_EQ(should_be_renewed(hash, HashCost::usual), !hash.starts_with("{CRYPT}$y$"))
            << hash;
    EXPECT_TRUE(should_be_renewed("", HashCost::lowest));
    EXPECT_TRUE(should_be_renewed("{CRYPT}$y$zzz$salt$hash", HashCost::lowest));
}

TEST(ARenewal, IsDueWhereTheCostIsLower) {
    for (int cost = HashCost::lowest; cost <= 7; ++cost) {
        const std::string hash = hashed_password(Secret(u"shop-sample"), cost);
        EXPECT_TRUE(is_hash_of(hash, Secret(u"shop-sample"))) << cost;
        for (int wanted = HashCost::lowest; wanted <= HashCost::highest; ++wanted)
            EXPECT_EQ(should_be_renewed(hash, wanted), wanted > cost) << cost << " " << wanted;
    }
}

TEST(AnImitatedCheck, TakesAsLongAsARealOne) {
    const Secret password(u"shop-sample");
    for (const int cost : {4, 6}) {
        const std::string hash = hashed_password(password, cost);
        const double real = processor_time([&] { is_hash_of(hash, password); });
        const double imitated = processor_time([&] { imitate_check(password, cost); });
        EXPECT_GT(imitated, real / 1.6) << cost;
        EXPECT_LT(imitated, real * 1.6) << cost;
    }
}

}  // namespace
}  // namespace orvo::directory
