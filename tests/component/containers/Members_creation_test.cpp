#include <limits>

#include "tests/component/containers/containers_test.h"

namespace orvo {
namespace {

using testing::MatchesRegex;

constexpr const char* bind_as = "OrvoMembership.Members.BindAs";
constexpr const char* create_user = "OrvoMembership.Members.CreateUser";
constexpr const char* with_attributes = "OrvoMembership.Members.CreateUserWithAttributes";
constexpr const char* not_bound = "Not bound to the Members Organizational Unit";
constexpr const char* bind_container =
    "Bind(dir01:389, ou=Users,o=Shop, , cn=web,o=Shop, web-code, [])";
constexpr const char* bind_container_as_script =
    "Bind(dir01:389, ou=Users,o=Shop, , cn=script,o=Shop, script-code, [])";
constexpr const char* bind_new_user =
    "Bind(dir01:389, ou=Users,o=Shop, un=jsmith, cn=web,o=Shop, web-code, "
    "[cn, OrvoUserType, BusinessPartnerID])";
constexpr const char* new_user =
    "CreateChild\\(\\[\\[top, person\\]\\], un, \\[cn=jsmith, OrvoGUID=[0-9A-F]{32}, "
    "userPassword=s3cret, un=jsmith, sn=, mail=, objectClass=\\[top, person\\]\\]\\)";

Failure exists(const char16_t* text = u"(68) The specified entry already exists.") {
    return {error_number(0x80004005), u"Its.Own", text};
}

class MembersCreation : public ContainersTest {};

TEST_FRESH(MembersCreation, CreateUserAddsTheEntryAndBindsTheNewUserWithTheStoredAccount) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        const auto user = create(members);
        ASSERT_TRUE(user);
        const auto calls = journal_.take();
        ASSERT_GE(calls.size(), 4u);
        EXPECT_THAT(calls[0], MatchesRegex(new_user));
        EXPECT_EQ(calls[1], "new Test.Directory()");
        EXPECT_EQ(calls[2], "CreateEntry()");
        EXPECT_EQ(calls[3], bind_new_user);
    });
}

TEST_FRESH(MembersCreation, AnUnboundContainerIsFirstBoundWithTheStoredCredentials) {
    members_through_every_door([this](Behind<Members>& members) {
        journal_.refuse_nth("Bind", 1, no_rights());
        raised_by([&] { bind(members); });
        forget();
        create(members);
        const auto calls = journal_.take();
        EXPECT_EQ(calls[0], "CreateEntry()");
        EXPECT_EQ(calls[1], bind_container);
        EXPECT_THAT(calls[2], MatchesRegex(new_user));
    });
}

TEST_FRESH(MembersCreation, WithoutAnyCredentialsNobodyIsCreated) {
    members_through_every_door([this](Behind<Members>& members) {
        expect_failure(raised_by([&] { create(members); }), emErrNotBoundToMembers,
                       from_utf8(create_user), block("80040323", create_user, not_bound));
        EXPECT_THAT(journal_.take(), IsEmpty());
    });
}

TEST_FRESH(MembersCreation, TheNamingAttributeCnStandsInTheEntryOnce) {
    membership()[u"UserNamingAttribute"] = u"cn";
    bound_members_through_every_door([this](Behind<Members>& members) {
        create(members);
        EXPECT_THAT(journal_.take()[0],
                    MatchesRegex(".*\\[cn=jsmith, OrvoGUID=[0-9A-F]{32}, userPassword=s3cret, "
                                 "sn=, mail=, objectClass=\\[top, person\\]\\]\\)"));
    });
}

TEST_FRESH(MembersCreation, ANamingAttributeInCapitalsIsNotTakenForCn) {
    membership()[u"UserNamingAttribute"] = u"CN";
    bound_members_through_every_door([this](Behind<Members>& members) {
        create(members);
        EXPECT_THAT(journal_.take()[0], MatchesRegex(".*userPassword=s3cret, CN=jsmith, sn=.*"));
    });
}

TEST_FRESH(MembersCreation, AMandatoryAttributeThatIsThereAlreadyMakesEveryCreationFail) {
    for (const char16_t* name : {u"cn", u"OrvoGUID", u"userPassword", u"un"}) {
        in_fresh_thread([&] {
            SCOPED_TRACE(to_utf8(name));
            membership()[u"UserMandatoryAttributes"] = Text(u"sn,") + name;
            bound_members_through_every_door([this](Behind<Members>& members) {
                const Failure failure = raised_by([&] { create(members); });
                EXPECT_EQ(failure.number, 457);
                EXPECT_THAT(journal_.take(), IsEmpty()) << "the directory is not asked";
            });
        });
    }
}

TEST_FRESH(MembersCreation, ANameThatIsTakenIsToldWithTheProvidersWordsWhateverTheirCase) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        for (const char16_t* text : {u"(68) The specified entry already exists.",
                                     u"Oh: (68) THE SPECIFIED entry already exists. Really."}) {
            journal_.refuse("CreateChild", exists(text));
            expect_failure(
                raised_by([&] { create(members); }), error_number(0x8004044F),
                from_utf8(create_user),
                block("8004044F", create_user,
                      "Unable to add user:'jsmith'. The error is: " + to_utf8(Text(text))));
        }
    });
}

TEST_FRESH(MembersCreation, AFailureToldInOtherWordsIsOneEntryInTheseWords) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        journal_.refuse("CreateChild", exists());
        raised_by([&] { create(members); });
        const std::string told = block("8004044F", create_user,
                                       "Unable to add user:'jsmith'. The error is: "
                                       "(68) The specified entry already exists.");
        EXPECT_THAT(log_.take(), ElementsAre(LogEntry{"LogMessage", create_user,
                                                      block("8004044F", create_user, told), 0}));
    });
}

TEST_FRESH(MembersCreation, AnyOtherFailureOfACreationKeepsItsNumberSourceAndText) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        journal_.refuse("CreateChild", no_rights());
        expect_failure(raised_by([&] { create(members); }), error_number(0x80072098), u"Its.Own",
                       block("80072098", create_user, "(50) no rights"));
    });
}

TEST_FRESH(MembersCreation, AUserWhoCannotBeBoundStaysCreated) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        journal_.refuse("Bind", no_rights());
        EXPECT_EQ(raised_by([&] { create(members); }).number, error_number(0x80072098));
        EXPECT_EQ(journal_.take().back(), bind_new_user) << "and nothing is undone";
        journal_.allow("Bind");
    });
}

TEST_FRESH(MembersCreation, OnAFormsLoginTheScriptAccountReplacesTheBinding) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        Text name = u"jsmith";
        Secret password(u"s3cret");
        ASSERT_TRUE(members.call<&Members::CreateUserOnFormsLogin>(name, password));
        const auto calls = journal_.take();
        EXPECT_EQ(calls[0], "CreateEntry()");
        EXPECT_EQ(calls[1], bind_container_as_script);
        EXPECT_THAT(calls[2], MatchesRegex(new_user));
        forget();
        members.call<&Members::GetOrvoUsers>(no_criteria(), Text(), Variant::missing());
        EXPECT_THAT(journal_.take(), testing::Contains("Connect(dir01:389, ou=Users,o=Shop, "
                                                       "cn=script,o=Shop, script-code)"));
    });
}

TEST_FRESH(MembersCreation, AFormsLoginThatCannotBindFailsAsTheBindDid) {
    members_through_every_door([this](Behind<Members>& members) {
        journal_.refuse("Bind", no_rights());
        Text name = u"jsmith";
        Secret password(u"s3cret");
        expect_failure(
            raised_by([&] { members.call<&Members::CreateUserOnFormsLogin>(name, password); }),
            error_number(0x80072098), u"Its.Own", block("80072098", bind_as, "(50) no rights"));
        journal_.allow("Bind");
    });
}

TEST_FRESH(MembersCreation, AttributesOfANewUserAreWrittenOneAfterTheOtherAsLists) {
    members_through_every_door([this](Behind<Members>& members) {
        Values based_at_2(2, 2);
        based_at_2[2] = u"c";
        based_at_2[3] = u"d";
        Variant names = Values{u"sn", u"OrvoRole", u"Fax"};
        Variant values = Values{u"Smith", Values{2, 3}, std::move(based_at_2)};
        const Text name = u"jsmith";
        const Secret password(u"s3cret");
        ASSERT_TRUE(
            members.call<&Members::CreateUserWithAttributes>(name, password, names, values));
        auto calls = journal_.take();
        std::erase_if(calls, [](const auto& call) { return !call.starts_with("SetValues"); });
        EXPECT_THAT(calls, ElementsAre("SetValues(sn, [Smith])", "SetValues(OrvoRole, [2, 3])",
                                       "SetValues(Fax, [Empty, Empty, c, d])"));
    });
}

TEST_FRESH(MembersCreation, NamesFromOneOnAreReadFromZeroAllTheSame) {
    members_through_every_door([this](Behind<Members>& members) {
        Values from_one(1, 1);
        from_one[1] = u"sn";
        Variant names = std::move(from_one), values = Values{u"a", u"b"};
        const Text name = u"jsmith";
        const Secret password(u"s3cret");
        expect_failure(raised_by([&] {
                           members.call<&Members::CreateUserWithAttributes>(name, password, names,
                                                                            values);
                       }),
                       9, u"OrvoMembership", block("9", with_attributes, "Subscript out of range"));
        EXPECT_THAT(journal_.take(), testing::Contains(MatchesRegex("CreateChild.*")))
            << "the user has been created";
    });
}

TEST_FRESH(MembersCreation, AListOfValuesUpToTheHighestIndexIsTooLong) {
    members_through_every_door([](Behind<Members>& members) {
        Variant names = Values{u"sn"};
        Variant values = Values{Values(std::numeric_limits<std::int32_t>::max(), 1)};
        const Text name = u"jsmith";
        const Secret password(u"s3cret");
        EXPECT_EQ(raised_by([&] {
                      members.call<&Members::CreateUserWithAttributes>(name, password, names,
                                                                       values);
                  }).number,
                  7);
    });
}

TEST_FRESH(MembersCreation, WhatIsNoListOfNamesOrValuesIsRefusedAfterTheCreation) {
    members_through_every_door([](Behind<Members>& members) {
        const auto attempt = [&](Variant names, Variant values) {
            const Text name = u"jsmith";
            const Secret password(u"s3cret");
            return raised_by([&] {
                       members.call<&Members::CreateUserWithAttributes>(name, password, names,
                                                                        values);
                   })
                .number;
        };
        EXPECT_EQ(attempt(u"sn", Values{u"a"}), 13);
        EXPECT_EQ(attempt(Values{u"sn"}, u"a"), 13);
        EXPECT_EQ(attempt(Values{u"sn", u"mail"}, Values{u"a"}), 9);
        EXPECT_EQ(attempt(Values{Values{u"sn"}}, Values{u"a"}), 13);
    });
}

TEST_FRESH(MembersCreation, ARefusedAttributeLeavesTheUserAndIsReportedUnderBothNames) {
    members_through_every_door([this](Behind<Members>& members) {
        journal_.refuse_nth("SetValues", 2, no_rights());
        Variant names = Values{u"sn", u"mail", u"Fax"}, values = Values{u"a", u"b", u"c"};
        const Text name = u"jsmith";
        const Secret password(u"s3cret");
        const Failure failure = raised_by([&] {
            members.call<&Members::CreateUserWithAttributes>(name, password, names, values);
        });
        EXPECT_EQ(failure.number, error_number(0x80072098));
        EXPECT_NE(failure.description.find(from_utf8(with_attributes)), Text::npos);
        const auto calls = journal_.take();
        EXPECT_EQ(calls.back(), "SetValues(mail, [b])") << "nothing is undone or tried further";
    });
}

}  // namespace
}  // namespace orvo
