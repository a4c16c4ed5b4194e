#pragma once

#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"
#include "tests/support/test_directory.h"

namespace orvo {

// A directory server, in front of which is the provider over LDAP.
class SlapdDirectory : public TestDirectory {
public:
    explicit SlapdDirectory(const DirectoryOptions& options);

    std::string server() const override { return slapd_.server(); }
    std::filesystem::path site_ini() const override { return slapd_.site_ini(); }
    std::string own(const Difference& difference) const override { return difference.slapd; }

    std::vector<std::string> find(const std::string& base, const std::string& filter) override;
    std::vector<std::string> values(const std::string& dn, const std::string& attribute) override;
    int replace(const std::string& dn, const std::string& attribute,
                const std::vector<std::string>& values) override;
    int add(
        const std::string& dn,
        const std::vector<std::pair<std::string, std::vector<std::string>>>& attributes) override;
    int remove(const std::string& dn) override;
    int bind(const std::string& dn, const std::string& password) override;
    std::map<std::string, std::string> everything() override;

    // The server goes away, and comes back with the data it had.
    void stop() { slapd_.stop(); }
    void start();
    // Those of others than this object.
    int connections();

private:
    std::unique_ptr<LdapProbe> connected() const;

    PrivateSlapd slapd_;
    std::unique_ptr<LdapProbe> probe_ = connected();
};

}  // namespace orvo
