#pragma once

// The lowest layer of an OpenLDAP connection, in place of the library's own. Private to the
// library's sources.

struct ldap;

namespace orvo::ldap::detail {

// Puts the layer in. It reads ahead (the library asks for each message in several small pieces, of
// which each would be a system call), and writing to a connection that the server has closed is an
// error code instead of a signal that ends the process. `longest_message` is the length from which
// an incoming message is refused. False when the library refuses it.
bool add_transport(::ldap* handle, unsigned long longest_message);

// Encryption leaves the socket blocking; this takes that back.
void keep_from_blocking(int descriptor);

}  // namespace orvo::ldap::detail
