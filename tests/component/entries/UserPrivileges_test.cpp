#include "component/entries/UserPrivileges.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(UserPrivileges, RestrictNobodyUnlessADeploymentSaysSo) {
    const UserPrivileges lists = user_privileges(u"jsmith");
    EXPECT_EQ(lists.readable.count(), 0);
    EXPECT_EQ(lists.writable.count(), 0);
}

}  // namespace
}  // namespace orvo
