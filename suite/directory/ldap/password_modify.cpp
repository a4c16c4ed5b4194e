#include "suite/directory/ldap/password_modify.h"

namespace orvo::directory::ldap {
namespace {

constexpr char sequence = '\x30';
constexpr char user_identity = '\x80';
constexpr char new_passwd = '\x82';

// A BER tag with the length of what follows.
std::string header(char tag, std::size_t length) {
    std::string bytes(1, tag);
    if (length < 0x80) return bytes + static_cast<char>(length);
    std::string digits;
    for (; length > 0; length >>= 8)
        digits.insert(digits.begin(), static_cast<char>(length & 0xFF));
    return bytes + static_cast<char>(0x80 | digits.size()) + digits;
}

}  // namespace

Secret password_modify_request(std::string_view name, const Secret& new_password) {
    const std::string_view password = new_password.reveal();
    const std::string before = header(user_identity, name.size()) + std::string(name) +
                               header(new_passwd, password.size());
    std::string request = header(sequence, before.size() + password.size());
    // Growing would leave a copy of the password behind.
    request.reserve(request.size() + before.size() + password.size());
    request.append(before).append(password);
    Secret secret = Secret::of_bytes(request);
    overwrite(request.data(), request.size());
    return secret;
}

}  // namespace orvo::directory::ldap
