#include "tests/suite/directory/ldap/support/rewriting_proxy.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

#include "tests/suite/directory/ldap/support/loopback.h"

namespace orvo::directory::ldap {
namespace {

bool readable(pollfd& one) { return (one.revents & (POLLIN | POLLHUP | POLLERR)) != 0; }

// What is there to read; empty at the end of the connection.
std::string received(int connection) {
    std::vector<char> buffer(1 << 20);
    const ssize_t count = ::recv(connection, buffer.data(), buffer.size(), 0);
    return count > 0 ? std::string(buffer.data(), static_cast<std::size_t>(count)) : std::string();
}

}  // namespace

RewritingProxy::RewritingProxy(const std::string& server, std::string from, std::string to)
    : server_port_(std::stoi(server.substr(server.find(':') + 1))),
      from_(std::move(from)),
      to_(std::move(to)),
      listener_(listen_on_loopback(port_)) {
    if (from_.size() != to_.size()) throw std::logic_error("the lengths differ");
    if (::pipe(stop_) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    thread_ = std::thread([this] { serve(); });
}

RewritingProxy::~RewritingProxy() {
    ::close(stop_[1]);
    thread_.join();
    ::close(stop_[0]);
    ::close(listener_);
}

void RewritingProxy::Countdown::set(int count, const std::string& part) {
    const std::lock_guard lock(mutex_);
    left_ = count;
    part_ = part;
}

bool RewritingProxy::Countdown::counts(const std::string& bytes) {
    const std::lock_guard lock(mutex_);
    if (left_ == 0 || bytes.find(part_) == std::string::npos) return false;
    --left_;
    return true;
}

void RewritingProxy::serve() {
    for (;;) {
        pollfd waiting[] = {{listener_, POLLIN, 0}, {stop_[0], POLLIN, 0}};
        ::poll(waiting, 2, -1);
        if (waiting[1].revents) return;
        const int client = ::accept(listener_, nullptr, nullptr);
        if (client < 0) continue;
        const int server = connect_to_loopback(server_port_);
        pass_on(client, server);
        ::close(server);
        ::close(client);
    }
}

void RewritingProxy::pass_on(int client, int server) {
    bool is_answer_cut = false;
    for (;;) {
        pollfd waiting[] = {{client, POLLIN, 0}, {server, POLLIN, 0}, {stop_[0], POLLIN, 0}};
        ::poll(waiting, 3, -1);
        if (waiting[2].revents) return;
        if (readable(waiting[0])) {
            const std::string asked = received(client);
            if (asked.empty()) return;
            if (requests_cut_.counts(asked)) return;
            if (swallowed_.counts(asked)) continue;
            if (answers_cut_.counts(asked)) is_answer_cut = true;
            ::send(server, asked.data(), asked.size(), MSG_NOSIGNAL);
        }
        if (readable(waiting[1])) {
            std::string answer = received(server);
            if (answer.empty() || is_answer_cut) return;
            for (std::size_t at = 0; (at = answer.find(from_, at)) != std::string::npos;)
                answer.replace(at, from_.size(), to_);
            ::send(client, answer.data(), answer.size(), MSG_NOSIGNAL);
        }
    }
}

}  // namespace orvo::directory::ldap
