#pragma once

#include "component/config/PMMCreator.h"
#include "component/config/configuration_contract.h"
#include "platform/interfaces/hosted.h"
#include "platform/objects/context/object_control.h"

namespace orvo {

// The thinnest view of one directory entry: binds to any entry by server, container and common
// name, reads, writes and clears attributes by their directory names, and translates logical
// attribute names through the configuration.
//
// Bind first (BindAs, or BindToConfig, which binds to the entry that holds the suite's directory
// configuration): an attribute operation on an unbound object fails with 91 (object not set), and
// so does GetAttributeName before BindToConfig. A further bind replaces the former one.
//
// Used by the thread that made it. What fails is logged and raised again by the member that was
// called.
class LdapAccess final : public ObjectControl {
public:
    LdapAccess() { IObjectControl_Activate(); }
    ~LdapAccess() { IObjectControl_Deactivate(); }

    // The attribute's first value. Raises 13 when the provider answers no array, 9 when it is
    // empty.
    Variant GetAttribValue(Text& iAttribName);
    void SetAttribValue(Text& iAttribName, Variant& iAttribValue);
    void ClearAttribValue(Text& iAttribName);
    void BindAs(Text& i_sCN, Text& i_sUsername, Secret& i_sPwd, Text& i_sServer,
                Text& i_sContainer);
    void BindToConfig();
    // The directory's name of a logical attribute; what the configuration answers for a missing key
    // when the name is unknown.
    Variant GetAttributeName(Variant& iAttributeName);

    // Loads the site's configuration into the thread's shared settings. A failure surfaces as it
    // is.
    void IObjectControl_Activate() override;
    void IObjectControl_Deactivate() override {}
    bool IObjectControl_CanBePooled() override { return false; }

private:
    // Both are empty until the first bind.
    std::optional<PMMCreator> m_oPMMCreator;
    Ref<DirectoryEntry> m_oPMMObject;
    Ref<Configuration> m_oConfig;
};

// clang-format off
template <>
inline constexpr auto table_of<LdapAccess> = describe<LdapAccess>(
    "ILdapAccess", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e714",
    about("One entry of the directory, attribute by attribute."),
    method<&LdapAccess::GetAttribValue>("GetAttribValue", "iAttribName")
        .help("The first value of an attribute; nothing where the entry lacks it."),
    method<&LdapAccess::SetAttribValue>("SetAttribValue", "iAttribName", "iAttribValue")
        .help("Writes an attribute."),
    method<&LdapAccess::ClearAttribValue>("ClearAttribValue", "iAttribName")
        .help("Removes an attribute."),
    method<&LdapAccess::BindAs>("BindAs", "i_sCN", "i_sUsername", "i_sPwd", "i_sServer",
                                "i_sContainer")
        .help("Binds to an entry with the rights of a user."),
    method<&LdapAccess::BindToConfig>("BindToConfig")
        .help("Binds to the entry that keeps the directory's configuration, and loads the file "
              "that names it."),
    method<&LdapAccess::GetAttributeName>("GetAttributeName", "iAttributeName")
        .help("The directory's name of a logical attribute, after BindToConfig; nothing for an "
              "unknown one."));
// clang-format on

extern template struct detail::callee<LdapAccess>;

template <>
inline constexpr auto class_of<LdapAccess> = describe_class<LdapAccess, ObjectControl>(
    "OrvoMembership.LdapAccess", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e704");

}  // namespace orvo
