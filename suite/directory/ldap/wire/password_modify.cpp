#include "suite/directory/ldap/wire/password_modify.h"

#include "suite/directory/ldap/wire/ber.h"

namespace orvo::directory::ldap {
namespace {

constexpr unsigned char user_identity = 0x80;
constexpr unsigned char old_passwd = 0x81;
constexpr unsigned char new_passwd = 0x82;

}  // namespace

Secret password_modify_request(std::string_view name, const Secret& new_password,
                               const Secret& former_password) {
    const std::string_view password = new_password.reveal(), former = former_password.reveal();
    const std::string user = ber::header(user_identity, name.size()) + std::string(name);
    const std::string old_header = former.empty() ? "" : ber::header(old_passwd, former.size());
    const std::string new_header = ber::header(new_passwd, password.size());
    const std::size_t size =
        user.size() + old_header.size() + former.size() + new_header.size() + password.size();
    std::string request = ber::header(ber::sequence, size);
    // Growing would leave a copy of a password behind.
    request.reserve(request.size() + size);
    request.append(user).append(old_header).append(former).append(new_header).append(password);
    Secret secret = Secret::of_bytes(request);
    overwrite(request.data(), request.size());
    return secret;
}

}  // namespace orvo::directory::ldap
