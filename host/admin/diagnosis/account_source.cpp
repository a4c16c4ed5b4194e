#include "host/admin/diagnosis/account_source.h"

#include <algorithm>

#include "host/admin/diagnosis/content_steps.h"
#include "host/admin/diagnosis/embedded_file.h"
#include "host/admin/diagnosis/ldap_server.h"
#include "suite/directory/ldap/wire/password_policy.h"
#include "suite/directory/map/translation.h"
#include "suite/directory/policy/password_check.h"
#include "suite/directory/policy/result_codes.h"
#include "suite/directory/policy/stored_password.h"

namespace orvo::admin {

using namespace directory;

Finding right_password() { return found("right"); }
Finding wrong_password() { return failed("It is not the user's."); }

Finding finding_of_check(int number) {
    switch (number) {
        case password_check::right:
            return right_password();
        case password_check::locked:
            return failed("The account is locked.");
        case password_check::disabled:
            return failed("The account is disabled.");
        case password_check::expired:
            return failed("It is right, but has expired or is to be changed.");
        case password_check::too_many_failures:
            return failed("There have been too many failures.");
        default:
            return wrong_password();
    }
}

namespace {

bool is_one_of(const std::vector<std::string>& hashes, const Secret& password) {
    return std::ranges::any_of(hashes,
                               [&](const std::string& hash) { return is_hash_of(hash, password); });
}

class FileAccounts : public AccountSource {
public:
    explicit FileAccounts(const SiteSettings& site)
        : directory_(embedded::Directory::of(from_utf8(site.server))), view_(*directory_) {}

    DirectoryView& view() override { return view_; }
    AttributeTypes types() override { return with_our_types(directory_->store().schema()->types); }
    const AccountReader& reader() const override { return policy_reader; }
    Policy policy_of(const EntryData& user) override {
        const auto rules = directory_->password_rules(directory_->read(), user);
        if (!rules) return {Policy::Kind::none};
        return {Policy::Kind::known, *rules};
    }
    Finding compare(const EntryData& user, const Secret& password) override {
        const std::string_view stored = embedded::stored_password(user);
        if (stored.empty()) return failed("The user has none.");
        return is_hash_of(stored, password) ? right_password() : wrong_password();
    }
    int log_in(const EntryData& user, const Secret& password) override {
        const auto answer = directory_->bind(user.name, password, embedded::Directory::Proof::anew);
        return judged(answer.code, {}, answer.policy).value_or(password_check::wrong);
    }

private:
    std::shared_ptr<embedded::Directory> directory_;
    FileView view_;
};

class ServerAccounts : public AccountSource {
public:
    // Logged in.
    explicit ServerAccounts(LdapServer server)
        : server_(std::move(server)), view_(server_.view()) {}

    DirectoryView& view() override { return *view_; }
    std::vector<std::string> all_called(const std::string& name) override {
        if (server_.mapped) return server_.mapped->all_called(name);
        return AccountSource::all_called(name);
    }
    std::vector<std::string> login_names(const std::string& real_name) override {
        if (server_.mapped) return server_.mapped->login_names(real_name);
        return AccountSource::login_names(real_name);
    }
    AttributeTypes types() override {
        const ldap::FactsResult result = ldap::read_facts(*server_.session);
        ldap::check(result);
        return with_our_types(result.facts->types);
    }
    const AccountReader& reader() const override {
        switch (server_.make) {
            case Make::openldap:
                return policy_reader;
            case Make::directory_389:
                return directory_389_reader;
            case Make::active_directory:
                return active_directory_reader;
            case Make::other:
                break;
        }
        return unknown_reader;
    }
    Policy policy_of(const EntryData& user) override;
    Finding compare(const EntryData& user, const Secret& password) override;
    int log_in(const EntryData& user, const Secret& password) override {
        const ldap::BindResult result = bind(user, password);
        const auto number = judged(result.code, result.message, ldap::policy_in(result.controls));
        if (!number) ldap::check(result);
        return *number;
    }

private:
    bool has_policies() const {
        return std::ranges::count(values_of(server_.root, "supportedControl"),
                                  ldap::policy_control) != 0;
    }
    ldap::BindResult bind(const EntryData& user, const Secret& password) const {
        return ldap::Session::connect(server_.host, server_.limits)
            .bind(user.name, password, ldap::Policy::asked);
    }
    std::string default_policy();
    Policy openldap_policy(const EntryData& user);
    Policy policy_389(const EntryData& user);
    Policy domain_policy(const EntryData& user);

    LdapServer server_;
    const std::unique_ptr<DirectoryView> view_;
};

// The one that the server's configuration names, or the only one that is to be seen; empty: nobody
// knows.
std::string ServerAccounts::default_policy() {
    std::string name;
    ldap::SearchRequest request;
    request.base = "cn=config";
    request.scope = Scope::subtree;
    request.filter = "(objectClass=olcPPolicyConfig)";
    request.attributes = {"olcPPolicyDefault"};
    server_.session->search(
        request, [&](EntryData&& overlay) { name = value_of(overlay, "olcPPolicyDefault"); });
    if (!name.empty()) return name;
    const auto policies = view_->search(server_.site.root, "(objectClass=pwdPolicy)", 2);
    return policies.size() == 1 ? policies.front().name : name;
}

Policy ServerAccounts::policy_of(const EntryData& user) {
    switch (server_.make) {
        case Make::openldap:
            return openldap_policy(user);
        case Make::directory_389:
            return policy_389(user);
        case Make::active_directory:
            return domain_policy(user);
        case Make::other:
            break;
    }
    return {Policy::Kind::hidden};
}

Policy ServerAccounts::openldap_policy(const EntryData& user) {
    if (!has_policies()) return {Policy::Kind::none};
    std::string name = value_of(user, "pwdPolicySubentry");
    if (name.empty()) name = default_policy();
    const auto policy = name.empty() ? std::nullopt : view_->find(name);
    if (!policy) return {Policy::Kind::hidden};
    return {Policy::Kind::known, PasswordRules::from(*policy)};
}

// The user's own where there is one and the server minds those, otherwise the server's.
Policy ServerAccounts::policy_389(const EntryData& user) {
    auto policy = read_whole(*server_.session, "cn=config");
    const bool minds_own = !policy || value_of(*policy, "nsslapd-pwpolicy-local") != "off";
    const std::string own = value_of(user, "pwdPolicySubentry");
    if (!own.empty() && minds_own) policy = read_whole(*server_.session, own);
    if (!policy) return {Policy::Kind::hidden};
    return {Policy::Kind::known, rules_of_389(*policy)};
}

Policy ServerAccounts::domain_policy(const EntryData& user) {
    std::string name = value_of(user, "msDS-ResultantPSO");
    if (name.empty()) name = value_of(server_.root, "defaultNamingContext");
    const auto policy = read_whole(*server_.session, name);
    if (!policy) return {Policy::Kind::hidden};
    return {Policy::Kind::known, rules_of_active_directory(*policy)};
}

// OpenLDAP's policy checks a former password that comes with a new one before it does anything
// else, and counts nothing there; with the no-op control nothing comes of a right one either. A
// server without policies counts no logins.
Finding ServerAccounts::compare(const EntryData& user, const Secret& password) {
    const std::vector<std::string>& hashes = values_of(user, "userPassword");
    if (!hashes.empty() && std::ranges::all_of(hashes, is_known_hash))
        return is_one_of(hashes, password) ? right_password() : wrong_password();
    const Finding not_compared =
        unknown("It is not compared: this server does not do that without counting a login.",
                "With --try it is tried: a wrong one counts as a failed login.");
    if (server_.make != Make::openldap) return not_compared;
    if (!has_policies()) return finding_of_check(log_in(user, password));
    const std::optional<bool> is_right = try_former_password(server_, user.name, password);
    if (!is_right) return not_compared;
    return *is_right ? right_password() : wrong_password();
}

}  // namespace

std::unique_ptr<AccountSource> open_accounts(const SiteSettings& site) {
    if (provider_of(site) == Provider::embedded) return std::make_unique<FileAccounts>(site);
    const auto address = ldap::ServerAddress::parse(from_utf8(site.server));
    for (const ldap::ServerHost& host : address.hosts()) {
        LdapServer server{site, host};
        const bool is_last = &host == &address.hosts().back();
        try {
            log_in(server);
        } catch (const Failure&) {
            if (is_last) throw;
            continue;
        }
        return std::make_unique<ServerAccounts>(std::move(server));
    }
    throw std::runtime_error("no server is given");
}

}  // namespace orvo::admin
