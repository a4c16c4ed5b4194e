#include "suite/directory/embedded/directory/credentials.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "suite/directory/policy/failures.h"

namespace orvo::directory::embedded {
namespace {

constexpr std::size_t most_kept = 4096;
constexpr std::size_t most_hashes = 4;  // of one password

std::string random_key() {
    std::string key(32, '\0');
    if (RAND_bytes(reinterpret_cast<unsigned char*>(key.data()), static_cast<int>(key.size())) != 1)
        raise_code(result_code::local_error, "The system gives no random numbers.");
    return key;
}

}  // namespace

CredentialSet::CredentialSet() : key_(random_key()) {}

std::string CredentialSet::digest(const std::string& user, const Secret& password) const {
    // No password holds a NUL: what stands in front of the last one is the user's, so that equal
    // passwords of two users have nothing in common.
    const std::string_view revealed = password.reveal();
    std::string message;
    message.reserve(user.size() + 1 + revealed.size());
    message.append(user).append(1, '\0').append(revealed);
    unsigned char result[EVP_MAX_MD_SIZE];
    unsigned int size = 0;
    HMAC(EVP_sha256(), key_.data(), static_cast<int>(key_.size()),
         reinterpret_cast<const unsigned char*>(message.data()), message.size(), result, &size);
    overwrite(message.data(), message.size());
    return {reinterpret_cast<const char*>(result), size};
}

CredentialsRef CredentialSet::find(const std::string& user, const Secret& password,
                                   std::string_view hash) {
    const std::string sought = digest(user, password);
    const std::lock_guard lock(mutex_);
    const auto found = by_digest_.find(sought);
    return found != by_digest_.end() && found->second->has(hash) ? found->second : nullptr;
}

CredentialsRef CredentialSet::add(const std::string& user, const Secret& password,
                                  std::string_view hash) {
    const std::string key = digest(user, password);
    const std::lock_guard lock(mutex_);
    std::shared_ptr<Credentials>& held = by_digest_[key];
    if (!held) {
        held.reset(new Credentials(user, std::string(hash)));
    } else if (!held->has(hash)) {
        if (held->hashes_.size() == most_hashes) held->hashes_.erase(held->hashes_.begin());
        held->hashes_.emplace_back(hash);
    }
    const CredentialsRef added = held;
    if (by_digest_.size() > most_kept) evict_unused();
    return added;
}

// Of those that no object works with, all: they are proven again in a moment.
void CredentialSet::evict_unused() {
    std::erase_if(by_digest_, [](const auto& entry) { return entry.second.use_count() == 1; });
}

bool CredentialSet::is_current(const Credentials& credentials, std::string_view hash) const {
    const std::lock_guard lock(mutex_);
    return credentials.has(hash) || std::ranges::any_of(pending_, [&](const Pending& change) {
               return change.user == credentials.user_ && credentials.has(change.former) &&
                      change.next == hash;
           });
}

HashChange::HashChange(CredentialSet& set, std::string user, std::string former, std::string next)
    : set_(set), user_(std::move(user)), former_(std::move(former)), next_(std::move(next)) {
    const std::lock_guard lock(set_.mutex_);
    place_ = set_.pending_.insert(set_.pending_.end(), {user_, former_, next_});
}

HashChange::~HashChange() {
    const std::lock_guard lock(set_.mutex_);
    set_.pending_.erase(place_);
}

void HashChange::done(const Secret& password) {
    const std::string key = set_.digest(user_, password);
    const std::lock_guard lock(set_.mutex_);
    std::vector<std::shared_ptr<Credentials>> changed;
    std::erase_if(set_.by_digest_, [&](auto& entry) {
        if (entry.second->user_ != user_ || !entry.second->has(former_)) return false;
        changed.push_back(std::move(entry.second));
        return true;
    });
    for (std::shared_ptr<Credentials>& credentials : changed) {
        credentials->hashes_ = {former_, next_};  // some may still read what was before
        set_.by_digest_[key] = std::move(credentials);
    }
}

}  // namespace orvo::directory::embedded
