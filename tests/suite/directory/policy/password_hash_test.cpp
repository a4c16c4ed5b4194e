#include "suite/directory/policy/password_hash.h"

#include <crypt.h>
#include <gmock/gmock.h>

#include "platform/values/failure.h"

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

TEST(HashedPassword, OfAPasswordWithANulIsRefused) {
    try {
        hashed_password(Secret(Text(u"a\0b", 3)));
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, 5);
    }
}

}  // namespace
}  // namespace orvo::directory
