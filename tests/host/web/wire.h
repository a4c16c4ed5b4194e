#pragma once

#include <array>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/support/loopback_socket.h"

namespace orvo::web {

// A connection to a port of the loopback address that says exactly what it is given. Waits ten
// seconds for an answer.
class Wire {
public:
    // takes: how many bytes the system keeps of what is not read; 0: as many as it likes.
    explicit Wire(int port, int takes = 0) : socket_(loopback_socket(port, 10, takes)) {
        if (socket_ < 0) throw std::runtime_error("nobody listens there");
    }
    ~Wire() { close(socket_); }
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;

    // As much as the other side takes; whether that is all.
    bool send(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t count = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (count <= 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        return true;
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
    // Until these bytes have come, or the other side closes. What follows them is read by the next
    // call.
    std::string read_until(std::string_view end) {
        std::string all;
        char byte = 0;
        while (!all.ends_with(end) && recv(socket_, &byte, 1, 0) == 1) all += byte;
        return all;
    }
    // So many bytes, or fewer where the other side closes.
    std::string read(std::size_t count) {
        std::string all(count, '\0');
        const ssize_t done = recv(socket_, all.data(), count, MSG_WAITALL);
        all.resize(done > 0 ? static_cast<std::size_t>(done) : 0);
        return all;
    }
    std::string ask(std::string_view request) {
        send(request);
        return read_all();
    }

private:
    const int socket_;
};

}  // namespace orvo::web
