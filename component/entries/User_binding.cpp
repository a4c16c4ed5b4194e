#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "component/common/OrvoMemErrors.h"
#include "component/common/web_page.h"
#include "component/config/SharedServerInfo.h"
#include "component/entries/User_table.h"
#include "platform/values/values.h"

namespace orvo {

void User::IObjectControl_Activate() {
    constexpr const char16_t* source = u"OrvoMembership.User.IObjectControl_Activate";
    trapped(source, [&] {
        factory_.emplace();
        if (!runs_in_page(u"Session",
                          {source, u"No objectcontext", u"No Session object in ObjectContext"}))
            return;
        load_site_configuration();
        profile_changed_ = false;
        session_ = context_item(u"Session");
        Text name = session_text(session_, session_user);
        if (name.empty()) return;
        Secret password = session_secret(session_);
        Text account = session_text(session_, session_account);
        BindAs(name, account, password);
    });
}

void User::IObjectControl_Deactivate() {
    factory_.reset();
    session_ = nullptr;
    directory_object_ = nullptr;
    profile_ = nullptr;
}

void User::BindAs(Text& iCommonName, Text& iUsername, Secret& iPwd) {
    trapped(u"OrvoMembership.User.BindAs", [&] {
        if (!factory_) factory_.emplace();
        directory_object_ = factory_->GetPMMObject();
        ServerInfo& info = *shared_server_info();
        if (info.server_name().empty() || info.user_container().empty())
            throw Failure(emErrServerInfoNotCreated, u"OrvoMembership.User.BindAs",
                          u"No OrvoMembership.ServerInfo. Create ServerInfo first and invoke "
                          u"setServerInfo()");
        cn_ = iCommonName;
        bound_by_ = {iUsername, iPwd.clone()};
        if (iCommonName.empty())
            throw Failure(emErrUserDoesNotExist, u"OrvoMembership.User.BindAs",
                          u"Cannot bind to a user with an empty (cn) name, please fill in user "
                          u"name.");
        bind_entry(directory_object_, info.user_container(),
                   info.user_naming_attribute() + u"=" + iCommonName, iUsername, iPwd,
                   Values{u"cn", u"OrvoUserType", u"BusinessPartnerID"});
        CheckPrivs();
        bind_profile(iUsername, iPwd);
        account_ = make<Account>();
        std::int16_t type = get_property<property_row("OrvoUserType")>();
        call<&Account::Init>(account_, type);
    });
}

void User::bind_profile(Text& user, Secret& password) {
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

void User::setServerInfo(const Text& i_sConfigurationPath) {
    trapped(u"OrvoMembership.User.setServerInfo", [&] {
        Text path = i_sConfigurationPath;
        shared_server_info()->SetConfiguration(path);
    });
}

}  // namespace orvo
