#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "suite/directory/ldap/wire/session.h"

namespace orvo::directory::ldap {

// A server for one connection that does what it is told, and ends with the object.
class Peer {
public:
    explicit Peer(std::function<void(int connection)> conduct);
    ~Peer();
    Peer(const Peer&) = delete;

    std::string server() const { return "127.0.0.1:" + std::to_string(port_); }
    ServerHost host() const { return {"127.0.0.1", static_cast<std::uint16_t>(port_)}; }
    Session session(const Limits& limits) const { return Session::connect(host(), limits); }
    // That waits so long for an answer.
    Session session(std::chrono::milliseconds limit) const;

private:
    int port_ = 0;
    int listener_;
    std::thread thread_;
};

void send(int connection, const std::string& bytes);

// Until the client has closed.
void take_everything(int connection, std::chrono::milliseconds pause = {});

// The answer that ends a modification, the request of this number (from 1) of its
// connection: a success.
std::string modified(int request);

}  // namespace orvo::directory::ldap
