#include "tests/support/ldap_probe.h"

#include <ldap.h>

#include <memory>
#include <stdexcept>

namespace orvo {

namespace {

struct FreeMessage {
    void operator()(LDAPMessage* message) const { ldap_msgfree(message); }
};
using Message = std::unique_ptr<LDAPMessage, FreeMessage>;

void expect_success(int result, const std::string& what) {
    if (result != LDAP_SUCCESS) {
        throw std::runtime_error(what + ": (" + std::to_string(result) + ") " +
                                 ldap_err2string(result));
    }
}

// One attribute with its values, in the shape that libldap takes.
class ModifiedAttribute {
public:
    ModifiedAttribute(int operation, std::string attribute, std::vector<std::string> values)
        : attribute_(std::move(attribute)), values_(std::move(values)) {
        for (std::string& value : values_) bervals_.push_back({value.size(), value.data()});
        for (berval& value : bervals_) pointers_.push_back(&value);
        pointers_.push_back(nullptr);
        mod_.mod_op = operation | LDAP_MOD_BVALUES;
        mod_.mod_type = attribute_.data();
        mod_.mod_bvalues = pointers_.data();
    }
    ModifiedAttribute(const ModifiedAttribute&) = delete;
    ModifiedAttribute& operator=(const ModifiedAttribute&) = delete;

    LDAPMod* mod() { return &mod_; }

private:
    std::string attribute_;
    std::vector<std::string> values_;
    std::vector<berval> bervals_;
    std::vector<berval*> pointers_;
    LDAPMod mod_{};
};

class ModifiedAttributes {
public:
    void append(int operation, const std::string& attribute,
                const std::vector<std::string>& values) {
        attributes_.push_back(std::make_unique<ModifiedAttribute>(operation, attribute, values));
        mods_.back() = attributes_.back()->mod();
        mods_.push_back(nullptr);
    }
    LDAPMod** mods() { return mods_.data(); }

private:
    std::vector<std::unique_ptr<ModifiedAttribute>> attributes_;
    std::vector<LDAPMod*> mods_ = {nullptr};
};

}  // namespace

LdapProbe::LdapProbe(const std::string& url, const std::string& ca_file) {
    expect_success(ldap_initialize(&connection_, url.c_str()), url);
    int version = LDAP_VERSION3;
    ldap_set_option(connection_, LDAP_OPT_PROTOCOL_VERSION, &version);
    ldap_set_option(connection_, LDAP_OPT_REFERRALS, LDAP_OPT_OFF);
    if (!ca_file.empty()) {
        int require = LDAP_OPT_X_TLS_DEMAND;
        int client = 0;
        ldap_set_option(connection_, LDAP_OPT_X_TLS_CACERTFILE, ca_file.c_str());
        ldap_set_option(connection_, LDAP_OPT_X_TLS_REQUIRE_CERT, &require);
        ldap_set_option(connection_, LDAP_OPT_X_TLS_NEWCTX, &client);
    }
}

LdapProbe::LdapProbe(const std::string& url, const std::string& dn, const std::string& password)
    : LdapProbe(url) {
    expect_success(bind(dn, password), dn);
}

LdapProbe::~LdapProbe() { ldap_unbind_ext_s(connection_, nullptr, nullptr); }

int LdapProbe::bind(const std::string& dn, const std::string& password) {
    std::string copy = password;
    berval credentials{copy.size(), copy.data()};
    return ldap_sasl_bind_s(connection_, dn.c_str(), LDAP_SASL_SIMPLE, &credentials, nullptr,
                            nullptr, nullptr);
}

int LdapProbe::start_tls() { return ldap_start_tls_s(connection_, nullptr, nullptr); }

void LdapProbe::set_patience(int seconds) {
    timeval patience{seconds, 0};
    ldap_set_option(connection_, LDAP_OPT_TIMEOUT, &patience);
    ldap_set_option(connection_, LDAP_OPT_NETWORK_TIMEOUT, &patience);
}

std::vector<std::string> LdapProbe::find(const std::string& base, const std::string& filter) {
    std::vector<std::string> found;
    berval cookie{};
    do {
        LDAPControl* page = nullptr;
        expect_success(ldap_create_page_control(connection_, 200, &cookie, 1, &page), "paging");
        ber_memfree(cookie.bv_val);
        cookie = {};
        LDAPControl* controls[] = {page, nullptr};
        char none[] = LDAP_NO_ATTRS;
        char* attributes[] = {none, nullptr};
        LDAPMessage* raw = nullptr;
        int result =
            ldap_search_ext_s(connection_, base.c_str(), LDAP_SCOPE_SUBTREE, filter.c_str(),
                              attributes, 0, controls, nullptr, nullptr, 0, &raw);
        Message answer(raw);
        ldap_control_free(page);
        if (result == LDAP_NO_SUCH_OBJECT) break;
        expect_success(result, filter);
        for (LDAPMessage* entry = ldap_first_entry(connection_, raw); entry;
             entry = ldap_next_entry(connection_, entry)) {
            char* dn = ldap_get_dn(connection_, entry);
            found.emplace_back(dn);
            ldap_memfree(dn);
        }
        LDAPControl** returned = nullptr;
        expect_success(
            ldap_parse_result(connection_, raw, &result, nullptr, nullptr, nullptr, &returned, 0),
            filter);
        LDAPControl* next = ldap_control_find(LDAP_CONTROL_PAGEDRESULTS, returned, nullptr);
        ber_int_t estimate = 0;
        if (next) ldap_parse_pageresponse_control(connection_, next, &estimate, &cookie);
        ldap_controls_free(returned);
    } while (cookie.bv_len > 0);
    ber_memfree(cookie.bv_val);
    return found;
}

std::vector<std::string> LdapProbe::values(const std::string& dn, const std::string& attribute) {
    std::string name = attribute;
    char* attributes[] = {name.data(), nullptr};
    LDAPMessage* raw = nullptr;
    int result = ldap_search_ext_s(connection_, dn.c_str(), LDAP_SCOPE_BASE, "(objectClass=*)",
                                   attributes, 0, nullptr, nullptr, nullptr, 0, &raw);
    Message answer(raw);
    expect_success(result, dn);
    std::vector<std::string> found;
    LDAPMessage* entry = ldap_first_entry(connection_, raw);
    berval** values = entry ? ldap_get_values_len(connection_, entry, name.c_str()) : nullptr;
    for (berval** value = values; value && *value; ++value) {
        found.emplace_back((*value)->bv_val, (*value)->bv_len);
    }
    ldap_value_free_len(values);
    return found;
}

int LdapProbe::search_result(const std::string& base, const std::string& filter) {
    LDAPMessage* raw = nullptr;
    int result = ldap_search_ext_s(connection_, base.c_str(), LDAP_SCOPE_SUBTREE, filter.c_str(),
                                   nullptr, 0, nullptr, nullptr, nullptr, 0, &raw);
    Message answer(raw);
    return result;
}

int LdapProbe::replace(const std::string& dn, const std::string& attribute,
                       const std::vector<std::string>& values) {
    return modify(dn, {{LDAP_MOD_REPLACE, attribute, values}});
}

int LdapProbe::add(
    const std::string& dn,
    const std::vector<std::pair<std::string, std::vector<std::string>>>& attributes) {
    ModifiedAttributes given;
    for (const auto& [name, values] : attributes) given.append(LDAP_MOD_ADD, name, values);
    return ldap_add_ext_s(connection_, dn.c_str(), given.mods(), nullptr, nullptr);
}

int LdapProbe::modify(const std::string& dn, const std::vector<Change>& changes) {
    ModifiedAttributes given;
    for (const Change& change : changes) given.append(change.kind, change.attribute, change.values);
    return ldap_modify_ext_s(connection_, dn.c_str(), given.mods(), nullptr, nullptr);
}

std::string LdapProbe::last_sentence() {
    char* sentence = nullptr;
    ldap_get_option(connection_, LDAP_OPT_DIAGNOSTIC_MESSAGE, &sentence);
    const std::string text = sentence ? sentence : "";
    ldap_memfree(sentence);
    return text;
}

int LdapProbe::remove(const std::string& dn) {
    return ldap_delete_ext_s(connection_, dn.c_str(), nullptr, nullptr);
}

}  // namespace orvo
