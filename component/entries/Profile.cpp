#include "component/entries/Profile.h"

#include "component/common/Index16.h"
#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "component/common/OrvoMemErrors.h"
#include "component/config/SharedServerInfo.h"
#include "platform/abi/call.h"
#include "platform/abi/late_call.h"
#include "platform/automation/values.h"
#include "platform/recordset/contract.h"

namespace orvo {
namespace {

constexpr const char16_t* class_prefix = u"OrvoMembership.Profile.";
constexpr std::int32_t most_users = 1000;

}  // namespace

void Profile::IObjectControl_Activate() {
    trapped(u"OrvoMembership.Profile.IObjectControl", [&] {
        m_oPMMCreator = {};
        // The entries name the user's class, as they always did.
        constexpr const char16_t* source = u"OrvoMembership.User.IObjectControl_Activate";
        switch (Gen_GetIntrinsicState(u"Session")) {
            case -1:
                return LogError(source, u"No objectcontext");
            case -2:
                return LogError(source, u"No session in objectcontext");
        }
        m_oSession = context_item(u"Session");
        load_site_configuration();
    });
}

Variant Profile::GetAttribValue(Text& iAttribName) {
    return trapped(u"OrvoMembership.Profile.GetAttribValue",
                   [&] { return call<&DirectoryEntry::GetValues>(m_oPMMObject, iAttribName); });
}

void Profile::SetAttribValue(Text& iAttribName, Variant& iAttribValue) {
    trapped(u"OrvoMembership.Profile.SetAttribValue",
            [&] { call<&DirectoryEntry::SetValues>(m_oPMMObject, iAttribName, iAttribValue); });
}

void Profile::ClearAttribValue(Text& iAttribName) {
    // Spelt with a lower-case v, as it always was.
    trapped(u"OrvoMembership.Profile.ClearAttribvalue",
            [&] { call<&DirectoryEntry::ClearValues>(m_oPMMObject, iAttribName); });
}

void Profile::BindAs(Text& iCN, Text& iUsername, Text& iPwd) {
    trapped(u"OrvoMembership.Profile.BindAs", [&] {
        m_sUsername = iUsername;
        m_sPwd = Secret(iPwd);
        // Asking for the settings makes them, so this cannot happen; it is tested all the same.
        ServerInfo* info = shared_server_info();
        if (info == nullptr)
            throw Failure(emErrServerInfoNotCreated, u"OrvoMembership.Profile.BindAs",
                          u"No OrvoMembership.ServerInfo present. Create one and invoke "
                          u"SetServerInfo() first.");
        m_oPMMObject = m_oPMMCreator.GetPMMObject();
        Text server = info->server_name();
        Text container = info->profile_container();
        Text name = info->profile_naming_attribute() + u"=" + iCN;
        Variant attributes = Values();
        call<&DirectoryEntry::Bind>(m_oPMMObject, server, container, name, iUsername, iPwd,
                                    attributes);
    });
}

void Profile::Init(Text& iCN) {
    trapped(u"OrvoMembership.Profile.Init", [&] {
        if (!m_sUsername.empty()) {
            Text user = m_sUsername;
            Text password = from_utf8(m_sPwd.reveal());
            BindAs(iCN, user, password);
        } else if (!m_oSession) {
            // No error is pending: this returns quietly, unbound. Deliberate.
            HandleError(u"OrvoMembership.Profile.Init",
                        u"Init called but no webserver context was found and no credentials were "
                        u"supplied");
        } else {
            Text user = late::value_of(m_oSession, {u"REMOTE_ACCOUNT"}).to<Text>();
            Text password = late::value_of(m_oSession, {u"REMOTE_PASSWORD"}).to<Text>();
            BindAs(iCN, user, password);
        }
    });
}

Object Profile::search_users(const char16_t* attribute) {
    ServerInfo& info = *shared_server_info();
    const auto search = m_oPMMCreator.GetPMMSearch();
    Text server = info.server_name();
    Text container = info.user_container();
    Text user = m_sUsername;
    Text password = from_utf8(m_sPwd.reveal());
    call<&DirectorySearch::Connect>(search, server, container, user, password);
    Text filter = u"(&(objectClass=" + element(info.GetUserClass(), 0).to<Text>() + u")(" +
                  attribute + u"=" + Gen_EscapeQuotes(CN()) + u"))";
    Variant attributes = Values{info.GetUserNamingAttribute()};
    return call<&DirectorySearch::Execute>(search, filter, attributes, most_users);
}

Object Profile::GetUsers() {
    return trapped(u"OrvoMembership.Profile.GetUsers", [&] {
        Object users = search_users(u"ProfileCN");
        if (!users || call<&RecordSet::IsEof>(Ref<RecordSet>::from(users)))
            users = search_users(u"LocalAdminProfileCN");
        return users;
    });
}

void Profile::setServerInfo(const Text& i_sConfigurationPath) {
    trapped({class_prefix, "setServerInfo"}, [&] {
        Text path = i_sConfigurationPath;
        shared_server_info()->SetConfiguration(path);
    });
}

Variant Profile::values(const char16_t* attribute) {
    Text name = attribute;
    return call<&DirectoryEntry::GetValues>(m_oPMMObject, name);
}

void Profile::set_values(const char16_t* attribute, Variant value) {
    Text name = attribute;
    call<&DirectoryEntry::SetValues>(m_oPMMObject, name, value);
}

Text Profile::CN() {
    return trapped({class_prefix, "CN"}, [&] { return element(values(u"cn"), 0).to<Text>(); });
}

std::int16_t Profile::Locale() {
    return trapped({class_prefix, "Locale"},
                   [&] { return element(values(u"Locale"), 0).to<std::int16_t>(); });
}

void Profile::put_Locale(std::int16_t value) {
    trapped({class_prefix, "Locale"}, [&] { set_values(u"Locale", Values{value}); });
}

Text Profile::LanguageID() {
    return trapped({class_prefix, "LanguageID"},
                   [&] { return element(values(u"LanguageID"), 0).to<Text>(); });
}

void Profile::put_LanguageID(const Text& value) {
    trapped({class_prefix, "LanguageID"}, [&] {
        Text name = u"LanguageID";
        if (value.empty())
            call<&DirectoryEntry::ClearValues>(m_oPMMObject, name);
        else
            set_values(u"LanguageID", Values{value});
    });
}

Variant Profile::whole(const WholeValue& property) {
    return trapped({class_prefix, property.name}, [&] { return values(property.attribute); });
}

void Profile::set_whole(const WholeValue& property, const Variant& value) {
    trapped({class_prefix, property.name}, [&] { set_values(property.attribute, value); });
}

Variant Profile::OrvoApps() {
    return trapped({class_prefix, "OrvoApps"}, [&] { return values(u"OrvoApps"); });
}

void Profile::put_OrvoApps(const Variant& iApps) {
    trapped({class_prefix, "OrvoApps"}, [&] {
        m_vApps = iApps;
        write_apps();
    });
}

void Profile::ClearOrvoApps() {
    trapped({class_prefix, "ClearOrvoApps"}, [&] {
        m_vApps = {};
        write_apps();
    });
}

void Profile::write_apps() {
    Text name = u"OrvoApps";
    if (m_vApps.is_empty())
        ClearAttribValue(name);
    else
        set_values(u"OrvoApps", m_vApps);
}

bool Profile::HasRole(std::int16_t& iRoleID) {
    return trapped({class_prefix, "HasRole"}, [&] {
        const Values roles = get_whole<3>().to<Values>();
        return any_index16(0, roles.upper_bound(),
                           [&](std::int32_t i) { return equals_number(roles[i], iRoleID); });
    });
}

void Profile::AssignRole(std::int16_t& iRoleType, bool& iEnable) {
    trapped({class_prefix, "AssignRole"}, [&] {
        const bool bHas = HasRole(iRoleType);
        if (bHas == iEnable) return;
        const Values roles = get_whole<3>().to<Values>();
        Values changed(roles.lower_bound(), 0);
        any_index16(roles.lower_bound(), roles.upper_bound(), [&](std::int32_t i) {
            if (iEnable || !equals_number(roles[i], iRoleType)) changed.push_back(roles[i]);
            return false;
        });
        if (iEnable) changed.push_back(iRoleType);
        put_whole<3>(std::move(changed));
    });
}

template struct detail::callee<Profile>;

}  // namespace orvo
