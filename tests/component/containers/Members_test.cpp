#include "component/containers/Members.h"

#include <limits>

#include "tests/component/containers/containers_test.h"

namespace orvo {
namespace {

using testing::MatchesRegex;

static_assert(slot_of<&Members::BindAs> == 7);
static_assert(slot_of<&Members::setServerInfo> == 8);
static_assert(slot_of<&Members::CreateUserOnFormsLogin> == 9);
static_assert(slot_of<&Members::CreateUser> == 10);
static_assert(slot_of<&Members::DeleteUser> == 11);
static_assert(slot_of<&Members::GetUserFromGUID> == 12);
static_assert(slot_of<&Members::GetOrvoUsers> == 13);
static_assert(slot_of<&Members::GetLastPageValue> == 14);
static_assert(slot_of<&Members::GetOrvoMembersHavingRole> == 15);
static_assert(slot_of<&Members::GetOrvoMembersHavingRoleEx> == 16);
static_assert(slot_of<&Members::GetAttribValue> == 17);
static_assert(slot_of<&Members::SetAttribValue> == 18);
static_assert(slot_of<&Members::CreateUserWithAttributes> == 19);
static_assert(slot_of<&Members::GetOrvoUsersEx> == 20);

constexpr const char* bind_as = "OrvoMembership.Members.BindAs";
constexpr const char* create_user = "OrvoMembership.Members.CreateUser";
constexpr const char* delete_user = "OrvoMembership.Members.DeleteUser";
constexpr const char* from_guid = "OrvoMembership.Members.GetUserFromGUID";
constexpr const char* not_bound = "Not bound to the Members Organizational Unit";
constexpr const char* bind_container =
    "Bind(dir01:389, ou=Users,o=Shop, , cn=web,o=Shop, web-code, [])";
constexpr const char* bind_new_user =
    "Bind(dir01:389, ou=Users,o=Shop, un=jsmith, cn=web,o=Shop, web-code, "
    "[cn, OrvoUserType, BusinessPartnerID])";

class MembersTest : public ContainersTest {};

// Binding.

TEST_FRESH(MembersTest, BindAsBindsTheContainerItselfAndPreloadsNothing) {
    members_through_every_door([this](Behind<Members>& members) {
        bind(members);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("new Test.Directory()", "CreateEntry()", bind_container));
    });
}

TEST_FRESH(MembersTest, TheContainersEntryIsReleasedBeforeTheModuleThatMadeIt) {
    bound_members_through_every_door([](Behind<Members>& members) { bind(members); });
    EXPECT_EQ(directory_.modules, 0);
    EXPECT_EQ(directory_.orphans, 0);
}

TEST_FRESH(MembersTest, ABlankNameIsRefusedQuietlyAndItsCredentialsAreKept) {
    members_through_every_door([this](Behind<Members>& members) {
        for (const char16_t* blank : {u"", u"   "}) {
            bind(members);
            forget();
            bind(members, blank, u"kept");
            EXPECT_THAT(journal_.take(), IsEmpty());
            EXPECT_THAT(log_.take(), IsEmpty()) << "nothing is logged either";
            EXPECT_EQ(directory_.entries, 0) << "the former binding is gone";
            expect_failure(raised_by([&] { create(members); }), emErrNotBoundToMembers,
                           from_utf8(create_user), block("80040323", create_user, not_bound));
            members.call<&Members::GetOrvoUsers>(no_criteria(), Text(), Variant::missing());
            EXPECT_THAT(journal_.take(), testing::Contains("Connect(dir01:389, ou=Users,o=Shop, " +
                                                           to_utf8(Text(blank)) + ", kept)"));
        }
    });
}

TEST_FRESH(MembersTest, ARefusedBindLeavesTheContainerUnboundAndKeepsTheCredentials) {
    members_through_every_door([this](Behind<Members>& members) {
        bind(members);
        journal_.refuse("Bind", no_rights());
        forget();
        expect_failure(raised_by([&] { bind(members, u"cn=other", u"other-code"); }),
                       error_number(0x80072098), u"Its.Own",
                       block("80072098", bind_as, "(50) no rights"));
        EXPECT_EQ(directory_.entries, 0);
        journal_.allow("Bind");
        forget();
        create(members);
        EXPECT_EQ(journal_.take()[1],
                  "Bind(dir01:389, ou=Users,o=Shop, , cn=other, other-code, [])");
    });
}

TEST_FRESH(MembersTest, WhatTheProviderDoesToTheCredentialsReachesTheCallerAndIsNotStored) {
    members_through_every_door([this](Behind<Members>& members) {
        directory_.changes_arguments = true;
        Text user = u"cn=web,o=Shop";
        Secret password(u"web-code");
        members.call<&Members::BindAs>(user, password);
        EXPECT_EQ(user, u"cn=web,o=Shop!");
        EXPECT_EQ(clear_text(password), u"web-code!");
        directory_.changes_arguments = false;
        create(members);
        EXPECT_THAT(journal_.take(), testing::Contains(bind_new_user));
    });
}

TEST_FRESH(MembersTest, WhatTheProviderDoesToTheStoredCredentialsIsNotStoredEither) {
    members_through_every_door([this](Behind<Members>& members) {
        bind(members);
        directory_.changes_arguments = true;
        members.call<&Members::GetOrvoUsers>(no_criteria(), Text(), Variant::missing());
        create(members);
        directory_.changes_arguments = false;
        forget();
        create(members);
        EXPECT_THAT(journal_.take(), testing::Contains(bind_new_user));
    });
}

TEST_FRESH(MembersTest, AContainerThatIsLeftWhileItIsReadLivesUntilTheReadingReturns) {
    directory_.answer(u"description", Values{u"All users"});
    bound_members_through_every_door([this](Behind<Members>& members) {
        journal_.during("GetValues", [&] { bind(members, u""); });
        Text name = u"description";
        EXPECT_EQ(members.call<&Members::GetAttribValue>(name), Variant(Values{u"All users"}));
        EXPECT_EQ(directory_.entries, 0);
        EXPECT_EQ(raised_by([&] { members.call<&Members::GetAttribValue>(name); }).number, 91);
    });
}

TEST_FRESH(MembersTest, SetServerInfoLoadsAFileAndAnEmptyPathLeavesTheSettings) {
    for (const Door door : every_door) {
        in_fresh_thread([&] {
            Behind<Members> members(door);
            const Text none, path = u"C:\\Site\\site.ini";
            members.call<&Members::setServerInfo>(none);
            EXPECT_THAT(journal_.take(), IsEmpty());
            EXPECT_FALSE(shared_server_info()->IsLoaded());
            members.call<&Members::setServerInfo>(path);
            EXPECT_EQ(journal_.take()[1], "LoadConfigurationFile(C:\\Site\\site.ini)");
            EXPECT_TRUE(shared_server_info()->IsLoaded());
        });
    }
}

TEST_FRESH(MembersTest, AFileThatCannotBeLoadedIsRaisedAsItIs) {
    journal_.refuse("LoadConfigurationFile", {53, u"Its.Own", u"site.ini: not there"});
    Behind<Members> members(Door::names);
    const Text path = u"site.ini";
    expect_failure(raised_by([&] { members.call<&Members::setServerInfo>(path); }), 53, u"Its.Own",
                   "site.ini: not there");
}

// Deleting.

TEST_FRESH(MembersTest, DeleteUserAlwaysBindsAnewAndNamesTheEntryAsItStands) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        Text name = u"Smith, John";
        members.call<&Members::DeleteUser>(name);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("CreateEntry()", bind_container,
                                "DeleteChild(top, un=Smith, John,ou=Users,o=Shop)"));
    });
}

TEST_FRESH(MembersTest, AUserWhoIsNotThereIsToldByName) {
    journal_.refuse("DeleteChild", {error_number(0x80072030), u"Its.Own", u"(32) no such entry"});
    bound_members_through_every_door([](Behind<Members>& members) {
        Text name = u"nobody";
        expect_failure(raised_by([&] { members.call<&Members::DeleteUser>(name); }),
                       error_number(0x80072030), from_utf8(delete_user),
                       block("80072030", delete_user,
                             "User with common name 'nobody' doesn't exist in the directory"));
    });
}

TEST_FRESH(MembersTest, ADeletionWithoutABindingIsReportedUnderTheCreation) {
    members_through_every_door([](Behind<Members>& members) {
        Text name = u"jsmith";
        expect_failure(raised_by([&] { members.call<&Members::DeleteUser>(name); }),
                       emErrNotBoundToMembers, from_utf8(create_user),
                       block("80040323", delete_user, not_bound));
    });
}

TEST_FRESH(MembersTest, ADeletionThatCannotBindIsReportedUnderBothNamesAndDeletesNothing) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        journal_.refuse_nth("Bind", 1, no_rights());
        Text name = u"jsmith";
        expect_failure(
            raised_by([&] { members.call<&Members::DeleteUser>(name); }), error_number(0x80072098),
            u"Its.Own",
            block("80072098", delete_user, block("80072098", bind_as, "(50) no rights")));
        EXPECT_THAT(journal_.take(), ElementsAre("CreateEntry()", bind_container));
    });
}

TEST_FRESH(MembersTest, AContainerThatIsNotThereIsToldAsAUserWhoIsNot) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        journal_.refuse_nth("Bind", 1,
                            {error_number(0x80072030), u"Its.Own", u"(32) no such entry"});
        Text name = u"jsmith";
        expect_failure(raised_by([&] { members.call<&Members::DeleteUser>(name); }),
                       error_number(0x80072030), from_utf8(delete_user),
                       block("80072030", delete_user,
                             "User with common name 'jsmith' doesn't exist in the directory"));
        EXPECT_THAT(log_.take_sources(), ElementsAre("Its.Own", delete_user));
    });
}

TEST_FRESH(MembersTest, ARefusedDeletionKeepsItsFailure) {
    journal_.refuse("DeleteChild", no_rights());
    bound_members_through_every_door([](Behind<Members>& members) {
        Text name = u"jsmith";
        expect_failure(raised_by([&] { members.call<&Members::DeleteUser>(name); }),
                       error_number(0x80072098), u"Its.Own",
                       block("80072098", delete_user, "(50) no rights"));
    });
}

// Finding by GUID.

TEST_FRESH(MembersTest, GetUserFromGUIDBindsTheFirstUserThatTheSearchFinds) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.found = users({u"jsmith", u"other"});
        Text guid = u"0123";
        ASSERT_TRUE(members.call<&Members::GetUserFromGUID>(guid));
        const auto calls = journal_.take();
        ASSERT_GE(calls.size(), 6u);
        EXPECT_EQ(calls[0], "CreateSearch()");
        EXPECT_EQ(calls[1], "Connect(dir01:389, ou=Users,o=Shop, cn=web,o=Shop, web-code)");
        EXPECT_EQ(calls[2],
                  std::string("Execute((& (objectClass=top)(OrvoUserType=*)(OrvoGUID=0123)), ") +
                      usual_columns + ", 1000)");
        EXPECT_EQ(calls[5], bind_new_user);
    });
}

TEST_FRESH(MembersTest, GetUserFromGUIDNeedsNoBindingOfTheContainer) {
    members_through_every_door([this](Behind<Members>& members) {
        journal_.refuse_nth("Bind", 1, no_rights());
        raised_by([&] { bind(members); });
        forget();
        directory_.found = users({u"jsmith"});
        Text guid = u"0123";
        members.call<&Members::GetUserFromGUID>(guid);
        auto calls = journal_.take();
        std::erase_if(calls, [](const auto& call) { return !call.starts_with("Bind"); });
        EXPECT_THAT(calls, ElementsAre(bind_new_user, testing::HasSubstr("ou=Accounts")))
            << "the user's and its account's, with the stored credentials";
    });
}

TEST_FRESH(MembersTest, AFoundUserWhoCannotBeBoundIsReportedUnderBothNames) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.found = users({u"jsmith"});
        journal_.refuse_nth("Bind", 1, no_rights());
        Text guid = u"0123";
        expect_failure(raised_by([&] { members.call<&Members::GetUserFromGUID>(guid); }),
                       error_number(0x80072098), u"Its.Own",
                       block("80072098", from_guid,
                             block("80072098", "OrvoMembership.User.BindAs", "(50) no rights")));
    });
}

TEST_FRESH(MembersTest, AnUnknownGUIDFailsOnTheMissingRecord) {
    directory_.found = users({});
    bound_members_through_every_door([](Behind<Members>& members) {
        Text guid = u"0123";
        const Failure failure = raised_by([&] { members.call<&Members::GetUserFromGUID>(guid); });
        EXPECT_EQ(failure.number, 3021);
        EXPECT_EQ(to_utf8(failure.description), block("BCD", from_guid, no_current_record));
    });
}

// The container's own attributes.

TEST_FRESH(MembersTest, AttributesOfTheContainerPassUnchanged) {
    directory_.answer(u"description", Values{u"All users", u"of the shop"});
    bound_members_through_every_door([this](Behind<Members>& members) {
        Text name = u"description";
        EXPECT_EQ(members.call<&Members::GetAttribValue>(name),
                  Variant(Values{u"All users", u"of the shop"}));
        Variant value = u"x";
        members.call<&Members::SetAttribValue>(name, value);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("GetValues(description)", "SetValues(description, x)"));
    });
}

TEST_FRESH(MembersTest, WhatTheProviderDoesToNameAndValueReachesTheCaller) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.changes_arguments = true;
        Text read = u"mail", written = u"mail";
        Variant value = Values{u"a@shop"};
        members.call<&Members::GetAttribValue>(read);
        members.call<&Members::SetAttribValue>(written, value);
        EXPECT_EQ(read, u"mail!");
        EXPECT_EQ(written, u"mail!");
        EXPECT_EQ(value, Variant(u"changed"));
        directory_.changes_arguments = false;
    });
}

TEST_FRESH(MembersTest, AttributesOfAnUnboundContainerFailAndBindNothing) {
    members_through_every_door([this](Behind<Members>& members) {
        Text name = u"mail";
        Variant value = u"x";
        expect_failure(raised_by([&] { members.call<&Members::GetAttribValue>(name); }), 91,
                       u"OrvoMembership",
                       block("5B", "OrvoMembership.Members.GetAttribValue", not_set));
        expect_failure(raised_by([&] { members.call<&Members::SetAttribValue>(name, value); }), 91,
                       u"OrvoMembership.Members.SetAttribValue",
                       block("5B", "OrvoMembership.Members.SetAttribValue",
                             "Error setting the value for attribute: mail"));
        EXPECT_THAT(journal_.take(), IsEmpty());
    });
}

}  // namespace
}  // namespace orvo
