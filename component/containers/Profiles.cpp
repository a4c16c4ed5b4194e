#include "component/containers/Profiles.h"

#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "component/common/OrvoMemErrors.h"
#include "component/config/SharedServerInfo.h"
#include "platform/abi/call.h"
#include "platform/abi/create.h"
#include "platform/abi/late_call.h"
#include "platform/automation/values.h"
#include "platform/dictionary/contract.h"
#include "platform/recordset/contract.h"

namespace orvo {
namespace {

constexpr std::int32_t most_profiles = 1000;

[[noreturn]] void raise_not_bound(const char16_t* source) {
    throw Failure(emErrNotBoundToProfiles, source,
                  u"Object not bound to Profiles organizational unit. Call BindAs first");
}

}  // namespace

void Profiles::IObjectControl_Activate() {
    trapped(u"OrvoMembership.Profiles.IObjectControl", [&] {
        mPMMCreator.emplace();
        // The entries name the user's class, as they always did.
        constexpr const char16_t* source = u"OrvoMembership.User.IObjectControl_Activate";
        switch (Gen_GetIntrinsicState(u"Session")) {
            case -1:
                return LogError(source, u"No objectcontext");
            case -2:
                return LogError(source, u"No Session object in ObjectContext");
        }
        load_site_configuration();
        const Object session = context_item(u"Session");
        Text user = late::value_of(session, {u"REMOTE_ACCOUNT"}).to<Text>();
        Text password = late::value_of(session, {u"REMOTE_PASSWORD"}).to<Text>();
        BindAs(user, password);
    });
}

void Profiles::BindAs(Text& iUsername, Text& iPwd) {
    constexpr const char16_t* source = u"OrvoMembership.Profiles.BindAs";
    trapped(source, [&] {
        mUsername = iUsername;
        mPassword = Secret(iPwd);
        // Asking for the settings makes them, so this cannot happen; it is tested all the same.
        ServerInfo* info = shared_server_info();
        if (info == nullptr)
            throw Failure(emErrServerInfoNotCreated, source,
                          u"OrvoMembership.ServerInfo was not created");
        mContainer = mPMMCreator->GetPMMObject();
        Text server = info->server_name();
        Text container = info->profile_container();
        Text name;
        Variant attributes = Values();
        call<&DirectoryEntry::Bind>(mContainer, server, container, name, iUsername, iPwd,
                                    attributes);
    });
}

Object Profiles::AsRecordset() {
    constexpr const char16_t* source = u"OrvoMembership.Profiles.AsRecordset";
    return trapped(source, [&] {
        PMMCreator factory;
        // As above.
        ServerInfo* info = shared_server_info();
        if (info == nullptr)
            throw Failure(emErrServerInfoNotCreated, source, u"ServerInfo not available");
        const auto search = factory.GetPMMSearch();
        Text server = info->server_name();
        Text container = info->profile_container();
        Text user = mUsername;
        Text password = from_utf8(mPassword.reveal());
        call<&DirectorySearch::Connect>(search, server, container, user, password);
        Text filter = u"(objectClass=" + info->profile_class() + u")";
        Variant columns = Values{u"cn"};
        return call<&DirectorySearch::Execute>(search, filter, columns, most_profiles);
    });
}

Ref<Profile> Profiles::bound_profile(Text& name) {
    auto profile = Gen_GetComponent<Profile>(u"OrvoMembership.Profile");
    Text user = mUsername;
    Text password = from_utf8(mPassword.reveal());
    call<&Profile::BindAs>(profile, name, user, password);
    return profile;
}

bool Profiles::DeleteProfile(Text& iCommonName) {
    constexpr const char16_t* source = u"OrvoMembership.Profiles.DeleteProfile";
    return trapped(source, [&] {
        if (!mContainer) raise_not_bound(source);
        const Object found = call<&Profile::GetUsers>(bound_profile(iCommonName));
        const auto users = found ? Ref<RecordSet>::from(found) : nullptr;
        const bool is_unused = !users || call<&RecordSet::IsEof>(users);
        if (is_unused) {
            ServerInfo& info = *shared_server_info();
            Text class_name = info.profile_class();
            Text entry_name = info.profile_naming_attribute() + u"=" + iCommonName + u"," +
                              info.profile_container();
            call<&DirectoryEntry::DeleteChild>(mContainer, class_name, entry_name);
        }
        if (users) call<&RecordSet::Close>(users);
        return is_unused;
    });
}

Ref<Profile> Profiles::CreateProfile(Text& iCommonName) {
    constexpr const char16_t* source = u"OrvoMembership.Profiles.CreateProfile";
    const auto rephrase = [&](Failure& failure) {
        if (failure.number != entry_already_exists) return;
        failure.source = source;
        failure.description = u"Unable to add profile with profile name:'" + iCommonName +
                              u"'. The profile already exists.";
    };
    return trapped(source, rephrase, [&] {
        ServerInfo& info = *shared_server_info();
        if (!mContainer) {
            mPMMCreator.emplace();
            mContainer = mPMMCreator->GetPMMObject();
            Text user = info.script_user();
            Text password = info.script_code();
            BindAs(user, password);
        }
        if (!mContainer) raise_not_bound(source);
        const auto attributes = Ref<Dictionary>::from(create_object(dictionary_progid));
        const auto add = [&](Variant key, Variant value) {
            call<&Dictionary::Add>(attributes, key, value);
        };
        Text naming_attribute = info.profile_naming_attribute();
        add(naming_attribute, iCommonName);
        add(u"objectClass", info.GetProfileClass());
        Variant classes = Values{info.GetProfileClass()};
        Object entry_attributes = attributes.object();
        call<&DirectoryEntry::CreateChild>(mContainer, classes, naming_attribute, entry_attributes);
        return bound_profile(iCommonName);
    });
}

template struct detail::callee<Profiles>;

}  // namespace orvo
