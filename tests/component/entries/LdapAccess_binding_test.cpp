#include "component/config/SharedServerInfo.h"
#include "component/entries/LdapAccess.h"
#include "tests/component/component_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* factory = "OrvoMembership.PMMCreator.GetPMM";
constexpr const char* bind_as = "OrvoMembership.LDAPAccess.BindAs";
constexpr const char* bind_to_config = "OrvoMembership.LDAPAccess.BindToConfig";

class LdapAccessBinding : public ComponentTest {
protected:
    template <class Body>
    void through_every_door(Body body) {
        through_doors_to<LdapAccess>(body);
    }
    static void bind(Behind<LdapAccess>& entry) {
        Text name = u"cn=jsmith", user = u"cn=admin", server = u"dir02", container = u"ou=Staff";
        Secret password(u"secret");
        entry.call<&LdapAccess::BindAs>(name, user, password, server, container);
        EXPECT_EQ(name, u"cn=jsmith");
        EXPECT_EQ(user, u"cn=admin");
        EXPECT_EQ(clear_text(password), u"secret");
        EXPECT_EQ(server, u"dir02");
        EXPECT_EQ(container, u"ou=Staff");
    }
};

TEST_FRESH(LdapAccessBinding, CreationLoadsTheSitesConfigurationIntoTheSharedSettings) {
    const LdapAccess entry;
    const auto calls = journal_.take();
    ASSERT_EQ(calls.size(), 19u);
    EXPECT_EQ(calls[0], "new Quendra.Configuration()");
    EXPECT_EQ(calls[1], "Initialize()");
    EXPECT_EQ(calls[2], "ReadConfigValue(MEMBERSHIP, LDAPServer)");
    EXPECT_TRUE(shared_server_info()->IsLoaded());
    EXPECT_EQ(configuration_.alive, 0) << "the component is released";
}

TEST_FRESH(LdapAccessBinding, CreationAsksForNoIntrinsicOfTheWeb) {
    const RecordingContext context(journal_);
    const LdapAccess entry;
    const auto calls = journal_.take();
    EXPECT_EQ(calls[0], "CreateInstance(Quendra.Configuration)");
    EXPECT_THAT(calls, testing::Each(testing::Not(testing::StartsWith("Item("))));
}

TEST_FRESH(LdapAccessBinding, TheTransactionServerMayActivateItAgainAndDeactivateIt) {
    const Ref<LdapAccess> entry = make<LdapAccess>();
    const auto control = Ref<ObjectControl>::from(entry.object());
    journal_.clear();
    call<&ObjectControl::IObjectControl_Activate>(control);
    EXPECT_THAT(journal_.take(), ElementsAre("new Quendra.Configuration()", "Initialize()"));
    call<&ObjectControl::IObjectControl_Deactivate>(control);
    EXPECT_THAT(journal_.take(), IsEmpty());
    EXPECT_FALSE(call<&ObjectControl::IObjectControl_CanBePooled>(control));
}

TEST_FRESH(LdapAccessBinding, WithoutTheConfigurationComponentCreationFailsAsItIsRaised) {
    configuration_.remove();
    const auto expected =
        block("1AD", "Lib_General.Gen_GetComponent", cannot_create(u"Quendra.Configuration"),
              "CreateObject(Quendra.Configuration) failed");
    expect_failure(raised_by([] { LdapAccess(); }), 429, u"OrvoMembership", expected);
    expect_failure(raised_by([] { make<LdapAccess>(); }), 429, u"OrvoMembership", expected);
    EXPECT_EQ(log_.take().size(), 2u);
}

TEST_FRESH(LdapAccessBinding, AFailingInitialisationSurfacesFromCreationUnlogged) {
    journal_.refuse("Initialize", {53, u"Its.Own", u"site.ini: not there"});
    expect_failure(raised_by([] { LdapAccess(); }), 53, u"Its.Own", "site.ini: not there");
    EXPECT_THAT(log_.take(), IsEmpty());
}

TEST_FRESH(LdapAccessBinding, AFailingReadSurfacesFromCreationUnderLoadConfig) {
    journal_.refuse_nth("ReadConfigValue", 3, {5, u"Its.Own", u"unreadable"});
    expect_failure(raised_by([] { LdapAccess(); }), 5, u"Its.Own",
                   block("5", "OrvoMembership.ServerInfo.LoadConfig", "unreadable",
                         "Couldn't read a configuration value"));
    EXPECT_FALSE(shared_server_info()->IsLoaded());
}

TEST_FRESH(LdapAccessBinding, BindAsBindsANewEntryOfTheProvider) {
    through_every_door([this](Behind<LdapAccess>& entry) {
        bind(entry);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("new Test.Directory()", "CreateEntry()",
                                "Bind(dir02, ou=Staff, cn=jsmith, cn=admin, secret, [])"));
    });
}

TEST_FRESH(LdapAccessBinding, WhatTheProviderDoesToTheArgumentsReachesTheCaller) {
    directory_.changes_arguments = true;
    through_every_door([](Behind<LdapAccess>& entry) {
        Text name = u"cn=jsmith", user = u"cn=admin", server = u"dir02", container = u"ou=Staff";
        Secret password(u"secret");
        entry.call<&LdapAccess::BindAs>(name, user, password, server, container);
        EXPECT_EQ(name, u"cn=jsmith!");
        EXPECT_EQ(user, u"cn=admin!");
        EXPECT_EQ(clear_text(password), u"secret!");
        EXPECT_EQ(server, u"dir02!");
        EXPECT_EQ(container, u"ou=Staff!");
    });
}

TEST_FRESH(LdapAccessBinding, ASecondBindAsReplacesModuleAndEntry) {
    through_every_door([this](Behind<LdapAccess>& entry) {
        bind(entry);
        bind(entry);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("new Test.Directory()", "CreateEntry()",
                                "Bind(dir02, ou=Staff, cn=jsmith, cn=admin, secret, [])",
                                "new Test.Directory()", "CreateEntry()",
                                "Bind(dir02, ou=Staff, cn=jsmith, cn=admin, secret, [])"));
        EXPECT_EQ(directory_.modules, 1);
        EXPECT_EQ(directory_.entries, 1);
    });
    EXPECT_EQ(directory_.modules, 0) << "both go with the object";
    EXPECT_EQ(directory_.entries, 0);
}

TEST_FRESH(LdapAccessBinding, AnEntryIsReleasedBeforeTheModuleThatMadeIt) {
    through_every_door([](Behind<LdapAccess>& entry) {
        bind(entry);
        bind(entry);
    });
    EXPECT_EQ(directory_.orphans, 0);
}

TEST_FRESH(LdapAccessBinding, WithoutANewEntryTheFormerOneStaysWithItsModule) {
    directory_.answer_of(u"cn=jsmith,ou=Staff", u"mail", Values{u"john@shop"});
    through_every_door([this](Behind<LdapAccess>& entry) {
        bind(entry);
        journal_.refuse_nth("CreateEntry", 1, no_rights());
        raised_by([&] { bind(entry); });
        Text mail = u"mail";
        EXPECT_EQ(entry.call<&LdapAccess::GetAttribValue>(mail), Variant(u"john@shop"));
        EXPECT_EQ(directory_.modules, 1);
    });
    EXPECT_EQ(directory_.orphans, 0);
}

TEST_FRESH(LdapAccessBinding, ARefusedBindIsReportedUnderBindAs) {
    journal_.refuse("Bind", {error_number(0x8007052E), u"Its.Own", u"(49) Invalid credentials"});
    through_every_door([this](Behind<LdapAccess>& entry) {
        expect_failure(raised_by([&] { bind(entry); }), error_number(0x8007052E), u"Its.Own",
                       block("8007052E", bind_as, "(49) Invalid credentials"));
        EXPECT_THAT(log_.take_sources(), ElementsAre("Its.Own"));
    });
}

TEST_FRESH(LdapAccessBinding, AProviderThatIsNotThereRaises429InThreeBlocks) {
    membership()[u"PlugableModuleImplementation"] = u"Missing.Directory";
    through_every_door([this](Behind<LdapAccess>& entry) {
        expect_failure(raised_by([&] { bind(entry); }), 429, u"OrvoMembership",
                       "\r\n"
                       "ERROR 0x1AD\r\n"
                       " METHOD: OrvoMembership.LDAPAccess.BindAs\r\n"
                       " DESC: \r\n"
                       "ERROR 0x1AD\r\n"
                       " METHOD: OrvoMembership.PMMCreator.GetPMM\r\n"
                       " DESC: \r\n"
                       "ERROR 0x1AD\r\n"
                       " METHOD: Lib_General.Gen_GetComponent\r\n"
                       " DESC: " +
                           cannot_create(u"Missing.Directory") +
                           ".\r\n"
                           " INFO: CreateObject(Missing.Directory) failed.\r\n"
                           ".\r\n"
                           ".\r\n");
        EXPECT_EQ(log_.take().size(), 3u) << "each level writes its own entry";
    });
}

TEST_FRESH(LdapAccessBinding, WithoutAProviderBindAsFailsOnTheEmptyReference) {
    membership().erase(u"PlugableModuleImplementation");
    through_every_door([](Behind<LdapAccess>& entry) {
        expect_failure(raised_by([&] { bind(entry); }), 91, u"OrvoMembership",
                       block("5B", bind_as, block("5B", factory, not_set)));
    });
}

class LdapAccessConfig : public LdapAccessBinding {
protected:
    LdapAccessConfig() {
        configuration_.files[u"C:\\Site\\Config\\directory.ini"] = {
            {u"ConfigDN", {{u"dn", u"cn=config,o=Shop"}}},
            {u"Attributes", {{u"Phone", u"telephoneNumber"}, {u"Count", 3}}}};
    }
    static Variant name_of(Behind<LdapAccess>& entry, Variant name) {
        return entry.call<&LdapAccess::GetAttributeName>(name);
    }
};

TEST_FRESH(LdapAccessConfig, BindToConfigBindsTheEntryThatTheConfigurationNamesAsTheScriptUser) {
    through_every_door([this](Behind<LdapAccess>& entry) {
        entry.call<&LdapAccess::BindToConfig>();
        EXPECT_THAT(
            journal_.take(),
            ElementsAre("new Quendra.Configuration()", "GetFolder()",
                        "LoadConfigurationFile(C:\\Site\\Config\\directory.ini)",
                        "ReadConfigValue(ConfigDN, dn)", "new Test.Directory()", "CreateEntry()",
                        "Bind(dir01:389, cn=config,o=Shop, , cn=script,o=Shop, script-code, [])"));
    });
}

TEST_FRESH(LdapAccessConfig, BindToConfigWithoutANameBindsWithAnEmptyContainer) {
    configuration_.files.clear();
    through_every_door([this](Behind<LdapAccess>& entry) {
        entry.call<&LdapAccess::BindToConfig>();
        EXPECT_EQ(journal_.take().back(), "Bind(dir01:389, , , cn=script,o=Shop, script-code, [])");
    });
}

TEST_FRESH(LdapAccessConfig, BindToConfigJoinsThePathWithNothingBetween) {
    configuration_.folder = u"/etc/shop/";
    membership().erase(u"ConfigFileName");
    through_every_door([this](Behind<LdapAccess>& entry) {
        entry.call<&LdapAccess::BindToConfig>();
        EXPECT_EQ(journal_.take()[2], "LoadConfigurationFile(/etc/shop/\\Config\\)");
    });
}

TEST_FRESH(LdapAccessConfig, ARefusedBindPassesThroughBothMethods) {
    journal_.refuse("Bind", {error_number(0x80072030), u"Its.Own", u"(32) No such object"});
    through_every_door([this](Behind<LdapAccess>& entry) {
        expect_failure(
            raised_by([&] { entry.call<&LdapAccess::BindToConfig>(); }), error_number(0x80072030),
            u"Its.Own",
            block("80072030", bind_to_config, block("80072030", bind_as, "(32) No such object")));
        EXPECT_EQ(log_.take().size(), 2u);
    });
}

TEST_FRESH(LdapAccessConfig, EachStepOfBindToConfigFailsUnderItsName) {
    for (const char* step : {"GetFolder", "LoadConfigurationFile", "ReadConfigValue"}) {
        SCOPED_TRACE(step);
        through_every_door([&](Behind<LdapAccess>& entry) {
            journal_.refuse(step, {53, u"Its.Own", u"refused"});
            expect_failure(raised_by([&] { entry.call<&LdapAccess::BindToConfig>(); }), 53,
                           u"Its.Own", block("35", bind_to_config, "refused"));
            journal_.allow(step);
        });
    }
}

TEST_FRESH(LdapAccessConfig, ANameThatIsNoTextIsAFailureOfBindToConfig) {
    configuration_.files[u"C:\\Site\\Config\\directory.ini"][u"ConfigDN"][u"dn"] = Variant::null();
    through_every_door([](Behind<LdapAccess>& entry) {
        expect_failure(raised_by([&] { entry.call<&LdapAccess::BindToConfig>(); }), 94,
                       u"OrvoMembership", block("5E", bind_to_config, "Invalid use of Null"));
    });
}

TEST_FRESH(LdapAccessConfig, GetAttributeNameAnswersWhatTheConfigurationHasUnchanged) {
    through_every_door([this](Behind<LdapAccess>& entry) {
        entry.call<&LdapAccess::BindToConfig>();
        journal_.clear();
        EXPECT_EQ(name_of(entry, u"Phone"), Variant(u"telephoneNumber"));
        EXPECT_EQ(name_of(entry, u"Count"), Variant(3));
        EXPECT_EQ(name_of(entry, u"Unknown"), Variant());
        EXPECT_EQ(name_of(entry, 42), Variant()) << "a number is converted to text";
        EXPECT_THAT(
            journal_.take(),
            ElementsAre("ReadConfigValue(Attributes, Phone)", "ReadConfigValue(Attributes, Count)",
                        "ReadConfigValue(Attributes, Unknown)", "ReadConfigValue(Attributes, 42)"));
    });
}

TEST_FRESH(LdapAccessConfig, TheConfigurationIsKeptWhateverIsBoundNext) {
    through_every_door([this](Behind<LdapAccess>& entry) {
        journal_.refuse_nth("Bind", 1, no_rights());
        raised_by([&] { entry.call<&LdapAccess::BindToConfig>(); });
        EXPECT_EQ(name_of(entry, u"Phone"), Variant(u"telephoneNumber")) << "though not bound";
        bind(entry);
        EXPECT_EQ(name_of(entry, u"Phone"), Variant(u"telephoneNumber"));
        journal_.refuse_nth("GetFolder", 1, no_rights());
        raised_by([&] { entry.call<&LdapAccess::BindToConfig>(); });
        EXPECT_EQ(configuration_.alive, 1);
        EXPECT_EQ(name_of(entry, u"Phone"), Variant()) << "of the new one, which loaded nothing";
    });
    EXPECT_EQ(configuration_.alive, 0);
}

TEST_FRESH(LdapAccessConfig, GetAttributeNameBeforeBindToConfigFailsUnderItsName) {
    through_every_door([](Behind<LdapAccess>& entry) {
        const auto expected = block("5B", "OrvoMembership.LDAPAccess.GetAttributeName", not_set);
        expect_failure(raised_by([&] { name_of(entry, u"Phone"); }), 91, u"OrvoMembership",
                       expected);
        bind(entry);
        expect_failure(raised_by([&] { name_of(entry, u"Phone"); }), 91, u"OrvoMembership",
                       expected);
    });
}

TEST_FRESH(LdapAccessConfig, GetAttributeNameOfWhatIsNoTextFailsUnderItsName) {
    through_every_door([](Behind<LdapAccess>& entry) {
        entry.call<&LdapAccess::BindToConfig>();
        expect_failure(
            raised_by([&] { name_of(entry, Variant::null()); }), 94, u"OrvoMembership",
            block("5E", "OrvoMembership.LDAPAccess.GetAttributeName", "Invalid use of Null"));
        expect_failure(raised_by([&] { name_of(entry, Values{u"a"}); }), 13, u"OrvoMembership",
                       block("D", "OrvoMembership.LDAPAccess.GetAttributeName", "Type mismatch"));
    });
}

}  // namespace
}  // namespace orvo
