#include "tests/component/entries/user_binding_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(slot_of<&User::BindAs> == 7);
static_assert(slot_of<&User::setServerInfo> == 9);
static_assert(slot_of<&User::GetAttribValue> == 10);
static_assert(slot_of<&User::SetAttribValue> == 11);
static_assert(slot_of<&User::ClearAttribValue> == 12);

TEST_FRESH(UserBinding, BindAsBindsAndReadsProfileNameAndUserTypeAndPreparesTheAccount) {
    through_every_door([this](Behind<User>& user) {
        bind(user);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("new Test.Directory()", "CreateEntry()", bind_jsmith,
                                "GetValues(ProfileCN)", "GetValues(OrvoUserType)",
                                "new Test.Directory()", "CreateEntry()", bind_account));
        EXPECT_THAT(log_.take(), IsEmpty());
    });
}

TEST_FRESH(UserBinding, TheCallersVariablesStayAsTheyAre) {
    through_every_door([](Behind<User>& user) {
        Text name = u"jsmith", account = u"cn=web,o=Shop";
        Secret password(u"web-code");
        user.call<&User::BindAs>(name, account, password);
        EXPECT_EQ(name, u"jsmith");
        EXPECT_EQ(account, u"cn=web,o=Shop");
        EXPECT_EQ(clear_text(password), u"web-code");
    });
}

TEST_FRESH(UserBinding, WhatTheProviderDoesToTheCredentialsGoesOnToTheProfileAndTheCaller) {
    give_profile();
    directory_.changes_arguments = true;
    through_every_door([this](Behind<User>& user) {
        Text name = u"jsmith", account = u"cn=web,o=Shop";
        Secret password(u"web-code");
        user.call<&User::BindAs>(name, account, password);
        const auto calls = journal_.take();
        EXPECT_THAT(calls, testing::Contains(bind_jsmith));
        EXPECT_THAT(calls, testing::Contains("Bind(dir01:389, ou=Profiles,o=Shop, pn=sales, "
                                             "cn=web,o=Shop!, web-code!, [])"));
        EXPECT_EQ(name, u"jsmith");
        EXPECT_EQ(account, u"cn=web,o=Shop!!");
        EXPECT_EQ(clear_text(password), u"web-code!!");
    });
}

TEST_FRESH(UserBinding, TheNameIsJoinedWithNothingBetweenAndUnescaped) {
    through_every_door([this](Behind<User>& user) {
        bind(user, u" a,b=c ", u"", u"");
        EXPECT_EQ(journal_.take()[2],
                  "Bind(dir01:389, ou=Users,o=Shop, un= a,b=c , , , "
                  "[cn, OrvoUserType, BusinessPartnerID])");
    });
}

TEST_FRESH(UserBinding, TheAccountIsThatOfTheUsersType) {
    directory_.answer_of(jsmith, u"OrvoUserType", Values{u"3"});
    through_every_door([this](Behind<User>& user) {
        bind(user);
        EXPECT_EQ(journal_.take().back(),
                  "Bind(dir01:389, ou=Accounts,o=Shop, an=3, cn=script,o=Shop, script-code, [])");
    });
}

TEST_FRESH(UserBinding, AUserWithAProfileBindsItWithTheSameCredentials) {
    give_profile();
    through_every_door([this](Behind<User>& user) {
        bind(user);
        EXPECT_THAT(
            journal_.take(),
            ElementsAre("new Test.Directory()", "CreateEntry()", bind_jsmith,
                        "GetValues(ProfileCN)", "GetValues(ProfileCN)", "new Test.Directory()",
                        "CreateEntry()", bind_sales, "GetValues(OrvoUserType)",
                        "new Test.Directory()", "CreateEntry()", bind_account));
        EXPECT_TRUE(user.call<&User::get_Profile>());
    });
}

TEST_FRESH(UserBinding, TheProfileIsTheOneThatTheSecondReadingNames) {
    through_every_door([this](Behind<User>& user) {
        give_profile();
        journal_.during_nth("GetValues", 2, [this] { give_profile(u"stock"); });
        bind(user);
        EXPECT_THAT(journal_.take(),
                    testing::Contains("Bind(dir01:389, ou=Profiles,o=Shop, pn=stock, "
                                      "cn=web,o=Shop, web-code, [])"));
        EXPECT_EQ(call<&Profile::CN>(user.call<&User::get_Profile>()), u"stock");
    });
}

TEST_FRESH(UserBinding, InAContextTheProfileIsCreatedThroughIt) {
    give_profile();
    load_settings();
    RecordingContext context(journal_);
    Behind<User> user(Door::slots);
    forget();
    bind(user);
    EXPECT_THAT(
        journal_.take(),
        ElementsAre("CreateInstance(Test.Directory)", "new Test.Directory()", "CreateEntry()",
                    bind_jsmith, "GetValues(ProfileCN)", "CreateInstance(OrvoMembership.Profile)",
                    "Item(Session)", "CreateInstance(Quendra.Log)", "GetValues(ProfileCN)",
                    "CreateInstance(Test.Directory)", "new Test.Directory()", "CreateEntry()",
                    bind_sales, "GetValues(OrvoUserType)", "CreateInstance(Test.Directory)",
                    "new Test.Directory()", "CreateEntry()", bind_account));
}

TEST_FRESH(UserBinding, ARebindToTheSameProfileKeepsTheProfileObject) {
    give_profile();
    through_every_door([this](Behind<User>& user) {
        bind(user);
        const Ref<Profile> held = user.call<&User::get_Profile>();
        journal_.clear();
        bind(user);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("CreateEntry()", bind_jsmith, "GetValues(ProfileCN)",
                                "GetValues(cn)", "GetValues(OrvoUserType)", "new Test.Directory()",
                                "CreateEntry()", bind_account));
        EXPECT_EQ(user.call<&User::get_Profile>().get(), held.get());
    });
}

TEST_FRESH(UserBinding, ARebindToAnotherProfileReplacesIt) {
    give_profile();
    directory_.answer_of(u"un=mlee,ou=Users,o=Shop", u"ProfileCN", Values{u"stock"});
    through_every_door([this](Behind<User>& user) {
        bind(user);
        const Ref<Profile> held = user.call<&User::get_Profile>();
        journal_.clear();
        bind(user, u"mlee");
        const auto calls = journal_.take();
        ASSERT_EQ(calls.size(), 12u);
        EXPECT_EQ(calls[2], "GetValues(ProfileCN)");
        EXPECT_EQ(calls[3], "GetValues(cn)");
        EXPECT_EQ(calls[4], "GetValues(ProfileCN)");
        EXPECT_EQ(calls[5], "new Test.Directory()");
        EXPECT_EQ(calls[6], "CreateEntry()");
        EXPECT_EQ(calls[7],
                  "Bind(dir01:389, ou=Profiles,o=Shop, pn=stock, cn=web,o=Shop, web-code, [])");
        EXPECT_NE(user.call<&User::get_Profile>().get(), held.get());
    });
}

TEST_FRESH(UserBinding, ProfileNamesThatDifferOnlyInCaseAreDifferent) {
    give_profile();
    through_every_door([this](Behind<User>& user) {
        give_profile(u"sales");
        bind(user);
        const Ref<Profile> held = user.call<&User::get_Profile>();
        directory_.answer_of(jsmith, u"ProfileCN", Values{u"Sales"});
        bind(user);
        EXPECT_NE(user.call<&User::get_Profile>().get(), held.get());
    });
}

TEST_FRESH(UserBinding, ARebindToAUserWithoutAProfileDropsTheProfile) {
    give_profile();
    through_every_door([this](Behind<User>& user) {
        bind(user);
        EXPECT_TRUE(user.call<&User::get_Profile>());
        journal_.clear();
        bind(user, u"nobody");
        EXPECT_FALSE(user.call<&User::get_Profile>());
        EXPECT_EQ(journal_.take().size(), 7u) << "the profile is not asked for its name";
        EXPECT_EQ(directory_.entries, 2) << "the user's and the account's";
    });
}

TEST_FRESH(UserBinding, AnEmptyTextAsProfileNameIsNoProfile) {
    directory_.answer_of(jsmith, u"ProfileCN", Values{u""});
    through_every_door([](Behind<User>& user) {
        bind(user);
        EXPECT_FALSE(user.call<&User::get_Profile>());
    });
}

// A provider that calls back while it is called: what the user releases then, an entry, a profile,
// an account, lives until its own method has returned.

TEST_FRESH(UserBinding, IsReplacedByABindThatComesDuringIt) {
    through_every_door([this](Behind<User>& user) {
        journal_.during("Bind", [&] { bind(user, u"mlee"); });
        bind(user);
        directory_.answer_of(u"un=mlee,ou=Users,o=Shop", u"mail", Values{u"ml@shop"});
        Text mail = u"mail";
        EXPECT_EQ(user.call<&User::GetAttribValue>(mail), Variant(Values{u"ml@shop"}));
    });
}

TEST_FRESH(UserBinding, MayComeDuringTheReadingWritingAndClearingOfAnAttribute) {
    directory_.answer_of(jsmith, u"mail", Values{u"js@shop"});
    bound_through_every_door([this](Behind<User>& user) {
        Text mail = u"mail";
        Variant value = u"new@shop";
        journal_.during("GetValues", [&] { bind(user); });
        EXPECT_EQ(user.call<&User::GetAttribValue>(mail), Variant(Values{u"js@shop"}));
        journal_.during("SetValues", [&] { bind(user); });
        user.call<&User::SetAttribValue>(mail, value);
        EXPECT_EQ(directory_.written, Variant(u"new@shop"));
        journal_.during("ClearValues", [&] { bind(user); });
        user.call<&User::ClearAttribValue>(mail);
        EXPECT_EQ(directory_.entries, 2) << "the user's and the account's";
    });
}

TEST_FRESH(UserBinding, MayComeWhileTheAccountIsAsked) {
    directory_.answer(u"OrvoNTUser", Values{u"guest"});
    bound_through_every_door([this](Behind<User>& user) {
        journal_.during("GetValues", [&] { bind(user); });
        EXPECT_EQ(user.call<&User::NTUser>(), u"guest");
    });
}

TEST_FRESH(UserBinding, FailsWhereTheUserIsDeactivatedWhileTheProfileIsAsked) {
    give_profile();
    load_settings();
    const Ref<User> user = make<User>();
    bind(user);
    const auto control = Ref<ObjectControl>::from(user.object());
    // The first value read is the profile's name, the second what the profile calls itself.
    journal_.during_nth("GetValues", 2,
                        [&] { call<&ObjectControl::IObjectControl_Deactivate>(control); });
    EXPECT_EQ(raised_by([&] { bind(user); }).number, 91);
    EXPECT_FALSE(call<&User::get_Profile>(user));
}

// Settings.

TEST_FRESH(UserBinding, SetServerInfoLoadsAFileIntoTheThreadsSettings) {
    membership() = {};
    configuration_.files[u"C:\\Shop\\site.ini"][u"MEMBERSHIP"] = shop();
    User user;
    forget();
    Text name = u"jsmith", account;
    Secret password;
    EXPECT_EQ(raised_by([&] { user.BindAs(name, account, password); }).number, 91);
    user.setServerInfo(u"C:\\Shop\\site.ini");
    EXPECT_EQ(shared_server_info()->ConfigurationPath(), u"C:\\Shop\\site.ini");
    user.BindAs(name, account, password);
    EXPECT_EQ(user.CN(), u"");
}

TEST_FRESH(UserBinding, AFileThatCannotBeLoadedIsReportedUnderSetServerInfo) {
    for (const Door door : every_door) {
        SCOPED_TRACE(testing::PrintToString(door));
        Behind<User> user(door);
        journal_.refuse("LoadConfigurationFile", {53, u"Its.Own", u"not there"});
        const Failure failure =
            raised_by([&] { user.call<&User::setServerInfo>(Text(u"missing.ini")); });
        EXPECT_EQ(failure.number, 53);
        EXPECT_THAT(to_utf8(failure.description),
                    testing::StartsWith("\r\nERROR 0x35\r\n"
                                        " METHOD: OrvoMembership.User.setServerInfo\r\n"));
    }
}

}  // namespace
}  // namespace orvo
