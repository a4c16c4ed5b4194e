#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace orvo {

// Stands between clients and a server, both on the loopback address, as a server that goes away in
// the middle of what it is asked: after so many requests every connection ends and no new one gets
// an answer, until it is open again. A request is what a client sends at a time. Ends with the
// object.
class CuttingProxy {
public:
    explicit CuttingProxy(int server_port);
    ~CuttingProxy();
    CuttingProxy(const CuttingProxy&) = delete;
    CuttingProxy& operator=(const CuttingProxy&) = delete;

    std::string server() const { return "127.0.0.1:" + std::to_string(port_); }

    // The next so many requests are answered, and then none.
    void close_after(int requests);
    void open();
    // Whether it has cut anything off since it was told to.
    bool has_cut() const { return has_cut_; }

private:
    struct Passage {
        int client;
        int server;
    };
    void serve();
    bool pass_on(const Passage& passage, bool from_client, bool from_server);

    const int server_port_;
    int port_ = 0;
    int listener_;
    int stop_[2];
    static constexpr int unlimited = -1;
    std::atomic<int> left_ = unlimited;
    std::atomic<bool> has_cut_ = false;
    std::thread thread_;
};

}  // namespace orvo
