#include "suite/directory/ldap/provider/LdapDirectory.h"

#include "suite/directory/ldap/provider/LdapEntry.h"
#include "suite/directory/ldap/provider/LdapSearch.h"
#include "suite/directory/ldap/provider/LdapValidator.h"

namespace orvo {

template <>
inline constexpr auto class_of<directory::ldap::LdapSchema> =
    describe_class<DirectorySchema>("OrvoDirectory.Ldap");

namespace directory::ldap {

Ref<DirectorySchema> LdapDirectory::CreateSchema() { return make<LdapSchema>(); }
Ref<DirectoryEntry> LdapDirectory::CreateEntry() { return make<LdapEntry>(); }
Ref<DirectoryValidator> LdapDirectory::CreateValidator() { return make<LdapValidator>(); }
Ref<DirectorySearch> LdapDirectory::CreateSearch() { return make<LdapSearch>(); }

}  // namespace directory::ldap
}  // namespace orvo
