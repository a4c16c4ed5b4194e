#include "host/web/administration/administration_socket.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

constexpr int pause_without_descriptors = 200;  // milliseconds

[[noreturn]] void raise(const fs::path& file, const std::string& reason) {
    throw std::runtime_error(file.string() + ": no administration socket can be made (" + reason +
                             ")");
}
[[noreturn]] void raise(const fs::path& file) {
    raise(file, std::generic_category().message(errno));
}

int new_socket(const fs::path& file) {
    const int made = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (made == -1) raise(file);
    return made;
}

sockaddr_un address_of(const fs::path& file) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (file.native().size() >= sizeof address.sun_path) raise(file, "the name is too long");
    file.native().copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

// What another process has left behind goes; a file that is no socket stays.
void make_way(const fs::path& file, const sockaddr_un& address) {
    std::error_code error;
    if (fs::status(file, error).type() != fs::file_type::socket) return;
    const int probe = new_socket(file);
    const bool is_used =
        connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(probe);
    if (is_used) raise(file, "another process listens there");
    fs::remove(file, error);
}

// Whoever else gets at the file, as in a folder that is another's, is not served.
bool is_allowed(int connection) {
    ucred who{};
    socklen_t size = sizeof who;
    return getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &who, &size) == 0 &&
           (who.uid == geteuid() || who.uid == 0);
}

}  // namespace

AdministrationSocket::AdministrationSocket(fs::path file, Answer answer,
                                           std::chrono::milliseconds patience)
    : file_(std::move(file)), answer_(std::move(answer)), patience_(patience) {
    const sockaddr_un address = address_of(file_);
    make_way(file_, address);
    listener_ = new_socket(file_);
    end_ = eventfd(0, EFD_CLOEXEC);
    // Before it has a name, so that it never has another mode.
    if (end_ == -1 || fchmod(listener_, S_IRUSR | S_IWUSR) == -1 ||
        bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1 ||
        listen(listener_, 8) == -1) {
        const int reason = errno;
        close(listener_);
        if (end_ != -1) close(end_);
        errno = reason;
        raise(file_);
    }
    thread_ = std::thread([this] { serve(); });
}

AdministrationSocket::~AdministrationSocket() {
    eventfd_write(end_, 1);
    thread_.join();
    std::error_code error;
    fs::remove(file_, error);
    close(listener_);
    close(end_);
}

void AdministrationSocket::serve() {
    std::array<pollfd, 2> waited{pollfd{listener_, POLLIN, 0}, pollfd{end_, POLLIN, 0}};
    for (;;) {
        if (poll(waited.data(), waited.size(), -1) == -1) continue;
        if (waited[1].revents != 0) return;
        const int connection = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (connection == -1) {
            poll(&waited[1], 1, pause_without_descriptors);
            continue;
        }
        if (is_allowed(connection)) serve_one(connection);
        close(connection);
    }
}

// False where the time is over, or the host ends.
bool AdministrationSocket::wait_for(short event, int connection, Deadline deadline) const {
    using std::chrono::milliseconds;
    std::array<pollfd, 2> waited{pollfd{connection, event, 0}, pollfd{end_, POLLIN, 0}};
    for (;;) {
        const auto left =
            std::chrono::ceil<milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left <= milliseconds(0)) return false;
        const int ready = poll(waited.data(), waited.size(), static_cast<int>(left.count()));
        if (ready == -1 && errno == EINTR) continue;
        return ready > 0 && waited[1].revents == 0;
    }
}

std::optional<std::string> AdministrationSocket::request_from(int connection,
                                                              Deadline deadline) const {
    std::string request;
    std::array<char, longest_request + 1> part{};
    while (request.size() <= longest_request && wait_for(POLLIN, connection, deadline)) {
        const ssize_t size = recv(connection, part.data(), part.size(), 0);
        if (size <= 0) break;
        request.append(part.data(), static_cast<std::size_t>(size));
        const std::size_t end = request.find('\n');
        if (end != std::string::npos && end <= longest_request) return request.substr(0, end);
    }
    return std::nullopt;
}

void AdministrationSocket::serve_one(int connection) const {
    const Deadline deadline = std::chrono::steady_clock::now() + patience_;
    const auto request = request_from(connection, deadline);
    if (!request) return;
    const std::string answer = answer_(*request);
    std::size_t sent = 0;
    while (sent < answer.size() && wait_for(POLLOUT, connection, deadline)) {
        const ssize_t part =
            send(connection, answer.data() + sent, answer.size() - sent, MSG_NOSIGNAL);
        if (part <= 0) return;
        sent += static_cast<std::size_t>(part);
    }
}

}  // namespace orvo::web
