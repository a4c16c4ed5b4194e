#include "tests/suite/store/scripted_redis.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <map>
#include <system_error>

#include "tests/support/loopback_address.h"

namespace orvo::store {

std::string usual_answer(const Command& command) {
    if (command.front() == "HELLO") return "*2\r\n$4\r\nrole\r\n$6\r\nmaster\r\n";
    return "+OK\r\n";
}

ScriptedRedis::ScriptedRedis(Answer answer)
    : answer_(std::move(answer)), listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address = loopback_address(0);
    socklen_t size = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (::bind(listener_, generic, size) != 0 || ::getsockname(listener_, generic, &size) != 0 ||
        ::listen(listener_, 16) != 0 || ::pipe(wake_) != 0)
        throw std::system_error(errno, std::generic_category(), "a scripted server");
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { serve(); });
}

ScriptedRedis::~ScriptedRedis() {
    ::close(wake_[1]);
    thread_.join();
    ::close(wake_[0]);
    ::close(listener_);
}

Settings ScriptedRedis::settings() const {
    Settings settings;
    settings.addresses = {{"127.0.0.1", port_}};
    return settings;
}

std::vector<Command> ScriptedRedis::commands() const {
    const std::lock_guard lock(mutex_);
    return commands_;
}

void ScriptedRedis::serve() {
    std::map<int, Peer> peers;
    for (int accepted = 0;;) {
        std::vector<pollfd> waiting = {{wake_[0], POLLIN, 0}, {listener_, POLLIN, 0}};
        for (const auto& [socket, peer] : peers) waiting.push_back({socket, POLLIN, 0});
        ::poll(waiting.data(), waiting.size(), -1);
        if (waiting[0].revents != 0) break;
        if (waiting[1].revents != 0)
            peers.try_emplace(::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC), accepted++);
        for (std::size_t i = 2; i < waiting.size(); ++i) {
            const int socket = waiting[i].fd;
            if (waiting[i].revents == 0 || serve(socket, peers.at(socket))) continue;
            ::close(socket);
            peers.erase(socket);
        }
    }
    for (const auto& [socket, peer] : peers) ::close(socket);
}

bool ScriptedRedis::serve(int socket, Peer& peer) {
    std::array<char, 16384> bytes;
    const ssize_t count = ::recv(socket, bytes.data(), bytes.size(), 0);
    if (count <= 0) return false;
    peer.reader.feed({bytes.data(), static_cast<std::size_t>(count)});
    while (const std::optional<Reply> words = peer.reader.next()) {
        Command command;
        for (const Reply& word : words->list()) command.push_back(word.text());
        const bool is_login =
            command.front() == "HELLO" || command.front() == "PING" || command.front() == "SELECT";
        if (!is_login) {
            const std::lock_guard lock(mutex_);
            commands_.push_back(command);
        }
        const std::optional<std::string> answer = answer_(peer.number, command);
        if (!answer) return false;
        ::send(socket, answer->data(), answer->size(), MSG_NOSIGNAL);
    }
    return true;
}

}  // namespace orvo::store
