#pragma once

// The socket over which an administrator of this machine asks a running host.

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

namespace orvo::web {

// Listens as long as it lives, on a thread of its own, and answers one request after the other. A
// connection is one request, a line of at most 200 octets; what `answer` gives for it is sent, and
// the connection ends. Only the user whom the host runs as, and root, may connect (mode 0600).
class AdministrationSocket {
public:
    using Answer = std::function<std::string(std::string_view request)>;

    // Makes the socket, in place of one that nobody listens at any more. Raises std::runtime_error
    // with the file and the reason, also where another process listens there. `answer` does not
    // raise.
    AdministrationSocket(std::filesystem::path file, Answer answer);
    // Waits for the answer that is being given, and removes the file.
    ~AdministrationSocket();
    AdministrationSocket(const AdministrationSocket&) = delete;
    AdministrationSocket& operator=(const AdministrationSocket&) = delete;

private:
    void serve();
    void serve_one(int connection) const;

    const std::filesystem::path file_;
    const Answer answer_;
    int listener_ = -1;
    int end_ = -1;  // an event: the thread is to end
    std::thread thread_;
};

}  // namespace orvo::web
