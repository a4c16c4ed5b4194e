#include "host/web/service_manager.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace orvo::web {
namespace {

// A program that is started from here must not take it for its own.
std::string taken(const char* variable) {
    const char* value = std::getenv(variable);
    const std::string text = value ? value : "";
    unsetenv(variable);
    return text;
}

long long number(const char* variable, const std::string& text) {
    long long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || value < 0)
        throw std::runtime_error(std::string(variable) + " is a number, not \"" + text + "\"");
    return value;
}

}  // namespace

ServiceManager::ServiceManager() : socket_(taken("NOTIFY_SOCKET")) {
    if (socket_.size() >= sizeof(sockaddr_un::sun_path))
        throw std::runtime_error("NOTIFY_SOCKET is too long for a socket's name");
    const std::string interval = taken("WATCHDOG_USEC");
    const std::string process = taken("WATCHDOG_PID");
    const bool is_meant = process.empty() || number("WATCHDOG_PID", process) == getpid();
    if (socket_.empty() || interval.empty() || !is_meant) return;
    // Half of the time that the manager waits.
    watch_ = std::max(std::chrono::milliseconds(1),
                      std::chrono::duration_cast<std::chrono::milliseconds>(
                          std::chrono::microseconds(number("WATCHDOG_USEC", interval)) / 2));
}

void ServiceManager::ready() const { tell("READY=1"); }
void ServiceManager::reloading() const { tell("RELOADING=1"); }
void ServiceManager::stopping() const { tell("STOPPING=1"); }
void ServiceManager::alive() const { tell("WATCHDOG=1"); }

void ServiceManager::tell(std::string_view message) const {
    if (socket_.empty()) return;
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    std::ranges::copy(socket_, address.sun_path);
    // A name without a file.
    if (socket_.front() == '@') address.sun_path[0] = '\0';
    const int sender = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + socket_.size());
    const bool is_told = sender >= 0 && sendto(sender, message.data(), message.size(), MSG_NOSIGNAL,
                                               reinterpret_cast<const sockaddr*>(&address),
                                               size) == static_cast<ssize_t>(message.size());
    const int error = errno;
    if (sender >= 0) close(sender);
    if (!is_told)
        throw std::system_error(error, std::generic_category(),
                                "the service manager cannot be told (" + socket_ + ")");
}

}  // namespace orvo::web
