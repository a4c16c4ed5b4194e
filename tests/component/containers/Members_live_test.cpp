// Users created, found and deleted in a real directory.

#include "tests/component/containers/containers_live_test.h"

namespace orvo {
namespace {

class MembersLive : public ContainersLive {};

TEST_FRESH_FOR_EACH(MembersLive, ANewUserHasNameGuidPasswordAndTheConfiguredClassesAndAttributes) {
    const Object tina = create(members(), u"tina", u"first-s\u00E9cret");
    EXPECT_EQ(property(tina, u"CN"), "tina");
    EXPECT_EQ(late::get(tina, u"OrvoUserType"), Variant(std::int16_t(0)));
    EXPECT_FALSE(late::get(tina, u"Profile").to<Object>());

    EXPECT_THAT(stored("tina", "objectClass"), UnorderedElementsAre("orvoPerson", "top"));
    EXPECT_THAT(stored("tina", "cn"), ElementsAre("tina"));
    EXPECT_THAT(stored("tina", "OrvoGUID"), ElementsAre(MatchesRegex("[0-9A-F]{32}")));
    EXPECT_THAT(stored("tina", "OrvoGUID"), ElementsAre(property(tina, u"GUID")));
    EXPECT_THAT(stored("tina", "OrvoUserType"), ElementsAre("0")) << "mandatory, a number";
    EXPECT_THAT(stored("tina", "sn"), IsEmpty()) << "mandatory, a text: none is stored";
    EXPECT_THAT(stored("tina", "creatorsName"), ElementsAre(shop_.service_dn()));
    const auto password = stored("tina", "userPassword");
    ASSERT_EQ(password.size(), 1u);
    EXPECT_THAT(password[0], StartsWith(shop_.own(differences::stored_password)));
    EXPECT_EQ(shop_.bind(shop_.user_dn("tina"),
                         "first-s\xC3\xA9"
                         "cret"),
              0);
    EXPECT_EQ(shop_.bind(shop_.user_dn("tina"), "another"), 49);
}

TEST_FRESH_FOR_EACH(MembersLive, NewUsersHaveGuidsOfTheirOwn) {
    const Object container = members();
    EXPECT_NE(property(create(container, u"tina"), u"GUID"),
              property(create(container, u"tom"), u"GUID"));
}

TEST_FRESH_FOR_EACH(MembersLive, ANameThatIsTakenIsRefusedAndNothingIsTouched) {
    const Object container = members();
    const auto before = shop_.everything();
    for (const char16_t* name : {u"jsmith", u"JSmith", u"Smith, John"}) {
        expect_failure(raised_by([&] { create(container, name); }), error_number(0x8004044F),
                       u"OrvoMembership.Members.CreateUser",
                       block("8004044F", "Members.CreateUser",
                             "Unable to add user:'" + to_utf8(Text(name)) +
                                 "'. The error is: (68) The specified entry already exists."));
    }
    EXPECT_EQ(shop_.everything(), before);
    EXPECT_EQ(shop_.bind(shop_.user_dn("jsmith"), shop_.user_password()), 0);
}

TEST_FRESH_FOR_EACH(MembersLive, ACreatedUserIsWrittenWithTheAccountOfTheContainer) {
    const Object tina = create(members(), u"tina");
    late::put(tina, u"PhoneNumber", u"+44 20 7946 0000");
    late::put(tina, u"FinancialRole", true);
    EXPECT_THAT(stored("tina", "OrvoRole"), ElementsAre("5"));
    EXPECT_THAT(stored("tina", "modifiersName"), ElementsAre(shop_.service_dn()));
}

TEST_FRESH_FOR_EACH(MembersLive, AnOrdinaryUserCreatesAndDeletesNobody) {
    load_settings();
    const Object container = create_object(u"OrvoMembership.Members");
    late::call(container, u"BindAs",
               {from_utf8(shop_.user_dn("jsmith")), from_utf8(shop_.user_password())});
    const auto before = shop_.everything();
    EXPECT_EQ(raised_by([&] { create(container, u"tina"); }).number, error_number(0x80072098));
    EXPECT_EQ(raised_by([&] { late::call(container, u"DeleteUser", {u"glee"}); }).number,
              error_number(0x80072098));
    EXPECT_EQ(shop_.everything(), before);
}

TEST_FRESH_FOR_EACH(MembersLive, ARegistrationPageCreatesWithAttributesAsTheScriptAccount) {
    load_settings();
    const Object container = create_object(u"OrvoMembership.Members");
    const Object tina =
        late::call(container, u"CreateUserWithAttributes",
                   {u"tina", u"first-sample", list({u"sn", u"OrvoRole", u"OrvoUserType", u"mail"}),
                    Values{u"M\u00FCller", Values{5, u"24"}, 1, u"tina@shop.example"}})
            .to<Object>();
    EXPECT_EQ(property(tina, u"LastName"), "M\xC3\xBCller");
    EXPECT_THAT(stored("tina", "sn"), ElementsAre("M\xC3\xBCller"));
    EXPECT_THAT(stored("tina", "OrvoRole"), UnorderedElementsAre("5", "24"));
    EXPECT_THAT(stored("tina", "OrvoUserType"), ElementsAre("1"));
    EXPECT_THAT(stored("tina", "mail"), ElementsAre("tina@shop.example"));
    EXPECT_EQ(shop_.bind(shop_.user_dn("tina"), "first-sample"), 0);
    EXPECT_EQ(property(create(container, u"tom"), u"CN"), "tom") << "it stays bound so";
}

TEST_FRESH_FOR_EACH(MembersLive, WhatWasWrittenBeforeARefusedAttributeStays) {
    load_settings();
    const Object container = create_object(u"OrvoMembership.Members");
    const Failure failure = raised_by([&] {
        late::call(container, u"CreateUserWithAttributes",
                   {u"tina", u"first-sample", list({u"sn", u"noSuchAttribute", u"mail"}),
                    list({u"Miller", u"x", u"tina@shop.example"})});
    });
    EXPECT_EQ(failure.number, error_number(0x8007200C)) << failure.what();
    EXPECT_THAT(to_utf8(failure.description), HasSubstr("noSuchAttribute"));
    EXPECT_THAT(stored("tina", "sn"), ElementsAre("Miller"));
    EXPECT_THAT(stored("tina", "mail"), IsEmpty());
}

TEST_FRESH_FOR_EACH(MembersLive, AUserIsFoundByItsGuidAndBoundWithTheSameAccount) {
    const Object jsmith =
        late::call(members(), u"GetUserFromGUID", {u"95489279F1CA185C11635B6F0DE4B28C"})
            .to<Object>();
    EXPECT_EQ(property(jsmith, u"CN"), "jsmith");
    EXPECT_EQ(property(late::get(jsmith, u"Profile").to<Object>(), u"CN"), "Buyers");
    EXPECT_EQ(property(jsmith, u"NTUser"), "SHOP\\shop-user");

    const Object itself = create_object(u"OrvoMembership.User");
    late::call(itself, u"BindToGuid",
               {u"95489279f1ca185c11635b6f0de4b28c", service(), service_code()});
    EXPECT_EQ(property(itself, u"CN"), "jsmith") << "the directory ignores the case";
}

TEST_FRESH_FOR_EACH(MembersLive, AGuidThatNobodyHasIsNoCurrentRecord) {
    const char* no_record =
        "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
        "requires a current record.";
    expect_failure(raised_by([&] { late::call(members(), u"GetUserFromGUID", {u"0123"}); }), 3021,
                   u"ADODB.Field", block("BCD", "Members.GetUserFromGUID", no_record));
    const Object user = create_object(u"OrvoMembership.User");
    expect_failure(
        raised_by([&] {
            late::call(user, u"BindToGuid", {u"0123", service(), service_code()});
        }),
        3021, u"ADODB.Field",
        block("BCD", "User.BindToGuid", block("BCD", "Members.GetUserFromGUID", no_record)));
}

TEST_FRESH_FOR_EACH(MembersLive, ADeletedUserIsGoneAndAMissingOneIsTold) {
    const Object container = members();
    const auto before = shop_.everything();
    create(container, u"tina");
    late::call(container, u"DeleteUser", {u"tina"});
    EXPECT_EQ(shop_.everything(), before);
    expect_failure(raised_by([&] { late::call(container, u"DeleteUser", {u"tina"}); }),
                   error_number(0x80072030), u"OrvoMembership.Members.DeleteUser",
                   block("80072030", "Members.DeleteUser",
                         "User with common name 'tina' doesn't exist in the directory"));
}

TEST_FRESH_FOR_EACH(MembersLive, TheContainersOwnEntryIsReadAndWritten) {
    const Object container = members();
    EXPECT_EQ(late::call(container, u"GetAttribValue", {u"ou"}), Variant(Values{u"Users"}));
    late::call(container, u"SetAttribValue", {u"description", u"Everybody"});
    EXPECT_THAT(shop_.values("ou=Users,o=Shop", "description"), ElementsAre("Everybody"));
    expect_failure(raised_by([&] {
                       late::call(container, u"SetAttribValue", {u"noSuchAttribute", u"x"});
                   }),
                   error_number(0x8007200C), u"OrvoMembership.Members.SetAttribValue",
                   block("8007200C", "Members.SetAttribValue",
                         "Error setting the value for attribute: noSuchAttribute"));
}

class MembersUnderAPolicy : public ContainersLive {
protected:
    MembersUnderAPolicy() : ContainersLive({.password_policy = true}) {}
};

TEST_FRESH_FOR_EACH(MembersUnderAPolicy, ACreationWhosePasswordIsRefusedLeavesNoEntry) {
    const Object container = members();
    const auto before = shop_.everything();
    const char* refused =
        "(19) The value violates a constraint. Password fails quality checking policy";
    expect_failure(raised_by([&] { create(container, u"tina", u"short"); }),
                   error_number(0x8007202F), source(),
                   block("8007202F", "Members.CreateUser", refused));
    expect_failure(raised_by([&] {
                       late::call(container, u"CreateUserWithAttributes",
                                  {u"tina", u"short", list({u"sn"}), list({u"Miller"})});
                   }),
                   error_number(0x8007202F), source(),
                   block("8007202F", "Members.CreateUserWithAttributes",
                         block("8007202F", "Members.CreateUser", refused)));
    EXPECT_EQ(shop_.everything(), before);
    create(container, u"tina", u"long enough");
    EXPECT_EQ(shop_.bind(shop_.user_dn("tina"), "long enough"), 0);
}

}  // namespace
}  // namespace orvo
