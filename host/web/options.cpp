#include "host/web/options.h"

namespace orvo::web {

WebCommandLine::WebCommandLine()
    : CommandLine("orvo-web", "Serves the pages of a folder until it is interrupted.") {
    ServerOptions& server = options.server;
    add_option("SITE", options.site, "The folder")->required();
    add_option("--config", options.config, "Settings of the site, instead of SITE/site.ini")
        ->check(CLI::Validator(
            [](const std::string& file) { return file.empty() ? "A file is needed" : ""; }, ""))
        ->type_name("FILE");
    add_option("--address", server.address, "Listen on this address")
        ->capture_default_str()
        ->type_name("ADDRESS");
    add_option("--port", server.port, "Listen on this port; 0 is any that is free")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str()
        ->type_name("PORT");
    add_option("--workers", server.workers,
               "Requests that are served at a time; 0: four for each processor, eight at least")
        ->check(CLI::Range(0, 256))
        ->capture_default_str()
        ->type_name("N");
    add_option("--connections", server.most_connections, "Connections at a time; more are refused")
        ->check(CLI::Range(1, 1'000'000))
        ->capture_default_str()
        ->type_name("N");
    add_option("--connections-of-one", server.most_of_one_address,
               "Of these, connections of one address")
        ->check(CLI::Range(1, 1'000'000))
        ->capture_default_str()
        ->type_name("N");
    CLI::Option* certificate =
        add_option("--certificate", server.certificate, "Serve HTTPS with this certificate (PEM)");
    CLI::Option* key = add_option("--key", server.key, "The private key of the certificate");
    certificate->type_name("FILE")->needs(key);
    key->type_name("FILE")->needs(certificate);
    add_option_function<std::int64_t>(
        "--strict-transport",
        [&server](std::int64_t seconds) {
            server.strict_transport = std::chrono::seconds(seconds);
        },
        "Under HTTPS: for how long browsers come back by HTTPS alone; 0: they are not told")
        ->check(CLI::Range(0, 1'000'000'000))
        ->default_str(std::to_string(server.strict_transport.count()))
        ->type_name("SECONDS");
    add_option("--access-log", options.access_log, "Append a line for each request")
        ->type_name("FILE");
    add_flag("--details", options.shows_details, "Show the reasons of failures in the browser");
    footer(
        "Its first line on the standard output is \"Listening on\" and the address. SIGINT and\n"
        "SIGTERM end it when it has answered what was asked.\n"
        "\n"
        "Environment:\n"
        "  ORVO_SITE_CONFIG  the site configuration, instead of /etc/orvo/site.ini\n"
        "  ORVO_COMPONENTS   folders of components in front of the user's and the system's\n"
        "  ORVO_LOG_FILE     the component's log\n"
        "\n"
        "Exit status:\n"
        "  0  it was stopped\n"
        "  1  it cannot serve the folder, or ended before all was answered\n"
        "  2  it was called in a wrong way");
}

}  // namespace orvo::web
