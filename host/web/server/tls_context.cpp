#include "host/web/server/tls_context.h"

#include <openssl/err.h>

#include <array>
#include <stdexcept>
#include <string>

namespace orvo::web {
namespace {

std::string tls_reason() {
    std::array<char, 256> text{};
    ERR_error_string_n(ERR_get_error(), text.data(), text.size());
    return text.data();
}

}  // namespace

std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> tls_context(
    const std::filesystem::path& certificate, const std::filesystem::path& key) {
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_server_method()),
                                                              SSL_CTX_free);
    if (!context) throw std::runtime_error("TLS: " + tls_reason());
    SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
    SSL_CTX_set_options(context.get(), SSL_OP_NO_RENEGOTIATION | SSL_OP_CIPHER_SERVER_PREFERENCE);
    SSL_CTX_set_mode(context.get(), SSL_MODE_ENABLE_PARTIAL_WRITE |
                                        SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER |
                                        SSL_MODE_RELEASE_BUFFERS);
    static constexpr unsigned char name[] = "orvo-web";
    SSL_CTX_set_session_id_context(context.get(), name, sizeof name - 1);
    if (SSL_CTX_use_certificate_chain_file(context.get(), certificate.c_str()) != 1)
        throw std::runtime_error(certificate.string() +
                                 ": no certificate can be read: " + tls_reason());
    if (SSL_CTX_use_PrivateKey_file(context.get(), key.c_str(), SSL_FILETYPE_PEM) != 1)
        throw std::runtime_error(key.string() + ": no private key can be read: " + tls_reason());
    if (SSL_CTX_check_private_key(context.get()) != 1)
        throw std::runtime_error(key.string() + ": the key is not the certificate's");
    return context;
}

}  // namespace orvo::web
