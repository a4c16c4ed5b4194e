#include "component/auth/Validator.h"

#include "component/config/SharedServerInfo.h"
#include "tests/component/component_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* source = "OrvoMembership.Validator.ValidatePassword";
constexpr const char* factory = "OrvoMembership.PMMCreator.GetPMM";

class PasswordCheck : public ComponentTest {
protected:
    template <class Body>
    void through_every_door(Body body) {
        load_settings();
        through_doors_to<Validator>(body);
    }
    static Variant check(Behind<Validator>& validator, Variant user, Variant password) {
        return validator.call<&Validator::ValidatePassword>(user, password);
    }
};

TEST_FRESH(PasswordCheck, AsksAnOpenedValidatorAboutTheUsersFullPath) {
    through_every_door([this](Behind<Validator>& validator) {
        EXPECT_EQ(check(validator, u"jsmith", u"secret"), Variant(std::int32_t{0}));
        EXPECT_THAT(journal_.take(), ElementsAre("new Test.Directory()", "CreateValidator()",
                                                 "Open(dir01:389, ou=Users,o=Shop)",
                                                 "Validate(un=jsmith,ou=Users,o=Shop, secret)"));
    });
}

TEST_FRESH(PasswordCheck, AnswersTheProvidersResultAsA32BitIntegerUnchanged) {
    through_every_door([this](Behind<Validator>& validator) {
        for (const std::int32_t verdict : {0, 1, -1, -2, -3, -4, -5, 2147483647}) {
            directory_.verdict = verdict;
            EXPECT_EQ(check(validator, u"jsmith", u"secret"), Variant(verdict));
        }
        EXPECT_THAT(log_.take(), IsEmpty()) << "a wrong password is no failure";
    });
}

TEST_FRESH(PasswordCheck, LeavesItsArgumentsAsTheyAre) {
    through_every_door([](Behind<Validator>& validator) {
        Variant user = u"jsmith", password = 42;
        validator.call<&Validator::ValidatePassword>(user, password);
        EXPECT_EQ(user, Variant(u"jsmith"));
        EXPECT_EQ(password, Variant(42));
    });
}

TEST_FRESH(PasswordCheck, PutsAFullPathBelowTheContainerOnceMore) {
    through_every_door([this](Behind<Validator>& validator) {
        check(validator, u"cn=jsmith,ou=Users,o=Shop", u"secret");
        EXPECT_EQ(journal_.take().back(),
                  "Validate(cn=jsmith,ou=Users,o=Shop,ou=Users,o=Shop, secret)");
    });
}

TEST_FRESH(PasswordCheck, ConvertsBothArgumentsToText) {
    through_every_door([this](Behind<Validator>& validator) {
        check(validator, 4711, Variant());
        EXPECT_EQ(journal_.take().back(), "Validate(un=4711,ou=Users,o=Shop, )");
        check(validator, Variant(), 12);
        EXPECT_EQ(journal_.take().back(), "Validate(ou=Users,o=Shop, 12)");
    });
}

TEST_FRESH(PasswordCheck, TwoChecksMakeTwoValidatorsAndKeepNothing) {
    through_every_door([this](Behind<Validator>& validator) {
        check(validator, u"jsmith", u"one");
        EXPECT_EQ(directory_.modules, 0);
        check(validator, u"jsmith", u"one");
        const auto calls = journal_.take();
        EXPECT_EQ(calls.size(), 8u);
        EXPECT_EQ(std::count(calls.begin(), calls.end(), "CreateValidator()"), 2);
    });
}

TEST_FRESH(PasswordCheck, ModuleAndValidatorLiveUntilTheCheckEndsAndNoLonger) {
    through_every_door([this](Behind<Validator>& validator) {
        int modules = 0;
        journal_.during("Validate", [&] { modules = directory_.modules; });
        check(validator, u"jsmith", u"secret");
        EXPECT_EQ(modules, 1);
        EXPECT_EQ(directory_.modules, 0);
        EXPECT_EQ(directory_.validators, 0);
    });
}

TEST_FRESH(PasswordCheck, ANullIsAFailureOfTheCheckAndTheProviderIsNotAsked) {
    through_every_door([this](Behind<Validator>& validator) {
        const auto expected = block("5E", source, "Invalid use of Null");
        expect_failure(raised_by([&] { check(validator, Variant::null(), u"p"); }), 94,
                       u"OrvoMembership", expected);
        expect_failure(raised_by([&] { check(validator, u"u", Variant::null()); }), 94,
                       u"OrvoMembership", expected);
        EXPECT_THAT(journal_.take(), IsEmpty());
    });
}

TEST_FRESH(PasswordCheck, AnUnreachableServerIsAFailureUnderTheNameOfTheCheck) {
    journal_.refuse("Validate", {error_number(0x8007203A), u"Its.Own", u"(81) down"});
    through_every_door([](Behind<Validator>& validator) {
        expect_failure(raised_by([&] { check(validator, u"jsmith", u"secret"); }),
                       error_number(0x8007203A), u"Its.Own",
                       block("8007203A", source, "(81) down"));
    });
}

TEST_FRESH(PasswordCheck, AValidatorThatCannotBeOpenedShowsTheFactoryToo) {
    journal_.refuse("Open", {error_number(0x8007203A), u"Its.Own", u"(81) down"});
    through_every_door([](Behind<Validator>& validator) {
        expect_failure(raised_by([&] { check(validator, u"jsmith", u"secret"); }),
                       error_number(0x8007203A), u"Its.Own",
                       block("8007203A", source, block("8007203A", factory, "(81) down")));
    });
}

TEST_FRESH(PasswordCheck, WithoutAProviderFailsOnTheEmptyReference) {
    membership().erase(u"PlugableModuleImplementation");
    through_every_door([](Behind<Validator>& validator) {
        expect_failure(
            raised_by([&] { check(validator, u"jsmith", u"secret"); }), 91, u"OrvoMembership",
            block("5B", source,
                  block("5B", factory, "Object variable or With block variable not set")));
    });
}

TEST_FRESH(PasswordCheck, ThePasswordStandsInNoFailureAndNoEntry) {
    journal_.refuse("Validate", {error_number(0x8007203A), u"Its.Own", u"(81) down"});
    through_every_door([this](Behind<Validator>& validator) {
        const Failure failure = raised_by([&] { check(validator, u"jsmith", u"s3cr3t"); });
        EXPECT_EQ(failure.description.find(u"s3cr3t"), Text::npos);
        for (const LogEntry& entry : log_.take())
            EXPECT_EQ(entry.message.find("s3cr3t"), std::string::npos);
    });
}

class ValidatorSettings : public ComponentTest {};

TEST_FRESH(ValidatorSettings, SetServerInfoLoadsAFileIntoTheSharedSettings) {
    Behind<Validator> validator(Door::slots);
    EXPECT_FALSE(shared_server_info()->IsLoaded());
    journal_.clear();
    const Text path = u"C:\\Site\\site.ini";
    validator.call<&Validator::setServerInfo>(path);
    const auto calls = journal_.take();
    ASSERT_EQ(calls.size(), 19u);
    EXPECT_EQ(calls[0], "new Quendra.Configuration()");
    EXPECT_EQ(calls[1], "LoadConfigurationFile(C:\\Site\\site.ini)");
    EXPECT_TRUE(shared_server_info()->IsLoaded());
    EXPECT_EQ(shared_server_info()->GetServerName(), Variant(u"dir01:389"));
}

TEST_FRESH(ValidatorSettings, AFileThatCannotBeLoadedIsRaisedAsItIs) {
    journal_.refuse("LoadConfigurationFile", {53, u"Its.Own", u"site.ini: not there"});
    for (const Door door : every_door) {
        SCOPED_TRACE(testing::PrintToString(door));
        Behind<Validator> validator(door);
        const Text path = u"site.ini";
        expect_failure(raised_by([&] { validator.call<&Validator::setServerInfo>(path); }), 53,
                       u"Its.Own", "site.ini: not there");
    }
}

}  // namespace
}  // namespace orvo
