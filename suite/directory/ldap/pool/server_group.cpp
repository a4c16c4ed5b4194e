#include "suite/directory/ldap/pool/server_group.h"

#include <algorithm>
#include <utility>

#include "suite/directory/names/ascii.h"
#include "suite/directory/names/entry_key.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::ldap {
namespace {

bool is_among(const ServerRef& server, std::span<const ServerRef> others) {
    return std::ranges::find(others, server) != others.end();
}

// The host that a referral's URL names; nothing where it cannot be read.
std::optional<ServerHost> host_of(std::string_view url) {
    const std::size_t scheme = url.find("://");
    if (scheme == std::string_view::npos) return std::nullopt;
    const std::string server(url.substr(0, url.find_first_of("/?", scheme + 3)));
    try {
        return ServerAddress::parse(from_utf8(server)).hosts().front();
    } catch (const Failure&) {  // it refers to nobody in the list then
        return std::nullopt;
    }
}

}  // namespace

ServerGroup::ServerGroup(std::string key, std::vector<ServerRef> servers)
    : key_(std::move(key)), servers_(std::move(servers)) {
    if (servers_.size() > 1)
        for (const ServerRef& server : servers_) server->expect_probes();
}

ServerRef ServerGroup::choose_up(std::chrono::seconds failback_after,
                                 std::span<const ServerRef> tried) const {
    ServerRef first_up;
    for (const ServerRef& server : servers_) {
        if (is_among(server, tried)) continue;
        if (server->is_steady(failback_after)) return server;
        if (!first_up && server->is_up()) first_up = server;
    }
    return first_up;
}

ServerRef ServerGroup::choose(std::chrono::seconds failback_after,
                              std::span<const ServerRef> tried) const {
    if (ServerRef up = choose_up(failback_after, tried)) return up;
    ServerRef first;
    for (const ServerRef& server : servers_)
        if (!is_among(server, tried) && (!first || server->last_failure() < first->last_failure()))
            first = server;
    return first;
}

ServerRef ServerGroup::referred_to(std::span<const std::string> urls) const {
    for (const std::string& url : urls) {
        const std::optional<ServerHost> host = host_of(url);
        for (const ServerRef& server : servers_)
            if (host && host->port == server->host().port &&
                ascii::equal_ignoring_case(host->name, server->host().name))
                return server;
    }
    return nullptr;
}

void ServerGroup::note_write(const EntryKey& entry, const ServerRef& server,
                             Clock::time_point until) {
    if (servers_.size() < 2) return;
    const Clock::time_point now = server->clock().now();
    const std::lock_guard lock(mutex_);
    if (now >= prune_at_) {
        std::erase_if(writes_, [&](const auto& write) { return write.second.until <= now; });
        prune_at_ = until;
    }
    writes_.insert_or_assign(entry.loose, Write{server, until});
    has_writes_.store(true);
}

ServerRef ServerGroup::last_written_on(const EntryKey& entry) const {
    if (!has_writes_.load()) return nullptr;
    const std::lock_guard lock(mutex_);
    const auto found = writes_.find(entry.loose);
    if (found == writes_.end()) return nullptr;
    const auto& [server, until] = found->second;
    return server->clock().now() < until && server->is_up() ? server : nullptr;
}

}  // namespace orvo::directory::ldap
