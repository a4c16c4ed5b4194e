#include "component/entries/LdapAccess.h"

#include "tests/component/component_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

class LdapAccessTest : public ComponentTest {
protected:
    // Every door to a bound entry.
    template <class Body>
    void through_every_door(Body body) {
        through_doors_to<LdapAccess>(body, [](Behind<LdapAccess>& entry) {
            Text name = u"cn=jsmith", user, server = u"dir01", container = u"o=Shop";
            Secret password;
            entry.call<&LdapAccess::BindAs>(name, user, password, server, container);
        });
    }
    static Variant value_of(Behind<LdapAccess>& entry, Text name) {
        return entry.call<&LdapAccess::GetAttribValue>(name);
    }
    static void set(Behind<LdapAccess>& entry, Text name, Variant value) {
        entry.call<&LdapAccess::SetAttribValue>(name, value);
    }
    static void clear(Behind<LdapAccess>& entry, Text name) {
        entry.call<&LdapAccess::ClearAttribValue>(name);
    }
};

TEST_FRESH(LdapAccessTest, ReadingAnswersTheFirstValueOnly) {
    directory_.answer(u"mail", Values{u"a@shop", u"b@shop"});
    directory_.answer(u"OrvoRole", Values{std::int32_t{2}});
    through_every_door([this](Behind<LdapAccess>& entry) {
        EXPECT_EQ(value_of(entry, u"mail"), Variant(u"a@shop"));
        EXPECT_EQ(value_of(entry, u"OrvoRole"), Variant(std::int32_t{2}));
        EXPECT_EQ(value_of(entry, u"sn"), Variant()) << "an attribute that the entry lacks";
        EXPECT_THAT(journal_.take(),
                    ElementsAre("GetValues(mail)", "GetValues(OrvoRole)", "GetValues(sn)"));
    });
}

TEST_FRESH(LdapAccessTest, ReadingFailsWhereTheProviderAnswersNoArrayOrAnEmptyOne) {
    directory_.answer(u"text", u"no array");
    directory_.answer(u"empty", Variant());
    directory_.answer(u"none", Values());
    directory_.answer(u"above", [] {
        Values values(1, 1);
        values[1] = u"at one";
        return values;
    }());
    constexpr const char* source = "OrvoMembership.LDAPAccess.GetAttribValue";
    through_every_door([&](Behind<LdapAccess>& entry) {
        for (const char16_t* name : {u"text", u"empty"})
            expect_failure(raised_by([&] { value_of(entry, name); }), 13, u"OrvoMembership",
                           block("D", source, "Type mismatch"));
        for (const char16_t* name : {u"none", u"above"})
            expect_failure(raised_by([&] { value_of(entry, name); }), 9, u"OrvoMembership",
                           block("9", source, "Subscript out of range"));
    });
}

TEST_FRESH(LdapAccessTest, WritingPassesNameAndValueOnUnchanged) {
    through_every_door([this](Behind<LdapAccess>& entry) {
        set(entry, u"sn", u"Smith");
        set(entry, u"mail", Values{u"a@shop", u"b@shop"});
        set(entry, u"title", u"");
        set(entry, u"l", Variant());
        set(entry, u"c", Variant::null());
        EXPECT_THAT(journal_.take(),
                    ElementsAre("SetValues(sn, Smith)", "SetValues(mail, [a@shop, b@shop])",
                                "SetValues(title, )", "SetValues(l, Empty)", "SetValues(c, Null)"));
    });
}

TEST_FRESH(LdapAccessTest, ClearingPassesTheNameOn) {
    through_every_door([this](Behind<LdapAccess>& entry) {
        clear(entry, u"mail");
        EXPECT_THAT(journal_.take(), ElementsAre("ClearValues(mail)"));
    });
}

TEST_FRESH(LdapAccessTest, WhatTheProviderDoesToNameAndValueReachesTheCaller) {
    directory_.changes_arguments = true;
    through_every_door([](Behind<LdapAccess>& entry) {
        Text read = u"mail", written = u"mail", cleared = u"mail";
        Variant value = Values{u"a@shop"};
        entry.call<&LdapAccess::GetAttribValue>(read);
        entry.call<&LdapAccess::SetAttribValue>(written, value);
        entry.call<&LdapAccess::ClearAttribValue>(cleared);
        for (const Text& name : {read, written, cleared}) EXPECT_EQ(name, u"mail!");
        EXPECT_EQ(value, Variant(u"changed"));
    });
}

TEST_FRESH(LdapAccessTest, WhatTheProviderRaisesArrivesUnderTheOperationsName) {
    for (const char* operation : {"GetValues", "SetValues", "ClearValues"})
        journal_.refuse(operation, {error_number(0x80072098), u"Its.Own", u"(50) no rights"});
    through_every_door([this](Behind<LdapAccess>& entry) {
        const auto number = error_number(0x80072098);
        expect_failure(
            raised_by([&] { value_of(entry, u"sn"); }), number, u"Its.Own",
            block("80072098", "OrvoMembership.LDAPAccess.GetAttribValue", "(50) no rights"));
        expect_failure(
            raised_by([&] { set(entry, u"sn", u"x"); }), number, u"Its.Own",
            block("80072098", "OrvoMembership.LDAPAccess.SetAttribValue", "(50) no rights"));
        expect_failure(
            raised_by([&] { clear(entry, u"sn"); }), number, u"Its.Own",
            block("80072098", "OrvoMembership.LDAPAccess.ClearAttribvalue", "(50) no rights"));
        EXPECT_EQ(log_.take().size(), 3u);
    });
}

TEST_FRESH(LdapAccessTest, AFailureWithoutASourceIsTheProvidersObjects) {
    journal_.refuse("GetValues", {5, {}, u"what?"});
    through_every_door([](Behind<LdapAccess>& entry) {
        EXPECT_EQ(raised_by([&] { value_of(entry, u"sn"); }).source, u"Test.Directory.Entry");
    });
}

TEST_FRESH(LdapAccessTest, AnUnboundObjectFailsUnderTheOperationsName) {
    for (const Door door : every_door) {
        SCOPED_TRACE(testing::PrintToString(door));
        Behind<LdapAccess> entry(door);
        expect_failure(raised_by([&] { value_of(entry, u"sn"); }), 91, u"OrvoMembership",
                       block("5B", "OrvoMembership.LDAPAccess.GetAttribValue", not_set));
        expect_failure(raised_by([&] { set(entry, u"sn", u"x"); }), 91, u"OrvoMembership",
                       block("5B", "OrvoMembership.LDAPAccess.SetAttribValue", not_set));
        expect_failure(raised_by([&] { clear(entry, u"sn"); }), 91, u"OrvoMembership",
                       block("5B", "OrvoMembership.LDAPAccess.ClearAttribvalue", not_set));
    }
}

}  // namespace
}  // namespace orvo
