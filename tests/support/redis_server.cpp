#include "tests/support/redis_server.h"

#include <hiredis/hiredis.h>
#include <signal.h>

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "tests/support/free_port.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

// Waits until `holds`, at most 20 seconds; whether it does.
template <class Holds>
bool wait_until(Holds holds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (std::chrono::steady_clock::now() < end) {
        if (holds()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return false;
}

void write_secret(const fs::path& file, const std::string& content) {
    std::ofstream(file) << content;
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
}

using RedisConnection = std::unique_ptr<redisContext, decltype(&redisFree)>;
using RedisAnswer = std::unique_ptr<redisReply, decltype(&freeReplyObject)>;

void append(std::string& text, const redisReply& reply) {
    if (reply.type == REDIS_REPLY_INTEGER) text += std::to_string(reply.integer);
    if (reply.str) text.append(reply.str, reply.len);
    for (std::size_t i = 0; i < reply.elements; ++i) {
        append(text, *reply.element[i]);
        text += '\n';
    }
}

std::string run(const RedisConnection& connection, const std::vector<std::string>& command) {
    std::vector<const char*> words;
    std::vector<std::size_t> sizes;
    for (const std::string& word : command) {
        words.push_back(word.data());
        sizes.push_back(word.size());
    }
    const RedisAnswer answer(
        static_cast<redisReply*>(redisCommandArgv(connection.get(), static_cast<int>(words.size()),
                                                  words.data(), sizes.data())),
        freeReplyObject);
    if (!answer) throw std::runtime_error("redis: " + std::string(connection->errstr));
    std::string text;
    append(text, *answer);
    if (answer->type == REDIS_REPLY_ERROR) throw std::runtime_error("redis: " + text);
    return text;
}

std::string ask_port(int port, const std::string& password,
                     const std::vector<std::string>& command) {
    const RedisConnection connection(redisConnectWithTimeout("127.0.0.1", port, {5, 0}), redisFree);
    if (!connection || connection->err != 0) throw std::runtime_error("redis: no connection");
    redisSetTimeout(connection.get(), {5, 0});
    if (!password.empty()) run(connection, {"AUTH", password});
    return run(connection, command);
}

// Starts a program on free ports until it answers; `configuration` is asked for its file each time.
template <class Configure, class Answers>
std::unique_ptr<ChildProcess> started(const std::string& program, const fs::path& folder,
                                      Configure configuration, Answers answers) {
    for (int attempt = 0; attempt < 10; ++attempt) {
        write_secret(folder / "redis.conf", configuration());
        auto process = std::make_unique<ChildProcess>(
            std::vector<std::string>{program, folder / "redis.conf"}, folder / "redis.log");
        const auto is_there = [&] {
            try {
                return answers();
            } catch (const std::runtime_error&) {
                return false;
            }
        };
        if (wait_until([&] { return !process->running() || is_there(); }) && process->running())
            return process;
    }
    throw std::runtime_error(program + " does not start: " + content_of(folder / "redis.log"));
}

}  // namespace

RedisServer::RedisServer(RedisOptions options) : options_(std::move(options)) {
    if (options_.tls)
        output_of({"/usr/bin/openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                   "ec_paramgen_curve:P-256", "-noenc", "-days", "30", "-subj", "/CN=redis",
                   "-addext", "subjectAltName=" + options_.certificate_for, "-keyout",
                   folder() / "key.pem", "-out", folder() / "cert.pem"});
    write_secret(folder() / "password", options_.password + "\n");
    write_secret(folder() / "store.keys", output_of({"/usr/bin/openssl", "rand", "-base64", "32"}));
    start();
    if (options_.replica_of) follow(*options_.replica_of);
}

RedisServer::~RedisServer() = default;

std::string RedisServer::configuration() const {
    std::string text = "bind 127.0.0.1\nport " + std::to_string(port_) + "\ndir " +
                       folder().string() +
                       "\nsave \"\"\nrdbcompression no\nrepl-diskless-sync-delay 0\n"
                       "enable-debug-command local\n";
    if (options_.keeps_its_data) text += "appendonly yes\n";
    if (!options_.password.empty())
        text += "requirepass " + options_.password + "\nmasterauth " + options_.password + "\n";
    if (options_.tls)
        text += "tls-port " + std::to_string(tls_port_) + "\ntls-cert-file " +
                (folder() / "cert.pem").string() + "\ntls-key-file " +
                (folder() / "key.pem").string() + "\ntls-auth-clients no\n";
    return text;
}

void RedisServer::start() {
    if (running()) return;
    // What a replica has taken over lies there.
    fs::remove(folder() / "dump.rdb");
    const bool is_first = port_ == 0;
    process_ = started(
        "/usr/bin/redis-server", folder(),
        [&] {
            if (is_first) {
                const FreePort port, tls_port;
                port_ = port.number();
                tls_port_ = tls_port.number();
            }
            return configuration();
        },
        // Another server may have taken the port; and until it has read its data, it answers most
        // commands with an error.
        [&] {
            return ask({"CONFIG", "GET", "dir"}).find(folder().string()) != std::string::npos &&
                   ask({"PING"}) == "PONG";
        });
}

void RedisServer::stop() {
    if (!process_) return;
    go_on();
    process_->terminate(5);
    process_.reset();
}

void RedisServer::kill() { process_.reset(); }

void RedisServer::freeze() {
    if (process_) process_->pause();
}

void RedisServer::go_on() {
    if (process_) process_->send(SIGCONT);
}

bool RedisServer::running() { return process_ && process_->running(); }

std::string RedisServer::address() const { return "127.0.0.1:" + std::to_string(port_); }

std::string RedisServer::url() const {
    return options_.tls ? "rediss://127.0.0.1:" + std::to_string(tls_port_)
                        : "redis://" + address();
}

fs::path RedisServer::ca_file() const {
    if (!options_.tls) throw std::logic_error("a server without TLS");
    return folder() / "cert.pem";
}

std::string RedisServer::site_section() const { return site_section(url()); }

std::string RedisServer::site_section(const std::string& url, const std::string& more) const {
    std::string text =
        "[STORE]\nStoreURL=" + url + "\nStoreKeys=" + (folder() / "store.keys").string() + "\n";
    if (!password().empty())
        text += "StorePassword=@file:" + (folder() / "password").string() + "\n";
    if (options_.tls) text += "StoreCA=" + ca_file().string() + "\n";
    return text + more;
}

std::string RedisServer::ask(const std::vector<std::string>& command) const {
    return ask_port(port_, password(), command);
}

void RedisServer::promote() const { ask({"REPLICAOF", "NO", "ONE"}); }

void RedisServer::follow(const RedisServer& master) const {
    ask({"REPLICAOF", "127.0.0.1", std::to_string(master.port())});
    const auto is_in_step = [&] {
        return ask({"INFO", "replication"}).find("master_link_status:up") != std::string::npos;
    };
    if (!wait_until(is_in_step))
        throw std::runtime_error("redis: no replica of " + master.address());
}

std::string RedisServer::dump() const {
    ask({"SAVE"});
    const fs::path file = folder() / "dump.rdb";
    std::string bytes = content_of(file);
    fs::remove(file);
    return bytes;
}

RedisSentinel::RedisSentinel(const RedisServer& master) {
    const std::string name = master_name;
    process_ = started(
        "/usr/bin/redis-sentinel", folder_.path(),
        [&] {
            port_ = FreePort().number();
            std::string text = "bind 127.0.0.1\nport " + std::to_string(port_) + "\ndir " +
                               folder_.path().string() + "\nsentinel monitor " + name +
                               " 127.0.0.1 " + std::to_string(master.port()) +
                               " 1\nsentinel down-after-milliseconds " + name +
                               " 500\nsentinel failover-timeout " + name + " 2000\n";
            if (!master.password().empty())
                text += "sentinel auth-pass " + name + " " + master.password() + "\n";
            return text;
        },
        [&] { return this->master() == master.address(); });
}

std::string RedisSentinel::master() const {
    std::string told = ask_port(port_, {}, {"SENTINEL", "GET-MASTER-ADDR-BY-NAME", master_name});
    if (told.empty()) return told;
    // Host and port, a line each.
    told.pop_back();
    told.replace(told.find('\n'), 1, ":");
    return told;
}

int RedisSentinel::replicas() const {
    const std::string told = ask_port(port_, {}, {"INFO", "sentinel"});
    return std::stoi(told.substr(told.find(",slaves=") + 8));
}

}  // namespace orvo
