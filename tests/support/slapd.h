#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace orvo {

// What a private directory server has beyond the product's schema and the sample shop.
struct SlapdOptions {
    bool tls = false;                 // StartTLS, and ldaps:// on a second port
    bool sorting = false;             // server-side sorting and virtual lists
    bool password_policy = false;     // examples/directory/password-policy.ldif, for every user
    std::string config = {};          // more lines for the database section of its configuration
    std::filesystem::path shop = {};  // entries instead of the sample shop's
    std::vector<std::filesystem::path> ldif = {};  // more entries
    // A folder as examples/directories/openldap instead of all that, and what its entries are
    // below.
    std::filesystem::path directory = {};
    std::string suffix = "o=Shop";
};

// A directory server of a test's own on the loopback address, on a free port, in a temporary folder
// (scripts/private-slapd prepares it). Runs from the construction to stop() or the end of the
// object's life, and never longer than the thread that made it. Everything that fails raises
// std::runtime_error with the server's own words. Texts are UTF-8.
class PrivateSlapd {
public:
    explicit PrivateSlapd(SlapdOptions options = {});
    ~PrivateSlapd();

    // The directory goes away: connections break, and new ones are refused.
    void stop();
    // It dies as if killed from outside (SIGKILL), with no chance to finish anything.
    void kill();
    // It comes back, on the same port and with the data it had. Returns when it answers.
    void start();
    // The directory falls silent: connections stay and are accepted, but nothing is answered.
    void pause();
    void resume();
    bool running();

    std::string server() const;  // "127.0.0.1:23456", as the site configuration has it
    int port() const { return port_; }
    std::string url() const;                 // "ldap://127.0.0.1:23456"
    std::string tls_url() const;             // "ldaps://127.0.0.1:23457"; only with `tls`
    std::filesystem::path ca_file() const;   // what a client has to trust; only with `tls`
    std::filesystem::path site_ini() const;  // a site configuration for this server
    const std::filesystem::path& folder() const { return folder_.path(); }

    // The account that no access rule and no size limit holds back.
    std::string root_dn() const { return "cn=root," + suffix_; }
    const std::string& root_password() const { return root_password_; }
    // The account of the site configuration ("MemScriptUser").
    std::string service_dn() const { return "cn=orvo-service,ou=Services,o=Shop"; }
    std::string service_password() const { return "service-sample"; }
    // Every user of the sample shop, by the name as it stands in a distinguished name.
    std::string user_dn(const std::string& cn) const { return "cn=" + cn + ",ou=Users,o=Shop"; }
    std::string user_password() const { return "shop-sample"; }

private:
    void prepare(const SlapdOptions& options);
    void choose_ports();
    bool try_start();
    bool answers() const;
    std::string log_text() const;

    TempFolder folder_;
    std::string root_password_;
    std::string suffix_;
    bool tls_;
    int port_ = 0;
    int tls_port_ = 0;
    std::unique_ptr<ChildProcess> process_;
};

}  // namespace orvo
