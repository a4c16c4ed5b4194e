#include "tests/component/containers/cutting_proxy.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "tests/support/loopback_address.h"

namespace orvo {
namespace {

[[noreturn]] void raise(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

bool is_readable(const pollfd& one) { return (one.revents & (POLLIN | POLLHUP | POLLERR)) != 0; }

// Passes on what there is to read; false at the end of the connection.
bool move(int from, int to) {
    char buffer[1 << 16];
    const ssize_t count = ::recv(from, buffer, sizeof buffer, 0);
    for (ssize_t done = 0; done < count;) {
        const ssize_t sent =
            ::send(to, buffer + done, static_cast<std::size_t>(count - done), MSG_NOSIGNAL);
        if (sent <= 0) return false;
        done += sent;
    }
    return count > 0;
}

}  // namespace

CuttingProxy::CuttingProxy(int server_port)
    : server_port_(server_port), listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address = loopback_address(0);
    socklen_t size = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (::bind(listener_, generic, size) != 0 || ::listen(listener_, 16) != 0 ||
        ::getsockname(listener_, generic, &size) != 0 || ::pipe(stop_) != 0)
        raise("no proxy");
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { serve(); });
}

CuttingProxy::~CuttingProxy() {
    ::close(stop_[1]);
    thread_.join();
    ::close(stop_[0]);
    ::close(listener_);
}

void CuttingProxy::close_after(int requests) {
    has_cut_ = false;
    left_ = requests;
}

void CuttingProxy::open() { left_ = unlimited; }

void CuttingProxy::serve() {
    std::vector<Passage> passages;
    for (;;) {
        std::vector<pollfd> waiting = {{stop_[0], POLLIN, 0}, {listener_, POLLIN, 0}};
        for (const Passage& passage : passages) {
            waiting.push_back({passage.client, POLLIN, 0});
            waiting.push_back({passage.server, POLLIN, 0});
        }
        ::poll(waiting.data(), waiting.size(), -1);
        if (waiting[0].revents != 0) break;
        std::vector<Passage> kept;
        for (std::size_t i = 0; i < passages.size(); ++i) {
            if (pass_on(passages[i], is_readable(waiting[2 + 2 * i]),
                        is_readable(waiting[3 + 2 * i]))) {
                kept.push_back(passages[i]);
            } else {
                ::close(passages[i].client);
                ::close(passages[i].server);
            }
        }
        passages = std::move(kept);
        if (is_readable(waiting[1])) {
            const int client = ::accept(listener_, nullptr, nullptr);
            const int server = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
            const sockaddr_in address = loopback_address(server_port_);
            ::connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address);
            passages.push_back({client, server});
        }
    }
    for (const Passage& passage : passages) {
        ::close(passage.client);
        ::close(passage.server);
    }
}

bool CuttingProxy::pass_on(const Passage& passage, bool from_client, bool from_server) {
    if (from_server && !move(passage.server, passage.client)) return false;
    if (!from_client) return true;
    if (left_ == 0) {
        has_cut_ = true;
        return false;
    }
    if (left_ > 0) --left_;
    return move(passage.client, passage.server);
}

}  // namespace orvo
