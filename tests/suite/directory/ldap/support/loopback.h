#pragma once

namespace orvo::directory::ldap {

// A socket that listens on a free port of the loopback address; `port` is set to it. Raises
// std::system_error.
int listen_on_loopback(int& port);

// A socket connected to a port of the loopback address; raises std::system_error.
int connect_to_loopback(int port);

}  // namespace orvo::directory::ldap
