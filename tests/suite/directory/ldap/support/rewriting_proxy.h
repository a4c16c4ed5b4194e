#pragma once

#include <mutex>
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

    // The next so many requests that hold `part` reach nobody: each ends its connection instead.
    void cut_requests(int count, const std::string& part = {}) { requests_cut_.set(count, part); }
    // The same, but the connection stays, and nothing ever comes back.
    void swallow_requests(int count, const std::string& part) { swallowed_.set(count, part); }
    // The answers to the next so many requests that hold `part` reach nobody: each ends its
    // connection instead. The server has done what was asked by then.
    void cut_answers(int count, const std::string& part = {}) { answers_cut_.set(count, part); }

private:
    // So many more of what holds a part.
    class Countdown {
    public:
        void set(int count, const std::string& part);
        bool counts(const std::string& bytes);

    private:
        std::mutex mutex_;
        int left_ = 0;
        std::string part_;
    };

    void serve();
    void pass_on(int client, int server);

    int server_port_;
    std::string from_;
    std::string to_;
    Countdown requests_cut_, swallowed_, answers_cut_;
    int port_ = 0;
    int listener_;
    int stop_[2];
    std::thread thread_;
};

}  // namespace orvo::directory::ldap
