#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "component/common/OrvoMemErrors.h"
#include "component/config/SharedServerInfo.h"
#include "component/containers/Members.h"
#include "platform/abi/late_call.h"
#include "platform/automation/values.h"

namespace orvo {

void User::IObjectControl_Activate() {
    constexpr const char16_t* source = u"OrvoMembership.User.IObjectControl_Activate";
    trapped(source, [&] {
        factory_.emplace();
        switch (Gen_GetIntrinsicState(u"Session")) {
            case -1:
                return LogError(source, u"No objectcontext");
            case -2:
                return LogError(source, u"No Session object in ObjectContext");
        }
        load_site_configuration();
        profile_changed_ = false;
        session_ = context_item(u"Session");
        auto item = [&](const char16_t* name) {
            return late::value_of(session_, {name}).to<Text>();
        };
        Text name = item(u"REMOTE_USER");
        if (name.empty()) return;
        Text password = item(u"REMOTE_PASSWORD");
        Text account = item(u"REMOTE_ACCOUNT");
        BindAs(name, account, password);
    });
}

void User::IObjectControl_Deactivate() {
    factory_.reset();
    session_ = nullptr;
    directory_object_ = nullptr;
    profile_ = nullptr;
}

void User::BindAs(Text& iCommonName, Text& iUsername, Text& iPwd) {
    trapped(u"OrvoMembership.User.BindAs", [&] {
        if (!factory_) factory_.emplace();
        directory_object_ = factory_->GetPMMObject();
        ServerInfo& info = *shared_server_info();
        Text server = info.server_name();
        Text container = info.user_container();
        if (server.empty() || container.empty())
            throw Failure(emErrServerInfoNotCreated, u"OrvoMembership.User.BindAs",
                          u"No OrvoMembership.ServerInfo. Create ServerInfo first and invoke "
                          u"setServerInfo()");
        cn_ = iCommonName;
        username_ = iUsername;
        password_ = Secret(iPwd);
        if (iCommonName.empty())
            throw Failure(emErrUserDoesNotExist, u"OrvoMembership.User.BindAs",
                          u"Cannot bind to a user with an empty (cn) name, please fill in user "
                          u"name.");
        Text name = info.user_naming_attribute() + u"=" + iCommonName;
        Variant attributes = Values{u"cn", u"OrvoUserType", u"BusinessPartnerID"};
        call<&DirectoryEntry::Bind>(directory_object_, server, container, name, iUsername, iPwd,
                                    attributes);
        CheckPrivs();
        bind_profile(iUsername, iPwd);
        account_ = make<Account>();
        std::int16_t type = get_property<property_row("OrvoUserType")>();
        call<&Account::Init>(account_, type);
    });
}

void User::bind_profile(Text& user, Text& password) {
    constexpr std::size_t ProfileCN = property_row("ProfileCN");
    const Text name = get_property<ProfileCN>();
    if (name.empty()) {
        profile_ = nullptr;
        return;
    }
    if (profile_ && call<&Profile::CN>(profile_) == name) return;
    // A profile that cannot be bound is not held: the next bind tries anew.
    profile_ = nullptr;
    auto made = Gen_GetComponent<Profile>(u"OrvoMembership.Profile");
    Text again = get_property<ProfileCN>();
    call<&Profile::BindAs>(made, again, user, password);
    profile_ = std::move(made);
}

void User::BindToGuid(Text& iGUID, Text& iUsername, Text& iPassword) {
    trapped(u"OrvoMembership.User.BindToGuid", [&] {
        const auto members = Gen_GetComponent<Members>(u"OrvoMembership.Members");
        call<&Members::BindAs>(members, iUsername, iPassword);
        const Text configuration = shared_server_info()->ConfigurationPath();
        call<&Members::setServerInfo>(members, configuration);
        // The lookup binds the entry once to read its name, and this object is bound by it once
        // more, so that it ends in the state that BindAs gives.
        const auto found = call<&Members::GetUserFromGUID>(members, iGUID);
        Text name = call<&User::CN>(found);
        BindAs(name, iUsername, iPassword);
    });
}

void User::setServerInfo(const Text& i_sConfigurationPath) {
    trapped(u"OrvoMembership.User.setServerInfo", [&] {
        Text path = i_sConfigurationPath;
        shared_server_info()->SetConfiguration(path);
    });
}

}  // namespace orvo
