#include "host/idl/member_failures.h"

#include <cstdio>

#include "component/common/OrvoMemErrors.h"
#include "component/server/class_list.h"
#include "host/idl/suite_classes.h"
#include "suite/configuration/ini_parser.h"
#include "suite/directory/policy/result_codes.h"
#include "suite/store/store_error.h"

namespace orvo {
namespace {

using configuration_error::file_not_found;
using configuration_error::file_not_readable;
using configuration_error::malformed_file;
using runtime_error::invalid_call;
using runtime_error::no_current_record;
using runtime_error::object_not_set;
using runtime_error::out_of_memory;
using runtime_error::overflow;
using runtime_error::type_mismatch;

constexpr std::int32_t setting_not_valid = error_number(0x8007203F);

constexpr const char* store_is_away = "the site's store of logins (StoreURL) is not to be had";

template <auto M>
consteval MemberFailure raises(std::int32_t number, const char* when) {
    using Place = detail::place_of<M>;
    return {table_of<typename Place::owner>.name, Place::row().name, number, when};
}

constexpr MemberFailure failures[] = {
    raises<&User::BindAs>(emErrServerInfoNotCreated, "no server or users' container is configured"),
    raises<&User::BindAs>(emErrUserDoesNotExist, "the common name is empty"),
    raises<&User::BindAs>(no_such_entry, "nobody has this name"),
    raises<&User::BindToGuid>(no_current_record, "nobody has this GUID"),
    raises<&User::setServerInfo>(file_not_found, "the path names no file"),
    raises<&User::setServerInfo>(malformed_file, "the file is no configuration"),
    raises<&User::GetAttribValue>(object_not_set, "the object is not bound"),
    raises<&User::SetAttribValue>(object_not_set, "the object is not bound"),
    raises<&User::ClearAttribValue>(object_not_set, "the object is not bound"),
    raises<&User::HasRole>(object_not_set, "the object is not bound"),
    raises<&User::AssignRole>(object_not_set, "the object is not bound"),
    raises<&User::CheckAppUserAccess>(emErrAppNoAccess,
                                      "it is neither the user's nor, in its stead, the profile's"),
    raises<&User::ChangePassword>(emErrPwdNotCorrect, "the old password is refused, whatever for"),

    raises<&ServerInfo::LoadConfigFile>(type_mismatch, "it is given no configuration"),
    raises<&ServerInfo::SetConfiguration>(file_not_found, "the path names no file"),
    raises<&ServerInfo::SetConfiguration>(file_not_readable, "it is no file, or larger than 1 MiB"),
    raises<&ServerInfo::SetConfiguration>(malformed_file, "the file is no configuration"),

    raises<&PMMCreator::GetPMMSchema>(object_not_set, "no provider is configured"),
    raises<&PMMCreator::GetPMMObject>(object_not_set, "no provider is configured"),
    raises<&PMMCreator::GetPMMSearch>(object_not_set, "no provider is configured"),
    raises<&PMMCreator::GetPMMValidator>(object_not_set, "no provider is configured"),

    raises<&Account::Init>(no_such_entry, "there is no account for this type of users"),
    raises<&Account::NTUser>(object_not_set, "Init has not been called"),
    raises<&Account::NTPassword>(object_not_set, "Init has not been called"),

    raises<&PMMAccessor::InitConfigFile>(file_not_found, "the path names no file"),
    raises<&PMMAccessor::InitConfigFile>(malformed_file, "the file is no configuration"),
    raises<&PMMAccessor::GetLDAPUsers>(object_not_set, "InitConfigFile has not been called"),

    raises<&Initialize::InitializeConnectionPool>(
        setting_not_valid, "a name is unknown or given twice, a number is out of its range"),
    raises<&Initialize::InitializeCache>(
        setting_not_valid, "a name is unknown or given twice, a number is out of its range"),

    raises<&LdapAccess::GetAttribValue>(object_not_set, "the object is not bound"),
    raises<&LdapAccess::SetAttribValue>(object_not_set, "the object is not bound"),
    raises<&LdapAccess::ClearAttribValue>(object_not_set, "the object is not bound"),
    raises<&LdapAccess::BindToConfig>(file_not_found,
                                      "the folder Config beside the site's file lacks the one that "
                                      "ConfigFileName names"),
    raises<&LdapAccess::BindToConfig>(file_not_readable, "no ConfigFileName is configured"),
    raises<&LdapAccess::GetAttributeName>(object_not_set, "BindToConfig has not been called"),

    raises<&Profile::GetAttribValue>(object_not_set, "the object is not bound"),
    raises<&Profile::SetAttribValue>(object_not_set, "the object is not bound"),
    raises<&Profile::ClearAttribValue>(object_not_set, "the object is not bound"),
    raises<&Profile::BindAs>(no_such_entry, "no profile has this name"),
    raises<&Profile::GetUsers>(object_not_set, "the object is not bound"),
    raises<&Profile::HasRole>(object_not_set, "the object is not bound"),
    raises<&Profile::AssignRole>(object_not_set, "the object is not bound"),
    raises<&Profile::setServerInfo>(file_not_found, "the path names no file"),
    raises<&Profile::setServerInfo>(malformed_file, "the file is no configuration"),

    raises<&Members::setServerInfo>(file_not_found, "the path names no file"),
    raises<&Members::setServerInfo>(malformed_file, "the file is no configuration"),
    raises<&Members::CreateUserOnFormsLogin>(entry_already_exists, "the name is taken"),
    raises<&Members::CreateUser>(emErrNotBoundToMembers, "there are no credentials to bind with"),
    raises<&Members::CreateUser>(entry_already_exists, "the name is taken"),
    raises<&Members::DeleteUser>(emErrNotBoundToMembers, "there are no credentials to bind with"),
    raises<&Members::DeleteUser>(no_such_entry, "nobody has this name"),
    raises<&Members::GetUserFromGUID>(no_current_record, "nobody has this GUID"),
    raises<&Members::GetOrvoUsers>(type_mismatch, "the criteria are left out or no array"),
    raises<&Members::GetOrvoUsers>(overflow, "the page size or the number of rows is above 32767"),
    raises<&Members::GetOrvoUsers>(no_current_record, "the page size is 0 and nobody is found"),
    raises<&Members::GetAttribValue>(object_not_set, "the object is not bound"),
    raises<&Members::SetAttribValue>(object_not_set, "the object is not bound"),
    raises<&Members::CreateUserWithAttributes>(entry_already_exists, "the name is taken"),
    raises<&Members::GetOrvoUsersEx>(type_mismatch, "the criteria are left out or no array"),
    raises<&Members::GetOrvoUsersEx>(setting_not_valid,
                                     "there are no columns, or one without name"),

    raises<&Profiles::DeleteProfile>(emErrNotBoundToProfiles, "BindAs has not been called"),
    raises<&Profiles::DeleteProfile>(no_such_entry, "no profile has this name"),
    raises<&Profiles::CreateProfile>(entry_already_exists, "the name is taken"),

    raises<&Validator::ValidateCredentials>(
        membership_failed,
        "there is no web page, no cookie's name in the configuration or no GUID"),
    raises<&Validator::setServerInfo>(file_not_found, "the path names no file"),
    raises<&Validator::setServerInfo>(malformed_file, "the file is no configuration"),
    raises<&Validator::ChangePassword>(emErrPwdNotCorrect,
                                       "the old password is refused, whatever for"),

    raises<&Configuration::LoadSiteConfigurationFile>(file_not_found, "the path names no file"),
    raises<&Configuration::LoadSiteConfigurationFile>(malformed_file,
                                                      "the file is no configuration"),
    raises<&Configuration::LoadConfigurationFile>(file_not_found, "the path names no file"),
    raises<&Configuration::LoadConfigurationFile>(malformed_file, "the file is no configuration"),
    raises<&Configuration::LoadSiteConfig>(file_not_found,
                                           "ORVO_SITE_CONFIG names a file that is not there"),
    raises<&Configuration::LoadSiteConfig>(malformed_file, "the file is no configuration"),

    raises<&Audit::IsOn>(malformed_file, "section [AUDIT] says what cannot be"),
    raises<&Audit::Record>(malformed_file, "section [AUDIT] says what cannot be"),
    raises<&Audit::Record>(file_not_readable, "the site says Sync, and the file cannot be written"),

    raises<&Throttle::IsOn>(malformed_file, "section [THROTTLE] says what cannot be"),
    raises<&Throttle::Admit>(malformed_file, "section [THROTTLE] says what cannot be"),

    raises<&FilterConnector::CreateUserWithGUID>(
        invalid_call, "the GUID is empty, or longer than 256 characters"),
    raises<&FilterConnector::CreateUserWithGUID>(out_of_memory, "there are 100,000 records"),
    raises<&FilterConnector::RegisterLogin>(invalid_call,
                                            "the user has no name, or the GUID is empty or longer "
                                            "than 256 characters"),
    raises<&FilterConnector::RegisterLogin>(type_mismatch,
                                            "the applications are no array of numbers"),
    raises<&FilterConnector::RegisterLogin>(out_of_memory, "there are 100,000 logins"),
    raises<&FilterUser::Save>(out_of_memory, "the record was forgotten, and there are 100,000"),
    raises<&FilterConnector::FindUserByGUID>(store::store_unreachable, store_is_away),
    raises<&FilterConnector::CreateUserWithGUID>(store::store_unreachable, store_is_away),
    raises<&FilterUser::Save>(store::store_unreachable, store_is_away),
    raises<&FilterConnector::IsLoggedIn>(store::store_unreachable, store_is_away),
    raises<&FilterConnector::RegisterLogin>(store::store_unreachable, store_is_away),
    raises<&FilterConnector::Logout>(store::store_unreachable, store_is_away),
    raises<&authfilter::LiveLogins::LoginsOf>(store::store_unreachable, store_is_away),
    raises<&authfilter::LiveLogins::EndLogin>(store::store_unreachable, store_is_away),
    raises<&authfilter::LiveLogins::EndOthers>(store::store_unreachable, store_is_away),
    raises<&authfilter::LiveLogins::EndAllOf>(store::store_unreachable, store_is_away),
    raises<&authfilter::LiveLogins::put_MostOfOneUser>(invalid_call, "it is below 1"),
};

struct NumberText {
    std::int32_t number;
    const char* text;
};
constexpr NumberText other_numbers[] = {
    {membership_failed, "The login cannot be finished."},
    {store::store_unreachable, "The shared store cannot be used at the moment."},
    {file_not_readable, "The file cannot be read, or not be written."},
    {malformed_file, "The configuration file is malformed."},
};

}  // namespace

std::span<const MemberFailure> member_failures() { return failures; }

std::string shown_number(std::int32_t number) {
    if (number >= 0) return std::to_string(number);
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(number));
    return text;
}

std::string number_text(std::int32_t number) {
    for (const MemError& error : mem_errors)
        if (error.value == number) return error.text;
    for (const NumberText& other : other_numbers)
        if (other.number == number) return other.text;
    if (const TextView text = runtime_error_text(number); !text.empty())
        return to_utf8(text) + (text.ends_with(u'.') ? "" : ".");
    for (int code = 1; code < 100; ++code)
        if (directory::number_of_code(code) == number) {
            const Text told = directory::directory_failure(code, {}).description;
            return to_utf8(TextView(told).substr(told.find(u' ') + 1));
        }
    return {};
}

}  // namespace orvo
