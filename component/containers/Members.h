#pragma once

#include "component/entries/User_table.h"
#include "platform/objects/recordset/record_set_contract.h"

namespace orvo {

class RowFields;

// The container that holds every user. Bind it once with a directory account (BindAs; in a web page
// the session's account serves without being asked for); then users are created, found, searched
// and deleted with that account's rights. Users come back bound with the same account.
//
// What was done before a failure stays done: a user who was created stays when setting an attribute
// of the new entry is refused. What fails is logged and raised again by each member that it passes
// through, but for setServerInfo and CreateUserOnFormsLogin, which pass it on.
//
// Used by the thread that made it. Users and record sets that it answers are the caller's own.
class Members final : public ObjectControl {
public:
    Members() { IObjectControl_Activate(); }
    ~Members() { IObjectControl_Deactivate(); }

    // The credentials are kept also when the bind is refused. A name that is empty or blank, as a
    // page has it before a login, returns quietly and leaves the container unbound; what needs it
    // fails then.
    void BindAs(Text& iUsername, Secret& iPassword);
    // Loads a site configuration file into the thread's shared settings; an empty path leaves them.
    void setServerInfo(const Text& i_sConfigurationPath);

    // For a registration page, where nobody is logged in: binds as the membership script account,
    // and stays bound so.
    Ref<User> CreateUserOnFormsLogin(Text& iCommonName, Secret& iPassword);
    // Raises emErrNotBoundToMembers where there is no binding to be had, entry_already_exists for a
    // common name that is taken.
    Ref<User> CreateUser(Text& iCommonName, Secret& iPassword);
    // Binds anew first, always. Raises no_such_entry for a user who is not there.
    void DeleteUser(Text& iCommonName);
    // Raises 3021 (no current record) for a GUID that nobody has. Of several, the first in the
    // search's order.
    Ref<User> GetUserFromGUID(Text& iGUID);

    // Searches. Criteria are an array of filter items without their parentheses ("mail=a*"), or an
    // object reference (normally an empty one) for none; left out, the search raises 13. "NOT" in
    // an item becomes "!". Rows come in the provider's order, whatever the sort fields say.
    //
    // A page of as many rows as asked for leaves a bookmark: the last row's cn and "!", to go on
    // with the criterion "cn>=" and the bookmark. A shorter page leaves the former one. With a page
    // size of 0 no rows are a full page, which has no last row: that raises 3021.
    Object GetOrvoUsers(const Variant& iCriteria, const Text& iSortFields,
                        const Variant& iPageSize);
    Text GetLastPageValue();
    // Users who have the role themselves, or through their profile where they have none at all, as
    // a record set of their own with BusinessPartnerID, mail, cn, givenName and sn. These are two
    // searches: a user whose roles change between them may stand there twice.
    Object GetOrvoMembersHavingRole(std::int16_t& iRole, Text& iSortFields);
    Object GetOrvoMembersHavingRoleEx(std::int16_t& iRole, Variant& iCriteria, Text& iSortFields);

    // Attributes of the container's own entry; 91 on an unbound container.
    Variant GetAttribValue(Text& iAttribName);
    void SetAttribValue(Text& iAttribName, Variant& iAttribValue);

    // CreateUserOnFormsLogin, then one attribute after the other: names and values from index 0,
    // whatever the lower bound; a value is a single one or an array of them.
    Ref<User> CreateUserWithAttributes(const Text& i_sUsername, const Secret& i_sPassword,
                                       Variant& i_aAttrNames, Variant& i_aAttrValues);
    // GetOrvoUsers with columns of one's own, and without a bookmark.
    Object GetOrvoUsersEx(const Variant& iCriteria, const Variant& i_vAttributeNames,
                          const Text& iSortFields, const Variant& iPageSize);

    void IObjectControl_Activate() override;
    void IObjectControl_Deactivate() override {}
    bool IObjectControl_CanBePooled() override { return false; }

private:
    Ref<RecordSet> QueryMembers(Text& filter, const Variant& page_size, const Variant& attributes);
    Ref<RecordSet> QueryMembersEx(Text& filter);
    static void AddUserToResultSet(RowFields& source, RowFields& target);
    static void CloseRecordSEt(const Ref<RecordSet>& records);
    Text profiles_having(std::int16_t role);
    void bind_as_stored();
    void bind_as_stored(const Ref<User>& user, Text name);

    std::optional<PMMCreator> mPMMCreator;  // in front of what it made, which is released first
    Ref<DirectoryEntry> mContainer;
    DirectoryAccount mAccount;
    Object mApplication;
    Text mLastPageValue;
};

// clang-format off
template <>
inline constexpr auto table_of<Members> = describe<Members>(
    "IMembers", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e718",
    about("The container of all users: creating, finding, deleting."),
    method<&Members::BindAs>("BindAs", "iUsername", "iPassword")
        .help("Binds to the users' container with a directory account. An empty name leaves it "
              "unbound."),
    method<&Members::setServerInfo>("setServerInfo", "i_sConfigurationPath")
        .help("Loads a site configuration file into the settings that all objects of the thread "
              "share."),
    method<&Members::CreateUserOnFormsLogin>("CreateUserOnFormsLogin", "iCommonName", "iPassword")
        .help("Creates a user with the membership script account's rights, and stays bound with "
              "them."),
    method<&Members::CreateUser>("CreateUser", "iCommonName", "iPassword")
        .help("Creates a user with a new GUID, the configured classes and mandatory attributes, "
              "and answers it bound."),
    method<&Members::DeleteUser>("DeleteUser", "iCommonName")
        .help("Binds anew and deletes the user of this common name."),
    method<&Members::GetUserFromGUID>("GetUserFromGUID", "iGUID")
        .help("The user with this GUID, bound."),
    method<&Members::GetOrvoUsers>("GetOrvoUsers", optional("iCriteria"), optional("iSortFields"),
                                   optional("iPageSize"))
        .help("Searches users. Criteria are an array of filter items without their parentheses, "
              "or an object for none. A full page leaves a bookmark."),
    method<&Members::GetLastPageValue>("GetLastPageValue")
        .help("The bookmark that a full page left: the last row's name and an exclamation mark."),
    method<&Members::GetOrvoMembersHavingRole>("GetOrvoMembersHavingRole", "iRole",
                                               optional("iSortFields"))
        .help("The users with a role: their own or, where they have none at all, their "
              "profile's."),
    method<&Members::GetOrvoMembersHavingRoleEx>("GetOrvoMembersHavingRoleEx", "iRole",
                                                 optional("iCriteria"), optional("iSortFields"))
        .help("The users with a role, their own or their profile's, who meet criteria."),
    method<&Members::GetAttribValue>("GetAttribValue", "iAttribName")
        .help("An attribute of the container's own entry."),
    method<&Members::SetAttribValue>("SetAttribValue", "iAttribName", "iAttribValue")
        .help("Writes an attribute of the container's own entry."),
    method<&Members::CreateUserWithAttributes>("CreateUserWithAttributes", "i_sUsername",
                                               "i_sPassword", "i_aAttrNames", "i_aAttrValues")
        .help("Creates a user with the membership script account's rights, then writes one "
              "attribute after the other."),
    method<&Members::GetOrvoUsersEx>("GetOrvoUsersEx", optional("iCriteria"),
                                     optional("i_vAttributeNames"), optional("iSortFields"),
                                     optional("iPageSize"))
        .help("Searches users as GetOrvoUsers does, with columns of one's own and without a "
              "bookmark."));
// clang-format on

extern template struct detail::callee<Members>;

template <>
inline constexpr auto class_of<Members> = describe_class<Members, ObjectControl>(
    "OrvoMembership.Members", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e708");

}  // namespace orvo
