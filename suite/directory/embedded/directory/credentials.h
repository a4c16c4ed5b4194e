#pragma once

// Which passwords have been found right, so that a user who comes again need not wait for the hash.

#include <algorithm>
#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/values/secret.h"

namespace orvo::directory::embedded {

// A user and a password, and stored hashes that it was right for. Shared by all objects that logged
// in with it; they go on as long as the store holds one of these. A member of CredentialSet.
class Credentials {
public:
    const std::string& user() const { return user_; }

private:
    friend class CredentialSet;
    friend class HashChange;
    Credentials(std::string user, std::string hash)
        : user_(std::move(user)), hashes_{std::move(hash)} {}

    bool has(std::string_view hash) const {
        return std::ranges::find(hashes_, hash) != hashes_.end();
    }

    const std::string user_;           // DistinguishedName::key()
    std::vector<std::string> hashes_;  // the latest last; guarded by the set
};
using CredentialsRef = std::shared_ptr<const Credentials>;

// Passwords are kept as digests under a key of the process's own, made anew at each start. Keeps
// those of the last few thousand users, and all that objects work with. Thread-safe.
class CredentialSet {
public:
    CredentialSet();

    // Nothing where this password was not yet found right for this hash.
    CredentialsRef find(const std::string& user, const Secret& password, std::string_view hash);
    // A password that has just been found right: who has proven it before goes on with this hash,
    // too.
    CredentialsRef add(const std::string& user, const Secret& password, std::string_view hash);
    bool is_current(const Credentials& credentials, std::string_view hash) const;

private:
    friend class HashChange;
    struct Pending {
        const std::string& user;
        const std::string& former;
        const std::string& next;
    };

    std::string digest(const std::string& user, const Secret& password) const;
    void evict_unused();

    const std::string key_;
    mutable std::mutex mutex_;
    std::unordered_map<std::string, std::shared_ptr<Credentials>> by_digest_;
    std::list<Pending> pending_;
};

// A change of a user's hash by which nobody is to be put out: those who have proven the former
// password go on with the new one. Made before the store is written to: from then on both hashes
// are current for them. They log in with the new password alone once it is done; without that all
// stays as it was.
class HashChange {
public:
    HashChange(CredentialSet& set, std::string user, std::string former, std::string next);
    ~HashChange();
    HashChange(const HashChange&) = delete;
    HashChange& operator=(const HashChange&) = delete;

    // The store has the new hash, which is that of this password.
    void done(const Secret& password);

private:
    CredentialSet& set_;
    const std::string user_, former_, next_;
    std::list<CredentialSet::Pending>::iterator place_;
};

}  // namespace orvo::directory::embedded
