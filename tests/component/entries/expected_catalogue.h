#pragma once

// The catalogue once more, written down on its own, so that no row changes unnoticed.

namespace orvo {

enum class Type { text, boolean, int16, int32, currency, date, whole };
enum class Special { none, no_value_is_text, empty_is_zero, list };

struct Expected {
    const char* property;
    Type type;
    const char* attribute;
    Special special = Special::none;
};
// clang-format off
inline constexpr Expected catalogue[] = {
    {"PhoneNumber", Type::text, "PhoneNumber"},
    {"Fax", Type::text, "facsimiletelephonenumber"},
    {"Modem", Type::text, "Modem"},
    {"Country", Type::text, "c"},
    {"Position", Type::text, "Position"},
    {"ShowExplain", Type::boolean, "ShowExplain"},
    {"OutOfOfficeOn", Type::boolean, "OutOfOfficeOn"},
    {"OutOfOfficeApprover", Type::text, "OutOfOfficeApprover"},
    {"CreditCardType", Type::int16, "CreditCardType"},
    {"ManagerCN", Type::text, "ManagerCN"},
    {"CreditCardExpiryDate", Type::date, "CreditCardExpiryDate"},
    {"CreditCardNr", Type::text, "CreditCardNr"},
    {"ReqPrefix", Type::text, "ReqPrefix"},
    {"SpendLimit", Type::currency, "SpendLimit"},
    {"AdminOffice", Type::text, "AdminOffice"},
    {"PurOffice", Type::text, "PurOffice"},
    {"DeliveryAddressID", Type::int32, "DeliveryAddressID"},
    {"BillToBusinessPartnerID", Type::int32, "BillToBusinessPartnerID"},
    {"Roles", Type::whole, "OrvoRole"},
    {"CompanyName", Type::text, "CompanyName"},
    {"LocalAdminProfileCN", Type::text, "LocalAdminProfileCN"},
    {"LanguageID", Type::text, "LanguageID"},
    {"Locale", Type::int16, "Locale"},
    {"BusinessPartnerID", Type::int32, "BusinessPartnerID"},
    {"OrvoUserType", Type::int16, "OrvoUserType"},
    {"BPType", Type::int16, "BPType", Special::empty_is_zero},
    {"EMailAddress", Type::text, "mail", Special::no_value_is_text},
    {"LastName", Type::text, "sn"},
    {"FirstName", Type::text, "givenName"},
    {"OrvoCatalogIDs", Type::whole, "OrvoCatalogIDS", Special::list},
    {"OrvoAddressIDs", Type::whole, "OrvoAddressIDs", Special::list},
    {"AskbookVisibility", Type::whole, "AskbookVisibility", Special::list},
    {"OrvoRoles", Type::whole, "OrvoRole", Special::list},
    {"EmployeeNumber", Type::text, "EmployeeNumber"},
    {"ILSServer", Type::text, "ILSServer"},
    {"ManagerEMail", Type::text, "Manager"},
    {"OrvoDashboardIDs", Type::whole, "OrvoDashboardIDs", Special::list},
    {"ExcludedVexIDs", Type::whole, "ExcludedVexIDs"},
    {"ProfileCN", Type::text, "ProfileCN"},
    {"OrvoBillAddress", Type::int32, "OrvoBillAddress"},
    {"OrvoShipAddress", Type::int32, "OrvoShipAddress"},
    {"PropertyGroupID", Type::int32, "PropertyGroupID"},
    {"WhReqPrefix", Type::text, "WhReqPrefix"},
    {"ChargeLines", Type::boolean, "ChargeLines"},
    {"SubstituteBuyer", Type::text, "SubstituteBuyer"},
    {"LimitforRFQ", Type::currency, "LimitforRFQ"},
    {"LimitforContract", Type::currency, "LimitforContract"},
    {"BuyerManager", Type::text, "BuyerManager"},
    {"ProjectRole", Type::whole, "ProjectRole"},
    {"ProjectUserType", Type::int16, "ProjectUserType"},
    {"ApproverLimit", Type::currency, "ApproverLimit"},
    {"ApproverManager", Type::text, "ApproverManager"},
    {"CompanyNumber", Type::text, "CompanyNumber"},
    {"FinancialCompanyAdmin", Type::text, "FinancialCompanyAdmin"},
    {"FinancialCompanyCardUser", Type::text, "FinancialCompanyCardUser"},
    {"CardUserManager", Type::text, "CardUserManager"},
    {"OneTimeUser", Type::boolean, "OneTimeUser"},
    {"CostCenter", Type::text, "CostCenter"},
    {"OnBehalfOf", Type::boolean, "OnBehalfOf"},
    {"OnBehalfOfAdminOffice", Type::whole, "OnBehalfOfAdminOffice", Special::list},
    {"OnBehalfOfRequisitioner", Type::whole, "OnBehalfOfRequisitioner", Special::list},
};
// clang-format on

}  // namespace orvo
