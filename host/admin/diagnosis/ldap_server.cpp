#include "host/admin/diagnosis/ldap_server.h"

#include <algorithm>
#include <chrono>
#include <iterator>

#include "host/admin/diagnosis/content_steps.h"
#include "host/admin/diagnosis/mapped_view.h"
#include "suite/configuration/value_reference.h"
#include "suite/directory/entries/login_name.h"
#include "suite/directory/ldap/wire/password_policy.h"
#include "suite/directory/ldap/wire/reach.h"
#include "suite/directory/policy/account_times.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_check.h"

namespace orvo::admin {

using namespace directory;
using namespace directory::ldap;

std::optional<EntryData> read_whole(Session& session, const std::string& name) {
    // Of some servers, those that they compute have to be asked for.
    ReadResult result = session.read(
        name, {"*", "+", "nsAccountLock", "pwdPolicySubentry", "msDS-ResultantPSO",
               "msDS-User-Account-Control-Computed", "msDS-UserPasswordExpiryTimeComputed"});
    if (result.code == result_code::no_such_object) return std::nullopt;
    check(result);
    return std::move(result.entry);
}

std::optional<EntryData> LdapView::find(const std::string& name) {
    return read_whole(session_, name);
}

std::vector<EntryData> LdapView::search(const std::string& base, const std::string& filter,
                                        std::size_t most) {
    std::vector<EntryData> entries;
    SearchRequest request;
    request.base = base;
    request.scope = Scope::subtree;
    request.filter = filter;
    request.page_size = static_cast<int>(most);
    const SearchResult result = session_.search(request, [&](EntryData&& entry) {
        if (entries.size() < most) entries.push_back(std::move(entry));
    });
    check(result);
    return entries;
}

std::unique_ptr<DirectoryView> LdapServer::view() {
    if (mapped) return std::make_unique<MappedView>(*session, *mapped);
    return std::make_unique<LdapView>(*session);
}

std::string LdapServer::service() const { return below_root(site, site.service); }

Secret LdapServer::service_password() const {
    return Secret(referred_value(from_utf8(site.service_code), site.file.parent_path()));
}

namespace {

// What a refusal says: its sentence, and the server's words.
std::string sentence_of(const Result& result) {
    return to_utf8(
        directory_failure(result.code, {}, result.message, result.nearest_entry).description);
}

std::string in_settings(const LdapServer& server) { return " in " + server.site.file.string(); }

Finding examine_name(LdapServer& server) {
    Result why;
    const std::vector<std::string> addresses = find_addresses(server.host, server.limits, why);
    if (addresses.empty())
        return failed(sentence_of(why),
                      "Correct the name in LDAPServer" + in_settings(server) +
                          ", or look at what this machine asks for names (/etc/resolv.conf).");
    if (addresses.front() == server.host.name) return found("is an address");
    std::string text = "is " + addresses.front();
    for (std::size_t i = 1; i < addresses.size(); ++i) text += ", " + addresses[i];
    return found(text);
}

Finding examine_connection(LdapServer& server) {
    Result why;
    const std::string address = reached_address(server.host, server.limits, why);
    const std::string port = std::to_string(server.host.port);
    if (address.empty())
        return failed(sentence_of(why), "Start the server, correct the port in LDAPServer" +
                                            in_settings(server) +
                                            ", or let the firewall pass port " + port + ".");
    return found(address + " accepts at port " + port);
}

std::string advice_against(const LdapServer& server) {
    const std::optional<CertificateFault> fault = certificate_fault(server.host, server.limits);
    if (!fault) return "See the server's log. It needs a certificate, its key, and TLS 1.2.";
    switch (*fault) {
        case CertificateFault::has_expired:
            return "Renew the server's certificate.";
        case CertificateFault::is_not_valid_yet:
            return "Set the clock of this machine, or give the server a certificate that is valid "
                   "now.";
        case CertificateFault::is_for_another_name:
            return "Name the server in LDAPServer as its certificate does, or give it one for '" +
                   server.host.name + "'.";
        case CertificateFault::issuer_unknown:
            break;
    }
    return "Say in LDAPServer whose certificates are trusted (?cafile=FILE), or give the server "
           "one by a known issuer.";
}

// "valid until 2026-12-22, for 30 days"
Finding validity(const Session& session) {
    constexpr std::chrono::days soon(14);
    const std::optional<CertificateWords> words = certificate_words(session.certificate());
    const auto end = words ? try_seconds(words->end) : std::nullopt;
    if (!end) return found("agreed on");
    const auto left =
        std::chrono::floor<std::chrono::days>(*end - std::chrono::system_clock::now());
    const std::string day =
        words->end.substr(0, 4) + "-" + words->end.substr(4, 2) + "-" + words->end.substr(6, 2);
    return found("the certificate " + quoted_name(words->subject) + " is valid until " + day +
                     ", for " + std::to_string(left.count()) + " days",
                 left < soon ? "Renew it before then." : "");
}

Make make_of(const EntryData& root) {
    const auto has = [&](const char* attribute, const char* value) {
        return std::ranges::count(values_of(root, attribute), value) != 0;
    };
    if (has("objectClass", "OpenLDAProotDSE") || has("structuralObjectClass", "OpenLDAProotDSE"))
        return Make::openldap;
    if (has("supportedCapabilities", "1.2.840.113556.1.4.800")) return Make::active_directory;
    return has("vendorName", "389 Project") ? Make::directory_389 : Make::other;
}

Finding examine_encryption(LdapServer& server) {
    Result why;
    server.session = Session::try_connect(server.host, server.limits, why);
    if (!server.session) return failed(sentence_of(why), advice_against(server));
    if (server.host.security != Security::none) return validity(*server.session);
    const bool is_here = server.host.name == "localhost" || server.host.name == "::1" ||
                         server.host.name.starts_with("127.");
    if (is_here) return found("none, on this machine");
    return found("none: passwords cross the network in clear text",
                 "Write " + std::string("ldaps://") + server.host.name + " or " +
                     server.host.url() + "/?starttls in LDAPServer" + in_settings(server) + ".");
}

// What the service account sees, once it is logged in.
void look_around(LdapServer& server) {
    server.root = server.session->read("", {"*", "+"}).entry;
    server.make = make_of(server.root);
    if (!server.site.map) return;
    const FactsResult facts = read_facts(*server.session);
    check(facts);
    server.facts = facts.facts;
    server.mapped.emplace(Client::of_process(), from_utf8(server.host.setting()), server.site.map,
                          server.limits);
    server.mapped->learn(server.facts);
}

std::string advice_on_service(const LdapServer& server, const BindResult& result) {
    const auto number = judged(result.code, result.message, policy_in(result.controls));
    const std::string account = quoted_name(server.service());
    if (number == password_check::locked || number == password_check::too_many_failures)
        return "Unlock " + account + " at the server.";
    if (number == password_check::disabled) return "Enable " + account + " at the server.";
    if (number == password_check::expired)
        return "Give " + account + " a new password at the server, and the same in MemScriptCode" +
               in_settings(server) + ".";
    if (number == password_check::wrong)
        return "Correct MemScriptUser or MemScriptCode" + in_settings(server) +
               ", or give the account that password at the server.";
    return "See the server's log.";
}

Finding examine_service(LdapServer& server) {
    const Secret password = server.service_password();
    const std::string name = login_name(from_utf8(server.service()), password);
    const BindResult result = server.session->bind(name, password, Policy::asked);
    const auto number = judged(result.code, result.message, policy_in(result.controls));
    if (!result.ok() || number == password_check::expired)
        return failed(
            result.ok() ? "The password has expired or is to be changed." : sentence_of(result),
            advice_on_service(server, result));
    look_around(server);
    return found(name + " is accepted");
}

// That the schema has what the map names.
Finding examine_mapped_schema(const LdapServer& server) {
    const DirectoryMap& map = server.mapped->map();
    std::vector<std::string> missing;
    const auto require_attribute = [&](const std::string& name) {
        if (!server.facts->types.find(name) && std::ranges::count(missing, name) == 0)
            missing.push_back(name);
    };
    for (const std::string& ours : server.site.user_classes) {
        const std::string& name = map.their_class(ours);
        if (!server.facts->classes.find(name)) missing.push_back("the class " + name);
    }
    if (!map.find(map.naming_attribute)) require_attribute(map.naming_attribute);
    for (const MappedAttribute& attribute : map.attributes) {
        std::ranges::for_each(attribute.theirs, require_attribute);
        if (attribute.is_of_groups()) require_attribute(map.groups.member_attribute());
    }
    if (map.login) std::ranges::for_each(map.login->attributes, require_attribute);
    if (!missing.empty())
        return failed("It lacks " + listed(missing) + ".",
                      "Correct DIRECTORY.MAP" + in_settings(server) + ".");
    return found("has the classes of the settings and all attributes that DIRECTORY.MAP names");
}

Finding examine_server_schema(LdapServer& server) {
    const FactsResult result = read_facts(*server.session);
    check(result);
    server.facts = result.facts;
    if (!result.is_whole)
        return unknown("The service account may not read the schema.",
                       "Let it read " + value_of(server.root, "subschemaSubentry") + ".");
    if (server.mapped) return examine_mapped_schema(server);
    return examine_schema(server.site, result.facts->types, result.facts->classes,
                          "Load schema/orvo.ldif into the server, and orvo-standalone.ldif where "
                          "it has no inetOrgPerson.");
}

template <auto examine>
Finding seen_by_service(LdapServer& server) {
    return examine(server.site, *server.view());
}

constexpr const char* service_account = "service account";

constexpr Step<LdapServer> server_steps[] = {
    {"name", nullptr, examine_name},
    {"connection", "name", examine_connection},
    {"encryption", "connection", examine_encryption},
    {service_account, "encryption", examine_service},
    {"schema", service_account, examine_server_schema},
    {"containers", service_account, seen_by_service<examine_containers>},
    {"accounts", "containers", seen_by_service<examine_accounts>},
    {"administrators", "containers", seen_by_service<examine_administrators>},
    {"reading", "containers", examine_reading},
    {"writing", "containers", examine_writing},
    {"indexes", "containers", examine_indexes},
    {"clock", service_account, examine_clock},
};

}  // namespace

void log_in(LdapServer& server) {
    const Secret password = server.service_password();
    const std::string name = login_name(from_utf8(server.service()), password);
    server.session = Session::connect(server.host, server.limits);
    check(server.session->bind(name, password));
    look_around(server);
}

std::vector<Examined> examine_server(LdapServer& server) {
    return examine<LdapServer>(server_steps, server);
}

}  // namespace orvo::admin
