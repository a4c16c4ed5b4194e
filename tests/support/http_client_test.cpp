#include "tests/support/http_client.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <string_view>
#include <thread>

#include "tests/support/loopback_socket.h"

namespace orvo {
namespace {

// Ends each connection in the middle of the handshake, with an answer of which a client complains.
class RudeServer {
public:
    RudeServer() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        bind(listener_, reinterpret_cast<sockaddr*>(&address), size);
        listen(listener_, 8);
        getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { serve(); });
    }
    ~RudeServer() {
        shutdown(listener_, SHUT_RDWR);
        thread_.join();
        close(listener_);
    }
    RudeServer(const RudeServer&) = delete;
    RudeServer& operator=(const RudeServer&) = delete;

    int port() const { return port_; }

private:
    void serve() const {
        int connection = -1;
        while ((connection = accept(listener_, nullptr, nullptr)) >= 0) {
            // What has come is not read: the end is sudden.
            pollfd waited{connection, POLLIN, 0};
            poll(&waited, 1, 10'000);
            const std::string_view empty_hello("\x16\x03\x03\0\x04\x02\0\0\0", 9);
            send(connection, empty_hello.data(), empty_hello.size(), MSG_NOSIGNAL);
            shutdown(connection, SHUT_WR);
            close(connection);
        }
    }

    const int listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int port_ = 0;
    std::thread thread_;
};

TEST(HttpClient, SurvivesAServerThatEndsTheConnectionDuringTheHandshake) {
    const RudeServer server;
    // Whether the client still has something to say when the end has come is a matter of luck.
    for (int i = 0; i < 200; ++i) EXPECT_FALSE(HttpClient(server.port(), "/none.pem").get("/"));
}

}  // namespace
}  // namespace orvo
