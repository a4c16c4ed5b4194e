#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>

#include <cstdint>

namespace orvo {

// A port of the loopback address; 0: any free one.
inline sockaddr_in loopback_address(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

}  // namespace orvo
