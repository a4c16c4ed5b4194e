#pragma once

// TLS of a client, apart from how the bytes travel.

#include <openssl/ssl.h>

#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace orvo::store {

using TlsContext = std::shared_ptr<SSL_CTX>;

// Trusts the certificates of the file, or those of the system where it is empty. Raises
// configuration_error::malformed_file with the file's name.
TlsContext tls_context(const std::filesystem::path& ca_file);

// One connection. The server has to show a certificate that the context trusts and that was made
// for `host`, a name or a numeric address. Each call may leave bytes to be sent (outgoing). All
// raise Lost. One thread at a time.
class TlsSession {
public:
    TlsSession(const TlsContext& context, const std::string& host);

    // True once encryption is agreed on; otherwise more has to come.
    bool shake_hands();
    void write(std::string_view plain);
    // How much was read; 0: more has to come.
    std::size_t read(std::span<char> plain);
    void put_incoming(std::string_view bytes);
    std::string take_outgoing();

private:
    struct Free {
        void operator()(SSL* session) const { SSL_free(session); }
    };
    void raise_unless_waiting(int result) const;
    [[noreturn]] void raise() const;

    std::unique_ptr<SSL, Free> session_;
};

}  // namespace orvo::store
