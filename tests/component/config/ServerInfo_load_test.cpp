#include "component/config/ServerInfo.h"
#include "tests/component/component_test.h"
#include "tests/platform/releases.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Every key, in the order in which it is read.
const std::vector<std::string> every_read = {
    "ReadConfigValue(MEMBERSHIP, LDAPServer)",
    "ReadConfigValue(MEMBERSHIP, UserContainer)",
    "ReadConfigValue(MEMBERSHIP, ProfileContainer)",
    "ReadConfigValue(MEMBERSHIP, AccountContainer)",
    "ReadConfigValue(MEMBERSHIP, UserClass)",
    "ReadConfigValue(MEMBERSHIP, ProfileClass)",
    "ReadConfigValue(MEMBERSHIP, AccountClass)",
    "ReadConfigValue(MEMBERSHIP, ProfileNamingAttribute)",
    "ReadConfigValue(MEMBERSHIP, UserNamingAttribute)",
    "ReadConfigValue(MEMBERSHIP, AccountNamingAttribute)",
    "ReadConfigValue(MEMBERSHIP, UserMandatoryAttributes)",
    "ReadConfigValue(MEMBERSHIP, MemScriptUser)",
    "ReadConfigValue(MEMBERSHIP, MemScriptCode)",
    "ReadConfigValue(MEMBERSHIP, CookieName)",
    "ReadConfigValue(MEMBERSHIP, LDAPRoot)",
    "ReadConfigValue(MEMBERSHIP, ConfigFileName)",
    "ReadConfigValue(MEMBERSHIP, PlugableModuleImplementation)",
};

constexpr const char* source = "OrvoMembership.ServerInfo.LoadConfig";
constexpr const char* could_not = "Couldn't read a configuration value";

class LoadConfigFile : public ComponentTest {
protected:
    void load(ServerInfo& info) {
        Ref<Configuration> configuration = configuration_.make_one();
        info.LoadConfigFile(configuration);
    }
};

TEST_FRESH(LoadConfigFile, ReadsEveryKeyOnceInItsOrder) {
    ServerInfo info;
    EXPECT_FALSE(info.IsLoaded());
    load(info);
    EXPECT_TRUE(info.IsLoaded());
    EXPECT_EQ(journal_.take(), every_read);
}

TEST_FRESH(LoadConfigFile, WhatTheComponentDoesToItsArgumentsStaysWithTheComponent) {
    configuration_.changes_arguments = true;
    ServerInfo info;
    load(info);
    EXPECT_EQ(journal_.take(), every_read);
    EXPECT_EQ(info.GetConfigFileName(), Variant(u"directory.ini"));
}

TEST_FRESH(LoadConfigFile, TheAnswerThatHoldsThePasswordIsOverwritten) {
    const Text password = u"script-code-of-29-characters!";
    membership()[u"MemScriptCode"] = password;
    ServerInfo info;
    {
        const Releases releases;
        load(info);
        EXPECT_THAT(releases.as_long_as(password), ElementsAre(overwritten(password)));
    }
    EXPECT_EQ(info.GetMemScriptCode(), Variant(password));
}

TEST_FRESH(LoadConfigFile, ReadsNothingAgainThatItHas) {
    ServerInfo info;
    load(info);
    journal_.clear();
    load(info);
    EXPECT_THAT(journal_.take(), IsEmpty());
    EXPECT_TRUE(info.IsLoaded());
}

TEST_FRESH(LoadConfigFile, AsksAgainForWhatTheConfigurationLacked) {
    membership().erase(u"CookieName");
    membership()[u"ProfileClass"] = u"";
    membership().erase(u"PlugableModuleImplementation");
    ServerInfo info;
    load(info);
    EXPECT_TRUE(info.IsLoaded());
    EXPECT_EQ(info.GetCookieName(), Variant(u""));
    journal_.clear();
    membership() = shop();
    load(info);
    EXPECT_THAT(journal_.take(),
                ElementsAre("ReadConfigValue(MEMBERSHIP, ProfileClass)",
                            "ReadConfigValue(MEMBERSHIP, CookieName)",
                            "ReadConfigValue(MEMBERSHIP, PlugableModuleImplementation)"));
    EXPECT_EQ(info.GetCookieName(), Variant(u"ShopLogin"));
}

TEST_FRESH(LoadConfigFile, ReadsEveryKeyAgainWhereNothingWasConfiguredButNotTheLists) {
    membership().clear();
    ServerInfo info;
    load(info);
    EXPECT_TRUE(info.IsLoaded());
    journal_.clear();
    load(info);
    auto expected = every_read;
    std::erase(expected, "ReadConfigValue(MEMBERSHIP, UserClass)");
    std::erase(expected, "ReadConfigValue(MEMBERSHIP, UserMandatoryAttributes)");
    EXPECT_EQ(journal_.take(), expected);
}

TEST_FRESH(LoadConfigFile, AnEmptyListCountsAsLoadedAndIsNotReadAgain) {
    membership()[u"UserClass"] = u"";
    ServerInfo info;
    load(info);
    EXPECT_EQ(info.GetUserClass(), Variant(Values()));
    membership()[u"UserClass"] = u"person";
    journal_.clear();
    load(info);
    EXPECT_THAT(journal_.take(), IsEmpty());
    EXPECT_EQ(info.GetUserClass(), Variant(Values()));
}

TEST_FRESH(LoadConfigFile, SplitsListsAtCommas) {
    membership()[u"UserClass"] = u"person";
    membership()[u"UserMandatoryAttributes"] = u"cn,sn,";
    ServerInfo info;
    load(info);
    EXPECT_EQ(info.GetUserClass(), Variant(Values{u"person"}));
    EXPECT_EQ(info.GetUserMandatoryAttributes(), Variant(Values{u"cn", u"sn", u""}));
}

TEST_FRESH(LoadConfigFile, NeverReplacesAValueThatAnEarlierConfigurationSet) {
    ServerInfo info;
    load(info);
    for (auto& [key, value] : membership()) value = u"other";
    load(info);
    EXPECT_EQ(info.GetServerName(), Variant(u"dir01:389"));
    EXPECT_EQ(info.GetUserContainer(), Variant(u"ou=Users,o=Shop"));
    EXPECT_EQ(info.GetUserClass(), Variant(Values{u"top", u"person"}));
    EXPECT_EQ(info.GetUserMandatoryAttributes(), Variant(Values{u"sn", u"mail"}));
    EXPECT_EQ(info.GetPMMImplementation(), Variant(u"Test.Directory"));
    EXPECT_EQ(info.GetConfigFileName(), Variant(u"directory.ini"));
}

TEST_FRESH(LoadConfigFile, ComposesTheContainersWhenALaterConfigurationBringsTheRoot) {
    membership().erase(u"LDAPRoot");
    ServerInfo info;
    load(info);
    EXPECT_EQ(info.GetUserContainer(), Variant(u""));
    for (auto& [key, value] : membership()) value = u"other";
    membership()[u"LDAPRoot"] = u"o=Late";
    load(info);
    EXPECT_EQ(info.GetUserContainer(), Variant(u"ou=Users,o=Late"));
    EXPECT_EQ(info.GetProfileContainer(), Variant(u"ou=Profiles,o=Late"));
    EXPECT_EQ(info.GetAccountContainer(), Variant(u"ou=Accounts,o=Late"));
    EXPECT_EQ(info.GetMemScriptUser(), Variant(u"cn=script,o=Late"));
}

TEST_FRESH(LoadConfigFile, ComposesTheContainersAnewWhenALaterConfigurationBringsARawOne) {
    membership().erase(u"UserContainer");
    ServerInfo info;
    load(info);
    EXPECT_EQ(info.GetUserContainer(), Variant(u",o=Shop"));
    membership() = shop();
    load(info);
    EXPECT_EQ(info.GetUserContainer(), Variant(u"ou=Users,o=Shop"));
}

TEST_FRESH(LoadConfigFile, AFailingReadIsLoggedAndRaisedWithTheSourceLoadConfig) {
    journal_.refuse("ReadConfigValue", {error_number(0x80040201), u"Its.Own", u"unreadable"});
    ServerInfo info;
    const std::string inner = block("80040201", source, "unreadable", could_not);
    expect_failure(raised_by([&] { load(info); }), error_number(0x80040201), u"Its.Own",
                   "\r\n"
                   "ERROR 0x80040201\r\n"
                   " METHOD: OrvoMembership.ServerInfo.LoadConfig\r\n"
                   " DESC: unreadable.\r\n"
                   " INFO: Couldn't read a configuration value.\r\n");
    EXPECT_THAT(log_.take(), ElementsAre(LogEntry{"LogMessage", "Its.Own",
                                                  block("80040201", source, inner, could_not), 0}));
    EXPECT_FALSE(info.IsLoaded());
}

TEST_FRESH(LoadConfigFile, FailingAtAnyReadLeavesItNotLoadedWithTheFieldsBefore) {
    for (int nth = 1; nth <= static_cast<int>(every_read.size()); ++nth) {
        SCOPED_TRACE(nth);
        ServerInfo info;
        journal_.refuse_nth("ReadConfigValue", nth, {5, {}, u"unreadable"});
        EXPECT_EQ(raised_by([&] { load(info); }).number, 5);
        EXPECT_FALSE(info.IsLoaded());
        EXPECT_EQ(info.GetServerName(), Variant(nth > 1 ? u"dir01:389" : u""));
        EXPECT_EQ(info.GetUserClass(), nth > 5 ? Variant(Values{u"top", u"person"}) : Variant());
        EXPECT_EQ(info.GetCookieName(), Variant(nth > 14 ? u"ShopLogin" : u""));
        EXPECT_EQ(info.GetConfigFileName(), Variant(nth > 16 ? u"directory.ini" : u""));
        // Containers are composed when all but the provider is read.
        EXPECT_EQ(info.GetUserContainer(), Variant(nth > 16 ? u"ou=Users,o=Shop" : u""));
        EXPECT_EQ(info.GetPMMImplementation(), Variant(u""));

        journal_.clear();
        load(info);
        EXPECT_TRUE(info.IsLoaded());
        EXPECT_EQ(journal_.take(), std::vector(every_read.begin() + nth - 1, every_read.end()));
    }
}

TEST_FRESH(LoadConfigFile, FailingOnALoadedObjectTakesItsLoadedStateButNotItsValues) {
    membership().erase(u"CookieName");
    ServerInfo info;
    load(info);
    journal_.refuse("ReadConfigValue", {5, {}, u"unreadable"});
    raised_by([&] { load(info); });
    EXPECT_FALSE(info.IsLoaded());
    EXPECT_EQ(info.GetServerName(), Variant(u"dir01:389"));
    EXPECT_EQ(info.GetUserContainer(), Variant(u"ou=Users,o=Shop"));
}

TEST_FRESH(LoadConfigFile, AValueThatIsNoTextIsAFailureOfTheLoad) {
    membership()[u"CookieName"] = Variant::null();
    ServerInfo info;
    expect_failure(raised_by([&] { load(info); }), 94, u"OrvoMembership",
                   block("5E", source, "Invalid use of Null", could_not));
    membership()[u"CookieName"] = Values{u"a"};
    expect_failure(raised_by([&] { load(info); }), 13, u"OrvoMembership",
                   block("D", source, "Type mismatch", could_not));
    EXPECT_FALSE(info.IsLoaded());
}

TEST_FRESH(LoadConfigFile, WithoutAConfigurationComponentFailsWithObjectNotSet) {
    for (const Door door : every_door) {
        SCOPED_TRACE(testing::PrintToString(door));
        Behind<ServerInfo> info(door);
        Ref<Configuration> nothing;
        expect_failure(
            raised_by([&] { info.call<&ServerInfo::LoadConfigFile>(nothing); }), 91,
            u"OrvoMembership",
            block("5B", source, "Object variable or With block variable not set", could_not));
    }
}

class SetConfiguration : public ComponentTest {};

TEST_FRESH(SetConfiguration, LoadsTheFileIntoAComponentOfItsOwnAndReadsIt) {
    configuration_.files[u"C:\\Site\\other.ini"][u"MEMBERSHIP"] = {{u"LDAPServer", u"dir99"}};
    for (const Door door : every_door) {
        SCOPED_TRACE(testing::PrintToString(door));
        Behind<ServerInfo> info(door);
        Text path = u"C:\\Site\\other.ini";
        info.call<&ServerInfo::SetConfiguration>(path);
        std::vector<std::string> expected = {"new Quendra.Configuration()",
                                             "LoadConfigurationFile(C:\\Site\\other.ini)"};
        expected.insert(expected.end(), every_read.begin(), every_read.end());
        EXPECT_EQ(journal_.take(), expected);
        EXPECT_EQ(info.call<&ServerInfo::GetServerName>(), Variant(u"dir99"));
        EXPECT_EQ(info.call<&ServerInfo::GetUserContainer>(), Variant(u"ou=Users,o=Shop"));
        EXPECT_EQ(path, u"C:\\Site\\other.ini");
        EXPECT_EQ(configuration_.alive, 0) << "the component is released";
    }
}

TEST_FRESH(SetConfiguration, GivesTheObjectThePathAsItsDefaultValue) {
    const Ref<ServerInfo> info = make<ServerInfo>();
    EXPECT_EQ(late::value_of(info.object()), Variant(u""));
    Text path = u"site.ini";
    call<&ServerInfo::SetConfiguration>(info, path);
    EXPECT_EQ(late::value_of(info.object()), Variant(u"site.ini"));
    EXPECT_EQ(Variant(info.object()).to<Text>(), u"site.ini");
}

TEST_FRESH(SetConfiguration, APathThatCannotBeLoadedIsTheDefaultValueAllTheSame) {
    const Ref<ServerInfo> info = make<ServerInfo>();
    Text path = u"site.ini";
    call<&ServerInfo::SetConfiguration>(info, path);
    for (const char* step : {"LoadConfigurationFile", "new Quendra.Configuration"}) {
        journal_.refuse_nth(step, 1, {53, u"Its.Own", u"not there"});
        path = from_utf8(step);
        raised_by([&] { call<&ServerInfo::SetConfiguration>(info, path); });
        EXPECT_EQ(late::value_of(info.object()), Variant(path));
    }
}

TEST_FRESH(SetConfiguration, WithoutTheComponentRaisesWhatGetComponentRaised) {
    configuration_.remove();
    ServerInfo info;
    Text path = u"site.ini";
    expect_failure(
        raised_by([&] { info.SetConfiguration(path); }), 429, u"OrvoMembership",
        block("1AD", "Lib_General.Gen_GetComponent", cannot_create(u"Quendra.Configuration"),
              "CreateObject(Quendra.Configuration) failed"));
    EXPECT_FALSE(info.IsLoaded());
}

TEST_FRESH(SetConfiguration, RaisesAsItIsWhatTheComponentRaisesOnLoadingTheFile) {
    journal_.refuse("LoadConfigurationFile", {53, u"Its.Own", u"site.ini: not there"});
    for (const Door door : every_door) {
        SCOPED_TRACE(testing::PrintToString(door));
        Behind<ServerInfo> info(door);
        Text path = u"site.ini";
        expect_failure(raised_by([&] { info.call<&ServerInfo::SetConfiguration>(path); }), 53,
                       u"Its.Own", "site.ini: not there");
    }
    EXPECT_THAT(log_.take(), IsEmpty());
}

TEST_FRESH(SetConfiguration, ReportsAFailingReadOnceUnderLoadConfig) {
    journal_.refuse("ReadConfigValue", {5, u"Its.Own", u"unreadable"});
    ServerInfo info;
    Text path = u"site.ini";
    expect_failure(raised_by([&] { info.SetConfiguration(path); }), 5, u"Its.Own",
                   block("5", source, "unreadable", could_not));
}

}  // namespace
}  // namespace orvo
