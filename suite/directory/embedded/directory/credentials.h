#pragma once

// Which passwords have been found right, so that a user who comes again need not wait for the hash.

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/values/secret.h"

namespace orvo::directory::embedded {

// A user and a password that was right for a stored hash. Shared by all objects that logged in with
// it; they go on as long as the store holds just that hash. A member of CredentialSet.
class Credentials {
public:
    const std::string& user() const { return user_; }

private:
    friend class CredentialSet;
    Credentials(std::string user, std::string hash)
        : user_(std::move(user)), hash_(std::move(hash)) {}

    const std::string user_;  // DistinguishedName::key()
    std::string hash_;        // guarded by the set
};
using CredentialsRef = std::shared_ptr<const Credentials>;

// Passwords are kept as digests under a key of the process's own, made anew at each start. Keeps
// those of the last few thousand users, and all that objects work with. Thread-safe.
class CredentialSet {
public:
    CredentialSet();

    // Nothing where this password was not yet found right for this hash.
    CredentialsRef find(const std::string& user, const Secret& password, std::string_view hash);
    CredentialsRef add(const std::string& user, const Secret& password, std::string_view hash);
    bool is_current(const Credentials& credentials, std::string_view hash) const;

    // A user has changed the password that had the former hash: who works with it goes on with the
    // new one.
    void password_changed(const std::string& user, std::string_view former_hash,
                          const Secret& password, std::string_view hash);

private:
    std::string digest(const std::string& user, const Secret& password) const;
    void evict_unused();

    const std::string key_;
    mutable std::mutex mutex_;
    std::unordered_map<std::string, std::shared_ptr<Credentials>> by_digest_;
};

}  // namespace orvo::directory::embedded
