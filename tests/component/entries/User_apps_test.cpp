#include "tests/component/entries/user_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class UserApps : public UserTest {
protected:
    void answer_apps(const Variant& apps) { directory_.answer_of(jsmith, u"OrvoApps", apps); }
    static Variant apps_of(Behind<User>& user) { return user.call<&User::OrvoApps>(); }
    static void check(Behind<User>& user, std::int16_t app, const Text& name = u"Stock") {
        user.call<&User::CheckAppUserAccess>(name, app);
    }
};

TEST_FRESH(UserApps, OwnApplicationsAreReadStraightFromTheProvider) {
    answer_apps(numbers({4, 9}));
    give_profile();
    bound_through_every_door([this](Behind<User>& user) {
        EXPECT_EQ(apps_of(user), Variant(numbers({4, 9})));
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
    answer_profile(u"OrvoApps", numbers({-1, 12}));
    for (const Variant& own : {Variant(numbers({0})), Variant(numbers({0, 5})),
                               Variant(Values{Variant()}), Variant(Values{u"0"})}) {
        SCOPED_TRACE(shown(own));
        answer_apps(own);
        bound_through_every_door([](Behind<User>& user) {
            EXPECT_EQ(apps_of(user), Variant(numbers({-1, 12}))) << "as the profile has it";
        });
    }
}

TEST_FRESH(UserApps, WithoutAProfileAZeroReadsAsItIs) {
    answer_apps(numbers({0, 5}));
    bound_through_every_door([](Behind<User>& user) {
        EXPECT_EQ(apps_of(user), Variant(numbers({0, 5})));
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
    bind(user);
    User direct;
    bind(direct);
    const std::pair<Variant, const char*> cases[] = {
        {numbers({4, 9}), "SetValues(OrvoApps, [4, 9])"}, {Values(), "SetValues(OrvoApps, [])"},
        {std::int32_t{4}, "SetValues(OrvoApps, 4)"},      {u"", "SetValues(OrvoApps, )"},
        {Variant::null(), "SetValues(OrvoApps, Null)"},   {Variant(), "ClearValues(OrvoApps)"},
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
    Variant apps = numbers({4});
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
    answer_apps(numbers({4, 9}));
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
    answer_profile(u"OrvoApps", numbers({12}));
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

}  // namespace
}  // namespace orvo
