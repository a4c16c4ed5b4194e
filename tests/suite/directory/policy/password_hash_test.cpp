#include "suite/directory/policy/password_hash.h"

#include <crypt.h>
#include <gmock/gmock.h>

#include "tests/suite/directory/expect_failure.h"

namespace orvo::directory {
namespace {

TEST(HashedPassword, IsYescryptAndMatchesThePassword) {
    const std::string hash = hashed_password(Secret(u"shop-sample"));
    EXPECT_THAT(hash, testing::StartsWith("{CRYPT}$y$"));
    const std::string setting = hash.substr(7);
    EXPECT_EQ(crypt("shop-sample", setting.c_str()), setting);
    EXPECT_NE(crypt("shop-samplf", setting.c_str()), setting);
}

TEST(HashedPassword, DoesNotHoldThePassword) {
    EXPECT_THAT(hashed_password(Secret(u"shop-sample")),
                testing::Not(testing::HasSubstr("shop-sample")));
}

TEST(HashedPassword, DiffersEachTime) {
    EXPECT_NE(hashed_password(Secret(u"same")), hashed_password(Secret(u"same")));
}

TEST(HashedPassword, CostsWhatIsAskedFor) {
    EXPECT_THAT(hashed_password(Secret(u"same")), testing::StartsWith("{CRYPT}$y$j9T$"));
    EXPECT_THAT(hashed_password(Secret(u"same"), HashCost::lowest),
                testing::StartsWith("{CRYPT}$y$j75$"));
    EXPECT_THAT(hashed_password(Secret(u"same"), 6), testing::StartsWith("{CRYPT}$y$jAT$"));
    for (const int cost : {-1, 0, 12})
        EXPECT_EQ(failure_of([&] { hashed_password(Secret(u"same"), cost); }).description,
                  u"(89) A setting or argument is not valid. The cost of a password hash is 1 to "
                  u"11.");
}

TEST(HashedPassword, OfAPasswordThatWouldBeCutOffIsRefused) {
    EXPECT_EQ(failure_of([] { hashed_password(Secret(Text(u"a\0b", 3))); }).number, 5);
    EXPECT_THAT(hashed_password(Secret(Text(511, u'a')), HashCost::lowest),
                testing::StartsWith("{CRYPT}$y$"));
    EXPECT_EQ(failure_of([] { hashed_password(Secret(Text(512, u'a'))); }).description,
              u"(19) The value violates a constraint. A password that is to be hashed cannot have "
              u"more than 511 bytes.");
}

}  // namespace
}  // namespace orvo::directory
