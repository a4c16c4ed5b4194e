#include "tests/suite/directory/policy/directory_manager.h"

#include <ldap.h>

#include <stdexcept>
#include <utility>

namespace orvo::directory {
namespace {

void check(int result) {
    if (result != LDAP_SUCCESS) throw std::runtime_error(ldap_err2string(result));
}

// Attributes as the library wants them.
class Mods {
public:
    Mods(std::vector<Attribute> attributes, int operation)
        : attributes_(std::move(attributes)),
          values_(attributes_.size()),
          mods_(attributes_.size()) {
        for (std::size_t at = 0; at < attributes_.size(); ++at) {
            for (std::string& value : attributes_[at].values) values_[at].push_back(value.data());
            values_[at].push_back(nullptr);
            mods_[at].mod_op = operation;
            mods_[at].mod_type = attributes_[at].name.data();
            mods_[at].mod_values = attributes_[at].values.empty() ? nullptr : values_[at].data();
            list_.push_back(&mods_[at]);
        }
        list_.push_back(nullptr);
    }
    LDAPMod** list() { return list_.data(); }

private:
    std::vector<Attribute> attributes_;
    std::vector<std::vector<char*>> values_;
    std::vector<LDAPMod> mods_;
    std::vector<LDAPMod*> list_;
};

class Relaxed {
public:
    LDAPControl** controls() { return controls_; }

private:
    char oid_[26] = "1.3.6.1.4.1.4203.666.5.12";
    LDAPControl control_{oid_, {0, nullptr}, 1};
    LDAPControl* controls_[2] = {&control_, nullptr};
};

}  // namespace

DirectoryManager::DirectoryManager(const PrivateSlapd& slapd) {
    std::string password = slapd.root_password();
    berval credentials{password.size(), password.data()};
    int version = LDAP_VERSION3;
    check(ldap_initialize(&connection_, slapd.url().c_str()));
    ldap_set_option(connection_, LDAP_OPT_PROTOCOL_VERSION, &version);
    check(ldap_sasl_bind_s(connection_, slapd.root_dn().c_str(), LDAP_SASL_SIMPLE, &credentials,
                           nullptr, nullptr, nullptr));
}

DirectoryManager::~DirectoryManager() { ldap_unbind_ext_s(connection_, nullptr, nullptr); }

void DirectoryManager::add(const std::string& name, const std::vector<Attribute>& attributes) {
    check(ldap_add_ext_s(connection_, name.c_str(), Mods(attributes, LDAP_MOD_ADD).list(),
                         Relaxed().controls(), nullptr));
}

void DirectoryManager::replace(const std::string& name, const Attribute& attribute) {
    check(ldap_modify_ext_s(connection_, name.c_str(), Mods({attribute}, LDAP_MOD_REPLACE).list(),
                            Relaxed().controls(), nullptr));
}

void DirectoryManager::remove(const std::string& name, const std::string& attribute) {
    check(ldap_modify_ext_s(connection_, name.c_str(),
                            Mods({{attribute, {}}}, LDAP_MOD_DELETE).list(), nullptr, nullptr));
}

EntryData DirectoryManager::read(const std::string& name) {
    LDAPMessage* result = nullptr;
    char star[] = "*", plus[] = "+";
    char* attributes[] = {star, plus, nullptr};
    check(ldap_search_ext_s(connection_, name.c_str(), LDAP_SCOPE_BASE, nullptr, attributes, 0,
                            nullptr, nullptr, nullptr, 0, &result));
    EntryData entry{name, {}};
    LDAPMessage* found = ldap_first_entry(connection_, result);
    BerElement* position = nullptr;
    for (char* attribute = ldap_first_attribute(connection_, found, &position); attribute;
         attribute = ldap_next_attribute(connection_, found, position)) {
        Attribute& read = entry.attributes.emplace_back(Attribute{attribute, {}});
        berval** values = ldap_get_values_len(connection_, found, attribute);
        for (berval** value = values; value && *value; ++value)
            read.values.emplace_back((*value)->bv_val, (*value)->bv_len);
        ldap_value_free_len(values);
        ldap_memfree(attribute);
    }
    ber_free(position, 0);
    ldap_msgfree(result);
    return entry;
}

}  // namespace orvo::directory
