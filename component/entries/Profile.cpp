#include "component/entries/Profile.h"

#include "component/common/Index16.h"
#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "component/common/OrvoMemErrors.h"
#include "component/common/web_page.h"
#include "component/config/SharedServerInfo.h"
#include "platform/interfaces/call.h"
#include "platform/objects/recordset/record_set_contract.h"
#include "platform/values/values.h"

namespace orvo {
namespace {

constexpr const char16_t* class_prefix = u"OrvoMembership.Profile.";
constexpr std::int32_t most_users = 1000;

}  // namespace

void Profile::IObjectControl_Activate() {
    trapped(u"OrvoMembership.Profile.IObjectControl", [&] {
        m_oPMMCreator = {};
        // The note names User's activation instead of this one: those who read the log look for
        // that one name.
        if (!runs_in_page(u"Session", {u"OrvoMembership.User.IObjectControl_Activate",
                                       u"No objectcontext", u"No session in objectcontext"}))
            return;
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

void Profile::BindAs(Text& iCN, Text& iUsername, Secret& iPwd) {
    constexpr const char16_t* source = u"OrvoMembership.Profile.BindAs";
    trapped(source, [&] {
        m_account = {iUsername, iPwd.clone()};
        ServerInfo& info =
            settings_or_raise(emErrServerInfoNotCreated, source,
                              u"No OrvoMembership.ServerInfo present. Create one and invoke "
                              u"SetServerInfo() first.");
        m_oPMMObject = m_oPMMCreator.GetPMMObject();
        bind_entry(m_oPMMObject, info.profile_container(),
                   info.profile_naming_attribute() + u"=" + iCN, iUsername, iPwd);
    });
}

void Profile::Init(Text& iCN) {
    trapped(u"OrvoMembership.Profile.Init", [&] {
        if (!m_account.name.empty()) {
            DirectoryAccount given = m_account.copy();
            BindAs(iCN, given.name, given.secret);
        } else if (!m_oSession) {
            // Without a pending error nothing is raised: whoever tries Init before there are
            // credentials goes on, and is told by the first attribute that is asked for.
            HandleError(u"OrvoMembership.Profile.Init",
                        u"Init called but no webserver context was found and no credentials were "
                        u"supplied");
        } else {
            DirectoryAccount account = account_of(m_oSession);
            BindAs(iCN, account.name, account.secret);
        }
    });
}

Object Profile::search_users(const char16_t* attribute) {
    ServerInfo& info = *shared_server_info();
    const auto search = m_account.connected_search(m_oPMMCreator, info.user_container());
    Text filter = u"(&(objectClass=" + info.first_user_class() + u")(" + attribute + u"=" +
                  Gen_EscapeQuotes(CN()) + u"))";
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
        const Values held = get_whole<roles>().to<Values>();
        return any_index16(0, held.upper_bound(),
                           [&](std::int32_t i) { return equals_number(held[i], iRoleID); });
    });
}

void Profile::AssignRole(std::int16_t& iRoleType, bool& iEnable) {
    trapped({class_prefix, "AssignRole"}, [&] {
        const bool bHas = HasRole(iRoleType);
        if (bHas == iEnable) return;
        const Values held = get_whole<roles>().to<Values>();
        Values changed(held.lower_bound(), 0);
        any_index16(held.lower_bound(), held.upper_bound(), [&](std::int32_t i) {
            if (iEnable || !equals_number(held[i], iRoleType)) changed.push_back(held[i]);
            return false;
        });
        if (iEnable) changed.push_back(iRoleType);
        put_whole<roles>(std::move(changed));
    });
}

template struct detail::callee<Profile>;

}  // namespace orvo
