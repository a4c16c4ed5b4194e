#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "platform/network/deadline.h"
#include "suite/store/store_settings.h"
#include "suite/store/tls_session.h"

namespace orvo::store {

// The bytes of one connection, plain or encrypted. Everything raises Lost, also where the deadline
// passes. One thread at a time, but for interrupt.
class Transport {
public:
    // Finds the host, connects and agrees on encryption (null: there is none).
    Transport(const Address& address, const TlsContext& tls, const Deadline& deadline);
    ~Transport();
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;

    // All of it. A Lost tells whether something may have been sent.
    void send(std::string_view bytes, const Deadline& deadline);
    // Waits until there is something: how much was read, at least a byte.
    std::size_t receive(std::span<char> bytes, const Deadline& deadline);
    // Neither has it ended, nor is there anything to be read.
    bool is_quiet() const;
    // Whoever waits finds the connection ended. Any thread.
    void interrupt();

private:
    Transport() = default;

    void connect_to(const Address& address, const Deadline& deadline);
    void shake_hands(const Deadline& deadline);
    void send_plain(std::string_view bytes, const Deadline& deadline);
    std::size_t receive_plain(std::span<char> bytes, const Deadline& deadline);
    void await(short events, const Deadline& deadline) const;

    int socket_ = -1;
    std::optional<TlsSession> tls_;
};

}  // namespace orvo::store
