#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bench/fleet/balancer.h"
#include "bench/fleet/node.h"
#include "tests/support/environment.h"
#include "tests/support/redis_server.h"
#include "tests/support/slapd_pair.h"
#include "tests/support/temp_folder.h"

namespace orvo::fleet {

// Where nodes keep sessions and logins.
enum class Store { memory, shared };

struct FleetOptions {
    std::size_t nodes = 3;
    Store store = Store::shared;
    int users = 2000;  // of the shop, of which a fifth can browse
};

// Two directory servers that replicate, a Redis, nodes that serve the sample shop, and haproxy in
// front. Everything is on the loopback address and below one temporary folder, and ends with the
// object. It is the main thread's.
class Fleet {
public:
    explicit Fleet(const FleetOptions& options = {});

    int port() const { return balancer_->port(); }
    std::string address() const { return "http://127.0.0.1:" + std::to_string(port()) + "/"; }
    std::size_t size() const { return nodes_.size(); }
    Node& node(std::size_t number) { return *nodes_.at(number); }
    SlapdPair& directory() { return directory_; }
    RedisServer& store() { return *store_; }
    Balancer& balancer() { return *balancer_; }
    // Those of the nodes, to be asked past the balancer.
    std::vector<int> node_ports() const;

    // Those that run at the moment; of the store none where each node keeps its own.
    std::vector<pid_t> node_processes() const;
    std::vector<pid_t> directory_processes() const;
    std::vector<pid_t> store_processes() const;
    // Memory that the store's data take, in bytes.
    double store_bytes() const;

private:
    NodeLines lines_of(Node& node) const;

    TempFolder folder_;
    Environment components_;
    SlapdPair directory_;
    std::unique_ptr<RedisServer> store_;  // null where nothing is shared
    std::vector<std::unique_ptr<Node>> nodes_;
    std::unique_ptr<Balancer> balancer_;
};

}  // namespace orvo::fleet
