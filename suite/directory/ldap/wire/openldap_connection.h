#pragma once

// How a connection comes about with OpenLDAP's client library, and how it is waited for. Private to
// the library's sources.

#include <memory>
#include <string>

#include "platform/network/deadline.h"
#include "suite/directory/ldap/wire/session.h"

struct ldap;

namespace orvo::directory::ldap::detail {

struct CloseHandle {
    void operator()(::ldap* handle) const;
};
using Handle = std::unique_ptr<::ldap, CloseHandle>;

// Connects to one host before the deadline and encrypts the connection where it asks for it. Empty:
// `why` tells; with code 85 its message names what was not done in time.
Handle open_connection(const ServerHost& host, const Limits& limits, const Deadline& deadline,
                       Result& why);

// The certificate that the server of an encrypted connection has shown (X.509, DER); empty where
// there is none.
std::string server_certificate(::ldap* handle);

// The result of a client call that failed with the library's own code.
Result client_result(::ldap* handle, int library_code);

// The next message of the answer to the connection's only request. Empty: `why` tells, and the
// request is abandoned.
struct FreeMessage {
    void operator()(void* message) const;
};
using Message = std::unique_ptr<void, FreeMessage>;
Message next_message(::ldap* handle, int request, const Deadline& deadline, Result& why);

}  // namespace orvo::directory::ldap::detail
