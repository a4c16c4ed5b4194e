#include "tests/suite/directory/ldap/support/peer.h"

#include <sys/socket.h>
#include <unistd.h>

#include <utility>

#include "tests/suite/directory/ldap/support/loopback.h"

namespace orvo::directory::ldap {

Peer::Peer(std::function<void(int connection)> conduct) : listener_(listen_on_loopback(port_)) {
    // What is sent to it fills its window soon.
    const int window = 65'536;
    ::setsockopt(listener_, SOL_SOCKET, SO_RCVBUF, &window, sizeof window);
    thread_ = std::thread([this, conduct = std::move(conduct)] {
        const int connection = ::accept(listener_, nullptr, nullptr);
        conduct(connection);
        ::close(connection);
    });
}

Peer::~Peer() {
    thread_.join();
    ::close(listener_);
}

Session Peer::session(std::chrono::milliseconds limit) const {
    return session(Limits{std::chrono::seconds(3), limit});
}

void send(int connection, const std::string& bytes) {
    ::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

void take_everything(int connection, std::chrono::milliseconds pause) {
    std::string bytes(65'536, ' ');
    while (::recv(connection, bytes.data(), bytes.size(), 0) > 0)
        std::this_thread::sleep_for(pause);
}

std::string modified(int request) {
    using namespace std::string_literals;
    return "\x30\x0D\x02\x02"s + static_cast<char>(request >> 8) + static_cast<char>(request) +
           "\x67\x07\x0A\x01\x00\x04\x00\x04\x00"s;
}

}  // namespace orvo::directory::ldap
