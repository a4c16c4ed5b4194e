#include "component/containers/Members.h"

#include <algorithm>
#include <limits>

#include "component/common/GUIDGenerator.h"
#include "component/common/Index16.h"
#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "component/common/OrvoMemErrors.h"
#include "component/common/password_value.h"
#include "component/common/web_page.h"
#include "component/config/SharedServerInfo.h"
#include "component/containers/record_fields.h"
#include "platform/interfaces/create.h"
#include "platform/values/wiped.h"

namespace orvo {
namespace {

constexpr const char16_t* create_user = u"OrvoMembership.Members.CreateUser";
constexpr const char16_t* not_bound = u"Not bound to the Members Organizational Unit";

// DeleteUser raises it as well, and names CreateUser as the source all the same: an unbound
// container is one failure, whichever member needed the binding.
[[noreturn]] void raise_not_bound() {
    throw Failure(emErrNotBoundToMembers, create_user, not_bound);
}

Ref<Dictionary> attributes_of_new_user(ServerInfo& info, const Text& name, const Secret& password) {
    auto attributes = Ref<Dictionary>::from(create_object(dictionary_progid));
    const auto add = [&](Variant key, Variant value) {
        call<&Dictionary::Add>(attributes, key, value);
    };
    add(u"cn", name);
    add(u"OrvoGUID", NewGUIDText());
    Variant password_name = u"userPassword";
    Wiped lent(password_value(password));
    call<&Dictionary::Add>(attributes, password_name, lent.value);
    const Text naming_attribute = info.user_naming_attribute();
    if (naming_attribute != u"cn") add(naming_attribute, name);
    for (const Variant& mandatory : info.GetUserMandatoryAttributes().to<Values>())
        add(mandatory, Text());
    const Values classes = info.GetUserClass().to<Values>();
    Values copy(classes.lower_bound(), classes.count());
    any_index16(classes.lower_bound(), classes.upper_bound(), [&](std::int32_t i) {
        copy[i] = classes[i];
        return false;
    });
    add(u"objectClass", std::move(copy));
    return attributes;
}

// The values of one attribute: an array as a copy that begins at 0, anything else as its only one.
Values value_list(const Variant& value) {
    if (!value.is_array()) return {value};
    const Values given = value.to<Values>();
    const std::int64_t count = std::int64_t{given.upper_bound()} + 1;
    if (count > std::numeric_limits<std::int32_t>::max())
        raise_runtime_error(runtime_error::out_of_memory);
    Values list(0, static_cast<std::int32_t>(count));
    for (std::int32_t i = std::max(given.lower_bound(), 0); i < count; ++i) list[i] = given[i];
    return list;
}

}  // namespace

void Members::IObjectControl_Activate() {
    trapped(u"OrvoMembership.Members.IObjectControl_Activate", [&] {
        mPMMCreator.emplace();
        // A missing session is noted in the name of User's activation, as Profile notes it. A
        // missing object context is not: members are used outside of pages, too.
        if (!runs_in_page(u"Session", {u"OrvoMembership.User.IObjectControl_Activate", nullptr,
                                       u"No session in objectcontext"}))
            return;
        load_site_configuration();
        const Object session = context_item(u"Session");
        mApplication = context_item(u"Application");
        mAccount = account_of(session);
    });
}

void Members::setServerInfo(const Text& i_sConfigurationPath) {
    if (i_sConfigurationPath.empty()) return;
    Text path = i_sConfigurationPath;
    shared_server_info()->SetConfiguration(path);
}

void Members::BindAs(Text& iUsername, Secret& iPassword) {
    constexpr const char16_t* source = u"OrvoMembership.Members.BindAs";
    trapped(source, [&] {
        mAccount = {iUsername, iPassword.clone()};
        mContainer = nullptr;
        ServerInfo& info = settings_or_raise(emErrServerInfoNotCreated, source,
                                             u"Could not retrieve LDAP server information");
        if (trimmed(iUsername).empty()) {
            // Without a pending error nothing is raised: CreateUser and DeleteUser, which bind
            // first, go on from here to their own failure for an unbound container.
            HandleError(source, u"Cannot bind user with empty name.");
            return;
        }
        auto container = mPMMCreator->GetPMMObject();
        bind_entry(container, info.user_container(), Text(), iUsername, iPassword);
        mContainer = std::move(container);
    });
}

void Members::bind_as_stored() {
    DirectoryAccount given = mAccount.copy();
    BindAs(given.name, given.secret);
}

void Members::bind_as_stored(const Ref<User>& user, Text name) {
    DirectoryAccount given = mAccount.copy();
    call<&User::BindAs>(user, name, given.name, given.secret);
}

Ref<User> Members::CreateUser(Text& iCommonName, Secret& iPassword) {
    const auto reword = [&](Failure& failure) {
        if (!contains_ignoring_case(failure.description,
                                    u"(68) The specified entry already exists."))
            return;
        failure.number = entry_already_exists;
        failure.source = create_user;
        failure.description =
            u"Unable to add user:'" + iCommonName + u"'. The error is: " + failure.description;
    };
    return trapped_rewording(create_user, reword, [&] {
        if (!mContainer) bind_as_stored();
        if (!mContainer) raise_not_bound();
        ServerInfo& info = settings_or_raise(emErrNotBoundToMembers, create_user, not_bound);
        Object attributes = attributes_of_new_user(info, iCommonName, iPassword).object();
        Variant classes = Values{info.GetUserClass()};
        Text naming_attribute = info.user_naming_attribute();
        call<&DirectoryEntry::CreateChild>(mContainer, classes, naming_attribute, attributes);
        auto user = Gen_GetComponent<User>(u"OrvoMembership.User");
        bind_as_stored(user, iCommonName);
        return user;
    });
}

Ref<User> Members::CreateUserOnFormsLogin(Text& iCommonName, Secret& iPassword) {
    settings_or_raise(emErrNotBoundToMembers, create_user, not_bound);
    DirectoryAccount account = script_account();
    BindAs(account.name, account.secret);
    return CreateUser(iCommonName, iPassword);
}

Ref<User> Members::CreateUserWithAttributes(const Text& i_sUsername, const Secret& i_sPassword,
                                            Variant& i_aAttrNames, Variant& i_aAttrValues) {
    constexpr const char16_t* source = u"OrvoMembership.Members.CreateUserWithAttributes";
    return trapped(source, [&] {
        Text name = i_sUsername;
        Secret password = i_sPassword.clone();
        auto user = CreateUserOnFormsLogin(name, password);
        if (!user)
            throw Failure(membership_failed, source,
                          u"Creation of the user: " + i_sUsername + u" failed");
        const Values names = i_aAttrNames.to<Values>();
        for (std::int32_t i = 0; i <= names.upper_bound(); ++i) {
            Variant values = value_list(element(i_aAttrValues, i));
            Text attribute = names[i].to<Text>();
            call<&User::SetAttribValue>(user, attribute, values);
        }
        return user;
    });
}

void Members::DeleteUser(Text& iCommonName) {
    constexpr const char16_t* source = u"OrvoMembership.Members.DeleteUser";
    const auto reword = [&](Failure& failure) {
        if (failure.number != no_such_entry) return;
        failure.source = source;
        failure.description =
            u"User with common name '" + iCommonName + u"' doesn't exist in the directory";
    };
    trapped_rewording(source, reword, [&] {
        bind_as_stored();
        if (!mContainer) raise_not_bound();
        ServerInfo& info = *shared_server_info();
        Text class_name = info.first_user_class();
        Text entry_name =
            info.user_naming_attribute() + u"=" + iCommonName + u"," + info.user_container();
        call<&DirectoryEntry::DeleteChild>(mContainer, class_name, entry_name);
    });
}

Ref<User> Members::GetUserFromGUID(Text& iGUID) {
    return trapped(u"OrvoMembership.Members.GetUserFromGUID", [&] {
        auto user = Gen_GetComponent<User>(u"OrvoMembership.User");
        const Variant criteria = Values{u"OrvoGUID=" + iGUID};
        const auto found = Ref<RecordSet>::from(GetOrvoUsers(criteria, Text(), Variant::missing()));
        bind_as_stored(user, field_value(found, u"cn").to<Text>());
        return user;
    });
}

Variant Members::GetAttribValue(Text& iAttribName) {
    return trapped(u"OrvoMembership.Members.GetAttribValue",
                   [&] { return call<&DirectoryEntry::GetValues>(mContainer, iAttribName); });
}

void Members::SetAttribValue(Text& iAttribName, Variant& iAttribValue) {
    constexpr const char16_t* source = u"OrvoMembership.Members.SetAttribValue";
    const auto reword = [&](Failure& failure) {
        failure.source = source;
        failure.description = u"Error setting the value for attribute: " + iAttribName;
    };
    trapped_rewording(source, reword, [&] {
        call<&DirectoryEntry::SetValues>(mContainer, iAttribName, iAttribValue);
    });
}

template struct detail::callee<Members>;

}  // namespace orvo
