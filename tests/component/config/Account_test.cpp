#include "component/config/Account.h"

#include "component/config/SharedServerInfo.h"
#include "tests/component/component_test.h"
#include "tests/platform/releases.h"

namespace orvo {
namespace {

using testing::ElementsAre;

constexpr const char* init = "OrvoMembership.Account.Init";
constexpr const char* factory = "OrvoMembership.PMMCreator.GetPMM";
constexpr const char* cannot_bind =
    "Cannot bind with the administrator user, please check the administrator user in LDAP";

class AccountTest : public ComponentTest {
protected:
    template <class Body>
    void through_every_door(Body body) {
        load_settings();
        through_doors_to<Account>(body);
    }
    static void bind(Behind<Account>& account, std::int16_t type) {
        account.call<&Account::Init>(type);
    }
};

TEST_FRESH(AccountTest, InitBindsToTheEntryOfTheUserTypeAsTheScriptUser) {
    through_every_door([this](Behind<Account>& account) {
        bind(account, 2);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("new Test.Directory()", "CreateEntry()",
                                "Bind(dir01:389, ou=Accounts,o=Shop, an=2, cn=script,o=Shop, "
                                "script-code, [])"));
    });
}

TEST_FRESH(AccountTest, InitChecksUserTypesAgainstNoList) {
    through_every_door([this](Behind<Account>& account) {
        for (const auto& [type, name] : {std::pair<std::int16_t, const char*>{0, "an=0"},
                                         {-1, "an=-1"},
                                         {32767, "an=32767"}}) {
            bind(account, type);
            EXPECT_EQ(journal_.take().back(), std::string("Bind(dir01:389, ou=Accounts,o=Shop, ") +
                                                  name + ", cn=script,o=Shop, script-code, [])");
        }
    });
}

TEST_FRESH(AccountTest, NTUserAndNTPasswordAreTheFirstValuesOfTheirAttributes) {
    directory_.answer(u"OrvoNTUser", Values{u"SHOP\\web", u"SHOP\\other"});
    directory_.answer(u"OrvoNTPassword", Values{u"nt-secret"});
    through_every_door([this](Behind<Account>& account) {
        bind(account, 2);
        journal_.clear();
        EXPECT_EQ(account.call<&Account::NTUser>(), Variant(u"SHOP\\web"));
        EXPECT_EQ(account.call<&Account::NTPassword>(), Variant(u"nt-secret"));
        EXPECT_THAT(journal_.take(),
                    ElementsAre("GetValues(OrvoNTUser)", "GetValues(OrvoNTPassword)"));
    });
}

TEST_FRESH(AccountTest, ValuesAreReturnedAsTheyAreStored) {
    directory_.answer(u"OrvoNTPassword", Values{Variant(std::int32_t{42})});
    through_every_door([](Behind<Account>& account) {
        bind(account, 2);
        EXPECT_EQ(account.call<&Account::NTPassword>(), Variant(std::int32_t{42}));
    });
}

TEST_FRESH(AccountTest, WhatThePasswordsAttributeHeldIsOverwritten) {
    const Text password = u"nt-secret-of-27-characters!";
    directory_.answer(u"OrvoNTPassword", Values{password, password});
    load_settings();
    Account account;
    std::int16_t type = 2;
    account.Init(type);
    const Releases releases;
    const Variant answer = account.NTPassword();
    EXPECT_THAT(releases.as_long_as(password),
                ElementsAre(overwritten(password), overwritten(password)));
    EXPECT_EQ(answer, Variant(password));
}

TEST_FRESH(AccountTest, BeforeInitNTUserAndNTPasswordFailUnderTheirOwnSources) {
    through_every_door([](Behind<Account>& account) {
        expect_failure(raised_by([&] { account.call<&Account::NTUser>(); }), 91, u"OrvoMembership",
                       block("5B", "OrvoMembership.Account.get_NTUser", not_set));
        expect_failure(raised_by([&] { account.call<&Account::NTPassword>(); }), 91,
                       u"OrvoMembership",
                       block("5B", "OrvoMembership.Account.get_NTPassword", not_set));
    });
}

TEST_FRESH(AccountTest, AnAttributeWithoutValuesIsAFailureOfItsReader) {
    directory_.answer(u"OrvoNTUser", Values());
    directory_.answer(u"OrvoNTPassword", u"no array");
    through_every_door([](Behind<Account>& account) {
        bind(account, 2);
        expect_failure(raised_by([&] { account.call<&Account::NTUser>(); }), 9, u"OrvoMembership",
                       block("9", "OrvoMembership.Account.get_NTUser", "Subscript out of range"));
        expect_failure(raised_by([&] { account.call<&Account::NTPassword>(); }), 13,
                       u"OrvoMembership",
                       block("D", "OrvoMembership.Account.get_NTPassword", "Type mismatch"));
    });
}

TEST_FRESH(AccountTest, ARefusedBindTellsToCheckTheAdministrator) {
    journal_.refuse("Bind", {error_number(0x8007052E), u"Its.Own", u"(49) Invalid credentials"});
    through_every_door([this](Behind<Account>& account) {
        expect_failure(raised_by([&] { bind(account, 2); }), error_number(0x8007052E), u"Its.Own",
                       "\r\n"
                       "ERROR 0x8007052E\r\n"
                       " METHOD: OrvoMembership.Account.Init\r\n"
                       " DESC: (49) Invalid credentials.\r\n"
                       " INFO: Cannot bind with the administrator user, please check the "
                       "administrator user in LDAP.\r\n");
        EXPECT_EQ(log_.take().size(), 1u);
    });
}

TEST_FRESH(AccountTest, ARefusedInitLeavesANewEntryAndOneWithoutAProviderTheFormer) {
    directory_.answer_of(u"an=2,ou=Accounts,o=Shop", u"OrvoNTUser", Values{u"SHOP\\web"});
    through_every_door([this](Behind<Account>& account) {
        bind(account, 2);
        journal_.refuse_nth("CreateEntry", 1, no_rights());
        raised_by([&] { bind(account, 3); });
        EXPECT_EQ(account.call<&Account::NTUser>(), Variant(u"SHOP\\web")) << "type 2's still";
        journal_.refuse_nth("Bind", 1, no_rights());
        raised_by([&] { bind(account, 3); });
        EXPECT_EQ(directory_.entries, 1);
        EXPECT_EQ(account.call<&Account::NTUser>(), Variant()) << "of the entry that was not bound";
    });
}

TEST_FRESH(AccountTest, WithoutAProviderInitFailsOnTheEmptyReference) {
    membership().erase(u"PlugableModuleImplementation");
    through_every_door([](Behind<Account>& account) {
        expect_failure(raised_by([&] { bind(account, 2); }), 91, u"OrvoMembership",
                       block("5B", init, block("5B", factory, not_set), cannot_bind));
    });
}

TEST_FRESH(AccountTest, WithoutSettingsInitFailsOnTheEmptyReference) {
    Account account;
    std::int16_t type = 2;
    EXPECT_EQ(raised_by([&] { account.Init(type); }).number, 91);
}

TEST_FRESH(AccountTest, TheEntryIsKeptUntilTheNextInitAndTheProvidersModuleUntilThisOneEnds) {
    load_site_configuration();
    Account account;
    std::int16_t type = 1;
    int modules = 0;
    journal_.during("Bind", [&] { modules = directory_.modules; });
    account.Init(type);
    EXPECT_EQ(modules, 1);
    EXPECT_EQ(directory_.modules, 0);
    EXPECT_EQ(directory_.entries, 1);
    account.Init(type);
    EXPECT_EQ(directory_.entries, 1);
}

}  // namespace
}  // namespace orvo
