#include "tests/support/slapd.h"

#include <ldap.h>
#include <signal.h>

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "tests/support/free_port.h"
#include "tests/support/throttle_setting.h"

namespace orvo {

namespace {

const std::string script = ORVO_SOURCE_DIR "/scripts/private-slapd";

}  // namespace

PrivateSlapd::PrivateSlapd(SlapdOptions options) : suffix_(options.suffix), tls_(options.tls) {
    prepare(options);
    root_password_ = content_of(folder() / "root.pw");
    // Between finding a free port and the server's taking it, somebody else may take it.
    for (int attempt = 0; attempt < 10; ++attempt) {
        choose_ports();
        if (try_start()) return;
    }
    throw std::runtime_error("slapd does not start: " + log_text());
}

PrivateSlapd::~PrivateSlapd() { stop(); }

void PrivateSlapd::prepare(const SlapdOptions& options) {
    std::vector<std::string> command = {script, "prepare", folder()};
    if (options.tls) command.push_back("--tls");
    if (options.sorting) command.push_back("--sssvlv");
    if (options.password_policy) command.push_back("--ppolicy");
    if (!options.directory.empty())
        command.insert(command.end(), {"--directory", options.directory});
    if (!options.shop.empty()) command.insert(command.end(), {"--shop", options.shop});
    for (const auto& file : options.ldif) command.insert(command.end(), {"--ldif", file});
    if (!options.config.empty()) {
        std::filesystem::path file = folder() / "more.conf";
        std::ofstream(file) << options.config;
        command.insert(command.end(), {"--config", file});
    }
    output_of(command);
    if (options.directory.empty()) write_throttle_section(folder() / "site.ini.in", "On=no\n");
}

void PrivateSlapd::choose_ports() {
    FreePort port;
    FreePort tls_port;
    port_ = port.number();
    tls_port_ = tls_port.number();
}

void PrivateSlapd::start() {
    if (running()) return;
    if (!try_start()) throw std::runtime_error("slapd does not start again: " + log_text());
}

bool PrivateSlapd::try_start() {
    std::vector<std::string> command = {script, "run", folder(), std::to_string(port_)};
    if (tls_) command.push_back(std::to_string(tls_port_));
    process_ = std::make_unique<ChildProcess>(command, folder() / "slapd.log");
    auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (process_->running() && std::chrono::steady_clock::now() < end) {
        if (answers()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    process_.reset();
    return false;
}

// Nobody but this server knows its root's password.
bool PrivateSlapd::answers() const {
    LDAP* connection = nullptr;
    if (ldap_initialize(&connection, url().c_str()) != LDAP_SUCCESS) return false;
    int version = LDAP_VERSION3;
    timeval patience{1, 0};
    ldap_set_option(connection, LDAP_OPT_PROTOCOL_VERSION, &version);
    ldap_set_option(connection, LDAP_OPT_NETWORK_TIMEOUT, &patience);
    ldap_set_option(connection, LDAP_OPT_TIMEOUT, &patience);
    std::string password = root_password_;
    berval credentials{password.size(), password.data()};
    int result = ldap_sasl_bind_s(connection, root_dn().c_str(), LDAP_SASL_SIMPLE, &credentials,
                                  nullptr, nullptr, nullptr);
    ldap_unbind_ext_s(connection, nullptr, nullptr);
    return result == LDAP_SUCCESS;
}

void PrivateSlapd::stop() {
    if (!process_) return;
    resume();
    process_->terminate(5);
    process_.reset();
}

void PrivateSlapd::kill() { process_.reset(); }

void PrivateSlapd::pause() {
    if (process_) process_->pause();
}

void PrivateSlapd::resume() {
    if (process_) process_->send(SIGCONT);
}

bool PrivateSlapd::running() { return process_ && process_->running(); }

std::string PrivateSlapd::server() const { return "127.0.0.1:" + std::to_string(port_); }

std::string PrivateSlapd::url() const { return "ldap://" + server(); }

std::string PrivateSlapd::tls_url() const {
    if (!tls_) throw std::logic_error("a server without TLS");
    return "ldaps://127.0.0.1:" + std::to_string(tls_port_);
}

std::filesystem::path PrivateSlapd::ca_file() const {
    if (!tls_) throw std::logic_error("a server without TLS");
    return folder() / "tls" / "cert.pem";
}

std::filesystem::path PrivateSlapd::site_ini() const { return folder() / "site.ini"; }

std::string PrivateSlapd::log_text() const { return content_of(folder() / "slapd.log"); }

}  // namespace orvo
