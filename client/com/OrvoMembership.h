#pragma once

// Written from the interface tables by orvo-idl; not edited by hand.
//
// For plain COM sources, on both systems. One source of a program defines INITGUID
// before it includes anything: the identifiers are defined there.

// clang-format off
#include <windows.h>
#include <ole2.h>
#include <oleauto.h>

#include "TavikPMMInterfaces.h"

DEFINE_GUID(LIBID_OrvoMembership, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x00);

// Numbers of failures.
typedef enum OrvoMemErrors {
    emErrNotBoundToUser = -2147220704,
    emErrServerInfoNotCreated = -2147220703,
    emErrUserAlreadyExists = -2147220702,
    emErrNotBoundToMembers = -2147220701,
    emErrUserDoesNotExist = -2147220700,
    emErrPwdNotCorrect = -2147220699,
    emErrNotBoundToProfile = -2147220698,
    emErrNotBoundToProfiles = -2147220697,
    emErrProfileNotSet = -2147220696,
    emErrAppNoAccess = -2147220693,
} OrvoMemErrors;

interface IUser;
interface IServerInfo;
interface IPMMCreator;
interface IAccount;
interface IPMMAccessor;
interface IInitialize;
interface ILdapAccess;
interface IProfile;
interface IMembers;
interface IProfiles;
interface IValidator;

// A user: attributes, typed properties, roles, applications, password.
DEFINE_GUID(IID_IUser, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x17);
MIDL_INTERFACE("6B0D9A7E-3C52-4F0B-9D2E-8A41C1F5E717")
IUser : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE BindAs(BSTR* iCommonName, BSTR* iUsername, BSTR* iPwd) = 0;
    virtual HRESULT STDMETHODCALLTYPE BindToGuid(BSTR* iGUID, BSTR* iUsername, BSTR* iPassword) = 0;
    virtual HRESULT STDMETHODCALLTYPE setServerInfo(BSTR i_sConfigurationPath) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAttribValue(BSTR* iAttribName, VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetAttribValue(BSTR* iAttribName, VARIANT* iAttribValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearAttribValue(BSTR* iAttribName) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_PhoneNumber(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_PhoneNumber(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Fax(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Fax(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Modem(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Modem(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Country(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Country(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Position(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Position(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ShowExplain(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ShowExplain(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OutOfOfficeOn(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OutOfOfficeOn(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OutOfOfficeApprover(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OutOfOfficeApprover(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CreditCardType(SHORT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_CreditCardType(SHORT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ManagerCN(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ManagerCN(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CreditCardExpiryDate(DATE* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_CreditCardExpiryDate(DATE iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CreditCardNr(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_CreditCardNr(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ReqPrefix(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ReqPrefix(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_SpendLimit(CURRENCY* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_SpendLimit(CURRENCY iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_AdminOffice(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_AdminOffice(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_PurOffice(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_PurOffice(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_DeliveryAddressID(LONG* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_DeliveryAddressID(LONG iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_BillToBusinessPartnerID(LONG* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_BillToBusinessPartnerID(LONG iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Roles(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Roles(VARIANT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CompanyName(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_CompanyName(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_LocalAdminProfileCN(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_LocalAdminProfileCN(BSTR* iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_LanguageID(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_LanguageID(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Locale(SHORT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Locale(SHORT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_BusinessPartnerID(LONG* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_BusinessPartnerID(LONG iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OrvoUserType(SHORT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OrvoUserType(SHORT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_BPType(SHORT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_BPType(SHORT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_EMailAddress(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_EMailAddress(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_LastName(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_LastName(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_FirstName(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_FirstName(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OrvoCatalogIDs(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OrvoCatalogIDs(VARIANT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OrvoAddressIDs(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OrvoAddressIDs(VARIANT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_AskbookVisibility(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_AskbookVisibility(VARIANT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OrvoRoles(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OrvoRoles(VARIANT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_EmployeeNumber(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_EmployeeNumber(BSTR* iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ILSServer(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ILSServer(BSTR* iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ManagerEMail(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ManagerEMail(BSTR* iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OrvoDashboardIDs(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OrvoDashboardIDs(VARIANT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ExcludedVexIDs(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ExcludedVexIDs(VARIANT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ProfileCN(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ProfileCN(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OrvoBillAddress(LONG* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OrvoBillAddress(LONG iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OrvoShipAddress(LONG* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OrvoShipAddress(LONG iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_PropertyGroupID(LONG* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_PropertyGroupID(LONG iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_WhReqPrefix(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_WhReqPrefix(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ChargeLines(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ChargeLines(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_SubstituteBuyer(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_SubstituteBuyer(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_LimitforRFQ(CURRENCY* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_LimitforRFQ(CURRENCY iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_LimitforContract(CURRENCY* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_LimitforContract(CURRENCY iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_BuyerManager(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_BuyerManager(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ProjectRole(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ProjectRole(VARIANT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ProjectUserType(SHORT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ProjectUserType(SHORT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ApproverLimit(CURRENCY* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ApproverLimit(CURRENCY iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ApproverManager(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ApproverManager(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CompanyNumber(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_CompanyNumber(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_FinancialCompanyAdmin(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_FinancialCompanyAdmin(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_FinancialCompanyCardUser(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_FinancialCompanyCardUser(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CardUserManager(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_CardUserManager(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OneTimeUser(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OneTimeUser(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CostCenter(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_CostCenter(BSTR iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OnBehalfOf(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OnBehalfOf(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OnBehalfOfAdminOffice(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OnBehalfOfAdminOffice(VARIANT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OnBehalfOfRequisitioner(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OnBehalfOfRequisitioner(VARIANT iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CN(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_GUID(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Profile(IProfile** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_NTUser(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_NTPassword(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_RegisteredUser(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_RegisteredUser(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_GuestUser(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_GuestUser(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsLocalAdmin(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_IsLocalAdmin(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsAdmin(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_IsAdmin(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_NewMember(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_NewMember(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_InvoiceUser(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_InvoiceUser(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CreditCardUser(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_CreditCardUser(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_BuyerRole(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_BuyerRole(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_RequisitionerRole(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_RequisitionerRole(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ApproverRole(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ApproverRole(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_FinancialRole(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_FinancialRole(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ExternalRole(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ExternalRole(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_SalesRole(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_SalesRole(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CanPublish(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_CanPublish(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CanViewAll(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_CanViewAll(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CanEditAll(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_CanEditAll(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ReceiverRole(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ReceiverRole(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_SalesRepresentativeRole(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_SalesRepresentativeRole(VARIANT_BOOL iValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE HasRole(SHORT* iRoleID, VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE AssignRole(SHORT* iRoleType, VARIANT_BOOL* iEnable) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OrvoApps(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OrvoApps(VARIANT* iApps) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearOrvoApps() = 0;
    virtual HRESULT STDMETHODCALLTYPE IsAppAccessAllowed(BSTR iAppName, VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE validate(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE CheckAppUserAccess(BSTR iAppName, SHORT iAppID) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDefaultURL(LONG i_lAppID, BSTR i_sURL, VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDefaultURL(LONG i_lAppID, BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE ChangePassword(BSTR* iOldPwd, BSTR* iNewPwd) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IUser, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x17)
#endif

// The directory settings of a site.
DEFINE_GUID(IID_IServerInfo, 0x19041D22, 0x35A4, 0x4296, 0x86, 0x2C, 0xDD, 0x49, 0x91, 0x1E, 0x25, 0xA9);
MIDL_INTERFACE("19041D22-35A4-4296-862C-DD49911E25A9")
IServerInfo : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE GetMemScriptUser(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMemScriptCode(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetServerName(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPMMImplementation(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetProfileContainer(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetUserContainer(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAccountContainer(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCookieName(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetProfileClass(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetUserClass(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAccountClass(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetUserNamingAttribute(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetProfileNamingAttribute(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAccountNamingAttribute(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetUserMandatoryAttributes(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE FullUserPath(BSTR* iUser, BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE makeLDAPString(BSTR* iHost, BSTR* iContainer, BSTR* iObject, BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LoadConfigFile(IQuendraConfiguration** i_oConfiguration) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetConfiguration(BSTR* i_sConfigPath) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetConfigFileName(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ConfigurationPath(BSTR* result) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IServerInfo, 0x19041D22, 0x35A4, 0x4296, 0x86, 0x2C, 0xDD, 0x49, 0x91, 0x1E, 0x25, 0xA9)
#endif

// Makes the objects of the configured directory provider.
DEFINE_GUID(IID_IPMMCreator, 0xB6C8F471, 0x05D1, 0x4DC5, 0x85, 0x02, 0x73, 0xBB, 0xFC, 0x1C, 0x50, 0x06);
MIDL_INTERFACE("B6C8F471-05D1-4DC5-8502-73BBFC1C5006")
IPMMCreator : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE GetPMMSchema(IDirectorySchema** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPMMObject(IDirectoryEntry** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPMMSearch(IDirectorySearch** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPMMValidator(IDirectoryValidator** result) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IPMMCreator, 0xB6C8F471, 0x05D1, 0x4DC5, 0x85, 0x02, 0x73, 0xBB, 0xFC, 0x1C, 0x50, 0x06)
#endif

// The service account of a type of users.
DEFINE_GUID(IID_IAccount, 0x022D2B72, 0x1C79, 0x4081, 0xAE, 0x34, 0x76, 0x90, 0xBE, 0x8C, 0xB8, 0x4D);
MIDL_INTERFACE("022D2B72-1C79-4081-AE34-7690BE8CB84D")
IAccount : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE Init(SHORT* iUserType) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_NTUser(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_NTPassword(VARIANT* result) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IAccount, 0x022D2B72, 0x1C79, 0x4081, 0xAE, 0x34, 0x76, 0x90, 0xBE, 0x8C, 0xB8, 0x4D)
#endif

// The users of an application, for callers outside web pages.
DEFINE_GUID(IID_IPMMAccessor, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x1B);
MIDL_INTERFACE("6B0D9A7E-3C52-4F0B-9D2E-8A41C1F5E71B")
IPMMAccessor : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE InitConfigFile(BSTR sSiteConfigFileName) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetLDAPUsers(LONG productID, IDispatch** result) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IPMMAccessor, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x1B)
#endif

// Sets the provider's connection pool and cache up.
DEFINE_GUID(IID_IInitialize, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x1A);
MIDL_INTERFACE("6B0D9A7E-3C52-4F0B-9D2E-8A41C1F5E71A")
IInitialize : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE InitializeConnectionPool(VARIANT* i_aPoolParameterNames, VARIANT* i_aPoolParameterValues, VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE InitializeCache(VARIANT* i_aCacheParameterNames, VARIANT* i_aCacheParameterValues, VARIANT_BOOL* result) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IInitialize, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x1A)
#endif

// One entry of the directory, attribute by attribute.
DEFINE_GUID(IID_ILdapAccess, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x14);
MIDL_INTERFACE("6B0D9A7E-3C52-4F0B-9D2E-8A41C1F5E714")
ILdapAccess : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE GetAttribValue(BSTR* iAttribName, VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetAttribValue(BSTR* iAttribName, VARIANT* iAttribValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearAttribValue(BSTR* iAttribName) = 0;
    virtual HRESULT STDMETHODCALLTYPE BindAs(BSTR* i_sCN, BSTR* i_sUsername, BSTR* i_sPwd, BSTR* i_sServer, BSTR* i_sContainer) = 0;
    virtual HRESULT STDMETHODCALLTYPE BindToConfig() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAttributeName(VARIANT* iAttributeName, VARIANT* result) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(ILdapAccess, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x14)
#endif

// A profile: settings that users have in common.
DEFINE_GUID(IID_IProfile, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x16);
MIDL_INTERFACE("6B0D9A7E-3C52-4F0B-9D2E-8A41C1F5E716")
IProfile : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE GetAttribValue(BSTR* iAttribName, VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetAttribValue(BSTR* iAttribName, VARIANT* iAttribValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearAttribValue(BSTR* iAttribName) = 0;
    virtual HRESULT STDMETHODCALLTYPE BindAs(BSTR* iCN, BSTR* iUsername, BSTR* iPwd) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetUsers(IDispatch** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearOrvoApps() = 0;
    virtual HRESULT STDMETHODCALLTYPE HasRole(SHORT* iRoleID, VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE AssignRole(SHORT* iRoleType, VARIANT_BOOL* iEnable) = 0;
    virtual HRESULT STDMETHODCALLTYPE setServerInfo(BSTR i_sConfigurationPath) = 0;
    virtual HRESULT STDMETHODCALLTYPE Init(BSTR* iCN) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CN(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Locale(SHORT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Locale(SHORT iLocale) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_LanguageID(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_LanguageID(BSTR iLanguageID) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OrvoCatalogIDs(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OrvoCatalogIDs(VARIANT iCatalogIDs) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OrvoDashboardIDs(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OrvoDashboardIDs(VARIANT iDashboardIDs) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_AskbookVisibility(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_AskbookVisibility(VARIANT iVisibility) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_OrvoApps(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_OrvoApps(VARIANT iApps) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Roles(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Roles(VARIANT iRoles) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IProfile, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x16)
#endif

// The container of all users: creating, finding, deleting.
DEFINE_GUID(IID_IMembers, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x18);
MIDL_INTERFACE("6B0D9A7E-3C52-4F0B-9D2E-8A41C1F5E718")
IMembers : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE BindAs(BSTR* iUsername, BSTR* iPassword) = 0;
    virtual HRESULT STDMETHODCALLTYPE setServerInfo(BSTR i_sConfigurationPath) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateUserOnFormsLogin(BSTR* iCommonName, BSTR* iPassword, IUser** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateUser(BSTR* iCommonName, BSTR* iPassword, IUser** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteUser(BSTR* iCommonName) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetUserFromGUID(BSTR* iGUID, IUser** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetOrvoUsers(VARIANT iCriteria, BSTR iSortFields, VARIANT iPageSize, IDispatch** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetLastPageValue(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetOrvoMembersHavingRole(SHORT* iRole, BSTR* iSortFields, IDispatch** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetOrvoMembersHavingRoleEx(SHORT* iRole, VARIANT* iCriteria, BSTR* iSortFields, IDispatch** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAttribValue(BSTR* iAttribName, VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetAttribValue(BSTR* iAttribName, VARIANT* iAttribValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateUserWithAttributes(BSTR i_sUsername, BSTR i_sPassword, VARIANT* i_aAttrNames, VARIANT* i_aAttrValues, IUser** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetOrvoUsersEx(VARIANT iCriteria, VARIANT i_vAttributeNames, BSTR iSortFields, VARIANT iPageSize, IDispatch** result) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IMembers, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x18)
#endif

// The container of all profiles.
DEFINE_GUID(IID_IProfiles, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x19);
MIDL_INTERFACE("6B0D9A7E-3C52-4F0B-9D2E-8A41C1F5E719")
IProfiles : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE AsRecordset(IDispatch** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteProfile(BSTR* iCommonName, VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateProfile(BSTR* iCommonName, IProfile** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE BindAs(BSTR* iUsername, BSTR* iPwd) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IProfiles, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x19)
#endif

// Checks passwords, and logs users of web pages in.
DEFINE_GUID(IID_IValidator, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x15);
MIDL_INTERFACE("6B0D9A7E-3C52-4F0B-9D2E-8A41C1F5E715")
IValidator : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE ValidateCredentials(VARIANT* iVarUserID, VARIANT* iVarPassword, VARIANT* iVarOriginalUrl, VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE ValidatePassword(VARIANT* iUserId, VARIANT* iPassword, VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE setServerInfo(BSTR i_sConfigurationPath) = 0;
    virtual HRESULT STDMETHODCALLTYPE ChangePassword(BSTR* username, BSTR* oldpassword, BSTR* newpassword) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IValidator, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x15)
#endif

DEFINE_GUID(CLSID_User, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x07);
DEFINE_GUID(CLSID_ServerInfo, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x01);
DEFINE_GUID(CLSID_PMMCreator, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x02);
DEFINE_GUID(CLSID_Account, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x03);
DEFINE_GUID(CLSID_PMMAccessor, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x0B);
DEFINE_GUID(CLSID_Initialize, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x0A);
DEFINE_GUID(CLSID_LdapAccess, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x04);
DEFINE_GUID(CLSID_Profile, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x06);
DEFINE_GUID(CLSID_Members, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x08);
DEFINE_GUID(CLSID_Profiles, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x09);
DEFINE_GUID(CLSID_Validator, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x05);
