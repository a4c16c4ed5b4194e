#include "component/containers/Profiles.h"

#include "tests/component/containers/containers_test.h"

namespace orvo {
namespace {

static_assert(slot_of<&Profiles::AsRecordset> == 7);
static_assert(slot_of<&Profiles::DeleteProfile> == 8);
static_assert(slot_of<&Profiles::CreateProfile> == 9);
static_assert(slot_of<&Profiles::BindAs> == 10);

constexpr const char* delete_profile = "OrvoMembership.Profiles.DeleteProfile";
constexpr const char* create_profile = "OrvoMembership.Profiles.CreateProfile";
constexpr const char* not_bound =
    "Object not bound to Profiles organizational unit. Call BindAs first";
constexpr const char* bind_container =
    "Bind(dir01:389, ou=Profiles,o=Shop, , cn=web,o=Shop, web-code, [])";
constexpr const char* new_profile =
    "CreateChild([shopProfile], pn, [pn=sales, objectClass=shopProfile])";

class ProfilesTest : public ContainersTest {
protected:
    static void bind(Behind<Profiles>& profiles, Text user = u"cn=web,o=Shop",
                     TextView web_code = u"web-code") {
        Secret password(web_code);
        profiles.call<&Profiles::BindAs>(user, password);
    }
    static bool remove(Behind<Profiles>& profiles, Text name = u"sales") {
        return profiles.call<&Profiles::DeleteProfile>(name);
    }
    static Ref<Profile> create(Behind<Profiles>& profiles, Text name = u"sales") {
        return profiles.call<&Profiles::CreateProfile>(name);
    }
    template <class Body>
    void profiles_through_every_door(Body body) {
        load_settings();
        through_doors_to<Profiles>(body);
    }
    template <class Body>
    void bound_profiles_through_every_door(Body body) {
        load_settings();
        through_doors_to<Profiles>(body, [](Behind<Profiles>& profiles) { bind(profiles); });
    }
    void give_users(bool any) {
        directory_.answer(u"cn", Values{u"sales"});
        directory_.found = records({u"un"}, any ? std::vector<std::vector<Variant>>{{u"jsmith"}}
                                                : std::vector<std::vector<Variant>>{});
    }
};

TEST_FRESH(ProfilesTest, BindAsBindsTheContainerItself) {
    profiles_through_every_door([this](Behind<Profiles>& profiles) {
        bind(profiles);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("new Test.Directory()", "CreateEntry()", bind_container));
    });
}

TEST_FRESH(ProfilesTest, TheContainersEntryIsReleasedBeforeTheModuleThatMadeIt) {
    bound_profiles_through_every_door([](Behind<Profiles>& profiles) { bind(profiles); });
    EXPECT_EQ(directory_.modules, 0);
    EXPECT_EQ(directory_.orphans, 0);
}

TEST_FRESH(ProfilesTest, WhatTheProviderDoesToTheCredentialsReachesTheCallerAndIsNotStored) {
    profiles_through_every_door([this](Behind<Profiles>& profiles) {
        directory_.changes_arguments = true;
        Text user = u"cn=web,o=Shop";
        Secret password(u"web-code");
        profiles.call<&Profiles::BindAs>(user, password);
        EXPECT_EQ(user, u"cn=web,o=Shop!");
        EXPECT_EQ(clear_text(password), u"web-code!");
        directory_.changes_arguments = false;
        forget();
        create(profiles);
        EXPECT_EQ(journal_.take().back(), bind_sales);
    });
}

TEST_FRESH(ProfilesTest, AnEmptyNameIsTheDirectorysToJudge) {
    profiles_through_every_door([this](Behind<Profiles>& profiles) {
        bind(profiles, u"", u"");
        EXPECT_EQ(journal_.take().back(), "Bind(dir01:389, ou=Profiles,o=Shop, , , , [])");
    });
}

TEST_FRESH(ProfilesTest, ARefusedBindIsReportedAndItsCredentialsServeTheList) {
    profiles_through_every_door([this](Behind<Profiles>& profiles) {
        journal_.refuse_nth("Bind", 1, no_rights());
        expect_failure(raised_by([&] { bind(profiles); }), error_number(0x80072098), u"Its.Own",
                       block("80072098", "OrvoMembership.Profiles.BindAs", "(50) no rights"));
        forget();
        directory_.found = records({u"cn"}, {{u"sales"}});
        EXPECT_EQ(profiles.call<&Profiles::AsRecordset>(), directory_.found);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("new Test.Directory()", "CreateSearch()",
                                "Connect(dir01:389, ou=Profiles,o=Shop, cn=web,o=Shop, web-code)",
                                "Execute((objectClass=shopProfile), [cn], 1000)"));
    });
}

TEST_FRESH(ProfilesTest, TheListNeedsNoBinding) {
    profiles_through_every_door([this](Behind<Profiles>& profiles) {
        profiles.call<&Profiles::AsRecordset>();
        EXPECT_EQ(journal_.take()[2], "Connect(dir01:389, ou=Profiles,o=Shop, , )");
        journal_.refuse_nth("Execute", 1, no_rights());
        expect_failure(raised_by([&] { profiles.call<&Profiles::AsRecordset>(); }),
                       error_number(0x80072098), u"Its.Own",
                       block("80072098", "OrvoMembership.Profiles.AsRecordset", "(50) no rights"));
    });
}

TEST_FRESH(ProfilesTest, AProfileWithoutUsersIsDeleted) {
    give_users(false);
    bound_profiles_through_every_door([this](Behind<Profiles>& profiles) {
        EXPECT_TRUE(remove(profiles));
        const auto calls = journal_.take();
        EXPECT_THAT(calls, testing::Contains(bind_sales));
        EXPECT_EQ(calls.back(), "DeleteChild(shopProfile, pn=sales,ou=Profiles,o=Shop)");
        EXPECT_EQ(call<&RecordSet::State>(Ref<RecordSet>::from(directory_.found)), adStateClosed);
        give_users(false);
    });
}

TEST_FRESH(ProfilesTest, AProfileWhoseUsersAreNoRecordSetHasNone) {
    directory_.answer(u"cn", Values{u"sales"});
    directory_.found = nullptr;
    bound_profiles_through_every_door(
        [](Behind<Profiles>& profiles) { EXPECT_TRUE(remove(profiles)); });
}

TEST_FRESH(ProfilesTest, AProfileWithUsersStaysAndThatIsNoFailure) {
    bound_profiles_through_every_door([this](Behind<Profiles>& profiles) {
        give_users(true);
        EXPECT_FALSE(remove(profiles));
        EXPECT_THAT(journal_.take(),
                    testing::Not(testing::Contains(testing::StartsWith("Delete"))));
        EXPECT_EQ(call<&RecordSet::State>(Ref<RecordSet>::from(directory_.found)), adStateOpen)
            << "only the users of a profile that goes are closed";
        EXPECT_THAT(log_.take_sources(), testing::Each(activate)) << "notes of an activation";
    });
}

TEST_FRESH(ProfilesTest, AnUnboundObjectDeletesNothing) {
    profiles_through_every_door([this](Behind<Profiles>& profiles) {
        expect_failure(raised_by([&] { remove(profiles); }), emErrNotBoundToProfiles,
                       from_utf8(delete_profile), block("80040327", delete_profile, not_bound));
        EXPECT_THAT(journal_.take(), IsEmpty());
    });
}

TEST_FRESH(ProfilesTest, AnUnboundObjectBindsAsTheScriptAccountToCreateAndStaysBound) {
    profiles_through_every_door([this](Behind<Profiles>& profiles) {
        ASSERT_TRUE(create(profiles));
        EXPECT_THAT(journal_.take(),
                    ElementsAre("new Test.Directory()", "CreateEntry()", "CreateEntry()",
                                "Bind(dir01:389, ou=Profiles,o=Shop, , cn=script,o=Shop, "
                                "script-code, [])",
                                new_profile, "new Test.Directory()", "CreateEntry()",
                                "Bind(dir01:389, ou=Profiles,o=Shop, pn=sales, "
                                "cn=script,o=Shop, script-code, [])"))
            << "a factory of its own, of which one entry is not used";
        forget();
        create(profiles);
        EXPECT_EQ(journal_.take()[0], new_profile) << "still bound";
    });
}

TEST_FRESH(ProfilesTest, ABoundObjectCreatesWithItsOwnAccount) {
    bound_profiles_through_every_door([this](Behind<Profiles>& profiles) {
        ASSERT_TRUE(create(profiles));
        EXPECT_THAT(journal_.take(),
                    ElementsAre(new_profile, "new Test.Directory()", "CreateEntry()", bind_sales));
    });
}

TEST_FRESH(ProfilesTest, ANameThatIsTakenIsToldSo) {
    bound_profiles_through_every_door([this](Behind<Profiles>& profiles) {
        journal_.refuse("CreateChild", {error_number(0x8004044F), u"Its.Own", u"(68) there"});
        expect_failure(raised_by([&] { create(profiles); }), error_number(0x8004044F),
                       from_utf8(create_profile),
                       block("8004044F", create_profile,
                             "Unable to add profile with profile name:'sales'. The profile "
                             "already exists."));
        journal_.refuse("CreateChild", no_rights());
        expect_failure(raised_by([&] { create(profiles); }), error_number(0x80072098), u"Its.Own",
                       block("80072098", create_profile, "(50) no rights"));
        journal_.allow("CreateChild");
    });
}

TEST_FRESH(ProfilesTest, OutsideAPageOneNoteIsWrittenUnderTheUsersName) {
    { const Profiles profiles; }
    EXPECT_THAT(
        log_.take(),
        ElementsAre(LogEntry{"LogMessage", activate,
                             block("0", activate, "Not an actual error", "No objectcontext"), 1}));
    const RecordingContext context(journal_);
    { const Profiles profiles; }
    EXPECT_THAT(log_.take(), ElementsAre(LogEntry{"LogMessage", activate,
                                                  block("0", activate, "Not an actual error",
                                                        "No Session object in ObjectContext"),
                                                  1}));
}

TEST_FRESH(ProfilesTest, InAPageTheSessionsAccountBindsItStraightAway) {
    load_settings();
    RecordingContext context(journal_);
    const auto session = make<DictionaryObject>();
    Variant key = u"REMOTE_ACCOUNT", value = u"cn=web,o=Shop";
    call<&Dictionary::Add>(session, key, value);
    key = u"REMOTE_PASSWORD";
    value = u"web-code";
    call<&Dictionary::Add>(session, key, value);
    context.items[u"Session"] = session.object();
    for (const Door door : every_door) {
        journal_.clear();
        Behind<Profiles> profiles(door);
        EXPECT_EQ(journal_.take().back(), bind_container);
    }
    journal_.refuse("Bind", no_rights());
    expect_failure(raised_by([] { Profiles(); }), error_number(0x80072098), u"Its.Own",
                   block("80072098", "OrvoMembership.Profiles.IObjectControl",
                         block("80072098", "OrvoMembership.Profiles.BindAs", "(50) no rights")));
}

}  // namespace
}  // namespace orvo
