#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/support/loopback_socket.h"

namespace orvo::web {

// A connection to a port of the loopback address that says exactly what it is given. Whoever reads
// waits ten seconds for the other side to say something or to close; then the test has failed, and
// it counts as closed.
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
            const std::size_t count = receive(bytes.data(), bytes.size());
            if (count == 0) return all;
            all.append(bytes.data(), count);
        }
    }
    // Until these bytes have come, or the other side closes. What follows them is read by the next
    // call.
    std::string read_until(std::string_view end) {
        std::string all;
        char byte = 0;
        while (!all.ends_with(end) && receive(&byte, 1) == 1) all += byte;
        return all;
    }
    // So many bytes, or fewer where the other side closes.
    std::string read(std::size_t count) {
        std::string all(count, '\0');
        all.resize(receive(all.data(), count, MSG_WAITALL));
        return all;
    }
    std::string ask(std::string_view request) {
        send(request);
        return read_all();
    }

private:
    // 0: the other side has closed.
    std::size_t receive(char* bytes, std::size_t most, int flags = 0) const {
        const ssize_t count = recv(socket_, bytes, most, flags);
        if (count < 0 && errno == EAGAIN) ADD_FAILURE() << "nothing has come";
        return count < 0 ? 0 : static_cast<std::size_t>(count);
    }

    const int socket_;
};

}  // namespace orvo::web
