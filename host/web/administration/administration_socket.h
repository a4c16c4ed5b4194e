#pragma once

// The socket over which an administrator of this machine asks a running host.

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace orvo::web {

// Listens as long as it lives, on a thread of its own, and answers one request after the other. A
// connection is one request, a line of at most longest_request octets; what `answer` gives for it
// is sent, and the connection ends; so it does when the request and its answer have not gone over
// within `patience`. Only the user whom the host runs as, and root, may connect (mode 0600).
class AdministrationSocket {
public:
    using Answer = std::function<std::string(std::string_view request)>;
    static constexpr std::size_t longest_request = 4096;  // an entry's name fits

    // Makes the socket, in place of one that nobody listens at any more. Raises std::runtime_error
    // with the file and the reason, also where another process listens there. `answer` does not
    // raise.
    AdministrationSocket(std::filesystem::path file, Answer answer,
                         std::chrono::milliseconds patience = std::chrono::seconds(5));
    // Waits for what `answer` is doing, but for no client, and removes the file.
    ~AdministrationSocket();
    AdministrationSocket(const AdministrationSocket&) = delete;
    AdministrationSocket& operator=(const AdministrationSocket&) = delete;

private:
    using Deadline = std::chrono::steady_clock::time_point;

    void serve();
    void serve_one(int connection) const;
    std::optional<std::string> request_from(int connection, Deadline deadline) const;
    bool wait_for(short event, int connection, Deadline deadline) const;

    const std::filesystem::path file_;
    const Answer answer_;
    const std::chrono::milliseconds patience_;
    int listener_ = -1;
    int end_ = -1;  // an event: the thread is to end
    std::thread thread_;
};

}  // namespace orvo::web
