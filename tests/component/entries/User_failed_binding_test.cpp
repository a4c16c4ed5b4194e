#include "tests/component/entries/user_binding_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

constexpr const char* no_server_info =
    "No OrvoMembership.ServerInfo. Create ServerInfo first and invoke setServerInfo()";
constexpr const char* no_name =
    "Cannot bind to a user with an empty (cn) name, please fill in user name.";

// What stays done when a bind fails. The containers are composed with the root, so without a root
// there is no user container.

TEST_FRESH(UserBinding, WithoutAnySettingsBindAsFailsInTheProviderFactory) {
    Behind<User> user(Door::slots);
    forget();
    expect_failure(raised_by([&] { bind(user); }), 91, u"OrvoMembership",
                   block("5B", bind_as, block("5B", "OrvoMembership.PMMCreator.GetPMM", not_set)));
}

TEST_FRESH(UserBinding, WithoutServerNameOrUserContainerBindAsRaisesServerInfoNotCreated) {
    for (const char16_t* setting : {u"LDAPServer", u"LDAPRoot"}) {
        in_fresh_thread([&] {
            membership() = shop();
            membership().erase(setting);
            through_every_door([&](Behind<User>& user) {
                expect_failure(raised_by([&] { bind(user); }), error_number(0x80040321),
                               u"OrvoMembership.User.BindAs",
                               block("80040321", bind_as, no_server_info));
                EXPECT_THAT(journal_.take(), ElementsAre("new Test.Directory()", "CreateEntry()"))
                    << "the directory object is there by then";
                EXPECT_THAT(log_.take_sources(), ElementsAre(bind_as));
                Text name = u"mail";
                EXPECT_EQ(user.call<&User::GetAttribValue>(name), Variant(Values{Variant()}))
                    << "and is kept";
            });
        });
    }
}

TEST_FRESH(UserBinding, AnEmptyNameRaisesUserDoesNotExistAfterTheEntryWasReplaced) {
    through_every_door([this](Behind<User>& user) {
        bind(user);
        forget();
        expect_failure(raised_by([&] { bind(user, u""); }), error_number(0x80040324),
                       u"OrvoMembership.User.BindAs", block("80040324", bind_as, no_name));
        EXPECT_THAT(journal_.take(), ElementsAre("CreateEntry()"));
        EXPECT_THAT(log_.take(),
                    ElementsAre(LogEntry{
                        "LogMessage", bind_as,
                        block("80040324", bind_as, block("80040324", bind_as, no_name)), 0}));
    });
}

TEST_FRESH(UserBinding, TheLackOfSettingsIsFoundBeforeTheEmptyName) {
    membership().erase(u"LDAPServer");
    through_every_door([](Behind<User>& user) {
        EXPECT_EQ(raised_by([&] { bind(user, u""); }).number, error_number(0x80040321));
    });
}

TEST_FRESH(UserBinding, ARefusedBindKeepsTheNewEntryAndTheOldProfileAndAccount) {
    give_profile();
    through_every_door([this](Behind<User>& user) {
        bind(user);
        const Ref<Profile> held = user.call<&User::get_Profile>();
        forget();
        journal_.refuse_nth("Bind", 1,
                            {error_number(0x8007052E), u"Its.Own", u"(49) Invalid credentials"});
        expect_failure(raised_by([&] { bind(user, u"mlee"); }), error_number(0x8007052E),
                       u"Its.Own", block("8007052E", bind_as, "(49) Invalid credentials"));
        EXPECT_THAT(log_.take_sources(), ElementsAre("Its.Own"));
        EXPECT_EQ(user.call<&User::get_Profile>().get(), held.get());
        EXPECT_EQ(directory_.entries, 3);
        directory_.answer_of(jsmith, u"mail", Values{u"js@shop"});
        Text mail = u"mail";
        EXPECT_EQ(user.call<&User::GetAttribValue>(mail), Variant(Values{Variant()}))
            << "read from the new entry, not from jsmith's";
        EXPECT_EQ(user.call<&User::NTUser>(), u"");
    });
}

TEST_FRESH(UserBinding, AProfileThatCannotBeBoundEndsTheBindWithTheEntryBoundAndTheOldAccount) {
    give_profile();
    directory_.answer_of(jsmith, u"mail", Values{u"js@shop"});
    directory_.answer_of(u"an=0,ou=Accounts,o=Shop", u"OrvoNTUser", Values{u"guest"});
    through_every_door([this](Behind<User>& user) {
        bind(user, u"nobody");
        forget();
        journal_.refuse_nth("Bind", 2,
                            {error_number(0x80072030), u"Its.Own", u"(32) No such object"});
        expect_failure(
            raised_by([&] { bind(user); }), error_number(0x80072030), u"Its.Own",
            block("80072030", bind_as,
                  block("80072030", "OrvoMembership.Profile.BindAs", "(32) No such object")));
        EXPECT_THAT(log_.take(), testing::SizeIs(3))
            << "a note of the profile's activation and an entry of each level";
        Text mail = u"mail";
        EXPECT_EQ(user.call<&User::GetAttribValue>(mail), Variant(Values{u"js@shop"}));
        EXPECT_EQ(user.call<&User::NTUser>(), u"guest");
        EXPECT_FALSE(user.call<&User::get_Profile>());
    });
}

TEST_FRESH(UserBinding, AfterAProfileThatCouldNotBeBoundTheNextBindTriesAnew) {
    give_profile();
    through_every_door([this](Behind<User>& user) {
        journal_.refuse_nth("Bind", 2, no_rights());
        raised_by([&] { bind(user); });
        bind(user);
        EXPECT_EQ(call<&Profile::CN>(user.call<&User::get_Profile>()), u"sales");
    });
}

TEST_FRESH(UserBinding, AFirstBindThatFailsAtTheProfileLeavesNoAccount) {
    give_profile();
    through_every_door([this](Behind<User>& user) {
        journal_.refuse_nth("Bind", 2, no_rights());
        raised_by([&] { bind(user); });
        expect_failure(raised_by([&] { user.call<&User::NTUser>(); }), 91, u"OrvoMembership",
                       block("5B", "OrvoMembership.User.NTUser", not_set));
    });
}

TEST_FRESH(UserBinding, AnAccountThatCannotBeBoundFailsTheBindAndIsHeldUnbound) {
    through_every_door([this](Behind<User>& user) {
        journal_.refuse_nth("Bind", 2, no_rights());
        expect_failure(
            raised_by([&] { bind(user); }), error_number(0x80072098), u"Its.Own",
            block("80072098", bind_as,
                  block("80072098", "OrvoMembership.Account.Init", "(50) no rights",
                        "Cannot bind with the administrator user, please check the administrator "
                        "user in LDAP")));
        EXPECT_EQ(directory_.entries, 2);
    });
}

TEST_FRESH(UserBinding, AUserTypeThatIsNoNumberFailsTheBindWithANewAccountNotYetBound) {
    directory_.answer_of(jsmith, u"OrvoUserType", Values{u"admin"});
    through_every_door([](Behind<User>& user) {
        expect_failure(
            raised_by([&] { bind(user); }), 13, u"OrvoMembership",
            block("D", bind_as, block("D", "OrvoMembership.User.OrvoUserType", type_mismatch)));
        expect_failure(raised_by([&] { user.call<&User::NTUser>(); }), 91, u"OrvoMembership",
                       block("5B", "OrvoMembership.User.NTUser",
                             block("5B", "OrvoMembership.Account.get_NTUser", not_set)));
    });
}

TEST_FRESH(UserBinding, AReadThatFailsDuringTheBindShowsTheChainOfMethods) {
    through_every_door([this](Behind<User>& user) {
        journal_.refuse_nth("GetValues", 1, no_rights());
        expect_failure(raised_by([&] { bind(user); }), error_number(0x80072098), u"Its.Own",
                       "\r\n"
                       "ERROR 0x80072098\r\n"
                       " METHOD: OrvoMembership.User.BindAs\r\n"
                       " DESC: \r\n"
                       "ERROR 0x80072098\r\n"
                       " METHOD: OrvoMembership.User.ProfileCN\r\n"
                       " DESC: \r\n"
                       "ERROR 0x80072098\r\n"
                       " METHOD: OrvoMembership.User.GetAttribValue\r\n"
                       " DESC: (50) no rights.\r\n"
                       " INFO: Attribute is: ProfileCN.\r\n"
                       ".\r\n"
                       ".\r\n");
        EXPECT_EQ(log_.take().size(), 3u);
    });
}

TEST_FRESH(UserBinding, AMissingProfileClassFailsTheBind) {
    give_profile();
    in_fresh_thread([this] {
        load_settings();
        Behind<User> user(Door::slots);
        const RecordingContext context(journal_);
        journal_.refuse_nth("CreateInstance", 2, {429, u"Its.Own", u"no such class"});
        expect_failure(
            raised_by([&] { bind(user); }), 429, u"Its.Own",
            block("1AD", bind_as,
                  block("1AD", "Lib_General.Gen_GetComponent", "no such class",
                        "CreateInstance(OrvoMembership.Profile) failed.\r\nNote: Objects having "
                        "'Instancing=PublicNotCreatable' may only be instantiated with 'New', not "
                        "with Gen_GetComponent()")));
        EXPECT_FALSE(user.call<&User::get_Profile>());
    });
}

}  // namespace
}  // namespace orvo
