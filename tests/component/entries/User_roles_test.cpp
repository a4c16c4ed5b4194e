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
    answer_roles(numbers({2, 21, 7}));
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
    answer_profile(u"OrvoRole", numbers({2, 3}));
    for (const Variant& own : {Variant(Values{Variant()}), Variant(Values{u""})}) {
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
    answer_profile(u"OrvoRole", numbers({2, 3}));
    for (const Variant& own : {Variant(numbers({0})), Variant(numbers({7})),
                               Variant(Values{Variant(), std::int32_t{7}})}) {
        SCOPED_TRACE(shown(own));
        answer_roles(own);
        bound_through_every_door([](Behind<User>& user) { EXPECT_FALSE(has(user, 3)); });
    }
}

TEST_FRESH(UserRoles, WithoutRolesAndWithoutAProfileNoRoleIsHeld) {
    bound_through_every_door([](Behind<User>& user) { EXPECT_FALSE(has(user, 3)); });
}

TEST_FRESH(UserRoles, AnArrayWithoutElementsHasNoFirstOneToLookAt) {
    answer_roles(Values());
    const auto expect_subscript = [](Behind<User>& user) {
        expect_failure(raised_by([&] { has(user, 3); }), 9, u"OrvoMembership",
                       block("9", "OrvoMembership.User.HasRole", "Subscript out of range"));
    };
    bound_through_every_door(expect_subscript);
    give_profile();
    answer_profile(u"OrvoRole", numbers({3}));
    bound_through_every_door(expect_subscript);
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
        {numbers({2}), 3, true, "SetValues(OrvoRole, [2, 3])"},
        {numbers({2, 5, 4}), 3, true, "SetValues(OrvoRole, [2, 5, 4, 3])"},
        {numbers({0}), 3, true, "SetValues(OrvoRole, [3])"},
        {Values{u"0"}, 3, true, "SetValues(OrvoRole, [3])"},
        {Values{Variant()}, 3, true, "SetValues(OrvoRole, [3])"},
        {Values{u""}, 3, true, "SetValues(OrvoRole, [3])"},
        {Values(), 3, true, "SetValues(OrvoRole, [3])"},
        {numbers({0, 2}), 3, true, "SetValues(OrvoRole, [0, 2, 3])"},
        {numbers({-1}), 3, true, "SetValues(OrvoRole, [-1, 3])"},
        // removed
        {numbers({3}), 3, false, "SetValues(OrvoRole, [0])"},
        {Values{u"3"}, 3, false, "SetValues(OrvoRole, [0])"},
        {numbers({2, 3, 4}), 3, false, "SetValues(OrvoRole, [2, 4])"},
        {numbers({3, 2, 3}), 3, false, "SetValues(OrvoRole, [2])"},
        {numbers({3, 3}), 3, false, "SetValues(OrvoRole, [])"},
        {Values{u"2", u"3", Variant()}, 3, false, "SetValues(OrvoRole, [2, 0])"},
        // as it is
        {numbers({2, 3}), 3, true, nullptr},
        {numbers({2, 4}), 3, false, nullptr},
        {numbers({0}), 3, false, nullptr},
        {Values{Variant()}, 3, false, nullptr},
        {Values(), 3, false, nullptr},
        {numbers({0}), 0, true, nullptr},
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

TEST_FRESH(UserRoles, AWrittenListHasTheTypesAndBoundsOfWhatWasDoneToIt) {
    const auto from_one = [](Values list) {
        Values moved(1, list.count());
        for (std::int32_t i = 0; i < list.count(); ++i) moved[i + 1] = list[i];
        return moved;
    };
    const Variant three = std::int16_t{3}, none = std::int16_t{0};
    struct Written {
        Values before;
        bool enable;
        Values after;
    };
    const Written cases[] = {
        // A new role is added as it was passed, to the list as it is.
        {Values{u"2", 4.0}, true, Values{u"2", 4.0, three}},
        {from_one(numbers({2, 4})), true, from_one(Values{2, 4, three})},
        {numbers({0}), true, Values{three}},
        {from_one(numbers({0})), true, from_one(Values{0, three})},
        // A list without a role is a new one, of 32-bit integers from 0.
        {Values{u"2", std::int16_t{3}, 4.0}, false, numbers({2, 4})},
        {from_one(numbers({2, 3, 4})), false, numbers({2, 4})},
        {numbers({3}), false, Values{none}},
        {from_one(numbers({3})), false, Values{none}},
    };
    for (const auto& [before, enable, after] : cases) {
        SCOPED_TRACE(shown(before) + (enable ? " with 3" : " without 3"));
        answer_roles(before);
        bound_through_every_door([&](Behind<User>& user) {
            assign(user, 3, enable);
            EXPECT_EQ(directory_.written, Variant(after));
        });
    }
}

TEST_FRESH(UserRoles, AssignRoleNeverLooksAtTheProfile) {
    give_profile();
    answer_profile(u"OrvoRole", numbers({2, 3}));
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
    bind(user);
    User direct;
    bind(direct);
    static_assert(std::size(named_roles) == std::size(user_roles));
    for_each_role(
        [&]<std::size_t row>() {
            const auto& [property, role] = named_roles[row];
            SCOPED_TRACE(property);
            EXPECT_STREQ(user_roles[row].name, property);
            const Text late_name = from_utf8(property);
            answer_roles(numbers({90, role}));
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

            answer_roles(numbers({90}));
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
    answer_profile(u"OrvoRole", numbers({4}));
    bound_through_every_door([](Behind<User>& user) {
        EXPECT_TRUE(user.call<&User::get_role<role_row("ApproverRole")>>());
        EXPECT_FALSE(user.call<&User::get_role<role_row("FinancialRole")>>());
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
        expect_failure(raised_by([&] { user.call<&User::get_role<role_row("CanPublish")>>(); }),
                       error_number(0x80072098), u"Its.Own",
                       block("80072098", "OrvoMembership.User.CanPublish", chain));
    });
}

}  // namespace
}  // namespace orvo
