#include "tests/component/entries/user_catalogue_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

// The profile's values in place of the user's own.

class UserFallback : public UserCatalogue {
protected:
    UserFallback() {
        give_profile();
        answer_profile(u"LanguageID", Values{u"DE"});
        answer_profile(u"Locale", Values{u"1031"});
        answer_profile(u"OrvoCatalogIDs", Values{i4(-1), i4(5)});
        answer_profile(u"OrvoDashboardIDs", Values{i4(-1), i4(6)});
        answer_profile(u"AskbookVisibility", Values{i4(-1), i4(7)});
        answer_profile(u"OrvoRole", Values{i4(-1), i4(8)});
    }
    struct Row {
        const char* property;
        const char* attribute;
        Variant profiles;
        const char* profiles_attribute;
    };
    // Those that fall back when their first element equals 0.
    static std::vector<Row> zero_rows() {
        return {{"LanguageID", "LanguageID", u"DE", "LanguageID"},
                {"Locale", "Locale", i2(1031), "Locale"},
                {"OrvoCatalogIDs", "OrvoCatalogIDS", Values{i4(-1), i4(5)}, "OrvoCatalogIDs"},
                {"OrvoDashboardIDs", "OrvoDashboardIDs", Values{i4(-1), i4(6)}, "OrvoDashboardIDs"},
                {"OrvoRoles", "OrvoRole", Values{i4(-1), i4(8)}, "OrvoRole"}};
    }
    static std::vector<Variant> zeros() {
        return {Values{Variant()}, Values{u""},   Values{u"0"},        Values{i4(0)},
                Values{u"0.0"},    Values{false}, Values{i4(0), i4(3)}};
    }
};

TEST_FRESH(UserFallback, AnUnsetValueReadsAsTheProfilesUnchanged) {
    load_settings();
    Users users;
    for (const Row& row : zero_rows()) {
        for (const Variant& unset : zeros()) {
            SCOPED_TRACE(std::string(row.property) + " of " + shown(unset));
            store(row.attribute, unset);
            journal_.clear();
            EXPECT_EQ(late::get(users.made.object(), from_utf8(row.property)), row.profiles);
            EXPECT_THAT(journal_.take(),
                        ElementsAre(std::string("GetValues(") + row.attribute + ")",
                                    std::string("GetValues(") + row.profiles_attribute + ")"));
        }
    }
    EXPECT_EQ(users.direct.get_property<property_row("LanguageID")>(), u"DE");
    EXPECT_EQ((call<&User::get_property<property_row("Locale")>>(users.made)), 1031);
}

TEST_FRESH(UserFallback, ASetValueIsTheUsersOwn) {
    load_settings();
    Users users;
    for (const Row& row : zero_rows()) {
        SCOPED_TRACE(row.property);
        store(row.attribute, Values{u"7"});
        journal_.clear();
        const Variant value = late::get(users.made.object(), from_utf8(row.property));
        EXPECT_EQ(shown(value.is_array() ? element(value, 0) : value), "7");
        EXPECT_THAT(journal_.take(), ElementsAre(std::string("GetValues(") + row.attribute + ")"));
    }
    store("LanguageID", Values{u"EN"});
    EXPECT_EQ(late::get(users.made.object(), u"LanguageID"), Variant(u"EN"));
    store("Locale", Values{u"-1"});
    EXPECT_EQ(late::get(users.made.object(), u"Locale"), i2(-1));
    store("OrvoRole", Values{u"-1", u"2"});
    EXPECT_EQ(late::get(users.made.object(), u"OrvoRoles"), Variant(Values{i2(0), u"2"}));
}

TEST_FRESH(UserFallback, WithoutAProfileAnUnsetValueReadsAsItIs) {
    directory_.answer_of(jsmith, u"ProfileCN", Values{Variant()});
    load_settings();
    Users users;
    for (const Row& row : zero_rows()) {
        SCOPED_TRACE(row.property);
        store(row.attribute, Values{i4(0), i4(3)});
        const Variant value = late::get(users.made.object(), from_utf8(row.property));
        if (value.is_array())
            EXPECT_EQ(value, Variant(Values{i4(0), i4(3)}));
        else
            EXPECT_EQ(value.to<Text>(), u"0");
    }
}

TEST_FRESH(UserFallback, AskbookVisibilityFallsBackOnlyWhereThereIsNoValue) {
    load_settings();
    Users users;
    const auto visibility = [&](const Variant& own) {
        store("AskbookVisibility", own);
        return late::get(users.made.object(), u"AskbookVisibility");
    };
    EXPECT_EQ(visibility(Values{Variant()}), Variant(Values{i4(-1), i4(7)}));
    EXPECT_EQ(visibility(Values{u""}), Variant(Values{i4(-1), i4(7)}));
    EXPECT_EQ(visibility(Values{i4(0)}), Variant(Values{i4(0)}));
    EXPECT_EQ(visibility(Values{u"0"}), Variant(Values{u"0"}));
    EXPECT_EQ(visibility(Values{i4(-1), i4(2)}), Variant(Values{i2(0), i4(2)}));
}

TEST_FRESH(UserFallback, RolesNeitherFallBackNorReplaceMinusOne) {
    load_settings();
    Users users;
    EXPECT_EQ(late::get(users.made.object(), u"Roles"), Variant(Values{Variant()}));
    store("OrvoRole", Values{i4(-1)});
    EXPECT_EQ(late::get(users.made.object(), u"Roles"), Variant(Values{i4(-1)}));
}

TEST_FRESH(UserFallback, ListsWithoutAFallbackKeepTheirZero) {
    load_settings();
    Users users;
    for (const char16_t* name :
         {u"OrvoAddressIDs", u"OnBehalfOfAdminOffice", u"OnBehalfOfRequisitioner"}) {
        directory_.answer_of(jsmith, name, Values{i4(0), i4(2)});
        EXPECT_EQ(late::get(users.made.object(), name), Variant(Values{i4(0), i4(2)}));
        directory_.answer_of(jsmith, name, Values{i4(-1), i4(-1)});
        EXPECT_EQ(late::get(users.made.object(), name), Variant(Values{i2(0), i4(-1)}));
        directory_.answer_of(jsmith, name, Values{i4(2), i4(-1)});
        EXPECT_EQ(late::get(users.made.object(), name), Variant(Values{i4(2), i4(-1)}));
    }
}

TEST_FRESH(UserFallback, AProfileThatFailsShowsTheChainOfMethods) {
    load_settings();
    Users users;
    answer_profile(u"Locale", Values{u"German"});
    expect_failure(raised_by([&] { late::get(users.made.object(), u"Locale"); }), 13,
                   u"OrvoMembership",
                   block("D", "OrvoMembership.User.Locale",
                         block("D", "OrvoMembership.Profile.Locale", type_mismatch)));
}

}  // namespace
}  // namespace orvo
