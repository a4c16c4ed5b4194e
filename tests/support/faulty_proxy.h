#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace orvo {

// Stands between clients and a server, both on the loopback address, and can do to the clients what
// a network or a server does when it fails. Ends, with all its connections, with the object.
//
// Any thread. What is told takes effect before the call returns.
class FaultyProxy {
public:
    // Sees what the client of one connection sends, piece by piece, when it arrives here, whether
    // or not it reaches the server. Runs on the proxy's thread.
    using Listener = std::function<void(std::string_view)>;
    // Makes the listener of a new connection.
    using ListenerMaker = std::function<Listener()>;

    explicit FaultyProxy(int server_port, ListenerMaker new_listener = {});
    ~FaultyProxy();
    FaultyProxy(const FaultyProxy&) = delete;
    FaultyProxy& operator=(const FaultyProxy&) = delete;

    // Stays the same as long as the object lives, also while connections are refused.
    int port() const { return port_; }
    std::string server() const { return "127.0.0.1:" + std::to_string(port_); }

    // Healthy again. What was held back is passed on now, as a network does that lost the packets
    // and gets them sent again: a server may see requests that nobody waits for any more.
    void pass_on();
    // Nothing is passed on in either direction; connections stay open, and new ones are accepted.
    void fall_silent();
    // Each answer comes so much later.
    void slow_down(std::chrono::milliseconds delay);
    // New connections are refused; those that exist stay.
    void refuse();
    // New connections are refused, and those that exist are reset.
    void refuse_and_reset();

private:
    using Clock = std::chrono::steady_clock;
    struct Passage;

    void serve();
    void accept_one();
    void do_what_is_told();
    // `action` on the proxy's thread; returns when it is done.
    void tell(std::function<void()> action);
    void listen();
    void stop_listening();

    const int server_port_;
    const ListenerMaker new_listener_;
    int port_ = 0;
    int reserved_;       // keeps the port while nobody listens
    int listener_ = -1;  // -1: connections are refused
    int wake_[2];
    std::mutex mutex_;
    std::vector<std::packaged_task<void()>> told_;  // under mutex_
    // Of the proxy's thread.
    std::vector<std::unique_ptr<Passage>> passages_;
    bool is_silent_ = false;
    bool is_ending_ = false;
    std::chrono::milliseconds delay_{0};
    std::thread thread_;
};

}  // namespace orvo
