#include "suite/directory/embedded/access/access_rules.h"
#include "suite/directory/embedded/access/access_words.h"

namespace orvo::directory::embedded {
namespace {

void append_entries(std::string& text, const Place& entries) {
    text.append("    entries ").append(word_of(scope_words, entries.scope));
    text.append(" ").append(entries.written).append("\n");
}

void append_attributes(std::string& text, const std::vector<std::string>& attributes) {
    constexpr std::size_t longest_line = 100;
    constexpr std::string_view beginning = "    attributes";
    std::string line;
    for (const std::string& attribute : attributes) {
        if (!line.empty() && line.size() + 1 + attribute.size() > longest_line) {
            text.append(line).append("\n");
            line.clear();
        }
        if (line.empty()) line = beginning;
        line.append(" ").append(attribute);
    }
    if (!line.empty()) text.append(line).append("\n");
}

void append_grant(std::string& text, const AccessGrant& grant) {
    text.append("    ").append(word_of(right_words, grant.right));
    text.append(" ").append(word_of(whom_words, grant.to));
    if (!grant.written.empty()) text.append(" ").append(grant.written);
    text.append("\n");
}

std::string filled_in(std::string_view form, std::string_view base) {
    std::string text;
    for (std::size_t at = form.find('@'); at != std::string_view::npos; at = form.find('@')) {
        text.append(form.substr(0, at)).append(base);
        form.remove_prefix(at + 1);
    }
    return text.append(form);
}

// "@" is the base.
constexpr std::string_view product_form = R"(
# The service account reads and writes users, profiles and accounts. An administrator (a user whose
# OrvoUserType is 4) reads and writes users and profiles. A user reads the own entry, the profiles,
# and of other users what a list of colleagues needs; writes the own password and self-service
# attributes, but nothing that carries rights (roles, applications, type, profile, limits). Anybody
# else logs in, and that is all.

group administrators
    entries one ou=Users,@
    filter (OrvoUserType=4)

rule
    entries subtree ou=Users,@
    attributes userPassword
    write name cn=orvo-service,ou=Services,@
    write self
    write group administrators
    authenticate anonymous

rule
    attributes userPassword
    authenticate anonymous

rule
    entries subtree ou=Accounts,@
    write name cn=orvo-service,ou=Services,@

rule
    entries subtree ou=Services,@
    read name cn=orvo-service,ou=Services,@

rule
    entries subtree ou=Config,@
    write name cn=orvo-service,ou=Services,@
    read users

rule
    entries subtree ou=Profiles,@
    write name cn=orvo-service,ou=Services,@
    write group administrators
    read users

# What a list of colleagues shows, and a user keeps up to date.
rule
    entries subtree ou=Users,@
    attributes sn givenName mail
    write name cn=orvo-service,ou=Services,@
    write self
    write group administrators
    read users

# What a user keeps up to date.
rule
    entries subtree ou=Users,@
    attributes PhoneNumber facsimileTelephoneNumber Modem c Position ILSServer ShowExplain
    attributes OutOfOfficeOn OutOfOfficeApprover SubstituteBuyer LanguageID Locale DefaultURL
    attributes DeliveryAddressID OrvoBillAddress OrvoShipAddress
    write name cn=orvo-service,ou=Services,@
    write self
    write group administrators

# What a list of colleagues shows.
rule
    entries subtree ou=Users,@
    attributes entry children objectClass ou cn BusinessPartnerID OrvoUserType OrvoRole ProfileCN
    attributes LocalAdminProfileCN
    write name cn=orvo-service,ou=Services,@
    write group administrators
    read users

rule
    entries subtree ou=Users,@
    write name cn=orvo-service,ou=Services,@
    write group administrators
    read self

rule
    entries base @
    read users
)";

}  // namespace

std::string AccessRules::text_of_product(std::string_view base) {
    return filled_in(product_form.substr(1), base);
}

std::string AccessRules::text() const {
    std::string text;
    for (const AccessGroup& group : groups_) {
        text.append(text.empty() ? "" : "\n").append("group ").append(group.name).append("\n");
        append_entries(text, group.entries);
        text.append("    filter ").append(group.filter.text()).append("\n");
    }
    for (const AccessRule& rule : rules_) {
        text.append(text.empty() ? "" : "\n").append("rule\n");
        if (rule.entries) append_entries(text, *rule.entries);
        append_attributes(text, rule.attributes);
        for (const AccessGrant& grant : rule.grants) append_grant(text, grant);
    }
    return text;
}

}  // namespace orvo::directory::embedded
