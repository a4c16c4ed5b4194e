#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>

namespace orvo {

// A socket that is connected to a port of the loopback address and waits so many seconds at most;
// -1 where nobody listens. takes: how many bytes the system keeps of what is not read; 0: as many
// as it likes.
inline int loopback_socket(int port, int seconds, int takes = 0) {
    const int made = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const timeval patience{seconds, 0};
    setsockopt(made, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    setsockopt(made, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    const int is_on = 1;
    setsockopt(made, IPPROTO_TCP, TCP_NODELAY, &is_on, sizeof is_on);
    if (takes > 0) setsockopt(made, SOL_SOCKET, SO_RCVBUF, &takes, sizeof takes);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(made, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return made;
    close(made);
    return -1;
}

}  // namespace orvo
