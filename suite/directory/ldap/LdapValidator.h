#pragma once

#include "component/provider/contract.h"
#include "platform/abi/hosted.h"
#include "suite/directory/ldap/session.h"

namespace orvo {
namespace directory::ldap {

// The check of credentials: a connection of its own, one bind on it, and nothing else. Nothing is
// kept between two checks. Used by one thread.
class LdapValidator final : public DirectoryValidator {
public:
    explicit LdapValidator(const Limits& limits = {}) : limits_(limits) {}

    // Keeps both; nothing is read or connected before the first check.
    void Open(Text& server, Text& user_container) override;

    // See the contract for the numbers. Both arguments are converted to text (94 for null). An
    // empty password, and a path that is no name strictly below the user container, are wrong
    // without asking the server. Raises 91 when not opened, the failures of result codes 89 and 34
    // for a server and a user container that cannot be read, and the server's own failure where its
    // answer says nothing about the account.
    std::int32_t Validate(Variant& path, Variant& password) override;

private:
    Limits limits_;
    Text server_;
    Text container_;
    bool is_open_ = false;
};

}  // namespace directory::ldap

template <>
inline constexpr auto class_of<directory::ldap::LdapValidator> =
    describe_class<DirectoryValidator>("OrvoDirectory.Ldap");

}  // namespace orvo
