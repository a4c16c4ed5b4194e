#include "component/entries/UserPrivileges.h"

#include "tests/component/component_test.h"

namespace orvo {
namespace {

class UserPrivilegesTest : public testing::Test {};

TEST_FRESH(UserPrivilegesTest, WithoutASourceBothListsAreEmpty) {
    const UserPrivileges lists = user_privileges(u"jsmith");
    EXPECT_EQ(lists.readable.count(), 0);
    EXPECT_EQ(lists.writable.count(), 0);
}

TEST_FRESH(UserPrivilegesTest, ASourceIsAskedWithTheCommonNameAtEachCall) {
    std::vector<Text> asked;
    set_user_privilege_source([&](const Text& name) {
        asked.push_back(name);
        return UserPrivileges{.readable = {u"cn"}, .writable = {u"sn", u"mail"}};
    });
    EXPECT_EQ(user_privileges(u"jsmith").readable, (Values{u"cn"}));
    EXPECT_EQ(user_privileges(u"mlee").writable, (Values{u"sn", u"mail"}));
    EXPECT_EQ(asked, (std::vector<Text>{u"jsmith", u"mlee"}));
}

TEST_FRESH(UserPrivilegesTest, ASourceBelongsToTheThreadThatSetIt) {
    set_user_privilege_source(
        [](const Text&) { return UserPrivileges{.readable = {u"cn"}, .writable = {}}; });
    in_fresh_thread([] { EXPECT_EQ(user_privileges(u"jsmith").readable.count(), 0); });
    EXPECT_EQ(user_privileges(u"jsmith").readable.count(), 1);
}

TEST_FRESH(UserPrivilegesTest, AnEmptySourceTakesTheFormerOneAway) {
    set_user_privilege_source(
        [](const Text&) { return UserPrivileges{.readable = {u"cn"}, .writable = {}}; });
    set_user_privilege_source({});
    EXPECT_EQ(user_privileges(u"jsmith").readable.count(), 0);
}

}  // namespace
}  // namespace orvo
