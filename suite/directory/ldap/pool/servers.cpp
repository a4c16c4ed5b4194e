#include "suite/directory/ldap/pool/servers.h"

#include <algorithm>
#include <utility>

namespace orvo::directory::ldap {

Servers::Servers(const Clock& clock, Probe probe, std::function<void()> wake)
    : clock_(clock), probe_(std::move(probe)), wake_(std::move(wake)) {}

std::shared_ptr<ServerGroup> Servers::group(const ServerAddress& address) {
    std::string key = address.key();
    const std::lock_guard lock(mutex_);
    auto& known = groups_[key];
    if (auto group = known.lock()) return group;
    std::vector<ServerRef> servers;
    for (const ServerHost& host : address.hosts()) {
        ServerRef& server = servers_[host.key()];
        if (!server) server = std::make_shared<Server>(host, clock_);
        if (std::ranges::find(servers, server) == servers.end()) servers.push_back(server);
    }
    auto made = std::make_shared<ServerGroup>(std::move(key), std::move(servers));
    known = made;
    // Of a group that nobody has held for a while a server may have come back.
    if (!std::ranges::all_of(made->servers(), [](const ServerRef& one) { return one->is_up(); }))
        wake_();
    return made;
}

void Servers::note_failure(Server& server, const std::string& reason) {
    if (server.note_failure(reason) && server.is_probed()) wake_();
}

std::vector<ServerRef> Servers::in_use() const {
    const std::lock_guard lock(mutex_);
    std::vector<ServerRef> servers;
    for (const auto& [key, weak] : groups_)
        if (const auto group = weak.lock())
            servers.insert(servers.end(), group->servers().begin(), group->servers().end());
    return servers;
}

std::optional<Clock::time_point> Servers::probe_due(std::chrono::seconds failback_after) {
    const std::vector<ServerRef> servers = in_use();
    ServerRef first;
    const auto next_probe = [&] {
        std::optional<Clock::time_point> next;
        for (const ServerRef& server : servers) {
            const auto due = server->next_probe(failback_after);
            if (!due || (next && *next <= *due)) continue;
            next = due;
            first = server;
        }
        return next;
    };
    const auto next = next_probe();
    if (!next || *next > clock_.now()) return next;
    if (const auto reason = probe_(first->host()))
        first->note_failed_probe(*reason, std::uniform_real_distribution<>(0, 1)(random_));
    else
        first->note_good_probe(failback_after);
    return next_probe();
}

std::vector<ServerState> Servers::states() const {
    const std::lock_guard lock(mutex_);
    std::vector<ServerState> states;
    for (const auto& [key, server] : servers_) states.push_back(server->state());
    return states;
}

}  // namespace orvo::directory::ldap
