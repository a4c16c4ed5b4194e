#include "component/containers/Profiles.h"

#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "component/common/OrvoMemErrors.h"
#include "component/common/web_page.h"
#include "component/config/SharedServerInfo.h"
#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"
#include "platform/objects/dictionary/dictionary_contract.h"
#include "platform/objects/recordset/record_set_contract.h"
#include "platform/values/values.h"

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
        // The note names User's activation, as Profile's does: those who read the log look for that
        // one name.
        if (!runs_in_page(u"Session", {u"OrvoMembership.User.IObjectControl_Activate",
                                       u"No objectcontext", u"No Session object in ObjectContext"}))
            return;
        load_site_configuration();
        const Object session = context_item(u"Session");
        DirectoryAccount account = account_of(session);
        BindAs(account.name, account.secret);
    });
}

void Profiles::BindAs(Text& iUsername, Secret& iPwd) {
    constexpr const char16_t* source = u"OrvoMembership.Profiles.BindAs";
    trapped(source, [&] {
        mAccount = {iUsername, iPwd.clone()};
        ServerInfo& info = settings_or_raise(emErrServerInfoNotCreated, source,
                                             u"OrvoMembership.ServerInfo was not created");
        mContainer = mPMMCreator->GetPMMObject();
        bind_entry(mContainer, info.profile_container(), Text(), iUsername, iPwd);
    });
}

Object Profiles::AsRecordset() {
    constexpr const char16_t* source = u"OrvoMembership.Profiles.AsRecordset";
    return trapped(source, [&] {
        PMMCreator provider;
        ServerInfo& info =
            settings_or_raise(emErrServerInfoNotCreated, source, u"ServerInfo not available");
        const auto search = mAccount.connected_search(provider, info.profile_container());
        Text filter = u"(objectClass=" + info.profile_class() + u")";
        Variant columns = Values{u"cn"};
        return call<&DirectorySearch::Execute>(search, filter, columns, most_profiles);
    });
}

Ref<Profile> Profiles::bound_profile(Text& name) {
    auto profile = Gen_GetComponent<Profile>(u"OrvoMembership.Profile");
    DirectoryAccount given = mAccount.copy();
    call<&Profile::BindAs>(profile, name, given.name, given.secret);
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
            if (users) call<&RecordSet::Close>(users);
        }
        return is_unused;
    });
}

Ref<Profile> Profiles::CreateProfile(Text& iCommonName) {
    constexpr const char16_t* source = u"OrvoMembership.Profiles.CreateProfile";
    const auto reword = [&](Failure& failure) {
        if (failure.number != entry_already_exists) return;
        failure.source = source;
        failure.description = u"Unable to add profile with profile name:'" + iCommonName +
                              u"'. The profile already exists.";
    };
    return trapped_rewording(source, reword, [&] {
        ServerInfo& info = *shared_server_info();
        if (!mContainer) {
            mPMMCreator.emplace();
            mContainer = mPMMCreator->GetPMMObject();
            DirectoryAccount account = script_account();
            BindAs(account.name, account.secret);
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
