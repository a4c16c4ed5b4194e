#include "component/entries/LdapAccess.h"

#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "component/common/OrvoMemErrors.h"
#include "component/config/DirectoryAccount.h"
#include "component/config/SharedServerInfo.h"
#include "platform/interfaces/call.h"
#include "platform/values/values.h"

namespace orvo {
namespace {

Text read_text(const Ref<Configuration>& configuration, Text section, Text key) {
    return call<&Configuration::ReadConfigValue>(configuration, section, key).to<Text>();
}

}  // namespace

void LdapAccess::IObjectControl_Activate() { load_site_configuration(); }

Variant LdapAccess::GetAttribValue(Text& iAttribName) {
    return trapped(u"OrvoMembership.LDAPAccess.GetAttribValue", [&] {
        return element(call<&DirectoryEntry::GetValues>(m_oPMMObject, iAttribName), 0);
    });
}

void LdapAccess::SetAttribValue(Text& iAttribName, Variant& iAttribValue) {
    trapped(u"OrvoMembership.LDAPAccess.SetAttribValue",
            [&] { call<&DirectoryEntry::SetValues>(m_oPMMObject, iAttribName, iAttribValue); });
}

void LdapAccess::ClearAttribValue(Text& iAttribName) {
    // Spelt with a lower-case v, as it always was.
    trapped(u"OrvoMembership.LDAPAccess.ClearAttribvalue",
            [&] { call<&DirectoryEntry::ClearValues>(m_oPMMObject, iAttribName); });
}

void LdapAccess::BindAs(Text& i_sCN, Text& i_sUsername, Secret& i_sPwd, Text& i_sServer,
                        Text& i_sContainer) {
    constexpr const char16_t* source = u"OrvoMembership.LDAPAccess.BindAs";
    trapped(source, [&] {
        settings_or_raise(emErrServerInfoNotCreated, source,
                          u"No OrvoMembership.ServerInfo present. Create one and invoke "
                          u"SetServerInfo() first.");
        PMMCreator creator;
        // The former entry goes before its creator does, which keeps its module.
        m_oPMMObject = creator.GetPMMObject();
        m_oPMMCreator = std::move(creator);
        Variant attributes = Values();
        call<&DirectoryEntry::Bind>(m_oPMMObject, i_sServer, i_sContainer, i_sCN, i_sUsername,
                                    i_sPwd, attributes);
    });
}

void LdapAccess::BindToConfig() {
    trapped(u"OrvoMembership.LDAPAccess.BindToConfig", [&] {
        ServerInfo& info = *shared_server_info();
        const Text file = info.configuration_file_name();
        m_oConfig = Gen_GetComponent<Configuration>(u"Quendra.Configuration");
        const Text folder = call<&Configuration::GetFolder>(m_oConfig);
        call<&Configuration::LoadConfigurationFile>(m_oConfig,
                                                    folder + u"\\" + u"Config" + u"\\" + file);
        Text container = read_text(m_oConfig, u"ConfigDN", u"dn");
        DirectoryAccount account = script_account();
        Text server = info.server_name();
        Text name;
        BindAs(name, account.name, account.secret, server, container);
    });
}

Variant LdapAccess::GetAttributeName(Variant& iAttributeName) {
    return trapped(u"OrvoMembership.LDAPAccess.GetAttributeName", [&] {
        Text section = u"Attributes";
        Text key = iAttributeName.to<Text>();
        return call<&Configuration::ReadConfigValue>(m_oConfig, section, key);
    });
}

template struct detail::callee<LdapAccess>;

}  // namespace orvo
