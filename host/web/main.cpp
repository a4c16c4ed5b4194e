// orvo-web: serves a folder of server pages.

#include <cstdlib>
#include <iostream>
#include <optional>

#include "host/web/administration/administration_pages.h"
#include "host/web/administration/administration_socket.h"
#include "host/web/administration/metrics_page.h"
#include "host/web/administration/process_state.h"
#include "host/web/options.h"
#include "host/web/service_manager.h"
#include "host/web/sessions/site_state.h"
#include "host/web/signals.h"
#include "host/web/site/directory_setup.h"
#include "host/web/site/web_app.h"
#include "platform/values/failure.h"
#include "suite/configuration/suite_configuration.h"

namespace {

using namespace orvo::web;

SessionLimits session_limits(const Site& site, const ServerOptions& server) {
    const int requests = site.requests_of_one_session.value_or(
        usual_requests_of_one_session(server.directory_workers()));
    return {.timeout = site.session_timeout,
            .absolute = site.session_lifetime,
            .most_bytes = site.session_memory,
            .most_waiting = static_cast<std::size_t>(requests - 1)};
}

// Pages that need no login are served all the same.
void warn_of_closed_logins(WebLog& log) {
    if (const auto warning = warning_of_closed_logins(); !warning.empty()) log.trouble(warning);
}

// Goes on with new files for the logs and new settings; what cannot be read leaves the old ones.
void reload(const Options& options, const ServerOptions& server, WebApp& app, SiteState& state,
            WebLog& log) {
    log.reopen();
    try {
        const Site site = read_site(options.site, options.config);
        const Site before = app.site();
        // A site without settings has no guards: one that had some is not opened by a file that is
        // being put in another one's place.
        if (before.has_settings && !site.has_settings)
            throw std::runtime_error("site.ini is not there any more");
        // Nor by one that is cut off.
        if (const GuardedPath* lost = lost_guard(before, site))
            throw std::runtime_error("the guard of " + lost->path +
                                     " is gone; restart to serve it without this guard");
        std::string said = "the site's settings have been read again";
        for (const std::string& key : keys_for_next_start(before, site))
            said += "; " + key + " counts from the next start";
        app.replace(site);
        state.set_limits(session_limits(site, server));
        log.trouble(said);
    } catch (const orvo::Failure& failure) {
        log.trouble("the settings stay as they were: " + orvo::to_utf8(failure.description));
    } catch (const std::exception& failure) {
        log.trouble(std::string("the settings stay as they were: ") + failure.what());
    }
    warn_of_closed_logins(log);
}

// That the manager does not hear it is no reason to serve nobody.
void tell(const ServiceManager& manager, void (ServiceManager::*what)() const, WebLog& log) {
    try {
        (manager.*what)();
    } catch (const std::exception& failure) {
        log.trouble(failure.what());
    }
}

// pages: outlive the server.
std::optional<Administration> administration_at(const std::optional<SocketAddress>& address,
                                                const AdministrationPages& pages) {
    if (!address) return std::nullopt;
    return Administration{
        .address = *address,
        .handler = [&pages](const HttpRequest& request) { return pages.answer(request); },
        .lane = [&pages](const HttpRequest& request) { return pages.lane_of(request); }};
}

// Until it is asked to end.
void serve(const Options& options) {
    hold_signals();
    const ServiceManager manager;
    Site site = read_site(options.site, options.config);
    set_up_directory(site);
    const auto admin_socket = site.admin_socket.value_or(usual_administration_socket());
    DirectoryHealth health;
    WebLog log(options.access_log);
    ServerOptions server_options = options.server;
    server_options.largest_body = site.largest_request;
    server_options.largest_upload = site.largest_upload;
    server_options.directory_share = site.directory_share;
    server_options.proxies = site.proxies;
    server_options.drain_delay = site.drain_delay;
    server_options.drain_time = site.drain_time;
    const auto admin_address = site.admin_address;
    const auto metrics = std::make_shared<WebMetrics>();
    SiteState state(session_limits(site, server_options),
                    [&](const std::string& sentence) { log.trouble(sentence); });
    WebApp app(std::move(site), state.sessions(), health, log,
               {.shows_details = options.shows_details,
                .metrics = metrics,
                .application = state.application()});
    ServerHooks hooks{
        .lane = [&](const HttpRequest& request) { return app.lane_of(request); },
        .refused = [&](const HttpRequest& request, HttpResponse& response,
                       auto duration) { app.note_refused(request, response, duration); },
        .trouble = [&](const std::string& sentence) { log.trouble(sentence); }};
    if (manager.watch() > std::chrono::milliseconds(0)) {
        hooks.alive = [&] { tell(manager, &ServiceManager::alive, log); };
        hooks.alive_each = manager.watch();
    }
    AdministrationPages admin_pages;
    admin_pages.add("/health/live", Lane::at_once,
                    [&](const HttpRequest&) { return app.health("/health/live"); });
    admin_pages.add("/health/ready", Lane::aside,
                    [&](const HttpRequest&) { return app.health("/health/ready"); });
    const HttpServer* counted = nullptr;
    MetricsPage metrics_page({.web = *metrics,
                              .server = [&] { return counted->counts(); },
                              .sessions = [&] { return state.sessions().counts(); },
                              .shared_sessions = [&] { return state.sessions().shared_counts(); },
                              .trouble = [&](const std::string& why) { log.trouble(why); }});
    admin_pages.add("/metrics", Lane::page,
                    [&](const HttpRequest&) { return metrics_page.answer(); });
    HttpServer server(
        server_options, [&](const HttpRequest& request) { return app.handle(request); }, hooks,
        administration_at(admin_address, admin_pages));
    counted = &server;
    const Signals signals(
        [&] {
            app.leave();
            tell(manager, &ServiceManager::stopping, log);
            server.stop();
        },
        [&] {
            tell(manager, &ServiceManager::reloading, log);
            reload(options, server_options, app, state, log);
            tell(manager, &ServiceManager::ready, log);
        });
    std::optional<AdministrationSocket> administration;
    if (!admin_socket.empty()) administration.emplace(admin_socket, answer_about_process);
    std::cout << "Listening on " << server.url() << std::endl;
    if (admin_address)
        std::cout << "For administrators: " << server.administration_url() << std::endl;
    manager.ready();
    if (const auto warning = warning_of_open_password(orvo::usual_site_file()); !warning.empty())
        std::cerr << "orvo-web: " << warning << std::endl;
    warn_of_closed_logins(log);
    if (server.run()) return;
    // What still runs is not waited for, here or by destructors.
    log.trouble("ended before all requests were answered");
    std::_Exit(1);
}

}  // namespace

int main(int count, char** words) {
    WebCommandLine line;
    if (const std::optional<int> code = line.read(count, words)) return *code;
    try {
        serve(line.options);
        return 0;
    } catch (const orvo::Failure& failure) {
        std::cerr << "orvo-web: " << orvo::to_utf8(failure.description) << '\n';
        return 1;
    } catch (const std::exception& failure) {
        std::cerr << "orvo-web: " << failure.what() << '\n';
        return 1;
    }
}
