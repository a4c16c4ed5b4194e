#include "suite/directory/policy/password_attributes.h"

#include <gtest/gtest.h>

#include <vector>

namespace orvo::directory {
namespace {

bool disables(const char* attribute, const std::vector<std::string>& values) {
    return disables_account(attribute, values);
}

TEST(AnAccount, IsDisabledByWhatEachKindOfServerKeepsForIt) {
    EXPECT_TRUE(disables("pwdAccountLockedTime", {"000001010000Z"}));
    EXPECT_TRUE(disables("PWDaccountlockedtime", {"20261122120000Z"}));
    EXPECT_TRUE(disables("1.3.6.1.4.1.42.2.27.8.1.17", {"000001010000Z"}));
    EXPECT_TRUE(disables("nsAccountLock", {"TRUE"}));
    EXPECT_TRUE(disables("userAccountControl", {"514"}));
}

TEST(AnAccount, IsNotDisabledByTheirOtherValuesNorByOtherAttributes) {
    for (const char* attribute : {"pwdAccountLockedTime", "nsAccountLock", "userAccountControl"})
        EXPECT_FALSE(disables(attribute, {})) << attribute;
    EXPECT_FALSE(disables("nsAccountLock", {"false"}));
    EXPECT_FALSE(disables("userAccountControl", {"512"}));
    EXPECT_FALSE(disables("userAccountControl", {"x"}));
    EXPECT_FALSE(disables("pwdReset", {"TRUE"}));
    EXPECT_FALSE(disables("sn", {"2"}));
}

}  // namespace
}  // namespace orvo::directory
