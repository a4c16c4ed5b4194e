#pragma once

// How a connection comes about with OpenLDAP's client library. Private to the library's two
// sources.

#include <memory>

#include "suite/directory/ldap/wire/session.h"

struct ldap;

namespace orvo::directory::ldap::detail {

struct CloseHandle {
    void operator()(::ldap* handle) const;
};
using Handle = std::unique_ptr<::ldap, CloseHandle>;

// Connects to one host and encrypts the connection where it asks for it. Empty: `why` tells.
Handle open_connection(const ServerHost& host, const Limits& limits, Result& why);

// The result of a client call that failed with the library's own code.
Result client_result(::ldap* handle, int library_code);

// Waits for the complete answer to a request, or for the next message of it; never longer than
// `limit`. Empty: `why` tells, and the request is abandoned.
struct FreeMessage {
    void operator()(void* message) const;
};
using Message = std::unique_ptr<void, FreeMessage>;
enum class Wanted { one_message, all_messages };
Message wait_for(::ldap* handle, int request, Wanted wanted, std::chrono::milliseconds limit,
                 Result& why);

}  // namespace orvo::directory::ldap::detail
