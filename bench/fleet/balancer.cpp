#include "bench/fleet/balancer.h"

#include <fstream>
#include <stdexcept>
#include <thread>

#include "bench/fleet/interruption.h"
#include "tests/support/free_port.h"
#include "tests/support/http_client.h"
#include "tests/support/temp_folder.h"

namespace orvo::fleet {
namespace {

constexpr auto longest_wait = std::chrono::seconds(30);

std::string name_of(std::size_t node) { return "node" + std::to_string(node + 1); }

// docs/fleet.md has this configuration with its reasons.
std::string configuration(int port, int report_port, const std::vector<int>& nodes,
                          bool is_sticky) {
    std::string ready, live;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const std::string line =
            "    server " + name_of(i) + " 127.0.0.1:" + std::to_string(nodes[i]) + " check";
        ready += line + (is_sticky ? " cookie " + name_of(i) : "") + "\n";
        live += line + "\n";
    }
    return R"(global
    maxconn 4096

defaults
    mode http
    option forwardfor
    timeout connect 1s
    timeout client 60s
    timeout http-keep-alive 60s
    timeout server 40s
    timeout check 1s
    retries 3
    option redispatch 1
    retry-on conn-failure empty-response
    default-server inter 500ms fastinter 200ms fall 2 rise 1 pool-purge-delay 2s
    default-server on-marked-down shutdown-sessions

frontend shop
    bind 127.0.0.1:)" +
           std::to_string(port) + R"(
    http-request disable-l7-retry if !METH_GET
    use_backend alive if { nbsrv(ready) eq 0 }
    default_backend ready

backend ready
    balance roundrobin
    option httpchk GET /health/ready
    http-check expect status 200 error-status L7OKC
)" + (is_sticky ? "    cookie node insert indirect nocache\n" : "") +
           ready + R"(
backend alive
    balance roundrobin
    option httpchk GET /health/live
)" + live + R"(
frontend report
    bind 127.0.0.1:)" +
           std::to_string(report_port) + R"(
    stats enable
    stats uri /
)";
}

}  // namespace

Balancer::Balancer(const std::filesystem::path& folder, const std::vector<int>& nodes,
                   bool is_sticky)
    : folder_(folder), nodes_(nodes.size()) {
    {
        const FreePort port, report_port;
        port_ = port.number();
        report_port_ = report_port.number();
    }
    const auto file = folder_ / "haproxy.cfg";
    if (!(std::ofstream(file) << configuration(port_, report_port_, nodes, is_sticky)
                              << std::flush))
        throw std::runtime_error("cannot write " + file.string());
    start();
}

void Balancer::start() {
    const auto log = folder_ / "haproxy.log";
    process_ = std::make_unique<ChildProcess>(
        std::vector<std::string>{"/usr/sbin/haproxy", "-db", "-f", folder_ / "haproxy.cfg"}, log);
    const auto end = Clock::now() + longest_wait;
    while (!HttpClient(port_).get("/health/live")) {
        if (!process_->running() || Clock::now() > end)
            throw std::runtime_error("haproxy does not listen: " + content_of(log));
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    for (std::size_t i = 0; i < nodes_; ++i) wait_until_it_serves(i);
}

std::string Balancer::state_of(std::size_t node) const {
    // A line for each server; the 18th field is its state.
    const HttpResult report = HttpClient(report_port_).get("/;csv");
    if (!report) throw std::runtime_error("haproxy does not answer: " + report.error());
    const std::string mark = "\nready," + name_of(node) + ",";
    std::size_t place = report->body.find(mark);
    if (place == std::string::npos) throw std::runtime_error("haproxy knows no such node");
    ++place;
    for (int field = 1; field < 18; ++field) place = report->body.find(',', place) + 1;
    return report->body.substr(place, report->body.find(',', place) - place);
}

bool Balancer::serves(std::size_t node) const { return state_of(node).starts_with("UP"); }

void Balancer::wait_until_it_serves(std::size_t node) const {
    const auto end = Clock::now() + longest_wait;
    while (!serves(node)) {
        if (Clock::now() > end)
            throw std::runtime_error("haproxy does not send anything to " + name_of(node) +
                                     ", which is " + state_of(node));
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

}  // namespace orvo::fleet
