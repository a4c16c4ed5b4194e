#include "suite/configuration/suite_configuration.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "suite/configuration/ini_files.h"
#include "tests/support/environment.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

Variant value_of(SuiteConfiguration& configuration, Text section, Text key) {
    return configuration.ReadConfigValue(section, key);
}

std::int32_t get(SuiteConfiguration& configuration, Text key, Variant& value) {
    Text section = u"GLOBAL";
    return configuration.GetValue2(section, key, value);
}

template <class Action>
void expect_failure(Action action, std::int32_t number, const std::string& description) {
    try {
        action();
        FAIL() << "nothing was raised; expected: " << description;
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, number);
        EXPECT_EQ(failure.source, u"Quendra.Configuration");
        EXPECT_EQ(to_utf8(failure.description), description);
    }
}

// A site of its own, named by the environment.
class SuiteConfigurationTest : public testing::Test {
protected:
    SuiteConfiguration initialized() {
        SuiteConfiguration result;
        Variant output;
        result.Initialize(output);
        return result;
    }

    TempFolder folder_;
    fs::path site_ = folder_.write("site.ini",
                                   "[MEMBERSHIP]\nLDAPServer = h:389\nUserClass = top,person\n"
                                   "CookieName =\n"
                                   "[GLOBAL]\nMultiLogin = 3\nWord = three\nLarge = 70000\n"
                                   "Half = 2.5\nTruth = True\nMultiLoginTimeout = 15\n");
    Environment environment_{"ORVO_SITE_CONFIG", site_.string()};
};

TEST_F(SuiteConfigurationTest, InitializeLoadsTheSitesFile) {
    SuiteConfiguration configuration;
    Variant output = 5;
    configuration.Initialize(output);
    EXPECT_EQ(output, Variant());
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"LDAPServer"), Variant(u"h:389"));
    EXPECT_EQ(value_of(configuration, u"membership", u"USERCLASS"), Variant(u"top,person"));
}

TEST_F(SuiteConfigurationTest, AMissingKeyIsEmptyAndAnEmptyValueIsText) {
    auto configuration = initialized();
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"LDAPRoot"), Variant());
    EXPECT_EQ(value_of(configuration, u"Other", u"LDAPServer"), Variant());
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"CookieName"), Variant(u""));
}

TEST_F(SuiteConfigurationTest, AFreshObjectHasNoValues) {
    SuiteConfiguration configuration;
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"LDAPServer"), Variant());
    Variant value = std::int16_t{7};
    EXPECT_EQ(get(configuration, u"MultiLogin", value), 1);
    EXPECT_EQ(value, Variant(std::int16_t{7}));
}

TEST_F(SuiteConfigurationTest, ReadingChangesNeitherSectionNorKey) {
    auto configuration = initialized();
    Text section = u"Membership", key = u"ldapserver";
    configuration.ReadConfigValue(section, key);
    EXPECT_EQ(section, u"Membership");
    EXPECT_EQ(key, u"ldapserver");
}

TEST_F(SuiteConfigurationTest, TheFolderIsTheSitesWithoutAnythingLoaded) {
    SuiteConfiguration configuration;
    EXPECT_EQ(configuration.GetFolder(), text_of(folder_.path()));
}

TEST_F(SuiteConfigurationTest, WithoutTheVariableTheFolderIsTheSystemsPlace) {
    for (const auto& none : {std::optional<std::string>(), std::optional<std::string>("")}) {
        const Environment unset("ORVO_SITE_CONFIG", none);
        EXPECT_EQ(SuiteConfiguration().GetFolder(), u"/etc/orvo");
    }
}

TEST_F(SuiteConfigurationTest, TheUsualSiteFileIsWhereWindowsKeepsSettingsOfAllUsers) {
    const Environment unset("ORVO_SITE_CONFIG", std::nullopt);
    const Environment settings("ProgramData", "/all/users");
    EXPECT_EQ(SuiteConfiguration().GetFolder(), u"/all/users/orvo");
}

TEST_F(SuiteConfigurationTest, WithoutTheVariableAnAbsentSiteFileIsNoFailure) {
    if (fs::exists("/etc/orvo/site.ini")) GTEST_SKIP() << "this machine has a site's file";
    const Environment unset("ORVO_SITE_CONFIG", std::nullopt);
    auto configuration = initialized();
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"LDAPServer"), Variant());
    configuration.LoadSiteConfig(true);
}

TEST_F(SuiteConfigurationTest, AnAbsentSiteFileThatTheVariableNamesIsAFailure) {
    const auto absent = (folder_.path() / "absent.ini").string();
    const Environment named("ORVO_SITE_CONFIG", absent);
    expect_failure([&] { initialized(); }, 53, absent + ": there is no such file");
    expect_failure([] { SuiteConfiguration().LoadSiteConfig(false); }, 53,
                   absent + ": there is no such file");
}

TEST_F(SuiteConfigurationTest, TheFolderOfASiteFileInTheRootIsEmpty) {
    const Environment root("ORVO_SITE_CONFIG", "/site.ini");
    EXPECT_EQ(SuiteConfiguration().GetFolder(), u"");
}

TEST_F(SuiteConfigurationTest, ARelativeSiteFileBeginsAtTheCurrentFolder) {
    const Environment relative("ORVO_SITE_CONFIG", "some/site.ini");
    EXPECT_EQ(SuiteConfiguration().GetFolder(), text_of(fs::current_path() / "some"));
}

TEST_F(SuiteConfigurationTest, ASiteFileThatIsGivenTakesTheFolderWithIt) {
    const auto other = folder_.write("other/site.ini", "[MEMBERSHIP]\nLDAPServer=o\n");
    auto configuration = initialized();
    EXPECT_TRUE(configuration.LoadSiteConfigurationFile(text_of(other)));
    EXPECT_EQ(configuration.GetFolder(), text_of(folder_.path() / "other"));
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"LDAPServer"), Variant(u"o"));
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"UserClass"), Variant(u"top,person"))
        << "what was loaded earlier stays where the later file says nothing";
}

TEST_F(SuiteConfigurationTest, ASiteFileThatCannotBeLoadedChangesNothing) {
    auto configuration = initialized();
    const auto absent = folder_.path() / "other" / "absent.ini";
    expect_failure([&] { configuration.LoadSiteConfigurationFile(text_of(absent)); }, 53,
                   absent.string() + ": there is no such file");
    EXPECT_EQ(configuration.GetFolder(), text_of(folder_.path()));
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"LDAPServer"), Variant(u"h:389"));
}

TEST_F(SuiteConfigurationTest, AConfigurationFileIsFoundBelowTheFolderWithBackslashes) {
    folder_.write("Config/directory.ini", "[ConfigDN]\ndn = cn=config,o=Shop\n");
    SuiteConfiguration configuration;
    configuration.LoadConfigurationFile(configuration.GetFolder() + u"\\Config\\directory.ini");
    EXPECT_EQ(value_of(configuration, u"ConfigDN", u"dn"), Variant(u"cn=config,o=Shop"));
    EXPECT_EQ(configuration.GetFolder(), text_of(folder_.path())) << "no site file";
}

TEST_F(SuiteConfigurationTest, ALaterFileReplacesWhatItNames) {
    auto configuration = initialized();
    configuration.LoadConfigurationFile(
        text_of(folder_.write("later.ini", "[membership]\nldapserver=later\nLDAPRoot=o=Shop\n")));
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"LDAPServer"), Variant(u"later"));
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"LDAPRoot"), Variant(u"o=Shop"));
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"UserClass"), Variant(u"top,person"));
}

TEST_F(SuiteConfigurationTest, AFileLoadedAgainIsOnTopAndForgetsWhatItNoLongerSays) {
    auto configuration = initialized();
    const auto file = folder_.write("a.ini", "[s]\nx=1\ny=1\n");
    configuration.LoadConfigurationFile(text_of(file));
    configuration.LoadConfigurationFile(text_of(folder_.write("b.ini", "[s]\nx=2\n")));
    EXPECT_EQ(value_of(configuration, u"s", u"x"), Variant(u"2"));
    folder_.write("a.ini", "[s]\nx=3\n");
    configuration.LoadConfigurationFile(text_of(file));
    EXPECT_EQ(value_of(configuration, u"s", u"x"), Variant(u"3"));
    EXPECT_EQ(value_of(configuration, u"s", u"y"), Variant());
}

TEST_F(SuiteConfigurationTest, AMalformedFileLeavesNothingOfItself) {
    auto configuration = initialized();
    const auto file = folder_.write("bad.ini", "[MEMBERSHIP]\nLDAPServer=bad\nnothing\n");
    expect_failure(
        [&] { configuration.LoadConfigurationFile(text_of(file)); }, error_number(0x80040201),
        file.string() + ":3: the line is no \"[section]\", no \"key = value\" and no comment");
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"LDAPServer"), Variant(u"h:389"));
}

TEST_F(SuiteConfigurationTest, AnEmptyPathIsRefused) {
    expect_failure([] { SuiteConfiguration().LoadConfigurationFile(u""); }, 53,
                   "no configuration file is named");
    expect_failure([] { SuiteConfiguration().LoadSiteConfigurationFile(u""); }, 53,
                   "no configuration file is named");
}

TEST_F(SuiteConfigurationTest, LoadSiteConfigReadsAgainOnlyWhenAsked) {
    SuiteConfiguration configuration;
    configuration.LoadSiteConfig(false);
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"LDAPServer"), Variant(u"h:389"));
    folder_.write("site.ini", "[MEMBERSHIP]\nLDAPServer = changed\n");
    configuration.LoadSiteConfig(false);
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"LDAPServer"), Variant(u"h:389"));
    configuration.LoadSiteConfig(true);
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"LDAPServer"), Variant(u"changed"));
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"UserClass"), Variant());
}

TEST_F(SuiteConfigurationTest, ReloadingSeesAChangeThatNeitherTimeNorSizeShows) {
    const auto time = fs::file_time_type::clock::now() - std::chrono::seconds(10);
    folder_.write("site.ini", "[s]\na=1\n");
    fs::last_write_time(site_, time);
    auto configuration = initialized();
    folder_.write("site.ini", "[s]\na=2\n");
    fs::last_write_time(site_, time);
    configuration.LoadSiteConfig(true);
    EXPECT_EQ(value_of(configuration, u"s", u"a"), Variant(u"2"));
}

TEST_F(SuiteConfigurationTest, ReloadingReadsTheSiteFileThatWasGiven) {
    const auto other = folder_.write("other.ini", "[MEMBERSHIP]\nLDAPServer=o\n");
    SuiteConfiguration configuration;
    configuration.LoadSiteConfigurationFile(text_of(other));
    folder_.write("other.ini", "[MEMBERSHIP]\nLDAPServer=p\n");
    configuration.LoadSiteConfig(true);
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"LDAPServer"), Variant(u"p"));
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"UserClass"), Variant());
}

TEST_F(SuiteConfigurationTest, AReloadThatFailsKeepsTheLoadedValues) {
    auto configuration = initialized();
    fs::remove(site_);
    expect_failure([&] { configuration.LoadSiteConfig(true); }, 53,
                   site_.string() + ": there is no such file");
    EXPECT_EQ(value_of(configuration, u"MEMBERSHIP", u"LDAPServer"), Variant(u"h:389"));
}

TEST_F(SuiteConfigurationTest, GetValue2KeepsTheTypeOfTheNumberItReplaces) {
    auto configuration = initialized();
    Variant value = std::int16_t{1};
    EXPECT_EQ(get(configuration, u"MultiLogin", value), 0);
    EXPECT_EQ(value, Variant(std::int16_t{3}));
    value = std::int32_t{1};
    EXPECT_EQ(get(configuration, u"MultiLoginTimeout", value), 0);
    EXPECT_EQ(value, Variant(std::int32_t{15}));
    value = std::int64_t{1};
    EXPECT_EQ(get(configuration, u"Large", value), 0);
    EXPECT_EQ(value, Variant(std::int64_t{70000}));
    value = 1.0;
    EXPECT_EQ(get(configuration, u"Half", value), 0);
    EXPECT_EQ(value, Variant(2.5));
    value = false;
    EXPECT_EQ(get(configuration, u"Truth", value), 0);
    EXPECT_EQ(value, Variant(true));
}

TEST_F(SuiteConfigurationTest, GetValue2GivesTextForEverythingElse) {
    auto configuration = initialized();
    for (Variant value : {Variant(), Variant::null(), Variant(u"old"), Variant::missing()}) {
        EXPECT_EQ(get(configuration, u"MultiLogin", value), 0);
        EXPECT_EQ(value, Variant(u"3"));
    }
}

TEST_F(SuiteConfigurationTest, GetValue2LeavesTheValueWhereThereIsNoKey) {
    auto configuration = initialized();
    Variant value = std::int32_t{10};
    EXPECT_EQ(get(configuration, u"Absent", value), 1);
    EXPECT_EQ(value, Variant(std::int32_t{10}));
}

TEST_F(SuiteConfigurationTest, GetValue2NamesTheKeyOfATextThatDoesNotConvert) {
    auto configuration = initialized();
    Variant value = std::int16_t{1};
    expect_failure([&] { get(configuration, u"Word", value); }, 13,
                   "[GLOBAL] Word: the value cannot be converted (Type mismatch)");
    expect_failure([&] { get(configuration, u"Large", value); }, 6,
                   "[GLOBAL] Large: the value cannot be converted (Overflow)");
    EXPECT_EQ(value, Variant(std::int16_t{1}));
}

TEST_F(SuiteConfigurationTest, ASectionAndAKeyAreNeverTakenForOneAnother) {
    SuiteConfiguration configuration;
    configuration.LoadConfigurationFile(
        text_of(folder_.write("x.ini", "[a.b]\nc=1\n[a]\nb.c=2\n")));
    EXPECT_EQ(value_of(configuration, u"a.b", u"c"), Variant(u"1"));
    EXPECT_EQ(value_of(configuration, u"a", u"b.c"), Variant(u"2"));
}

class ValueElsewhere : public testing::Test {
protected:
    // What "[MEMBERSHIP] MemScriptCode = value" gives.
    Variant code(const std::string& value) {
        folder_.write("site.ini", "[MEMBERSHIP]\nMemScriptCode = " + value + "\n");
        SuiteConfiguration configuration;
        configuration.LoadConfigurationFile(text_of(folder_.path() / "site.ini"));
        return value_of(configuration, u"MEMBERSHIP", u"MemScriptCode");
    }
    void expect_refusal(const std::string& value, std::int32_t number, const std::string& reason) {
        expect_failure([&] { code(value); }, number, "[MEMBERSHIP] MemScriptCode: " + reason);
    }

    TempFolder folder_;
};

TEST_F(ValueElsewhere, StandsInAFileAsItsOnlyLine) {
    for (const std::string content : {"s3cret = ;x", "s3cret = ;x\n", "s3cret = ;x\r\n"}) {
        const fs::path file = folder_.write("code", content);
        EXPECT_EQ(code("@file:" + file.string()), Variant(u"s3cret = ;x"));
        EXPECT_EQ(code("@file:code"), Variant(u"s3cret = ;x")) << "beside the configuration";
    }
    folder_.write("code", "changed\n");
    EXPECT_EQ(code("@file:code"), Variant(u"changed"));
    folder_.write("code", "");
    EXPECT_EQ(code("@file:code"), Variant(u""));
}

TEST_F(ValueElsewhere, StandsInACredentialOrInAVariable) {
    const Environment variable("SHOP_SERVICE_CODE", "from-variable");
    EXPECT_EQ(code("@env:SHOP_SERVICE_CODE"), Variant(u"from-variable"));
    const fs::path file = folder_.write("service", "from-credential\n");
    const Environment folder("CREDENTIALS_DIRECTORY", folder_.path().string());
    EXPECT_EQ(code("@credential:service"), Variant(u"from-credential"));
}

TEST_F(ValueElsewhere, ThatIsNotThereIsRefusedByName) {
    const std::string folder = folder_.path().string();
    const Environment none("CREDENTIALS_DIRECTORY", std::nullopt);
    const Environment unset("SHOP_SERVICE_CODE", std::nullopt);
    expect_refusal("@file:code", 53, folder + "/code: there is no such file");
    expect_refusal("@file:" + folder, 75, folder + ": this is not a file");
    expect_refusal("@env:SHOP_SERVICE_CODE", 53, "the variable SHOP_SERVICE_CODE is not set");
    expect_refusal("@credential:service", 53,
                   "there are no credentials: CREDENTIALS_DIRECTORY is not set");
    const Environment credentials("CREDENTIALS_DIRECTORY", folder);
    expect_refusal("@credential:../code", error_number(0x80040201),
                   "\"../code\" is no name of a credential");
    for (const std::string content : {"one\ntwo\n", "one\rtwo", "\xFF"}) {
        folder_.write("code", content);
        expect_refusal("@file:code", error_number(0x80040201),
                       folder + "/code: it is not one line of text");
    }
}

TEST_F(ValueElsewhere, OtherValuesWithTheSignAreThemselves) {
    for (const std::string value : {"@", "@file", "@file:", "@@file:x", "x@env:HOME", "@FILE:x"})
        EXPECT_EQ(code(value), Variant(from_utf8(value)));
}

}  // namespace
}  // namespace orvo
