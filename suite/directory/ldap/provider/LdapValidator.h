#pragma once

#include <memory>
#include <optional>

#include "component/provider/directory_contract.h"
#include "platform/interfaces/hosted.h"
#include "suite/directory/entries/failure_note.h"
#include "suite/directory/entries/throttled.h"
#include "suite/directory/ldap/provider/client.h"

namespace orvo {
namespace directory::ldap {

// The check of credentials: one bind, which asks what the server's password policy says of the
// account, on a connection for such checks (ConnectionPool::checks_below). It is sent once, to one
// server. What is remembered of a check is the password of one that is right: for a change that
// follows at once (ProvenPassword), and for a login that takes over the connection (CheckedLogin).
// The site's throttle stands in front of the server. Used by one thread.
class LdapValidator final : public DirectoryValidator {
public:
    // `limits`: instead of those that the connection pool has for all.
    explicit LdapValidator(const std::optional<Limits>& limits = {},
                           Client& client = Client::of_process())
        : client_(client), limits_(limits) {}

    // Keeps both; nothing is read or connected before the first check.
    void Open(Text& server, Text& user_container) override;

    // See the contract for the numbers. Both arguments are converted to text (94 for null). An
    // empty password, one that `unusable` names, and a path that is no name strictly below the user
    // container, are wrong without asking the server, and no attempts for the throttle. Raises 91
    // when not opened, the failures of result codes 89 and 34 for a server and a user container
    // that cannot be read, and the server's own failure where its answer says nothing about the
    // account.
    std::int32_t Validate(Variant& path, Variant& password) override;

    void failed(const char* operation, const Failure& failure) const noexcept {
        note_failure(operation, target_ ? to_utf8(target_->written_container) : "", failure);
    }

private:
    CheckAnswer check_password(TextView written, const Secret& secret);
    std::optional<std::string> find_user(const std::string& name);
    std::int32_t ask_server(const std::string& name, const Secret& secret);
    void read_container();
    void find_checks();

    Client& client_;
    std::optional<Limits> limits_;
    std::shared_ptr<const CheckTarget> target_;  // none before Open
};

}  // namespace directory::ldap

template <>
inline constexpr auto class_of<directory::ldap::LdapValidator> =
    describe_class<DirectoryValidator>("OrvoDirectory.Ldap");

}  // namespace orvo
