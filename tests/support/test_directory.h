#pragma once

// A directory for tests that go by the provider's contract alone.

#include <filesystem>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/directory_differences.h"

namespace orvo {

// What a directory has beyond the product's schema and the sample shop.
struct DirectoryOptions {
    bool password_policy = false;     // examples/directory/password-policy.ldif, for every user
    std::filesystem::path shop = {};  // entries instead of the sample shop's
    std::vector<std::filesystem::path> ldif = {};  // more entries
};

// A private directory of a test's own with the sample shop and its access rules. Texts are UTF-8.
class TestDirectory {
public:
    virtual ~TestDirectory() = default;

    virtual std::string server() const = 0;              // the server setting
    virtual std::filesystem::path site_ini() const = 0;  // a site configuration for it

    // What is seen of it where directories have to differ.
    virtual std::string own(const Difference& difference) const = 0;

    // The account of the site configuration ("MemScriptUser").
    static std::string service_dn() { return "cn=orvo-service,ou=Services,o=Shop"; }
    static std::string service_password() { return "service-sample"; }
    // Every user of the sample shop, by the name as it stands in a distinguished name.
    static std::string user_dn(const std::string& cn) { return "cn=" + cn + ",ou=Users,o=Shop"; }
    static std::string user_password() { return "shop-sample"; }

    // It is looked at and changed behind the provider's back, with all rights, as LdapProbe does.
    virtual std::vector<std::string> find(const std::string& base, const std::string& filter) = 0;
    virtual std::vector<std::string> values(const std::string& dn,
                                            const std::string& attribute) = 0;
    // Result numbers of changes. A "userPassword" is given in clear text.
    virtual int replace(const std::string& dn, const std::string& attribute,
                        const std::vector<std::string>& values) = 0;
    virtual int add(
        const std::string& dn,
        const std::vector<std::pair<std::string, std::vector<std::string>>>& attributes) = 0;
    virtual int remove(const std::string& dn) = 0;
    // 0 where this password is the user's, else 49.
    virtual int bind(const std::string& dn, const std::string& password) = 0;
    // Every entry by its name, with what is another whenever somebody writes to it.
    virtual std::map<std::string, std::string> everything() = 0;
};

// A kind of directory, as a parameter of tests.
struct DirectoryKind {
    const char* name;
    const char16_t* provider;  // the ProgID
    std::unique_ptr<TestDirectory> (*make)(const DirectoryOptions& options);
};
const std::vector<DirectoryKind>& every_directory();
inline void PrintTo(const DirectoryKind& kind, std::ostream* out) { *out << kind.name; }

}  // namespace orvo
