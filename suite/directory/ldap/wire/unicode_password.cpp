#include "suite/directory/ldap/wire/unicode_password.h"

#include <string>

namespace orvo::directory::ldap {

Secret unicode_password(const Secret& password) {
    Text text = from_utf8(password.reveal());
    std::string bytes;
    // Growing would leave a copy of the password behind.
    bytes.reserve(2 * (text.size() + 2));
    const auto append = [&](char16_t unit) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    };
    append(u'"');
    for (const char16_t unit : text) append(unit);
    append(u'"');
    Secret secret = Secret::of_bytes(bytes);
    overwrite(text.data(), text.size() * sizeof text[0]);
    overwrite(bytes.data(), bytes.size());
    return secret;
}

}  // namespace orvo::directory::ldap
