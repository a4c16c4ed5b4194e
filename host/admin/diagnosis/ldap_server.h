#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/admin/common/site_settings.h"
#include "host/admin/diagnosis/directory_view.h"
#include "host/admin/diagnosis/step.h"
#include "platform/values/secret.h"
#include "suite/directory/ldap/pool/server_facts.h"
#include "suite/directory/ldap/provider/mapped_directory.h"
#include "suite/directory/ldap/wire/session.h"

namespace orvo::admin {

// As the session's user sees it.
class LdapView : public DirectoryView {
public:
    // The session lives longer.
    explicit LdapView(directory::ldap::Session& session) : session_(session) {}

    std::optional<directory::EntryData> find(const std::string& name) override;
    std::vector<directory::EntryData> search(const std::string& base, const std::string& filter,
                                             std::size_t most) override;

private:
    directory::ldap::Session& session_;
};

// An entry with all that a server tells of it; nothing where it is not there.
std::optional<directory::EntryData> read_whole(directory::ldap::Session& session,
                                               const std::string& name);

// The makes that are asked in ways of their own.
enum class Make { openldap, directory_389, active_directory, other };

// A server that is looked at, and what the steps so far have found.
struct LdapServer {
    const SiteSettings& site;
    directory::ldap::ServerHost host;
    directory::Limits limits = {};

    // Since the connection; the service account's since its step.
    std::optional<directory::ldap::Session> session = {};
    directory::EntryData root = {};  // the server's own entry
    Make make = Make::other;
    std::shared_ptr<const directory::ldap::ServerFacts> facts = {};
    // Where the site has a map.
    std::optional<directory::ldap::MappedDirectory> mapped = {};

    std::string service() const;
    // Raises std::exception where the setting refers to something that cannot be read.
    Secret service_password() const;
    std::unique_ptr<DirectoryView> view();
};

// Connects, and logs the service account in. Raises a Failure.
void log_in(LdapServer& server);

// The steps of a server, in their order.
std::vector<Examined> examine_server(LdapServer& server);

// Of OpenLDAP with password policies, without a login: whether this is the user's password, as a
// change says that is never made; nothing where the server does not tell.
std::optional<bool> try_former_password(LdapServer& server, const std::string& user,
                                        const Secret& password);

Finding examine_reading(LdapServer& server);
Finding examine_writing(LdapServer& server);
Finding examine_indexes(LdapServer& server);
Finding examine_clock(LdapServer& server);

}  // namespace orvo::admin
