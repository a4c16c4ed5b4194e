#include "component/config/SharedServerInfo.h"

#include "tests/component/component_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

class SharedSettings : public ComponentTest {};

TEST_FRESH(SharedSettings, AreOneAndTheSameForAllOfAThread) {
    EXPECT_NE(shared_server_info(), nullptr);
    EXPECT_EQ(shared_server_info(), shared_server_info());
}

TEST_FRESH(SharedSettings, AreOthersInAnotherThread) {
    load_site_configuration();
    ServerInfo* const mine = shared_server_info();
    in_fresh_thread([&] {
        EXPECT_NE(shared_server_info(), mine);
        EXPECT_FALSE(shared_server_info()->IsLoaded());
        EXPECT_EQ(shared_server_info()->GetServerName(), Variant(u""));
    });
    EXPECT_TRUE(mine->IsLoaded());
}

TEST_FRESH(SharedSettings, AreReadFromAnInitialisedComponentThatIsReleased) {
    load_site_configuration();
    EXPECT_EQ(shared_server_info()->GetServerName(), Variant(u"dir01:389"));
    const auto calls = journal_.take();
    ASSERT_EQ(calls.size(), 19u);
    EXPECT_EQ(calls[0], "new Quendra.Configuration()");
    EXPECT_EQ(calls[1], "Initialize()");
    EXPECT_EQ(calls[2], "ReadConfigValue(MEMBERSHIP, LDAPServer)");
    EXPECT_EQ(calls[18], "ReadConfigValue(MEMBERSHIP, PlugableModuleImplementation)");
    EXPECT_EQ(configuration_.alive, 0);
}

TEST_FRESH(SharedSettings, AreReadInFullOnlyByTheFirstActivationOfAThread) {
    load_site_configuration();
    journal_.clear();
    load_site_configuration();
    EXPECT_THAT(journal_.take(), ElementsAre("new Quendra.Configuration()", "Initialize()"));
}

}  // namespace
}  // namespace orvo
