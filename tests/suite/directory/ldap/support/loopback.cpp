#include "tests/suite/directory/ldap/support/loopback.h"

#include <arpa/inet.h>
#include <sys/socket.h>

#include <cerrno>
#include <system_error>

namespace orvo::directory::ldap {
namespace {

sockaddr_in loopback_address(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

}  // namespace

int listen_on_loopback(int& port) {
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback_address(0);
    socklen_t size = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (listener < 0 || ::bind(listener, generic, size) != 0 || ::listen(listener, 8) != 0 ||
        ::getsockname(listener, generic, &size) != 0)
        throw std::system_error(errno, std::generic_category(), "no server for the test");
    port = ntohs(address.sin_port);
    return listener;
}

int connect_to_loopback(int port) {
    const int connection = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback_address(port);
    if (connection < 0 ||
        ::connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
        throw std::system_error(errno, std::generic_category(), "no connection for the test");
    return connection;
}

}  // namespace orvo::directory::ldap
