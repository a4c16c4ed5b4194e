#pragma once

// Written from the interface tables by orvo-idl --client; not edited by hand.
//
// The component's classes, for C++ programs. Each object is made with its default
// constructor, copies are the same object, and members are called by their slots:
//
//     orvo::Members members;
//     members.setServerInfo(site);
//     members.BindAs(service, code);
//     for (auto row : members.GetOrvoMembersHavingRole(24, "sn"))
//         std::cout << row["cn"] << '\n';

#include "orvo/record_set.h"

// clang-format off
namespace orvo {
inline namespace client {

class User;
class ServerInfo;
class PMMCreator;
class Account;
class PMMAccessor;
class Initialize;
class LdapAccess;
class Profile;
class Members;
class Profiles;
class Validator;

// Numbers of failures (Error::number).
inline constexpr std::int32_t emErrNotBoundToUser = -2147220704;
inline constexpr std::int32_t emErrServerInfoNotCreated = -2147220703;
inline constexpr std::int32_t emErrUserAlreadyExists = -2147220702;
inline constexpr std::int32_t emErrNotBoundToMembers = -2147220701;
inline constexpr std::int32_t emErrUserDoesNotExist = -2147220700;
inline constexpr std::int32_t emErrPwdNotCorrect = -2147220699;
inline constexpr std::int32_t emErrNotBoundToProfile = -2147220698;
inline constexpr std::int32_t emErrNotBoundToProfiles = -2147220697;
inline constexpr std::int32_t emErrProfileNotSet = -2147220696;
inline constexpr std::int32_t emErrAppNoAccess = -2147220693;

// A user: attributes, typed properties, roles, applications, password.
class User : public Object {
public:
    // Makes one.
    User() : Object("OrvoMembership.User", iid) {}
    // The same object, typed. Raises where it is of another class; none stays none.
    explicit User(const Object& object) : Object(object, iid) {}
    static constexpr abi::IID iid{0x6B0D9A7E, 0x3C52, 0x4F0B, {0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x17}};

    // Binds to a user by its common name, with a directory account.
    void BindAs(InOut<Text> iCommonName, InOut<Text> iUsername, InOut<Text> iPwd) const;
    // Binds to the user with this GUID, with a directory account.
    void BindToGuid(InOut<Text> iGUID, InOut<Text> iUsername, InOut<Text> iPassword) const;
    // Loads a site configuration file into the settings that all objects of the thread share.
    void setServerInfo(Text i_sConfigurationPath) const;
    // The values of an attribute as an array; empty text where they may not be read.
    Value GetAttribValue(InOut<Text> iAttribName) const;
    // Writes an attribute; nothing happens where it may not be written.
    void SetAttribValue(InOut<Text> iAttribName, InOut<Value> iAttribValue) const;
    // Removes an attribute.
    void ClearAttribValue(InOut<Text> iAttribName) const;
    // The attribute PhoneNumber.
    std::string PhoneNumber() const;
    void PhoneNumber(Text iValue) const;
    // The attribute facsimiletelephonenumber.
    std::string Fax() const;
    void Fax(Text iValue) const;
    // The attribute Modem.
    std::string Modem() const;
    void Modem(Text iValue) const;
    // The attribute c.
    std::string Country() const;
    void Country(Text iValue) const;
    // The attribute Position.
    std::string Position() const;
    void Position(Text iValue) const;
    // The attribute ShowExplain.
    bool ShowExplain() const;
    void ShowExplain(In<bool> iValue) const;
    // The attribute OutOfOfficeOn.
    bool OutOfOfficeOn() const;
    void OutOfOfficeOn(In<bool> iValue) const;
    // The attribute OutOfOfficeApprover.
    std::string OutOfOfficeApprover() const;
    void OutOfOfficeApprover(Text iValue) const;
    // The attribute CreditCardType.
    std::int16_t CreditCardType() const;
    void CreditCardType(In<std::int16_t> iValue) const;
    // The attribute ManagerCN.
    std::string ManagerCN() const;
    void ManagerCN(Text iValue) const;
    // The attribute CreditCardExpiryDate.
    Date CreditCardExpiryDate() const;
    void CreditCardExpiryDate(Date iValue) const;
    // The attribute CreditCardNr.
    std::string CreditCardNr() const;
    void CreditCardNr(Text iValue) const;
    // The attribute ReqPrefix.
    std::string ReqPrefix() const;
    void ReqPrefix(Text iValue) const;
    // The attribute SpendLimit.
    Currency SpendLimit() const;
    void SpendLimit(Currency iValue) const;
    // The attribute AdminOffice.
    std::string AdminOffice() const;
    void AdminOffice(Text iValue) const;
    // The attribute PurOffice.
    std::string PurOffice() const;
    void PurOffice(Text iValue) const;
    // The attribute DeliveryAddressID.
    std::int32_t DeliveryAddressID() const;
    void DeliveryAddressID(In<std::int32_t> iValue) const;
    // The attribute BillToBusinessPartnerID.
    std::int32_t BillToBusinessPartnerID() const;
    void BillToBusinessPartnerID(In<std::int32_t> iValue) const;
    // The attribute OrvoRole.
    Value Roles() const;
    void Roles(Value iValue) const;
    // The attribute CompanyName.
    std::string CompanyName() const;
    void CompanyName(Text iValue) const;
    // The attribute LocalAdminProfileCN.
    std::string LocalAdminProfileCN() const;
    void LocalAdminProfileCN(InOut<Text> iValue) const;
    // The attribute LanguageID; the profile's where it has no value.
    std::string LanguageID() const;
    void LanguageID(Text iValue) const;
    // The attribute Locale; the profile's where it has no value.
    std::int16_t Locale() const;
    void Locale(In<std::int16_t> iValue) const;
    // The attribute BusinessPartnerID.
    std::int32_t BusinessPartnerID() const;
    void BusinessPartnerID(In<std::int32_t> iValue) const;
    // The attribute OrvoUserType.
    std::int16_t OrvoUserType() const;
    void OrvoUserType(In<std::int16_t> iValue) const;
    // The attribute BPType.
    std::int16_t BPType() const;
    void BPType(In<std::int16_t> iValue) const;
    // The attribute mail.
    std::string EMailAddress() const;
    void EMailAddress(Text iValue) const;
    // The attribute sn.
    std::string LastName() const;
    void LastName(Text iValue) const;
    // The attribute givenName.
    std::string FirstName() const;
    void FirstName(Text iValue) const;
    // The attribute OrvoCatalogIDS; the profile's where it has no value.
    Value OrvoCatalogIDs() const;
    void OrvoCatalogIDs(Value iValue) const;
    // The attribute OrvoAddressIDs.
    Value OrvoAddressIDs() const;
    void OrvoAddressIDs(Value iValue) const;
    // The attribute AskbookVisibility; the profile's where it has no value.
    Value AskbookVisibility() const;
    void AskbookVisibility(Value iValue) const;
    // The attribute OrvoRole; the profile's where it has no value.
    Value OrvoRoles() const;
    void OrvoRoles(Value iValue) const;
    // The attribute EmployeeNumber.
    std::string EmployeeNumber() const;
    void EmployeeNumber(InOut<Text> iValue) const;
    // The attribute ILSServer.
    std::string ILSServer() const;
    void ILSServer(InOut<Text> iValue) const;
    // The attribute Manager.
    std::string ManagerEMail() const;
    void ManagerEMail(InOut<Text> iValue) const;
    // The attribute OrvoDashboardIDs; the profile's where it has no value.
    Value OrvoDashboardIDs() const;
    void OrvoDashboardIDs(Value iValue) const;
    // The attribute ExcludedVexIDs.
    Value ExcludedVexIDs() const;
    void ExcludedVexIDs(Value iValue) const;
    // The attribute ProfileCN.
    std::string ProfileCN() const;
    void ProfileCN(Text iValue) const;
    // The attribute OrvoBillAddress.
    std::int32_t OrvoBillAddress() const;
    void OrvoBillAddress(In<std::int32_t> iValue) const;
    // The attribute OrvoShipAddress.
    std::int32_t OrvoShipAddress() const;
    void OrvoShipAddress(In<std::int32_t> iValue) const;
    // The attribute PropertyGroupID.
    std::int32_t PropertyGroupID() const;
    void PropertyGroupID(In<std::int32_t> iValue) const;
    // The attribute WhReqPrefix.
    std::string WhReqPrefix() const;
    void WhReqPrefix(Text iValue) const;
    // The attribute ChargeLines.
    bool ChargeLines() const;
    void ChargeLines(In<bool> iValue) const;
    // The attribute SubstituteBuyer.
    std::string SubstituteBuyer() const;
    void SubstituteBuyer(Text iValue) const;
    // The attribute LimitforRFQ.
    Currency LimitforRFQ() const;
    void LimitforRFQ(Currency iValue) const;
    // The attribute LimitforContract.
    Currency LimitforContract() const;
    void LimitforContract(Currency iValue) const;
    // The attribute BuyerManager.
    std::string BuyerManager() const;
    void BuyerManager(Text iValue) const;
    // The attribute ProjectRole.
    Value ProjectRole() const;
    void ProjectRole(Value iValue) const;
    // The attribute ProjectUserType.
    std::int16_t ProjectUserType() const;
    void ProjectUserType(In<std::int16_t> iValue) const;
    // The attribute ApproverLimit.
    Currency ApproverLimit() const;
    void ApproverLimit(Currency iValue) const;
    // The attribute ApproverManager.
    std::string ApproverManager() const;
    void ApproverManager(Text iValue) const;
    // The attribute CompanyNumber.
    std::string CompanyNumber() const;
    void CompanyNumber(Text iValue) const;
    // The attribute FinancialCompanyAdmin.
    std::string FinancialCompanyAdmin() const;
    void FinancialCompanyAdmin(Text iValue) const;
    // The attribute FinancialCompanyCardUser.
    std::string FinancialCompanyCardUser() const;
    void FinancialCompanyCardUser(Text iValue) const;
    // The attribute CardUserManager.
    std::string CardUserManager() const;
    void CardUserManager(Text iValue) const;
    // The attribute OneTimeUser.
    bool OneTimeUser() const;
    void OneTimeUser(In<bool> iValue) const;
    // The attribute CostCenter.
    std::string CostCenter() const;
    void CostCenter(Text iValue) const;
    // The attribute OnBehalfOf.
    bool OnBehalfOf() const;
    void OnBehalfOf(In<bool> iValue) const;
    // The attribute OnBehalfOfAdminOffice.
    Value OnBehalfOfAdminOffice() const;
    void OnBehalfOfAdminOffice(Value iValue) const;
    // The attribute OnBehalfOfRequisitioner.
    Value OnBehalfOfRequisitioner() const;
    void OnBehalfOfRequisitioner(Value iValue) const;
    // The common name.
    std::string CN() const;
    // The identifier given at creation.
    std::string GUID() const;
    // The user's profile; nothing without one.
    orvo::Profile Profile() const;
    // Name of the service account for users of this type.
    std::string NTUser() const;
    // Password of the service account for users of this type.
    std::string NTPassword() const;
    // Whether the user is of type 1; setting it makes the user one.
    bool RegisteredUser() const;
    void RegisteredUser(In<bool> iValue) const;
    // Whether the user is of type 2; setting it makes the user one.
    bool GuestUser() const;
    void GuestUser(In<bool> iValue) const;
    // Whether the user is of type 3; setting it makes the user one.
    bool IsLocalAdmin() const;
    void IsLocalAdmin(In<bool> iValue) const;
    // Whether the user is of type 4; setting it makes the user one.
    bool IsAdmin() const;
    void IsAdmin(In<bool> iValue) const;
    // Whether the user is of type 0; setting it makes the user one.
    bool NewMember() const;
    void NewMember(In<bool> iValue) const;
    // The opposite of CreditCardUser.
    bool InvoiceUser() const;
    void InvoiceUser(In<bool> iValue) const;
    // Whether the user has the role 1; setting it grants or withdraws it.
    bool CreditCardUser() const;
    void CreditCardUser(In<bool> iValue) const;
    // Whether the user has the role 2; setting it grants or withdraws it.
    bool BuyerRole() const;
    void BuyerRole(In<bool> iValue) const;
    // Whether the user has the role 3; setting it grants or withdraws it.
    bool RequisitionerRole() const;
    void RequisitionerRole(In<bool> iValue) const;
    // Whether the user has the role 4; setting it grants or withdraws it.
    bool ApproverRole() const;
    void ApproverRole(In<bool> iValue) const;
    // Whether the user has the role 5; setting it grants or withdraws it.
    bool FinancialRole() const;
    void FinancialRole(In<bool> iValue) const;
    // Whether the user has the role 6; setting it grants or withdraws it.
    bool ExternalRole() const;
    void ExternalRole(In<bool> iValue) const;
    // Whether the user has the role 7; setting it grants or withdraws it.
    bool SalesRole() const;
    void SalesRole(In<bool> iValue) const;
    // Whether the user has the role 21; setting it grants or withdraws it.
    bool CanPublish() const;
    void CanPublish(In<bool> iValue) const;
    // Whether the user has the role 22; setting it grants or withdraws it.
    bool CanViewAll() const;
    void CanViewAll(In<bool> iValue) const;
    // Whether the user has the role 23; setting it grants or withdraws it.
    bool CanEditAll() const;
    void CanEditAll(In<bool> iValue) const;
    // Whether the user has the role 24; setting it grants or withdraws it.
    bool ReceiverRole() const;
    void ReceiverRole(In<bool> iValue) const;
    // Whether the user has the role 25; setting it grants or withdraws it.
    bool SalesRepresentativeRole() const;
    void SalesRepresentativeRole(In<bool> iValue) const;
    // Whether the user has a role. The profile's roles count for a user who has none.
    bool HasRole(InOut<std::int16_t> iRoleID) const;
    // Grants or withdraws a role of the user's own; the profile's are not looked at.
    void AssignRole(InOut<std::int16_t> iRoleType, InOut<bool> iEnable) const;
    // The user's applications, or else the profile's, as an array.
    Value OrvoApps() const;
    void OrvoApps(InOut<Value> iApps) const;
    // Removes the user's applications.
    void ClearOrvoApps() const;
    // Always true.
    bool IsAppAccessAllowed(Text iAppName) const;
    bool validate() const;
    // Fails where the user has not this application.
    void CheckAppUserAccess(Text iAppName, In<std::int16_t> iAppID) const;
    // Sets the address that a login leads to, one for all applications.
    Value SetDefaultURL(In<std::int32_t> i_lAppID, Text i_sURL) const;
    // The address that a login leads to.
    std::string GetDefaultURL(In<std::int32_t> i_lAppID) const;
    // Changes the password after the old one was checked, which may have expired.
    void ChangePassword(InOut<Text> iOldPwd, InOut<Text> iNewPwd) const;
};

// The directory settings of a site.
class ServerInfo : public Object {
public:
    // Makes one.
    ServerInfo() : Object("OrvoMembership.ServerInfo", iid) {}
    // The same object, typed. Raises where it is of another class; none stays none.
    explicit ServerInfo(const Object& object) : Object(object, iid) {}
    static constexpr abi::IID iid{0x19041D22, 0x35A4, 0x4296, {0x86, 0x2C, 0xDD, 0x49, 0x91, 0x1E, 0x25, 0xA9}};

    // The full name of the membership script account.
    Value GetMemScriptUser() const;
    // The password of the membership script account.
    Value GetMemScriptCode() const;
    // The directory server.
    Value GetServerName() const;
    // The ProgID of the directory provider.
    Value GetPMMImplementation() const;
    // The full name of the profiles' container.
    Value GetProfileContainer() const;
    // The full name of the users' container.
    Value GetUserContainer() const;
    // The full name of the service accounts' container.
    Value GetAccountContainer() const;
    // The name of the login cookie.
    Value GetCookieName() const;
    // The object class of profiles.
    Value GetProfileClass() const;
    // The object classes of users, as an array.
    Value GetUserClass() const;
    // The object class of service accounts.
    Value GetAccountClass() const;
    // The attribute that names users.
    Value GetUserNamingAttribute() const;
    // The attribute that names profiles.
    Value GetProfileNamingAttribute() const;
    // The attribute that names service accounts.
    Value GetAccountNamingAttribute() const;
    // What every new user must have, as an array.
    Value GetUserMandatoryAttributes() const;
    // The distinguished name of a user; a bare name gets the naming attribute in front.
    std::string FullUserPath(InOut<Text> iUser) const;
    // The directory URL of an object in a container. Host and object are left as they stand in it.
    std::string makeLDAPString(InOut<Text> iHost, InOut<Text> iContainer, InOut<Text> iObject = {}) const;
    // Fills what is still empty from a configuration.
    void LoadConfigFile(InOut<Object> i_oConfiguration) const;
    // Fills what is still empty from a site file.
    void SetConfiguration(InOut<Text> i_sConfigPath) const;
    // The configured name of the configuration file.
    Value GetConfigFileName() const;
    // The path last given to SetConfiguration.
    std::string ConfigurationPath() const;
};

// Makes the objects of the configured directory provider.
class PMMCreator : public Object {
public:
    // Makes one.
    PMMCreator() : Object("OrvoMembership.PMMCreator", iid) {}
    // The same object, typed. Raises where it is of another class; none stays none.
    explicit PMMCreator(const Object& object) : Object(object, iid) {}
    static constexpr abi::IID iid{0xB6C8F471, 0x05D1, 0x4DC5, {0x85, 0x02, 0x73, 0xBB, 0xFC, 0x1C, 0x50, 0x06}};

    // The provider's object for the schema.
    Object GetPMMSchema() const;
    // A provider's entry object, not yet bound.
    Object GetPMMObject() const;
    // A provider's search object.
    Object GetPMMSearch() const;
    // A provider's password check, opened for the users.
    Object GetPMMValidator() const;
};

// The service account of a type of users.
class Account : public Object {
public:
    // Makes one.
    Account() : Object("OrvoMembership.Account", iid) {}
    // The same object, typed. Raises where it is of another class; none stays none.
    explicit Account(const Object& object) : Object(object, iid) {}
    static constexpr abi::IID iid{0x022D2B72, 0x1C79, 0x4081, {0xAE, 0x34, 0x76, 0x90, 0xBE, 0x8C, 0xB8, 0x4D}};

    // Binds to the service account of a type of users.
    void Init(InOut<std::int16_t> iUserType) const;
    // The account's name.
    Value NTUser() const;
    // The account's password.
    Value NTPassword() const;
};

// The users of an application, for callers outside web pages.
class PMMAccessor : public Object {
public:
    // Makes one.
    PMMAccessor() : Object("OrvoMembership.PMMAccessor", iid) {}
    // The same object, typed. Raises where it is of another class; none stays none.
    explicit PMMAccessor(const Object& object) : Object(object, iid) {}
    static constexpr abi::IID iid{0x6B0D9A7E, 0x3C52, 0x4F0B, {0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x1B}};

    // Loads a site configuration file; comes first.
    void InitConfigFile(Text sSiteConfigFileName) const;
    // The users of an application, at most 1000, as a record set with the column CN. Application 10 is the administrators'.
    RecordSet GetLDAPUsers(In<std::int32_t> productID) const;
};

// Sets the provider's connection pool and cache up.
class Initialize : public Object {
public:
    // Makes one.
    Initialize() : Object("OrvoMembership.Initialize", iid) {}
    // The same object, typed. Raises where it is of another class; none stays none.
    explicit Initialize(const Object& object) : Object(object, iid) {}
    static constexpr abi::IID iid{0x6B0D9A7E, 0x3C52, 0x4F0B, {0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x1A}};

    // Changes the settings of the provider's connection pool: two arrays, of names and of values.
    bool InitializeConnectionPool(InOut<Value> i_aPoolParameterNames, InOut<Value> i_aPoolParameterValues) const;
    // Changes the settings of the provider's cache: two arrays, of names and of values.
    bool InitializeCache(InOut<Value> i_aCacheParameterNames, InOut<Value> i_aCacheParameterValues) const;
};

// One entry of the directory, attribute by attribute.
class LdapAccess : public Object {
public:
    // Makes one.
    LdapAccess() : Object("OrvoMembership.LdapAccess", iid) {}
    // The same object, typed. Raises where it is of another class; none stays none.
    explicit LdapAccess(const Object& object) : Object(object, iid) {}
    static constexpr abi::IID iid{0x6B0D9A7E, 0x3C52, 0x4F0B, {0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x14}};

    // The first value of an attribute; nothing where the entry lacks it.
    Value GetAttribValue(InOut<Text> iAttribName) const;
    // Writes an attribute.
    void SetAttribValue(InOut<Text> iAttribName, InOut<Value> iAttribValue) const;
    // Removes an attribute.
    void ClearAttribValue(InOut<Text> iAttribName) const;
    // Binds to an entry with the rights of a user.
    void BindAs(InOut<Text> i_sCN, InOut<Text> i_sUsername, InOut<Text> i_sPwd, InOut<Text> i_sServer, InOut<Text> i_sContainer) const;
    // Binds to the entry that keeps the directory's configuration, and loads the file that names it.
    void BindToConfig() const;
    // The directory's name of a logical attribute, after BindToConfig; nothing for an unknown one.
    Value GetAttributeName(InOut<Value> iAttributeName) const;
};

// A profile: settings that users have in common.
class Profile : public Object {
public:
    // Makes one.
    Profile() : Object("OrvoMembership.Profile", iid) {}
    // The same object, typed. Raises where it is of another class; none stays none.
    explicit Profile(const Object& object) : Object(object, iid) {}
    static constexpr abi::IID iid{0x6B0D9A7E, 0x3C52, 0x4F0B, {0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x16}};

    // All values of an attribute.
    Value GetAttribValue(InOut<Text> iAttribName) const;
    // Writes an attribute.
    void SetAttribValue(InOut<Text> iAttribName, InOut<Value> iAttribValue) const;
    // Removes an attribute.
    void ClearAttribValue(InOut<Text> iAttribName) const;
    // Binds to a profile with the rights of a user.
    void BindAs(InOut<Text> iCN, InOut<Text> iUsername, InOut<Text> iPwd) const;
    // The profile's users, at most 1000, as a record set. Where it has none, those who have it for local administration.
    RecordSet GetUsers() const;
    // Removes the profile's applications.
    void ClearOrvoApps() const;
    // Whether the profile has a role.
    bool HasRole(InOut<std::int16_t> iRoleID) const;
    // Grants or withdraws a role.
    void AssignRole(InOut<std::int16_t> iRoleType, InOut<bool> iEnable) const;
    // Loads a site configuration file into the settings that all objects of the thread share.
    void setServerInfo(Text i_sConfigurationPath) const;
    // Binds with the credentials of the last bind or else of the web session; without either it stays unbound.
    void Init(InOut<Text> iCN) const;
    // The common name.
    std::string CN() const;
    // The number of the profile's locale.
    std::int16_t Locale() const;
    void Locale(In<std::int16_t> iLocale) const;
    // The profile's language.
    std::string LanguageID() const;
    void LanguageID(Text iLanguageID) const;
    // The profile's catalogues, as an array.
    Value OrvoCatalogIDs() const;
    void OrvoCatalogIDs(Value iCatalogIDs) const;
    // The profile's dashboards, as an array.
    Value OrvoDashboardIDs() const;
    void OrvoDashboardIDs(Value iDashboardIDs) const;
    // The attribute AskbookVisibility, as an array.
    Value AskbookVisibility() const;
    void AskbookVisibility(Value iVisibility) const;
    // The profile's applications, as an array.
    Value OrvoApps() const;
    void OrvoApps(Value iApps) const;
    // The profile's roles, as an array.
    Value Roles() const;
    void Roles(Value iRoles) const;
};

// The container of all users: creating, finding, deleting.
class Members : public Object {
public:
    // Makes one.
    Members() : Object("OrvoMembership.Members", iid) {}
    // The same object, typed. Raises where it is of another class; none stays none.
    explicit Members(const Object& object) : Object(object, iid) {}
    static constexpr abi::IID iid{0x6B0D9A7E, 0x3C52, 0x4F0B, {0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x18}};

    // Binds to the users' container with a directory account. An empty name leaves it unbound.
    void BindAs(InOut<Text> iUsername, InOut<Text> iPassword) const;
    // Loads a site configuration file into the settings that all objects of the thread share.
    void setServerInfo(Text i_sConfigurationPath) const;
    // Creates a user with the membership script account's rights, and stays bound with them.
    orvo::User CreateUserOnFormsLogin(InOut<Text> iCommonName, InOut<Text> iPassword) const;
    // Creates a user with a new GUID, the configured classes and mandatory attributes, and answers it bound.
    orvo::User CreateUser(InOut<Text> iCommonName, InOut<Text> iPassword) const;
    // Binds anew and deletes the user of this common name.
    void DeleteUser(InOut<Text> iCommonName) const;
    // The user with this GUID, bound.
    orvo::User GetUserFromGUID(InOut<Text> iGUID) const;
    // Searches users. Criteria are an array of filter items without their parentheses, or an object for none. A full page leaves a bookmark.
    RecordSet GetOrvoUsers(Value iCriteria = Value::missing(), Text iSortFields = {}, Value iPageSize = Value::missing()) const;
    // The bookmark that a full page left: the last row's name and an exclamation mark.
    std::string GetLastPageValue() const;
    // The users with a role: their own or, where they have none at all, their profile's.
    RecordSet GetOrvoMembersHavingRole(InOut<std::int16_t> iRole, InOut<Text> iSortFields = {}) const;
    // The users with a role, their own or their profile's, who meet criteria.
    RecordSet GetOrvoMembersHavingRoleEx(InOut<std::int16_t> iRole, InOut<Value> iCriteria = Value::missing(), InOut<Text> iSortFields = {}) const;
    // An attribute of the container's own entry.
    Value GetAttribValue(InOut<Text> iAttribName) const;
    // Writes an attribute of the container's own entry.
    void SetAttribValue(InOut<Text> iAttribName, InOut<Value> iAttribValue) const;
    // Creates a user with the membership script account's rights, then writes one attribute after the other.
    orvo::User CreateUserWithAttributes(Text i_sUsername, Text i_sPassword, InOut<Value> i_aAttrNames, InOut<Value> i_aAttrValues) const;
    // Searches users as GetOrvoUsers does, with columns of one's own and without a bookmark.
    RecordSet GetOrvoUsersEx(Value iCriteria = Value::missing(), Value i_vAttributeNames = Value::missing(), Text iSortFields = {}, Value iPageSize = Value::missing()) const;
};

// The container of all profiles.
class Profiles : public Object {
public:
    // Makes one.
    Profiles() : Object("OrvoMembership.Profiles", iid) {}
    // The same object, typed. Raises where it is of another class; none stays none.
    explicit Profiles(const Object& object) : Object(object, iid) {}
    static constexpr abi::IID iid{0x6B0D9A7E, 0x3C52, 0x4F0B, {0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x19}};

    // All profiles, at most 1000, as a record set with the column cn.
    RecordSet AsRecordset() const;
    // Deletes a profile that has no users; answers whether it did.
    bool DeleteProfile(InOut<Text> iCommonName) const;
    // Creates a profile and answers it bound. An unbound object binds with the membership script account.
    orvo::Profile CreateProfile(InOut<Text> iCommonName) const;
    // Binds to the profiles' container with a directory account.
    void BindAs(InOut<Text> iUsername, InOut<Text> iPwd) const;
};

// Checks passwords, and logs users of web pages in.
class Validator : public Object {
public:
    // Makes one.
    Validator() : Object("OrvoMembership.Validator", iid) {}
    // The same object, typed. Raises where it is of another class; none stays none.
    explicit Validator(const Object& object) : Object(object, iid) {}
    static constexpr abi::IID iid{0x6B0D9A7E, 0x3C52, 0x4F0B, {0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0x15}};

    // Logs a user of a web page in: cookie, session, authorization filter. A negative answer is that of the password check; nothing is done then.
    Value ValidateCredentials(InOut<Value> iVarUserID, InOut<Value> iVarPassword, InOut<Value> iVarOriginalUrl) const;
    // Checks a password: 0 is right, -1 wrong, -2 locked, -3 disabled, -4 right but expired, -5 too many failures for now.
    Value ValidatePassword(InOut<Value> iUserId, InOut<Value> iPassword) const;
    // Loads a site configuration file into the settings that all objects of the thread share.
    void setServerInfo(Text i_sConfigurationPath) const;
    // Changes a user's password with the old one. Nobody has to be logged in.
    void ChangePassword(InOut<Text> username, InOut<Text> oldpassword, InOut<Text> newpassword) const;
};

inline void User::BindAs(InOut<Text> iCommonName, InOut<Text> iUsername, InOut<Text> iPwd) const {
    return slot<void>(7, iCommonName, iUsername, iPwd);
}
inline void User::BindToGuid(InOut<Text> iGUID, InOut<Text> iUsername, InOut<Text> iPassword) const {
    return slot<void>(8, iGUID, iUsername, iPassword);
}
inline void User::setServerInfo(Text i_sConfigurationPath) const {
    return slot<void>(9, i_sConfigurationPath);
}
inline Value User::GetAttribValue(InOut<Text> iAttribName) const {
    return slot<Value>(10, iAttribName);
}
inline void User::SetAttribValue(InOut<Text> iAttribName, InOut<Value> iAttribValue) const {
    return slot<void>(11, iAttribName, iAttribValue);
}
inline void User::ClearAttribValue(InOut<Text> iAttribName) const {
    return slot<void>(12, iAttribName);
}
inline std::string User::PhoneNumber() const {
    return slot<std::string>(13);
}
inline void User::PhoneNumber(Text iValue) const {
    return slot<void>(14, iValue);
}
inline std::string User::Fax() const {
    return slot<std::string>(15);
}
inline void User::Fax(Text iValue) const {
    return slot<void>(16, iValue);
}
inline std::string User::Modem() const {
    return slot<std::string>(17);
}
inline void User::Modem(Text iValue) const {
    return slot<void>(18, iValue);
}
inline std::string User::Country() const {
    return slot<std::string>(19);
}
inline void User::Country(Text iValue) const {
    return slot<void>(20, iValue);
}
inline std::string User::Position() const {
    return slot<std::string>(21);
}
inline void User::Position(Text iValue) const {
    return slot<void>(22, iValue);
}
inline bool User::ShowExplain() const {
    return slot<bool>(23);
}
inline void User::ShowExplain(In<bool> iValue) const {
    return slot<void>(24, iValue);
}
inline bool User::OutOfOfficeOn() const {
    return slot<bool>(25);
}
inline void User::OutOfOfficeOn(In<bool> iValue) const {
    return slot<void>(26, iValue);
}
inline std::string User::OutOfOfficeApprover() const {
    return slot<std::string>(27);
}
inline void User::OutOfOfficeApprover(Text iValue) const {
    return slot<void>(28, iValue);
}
inline std::int16_t User::CreditCardType() const {
    return slot<std::int16_t>(29);
}
inline void User::CreditCardType(In<std::int16_t> iValue) const {
    return slot<void>(30, iValue);
}
inline std::string User::ManagerCN() const {
    return slot<std::string>(31);
}
inline void User::ManagerCN(Text iValue) const {
    return slot<void>(32, iValue);
}
inline Date User::CreditCardExpiryDate() const {
    return slot<Date>(33);
}
inline void User::CreditCardExpiryDate(Date iValue) const {
    return slot<void>(34, iValue);
}
inline std::string User::CreditCardNr() const {
    return slot<std::string>(35);
}
inline void User::CreditCardNr(Text iValue) const {
    return slot<void>(36, iValue);
}
inline std::string User::ReqPrefix() const {
    return slot<std::string>(37);
}
inline void User::ReqPrefix(Text iValue) const {
    return slot<void>(38, iValue);
}
inline Currency User::SpendLimit() const {
    return slot<Currency>(39);
}
inline void User::SpendLimit(Currency iValue) const {
    return slot<void>(40, iValue);
}
inline std::string User::AdminOffice() const {
    return slot<std::string>(41);
}
inline void User::AdminOffice(Text iValue) const {
    return slot<void>(42, iValue);
}
inline std::string User::PurOffice() const {
    return slot<std::string>(43);
}
inline void User::PurOffice(Text iValue) const {
    return slot<void>(44, iValue);
}
inline std::int32_t User::DeliveryAddressID() const {
    return slot<std::int32_t>(45);
}
inline void User::DeliveryAddressID(In<std::int32_t> iValue) const {
    return slot<void>(46, iValue);
}
inline std::int32_t User::BillToBusinessPartnerID() const {
    return slot<std::int32_t>(47);
}
inline void User::BillToBusinessPartnerID(In<std::int32_t> iValue) const {
    return slot<void>(48, iValue);
}
inline Value User::Roles() const {
    return slot<Value>(49);
}
inline void User::Roles(Value iValue) const {
    return slot<void>(50, iValue);
}
inline std::string User::CompanyName() const {
    return slot<std::string>(51);
}
inline void User::CompanyName(Text iValue) const {
    return slot<void>(52, iValue);
}
inline std::string User::LocalAdminProfileCN() const {
    return slot<std::string>(53);
}
inline void User::LocalAdminProfileCN(InOut<Text> iValue) const {
    return slot<void>(54, iValue);
}
inline std::string User::LanguageID() const {
    return slot<std::string>(55);
}
inline void User::LanguageID(Text iValue) const {
    return slot<void>(56, iValue);
}
inline std::int16_t User::Locale() const {
    return slot<std::int16_t>(57);
}
inline void User::Locale(In<std::int16_t> iValue) const {
    return slot<void>(58, iValue);
}
inline std::int32_t User::BusinessPartnerID() const {
    return slot<std::int32_t>(59);
}
inline void User::BusinessPartnerID(In<std::int32_t> iValue) const {
    return slot<void>(60, iValue);
}
inline std::int16_t User::OrvoUserType() const {
    return slot<std::int16_t>(61);
}
inline void User::OrvoUserType(In<std::int16_t> iValue) const {
    return slot<void>(62, iValue);
}
inline std::int16_t User::BPType() const {
    return slot<std::int16_t>(63);
}
inline void User::BPType(In<std::int16_t> iValue) const {
    return slot<void>(64, iValue);
}
inline std::string User::EMailAddress() const {
    return slot<std::string>(65);
}
inline void User::EMailAddress(Text iValue) const {
    return slot<void>(66, iValue);
}
inline std::string User::LastName() const {
    return slot<std::string>(67);
}
inline void User::LastName(Text iValue) const {
    return slot<void>(68, iValue);
}
inline std::string User::FirstName() const {
    return slot<std::string>(69);
}
inline void User::FirstName(Text iValue) const {
    return slot<void>(70, iValue);
}
inline Value User::OrvoCatalogIDs() const {
    return slot<Value>(71);
}
inline void User::OrvoCatalogIDs(Value iValue) const {
    return slot<void>(72, iValue);
}
inline Value User::OrvoAddressIDs() const {
    return slot<Value>(73);
}
inline void User::OrvoAddressIDs(Value iValue) const {
    return slot<void>(74, iValue);
}
inline Value User::AskbookVisibility() const {
    return slot<Value>(75);
}
inline void User::AskbookVisibility(Value iValue) const {
    return slot<void>(76, iValue);
}
inline Value User::OrvoRoles() const {
    return slot<Value>(77);
}
inline void User::OrvoRoles(Value iValue) const {
    return slot<void>(78, iValue);
}
inline std::string User::EmployeeNumber() const {
    return slot<std::string>(79);
}
inline void User::EmployeeNumber(InOut<Text> iValue) const {
    return slot<void>(80, iValue);
}
inline std::string User::ILSServer() const {
    return slot<std::string>(81);
}
inline void User::ILSServer(InOut<Text> iValue) const {
    return slot<void>(82, iValue);
}
inline std::string User::ManagerEMail() const {
    return slot<std::string>(83);
}
inline void User::ManagerEMail(InOut<Text> iValue) const {
    return slot<void>(84, iValue);
}
inline Value User::OrvoDashboardIDs() const {
    return slot<Value>(85);
}
inline void User::OrvoDashboardIDs(Value iValue) const {
    return slot<void>(86, iValue);
}
inline Value User::ExcludedVexIDs() const {
    return slot<Value>(87);
}
inline void User::ExcludedVexIDs(Value iValue) const {
    return slot<void>(88, iValue);
}
inline std::string User::ProfileCN() const {
    return slot<std::string>(89);
}
inline void User::ProfileCN(Text iValue) const {
    return slot<void>(90, iValue);
}
inline std::int32_t User::OrvoBillAddress() const {
    return slot<std::int32_t>(91);
}
inline void User::OrvoBillAddress(In<std::int32_t> iValue) const {
    return slot<void>(92, iValue);
}
inline std::int32_t User::OrvoShipAddress() const {
    return slot<std::int32_t>(93);
}
inline void User::OrvoShipAddress(In<std::int32_t> iValue) const {
    return slot<void>(94, iValue);
}
inline std::int32_t User::PropertyGroupID() const {
    return slot<std::int32_t>(95);
}
inline void User::PropertyGroupID(In<std::int32_t> iValue) const {
    return slot<void>(96, iValue);
}
inline std::string User::WhReqPrefix() const {
    return slot<std::string>(97);
}
inline void User::WhReqPrefix(Text iValue) const {
    return slot<void>(98, iValue);
}
inline bool User::ChargeLines() const {
    return slot<bool>(99);
}
inline void User::ChargeLines(In<bool> iValue) const {
    return slot<void>(100, iValue);
}
inline std::string User::SubstituteBuyer() const {
    return slot<std::string>(101);
}
inline void User::SubstituteBuyer(Text iValue) const {
    return slot<void>(102, iValue);
}
inline Currency User::LimitforRFQ() const {
    return slot<Currency>(103);
}
inline void User::LimitforRFQ(Currency iValue) const {
    return slot<void>(104, iValue);
}
inline Currency User::LimitforContract() const {
    return slot<Currency>(105);
}
inline void User::LimitforContract(Currency iValue) const {
    return slot<void>(106, iValue);
}
inline std::string User::BuyerManager() const {
    return slot<std::string>(107);
}
inline void User::BuyerManager(Text iValue) const {
    return slot<void>(108, iValue);
}
inline Value User::ProjectRole() const {
    return slot<Value>(109);
}
inline void User::ProjectRole(Value iValue) const {
    return slot<void>(110, iValue);
}
inline std::int16_t User::ProjectUserType() const {
    return slot<std::int16_t>(111);
}
inline void User::ProjectUserType(In<std::int16_t> iValue) const {
    return slot<void>(112, iValue);
}
inline Currency User::ApproverLimit() const {
    return slot<Currency>(113);
}
inline void User::ApproverLimit(Currency iValue) const {
    return slot<void>(114, iValue);
}
inline std::string User::ApproverManager() const {
    return slot<std::string>(115);
}
inline void User::ApproverManager(Text iValue) const {
    return slot<void>(116, iValue);
}
inline std::string User::CompanyNumber() const {
    return slot<std::string>(117);
}
inline void User::CompanyNumber(Text iValue) const {
    return slot<void>(118, iValue);
}
inline std::string User::FinancialCompanyAdmin() const {
    return slot<std::string>(119);
}
inline void User::FinancialCompanyAdmin(Text iValue) const {
    return slot<void>(120, iValue);
}
inline std::string User::FinancialCompanyCardUser() const {
    return slot<std::string>(121);
}
inline void User::FinancialCompanyCardUser(Text iValue) const {
    return slot<void>(122, iValue);
}
inline std::string User::CardUserManager() const {
    return slot<std::string>(123);
}
inline void User::CardUserManager(Text iValue) const {
    return slot<void>(124, iValue);
}
inline bool User::OneTimeUser() const {
    return slot<bool>(125);
}
inline void User::OneTimeUser(In<bool> iValue) const {
    return slot<void>(126, iValue);
}
inline std::string User::CostCenter() const {
    return slot<std::string>(127);
}
inline void User::CostCenter(Text iValue) const {
    return slot<void>(128, iValue);
}
inline bool User::OnBehalfOf() const {
    return slot<bool>(129);
}
inline void User::OnBehalfOf(In<bool> iValue) const {
    return slot<void>(130, iValue);
}
inline Value User::OnBehalfOfAdminOffice() const {
    return slot<Value>(131);
}
inline void User::OnBehalfOfAdminOffice(Value iValue) const {
    return slot<void>(132, iValue);
}
inline Value User::OnBehalfOfRequisitioner() const {
    return slot<Value>(133);
}
inline void User::OnBehalfOfRequisitioner(Value iValue) const {
    return slot<void>(134, iValue);
}
inline std::string User::CN() const {
    return slot<std::string>(135);
}
inline std::string User::GUID() const {
    return slot<std::string>(136);
}
inline orvo::Profile User::Profile() const {
    return slot<orvo::Profile>(137);
}
inline std::string User::NTUser() const {
    return slot<std::string>(138);
}
inline std::string User::NTPassword() const {
    return slot<std::string>(139);
}
inline bool User::RegisteredUser() const {
    return slot<bool>(140);
}
inline void User::RegisteredUser(In<bool> iValue) const {
    return slot<void>(141, iValue);
}
inline bool User::GuestUser() const {
    return slot<bool>(142);
}
inline void User::GuestUser(In<bool> iValue) const {
    return slot<void>(143, iValue);
}
inline bool User::IsLocalAdmin() const {
    return slot<bool>(144);
}
inline void User::IsLocalAdmin(In<bool> iValue) const {
    return slot<void>(145, iValue);
}
inline bool User::IsAdmin() const {
    return slot<bool>(146);
}
inline void User::IsAdmin(In<bool> iValue) const {
    return slot<void>(147, iValue);
}
inline bool User::NewMember() const {
    return slot<bool>(148);
}
inline void User::NewMember(In<bool> iValue) const {
    return slot<void>(149, iValue);
}
inline bool User::InvoiceUser() const {
    return slot<bool>(150);
}
inline void User::InvoiceUser(In<bool> iValue) const {
    return slot<void>(151, iValue);
}
inline bool User::CreditCardUser() const {
    return slot<bool>(152);
}
inline void User::CreditCardUser(In<bool> iValue) const {
    return slot<void>(153, iValue);
}
inline bool User::BuyerRole() const {
    return slot<bool>(154);
}
inline void User::BuyerRole(In<bool> iValue) const {
    return slot<void>(155, iValue);
}
inline bool User::RequisitionerRole() const {
    return slot<bool>(156);
}
inline void User::RequisitionerRole(In<bool> iValue) const {
    return slot<void>(157, iValue);
}
inline bool User::ApproverRole() const {
    return slot<bool>(158);
}
inline void User::ApproverRole(In<bool> iValue) const {
    return slot<void>(159, iValue);
}
inline bool User::FinancialRole() const {
    return slot<bool>(160);
}
inline void User::FinancialRole(In<bool> iValue) const {
    return slot<void>(161, iValue);
}
inline bool User::ExternalRole() const {
    return slot<bool>(162);
}
inline void User::ExternalRole(In<bool> iValue) const {
    return slot<void>(163, iValue);
}
inline bool User::SalesRole() const {
    return slot<bool>(164);
}
inline void User::SalesRole(In<bool> iValue) const {
    return slot<void>(165, iValue);
}
inline bool User::CanPublish() const {
    return slot<bool>(166);
}
inline void User::CanPublish(In<bool> iValue) const {
    return slot<void>(167, iValue);
}
inline bool User::CanViewAll() const {
    return slot<bool>(168);
}
inline void User::CanViewAll(In<bool> iValue) const {
    return slot<void>(169, iValue);
}
inline bool User::CanEditAll() const {
    return slot<bool>(170);
}
inline void User::CanEditAll(In<bool> iValue) const {
    return slot<void>(171, iValue);
}
inline bool User::ReceiverRole() const {
    return slot<bool>(172);
}
inline void User::ReceiverRole(In<bool> iValue) const {
    return slot<void>(173, iValue);
}
inline bool User::SalesRepresentativeRole() const {
    return slot<bool>(174);
}
inline void User::SalesRepresentativeRole(In<bool> iValue) const {
    return slot<void>(175, iValue);
}
inline bool User::HasRole(InOut<std::int16_t> iRoleID) const {
    return slot<bool>(176, iRoleID);
}
inline void User::AssignRole(InOut<std::int16_t> iRoleType, InOut<bool> iEnable) const {
    return slot<void>(177, iRoleType, iEnable);
}
inline Value User::OrvoApps() const {
    return slot<Value>(178);
}
inline void User::OrvoApps(InOut<Value> iApps) const {
    return slot<void>(179, iApps);
}
inline void User::ClearOrvoApps() const {
    return slot<void>(180);
}
inline bool User::IsAppAccessAllowed(Text iAppName) const {
    return slot<bool>(181, iAppName);
}
inline bool User::validate() const {
    return slot<bool>(182);
}
inline void User::CheckAppUserAccess(Text iAppName, In<std::int16_t> iAppID) const {
    return slot<void>(183, iAppName, iAppID);
}
inline Value User::SetDefaultURL(In<std::int32_t> i_lAppID, Text i_sURL) const {
    return slot<Value>(184, i_lAppID, i_sURL);
}
inline std::string User::GetDefaultURL(In<std::int32_t> i_lAppID) const {
    return slot<std::string>(185, i_lAppID);
}
inline void User::ChangePassword(InOut<Text> iOldPwd, InOut<Text> iNewPwd) const {
    return slot<void>(186, iOldPwd, iNewPwd);
}
inline Value ServerInfo::GetMemScriptUser() const {
    return slot<Value>(7);
}
inline Value ServerInfo::GetMemScriptCode() const {
    return slot<Value>(8);
}
inline Value ServerInfo::GetServerName() const {
    return slot<Value>(9);
}
inline Value ServerInfo::GetPMMImplementation() const {
    return slot<Value>(10);
}
inline Value ServerInfo::GetProfileContainer() const {
    return slot<Value>(11);
}
inline Value ServerInfo::GetUserContainer() const {
    return slot<Value>(12);
}
inline Value ServerInfo::GetAccountContainer() const {
    return slot<Value>(13);
}
inline Value ServerInfo::GetCookieName() const {
    return slot<Value>(14);
}
inline Value ServerInfo::GetProfileClass() const {
    return slot<Value>(15);
}
inline Value ServerInfo::GetUserClass() const {
    return slot<Value>(16);
}
inline Value ServerInfo::GetAccountClass() const {
    return slot<Value>(17);
}
inline Value ServerInfo::GetUserNamingAttribute() const {
    return slot<Value>(18);
}
inline Value ServerInfo::GetProfileNamingAttribute() const {
    return slot<Value>(19);
}
inline Value ServerInfo::GetAccountNamingAttribute() const {
    return slot<Value>(20);
}
inline Value ServerInfo::GetUserMandatoryAttributes() const {
    return slot<Value>(21);
}
inline std::string ServerInfo::FullUserPath(InOut<Text> iUser) const {
    return slot<std::string>(22, iUser);
}
inline std::string ServerInfo::makeLDAPString(InOut<Text> iHost, InOut<Text> iContainer, InOut<Text> iObject) const {
    return slot<std::string>(23, iHost, iContainer, iObject);
}
inline void ServerInfo::LoadConfigFile(InOut<Object> i_oConfiguration) const {
    return slot<void>(24, i_oConfiguration);
}
inline void ServerInfo::SetConfiguration(InOut<Text> i_sConfigPath) const {
    return slot<void>(25, i_sConfigPath);
}
inline Value ServerInfo::GetConfigFileName() const {
    return slot<Value>(26);
}
inline std::string ServerInfo::ConfigurationPath() const {
    return slot<std::string>(27);
}
inline Object PMMCreator::GetPMMSchema() const {
    return slot<Object>(7);
}
inline Object PMMCreator::GetPMMObject() const {
    return slot<Object>(8);
}
inline Object PMMCreator::GetPMMSearch() const {
    return slot<Object>(9);
}
inline Object PMMCreator::GetPMMValidator() const {
    return slot<Object>(10);
}
inline void Account::Init(InOut<std::int16_t> iUserType) const {
    return slot<void>(7, iUserType);
}
inline Value Account::NTUser() const {
    return slot<Value>(8);
}
inline Value Account::NTPassword() const {
    return slot<Value>(9);
}
inline void PMMAccessor::InitConfigFile(Text sSiteConfigFileName) const {
    return slot<void>(7, sSiteConfigFileName);
}
inline RecordSet PMMAccessor::GetLDAPUsers(In<std::int32_t> productID) const {
    return slot<RecordSet>(8, productID);
}
inline bool Initialize::InitializeConnectionPool(InOut<Value> i_aPoolParameterNames, InOut<Value> i_aPoolParameterValues) const {
    return slot<bool>(7, i_aPoolParameterNames, i_aPoolParameterValues);
}
inline bool Initialize::InitializeCache(InOut<Value> i_aCacheParameterNames, InOut<Value> i_aCacheParameterValues) const {
    return slot<bool>(8, i_aCacheParameterNames, i_aCacheParameterValues);
}
inline Value LdapAccess::GetAttribValue(InOut<Text> iAttribName) const {
    return slot<Value>(7, iAttribName);
}
inline void LdapAccess::SetAttribValue(InOut<Text> iAttribName, InOut<Value> iAttribValue) const {
    return slot<void>(8, iAttribName, iAttribValue);
}
inline void LdapAccess::ClearAttribValue(InOut<Text> iAttribName) const {
    return slot<void>(9, iAttribName);
}
inline void LdapAccess::BindAs(InOut<Text> i_sCN, InOut<Text> i_sUsername, InOut<Text> i_sPwd, InOut<Text> i_sServer, InOut<Text> i_sContainer) const {
    return slot<void>(10, i_sCN, i_sUsername, i_sPwd, i_sServer, i_sContainer);
}
inline void LdapAccess::BindToConfig() const {
    return slot<void>(11);
}
inline Value LdapAccess::GetAttributeName(InOut<Value> iAttributeName) const {
    return slot<Value>(12, iAttributeName);
}
inline Value Profile::GetAttribValue(InOut<Text> iAttribName) const {
    return slot<Value>(7, iAttribName);
}
inline void Profile::SetAttribValue(InOut<Text> iAttribName, InOut<Value> iAttribValue) const {
    return slot<void>(8, iAttribName, iAttribValue);
}
inline void Profile::ClearAttribValue(InOut<Text> iAttribName) const {
    return slot<void>(9, iAttribName);
}
inline void Profile::BindAs(InOut<Text> iCN, InOut<Text> iUsername, InOut<Text> iPwd) const {
    return slot<void>(10, iCN, iUsername, iPwd);
}
inline RecordSet Profile::GetUsers() const {
    return slot<RecordSet>(11);
}
inline void Profile::ClearOrvoApps() const {
    return slot<void>(12);
}
inline bool Profile::HasRole(InOut<std::int16_t> iRoleID) const {
    return slot<bool>(13, iRoleID);
}
inline void Profile::AssignRole(InOut<std::int16_t> iRoleType, InOut<bool> iEnable) const {
    return slot<void>(14, iRoleType, iEnable);
}
inline void Profile::setServerInfo(Text i_sConfigurationPath) const {
    return slot<void>(15, i_sConfigurationPath);
}
inline void Profile::Init(InOut<Text> iCN) const {
    return slot<void>(16, iCN);
}
inline std::string Profile::CN() const {
    return slot<std::string>(17);
}
inline std::int16_t Profile::Locale() const {
    return slot<std::int16_t>(18);
}
inline void Profile::Locale(In<std::int16_t> iLocale) const {
    return slot<void>(19, iLocale);
}
inline std::string Profile::LanguageID() const {
    return slot<std::string>(20);
}
inline void Profile::LanguageID(Text iLanguageID) const {
    return slot<void>(21, iLanguageID);
}
inline Value Profile::OrvoCatalogIDs() const {
    return slot<Value>(22);
}
inline void Profile::OrvoCatalogIDs(Value iCatalogIDs) const {
    return slot<void>(23, iCatalogIDs);
}
inline Value Profile::OrvoDashboardIDs() const {
    return slot<Value>(24);
}
inline void Profile::OrvoDashboardIDs(Value iDashboardIDs) const {
    return slot<void>(25, iDashboardIDs);
}
inline Value Profile::AskbookVisibility() const {
    return slot<Value>(26);
}
inline void Profile::AskbookVisibility(Value iVisibility) const {
    return slot<void>(27, iVisibility);
}
inline Value Profile::OrvoApps() const {
    return slot<Value>(28);
}
inline void Profile::OrvoApps(Value iApps) const {
    return slot<void>(29, iApps);
}
inline Value Profile::Roles() const {
    return slot<Value>(30);
}
inline void Profile::Roles(Value iRoles) const {
    return slot<void>(31, iRoles);
}
inline void Members::BindAs(InOut<Text> iUsername, InOut<Text> iPassword) const {
    return slot<void>(7, iUsername, iPassword);
}
inline void Members::setServerInfo(Text i_sConfigurationPath) const {
    return slot<void>(8, i_sConfigurationPath);
}
inline orvo::User Members::CreateUserOnFormsLogin(InOut<Text> iCommonName, InOut<Text> iPassword) const {
    return slot<orvo::User>(9, iCommonName, iPassword);
}
inline orvo::User Members::CreateUser(InOut<Text> iCommonName, InOut<Text> iPassword) const {
    return slot<orvo::User>(10, iCommonName, iPassword);
}
inline void Members::DeleteUser(InOut<Text> iCommonName) const {
    return slot<void>(11, iCommonName);
}
inline orvo::User Members::GetUserFromGUID(InOut<Text> iGUID) const {
    return slot<orvo::User>(12, iGUID);
}
inline RecordSet Members::GetOrvoUsers(Value iCriteria, Text iSortFields, Value iPageSize) const {
    return slot<RecordSet>(13, iCriteria, iSortFields, iPageSize);
}
inline std::string Members::GetLastPageValue() const {
    return slot<std::string>(14);
}
inline RecordSet Members::GetOrvoMembersHavingRole(InOut<std::int16_t> iRole, InOut<Text> iSortFields) const {
    return slot<RecordSet>(15, iRole, iSortFields);
}
inline RecordSet Members::GetOrvoMembersHavingRoleEx(InOut<std::int16_t> iRole, InOut<Value> iCriteria, InOut<Text> iSortFields) const {
    return slot<RecordSet>(16, iRole, iCriteria, iSortFields);
}
inline Value Members::GetAttribValue(InOut<Text> iAttribName) const {
    return slot<Value>(17, iAttribName);
}
inline void Members::SetAttribValue(InOut<Text> iAttribName, InOut<Value> iAttribValue) const {
    return slot<void>(18, iAttribName, iAttribValue);
}
inline orvo::User Members::CreateUserWithAttributes(Text i_sUsername, Text i_sPassword, InOut<Value> i_aAttrNames, InOut<Value> i_aAttrValues) const {
    return slot<orvo::User>(19, i_sUsername, i_sPassword, i_aAttrNames, i_aAttrValues);
}
inline RecordSet Members::GetOrvoUsersEx(Value iCriteria, Value i_vAttributeNames, Text iSortFields, Value iPageSize) const {
    return slot<RecordSet>(20, iCriteria, i_vAttributeNames, iSortFields, iPageSize);
}
inline RecordSet Profiles::AsRecordset() const {
    return slot<RecordSet>(7);
}
inline bool Profiles::DeleteProfile(InOut<Text> iCommonName) const {
    return slot<bool>(8, iCommonName);
}
inline orvo::Profile Profiles::CreateProfile(InOut<Text> iCommonName) const {
    return slot<orvo::Profile>(9, iCommonName);
}
inline void Profiles::BindAs(InOut<Text> iUsername, InOut<Text> iPwd) const {
    return slot<void>(10, iUsername, iPwd);
}
inline Value Validator::ValidateCredentials(InOut<Value> iVarUserID, InOut<Value> iVarPassword, InOut<Value> iVarOriginalUrl) const {
    return slot<Value>(7, iVarUserID, iVarPassword, iVarOriginalUrl);
}
inline Value Validator::ValidatePassword(InOut<Value> iUserId, InOut<Value> iPassword) const {
    return slot<Value>(8, iUserId, iPassword);
}
inline void Validator::setServerInfo(Text i_sConfigurationPath) const {
    return slot<void>(9, i_sConfigurationPath);
}
inline void Validator::ChangePassword(InOut<Text> username, InOut<Text> oldpassword, InOut<Text> newpassword) const {
    return slot<void>(10, username, oldpassword, newpassword);
}

}  // namespace client
}  // namespace orvo
