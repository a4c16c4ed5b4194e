#include "tests/component/entries/user_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(slot_of<&User::BindAs> == 7);
static_assert(slot_of<&User::setServerInfo> == 9);
static_assert(slot_of<&User::GetAttribValue> == 10);
static_assert(slot_of<&User::SetAttribValue> == 11);
static_assert(slot_of<&User::ClearAttribValue> == 12);

constexpr const char* bind_as = "OrvoMembership.User.BindAs";
constexpr const char* activate = "OrvoMembership.User.IObjectControl_Activate";

constexpr const char* no_server_info =
    "No OrvoMembership.ServerInfo. Create ServerInfo first and invoke setServerInfo()";
constexpr const char* no_name =
    "Cannot bind to a user with an empty (cn) name, please fill in user name.";

constexpr const char* bind_jsmith =
    "Bind(dir01:389, ou=Users,o=Shop, un=jsmith, cn=web,o=Shop, web-code, "
    "[cn, OrvoUserType, BusinessPartnerID])";
constexpr const char* bind_account =
    "Bind(dir01:389, ou=Accounts,o=Shop, an=0, cn=script,o=Shop, script-code, [])";
constexpr const char* bind_sales =
    "Bind(dir01:389, ou=Profiles,o=Shop, pn=sales, cn=web,o=Shop, web-code, [])";

class UserBinding : public UserTest {};

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
        Text name = u"jsmith", account = u"cn=web,o=Shop", password = u"web-code";
        user.call<&User::BindAs>(name, account, password);
        EXPECT_EQ(name, u"jsmith");
        EXPECT_EQ(account, u"cn=web,o=Shop");
        EXPECT_EQ(password, u"web-code");
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

// Settings.

TEST_FRESH(UserBinding, SetServerInfoLoadsAFileIntoTheThreadsSettings) {
    membership() = {};
    configuration_.files[u"C:\\Shop\\site.ini"][u"MEMBERSHIP"] = shop();
    User user;
    forget();
    Text name = u"jsmith", account, password;
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

// Activation and deactivation.

class UserActivation : public UserTest {
protected:
    // A web session, as the login leaves it.
    Object session(const std::map<Text, Text>& values) {
        const auto session = make<DictionaryObject>();
        for (const auto& [name, value] : values) {
            Variant key = name, item = value;
            call<&Dictionary::Add>(session, key, item);
        }
        return session.object();
    }
};

TEST_FRESH(UserActivation, OutsideAContextOnlyANoteIsWritten) {
    const User user;
    EXPECT_THAT(journal_.take(), IsEmpty());
    EXPECT_THAT(log_.take(),
                ElementsAre(LogEntry{"LogMessage", activate,
                                     "\r\nERROR 0x0\r\n"
                                     " METHOD: OrvoMembership.User.IObjectControl_Activate\r\n"
                                     " DESC: Not an actual error.\r\n"
                                     " INFO: No objectcontext.\r\n",
                                     1}));
    EXPECT_FALSE(shared_server_info()->IsLoaded());
}

TEST_FRESH(UserActivation, InAContextWithoutASessionOnlyANoteIsWritten) {
    const RecordingContext context(journal_);
    const User user;
    EXPECT_THAT(journal_.take(), ElementsAre("Item(Session)", "CreateInstance(Quendra.Log)"));
    EXPECT_THAT(log_.take(),
                ElementsAre(LogEntry{"LogMessage", activate,
                                     "\r\nERROR 0x0\r\n"
                                     " METHOD: OrvoMembership.User.IObjectControl_Activate\r\n"
                                     " DESC: Not an actual error.\r\n"
                                     " INFO: No Session object in ObjectContext.\r\n",
                                     1}));
    EXPECT_FALSE(shared_server_info()->IsLoaded());
}

TEST_FRESH(UserActivation, WithoutALogTheNoteIsDropped) {
    log_.remove();
    EXPECT_NO_THROW(User());
}

TEST_FRESH(UserActivation, ASessionWithoutALoginLoadsTheSettingsAndLeavesTheUserUnbound) {
    RecordingContext context(journal_);
    context.items[u"Session"] = session({});
    User user;
    const auto calls = journal_.take();
    ASSERT_EQ(calls.size(), 22u);
    EXPECT_EQ(calls[0], "Item(Session)");
    EXPECT_EQ(calls[1], "CreateInstance(Quendra.Configuration)");
    EXPECT_EQ(calls[2], "new Quendra.Configuration()");
    EXPECT_EQ(calls[3], "Initialize()");
    EXPECT_EQ(calls[4], "ReadConfigValue(MEMBERSHIP, LDAPServer)");
    EXPECT_EQ(calls[21], "Item(Session)");
    EXPECT_THAT(log_.take(), IsEmpty());
    EXPECT_TRUE(shared_server_info()->IsLoaded());
    EXPECT_EQ(configuration_.alive, 0) << "the component is released";
    EXPECT_EQ(raised_by([&] { user.CN(); }).number, 91);
}

TEST_FRESH(UserActivation, TheSessionIsAskedForTheUserFirstAndForTheRestOnlyWhereThereIsOne) {
    load_settings();
    RecordingContext context(journal_);
    // Reading a key that a dictionary lacks adds it, so the keys tell what was read.
    const auto keys = [](const Object& session) {
        return shown(call<&Dictionary::Keys>(Ref<Dictionary>::from(session)));
    };
    const Object without = session({});
    context.items[u"Session"] = without;
    { const User user; }
    EXPECT_EQ(keys(without), "[REMOTE_USER]");
    const Object with = session({{u"REMOTE_USER", u"jsmith"}});
    context.items[u"Session"] = with;
    { const User user; }
    EXPECT_EQ(keys(with), "[REMOTE_USER, REMOTE_PASSWORD, REMOTE_ACCOUNT]");
}

TEST_FRESH(UserActivation, ASessionWithALoginBindsTheUserWithTheLoginsAccount) {
    load_settings();
    RecordingContext context(journal_);
    context.items[u"Session"] = session({{u"REMOTE_USER", u"jsmith"},
                                         {u"REMOTE_ACCOUNT", u"un=jsmith,ou=Users,o=Shop"},
                                         {u"REMOTE_PASSWORD", u"js-code"}});
    for (const Door door : every_door) {
        SCOPED_TRACE(testing::PrintToString(door));
        Behind<User> user(door);
        EXPECT_THAT(
            journal_.take(),
            ElementsAre("Item(Session)", "CreateInstance(Quendra.Configuration)",
                        "new Quendra.Configuration()", "Initialize()", "Item(Session)",
                        "CreateInstance(Test.Directory)", "new Test.Directory()", "CreateEntry()",
                        "Bind(dir01:389, ou=Users,o=Shop, un=jsmith, un=jsmith,ou=Users,o=Shop, "
                        "js-code, [cn, OrvoUserType, BusinessPartnerID])",
                        "GetValues(ProfileCN)", "GetValues(OrvoUserType)",
                        "CreateInstance(Test.Directory)", "new Test.Directory()", "CreateEntry()",
                        bind_account));
        directory_.answer_of(jsmith, u"cn", Values{u"jsmith"});
        EXPECT_EQ(user.call<&User::CN>(), u"jsmith");
        journal_.clear();
    }
}

TEST_FRESH(UserActivation, ARefusedBindSurfacesFromCreationUnderBothNames) {
    load_settings();
    RecordingContext context(journal_);
    context.items[u"Session"] = session({{u"REMOTE_USER", u"jsmith"}});
    journal_.refuse("Bind", no_rights());
    const auto expected = block("80072098", activate, block("80072098", bind_as, "(50) no rights"));
    expect_failure(raised_by([] { User(); }), error_number(0x80072098), u"Its.Own", expected);
    expect_failure(raised_by([] { make<User>(); }), error_number(0x80072098), u"Its.Own", expected);
    EXPECT_EQ(directory_.entries, 0);
}

TEST_FRESH(UserActivation, AFailingConfigurationSurfacesFromCreation) {
    RecordingContext context(journal_);
    context.items[u"Session"] = session({});
    journal_.refuse("Initialize", {53, u"Its.Own", u"site.ini: not there"});
    expect_failure(raised_by([] { User(); }), 53, u"Its.Own",
                   block("35", activate, "site.ini: not there"));
}

TEST_FRESH(UserActivation, TheTransactionServerMayActivateItAgain) {
    load_settings();
    const Ref<User> user = make<User>();
    const auto control = Ref<ObjectControl>::from(user.object());
    RecordingContext context(journal_);
    context.items[u"Session"] = session({{u"REMOTE_USER", u"jsmith"}});
    forget();
    call<&ObjectControl::IObjectControl_Activate>(control);
    EXPECT_EQ(directory_.entries, 2);
    EXPECT_FALSE(call<&ObjectControl::IObjectControl_CanBePooled>(control));
}

TEST_FRESH(UserActivation, DeactivationDropsEntryAndProfileAndKeepsTheAccount) {
    give_profile();
    directory_.answer_of(u"an=0,ou=Accounts,o=Shop", u"OrvoNTUser", Values{u"guest"});
    load_settings();
    const Ref<User> user = make<User>();
    Text name = u"jsmith", account = u"cn=web,o=Shop", password = u"web-code";
    call<&User::BindAs>(user, name, account, password);
    const auto control = Ref<ObjectControl>::from(user.object());
    forget();
    call<&ObjectControl::IObjectControl_Deactivate>(control);
    EXPECT_THAT(journal_.take(), IsEmpty());
    EXPECT_EQ(directory_.entries, 1) << "the account's";
    EXPECT_EQ(directory_.modules, 0) << "the factory goes as well";
    EXPECT_FALSE(call<&User::get_Profile>(user));
    EXPECT_EQ(raised_by([&] { call<&User::CN>(user); }).number, 91);
    EXPECT_EQ(call<&User::NTUser>(user), u"guest");
    call<&User::BindAs>(user, name, account, password);
    EXPECT_TRUE(call<&User::get_Profile>(user)) << "a bind makes a new factory";
}

TEST_FRESH(UserActivation, ReleasingTheObjectReleasesEverything) {
    give_profile();
    through_every_door([](Behind<User>& user) { bind(user); });
    EXPECT_EQ(directory_.entries, 0);
    EXPECT_EQ(directory_.modules, 0);
}

}  // namespace
}  // namespace orvo
