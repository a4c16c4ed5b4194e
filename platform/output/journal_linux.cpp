#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>

#include "platform/output/journal.h"

namespace orvo {

void write_to_journal(std::string_view identifier, std::string_view message,
                      const std::filesystem::path& socket_file) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string& path = socket_file.native();
    if (path.size() >= sizeof address.sun_path)
        throw std::system_error(ENAMETOOLONG, std::generic_category());
    std::memcpy(address.sun_path, path.data(), path.size());

    std::string entry = "PRIORITY=6\nSYSLOG_IDENTIFIER=";
    (entry += identifier) += "\nMESSAGE=";
    (entry += message) += '\n';
    const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const auto sent = descriptor == -1
                          ? -1
                          : sendto(descriptor, entry.data(), entry.size(), MSG_NOSIGNAL,
                                   reinterpret_cast<const sockaddr*>(&address), sizeof address);
    const int reason = errno;
    if (descriptor != -1) close(descriptor);
    if (sent == -1) throw std::system_error(reason, std::generic_category());
}

}  // namespace orvo
