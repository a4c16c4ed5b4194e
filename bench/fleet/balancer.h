#pragma once

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/child_process.h"

namespace orvo::fleet {

// haproxy in front of the nodes, on a free port of the loopback address.
class Balancer {
public:
    // The ports under which it finds the nodes. Sticky: each browser stays with its node as long as
    // that is up, as nodes need that keep their sessions to themselves. Returns when it listens.
    Balancer(const std::filesystem::path& folder, const std::vector<int>& nodes, bool is_sticky);
    ~Balancer() { process_->terminate(5); }

    int port() const { return port_; }
    pid_t pid() const { return process_->pid(); }
    // Whether it sends requests to the node, and how many nodes there are of which that holds.
    bool serves(std::size_t node) const;
    // Waits for that; raises std::runtime_error where it does not come true.
    void wait_until_it_serves(std::size_t node) const;

    void freeze() { process_->pause(); }
    void go_on() { process_->send(SIGCONT); }
    void kill() { process_.reset(); }
    // On its port; returns when it sends requests to every node.
    void start();

private:
    std::string state_of(std::size_t node) const;

    const std::filesystem::path folder_;
    const std::size_t nodes_;
    int port_;
    int report_port_;
    std::unique_ptr<ChildProcess> process_;
};

}  // namespace orvo::fleet
