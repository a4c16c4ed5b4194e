#pragma once

// What there is against a server's certificate, in words.

#include <ctime>
#include <string>
#include <string_view>

namespace orvo::directory::ldap::detail {

// For a certificate (X.509, DER) that was refused for the server `host` at this time: whose it is,
// and that it has expired, is not valid yet, was made for other names (and for which), or else that
// its issuer is not trusted. Empty where it cannot be read. Only words: what is accepted is decided
// elsewhere.
std::string objection_to(std::string_view certificate, const std::string& host, std::time_t now);

}  // namespace orvo::directory::ldap::detail
