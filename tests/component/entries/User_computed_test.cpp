#include "tests/component/entries/user_catalogue_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

// Properties that are not one attribute as it stands.

class UserComputed : public UserCatalogue {};

TEST_FRESH(UserComputed, CommonNameAndIdentifierAreReadFromTheEntry) {
    directory_.answer_of(jsmith, u"cn", Values{u"jsmith", u"john"});
    directory_.answer_of(jsmith, u"OrvoGUID", Values{u"{1-2}"});
    bound_through_every_door([this](Behind<User>& user) {
        EXPECT_EQ(user.call<&User::CN>(), u"jsmith");
        EXPECT_EQ(user.call<&User::GUID>(), u"{1-2}");
        EXPECT_THAT(journal_.take(), ElementsAre("GetValues(cn)", "GetValues(OrvoGUID)"));
        journal_.refuse_nth("GetValues", 1, no_rights());
        expect_failure(raised_by([&] { user.call<&User::GUID>(); }), error_number(0x80072098),
                       u"Its.Own",
                       block("80072098", "OrvoMembership.User.GUID",
                             block("80072098", "OrvoMembership.User.GetAttribValue",
                                   "(50) no rights", "Attribute is: OrvoGUID")));
    });
}

TEST_FRESH(UserComputed, TheAccountsNameAndPasswordAreReadFromTheAccountsEntryAsText) {
    directory_.answer_of(u"an=0,ou=Accounts,o=Shop", u"OrvoNTUser", Values{i4(42)});
    directory_.answer_of(u"an=0,ou=Accounts,o=Shop", u"OrvoNTPassword", Values{u"nt-code"});
    bound_through_every_door([this](Behind<User>& user) {
        EXPECT_EQ(user.call<&User::NTUser>(), u"42");
        EXPECT_EQ(clear_text(user.call<&User::NTPassword>()), u"nt-code");
        EXPECT_THAT(journal_.take(),
                    ElementsAre("GetValues(OrvoNTUser)", "GetValues(OrvoNTPassword)"));
        journal_.refuse_nth("GetValues", 1, no_rights());
        expect_failure(
            raised_by([&] { user.call<&User::NTPassword>(); }), error_number(0x80072098),
            u"Its.Own",
            block("80072098", "OrvoMembership.User.NTPassword",
                  block("80072098", "OrvoMembership.Account.get_NTPassword", "(50) no rights")));
    });
}

TEST_FRESH(UserComputed, OfAnUnboundUserTheAccountIsNotSetAndTheProfileIsNothing) {
    through_every_door([](Behind<User>& user) {
        expect_failure(raised_by([&] { user.call<&User::NTUser>(); }), 91, u"OrvoMembership",
                       block("5B", "OrvoMembership.User.NTUser", not_set));
        expect_failure(raised_by([&] { user.call<&User::NTPassword>(); }), 91, u"OrvoMembership",
                       block("5B", "OrvoMembership.User.NTPassword", not_set));
        EXPECT_FALSE(user.call<&User::get_Profile>());
    });
}

struct NamedType {
    const char* property;
    int type;
};
constexpr NamedType named_types[] = {
    {"RegisteredUser", 1}, {"GuestUser", 2}, {"IsLocalAdmin", 3}, {"IsAdmin", 4}, {"NewMember", 0},
};

TEST_FRESH(UserComputed, EachUserTypePropertyAsksForItsType) {
    load_settings();
    Users users;
    for (int stored = 0; stored <= 5; ++stored) {
        store("OrvoUserType", Values{i4(stored)});
        for (const auto& [property, type] : named_types) {
            SCOPED_TRACE(std::string(property) + " of " + std::to_string(stored));
            EXPECT_EQ(late::get(users.made.object(), from_utf8(property)), Variant(stored == type));
        }
        EXPECT_EQ(users.direct.get_user_type<0>(), stored == 1);
        EXPECT_EQ((call<&User::get_user_type<4>>(users.made)), stored == 0);
    }
}

TEST_FRESH(UserComputed, SettingAUserTypePropertySetsItsTypeWhateverIsAssigned) {
    load_settings();
    Users users;
    for_each_row(
        [&]<std::size_t row>() {
            SCOPED_TRACE(named_types[row].property);
            EXPECT_STREQ(user_types[row].name, named_types[row].property);
            const std::string written =
                "SetValues(OrvoUserType, [" + std::to_string(named_types[row].type) + "])";
            for (const bool value : {true, false}) {
                journal_.clear();
                users.direct.put_user_type<row>(value);
                call<&User::put_user_type<row>>(users.made, value);
                late::put(users.made.object(), from_utf8(named_types[row].property), value);
                EXPECT_THAT(journal_.take(), ElementsAre(written, written, written));
            }
        },
        std::make_index_sequence<std::size(user_types)>());
}

TEST_FRESH(UserComputed, AFailingUserTypePropertyShowsTheChainOfMethods) {
    load_settings();
    Users users;
    store("OrvoUserType", Values{u"admin"});
    expect_failure(raised_by([&] { late::get(users.made.object(), u"IsAdmin"); }), 13,
                   u"OrvoMembership",
                   block("D", "OrvoMembership.User.IsAdmin",
                         block("D", "OrvoMembership.User.OrvoUserType", type_mismatch)));
}

TEST_FRESH(UserComputed, InvoiceUserIsTheNegationOfCreditCardUser) {
    load_settings();
    Users users;
    const Object user = users.made.object();
    store("OrvoRole", Values{i4(1), i4(2)});
    EXPECT_FALSE(users.direct.InvoiceUser());
    EXPECT_FALSE(call<&User::InvoiceUser>(users.made));
    EXPECT_EQ(late::get(user, u"InvoiceUser"), Variant(false));
    journal_.clear();
    late::put(user, u"InvoiceUser", true);
    EXPECT_EQ(journal_.take().back(), "SetValues(OrvoRole, [2])");
    late::put(user, u"InvoiceUser", false);
    EXPECT_THAT(journal_.take(), ElementsAre("GetValues(OrvoRole)")) << "it is held already";
    store("OrvoRole", Values{i4(2)});
    EXPECT_TRUE(users.direct.InvoiceUser());
    EXPECT_TRUE(call<&User::InvoiceUser>(users.made));
    EXPECT_EQ(late::get(user, u"InvoiceUser"), Variant(true));
    journal_.clear();
    users.direct.put_InvoiceUser(false);
    EXPECT_EQ(journal_.take().back(), "SetValues(OrvoRole, [2, 1])");
    call<&User::put_InvoiceUser>(users.made, false);
    EXPECT_EQ(journal_.take().back(), "SetValues(OrvoRole, [2, 1])");
}

}  // namespace
}  // namespace orvo
