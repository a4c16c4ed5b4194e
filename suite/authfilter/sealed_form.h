#pragma once

// Records and logins as the shared store holds them, sealed.

#include <optional>
#include <string>
#include <string_view>

#include "suite/authfilter/filter_store.h"
#include "suite/store/keyring.h"

namespace orvo::authfilter {

// Whom a login has let in, and for what.
struct LetIn {
    Text user;
    std::vector<std::int32_t> applications;
};

// `key`: the store's key that holds it, which it is bound to.
std::string sealed_record(const Record& record, const store::Keyring& keyring,
                          std::string_view key);
std::string sealed_login(const LetIn& login, const store::Keyring& keyring, std::string_view key);

// Nothing for what was not sealed there by one of the site's keys.
std::optional<Record> try_unseal_record(std::string_view sealed, const store::Keyring& keyring,
                                        std::string_view key);
std::optional<LetIn> try_unseal_login(std::string_view sealed, const store::Keyring& keyring,
                                      std::string_view key);

}  // namespace orvo::authfilter
