#include "tests/component/entries/user_catalogue_test.h"
#include "tests/component/entries/given_privileges.h"

namespace orvo {
namespace {

using testing::ElementsAre;

static_assert(std::size(catalogue) == std::size(user_catalogue));
static_assert(slot_of<&User::get_property<0>> == 13, "PhoneNumber");
static_assert(slot_of<&User::put_property<0>> == 14);
static_assert(slot_of<&User::get_property<property_row("OnBehalfOfRequisitioner")>> == 133);
static_assert(slot_of<&User::put_property<property_row("OnBehalfOfRequisitioner")>> == 134);
static_assert(slot_of<&User::CN> == 135);
static_assert(slot_of<&User::GUID> == 136);
static_assert(slot_of<&User::get_Profile> == 137);
static_assert(slot_of<&User::NTUser> == 138);
static_assert(slot_of<&User::NTPassword> == 139);
static_assert(slot_of<&User::get_user_type<0>> == 140, "RegisteredUser");
static_assert(slot_of<&User::put_user_type<4>> == 149, "NewMember");
static_assert(slot_of<&User::InvoiceUser> == 150);
static_assert(slot_of<&User::put_InvoiceUser> == 151);
static_assert(slot_of<&User::get_role<role_row("CreditCardUser")>> == 152);

TEST_FRESH(UserCatalogue, EachPropertyHasItsNameAndAttribute) {
    for (std::size_t row = 0; row < std::size(catalogue); ++row) {
        EXPECT_STREQ(user_catalogue[row].name, catalogue[row].property);
        EXPECT_EQ(to_utf8(user_catalogue[row].attribute), catalogue[row].attribute);
    }
}

TEST_FRESH(UserCatalogue, NamesThatDifferFromTheirAttributes) {
    load_settings();
    Users users;
    journal_.clear();
    late::get(users.made.object(), u"ManagerEMail");
    late::get(users.made.object(), u"Fax");
    late::get(users.made.object(), u"Country");
    late::get(users.made.object(), u"OrvoCatalogIDs");
    late::get(users.made.object(), u"Roles");
    late::get(users.made.object(), u"OrvoRoles");
    late::get(users.made.object(), u"EMailAddress");
    late::get(users.made.object(), u"LastName");
    late::get(users.made.object(), u"FirstName");
    EXPECT_THAT(
        journal_.take(),
        ElementsAre("GetValues(Manager)", "GetValues(facsimiletelephonenumber)", "GetValues(c)",
                    "GetValues(OrvoCatalogIDS)", "GetValues(OrvoRole)", "GetValues(OrvoRole)",
                    "GetValues(mail)", "GetValues(sn)", "GetValues(givenName)"));
}

TEST_FRESH(UserCatalogue, AnUnboundUserHasNoProperties) {
    const Ref<User> user = make<User>();
    for_each_property([&]<std::size_t row>() {
        SCOPED_TRACE(catalogue[row].property);
        const Failure failure =
            raised_by([&] { late::get(user.object(), from_utf8(catalogue[row].property)); });
        EXPECT_EQ(failure.number, 91);
    });
}

TEST_FRESH(UserCatalogue, NamesAreFoundWithoutRegardToCaseAndValuesConverted) {
    load_settings();
    Users users;
    store("SpendLimit", Values{u"12.5"});
    EXPECT_EQ(late::get(users.made.object(), u"spendlimit"), Variant(Currency{125000}));
    journal_.clear();
    late::put(users.made.object(), u"CREDITCARDTYPE", u"7");
    late::put(users.made.object(), u"showexplain", i4(5));
    late::put(users.made.object(), u"PhoneNumber", i4(0));
    EXPECT_THAT(journal_.take(),
                ElementsAre("SetValues(CreditCardType, [7])", "SetValues(ShowExplain, [1])",
                            "SetValues(PhoneNumber, [0])"));
    EXPECT_EQ(raised_by([&] { late::put(users.made.object(), u"CN", u"x"); }).number, 438);
}

TEST_FRESH(UserCatalogue, ARefusedAttributeIsNoArrayAndFailsItsGetterButNotAPlainList) {
    set_user_privilege_source([](const Text&) {
        return UserPrivileges{.readable = {u"profilecn", u"orvousertype"}, .writable = {}};
    });
    load_settings();
    Users users;
    expect_failure(raised_by([&] { late::get(users.made.object(), u"EMailAddress"); }), 13,
                   u"OrvoMembership",
                   block("D", "OrvoMembership.User.EMailAddress", type_mismatch));
    EXPECT_EQ(late::get(users.made.object(), u"ExcludedVexIDs"), Variant(u""));
}

}  // namespace
}  // namespace orvo
