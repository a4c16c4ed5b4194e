#include "tests/component/entries/profile_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_FRESH(ProfileTest, OutsideAContextOnlyANoteIsWrittenUnderTheUsersName) {
    const Profile profile;
    EXPECT_THAT(journal_.take(), IsEmpty());
    EXPECT_THAT(
        log_.take(),
        ElementsAre(LogEntry{"LogMessage", activate,
                             block("0", activate, "Not an actual error", "No objectcontext"), 1}));
    EXPECT_FALSE(shared_server_info()->IsLoaded());
}

TEST_FRESH(ProfileTest, InAContextWithoutASessionOnlyANoteIsWrittenUnderTheUsersName) {
    const RecordingContext context(journal_);
    const Profile profile;
    EXPECT_THAT(journal_.take(), ElementsAre("Item(Session)", "CreateInstance(Quendra.Log)"));
    EXPECT_THAT(log_.take(), ElementsAre(LogEntry{"LogMessage", activate,
                                                  block("0", activate, "Not an actual error",
                                                        "No session in objectcontext"),
                                                  1}));
    EXPECT_FALSE(shared_server_info()->IsLoaded());
}

TEST_FRESH(ProfileTest, ASessionIsTakenAndTheSettingsLoadedButNothingIsBound) {
    RecordingContext context(journal_);
    context.items[u"Session"] = session({{u"REMOTE_USER", u"jsmith"}});
    Profile profile;
    const auto calls = journal_.take();
    ASSERT_EQ(calls.size(), 22u);
    EXPECT_EQ(calls[0], "Item(Session)");
    EXPECT_EQ(calls[1], "Item(Session)");
    EXPECT_EQ(calls[2], "CreateInstance(Quendra.Configuration)");
    EXPECT_EQ(calls[3], "new Quendra.Configuration()");
    EXPECT_EQ(calls[4], "Initialize()");
    EXPECT_EQ(calls[5], "ReadConfigValue(MEMBERSHIP, LDAPServer)");
    EXPECT_THAT(log_.take(), IsEmpty());
    EXPECT_TRUE(shared_server_info()->IsLoaded());
    EXPECT_EQ(configuration_.alive, 0) << "the component is released";
    EXPECT_EQ(raised_by([&] { profile.CN(); }).number, 91);
}

TEST_FRESH(ProfileTest, AFailingConfigurationSurfacesFromCreation) {
    RecordingContext context(journal_);
    context.items[u"Session"] = session({});
    journal_.refuse("Initialize", {53, u"Its.Own", u"site.ini: not there"});
    expect_failure(raised_by([] { Profile(); }), 53, u"Its.Own",
                   block("35", "OrvoMembership.Profile.IObjectControl", "site.ini: not there"));
}

TEST_FRESH(ProfileTest, DeactivationKeepsTheProfileBound) {
    const auto profile = bound();
    const auto control = Ref<ObjectControl>::from(profile.object());
    call<&ObjectControl::IObjectControl_Deactivate>(control);
    EXPECT_EQ(call<&Profile::CN>(profile), u"");
    EXPECT_FALSE(call<&ObjectControl::IObjectControl_CanBePooled>(control));
}

}  // namespace
}  // namespace orvo
