// orvo-web: serves a folder of server pages.

#include <iostream>

#include "host/web/directory_setup.h"
#include "host/web/memory_sessions.h"
#include "host/web/options.h"
#include "host/web/stop_signals.h"
#include "host/web/web_app.h"
#include "platform/values/failure.h"
#include "suite/configuration/suite_configuration.h"

namespace {

using namespace orvo::web;

void serve(const Options& options) {
    hold_stop_signals();
    Site site = read_site(options.site, options.config);
    set_up_directory(site);
    MemorySessions sessions({.timeout = site.session_timeout,
                             .absolute = site.session_lifetime,
                             .most_bytes = site.session_memory});
    DirectoryHealth health;
    WebLog log(options.access_log);
    ServerOptions server_options = options.server;
    server_options.largest_body = site.largest_request;
    server_options.largest_upload = site.largest_upload;
    WebApp app(std::move(site), sessions, health, log, {.shows_details = options.shows_details});
    HttpServer server(
        server_options, [&](const HttpRequest& request) { return app.handle(request); },
        {.lane = [&](const HttpRequest& request) { return app.lane_of(request); },
         .refused = [&](const HttpRequest& request, HttpResponse& response,
                        auto duration) { app.note_refused(request, response, duration); },
         .trouble = [&](const std::string& sentence) { log.trouble(sentence); }});
    const StopSignals signals([&] { server.stop(); });
    std::cout << "Listening on " << server.url() << std::endl;
    if (const auto warning = warning_of_open_password(orvo::usual_site_file()); !warning.empty())
        std::cerr << "orvo-web: " << warning << std::endl;
    server.run();
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
