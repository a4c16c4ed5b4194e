#include "tests/suite/directory/ldap/support/bad_server.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "tests/suite/directory/ldap/support/loopback.h"

namespace orvo::directory::ldap {
namespace {

// False when the test is over.
bool readable(int descriptor, int stop) {
    pollfd waiting[] = {{descriptor, POLLIN, 0}, {stop, POLLIN, 0}};
    while (::poll(waiting, 2, -1) < 0 && errno == EINTR) {
    }
    return waiting[1].revents == 0;
}

}  // namespace

BadServer::BadServer(Manners manners)
    : manners_(std::move(manners)), listener_(listen_on_loopback(port_)) {
    if (::pipe(stop_) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    thread_ = std::thread([this] { serve(); });
}

BadServer::~BadServer() {
    ::close(stop_[1]);
    thread_.join();
    ::close(stop_[0]);
    ::close(listener_);
}

void BadServer::serve() {
    while (readable(listener_, stop_[0])) {
        const int connection = ::accept(listener_, nullptr, nullptr);
        if (connection < 0) continue;
        ++connections_;
        char ignored[4096];
        bool goes_on = true;
        if (manners_.waits_for_a_request)
            goes_on = readable(connection, stop_[0]) &&
                      ::recv(connection, ignored, sizeof ignored, 0) > 0;
        if (goes_on && !manners_.answer.empty())
            ::send(connection, manners_.answer.data(), manners_.answer.size(), MSG_NOSIGNAL);
        while (goes_on && manners_.keeps_the_connection)
            goes_on = readable(connection, stop_[0]) &&
                      ::recv(connection, ignored, sizeof ignored, 0) > 0;
        ::close(connection);
    }
}

std::string refused_server() {
    int port = 0;
    ::close(listen_on_loopback(port));
    return "127.0.0.1:" + std::to_string(port);
}

}  // namespace orvo::directory::ldap
