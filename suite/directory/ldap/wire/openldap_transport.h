#pragma once

// The two layers of our own in an OpenLDAP connection. Private to the library's sources.
//
// The lowest one, in place of the library's, reads ahead (the library asks for each message in
// several small pieces, of which each would be a system call); writing to a connection that the
// server has closed is an error code instead of a signal that ends the process. The highest one,
// above encryption, overwrites what has been written: a request may hold a password, and the
// library frees its memory as it is.

#include <chrono>
#include <cstdint>
#include <optional>

struct ldap;

namespace orvo::directory::ldap::detail {

// Puts the layers in. `longest_message` is the length from which an incoming message is refused.
// False when the library refuses.
bool add_transport(::ldap* handle, unsigned long longest_message);

// Until `deadline`, reading and writing wait for the server, and fail once it has passed. While
// encryption is agreed on the library would otherwise ask again and again without a pause or an
// end.
void wait_until(::ldap* handle, std::chrono::steady_clock::time_point deadline);

// From here on, reading and writing never wait again. Agreeing on encryption leaves the socket one
// that does not wait, which await_bytes needs to; this takes that back.
void never_wait(::ldap* handle);

// Waits for the answer to the connection's only request, and receives its beginning: one system
// call, where waiting and then reading are two. False when nothing came within `limit`, which is
// not 0. Where the connection fails or ends, whoever reads next is told. Comes back at once where
// the request has not been sent whole: the library sends the rest while it waits itself.
bool await_bytes(::ldap* handle, std::chrono::milliseconds limit);

// How much has been sent in all, encryption's own bytes included.
std::uint64_t bytes_sent(::ldap* handle);

// Whether nothing has come from the server: no message, no end of the connection.
bool is_quiet(::ldap* handle);

}  // namespace orvo::directory::ldap::detail
