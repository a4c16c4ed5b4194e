#include "tests/component/entries/given_privileges.h"
#include "tests/component/entries/user_binding_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class UserActivation : public UserTest {};

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
    context.items[u"Session"] = login_session();
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
    bind(user);
    const auto control = Ref<ObjectControl>::from(user.object());
    forget();
    call<&ObjectControl::IObjectControl_Deactivate>(control);
    EXPECT_THAT(journal_.take(), IsEmpty());
    EXPECT_EQ(directory_.entries, 1) << "the account's";
    EXPECT_EQ(directory_.modules, 0) << "the factory goes as well";
    EXPECT_FALSE(call<&User::get_Profile>(user));
    EXPECT_EQ(raised_by([&] { call<&User::CN>(user); }).number, 91);
    EXPECT_EQ(call<&User::NTUser>(user), u"guest");
    bind(user);
    EXPECT_TRUE(call<&User::get_Profile>(user)) << "a bind makes a new factory";
}

TEST_FRESH(UserActivation, DeactivationKeepsThePrivilegeListsAndWhatWasRead) {
    set_user_privilege_source([](const Text&) {
        return UserPrivileges{.readable = {u"profilecn", u"orvousertype", u"mail"},
                              .writable = {u"sn"}};
    });
    directory_.answer_of(jsmith, u"mail", Values{u"js@shop"});
    load_settings();
    const Ref<User> user = make<User>();
    bind(user);
    Text mail = u"mail", fax = u"fax", sn = u"sn";
    call<&User::GetAttribValue>(user, mail);
    call<&ObjectControl::IObjectControl_Deactivate>(Ref<ObjectControl>::from(user.object()));
    forget();
    EXPECT_EQ(call<&User::GetAttribValue>(user, mail), Variant(Values{u"js@shop"}));
    EXPECT_EQ(call<&User::GetAttribValue>(user, fax), Variant(u"")) << "not to be read";
    Variant value = u"x";
    call<&User::SetAttribValue>(user, mail, value);  // not to be written
    EXPECT_THAT(log_.take(), IsEmpty());
    EXPECT_EQ(raised_by([&] { call<&User::SetAttribValue>(user, sn, value); }).number, 91);
    EXPECT_THAT(journal_.take(), IsEmpty());
}

TEST_FRESH(UserActivation, EachActivationBringsANewProviderFactory) {
    load_settings();
    const Ref<User> user = make<User>();
    bind(user);
    EXPECT_EQ(directory_.modules, 1);
    call<&ObjectControl::IObjectControl_Activate>(Ref<ObjectControl>::from(user.object()));
    EXPECT_EQ(directory_.modules, 0);
    forget();
    bind(user);
    EXPECT_EQ(journal_.take()[0], "new Test.Directory()");
}

TEST_FRESH(UserActivation, ReleasingTheObjectReleasesEverything) {
    give_profile();
    through_every_door([](Behind<User>& user) { bind(user); });
    EXPECT_EQ(directory_.entries, 0);
    EXPECT_EQ(directory_.modules, 0);
}

}  // namespace
}  // namespace orvo
