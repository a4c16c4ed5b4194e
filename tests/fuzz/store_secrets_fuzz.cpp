// What is sealed for a shared store, the file of its keys, and its address.

#include <algorithm>

#include "suite/store/keyring.h"
#include "suite/store/store_url.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

using namespace orvo::store;

const Keyring& keyring() {
    static const Keyring made = Keyring::parse(
        "AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8=\n"
        "ICEiIyQlJicoKSorLC0uLzAxMjM0NTY3ODk6Ozw9Pj8=\n",
        "keys");
    return made;
}

void check_sealed(std::string_view input) {
    require(!keyring().unseal(input, "context"), "what nobody sealed is not unsealed");
    const std::string sealed = keyring().seal(input, "context");
    require(keyring().unseal(sealed, "context") == input, "what was sealed is unsealed");
    require(input == "context" || !keyring().unseal(sealed, input), "only in its own context");
    std::string changed = sealed;
    const std::size_t place = input.empty() ? 0 : static_cast<unsigned char>(input.front());
    changed[place % changed.size()] ^= 1;
    require(!keyring().unseal(changed, "context"), "a change is noticed");
}

void check_keys(std::string_view input) {
    try {
        const Keyring made = Keyring::parse(input, "keys");
        require(made.unseal(made.seal(input, ""), "") == input, "keys that are taken are of use");
    } catch (const Failure& failure) {
        require(to_utf8(failure.description).starts_with("keys: "), "a refusal names the file");
    }
}

void check_url(std::string_view input) {
    Settings settings;
    if (!read_url(input, settings).empty() || settings.addresses.empty()) return;
    std::string again = settings.is_encrypted ? "rediss://" : "redis://";
    if (!settings.user.empty()) again += settings.user + "@";
    for (const Address& address : settings.addresses) {
        require(!address.host.empty() && address.port >= 0 && address.port < 65536,
                "an address has a host and perhaps a port");
        const bool is_bracketed = address.host.find(':') != address.host.npos;
        if (&address != &settings.addresses.front()) again += ',';
        again += is_bracketed ? "[" + address.host + "]" : address.host;
        if (address.port != 0) again += ":" + std::to_string(address.port);
    }
    again += "/" + std::to_string(settings.database);
    Settings read;
    require(read_url(again, read).empty() && read.addresses == settings.addresses &&
                read.user == settings.user && read.database == settings.database,
            "an address that is taken can be written and read again");
}

}  // namespace

void store_secrets_properties(std::string_view input) {
    check_sealed(input);
    check_keys(input);
    check_url(input);
}

}  // namespace orvo::fuzz
