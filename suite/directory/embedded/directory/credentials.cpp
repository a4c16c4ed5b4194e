#include "suite/directory/embedded/directory/credentials.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <utility>
#include <vector>

#include "suite/directory/policy/failures.h"

namespace orvo::directory::embedded {
namespace {

constexpr std::size_t most_kept = 4096;

std::string random_key() {
    std::string key(32, '\0');
    if (RAND_bytes(reinterpret_cast<unsigned char*>(key.data()), static_cast<int>(key.size())) != 1)
        raise_code(result_code::local_error, "The system gives no random numbers.");
    return key;
}

}  // namespace

CredentialSet::CredentialSet() : key_(random_key()) {}

std::string CredentialSet::digest(const std::string& user, const Secret& password) const {
    const auto octets = [](std::string_view text) {
        return reinterpret_cast<const unsigned char*>(text.data());
    };
    // The user's own key first, so that equal passwords of two users have nothing in common.
    unsigned char own_key[EVP_MAX_MD_SIZE], result[EVP_MAX_MD_SIZE];
    unsigned int size = 0, own_size = 0;
    HMAC(EVP_sha256(), key_.data(), static_cast<int>(key_.size()), octets(user), user.size(),
         own_key, &own_size);
    const std::string_view revealed = password.reveal();
    HMAC(EVP_sha256(), own_key, static_cast<int>(own_size), octets(revealed), revealed.size(),
         result, &size);
    return {reinterpret_cast<const char*>(result), size};
}

CredentialsRef CredentialSet::find(const std::string& user, const Secret& password,
                                   std::string_view hash) {
    const std::string sought = digest(user, password);
    const std::lock_guard lock(mutex_);
    const auto found = by_digest_.find(sought);
    return found != by_digest_.end() && found->second->hash_ == hash ? found->second : nullptr;
}

CredentialsRef CredentialSet::add(const std::string& user, const Secret& password,
                                  std::string_view hash) {
    const std::string key = digest(user, password);
    const std::lock_guard lock(mutex_);
    std::shared_ptr<Credentials>& held = by_digest_[key];
    if (!held || held->hash_ != hash) held.reset(new Credentials(user, std::string(hash)));
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
    return credentials.hash_ == hash;
}

void CredentialSet::password_changed(const std::string& user, std::string_view former_hash,
                                     const Secret& password, std::string_view hash) {
    const std::string key = digest(user, password);
    const std::lock_guard lock(mutex_);
    std::vector<std::shared_ptr<Credentials>> changed;
    std::erase_if(by_digest_, [&](auto& entry) {
        if (entry.second->user_ != user || entry.second->hash_ != former_hash) return false;
        changed.push_back(std::move(entry.second));
        return true;
    });
    for (std::shared_ptr<Credentials>& credentials : changed) {
        credentials->hash_ = hash;
        by_digest_[key] = std::move(credentials);
    }
}

}  // namespace orvo::directory::embedded
