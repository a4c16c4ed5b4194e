#include "platform/objects/recordset/builder.h"
#include "tests/component/entries/profile_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

class ProfileUsers : public ProfileTest {
protected:
    static Object rows(std::initializer_list<const char16_t*> names) {
        RecordSetBuilder builder({u"un"});
        for (const char16_t* name : names) builder.add({name});
        return builder.open().object();
    }
    static constexpr const char* connect =
        "Connect(dir01:389, ou=Users,o=Shop, cn=web,o=Shop, web-code)";
};

TEST_FRESH(ProfileUsers, AreFoundByTheProfilesName) {
    directory_.answer(u"cn", Values{u"sales"});
    directory_.found = rows({u"jsmith", u"mlee"});
    bound_through_every_door([this](Behind<Profile>& profile) {
        const Object users = profile.call<&Profile::GetUsers>();
        EXPECT_EQ(users, directory_.found) << "the provider's own record set";
        EXPECT_THAT(journal_.take(),
                    ElementsAre("CreateSearch()", connect, "GetValues(cn)",
                                "Execute((&(objectClass=top)(ProfileCN=sales)), [un], 1000)"));
    });
}

TEST_FRESH(ProfileUsers, AProfileWithoutMembersListsTheUsersItIsTheLocalAdministrationOf) {
    directory_.answer(u"cn", Values{u"sales"});
    for (const Object& none : {rows({}), Object()}) {
        bound_through_every_door([&](Behind<Profile>& profile) {
            directory_.found = none;
            EXPECT_EQ(profile.call<&Profile::GetUsers>(), none) << "from the second search";
            EXPECT_THAT(
                journal_.take(),
                ElementsAre(
                    "CreateSearch()", connect, "GetValues(cn)",
                    "Execute((&(objectClass=top)(ProfileCN=sales)), [un], 1000)", "CreateSearch()",
                    connect, "GetValues(cn)",
                    "Execute((&(objectClass=top)(LocalAdminProfileCN=sales)), [un], 1000)"));
        });
    }
}

TEST_FRESH(ProfileUsers, OnlyApostrophesOfTheNameAreDoubledInBothFilters) {
    directory_.answer(u"cn", Values{u"O'Neil's (*\\) & co"});
    directory_.found = rows({});
    bound_through_every_door([this](Behind<Profile>& profile) {
        profile.call<&Profile::GetUsers>();
        const auto calls = journal_.take();
        ASSERT_EQ(calls.size(), 8u);
        EXPECT_EQ(calls[3],
                  "Execute((&(objectClass=top)(ProfileCN=O''Neil''s (*\\) & co)), "
                  "[un], 1000)");
        EXPECT_EQ(calls[7],
                  "Execute((&(objectClass=top)(LocalAdminProfileCN=O''Neil''s (*\\) & "
                  "co)), [un], 1000)");
    });
}

TEST_FRESH(ProfileUsers, FailuresOfTheSearchAreReportedUnderGetUsers) {
    directory_.found = rows({});
    constexpr const char* source = "OrvoMembership.Profile.GetUsers";
    bound_through_every_door([&](Behind<Profile>& profile) {
        for (const char* operation : {"Connect", "Execute"}) {
            for (const int nth : {1, 2}) {
                SCOPED_TRACE(operation);
                journal_.refuse_nth(operation, nth, no_rights());
                expect_failure(raised_by([&] { profile.call<&Profile::GetUsers>(); }),
                               error_number(0x80072098), u"Its.Own",
                               block("80072098", source, "(50) no rights"));
            }
        }
    });
}

TEST_FRESH(ProfileUsers, OfAnUnboundProfileCannotBeFound) {
    through_every_door([](Behind<Profile>& profile) {
        expect_failure(raised_by([&] { profile.call<&Profile::GetUsers>(); }), 91,
                       u"OrvoMembership",
                       block("5B", "OrvoMembership.Profile.GetUsers",
                             block("5B", "OrvoMembership.Profile.CN", not_set)));
    });
}

}  // namespace
}  // namespace orvo
