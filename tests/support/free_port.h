#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "tests/support/loopback_address.h"

namespace orvo {

// A port of the loopback address that nobody uses, kept until the end of the object's life. A
// program that is to listen there is started after that: until it does, somebody else may take it.
class FreePort {
public:
    FreePort() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address = loopback_address(0);
        socklen_t size = sizeof address;
        auto* generic = reinterpret_cast<sockaddr*>(&address);
        if (::bind(socket_, generic, size) != 0 || ::getsockname(socket_, generic, &size) != 0)
            throw std::system_error(errno, std::generic_category(), "no free port");
        number_ = ntohs(address.sin_port);
    }
    ~FreePort() { ::close(socket_); }
    FreePort(const FreePort&) = delete;
    FreePort& operator=(const FreePort&) = delete;

    int number() const { return number_; }

private:
    int socket_;
    int number_ = 0;
};

}  // namespace orvo
