#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace orvo::directory::ldap {

// A server on the loopback address that speaks LDAP badly. It accepts connections, one at a time,
// and sends a fixed answer to whatever comes first on each, or nothing; then it keeps the
// connection or closes it. Ends with the object.
class BadServer {
public:
    struct Manners {
        bool waits_for_a_request = true;  // before it answers
        std::string answer = {};          // empty: none
        bool keeps_the_connection = true;
    };

    explicit BadServer(Manners manners);
    ~BadServer();
    BadServer(const BadServer&) = delete;
    BadServer& operator=(const BadServer&) = delete;

    std::string server() const { return "127.0.0.1:" + std::to_string(port_); }
    int connections() const { return connections_; }

private:
    void serve();

    Manners manners_;
    int port_ = 0;
    int listener_;
    int stop_[2];
    std::atomic<int> connections_ = 0;
    std::thread thread_;
};

// A port of the loopback address where nobody listens.
std::string refused_server();

}  // namespace orvo::directory::ldap
