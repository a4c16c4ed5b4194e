#pragma once

// One connection to a Redis server, or to a Sentinel.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/values/secret.h"
#include "suite/store/reply_reader.h"
#include "suite/store/transport.h"

namespace orvo::store {

// A connection that is logged in. Everything raises Lost, after which it is of no use. One thread
// at a time, but for interrupt.
class Connection {
public:
    struct Login {
        std::string_view user;  // empty: the default user
        const Secret& password;
        int database = 0;
    };
    // Lost says why the server refuses the login, and that it is still starting.
    Connection(const Address& address, const TlsContext& tls, const Login& login,
               const Deadline& deadline);

    const Address& address() const { return address_; }
    bool is_master() const { return role_ == "master"; }

    // Sends commands in the form of wire_form and waits for their replies, of which some may be
    // errors. A Lost tells whether something may have been sent.
    std::vector<Reply> exchange(std::string_view commands, std::size_t count,
                                const Deadline& deadline);
    // The next reply, or a message; nothing where none comes in time.
    std::optional<Reply> receive(const Deadline& deadline);
    void send(std::string_view commands, const Deadline& deadline);

    // It has not ended, as far as that shows.
    bool is_usable() const { return transport_.is_quiet(); }
    // Whoever waits for a reply finds the connection ended. Any thread.
    void interrupt() { transport_.interrupt(); }

private:
    Reply next(const Deadline& deadline);
    void log_in(const Login& login, const Deadline& deadline);

    const Address address_;
    Transport transport_;
    ReplyReader reader_;
    std::string role_;  // as the server says: "master", "replica", "sentinel"
};

}  // namespace orvo::store
