#include "component/common/Lib_ErrorHandling.h"
#include "tests/component/entries/given_privileges.h"
#include "tests/component/entries/user_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* get_source = "OrvoMembership.User.GetAttribValue";
constexpr const char* set_source = "OrvoMembership.User.SetAttribValue";
constexpr const char* clear_source = "OrvoMembership.User.ClearAttribValue";
constexpr const char* check_privs = "OrvoMembership.User.CheckPrivs";
constexpr const char* bind_as = "OrvoMembership.User.BindAs";

// What the bind itself reads, which a readable list has to hold.
#define NEEDED_BY_THE_BIND u"profilecn", u"orvousertype"

class UserAttributes : public UserTest {
protected:
    static Variant value_of(Behind<User>& user, Text name) {
        return user.call<&User::GetAttribValue>(name);
    }
    static void set(Behind<User>& user, Text name, Variant value) {
        user.call<&User::SetAttribValue>(name, value);
    }
    static void clear(Behind<User>& user, Text name) { user.call<&User::ClearAttribValue>(name); }
    static void allow(Values readable, Values writable) {
        set_user_privilege_source([=](const Text&) {
            return UserPrivileges{.readable = readable, .writable = writable};
        });
    }
};

TEST_FRESH(UserAttributes, WithoutListsEveryReadGoesToTheDirectory) {
    directory_.answer(u"mail", Values{u"a@shop", u"b@shop"});
    bound_through_every_door([this](Behind<User>& user) {
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(value_of(user, u"mail"), Variant(Values{u"a@shop", u"b@shop"}));
        EXPECT_EQ(value_of(user, u"MAIL"), Variant(Values{u"a@shop", u"b@shop"}));
        EXPECT_THAT(journal_.take(),
                    ElementsAre("GetValues(mail)", "GetValues(mail)", "GetValues(MAIL)"));
    });
}

TEST_FRESH(UserAttributes, AReadAnswersWhateverTheProviderAnswers) {
    directory_.answer(u"text", u"one");
    directory_.answer(u"number", std::int32_t{7});
    directory_.answer(u"empty", Variant());
    directory_.answer(u"null", Variant::null());
    directory_.answer(u"none", Values());
    bound_through_every_door([](Behind<User>& user) {
        EXPECT_EQ(value_of(user, u"text"), Variant(u"one"));
        EXPECT_EQ(value_of(user, u"number"), Variant(std::int32_t{7}));
        EXPECT_EQ(value_of(user, u"empty"), Variant());
        EXPECT_EQ(value_of(user, u"null"), Variant::null());
        EXPECT_EQ(value_of(user, u"none"), Variant(Values()));
        EXPECT_EQ(value_of(user, u"absent"), Variant(Values{Variant()}));
    });
}

TEST_FRESH(UserAttributes, WritesAndClearsPassNameAndValueOnUnchanged) {
    bound_through_every_door([this](Behind<User>& user) {
        set(user, u"sn", u"Smith");
        set(user, u"Mail", Values{u"a@shop", u"b@shop"});
        set(user, u"l", Variant());
        clear(user, u"givenName");
        EXPECT_THAT(journal_.take(),
                    ElementsAre("SetValues(sn, Smith)", "SetValues(Mail, [a@shop, b@shop])",
                                "SetValues(l, Empty)", "ClearValues(givenName)"));
    });
}

TEST_FRESH(UserAttributes, TheCallersVariablesStayAsTheyAre) {
    bound_through_every_door([](Behind<User>& user) {
        Text name = u"Mail";
        Variant value = Values{u"a@shop"};
        user.call<&User::GetAttribValue>(name);
        user.call<&User::SetAttribValue>(name, value);
        user.call<&User::ClearAttribValue>(name);
        EXPECT_EQ(name, u"Mail");
        EXPECT_EQ(value, Variant(Values{u"a@shop"}));
    });
}

TEST_FRESH(UserAttributes, WhatTheProviderDoesToNameAndValueReachesTheCaller) {
    directory_.changes_arguments = true;
    bound_through_every_door([](Behind<User>& user) {
        Text read = u"mail", written = u"mail", cleared = u"mail";
        Variant value = Values{u"a@shop"};
        user.call<&User::GetAttribValue>(read);
        user.call<&User::SetAttribValue>(written, value);
        user.call<&User::ClearAttribValue>(cleared);
        for (const Text& name : {read, written, cleared}) EXPECT_EQ(name, u"mail!");
        EXPECT_EQ(value, Variant(u"changed"));
    });
}

TEST_FRESH(UserAttributes, WhatTheProviderRaisesArrivesWithTheAttributesName) {
    bound_through_every_door([this](Behind<User>& user) {
        for (const char* operation : {"GetValues", "SetValues", "ClearValues"})
            journal_.refuse(operation, no_rights());
        const auto number = error_number(0x80072098);
        expect_failure(raised_by([&] { value_of(user, u"Mail"); }), number, u"Its.Own",
                       block("80072098", get_source, "(50) no rights", "Attribute is: Mail"));
        expect_failure(raised_by([&] { set(user, u"Mail", u"x"); }), number, u"Its.Own",
                       block("80072098", set_source, "(50) no rights", "Attribute is: Mail"));
        expect_failure(raised_by([&] { clear(user, u"Mail"); }), number, u"Its.Own",
                       block("80072098", clear_source, "(50) no rights"));
        EXPECT_THAT(log_.take_sources(), ElementsAre("Its.Own", "Its.Own", "Its.Own"));
        for (const char* operation : {"GetValues", "SetValues", "ClearValues"})
            journal_.allow(operation);
    });
}

TEST_FRESH(UserAttributes, AnUnboundUserFailsUnderTheOperationsName) {
    through_every_door([this](Behind<User>& user) {
        expect_failure(raised_by([&] { value_of(user, u"sn"); }), 91, u"OrvoMembership",
                       block("5B", get_source, not_set, "Attribute is: sn"));
        expect_failure(raised_by([&] { set(user, u"sn", u"x"); }), 91, u"OrvoMembership",
                       block("5B", set_source, not_set, "Attribute is: sn"));
        expect_failure(raised_by([&] { clear(user, u"sn"); }), 91, u"OrvoMembership",
                       block("5B", clear_source, not_set));
        EXPECT_EQ(log_.take().size(), 3u);
    });
}

// Readable lists.

TEST_FRESH(UserAttributes, AListedAttributeIsReadOnceUnderAnyCaseOfItsName) {
    directory_.answer(u"mail", Values{u"a@shop"});
    allow({NEEDED_BY_THE_BIND, u"mail"}, {});
    bound_through_every_door([this](Behind<User>& user) {
        EXPECT_EQ(value_of(user, u"Mail"), Variant(Values{u"a@shop"}));
        EXPECT_EQ(value_of(user, u"MAIL"), Variant(Values{u"a@shop"}));
        EXPECT_EQ(value_of(user, u"mail"), Variant(Values{u"a@shop"}));
        EXPECT_THAT(journal_.take(), ElementsAre("GetValues(Mail)"));
    });
}

TEST_FRESH(UserAttributes, WhatTheDirectoryHasMeanwhileDoesNotShowUntilTheNextBind) {
    allow({NEEDED_BY_THE_BIND, u"mail"}, {});
    bound_through_every_door([this](Behind<User>& user) {
        directory_.answer(u"mail", Values{u"old@shop"});
        EXPECT_EQ(value_of(user, u"mail"), Variant(Values{u"old@shop"}));
        directory_.answer(u"mail", Values{u"new@shop"});
        EXPECT_EQ(value_of(user, u"mail"), Variant(Values{u"old@shop"}));
        bind(user);
        EXPECT_EQ(value_of(user, u"mail"), Variant(Values{u"new@shop"}));
    });
}

TEST_FRESH(UserAttributes, AnAbsentAttributeIsCachedAsWell) {
    allow({NEEDED_BY_THE_BIND, u"mail"}, {});
    bound_through_every_door([this](Behind<User>& user) {
        for (int i = 0; i < 2; ++i) EXPECT_EQ(value_of(user, u"mail"), Variant(Values{Variant()}));
        EXPECT_THAT(journal_.take(), ElementsAre("GetValues(mail)"));
    });
}

TEST_FRESH(UserAttributes, AValueThatIsEmptyTextIsReadAgainEachTime) {
    directory_.answer(u"mail", u"");
    allow({NEEDED_BY_THE_BIND, u"mail"}, {});
    bound_through_every_door([this](Behind<User>& user) {
        for (int i = 0; i < 3; ++i) EXPECT_EQ(value_of(user, u"mail"), Variant(u""));
        EXPECT_THAT(journal_.take(),
                    ElementsAre("GetValues(mail)", "GetValues(mail)", "GetValues(mail)"));
    });
}

TEST_FRESH(UserAttributes, AReadThatFailedIsTriedAgain) {
    directory_.answer(u"mail", Values{u"a@shop"});
    allow({NEEDED_BY_THE_BIND, u"mail"}, {});
    bound_through_every_door([this](Behind<User>& user) {
        journal_.refuse_nth("GetValues", 1, no_rights());
        expect_failure(raised_by([&] { value_of(user, u"mail"); }), error_number(0x80072098),
                       u"Its.Own",
                       block("80072098", get_source, "(50) no rights", "Attribute is: mail"));
        EXPECT_EQ(value_of(user, u"mail"), Variant(Values{u"a@shop"}));
    });
}

TEST_FRESH(UserAttributes, AnUnlistedAttributeReadsAsEmptyTextQuietly) {
    directory_.answer(u"mail", Values{u"a@shop"});
    allow({NEEDED_BY_THE_BIND}, {});
    bound_through_every_door([this](Behind<User>& user) {
        EXPECT_EQ(value_of(user, u"mail"), Variant(u""));
        EXPECT_THAT(journal_.take(), IsEmpty());
        EXPECT_THAT(log_.take(), IsEmpty());
    });
}

TEST_FRESH(UserAttributes, AnEntryWrittenWithCapitalsLocksItsAttributeOut) {
    directory_.answer(u"mail", Values{u"a@shop"});
    allow({NEEDED_BY_THE_BIND, u"Mail"}, {u"Mail"});
    bound_through_every_door([this](Behind<User>& user) {
        for (const char16_t* name : {u"Mail", u"mail", u"MAIL"}) {
            EXPECT_EQ(value_of(user, name), Variant(u""));
            set(user, name, u"x");
        }
        EXPECT_THAT(journal_.take(), IsEmpty());
        EXPECT_THAT(log_.take(), IsEmpty());
    });
}

TEST_FRESH(UserAttributes, ARefusedReadIsQuietAlsoWhileTheCallerHandlesAnError) {
    allow({NEEDED_BY_THE_BIND}, {});
    load_settings();
    User user;
    bind(user);
    forget();
    trapped(u"Test.Caller", [&] {
        try {
            throw Failure(5, u"Test", u"pending");
        } catch (const Failure&) {
            Text mail = u"mail";
            EXPECT_EQ(user.GetAttribValue(mail), Variant(u""));
        }
    });
    EXPECT_THAT(log_.take(), IsEmpty());
}

TEST_FRESH(UserAttributes, AnUnlistedProfileNameFailsTheBindBecauseEmptyTextIsNoArray) {
    allow({u"orvousertype"}, {});
    through_every_door([](Behind<User>& user) {
        expect_failure(
            raised_by([&] { bind(user); }), 13, u"OrvoMembership",
            block("D", bind_as, block("D", "OrvoMembership.User.ProfileCN", type_mismatch)));
    });
}

// Writable lists.

TEST_FRESH(UserAttributes, AnUnlistedAttributeIsNotWrittenQuietly) {
    allow({}, {u"sn"});
    bound_through_every_door([this](Behind<User>& user) {
        set(user, u"mail", u"a@shop");
        EXPECT_THAT(journal_.take(), IsEmpty());
        EXPECT_THAT(log_.take(), IsEmpty());
    });
}

TEST_FRESH(UserAttributes, ClearingIsNeverRefused) {
    allow({NEEDED_BY_THE_BIND}, {u"sn"});
    bound_through_every_door([this](Behind<User>& user) {
        clear(user, u"mail");
        EXPECT_THAT(journal_.take(), ElementsAre("ClearValues(mail)"));
    });
}

TEST_FRESH(UserAttributes, ASetIsReadBackWithoutTheDirectory) {
    directory_.answer(u"mail", Values{u"old@shop"});
    allow({NEEDED_BY_THE_BIND, u"mail"}, {u"mail"});
    bound_through_every_door([this](Behind<User>& user) {
        EXPECT_EQ(value_of(user, u"mail"), Variant(Values{u"old@shop"}));
        set(user, u"MAIL", Values{u"new@shop"});
        EXPECT_EQ(value_of(user, u"Mail"), Variant(Values{u"new@shop"}));
        set(user, u"mail", u"plain");
        EXPECT_EQ(value_of(user, u"mail"), Variant(u"plain"));
        EXPECT_THAT(journal_.take(), ElementsAre("GetValues(mail)", "SetValues(MAIL, [new@shop])",
                                                 "SetValues(mail, plain)"));
    });
}

TEST_FRESH(UserAttributes, AClearedValueStaysVisibleUntilTheNextBind) {
    directory_.answer(u"mail", Values{u"a@shop"});
    allow({NEEDED_BY_THE_BIND, u"mail"}, {u"mail"});
    bound_through_every_door([this](Behind<User>& user) {
        value_of(user, u"mail");
        clear(user, u"mail");
        journal_.clear();
        EXPECT_EQ(value_of(user, u"mail"), Variant(Values{u"a@shop"}));
        EXPECT_THAT(journal_.take(), IsEmpty());
        bind(user);
        journal_.clear();
        value_of(user, u"mail");
        EXPECT_THAT(journal_.take(), ElementsAre("GetValues(mail)"));
    });
}

TEST_FRESH(UserAttributes, AnEmptyTextThatWasSetIsReadFromTheDirectory) {
    directory_.answer(u"mail", Values{u"a@shop"});
    allow({NEEDED_BY_THE_BIND, u"mail"}, {u"mail"});
    bound_through_every_door([](Behind<User>& user) {
        set(user, u"mail", u"");
        EXPECT_EQ(value_of(user, u"mail"), Variant(Values{u"a@shop"}));
    });
}

TEST_FRESH(UserAttributes, ASetThatTheProviderRefusesLeavesTheCache) {
    directory_.answer(u"mail", Values{u"a@shop"});
    allow({NEEDED_BY_THE_BIND, u"mail"}, {u"mail"});
    bound_through_every_door([this](Behind<User>& user) {
        value_of(user, u"mail");
        journal_.refuse_nth("SetValues", 1, no_rights());
        expect_failure(raised_by([&] { set(user, u"mail", u"x"); }), error_number(0x80072098),
                       u"Its.Own",
                       block("80072098", set_source, "(50) no rights", "Attribute is: mail"));
        EXPECT_EQ(value_of(user, u"mail"), Variant(Values{u"a@shop"}));
    });
}

TEST_FRESH(UserAttributes, SettingAnAttributeThatMayNotBeReadGrantsReadingIt) {
    allow({NEEDED_BY_THE_BIND}, {u"mail"});
    bound_through_every_door([this](Behind<User>& user) {
        EXPECT_EQ(value_of(user, u"mail"), Variant(u""));
        set(user, u"Mail", Values{u"a@shop"});
        EXPECT_EQ(value_of(user, u"mail"), Variant(Values{u"a@shop"}));
        EXPECT_THAT(journal_.take(), ElementsAre("SetValues(Mail, [a@shop])"));
    });
}

TEST_FRESH(UserAttributes, WithoutAReadableListTheFirstSetOfAWritableOneMakesAListOfIt) {
    directory_.answer(u"sn", Values{u"Smith"});
    allow({}, {u"mail"});
    bound_through_every_door([](Behind<User>& user) {
        EXPECT_EQ(value_of(user, u"sn"), Variant(Values{u"Smith"}));
        set(user, u"mail", Values{u"a@shop"});
        EXPECT_EQ(value_of(user, u"mail"), Variant(Values{u"a@shop"}));
        EXPECT_EQ(value_of(user, u"sn"), Variant(u"")) << "the list holds one key by now";
    });
}

TEST_FRESH(UserAttributes, WithoutAWritableListASetLeavesTheCacheAsItIs) {
    directory_.answer(u"mail", Values{u"a@shop"});
    allow({NEEDED_BY_THE_BIND, u"mail"}, {});
    bound_through_every_door([](Behind<User>& user) {
        value_of(user, u"mail");
        set(user, u"mail", Values{u"new@shop"});
        EXPECT_EQ(value_of(user, u"mail"), Variant(Values{u"a@shop"}));
    });
}

// The lists at each bind.

TEST_FRESH(UserAttributes, EachBindAsksForTheListsOfTheUserThatWasBound) {
    std::vector<Text> asked;
    set_user_privilege_source([&](const Text& name) {
        asked.push_back(name);
        return UserPrivileges();
    });
    load_settings();
    User user;
    Text account;
    Secret password;
    for (Text name : {u"jsmith", u"mlee"}) user.BindAs(name, account, password);
    EXPECT_EQ(asked, (std::vector<Text>{u"jsmith", u"mlee"}));
}

TEST_FRESH(UserAttributes, TheListsOfAnEmptyNameAreNeverAskedFor) {
    std::vector<Text> asked;
    set_user_privilege_source([&](const Text& name) {
        asked.push_back(name);
        return UserPrivileges();
    });
    load_settings();
    User user;
    Text name, account;
    Secret password;
    EXPECT_EQ(raised_by([&] { user.BindAs(name, account, password); }).number,
              error_number(0x80040324));
    EXPECT_THAT(asked, IsEmpty());
}

TEST_FRESH(UserAttributes, ARebindDropsBothListsAndTheCache) {
    directory_.answer(u"mail", Values{u"a@shop"});
    load_settings();
    for (const Door door : every_door) {
        SCOPED_TRACE(testing::PrintToString(door));
        allow({NEEDED_BY_THE_BIND, u"mail"}, {u"mail"});
        Behind<User> user(door);
        bind(user);
        value_of(user, u"mail");
        EXPECT_EQ(value_of(user, u"sn"), Variant(u""));
        set_user_privilege_source({});
        bind(user);
        forget();
        value_of(user, u"mail");
        value_of(user, u"mail");
        value_of(user, u"sn");
        set(user, u"sn", u"x");
        EXPECT_THAT(journal_.take(), ElementsAre("GetValues(mail)", "GetValues(mail)",
                                                 "GetValues(sn)", "SetValues(sn, x)"));
    }
}

TEST_FRESH(UserAttributes, ABindThatIsRefusedKeepsTheListsAndTheCache) {
    directory_.answer(u"mail", Values{u"a@shop"});
    allow({NEEDED_BY_THE_BIND, u"mail"}, {});
    bound_through_every_door([this](Behind<User>& user) {
        value_of(user, u"mail");
        journal_.refuse_nth("Bind", 1, no_rights());
        raised_by([&] { bind(user); });
        journal_.clear();
        EXPECT_EQ(value_of(user, u"mail"), Variant(Values{u"a@shop"}));
        EXPECT_THAT(journal_.take(), IsEmpty());
    });
}

TEST_FRESH(UserAttributes, ANameThatStandsTwiceEndsTheBindUnderCheckPrivs) {
    constexpr const char* in_use =
        "This key is already associated with an element of this collection";
    allow({u"mail", u"mail"}, {});
    through_every_door([&](Behind<User>& user) {
        expect_failure(raised_by([&] { bind(user); }), 457, u"Scripting.Dictionary",
                       block("1C9", bind_as, block("1C9", check_privs, in_use)));
    });
    allow({}, {u"mail", u"mail"});
    through_every_door([&](Behind<User>& user) {
        expect_failure(raised_by([&] { bind(user); }), 457, u"Scripting.Dictionary",
                       block("1C9", bind_as, block("1C9", check_privs, in_use)));
    });
}

TEST_FRESH(UserAttributes, NamesThatDifferInCaseAreTwo) {
    allow({NEEDED_BY_THE_BIND, u"mail", u"Mail"}, {});
    bound_through_every_door(
        [](Behind<User>& user) { EXPECT_EQ(value_of(user, u"mail"), Variant(Values{Variant()})); });
}

TEST_FRESH(UserAttributes, WhatTheSourceRaisesEndsTheBindUnderCheckPrivs) {
    set_user_privilege_source(
        [](const Text&) -> UserPrivileges { throw Failure(5, u"Policy", u"unreadable"); });
    through_every_door([](Behind<User>& user) {
        expect_failure(raised_by([&] { bind(user); }), 5, u"Policy",
                       block("5", bind_as, block("5", check_privs, "unreadable")));
    });
}

TEST_FRESH(UserAttributes, AListThatSixteenBitsCannotCountEndsTheBindWithAnOverflow) {
    load_settings();
    Values names(0, 32769);
    for (std::int32_t i = 0; i < names.count(); ++i) names[i] = u"a" + decimal(i);
    for (const std::int32_t count : {32769, 32768}) {
        SCOPED_TRACE(count);
        names.resize(count);
        allow({}, names);
        User user;
        expect_failure(raised_by([&] { bind(user); }), 6, u"OrvoMembership",
                       block("6", bind_as, block("6", check_privs, "Overflow")));
    }
    names.resize(32767);
    allow({}, names);
    User user;
    EXPECT_NO_THROW(bind(user));
}

TEST_FRESH(UserAttributes, WithoutADictionaryTheBindEndsUnderCheckPrivs) {
    dictionary_class_.reset();
    through_every_door([](Behind<User>& user) {
        expect_failure(raised_by([&] { bind(user); }), 429, u"OrvoMembership",
                       block("1AD", bind_as,
                             block("1AD", check_privs, cannot_create(u"Scripting.Dictionary"))));
    });
}

}  // namespace
}  // namespace orvo
