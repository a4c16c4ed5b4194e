#pragma once

#include <openssl/ssl.h>

#include <filesystem>
#include <memory>

namespace orvo::web {

// A server's side of TLS, 1.2 and above, with this certificate and key (PEM). Raises
// std::runtime_error.
std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> tls_context(
    const std::filesystem::path& certificate, const std::filesystem::path& key);

}  // namespace orvo::web
