#pragma once

#include <memory>
#include <optional>

#include "component/provider/contract.h"
#include "platform/abi/hosted.h"
#include "suite/directory/ldap/pool/identity.h"
#include "suite/directory/ldap/provider/failure_note.h"
#include "suite/directory/names/distinguished_name.h"

namespace orvo {
namespace directory::ldap {

// What a validator is opened with. What is behind the first two is found out at the first check.
struct CheckTarget {
    Text server;
    Text written_container;
    Text container;
    std::optional<DistinguishedName> container_name;
    Credentials checks;
};

// The check of credentials: one bind, on a connection on which nothing but such checks is ever done
// (ConnectionPool::password_checks); once more on a new one where the server has closed it in the
// meantime. Nothing is remembered of a check but whether the server knows the question for its
// password policy (Lease::check_password). Used by one thread.
class LdapValidator final : public DirectoryValidator {
public:
    // `limits`: instead of those that the connection pool has for all.
    explicit LdapValidator(const std::optional<Limits>& limits = {}) : limits_(limits) {}

    // Keeps both; nothing is read or connected before the first check.
    void Open(Text& server, Text& user_container) override;

    // See the contract for the numbers. Both arguments are converted to text (94 for null). An
    // empty password, and a path that is no name strictly below the user container, are wrong
    // without asking the server. Raises 91 when not opened, the failures of result codes 89 and 34
    // for a server and a user container that cannot be read, and the server's own failure where its
    // answer says nothing about the account.
    std::int32_t Validate(Variant& path, Variant& password) override;

    void failed(const char* operation, const Failure& failure) const noexcept {
        note_failure(operation, target_ ? to_utf8(target_->written_container) : "", failure);
    }

private:
    void read_container();
    void find_checks();
    BindResult checked(const Credentials& checks, const std::string& name,
                       const Secret& password) const;

    std::optional<Limits> limits_;
    std::shared_ptr<const CheckTarget> target_;  // none before Open
};

}  // namespace directory::ldap

template <>
inline constexpr auto class_of<directory::ldap::LdapValidator> =
    describe_class<DirectoryValidator>("OrvoDirectory.Ldap");

}  // namespace orvo
