#pragma once

// The typed properties of a user: one row each. Getters, setters, slots, IDL and the documentation
// page are made from these rows, which are constants.

#include "component/entries/Profile.h"
#include "platform/interfaces/call.h"

namespace orvo {

enum class PropertyType {
    text,     // set empty: the attribute is cleared
    boolean,  // stored as 1 or 0; any number but 0 reads as true
    int16,    // zero is written, never cleared
    int32,    // likewise
    currency,
    date,
    whole,  // the attribute's whole value, an array
};

// When a property of the user's profile stands in for the user's own value.
enum class Fallback {
    never,
    when_zero,   // the user's first element is 0 or empty
    when_empty,  // the user has no value; a 0 counts as one
};

enum class PropertyRule {
    none,
    id_list,               // a first element of -1 reads as 0
    no_value_is_text,      // an array without elements reads as empty text
    empty_is_zero,         // an empty first element reads as 0
    marks_profile_change,  // setting it notes that the user's profile has changed
    in_out,                // the setter takes its argument in-out
};

struct UserProperty {
    const char* name;
    PropertyType type;
    const char16_t* attribute;
    PropertyRule rule = PropertyRule::none;
    Fallback fallback = Fallback::never;
    Variant (*of_profile)(const Ref<Profile>&) = nullptr;
};

namespace detail {

template <auto M>
Variant of_profile(const Ref<Profile>& profile) {
    return to_late(call<M>(profile));
}

// The place of the row of this name in a list of properties.
template <class Row, std::size_t size>
consteval std::size_t row_of(const Row (&list)[size], std::string_view name) {
    for (std::size_t row = 0; row < size; ++row)
        if (list[row].name == name) return row;
    throw "the list has no property of this name";
}

}  // namespace detail

// Names and attributes differ in places (Fax, Country, EMailAddress, ManagerEMail, the capital S of
// "OrvoCatalogIDS"), and both Roles and OrvoRoles are "OrvoRole": that is how the directories in
// use have them.
inline constexpr UserProperty user_catalogue[] = {
    {"PhoneNumber", PropertyType::text, u"PhoneNumber"},
    {"Fax", PropertyType::text, u"facsimiletelephonenumber"},
    {"Modem", PropertyType::text, u"Modem"},
    {"Country", PropertyType::text, u"c"},
    {"Position", PropertyType::text, u"Position"},
    {"ShowExplain", PropertyType::boolean, u"ShowExplain"},
    {"OutOfOfficeOn", PropertyType::boolean, u"OutOfOfficeOn"},
    {"OutOfOfficeApprover", PropertyType::text, u"OutOfOfficeApprover"},
    {"CreditCardType", PropertyType::int16, u"CreditCardType"},
    {"ManagerCN", PropertyType::text, u"ManagerCN"},
    {"CreditCardExpiryDate", PropertyType::date, u"CreditCardExpiryDate"},
    {"CreditCardNr", PropertyType::text, u"CreditCardNr"},
    {"ReqPrefix", PropertyType::text, u"ReqPrefix"},
    {"SpendLimit", PropertyType::currency, u"SpendLimit"},
    {"AdminOffice", PropertyType::text, u"AdminOffice"},
    {"PurOffice", PropertyType::text, u"PurOffice"},
    {"DeliveryAddressID", PropertyType::int32, u"DeliveryAddressID"},
    {"BillToBusinessPartnerID", PropertyType::int32, u"BillToBusinessPartnerID"},
    {"Roles", PropertyType::whole, u"OrvoRole"},
    {"CompanyName", PropertyType::text, u"CompanyName"},
    {"LocalAdminProfileCN", PropertyType::text, u"LocalAdminProfileCN", PropertyRule::in_out},
    {"LanguageID", PropertyType::text, u"LanguageID", PropertyRule::none, Fallback::when_zero,
     detail::of_profile<&Profile::LanguageID>},
    {"Locale", PropertyType::int16, u"Locale", PropertyRule::none, Fallback::when_zero,
     detail::of_profile<&Profile::Locale>},
    {"BusinessPartnerID", PropertyType::int32, u"BusinessPartnerID"},
    {"OrvoUserType", PropertyType::int16, u"OrvoUserType"},
    {"BPType", PropertyType::int16, u"BPType", PropertyRule::empty_is_zero},
    {"EMailAddress", PropertyType::text, u"mail", PropertyRule::no_value_is_text},
    {"LastName", PropertyType::text, u"sn"},
    {"FirstName", PropertyType::text, u"givenName"},
    {"OrvoCatalogIDs", PropertyType::whole, u"OrvoCatalogIDS", PropertyRule::id_list,
     Fallback::when_zero, detail::of_profile<&Profile::get_whole<Profile::catalog_ids>>},
    {"OrvoAddressIDs", PropertyType::whole, u"OrvoAddressIDs", PropertyRule::id_list},
    {"AskbookVisibility", PropertyType::whole, u"AskbookVisibility", PropertyRule::id_list,
     Fallback::when_empty, detail::of_profile<&Profile::get_whole<Profile::askbook_visibility>>},
    {"OrvoRoles", PropertyType::whole, u"OrvoRole", PropertyRule::id_list, Fallback::when_zero,
     detail::of_profile<&Profile::get_whole<Profile::roles>>},
    {"EmployeeNumber", PropertyType::text, u"EmployeeNumber", PropertyRule::in_out},
    {"ILSServer", PropertyType::text, u"ILSServer", PropertyRule::in_out},
    {"ManagerEMail", PropertyType::text, u"Manager", PropertyRule::in_out},
    {"OrvoDashboardIDs", PropertyType::whole, u"OrvoDashboardIDs", PropertyRule::id_list,
     Fallback::when_zero, detail::of_profile<&Profile::get_whole<Profile::dashboard_ids>>},
    {"ExcludedVexIDs", PropertyType::whole, u"ExcludedVexIDs"},
    {"ProfileCN", PropertyType::text, u"ProfileCN", PropertyRule::marks_profile_change},
    {"OrvoBillAddress", PropertyType::int32, u"OrvoBillAddress"},
    {"OrvoShipAddress", PropertyType::int32, u"OrvoShipAddress"},
    {"PropertyGroupID", PropertyType::int32, u"PropertyGroupID"},
    {"WhReqPrefix", PropertyType::text, u"WhReqPrefix"},
    {"ChargeLines", PropertyType::boolean, u"ChargeLines"},
    {"SubstituteBuyer", PropertyType::text, u"SubstituteBuyer"},
    {"LimitforRFQ", PropertyType::currency, u"LimitforRFQ"},
    {"LimitforContract", PropertyType::currency, u"LimitforContract"},
    {"BuyerManager", PropertyType::text, u"BuyerManager"},
    {"ProjectRole", PropertyType::whole, u"ProjectRole"},
    {"ProjectUserType", PropertyType::int16, u"ProjectUserType"},
    {"ApproverLimit", PropertyType::currency, u"ApproverLimit"},
    {"ApproverManager", PropertyType::text, u"ApproverManager"},
    {"CompanyNumber", PropertyType::text, u"CompanyNumber"},
    {"FinancialCompanyAdmin", PropertyType::text, u"FinancialCompanyAdmin"},
    {"FinancialCompanyCardUser", PropertyType::text, u"FinancialCompanyCardUser"},
    {"CardUserManager", PropertyType::text, u"CardUserManager"},
    {"OneTimeUser", PropertyType::boolean, u"OneTimeUser"},
    {"CostCenter", PropertyType::text, u"CostCenter"},
    {"OnBehalfOf", PropertyType::boolean, u"OnBehalfOf"},
    {"OnBehalfOfAdminOffice", PropertyType::whole, u"OnBehalfOfAdminOffice", PropertyRule::id_list},
    {"OnBehalfOfRequisitioner", PropertyType::whole, u"OnBehalfOfRequisitioner",
     PropertyRule::id_list},
};

consteval std::size_t property_row(std::string_view name) {
    return detail::row_of(user_catalogue, name);
}

// Boolean properties that ask for one type of user. Setting one makes the user one of that type,
// whatever value is assigned: false would not tell which other type.
struct UserTypeProperty {
    const char* name;
    std::int16_t type;
};
inline constexpr UserTypeProperty user_types[] = {
    {"RegisteredUser", 1}, {"GuestUser", 2}, {"IsLocalAdmin", 3}, {"IsAdmin", 4}, {"NewMember", 0},
};
consteval std::size_t user_type_row(std::string_view name) {
    return detail::row_of(user_types, name);
}

// Boolean properties that ask for one role, and grant or withdraw it.
struct RoleProperty {
    const char* name;
    std::int16_t role;
};
inline constexpr RoleProperty user_roles[] = {
    // clang-format off
    {"CreditCardUser", 1},
    {"BuyerRole", 2},
    {"RequisitionerRole", 3},
    {"ApproverRole", 4},
    {"FinancialRole", 5},
    {"ExternalRole", 6},
    {"SalesRole", 7},
    {"CanPublish", 21},
    {"CanViewAll", 22},
    {"CanEditAll", 23},
    {"ReceiverRole", 24},
    {"SalesRepresentativeRole", 25},
    // clang-format on
};
consteval std::size_t role_row(std::string_view name) { return detail::row_of(user_roles, name); }

}  // namespace orvo
