#include "tests/component/entries/user_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(slot_of<&User::CN> == 10 + 3 + 2 * std::size(user_catalogue));
static_assert(slot_of<&User::CN> == 135);
static_assert(slot_of<&User::HasRole> == 176);
static_assert(slot_of<&User::ChangePassword> == 186);
static_assert(table_of<User>.slot_count == 187, "nothing stands after it");

Values roles_of(std::initializer_list<int> numbers) {
    Values roles(0, 0);
    for (const int number : numbers) roles.push_back(std::int32_t{number});
    return roles;
}

class UserRoles : public UserTest {
protected:
    void answer_roles(const Variant& roles) { directory_.answer_of(jsmith, u"OrvoRole", roles); }
    static bool has(Behind<User>& user, std::int16_t role) {
        const std::int16_t asked = role;
        const bool has = user.call<&User::HasRole>(role);
        EXPECT_EQ(role, asked) << "the caller's variable stays as it is";
        return has;
    }
    static void assign(Behind<User>& user, std::int16_t role, bool enable) {
        user.call<&User::AssignRole>(role, enable);
    }
};

TEST_FRESH(UserRoles, HasRoleFindsARoleAnywhereInTheList) {
    answer_roles(roles_of({2, 21, 7}));
    bound_through_every_door([this](Behind<User>& user) {
        EXPECT_TRUE(has(user, 2));
        EXPECT_TRUE(has(user, 21));
        EXPECT_TRUE(has(user, 7));
        EXPECT_FALSE(has(user, 1));
        EXPECT_FALSE(has(user, 0));
        EXPECT_THAT(journal_.take(), testing::Each("GetValues(OrvoRole)"));
    });
}

TEST_FRESH(UserRoles, RolesAreComparedAsNumbersWhateverTheirTypeIs) {
    answer_roles(Values{u"2", std::int16_t{3}, 4.0, u" 5 ", u"x", Variant::null(), u"6"});
    bound_through_every_door([](Behind<User>& user) {
        for (const std::int16_t role : {2, 3, 4, 5, 6}) EXPECT_TRUE(has(user, role)) << role;
        EXPECT_FALSE(has(user, 0));
    });
}

TEST_FRESH(UserRoles, AnEmptyOwnListIsAnsweredFromTheProfile) {
    give_profile();
    answer_profile(u"OrvoRole", roles_of({2, 3}));
    for (const Variant& own :
         {Variant(Values{Variant()}), Variant(Values{u""}), Variant(Values())}) {
        SCOPED_TRACE(shown(own));
        answer_roles(own);
        bound_through_every_door([](Behind<User>& user) {
            EXPECT_TRUE(has(user, 3));
            EXPECT_FALSE(has(user, 1));
        });
    }
}

TEST_FRESH(UserRoles, AnOwnListOfZeroOrOfSeveralIsNotAnsweredFromTheProfile) {
    give_profile();
    answer_profile(u"OrvoRole", roles_of({2, 3}));
    for (const Variant& own : {Variant(roles_of({0})), Variant(roles_of({7})),
                               Variant(Values{Variant(), std::int32_t{7}})}) {
        SCOPED_TRACE(shown(own));
        answer_roles(own);
        bound_through_every_door([](Behind<User>& user) { EXPECT_FALSE(has(user, 3)); });
    }
}

TEST_FRESH(UserRoles, WithoutRolesAndWithoutAProfileNoRoleIsHeld) {
    bound_through_every_door([](Behind<User>& user) { EXPECT_FALSE(has(user, 3)); });
    answer_roles(Values());
    bound_through_every_door([](Behind<User>& user) { EXPECT_FALSE(has(user, 0)); });
}

TEST_FRESH(UserRoles, AListThatIsNoArrayFails) {
    answer_roles(u"2");
    bound_through_every_door([](Behind<User>& user) {
        expect_failure(raised_by([&] { has(user, 2); }), 13, u"OrvoMembership",
                       block("D", "OrvoMembership.User.HasRole", type_mismatch));
        expect_failure(raised_by([&] { assign(user, 2, true); }), 13, u"OrvoMembership",
                       block("D", "OrvoMembership.User.AssignRole", type_mismatch));
    });
}

TEST_FRESH(UserRoles, AListLongerThanSixteenBitsCountOverflows) {
    Values roles(0, 32768);
    for (Variant& role : roles) role = std::int32_t{5};
    roles[32767] = std::int32_t{6};
    answer_roles(roles);
    load_settings();
    Behind<User> user(Door::slots);
    bind(user);
    EXPECT_TRUE(has(user, 5)) << "found before the count ends";
    EXPECT_TRUE(has(user, 6));
    expect_failure(raised_by([&] { has(user, 7); }), 6, u"OrvoMembership",
                   block("6", "OrvoMembership.User.HasRole", "Overflow"));
    expect_failure(raised_by([&] { assign(user, 7, true); }), 6, u"OrvoMembership",
                   block("6", "OrvoMembership.User.AssignRole", "Overflow"));
    expect_failure(raised_by([&] { assign(user, 5, false); }), 6, u"OrvoMembership",
                   block("6", "OrvoMembership.User.AssignRole", "Overflow"));
    roles.push_back(std::int32_t{7});
    answer_roles(roles);
    expect_failure(raised_by([&] { has(user, 5); }), 6, u"OrvoMembership",
                   block("6", "OrvoMembership.User.HasRole", "Overflow"));
    EXPECT_THAT(journal_.take(), testing::Not(testing::Contains(testing::StartsWith("SetValues"))));
}

// AssignRole, row by row: the list, the role, whether to hold it, and what is written.

struct Assignment {
    Variant before;
    std::int16_t role;
    bool enable;
    const char* written;  // null: nothing
};

TEST_FRESH(UserRoles, AssignRoleWritesTheChangedListAndNothingWhereNothingChanges) {
    const Assignment assignments[] = {
        // added
        {roles_of({2}), 3, true, "SetValues(OrvoRole, [2, 3])"},
        {roles_of({2, 5, 4}), 3, true, "SetValues(OrvoRole, [2, 5, 4, 3])"},
        {roles_of({0}), 3, true, "SetValues(OrvoRole, [3])"},
        {Values{u"0"}, 3, true, "SetValues(OrvoRole, [3])"},
        {Values{Variant()}, 3, true, "SetValues(OrvoRole, [3])"},
        {Values{u""}, 3, true, "SetValues(OrvoRole, [3])"},
        {Values(), 3, true, "SetValues(OrvoRole, [3])"},
        {roles_of({0, 2}), 3, true, "SetValues(OrvoRole, [0, 2, 3])"},
        {roles_of({-1}), 3, true, "SetValues(OrvoRole, [-1, 3])"},
        // removed
        {roles_of({3}), 3, false, "SetValues(OrvoRole, [0])"},
        {Values{u"3"}, 3, false, "SetValues(OrvoRole, [0])"},
        {roles_of({2, 3, 4}), 3, false, "SetValues(OrvoRole, [2, 4])"},
        {roles_of({3, 2, 3}), 3, false, "SetValues(OrvoRole, [2])"},
        {roles_of({3, 3}), 3, false, "SetValues(OrvoRole, [])"},
        {Values{u"2", u"3", Variant()}, 3, false, "SetValues(OrvoRole, [2, 0])"},
        // as it is
        {roles_of({2, 3}), 3, true, nullptr},
        {roles_of({2, 4}), 3, false, nullptr},
        {roles_of({0}), 3, false, nullptr},
        {Values{Variant()}, 3, false, nullptr},
        {Values(), 3, false, nullptr},
        {roles_of({0}), 0, true, nullptr},
    };
    for (const auto& [before, role, enable, written] : assignments) {
        SCOPED_TRACE(shown(before) + (enable ? " with " : " without ") + std::to_string(role));
        answer_roles(before);
        bound_through_every_door([&](Behind<User>& user) {
            assign(user, role, enable);
            if (written)
                EXPECT_THAT(journal_.take(),
                            ElementsAre("GetValues(OrvoRole)", "GetValues(OrvoRole)", written));
            else
                EXPECT_THAT(journal_.take(), ElementsAre("GetValues(OrvoRole)"));
        });
    }
}

TEST_FRESH(UserRoles, AssignRoleNeverLooksAtTheProfile) {
    give_profile();
    answer_profile(u"OrvoRole", roles_of({2, 3}));
    bound_through_every_door([this](Behind<User>& user) {
        assign(user, 3, true);
        EXPECT_EQ(journal_.take().back(), "SetValues(OrvoRole, [3])");
        assign(user, 2, false);
        EXPECT_THAT(journal_.take(), ElementsAre("GetValues(OrvoRole)"));
    });
}

TEST_FRESH(UserRoles, ARefusedWriteShowsTheChainOfMethods) {
    bound_through_every_door([this](Behind<User>& user) {
        journal_.refuse("SetValues", no_rights());
        expect_failure(raised_by([&] { assign(user, 3, true); }), error_number(0x80072098),
                       u"Its.Own",
                       block("80072098", "OrvoMembership.User.AssignRole",
                             block("80072098", "OrvoMembership.User.Roles",
                                   block("80072098", "OrvoMembership.User.SetAttribValue",
                                         "(50) no rights", "Attribute is: OrvoRole"))));
    });
}

// Role properties.

struct NamedRole {
    const char* name;
    std::int16_t role;
};
constexpr NamedRole named_roles[] = {
    {"CreditCardUser", 1}, {"BuyerRole", 2},     {"RequisitionerRole", 3},
    {"ApproverRole", 4},   {"FinancialRole", 5}, {"ExternalRole", 6},
    {"SalesRole", 7},      {"CanPublish", 21},   {"CanViewAll", 22},
    {"CanEditAll", 23},    {"ReceiverRole", 24}, {"SalesRepresentativeRole", 25},
};

template <std::size_t... row>
void for_each_role(auto&& body, std::index_sequence<row...>) {
    (body.template operator()<row>(), ...);
}

TEST_FRESH(UserRoles, EachRolePropertyAsksForItsRoleAndGrantsAndWithdrawsIt) {
    load_settings();
    const Ref<User> user = make<User>();
    Text name = u"jsmith", account, password;
    call<&User::BindAs>(user, name, account, password);
    User direct;
    bind(direct);
    static_assert(std::size(named_roles) == std::size(user_roles));
    for_each_role(
        [&]<std::size_t row>() {
            const auto& [property, role] = named_roles[row];
            SCOPED_TRACE(property);
            EXPECT_STREQ(user_roles[row].name, property);
            const Text late_name = from_utf8(property);
            answer_roles(roles_of({90, role}));
            EXPECT_TRUE(direct.get_role<row>());
            EXPECT_TRUE((call<&User::get_role<row>>(user)));
            EXPECT_EQ(late::get(user.object(), late_name), Variant(true));
            const auto removed = "SetValues(OrvoRole, [90])";
            journal_.clear();
            direct.put_role<row>(false);
            EXPECT_EQ(journal_.take().back(), removed);
            call<&User::put_role<row>>(user, false);
            EXPECT_EQ(journal_.take().back(), removed);
            late::put(user.object(), late_name, false);
            EXPECT_EQ(journal_.take().back(), removed);

            answer_roles(roles_of({90}));
            EXPECT_FALSE(direct.get_role<row>());
            EXPECT_FALSE((call<&User::get_role<row>>(user)));
            EXPECT_EQ(late::get(user.object(), late_name), Variant(false));
            const auto added = "SetValues(OrvoRole, [90, " + std::to_string(role) + "])";
            journal_.clear();
            direct.put_role<row>(true);
            EXPECT_EQ(journal_.take().back(), added);
            call<&User::put_role<row>>(user, true);
            EXPECT_EQ(journal_.take().back(), added);
            late::put(user.object(), late_name, 1);
            EXPECT_EQ(journal_.take().back(), added);
        },
        std::make_index_sequence<std::size(user_roles)>());
}

TEST_FRESH(UserRoles, ARolePropertyIsAnsweredFromTheProfileAsHasRoleIs) {
    give_profile();
    answer_profile(u"OrvoRole", roles_of({4}));
    bound_through_every_door([](Behind<User>& user) {
        EXPECT_TRUE(user.call<&User::get_role<3>>()) << "ApproverRole";
        EXPECT_FALSE(user.call<&User::get_role<4>>());
    });
}

TEST_FRESH(UserRoles, AFailingRolePropertyShowsTheChainOfMethods) {
    journal_.clear();
    bound_through_every_door([this](Behind<User>& user) {
        journal_.refuse_nth("GetValues", 1, no_rights());
        const std::string chain =
            block("80072098", "OrvoMembership.User.HasRole",
                  block("80072098", "OrvoMembership.User.Roles",
                        block("80072098", "OrvoMembership.User.GetAttribValue", "(50) no rights",
                              "Attribute is: OrvoRole")));
        expect_failure(raised_by([&] { user.call<&User::get_role<7>>(); }),
                       error_number(0x80072098), u"Its.Own",
                       block("80072098", "OrvoMembership.User.CanPublish", chain));
    });
}

// Applications.

class UserApps : public UserRoles {
protected:
    void answer_apps(const Variant& apps) { directory_.answer_of(jsmith, u"OrvoApps", apps); }
    static Variant apps_of(Behind<User>& user) { return user.call<&User::OrvoApps>(); }
    static void check(Behind<User>& user, std::int16_t app, const Text& name = u"Stock") {
        user.call<&User::CheckAppUserAccess>(name, app);
    }
};

TEST_FRESH(UserApps, OwnApplicationsAreReadStraightFromTheProvider) {
    answer_apps(roles_of({4, 9}));
    give_profile();
    bound_through_every_door([this](Behind<User>& user) {
        EXPECT_EQ(apps_of(user), Variant(roles_of({4, 9})));
        EXPECT_THAT(journal_.take(), ElementsAre("GetValues(OrvoApps)"));
    });
}

TEST_FRESH(UserApps, AFirstElementOfMinusOneReadsAsZero) {
    answer_apps(Values{u"-1", std::int32_t{-1}});
    bound_through_every_door([](Behind<User>& user) {
        EXPECT_EQ(apps_of(user), Variant(Values{std::int16_t{0}, std::int32_t{-1}}));
    });
}

TEST_FRESH(UserApps, AFirstElementOfZeroReadsAsTheProfilesWhateverFollows) {
    give_profile();
    answer_profile(u"OrvoApps", roles_of({-1, 12}));
    for (const Variant& own : {Variant(roles_of({0})), Variant(roles_of({0, 5})),
                               Variant(Values{Variant()}), Variant(Values{u"0"})}) {
        SCOPED_TRACE(shown(own));
        answer_apps(own);
        bound_through_every_door([](Behind<User>& user) {
            EXPECT_EQ(apps_of(user), Variant(roles_of({-1, 12}))) << "as the profile has it";
        });
    }
}

TEST_FRESH(UserApps, WithoutAProfileAZeroReadsAsItIs) {
    answer_apps(roles_of({0, 5}));
    bound_through_every_door([](Behind<User>& user) {
        EXPECT_EQ(apps_of(user), Variant(roles_of({0, 5})));
    });
}

TEST_FRESH(UserApps, ReadingApplicationsFailsUnderItsName) {
    constexpr const char* source = "OrvoMembership.User.OrvoApps";
    bound_through_every_door([&](Behind<User>& user) {
        answer_apps(u"4");
        expect_failure(raised_by([&] { apps_of(user); }), 13, u"OrvoMembership",
                       block("D", source, type_mismatch));
        answer_apps(Values());
        expect_failure(raised_by([&] { apps_of(user); }), 9, u"OrvoMembership",
                       block("9", source, "Subscript out of range"));
        journal_.refuse_nth("GetValues", 1, no_rights());
        expect_failure(raised_by([&] { apps_of(user); }), error_number(0x80072098), u"Its.Own",
                       block("80072098", source, "(50) no rights"));
    });
    through_every_door([&](Behind<User>& user) {
        expect_failure(raised_by([&] { apps_of(user); }), 91, u"OrvoMembership",
                       block("5B", source, not_set));
    });
}

TEST_FRESH(UserApps, SettingApplicationsWritesThemAndAnEmptyValueClearsThem) {
    load_settings();
    const Ref<User> user = make<User>();
    Text name = u"jsmith", account, password;
    call<&User::BindAs>(user, name, account, password);
    User direct;
    bind(direct);
    const std::pair<Variant, const char*> cases[] = {
        {roles_of({4, 9}), "SetValues(OrvoApps, [4, 9])"}, {Values(), "SetValues(OrvoApps, [])"},
        {std::int32_t{4}, "SetValues(OrvoApps, 4)"},       {u"", "SetValues(OrvoApps, )"},
        {Variant::null(), "SetValues(OrvoApps, Null)"},    {Variant(), "ClearValues(OrvoApps)"},
    };
    for (const auto& [apps, written] : cases) {
        SCOPED_TRACE(written);
        journal_.clear();
        Variant given = apps;
        direct.put_OrvoApps(given);
        EXPECT_EQ(given, apps) << "the caller's variable stays as it is";
        EXPECT_THAT(journal_.take(), ElementsAre(written));
        call<&User::put_OrvoApps>(user, given);
        EXPECT_EQ(given, apps);
        EXPECT_THAT(journal_.take(), ElementsAre(written));
        late::put(user.object(), u"OrvoApps", apps);
        EXPECT_THAT(journal_.take(), ElementsAre(written));
    }
}

TEST_FRESH(UserApps, ClearingApplicationsClearsTheAttribute) {
    bound_through_every_door([this](Behind<User>& user) {
        user.call<&User::ClearOrvoApps>();
        EXPECT_THAT(journal_.take(), ElementsAre("ClearValues(OrvoApps)"));
    });
    User user;
    bind(user);
    Variant apps = roles_of({4});
    user.put_OrvoApps(apps);
    journal_.clear();
    user.ClearOrvoApps();
    EXPECT_THAT(journal_.take(), ElementsAre("ClearValues(OrvoApps)")) << "whatever was set before";
}

TEST_FRESH(UserApps, ARefusedClearShowsTheChainOfMethods) {
    bound_through_every_door([this](Behind<User>& user) {
        journal_.refuse_nth("ClearValues", 1, no_rights());
        expect_failure(
            raised_by([&] { user.call<&User::ClearOrvoApps>(); }), error_number(0x80072098),
            u"Its.Own",
            block("80072098", "OrvoMembership.User.ClearOrvoApps",
                  block("80072098", "OrvoMembership.User.ClearAttribValue", "(50) no rights")));
    });
}

TEST_FRESH(UserApps, TwoQuestionsAreAlwaysAnsweredWithYes) {
    through_every_door([this](Behind<User>& user) {
        EXPECT_TRUE(user.call<&User::IsAppAccessAllowed>(Text(u"Stock")));
        EXPECT_TRUE(user.call<&User::IsAppAccessAllowed>(Text()));
        EXPECT_TRUE(user.call<&User::validate>());
        EXPECT_THAT(journal_.take(), IsEmpty());
    });
}

TEST_FRESH(UserApps, AnApplicationOfTheUsersOwnIsGranted) {
    answer_apps(Values{u"4", std::int32_t{9}});
    bound_through_every_door([](Behind<User>& user) {
        EXPECT_NO_THROW(check(user, 4));
        EXPECT_NO_THROW(check(user, 9));
    });
}

TEST_FRESH(UserApps, AnotherApplicationIsRefusedUnderTheSourceValidate) {
    answer_apps(roles_of({4, 9}));
    constexpr const char* source = "OrvoMembership.User.CheckAppUserAccess";
    bound_through_every_door([&](Behind<User>& user) {
        expect_failure(raised_by([&] { check(user, 5); }), error_number(0x8004032B), u"Validate",
                       "\r\n"
                       "ERROR 0x8004032B\r\n"
                       " METHOD: OrvoMembership.User.CheckAppUserAccess\r\n"
                       " DESC:  Stock.\r\n");
        EXPECT_THAT(log_.take_sources(), ElementsAre("Validate"));
        expect_failure(raised_by([&] { check(user, 0, u""); }), error_number(0x8004032B),
                       u"Validate", block("8004032B", source, " "));
    });
}

TEST_FRESH(UserApps, TheProfilesApplicationsCountForAUserWithoutOwn) {
    give_profile();
    answer_profile(u"OrvoApps", roles_of({12}));
    bound_through_every_door([](Behind<User>& user) {
        EXPECT_NO_THROW(check(user, 12));
        EXPECT_EQ(raised_by([&] { check(user, 4); }).number, error_number(0x8004032B));
    });
}

TEST_FRESH(UserApps, AProfileThatAnswersNothingGrantsNothing) {
    give_profile();
    answer_profile(u"OrvoApps", Variant());
    bound_through_every_door([](Behind<User>& user) {
        EXPECT_EQ(raised_by([&] { check(user, 0); }).number, error_number(0x8004032B));
    });
}

TEST_FRESH(UserApps, AnUnboundUserPassesSilently) {
    through_every_door([this](Behind<User>& user) {
        EXPECT_NO_THROW(check(user, 5));
        EXPECT_THAT(journal_.take(), IsEmpty());
        EXPECT_THAT(log_.take(), IsEmpty());
    });
}

TEST_FRESH(UserApps, AListOfApplicationsThatSixteenBitsCannotCountOverflows) {
    Values apps(0, 32768);
    for (Variant& app : apps) app = std::int32_t{5};
    answer_apps(apps);
    load_settings();
    Behind<User> user(Door::slots);
    bind(user);
    EXPECT_NO_THROW(check(user, 5));
    expect_failure(raised_by([&] { check(user, 7); }), 6, u"OrvoMembership",
                   block("6", "OrvoMembership.User.CheckAppUserAccess", "Overflow"));
}

// The default address.

TEST_FRESH(UserApps, OneDefaultAddressServesEveryApplication) {
    directory_.answer_of(jsmith, u"DefaultURL", Values{u"/start", u"/other"});
    bound_through_every_door([this](Behind<User>& user) {
        for (const std::int32_t app : {1, 2, -1}) {
            EXPECT_EQ(user.call<&User::GetDefaultURL>(app), u"/start");
            EXPECT_EQ(user.call<&User::SetDefaultURL>(app, Text(u"/new")), Variant());
            EXPECT_EQ(user.call<&User::SetDefaultURL>(app, Text()), Variant());
            EXPECT_THAT(journal_.take(),
                        ElementsAre("GetValues(DefaultURL)", "SetValues(DefaultURL, [/new])",
                                    "ClearValues(DefaultURL)"));
        }
    });
}

TEST_FRESH(UserApps, AnAbsentDefaultAddressIsEmptyTextAndANonArrayFails) {
    bound_through_every_door([this](Behind<User>& user) {
        EXPECT_EQ(user.call<&User::GetDefaultURL>(1), u"");
        directory_.answer_of(u"un=other,ou=Users,o=Shop", u"DefaultURL", u"/start");
        bind(user, u"other");
        expect_failure(raised_by([&] { user.call<&User::GetDefaultURL>(1); }), 13,
                       u"OrvoMembership",
                       block("D", "OrvoMembership.User.GetDefaultURL", type_mismatch));
    });
}

// The password.

class UserPassword : public UserTest {
protected:
    UserPassword() { directory_.answer_of(jsmith, u"cn", Values{u"jsmith"}); }
    static void change(Behind<User>& user) {
        Text before = u"old-code", after = u"new-code";
        user.call<&User::ChangePassword>(before, after);
        EXPECT_EQ(before, u"old-code");
        EXPECT_EQ(after, u"new-code");
    }
    // Nobody sees a password but the provider.
    void expect_no_password_in_the_log() {
        for (const LogEntry& entry : log_.take())
            EXPECT_THAT(entry.message, testing::Not(testing::HasSubstr("-code")));
    }
};

TEST_FRESH(UserPassword, ARightOldPasswordIsReplaced) {
    for (const std::int32_t verdict : {0, 1, 42, -4}) {
        SCOPED_TRACE(verdict);
        directory_.verdict = verdict;
        bound_through_every_door([this](Behind<User>& user) {
            change(user);
            EXPECT_THAT(journal_.take(),
                        ElementsAre("GetValues(cn)", "new Test.Directory()", "CreateValidator()",
                                    "Open(dir01:389, ou=Users,o=Shop)",
                                    "Validate(un=jsmith,ou=Users,o=Shop, old-code)",
                                    "SetValues(userPassword, [new-code])"));
            expect_no_password_in_the_log();
        });
    }
}

TEST_FRESH(UserPassword, InAContextTheValidatorIsCreatedThroughIt) {
    load_settings();
    Behind<User> user(Door::slots);
    bind(user);
    const RecordingContext context(journal_);
    forget();
    change(user);
    EXPECT_EQ(journal_.take().front(), "CreateInstance(OrvoMembership.Validator)");
}

TEST_FRESH(UserPassword, AWrongOldPasswordIsRefusedAndNothingIsWritten) {
    for (const std::int32_t verdict : {-1, -2, -3, -5, -100}) {
        SCOPED_TRACE(verdict);
        directory_.verdict = verdict;
        bound_through_every_door([this](Behind<User>& user) {
            expect_failure(raised_by([&] { change(user); }), error_number(0x80040325),
                           u"OrvoMembership.User.ChangePassword",
                           "\r\n"
                           "ERROR 0x80040325\r\n"
                           " METHOD: OrvoMembership.User.ChangePassword\r\n"
                           " DESC: The current password is not correct.\r\n");
            EXPECT_EQ(journal_.take().back(), "Validate(un=jsmith,ou=Users,o=Shop, old-code)");
            expect_no_password_in_the_log();
        });
    }
}

TEST_FRESH(UserPassword, AnUnboundUserDoesNothing) {
    through_every_door([this](Behind<User>& user) {
        EXPECT_NO_THROW(change(user));
        EXPECT_THAT(journal_.take(), IsEmpty());
        EXPECT_THAT(log_.take(), IsEmpty());
    });
}

TEST_FRESH(UserPassword, AValidatorThatFailsIsReportedUnderBothNames) {
    journal_.refuse("Validate", {error_number(0x8007203A), u"Its.Own", u"(81) Can't reach"});
    bound_through_every_door([this](Behind<User>& user) {
        expect_failure(raised_by([&] { change(user); }), error_number(0x8007203A), u"Its.Own",
                       block("8007203A", "OrvoMembership.User.ChangePassword",
                             block("8007203A", "OrvoMembership.Validator.ValidatePassword",
                                   "(81) Can't reach")));
        expect_no_password_in_the_log();
    });
}

TEST_FRESH(UserPassword, ARefusedWriteIsReportedWithoutThePassword) {
    journal_.refuse("SetValues", no_rights());
    bound_through_every_door([this](Behind<User>& user) {
        expect_failure(raised_by([&] { change(user); }), error_number(0x80072098), u"Its.Own",
                       block("80072098", "OrvoMembership.User.ChangePassword",
                             block("80072098", "OrvoMembership.User.SetAttribValue",
                                   "(50) no rights", "Attribute is: userPassword")));
        expect_no_password_in_the_log();
    });
}

}  // namespace
}  // namespace orvo
