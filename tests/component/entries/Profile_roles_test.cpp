#include "tests/component/entries/profile_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

TEST_FRESH(ProfileTest, HasRoleFindsARoleAnywhereInTheList) {
    directory_.answer(u"OrvoRole", Values{std::int32_t{2}, u"21", std::int16_t{7}});
    bound_through_every_door([](Behind<Profile>& profile) {
        for (std::int16_t role : {2, 21, 7}) EXPECT_TRUE(profile.call<&Profile::HasRole>(role));
        std::int16_t other = 3;
        EXPECT_FALSE(profile.call<&Profile::HasRole>(other));
        EXPECT_EQ(other, 3);
    });
}

TEST_FRESH(ProfileTest, AssignRoleWritesTheChangedListAndNothingWhereNothingChanges) {
    struct Assignment {
        Variant before;
        std::int16_t role;
        bool enable;
        const char* written;  // null: nothing
    };
    const Assignment assignments[] = {
        {numbers({2}), 3, true, "SetValues(OrvoRole, [2, 3])"},
        {numbers({0}), 3, true, "SetValues(OrvoRole, [0, 3])"},
        {Values(), 3, true, "SetValues(OrvoRole, [3])"},
        {numbers({3}), 3, false, "SetValues(OrvoRole, [])"},
        {numbers({3, 2, 3, 4}), 3, false, "SetValues(OrvoRole, [2, 4])"},
        {Values{u"2", u"3"}, 3, false, "SetValues(OrvoRole, [2])"},
        {numbers({2, 3}), 3, true, nullptr},
        {numbers({2, 4}), 3, false, nullptr},
        {Values(), 3, false, nullptr},
    };
    for (const auto& [before, role, enable, written] : assignments) {
        SCOPED_TRACE(shown(before) + (enable ? " with " : " without ") + std::to_string(role));
        directory_.answer(u"OrvoRole", before);
        bound_through_every_door([&](Behind<Profile>& profile) {
            std::int16_t type = role;
            bool wanted = enable;
            profile.call<&Profile::AssignRole>(type, wanted);
            EXPECT_EQ(type, role);
            EXPECT_EQ(wanted, enable);
            if (written)
                EXPECT_THAT(journal_.take(),
                            ElementsAre("GetValues(OrvoRole)", "GetValues(OrvoRole)", written));
            else
                EXPECT_THAT(journal_.take(), ElementsAre("GetValues(OrvoRole)"));
        });
    }
}

TEST_FRESH(ProfileTest, RolesThatAreNoArrayFailUnderTheOperationsName) {
    directory_.answer(u"OrvoRole", u"2");
    bound_through_every_door([](Behind<Profile>& profile) {
        std::int16_t role = 2;
        bool enable = true;
        const std::string inner = block("D", "OrvoMembership.Profile.HasRole", type_mismatch);
        expect_failure(raised_by([&] { profile.call<&Profile::HasRole>(role); }), 13,
                       u"OrvoMembership", inner);
        expect_failure(raised_by([&] { profile.call<&Profile::AssignRole>(role, enable); }), 13,
                       u"OrvoMembership", block("D", "OrvoMembership.Profile.AssignRole", inner));
    });
}

TEST_FRESH(ProfileTest, AListOfRolesThatSixteenBitsCannotCountOverflows) {
    Values roles(0, 32768);
    for (Variant& role : roles) role = std::int32_t{5};
    directory_.answer(u"OrvoRole", roles);
    const auto profile = bound();
    std::int16_t held = 5, other = 7;
    bool enable = true, disable = false;
    EXPECT_TRUE(call<&Profile::HasRole>(profile, held));
    const std::string inner = block("6", "OrvoMembership.Profile.HasRole", "Overflow");
    expect_failure(raised_by([&] { call<&Profile::HasRole>(profile, other); }), 6,
                   u"OrvoMembership", inner);
    expect_failure(raised_by([&] { call<&Profile::AssignRole>(profile, other, enable); }), 6,
                   u"OrvoMembership", block("6", "OrvoMembership.Profile.AssignRole", inner));
    expect_failure(raised_by([&] { call<&Profile::AssignRole>(profile, held, disable); }), 6,
                   u"OrvoMembership", block("6", "OrvoMembership.Profile.AssignRole", "Overflow"));
    EXPECT_THAT(journal_.take(), testing::Not(testing::Contains(testing::StartsWith("SetValues"))));
}

}  // namespace
}  // namespace orvo
