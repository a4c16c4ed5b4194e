#pragma once

// Which server is the master, and connections to it.

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "suite/store/connection.h"
#include "suite/store/store_settings.h"

namespace orvo::store {

// Remembers the master that it has found, until a connection to it fails: then each of the
// addresses is tried in turn, or each Sentinel is asked, with an equal share of the time that is
// left. Thread-safe.
class Masters {
public:
    // Lives no longer than the settings. Raises what tls_context raises.
    explicit Masters(const Settings& settings);

    // A new connection to the master. Raises Lost, with what there is against each address.
    std::unique_ptr<Connection> connect(const Deadline& deadline);

    // How often another master was found than the one before.
    std::uint64_t failovers() const;

private:
    std::unique_ptr<Connection> connect_to(const Address& master, const Deadline& deadline) const;
    Address ask_sentinel(const Address& sentinel, const Deadline& deadline) const;
    std::optional<Address> current_master() const;
    void note(const Address& master);

    const Settings& settings_;
    const TlsContext tls_;  // null: not encrypted
    mutable std::mutex mutex_;
    std::optional<Address> current_;
    std::uint64_t failovers_ = 0;
};

}  // namespace orvo::store
