#include "tests/support/slapd_directory.h"

namespace orvo {

SlapdDirectory::SlapdDirectory(const DirectoryOptions& options)
    : slapd_({.password_policy = options.password_policy,
              .shop = options.shop,
              .ldif = options.ldif}) {}

std::vector<std::string> SlapdDirectory::find(const std::string& base, const std::string& filter) {
    return probe_->find(base, filter);
}

std::vector<std::string> SlapdDirectory::values(const std::string& dn,
                                                const std::string& attribute) {
    return probe_->values(dn, attribute);
}

int SlapdDirectory::replace(const std::string& dn, const std::string& attribute,
                            const std::vector<std::string>& values) {
    return probe_->replace(dn, attribute, values);
}

int SlapdDirectory::add(
    const std::string& dn,
    const std::vector<std::pair<std::string, std::vector<std::string>>>& attributes) {
    return probe_->add(dn, attributes);
}

int SlapdDirectory::remove(const std::string& dn) { return probe_->remove(dn); }

int SlapdDirectory::bind(const std::string& dn, const std::string& password) {
    return LdapProbe(slapd_.url()).bind(dn, password);
}

std::map<std::string, std::string> SlapdDirectory::everything() {
    std::map<std::string, std::string> entries;
    for (const std::string& name : find("o=Shop", "(objectClass=*)"))
        entries[name] = values(name, "entryCSN").at(0);
    return entries;
}

void SlapdDirectory::start() {
    slapd_.start();
    probe_ = connected();
}

int SlapdDirectory::connections() {
    return std::stoi(values("cn=Current,cn=Connections,cn=Monitor", "monitorCounter").at(0)) - 1;
}

std::unique_ptr<LdapProbe> SlapdDirectory::connected() const {
    return std::make_unique<LdapProbe>(slapd_.url(), slapd_.root_dn(), slapd_.root_password());
}

}  // namespace orvo
