#include "suite/store/site_store.h"

#include <openssl/ssl.h>

#include <mutex>
#include <utility>

namespace orvo::store {

std::shared_ptr<const SiteStore> site_store() {
    // OpenSSL tidies up when the process ends. Used before `known` is made, it does so after it.
    OPENSSL_init_ssl(0, nullptr);
    static std::mutex mutex;
    static bool is_known = false;
    static std::shared_ptr<const SiteStore> known;
    const std::lock_guard lock(mutex);
    if (is_known) return known;
    Settings settings = settings_of_site();
    if (settings.is_shared()) {
        Keyring keyring = Keyring::read(settings.key_file);
        known = std::make_shared<const SiteStore>(
            SiteStore{std::make_shared<Redis>(std::move(settings)), std::move(keyring)});
    }
    is_known = true;
    return known;
}

}  // namespace orvo::store
