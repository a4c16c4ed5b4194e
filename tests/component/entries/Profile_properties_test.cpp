#include "tests/component/entries/profile_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

static_assert(slot_of<&Profile::GetAttribValue> == 7);
static_assert(slot_of<&Profile::SetAttribValue> == 8);
static_assert(slot_of<&Profile::ClearAttribValue> == 9);
static_assert(slot_of<&Profile::BindAs> == 10);
static_assert(slot_of<&Profile::GetUsers> == 11);
static_assert(slot_of<&Profile::ClearOrvoApps> == 12);
static_assert(slot_of<&Profile::HasRole> == 13);
static_assert(slot_of<&Profile::AssignRole> == 14);
static_assert(slot_of<&Profile::setServerInfo> == 15);
static_assert(slot_of<&Profile::Init> == 16);
static_assert(slot_of<&Profile::CN> == 17);
static_assert(slot_of<&Profile::Locale> == 18);
static_assert(slot_of<&Profile::put_LanguageID> == 21);
static_assert(slot_of<&Profile::OrvoApps> == 28);
static_assert(slot_of<&Profile::put_whole<Profile::roles>> == 31);

TEST_FRESH(ProfileTest, AttributesGoStraightToTheProvider) {
    directory_.answer(u"mail", Values{u"a@shop", u"b@shop"});
    directory_.answer(u"text", u"no array");
    bound_through_every_door([this](Behind<Profile>& profile) {
        Text mail = u"mail", text = u"text", absent = u"absent";
        Variant value = Values{u"x", u"y"};
        EXPECT_EQ(profile.call<&Profile::GetAttribValue>(mail),
                  Variant(Values{u"a@shop", u"b@shop"}));
        EXPECT_EQ(profile.call<&Profile::GetAttribValue>(text), Variant(u"no array"));
        EXPECT_EQ(profile.call<&Profile::GetAttribValue>(absent), Variant(Values{Variant()}));
        profile.call<&Profile::SetAttribValue>(mail, value);
        profile.call<&Profile::ClearAttribValue>(mail);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("GetValues(mail)", "GetValues(text)", "GetValues(absent)",
                                "SetValues(mail, [x, y])", "ClearValues(mail)"));
    });
}

TEST_FRESH(ProfileTest, WhatTheProviderDoesToNameAndValueReachesTheCaller) {
    directory_.changes_arguments = true;
    bound_through_every_door([](Behind<Profile>& profile) {
        Text read = u"mail", written = u"mail", cleared = u"mail";
        Variant value = Values{u"a@shop"};
        profile.call<&Profile::GetAttribValue>(read);
        profile.call<&Profile::SetAttribValue>(written, value);
        profile.call<&Profile::ClearAttribValue>(cleared);
        for (const Text& name : {read, written, cleared}) EXPECT_EQ(name, u"mail!");
        EXPECT_EQ(value, Variant(u"changed"));
    });
}

TEST_FRESH(ProfileTest, RefusedAttributesAreReportedUnderTheirNamesAndClearingWithItsOwnSpelling) {
    for (const char* operation : {"GetValues", "SetValues", "ClearValues"})
        journal_.refuse(operation, no_rights());
    bound_through_every_door([](Behind<Profile>& profile) {
        Text mail = u"mail";
        Variant value;
        const auto number = error_number(0x80072098);
        expect_failure(
            raised_by([&] { profile.call<&Profile::GetAttribValue>(mail); }), number, u"Its.Own",
            block("80072098", "OrvoMembership.Profile.GetAttribValue", "(50) no rights"));
        expect_failure(
            raised_by([&] { profile.call<&Profile::SetAttribValue>(mail, value); }), number,
            u"Its.Own",
            block("80072098", "OrvoMembership.Profile.SetAttribValue", "(50) no rights"));
        expect_failure(
            raised_by([&] { profile.call<&Profile::ClearAttribValue>(mail); }), number, u"Its.Own",
            block("80072098", "OrvoMembership.Profile.ClearAttribvalue", "(50) no rights"));
    });
}

// Properties.

TEST_FRESH(ProfileTest, SingleValuesAreTheFirstElementAsItsType) {
    directory_.answer(u"cn", Values{u"sales", u"other"});
    directory_.answer(u"Locale", Values{u"1031"});
    directory_.answer(u"LanguageID", Values{std::int32_t{7}});
    bound_through_every_door([this](Behind<Profile>& profile) {
        EXPECT_EQ(profile.call<&Profile::CN>(), u"sales");
        EXPECT_EQ(profile.call<&Profile::Locale>(), 1031);
        EXPECT_EQ(profile.call<&Profile::LanguageID>(), u"7");
        EXPECT_THAT(journal_.take(),
                    ElementsAre("GetValues(cn)", "GetValues(Locale)", "GetValues(LanguageID)"));
    });
}

TEST_FRESH(ProfileTest, AbsentSingleValuesAreEmptyTextAndZero) {
    bound_through_every_door([](Behind<Profile>& profile) {
        EXPECT_EQ(profile.call<&Profile::CN>(), u"");
        EXPECT_EQ(profile.call<&Profile::Locale>(), 0);
        EXPECT_EQ(profile.call<&Profile::LanguageID>(), u"");
    });
}

TEST_FRESH(ProfileTest, SingleValuesThatDoNotFitFailUnderTheirNames) {
    bound_through_every_door([this](Behind<Profile>& profile) {
        constexpr const char* locale = "OrvoMembership.Profile.Locale";
        const std::pair<Variant, int> cases[] = {
            {Values{u"German"}, 13},       {Values{u""}, 13}, {Values{u"70000"}, 6},
            {Values{Variant::null()}, 94}, {Values(), 9},     {u"1031", 13}};
        for (const auto& [values, number] : cases) {
            SCOPED_TRACE(shown(values));
            directory_.answer(u"Locale", values);
            const Failure failure = raised_by([&] { profile.call<&Profile::Locale>(); });
            EXPECT_EQ(failure.number, number);
            EXPECT_EQ(to_utf8(failure.description), block(to_utf8(hexadecimal(number)), locale,
                                                          to_utf8(runtime_error_text(number))));
        }
    });
}

TEST_FRESH(ProfileTest, SettingSingleValuesWritesOneElementAndAnEmptyLanguageRemovesTheAttribute) {
    const auto profile = bound();
    Profile direct;
    bind(direct);
    forget();
    direct.put_Locale(0);
    call<&Profile::put_Locale>(profile, std::int16_t{1031});
    late::put(profile.object(), u"Locale", u"7");
    direct.put_LanguageID(u"DE");
    call<&Profile::put_LanguageID>(profile, Text(u"0"));
    late::put(profile.object(), u"LanguageID", u"EN");
    direct.put_LanguageID(u"");
    call<&Profile::put_LanguageID>(profile, Text());
    late::put(profile.object(), u"LanguageID", u"");
    EXPECT_THAT(
        journal_.take(),
        ElementsAre("SetValues(Locale, [0])", "SetValues(Locale, [1031])", "SetValues(Locale, [7])",
                    "SetValues(LanguageID, [DE])", "SetValues(LanguageID, [0])",
                    "SetValues(LanguageID, [EN])", "ClearValues(LanguageID)",
                    "ClearValues(LanguageID)", "ClearValues(LanguageID)"));
}

TEST_FRESH(ProfileTest, AFailingClearOfTheLanguageIsReportedUnderTheProperty) {
    const auto profile = bound();
    journal_.refuse("ClearValues", no_rights());
    expect_failure(raised_by([&] { call<&Profile::put_LanguageID>(profile, Text()); }),
                   error_number(0x80072098), u"Its.Own",
                   block("80072098", "OrvoMembership.Profile.LanguageID", "(50) no rights"));
}

TEST_FRESH(ProfileTest, WholeValuesPassUnchangedInBothDirections) {
    const auto profile = bound();
    Profile direct;
    bind(direct);
    const auto check = [&]<const Profile::WholeValue & whole>(const char* property,
                                                              const char* attribute) {
        SCOPED_TRACE(property);
        const Text late_name = from_utf8(property);
        for (const Variant& values :
             {Variant(numbers({-1, 0, 5})), Variant(Values()), Variant(u"x"), Variant()}) {
            directory_.answer(from_utf8(attribute), values);
            journal_.clear();
            EXPECT_EQ(direct.get_whole<whole>(), values);
            EXPECT_EQ((call<&Profile::get_whole<whole>>(profile)), values);
            EXPECT_EQ(late::get(profile.object(), late_name), values);
            EXPECT_THAT(journal_.take(),
                        testing::Each(std::string("GetValues(") + attribute + ")"));
            direct.put_whole<whole>(values);
            call<&Profile::put_whole<whole>>(profile, values);
            late::put(profile.object(), late_name, values);
            const std::string written =
                std::string("SetValues(") + attribute + ", " + shown(values) + ")";
            EXPECT_THAT(journal_.take(), ElementsAre(written, written, written));
        }
        journal_.refuse_nth("SetValues", 1, no_rights());
        expect_failure(
            raised_by([&] { direct.put_whole<whole>(Values()); }), error_number(0x80072098),
            u"Its.Own",
            block("80072098", std::string("OrvoMembership.Profile.") + property, "(50) no rights"));
    };
    check.operator()<Profile::catalog_ids>("OrvoCatalogIDs", "OrvoCatalogIDs");
    check.operator()<Profile::dashboard_ids>("OrvoDashboardIDs", "OrvoDashboardIDs");
    check.operator()<Profile::askbook_visibility>("AskbookVisibility", "AskbookVisibility");
    check.operator()<Profile::roles>("Roles", "OrvoRole");
}

TEST_FRESH(ProfileTest, ApplicationsAreReadWholeAndWrittenOrClearedWhenEmpty) {
    const auto profile = bound();
    directory_.answer(u"OrvoApps", numbers({-1, 4}));
    EXPECT_EQ(call<&Profile::OrvoApps>(profile), Variant(numbers({-1, 4})));
    EXPECT_EQ(late::get(profile.object(), u"OrvoApps"), Variant(numbers({-1, 4})));
    journal_.clear();
    call<&Profile::put_OrvoApps>(profile, Variant());
    late::put(profile.object(), u"OrvoApps", Variant());
    call<&Profile::put_OrvoApps>(profile, Variant(numbers({4})));
    late::put(profile.object(), u"OrvoApps", numbers({5}));
    call<&Profile::ClearOrvoApps>(profile);
    late::call(profile.object(), u"ClearOrvoApps");
    EXPECT_THAT(journal_.take(), ElementsAre("ClearValues(OrvoApps)", "ClearValues(OrvoApps)",
                                             "SetValues(OrvoApps, [4])", "SetValues(OrvoApps, [5])",
                                             "ClearValues(OrvoApps)", "ClearValues(OrvoApps)"));
}

TEST_FRESH(ProfileTest, AnArrayWithoutApplicationsIsWrittenAndDoesNotClear) {
    const auto profile = bound();
    call<&Profile::put_OrvoApps>(profile, Variant(Values()));
    late::put(profile.object(), u"OrvoApps", u"");
    EXPECT_THAT(journal_.take(), ElementsAre("SetValues(OrvoApps, [])", "SetValues(OrvoApps, )"));
}

TEST_FRESH(ProfileTest, FailingWritesOfApplicationsShowTheirChain) {
    const auto profile = bound();
    journal_.refuse("SetValues", no_rights());
    journal_.refuse("ClearValues", no_rights());
    expect_failure(raised_by([&] { call<&Profile::put_OrvoApps>(profile, Variant(Values())); }),
                   error_number(0x80072098), u"Its.Own",
                   block("80072098", "OrvoMembership.Profile.OrvoApps", "(50) no rights"));
    expect_failure(
        raised_by([&] { call<&Profile::ClearOrvoApps>(profile); }), error_number(0x80072098),
        u"Its.Own",
        block("80072098", "OrvoMembership.Profile.ClearOrvoApps",
              block("80072098", "OrvoMembership.Profile.ClearAttribvalue", "(50) no rights")));
}

TEST_FRESH(ProfileTest, OnAnUnboundProfileEveryPropertyFails) {
    const auto profile = make<Profile>();
    for (const char16_t* property :
         {u"CN", u"Locale", u"LanguageID", u"OrvoCatalogIDs", u"OrvoDashboardIDs",
          u"AskbookVisibility", u"OrvoApps", u"Roles"}) {
        SCOPED_TRACE(to_utf8(property));
        expect_failure(raised_by([&] { late::get(profile.object(), property); }), 91,
                       u"OrvoMembership",
                       block("5B", "OrvoMembership.Profile." + to_utf8(property), not_set));
    }
}

}  // namespace
}  // namespace orvo
