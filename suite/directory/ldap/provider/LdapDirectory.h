#pragma once

#include "component/provider/directory_contract.h"
#include "platform/interfaces/hosted.h"

namespace orvo {
namespace directory::ldap {

// The schema as an object. Its interface has no operations; the types of attributes are looked up
// where values are read and written.
class LdapSchema final : public DirectorySchema {};

// The directory provider over LDAP, created by its ProgID "OrvoDirectory.Ldap".
class LdapDirectory final : public DirectoryModule {
public:
    Ref<DirectorySchema> CreateSchema() override;
    Ref<DirectoryEntry> CreateEntry() override;
    Ref<DirectoryValidator> CreateValidator() override;
    Ref<DirectorySearch> CreateSearch() override;
};

}  // namespace directory::ldap

template <>
inline constexpr auto class_of<directory::ldap::LdapDirectory> =
    describe_class<DirectoryModule>("OrvoDirectory.Ldap", "297a750b-2738-41d3-ba05-8d71da091aa1");

}  // namespace orvo
