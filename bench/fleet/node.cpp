#include "bench/fleet/node.h"

#include <signal.h>

#include <chrono>
#include <fstream>
#include <regex>
#include <stdexcept>
#include <thread>

#include "bench/fleet/interruption.h"
#include "tests/support/slapd_pair.h"

namespace orvo::fleet {
namespace {

namespace fs = std::filesystem;

const fs::path source = ORVO_SOURCE_DIR;
const std::string bin = ORVO_BIN;
constexpr auto longest_start = std::chrono::seconds(30);
// Longer than what is being served may go on (DrainTime).
constexpr auto longest_end = std::chrono::seconds(30);
// How long it goes on when it is asked to end; longer than the balancer needs to notice.
constexpr auto drain_delay = std::chrono::seconds(2);

// Nobody else may read it: passwords stand in it.
void write(const fs::path& file, const std::string& content) {
    std::ofstream stream(file);
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    if (!(stream << content << std::flush))
        throw std::runtime_error("cannot write " + file.string());
}

}  // namespace

Node::Node(fs::path folder, const std::vector<int>& directories, std::optional<int> store)
    : folder_(std::move(folder)) {
    for (const int port : directories) directories_.push_back(std::make_unique<FaultyProxy>(port));
    if (store) store_ = std::make_unique<FaultyProxy>(*store);
    fs::create_directories(folder_);
    fs::copy(source / "examples/Config", folder_ / "Config");
}

void Node::configure(const NodeLines& lines) {
    std::string servers;
    for (const auto& proxy : directories_)
        servers += (servers.empty() ? "" : " ") + proxy->server();
    write(folder_ / "site.ini", sample_site(servers) + "\n" + lines.site);
    write(folder_ / "web.ini", content_of(source / "examples/shop/site.ini") + "\nDrainDelay=" +
                                   std::to_string(drain_delay.count()) + "\n" + lines.web);
}

void Node::start() {
    const std::size_t log_begin = fs::exists(log()) ? fs::file_size(log()) : 0;
    const auto variable = [&](const char* name, const char* file) {
        return name + (folder_ / file).string();
    };
    process_ = std::make_unique<ChildProcess>(
        std::vector<std::string>{"/usr/bin/env", variable("ORVO_SITE_CONFIG=", "site.ini"),
                                 variable("ORVO_LOG_FILE=", "orvo.log"), "ORVO_LOG_LEVEL=error",
                                 bin + "/orvo-web", source / "examples/shop", "--config",
                                 folder_ / "web.ini", "--port", std::to_string(port_)},
        log());
    port_ = listening_port(log_begin);
    if (!front_) front_ = std::make_unique<FaultyProxy>(port_);
    front_->pass_on();
}

int Node::listening_port(std::size_t log_begin) {
    const auto end = Clock::now() + longest_start;
    const std::regex line("Listening on http://127\\.0\\.0\\.1:(\\d+)\n");
    while (process_->running() && Clock::now() < end) {
        const std::string said = content_of(log()).substr(log_begin);
        std::smatch address;
        if (std::regex_search(said, address, line)) return std::stoi(address[1]);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    throw std::runtime_error("orvo-web does not listen: " + content_of(log()).substr(log_begin));
}

void Node::stop() {
    go_on();
    process_->send(SIGTERM);
    // From the end of the delay on the node takes no connection, so neither does the proxy, which
    // would close it again: a balancer goes to another node only where nobody listens.
    wait_until(Clock::now() + drain_delay - std::chrono::milliseconds(200));
    front_->refuse();
    const auto end = Clock::now() + longest_end;
    while (process_->running() && Clock::now() < end)
        wait_until(Clock::now() + std::chrono::milliseconds(5));
    process_.reset();
}

void Node::kill() {
    process_.reset();
    front_->refuse();
}

void Node::freeze() { process_->pause(); }

void Node::go_on() { process_->send(SIGCONT); }

}  // namespace orvo::fleet
