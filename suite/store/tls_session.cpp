#include "suite/store/tls_session.h"

#include <openssl/err.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <new>

#include "suite/configuration/ini_files.h"
#include "suite/store/lost.h"

namespace orvo::store {
namespace {

std::string tls_reason() {
    const unsigned long error = ERR_get_error();
    ERR_clear_error();
    const char* reason = ERR_reason_error_string(error);
    return reason ? reason : "the connection ended";
}

int length_of(std::size_t size) { return static_cast<int>(std::min<std::size_t>(size, 1 << 30)); }

}  // namespace

TlsContext tls_context(const std::filesystem::path& ca_file) {
    TlsContext context(SSL_CTX_new(TLS_client_method()), SSL_CTX_free);
    if (!context) throw std::bad_alloc();
    SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
    SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER, nullptr);
    const int loaded = ca_file.empty() ? SSL_CTX_set_default_verify_paths(context.get())
                                       : SSL_CTX_load_verify_file(context.get(), ca_file.c_str());
    if (loaded != 1)
        throw Failure(
            configuration_error::malformed_file, Text(configuration_source),
            text_of(ca_file) + u": no certificate can be read (" + from_utf8(tls_reason()) + u")");
    return context;
}

TlsSession::TlsSession(const TlsContext& context, const std::string& host)
    : session_(SSL_new(context.get())) {
    BIO* incoming = BIO_new(BIO_s_mem());
    BIO* outgoing = BIO_new(BIO_s_mem());
    if (!session_ || !incoming || !outgoing) {
        BIO_free(incoming);
        BIO_free(outgoing);
        throw std::bad_alloc();
    }
    SSL_set_bio(session_.get(), incoming, outgoing);
    SSL_set_connect_state(session_.get());
    SSL_set_hostflags(session_.get(), X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
    const bool is_numeric =
        X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(session_.get()), host.c_str()) == 1;
    if (!is_numeric && (SSL_set1_host(session_.get(), host.c_str()) != 1 ||
                        SSL_set_tlsext_host_name(session_.get(), host.c_str()) != 1))
        throw Lost("\"" + host + "\" is no name that a certificate can have");
    ERR_clear_error();
}

bool TlsSession::shake_hands() {
    const int result = SSL_do_handshake(session_.get());
    if (result == 1) return true;
    raise_unless_waiting(result);
    return false;
}

void TlsSession::write(std::string_view plain) {
    while (!plain.empty()) {
        const int written = SSL_write(session_.get(), plain.data(), length_of(plain.size()));
        if (written <= 0) raise();
        plain.remove_prefix(static_cast<std::size_t>(written));
    }
}

std::size_t TlsSession::read(std::span<char> plain) {
    const int count = SSL_read(session_.get(), plain.data(), length_of(plain.size()));
    if (count > 0) return static_cast<std::size_t>(count);
    raise_unless_waiting(count);
    return 0;
}

void TlsSession::put_incoming(std::string_view bytes) {
    if (BIO_write(SSL_get_rbio(session_.get()), bytes.data(), length_of(bytes.size())) <= 0)
        throw std::bad_alloc();
}

std::string TlsSession::take_outgoing() {
    BIO* outgoing = SSL_get_wbio(session_.get());
    std::string bytes(BIO_ctrl_pending(outgoing), '\0');
    if (!bytes.empty()) BIO_read(outgoing, bytes.data(), length_of(bytes.size()));
    return bytes;
}

void TlsSession::raise_unless_waiting(int result) const {
    if (SSL_get_error(session_.get(), result) != SSL_ERROR_WANT_READ) raise();
}

void TlsSession::raise() const {
    const long fault = SSL_get_verify_result(session_.get());
    if (fault != X509_V_OK) {
        ERR_clear_error();
        throw Lost(std::string("its certificate is not accepted: ") +
                   X509_verify_cert_error_string(fault));
    }
    throw Lost("TLS: " + tls_reason());
}

}  // namespace orvo::store
