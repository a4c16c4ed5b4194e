#include "suite/directory/ldap/wire/password_modify.h"

#include "suite/directory/ldap/wire/ber.h"

namespace orvo::directory::ldap {
namespace {

constexpr unsigned char user_identity = 0x80;
constexpr unsigned char new_passwd = 0x82;

}  // namespace

Secret password_modify_request(std::string_view name, const Secret& new_password) {
    const std::string_view password = new_password.reveal();
    const std::string before = ber::header(user_identity, name.size()) + std::string(name) +
                               ber::header(new_passwd, password.size());
    std::string request = ber::header(ber::sequence, before.size() + password.size());
    // Growing would leave a copy of the password behind.
    request.reserve(request.size() + before.size() + password.size());
    request.append(before).append(password);
    Secret secret = Secret::of_bytes(request);
    overwrite(request.data(), request.size());
    return secret;
}

}  // namespace orvo::directory::ldap
