#pragma once

#include <atomic>
#include <string>
#include <thread>

namespace orvo::directory::ldap {

// Stands between a client and a server, both on the loopback address, for one connection after
// another. In what the server sends, every `from` becomes `to`; both have the same length, so that
// the messages stay whole. Ends with the object.
class RewritingProxy {
public:
    RewritingProxy(const std::string& server, std::string from, std::string to);
    ~RewritingProxy();
    RewritingProxy(const RewritingProxy&) = delete;
    RewritingProxy& operator=(const RewritingProxy&) = delete;

    std::string server() const { return "127.0.0.1:" + std::to_string(port_); }

    // The next so many requests reach nobody: each ends its connection instead.
    void cut_requests(int count) { cuts_ = count; }

private:
    void serve();
    void pass_on(int client, int server);

    int server_port_;
    std::string from_;
    std::string to_;
    std::atomic<int> cuts_ = 0;
    int port_ = 0;
    int listener_;
    int stop_[2];
    std::thread thread_;
};

}  // namespace orvo::directory::ldap
