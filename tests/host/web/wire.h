#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orvo::web {

// A connection to a port of the loopback address that says exactly what it is given. Waits ten
// seconds for an answer.
class Wire {
public:
    explicit Wire(int port) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const timeval patience{10, 0};
        setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        setsockopt(socket_, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
        if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            close(socket_);
            throw std::runtime_error("nobody listens there");
        }
    }
    ~Wire() { close(socket_); }
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;

    // As much as the other side takes.
    void send(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t count = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (count <= 0) return;
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
    }
    // Until the other side closes.
    std::string read_all() {
        std::string all;
        std::array<char, 4096> bytes;
        while (true) {
            const ssize_t count = recv(socket_, bytes.data(), bytes.size(), 0);
            if (count <= 0) return all;
            all.append(bytes.data(), static_cast<std::size_t>(count));
        }
    }
    std::string ask(std::string_view request) {
        send(request);
        return read_all();
    }

private:
    const int socket_;
};

}  // namespace orvo::web
