#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/child_process.h"
#include "tests/support/faulty_proxy.h"

namespace orvo::fleet {

// The lines that a node's two configurations have beside the sample's.
struct NodeLines {
    std::string site;  // sections of the site's configuration
    std::string web;   // keys of the web site's
};

// One orvo-web that serves the sample shop. It reaches each of its servers through a proxy of its
// own, and whoever balances reaches it through one; browsers that mean this node and no other ask
// it directly. The processes live as long as the thread that makes it; all calls are that thread's.
class Node {
public:
    // The ports of its servers. The proxies are there from now on, the program from start() on.
    Node(std::filesystem::path folder, const std::vector<int>& directories,
         std::optional<int> store);

    // Writes the configurations; the program takes them at its next start.
    void configure(const NodeLines& lines);
    // Returns when it answers; on the same port each time.
    void start();
    // Asks it to end, and waits until it has.
    void stop();
    void kill();
    void freeze();
    void go_on();

    int port() const { return port_; }
    pid_t pid() const { return process_->pid(); }
    // Between the balancer and this node.
    FaultyProxy& front() { return *front_; }
    FaultyProxy& directory(std::size_t server) { return *directories_.at(server); }
    FaultyProxy& store() { return *store_; }
    std::filesystem::path log() const { return folder_ / "orvo-web.log"; }

private:
    int listening_port(std::size_t log_begin);

    const std::filesystem::path folder_;
    std::vector<std::unique_ptr<FaultyProxy>> directories_;
    std::unique_ptr<FaultyProxy> store_;
    std::unique_ptr<FaultyProxy> front_;
    int port_ = 0;
    std::unique_ptr<ChildProcess> process_;
};

}  // namespace orvo::fleet
