#pragma once

// What there is against a server's certificate, in words.

#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace orvo::directory::ldap {

// What a certificate says, for readers.
struct CertificateWords {
    std::string subject;  // "CN=dir01,O=Shop"
    std::string issuer;
    std::string end;  // the last moment that it is valid, a generalized time
};

// Of a certificate (X.509, DER); nothing where it cannot be read.
std::optional<CertificateWords> certificate_words(std::string_view certificate);

// What there can be against one that was refused.
enum class CertificateFault { has_expired, is_not_valid_yet, is_for_another_name, issuer_unknown };
// Nothing where it cannot be read.
std::optional<CertificateFault> fault_of(std::string_view certificate, const std::string& host,
                                         std::time_t now);

namespace detail {

// For a certificate (X.509, DER) that was refused for the server `host` at this time: whose it is,
// and that it has expired, is not valid yet, was made for other names (and for which), or else that
// its issuer is not trusted. Empty where it cannot be read. Only words: what is accepted is decided
// elsewhere.
std::string objection_to(std::string_view certificate, const std::string& host, std::time_t now);

}  // namespace detail
}  // namespace orvo::directory::ldap
