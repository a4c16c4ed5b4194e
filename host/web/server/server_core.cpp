#include "host/web/server/server_core.h"

#include <algorithm>
#include <memory>
#include <thread>
#include <vector>

#include "host/web/server/http_session.h"

namespace orvo::web {
namespace {

// A session that is closed may leave the set at once.
std::vector<std::shared_ptr<HttpSession>> all(const std::set<HttpSession*>& sessions) {
    std::vector<std::shared_ptr<HttpSession>> kept;
    for (HttpSession* session : sessions) kept.push_back(session->shared_from_this());
    return kept;
}

}  // namespace

int ServerOptions::worker_count() const {
    constexpr int least = 8, of_each_processor = 4;
    if (workers > 0) return workers;
    return std::max(least,
                    of_each_processor * static_cast<int>(std::thread::hardware_concurrency()));
}

int ServerOptions::directory_workers() const {
    return std::max(1, worker_count() * directory_share / 100);
}

ServerCore::ServerCore(ServerOptions taken, HttpServer::Handler taken_handler,
                       ServerHooks taken_hooks, boost::asio::io_context& its_loop,
                       LanePools& its_pools)
    : options(std::move(taken)),
      handler(std::move(taken_handler)),
      hooks(std::move(taken_hooks)),
      limits{.largest_head = options.largest_head,
             .most_headers = options.most_headers,
             .largest_body = options.largest_body,
             .largest_upload = std::max(options.largest_body, options.largest_upload)},
      loop(its_loop),
      pools(its_pools),
      connections(options.most_connections, options.most_of_one_address,
                  [this](const std::string& notice) { tell(notice); }) {}

void ServerCore::tell(const std::string& trouble) const {
    if (hooks.trouble) hooks.trouble(trouble);
}

void ServerCore::leave(HttpSession* session) {
    sessions.erase(session);
    if (is_running && is_stopping && sessions.empty()) loop.stop();
}

void ServerCore::limit_unsent() {
    while (unsent > options.most_unsent) {
        HttpSession* most = *std::ranges::max_element(sessions, {}, &HttpSession::unsent);
        const std::shared_ptr<HttpSession> kept = most->shared_from_this();
        tell("an answer that was not taken is given up: " + std::to_string(kept->unsent()) +
             " bytes waited");
        kept->close();
    }
}

void ServerCore::close_idle() {
    for (const auto& session : all(sessions))
        if (!session->is_asked()) session->close();
}

bool ServerCore::close_all() {
    bool was_asked = false;
    for (const auto& session : all(sessions)) {
        was_asked = was_asked || session->is_asked();
        session->close();
    }
    return was_asked;
}

}  // namespace orvo::web
