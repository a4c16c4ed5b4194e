#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace orvo {

class RedisServer;

struct RedisOptions {
    std::string password = {};  // of the default user; the same on a replica
    bool tls = false;           // rediss:// on a second port
    std::string certificate_for = "IP:127.0.0.1,DNS:localhost";
    const RedisServer* replica_of = nullptr;  // in step with it when the constructor returns
    bool keeps_its_data = false;  // each write goes to a file, and is there after an end
};

// A Redis of a test's own on the loopback address, on a free port, in a temporary folder. Unless it
// is to keep its data it writes nothing to disk, and comes back empty after an end. Runs from the
// construction to stop(), kill() or the end of the object's life, and never longer than the thread
// that made it. Everything that fails raises std::runtime_error with the server's own words.
class RedisServer {
public:
    explicit RedisServer(RedisOptions options = {});
    ~RedisServer();

    // It ends: connections are closed, and new ones are refused.
    void stop();
    // It dies as if killed from outside (SIGKILL).
    void kill();
    // It comes back on the same ports. Returns when it has read its data and takes commands.
    void start();
    // It falls silent: connections stay and are accepted, but nothing is answered.
    void freeze();
    void go_on();
    bool running();

    int port() const { return port_; }
    int tls_port() const { return tls_port_; }
    std::string address() const;            // "127.0.0.1:23456"
    std::string url() const;                // "redis://127.0.0.1:23456", with `tls` "rediss://…"
    std::filesystem::path ca_file() const;  // what a client has to trust; only with `tls`
    const std::string& password() const { return options_.password; }
    const std::filesystem::path& folder() const { return folder_.path(); }

    // Section [STORE] of a site configuration that uses it, with a key of its own.
    std::string site_section() const;
    // The same with another StoreURL, and more lines.
    std::string site_section(const std::string& url, const std::string& more = {}) const;

    // What it answers to a command, on a connection of its own: a text or a number as it is, a list
    // with a line for each, "" for nothing.
    std::string ask(const std::vector<std::string>& command) const;
    // It is a master from now on.
    void promote() const;
    void follow(const RedisServer& master) const;
    // All it holds, uncompressed, as it would lie on disk.
    std::string dump() const;

private:
    std::string configuration() const;

    TempFolder folder_;
    const RedisOptions options_;
    int port_ = 0;
    int tls_port_ = 0;
    std::unique_ptr<ChildProcess> process_;
};

// A Sentinel that watches one master, and replaces it alone after half a second of silence.
class RedisSentinel {
public:
    explicit RedisSentinel(const RedisServer& master);

    std::string address() const { return "127.0.0.1:" + std::to_string(port_); }
    // The name that it knows the master by.
    static constexpr const char* master_name = "shop";
    // Where it says that the master is: "127.0.0.1:23456".
    std::string master() const;
    // How many replicas of the master it has heard of.
    int replicas() const;

private:
    TempFolder folder_;
    int port_ = 0;
    std::unique_ptr<ChildProcess> process_;
};

}  // namespace orvo
