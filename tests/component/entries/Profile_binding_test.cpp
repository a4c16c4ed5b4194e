#include "tests/component/entries/profile_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* bind_as = "OrvoMembership.Profile.BindAs";

void init(Behind<Profile>& profile, Text name = u"sales") {
    profile.call<&Profile::Init>(name);
    EXPECT_THAT(name, testing::AnyOf(u"sales", u"stock")) << "stays as it is";
}

TEST_FRESH(ProfileTest, BindAsBindsANewEntryBelowTheProfileContainer) {
    through_every_door([this](Behind<Profile>& profile) {
        bind(profile);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("new Test.Directory()", "CreateEntry()", bind_sales));
        bind(profile, u"stock", u"", u"");
        EXPECT_THAT(
            journal_.take(),
            ElementsAre("CreateEntry()", "Bind(dir01:389, ou=Profiles,o=Shop, pn=stock, , , [])"));
        EXPECT_EQ(directory_.entries, 1);
    });
}

TEST_FRESH(ProfileTest, NeitherAnEmptyNameNorMissingSettingsAreRefusedByTheProfile) {
    membership().erase(u"LDAPServer");
    membership().erase(u"LDAPRoot");
    through_every_door([this](Behind<Profile>& profile) {
        bind(profile, u"");
        EXPECT_THAT(journal_.take().back(), testing::EndsWith("pn=, cn=web,o=Shop, web-code, [])"));
    });
}

TEST_FRESH(ProfileTest, ARefusedBindIsReportedUnderBindAs) {
    journal_.refuse("Bind", {error_number(0x80072030), u"Its.Own", u"(32) No such object"});
    through_every_door([this](Behind<Profile>& profile) {
        expect_failure(raised_by([&] { bind(profile); }), error_number(0x80072030), u"Its.Own",
                       block("80072030", bind_as, "(32) No such object"));
        EXPECT_THAT(log_.take_sources(), ElementsAre("Its.Own"));
    });
}

TEST_FRESH(ProfileTest, WithoutSettingsBindAsFailsInTheProviderFactory) {
    Behind<Profile> profile(Door::slots);
    expect_failure(raised_by([&] { bind(profile); }), 91, u"OrvoMembership",
                   block("5B", bind_as, block("5B", "OrvoMembership.PMMCreator.GetPMM", not_set)));
}

TEST_FRESH(ProfileTest, SetServerInfoLoadsAFileIntoTheThreadsSettings) {
    membership() = {};
    configuration_.files[u"C:\\Shop\\site.ini"][u"MEMBERSHIP"] = shop();
    for (const Door door : every_door) {
        in_fresh_thread([&] {
            Behind<Profile> profile(door);
            forget();
            profile.call<&Profile::setServerInfo>(Text(u"C:\\Shop\\site.ini"));
            bind(profile);
            EXPECT_EQ(journal_.take().back(), bind_sales);
            journal_.refuse_nth("LoadConfigurationFile", 1, {53, u"Its.Own", u"not there"});
            expect_failure(
                raised_by([&] { profile.call<&Profile::setServerInfo>(Text(u"missing.ini")); }), 53,
                u"Its.Own", block("35", "OrvoMembership.Profile.setServerInfo", "not there"));
        });
    }
}

TEST_FRESH(ProfileTest, InitWithoutSessionAndCredentialsReturnsQuietlyUnbound) {
    through_every_door([this](Behind<Profile>& profile) {
        EXPECT_NO_THROW(init(profile));
        EXPECT_THAT(journal_.take(), IsEmpty());
        EXPECT_THAT(log_.take(), IsEmpty());
        expect_failure(raised_by([&] { profile.call<&Profile::CN>(); }), 91, u"OrvoMembership",
                       block("5B", "OrvoMembership.Profile.CN", not_set));
    });
}

TEST_FRESH(ProfileTest, InitBindsWithTheSessionsLogin) {
    load_settings();
    RecordingContext context(journal_);
    context.items[u"Session"] = login_session();
    for (const Door door : every_door) {
        SCOPED_TRACE(testing::PrintToString(door));
        Behind<Profile> profile(door);
        init(profile);
        EXPECT_EQ(journal_.take().back(),
                  "Bind(dir01:389, ou=Profiles,o=Shop, pn=sales, "
                  "un=jsmith,ou=Users,o=Shop, js-code, [])");
    }
}

TEST_FRESH(ProfileTest, InitAfterBindAsBindsWithTheStoredCredentialsAndNotTheSessions) {
    load_settings();
    RecordingContext context(journal_);
    context.items[u"Session"] = session(
        {{u"REMOTE_ACCOUNT", u"un=jsmith,ou=Users,o=Shop"}, {u"REMOTE_PASSWORD", u"js-code"}});
    for (const Door door : every_door) {
        SCOPED_TRACE(testing::PrintToString(door));
        Behind<Profile> profile(door);
        bind(profile);
        init(profile, u"stock");
        EXPECT_EQ(journal_.take().back(),
                  "Bind(dir01:389, ou=Profiles,o=Shop, pn=stock, cn=web,o=Shop, web-code, [])");
    }
}

TEST_FRESH(ProfileTest, CredentialsAreStoredBeforeAnythingCanFail) {
    for (const char* step : {"new Test.Directory", "CreateEntry", "Bind"}) {
        SCOPED_TRACE(step);
        through_every_door([&](Behind<Profile>& profile) {
            journal_.refuse_nth(step, 1, no_rights());
            raised_by([&] { bind(profile); });
            journal_.clear();
            init(profile);
            EXPECT_EQ(journal_.take().back(), bind_sales);
        });
    }
}

TEST_FRESH(ProfileTest, WhatTheProviderDoesToTheCredentialsReachesTheCallerAndIsNotStored) {
    directory_.changes_arguments = true;
    through_every_door([this](Behind<Profile>& profile) {
        Text name = u"sales", account = u"cn=web,o=Shop";
        Secret password(u"web-code");
        profile.call<&Profile::BindAs>(name, account, password);
        EXPECT_EQ(name, u"sales");
        EXPECT_EQ(account, u"cn=web,o=Shop!");
        EXPECT_EQ(clear_text(password), u"web-code!");
        journal_.clear();
        init(profile);
        EXPECT_EQ(journal_.take().back(), bind_sales);
    });
}

TEST_FRESH(ProfileTest, AFailingInitShowsBothMethods) {
    through_every_door([this](Behind<Profile>& profile) {
        bind(profile);
        journal_.refuse_nth("Bind", 1, no_rights());
        expect_failure(raised_by([&] { init(profile); }), error_number(0x80072098), u"Its.Own",
                       block("80072098", "OrvoMembership.Profile.Init",
                             block("80072098", bind_as, "(50) no rights")));
    });
}

}  // namespace
}  // namespace orvo
