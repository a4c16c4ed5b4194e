#pragma once

#include <string>
#include <utility>
#include <vector>

struct ldap;

namespace orvo {

// A plain LDAP client, independent of the product, with which tests look at what is stored and
// change it behind the product's back. Texts are UTF-8. Except where a result number is the answer
// (0 success, 32 no such object, 49 invalid credentials, 50 insufficient access, ...), an LDAP
// result other than success raises std::runtime_error.
class LdapProbe {
public:
    // Connects without binding. With `ca_file` the server's certificate is checked against it.
    explicit LdapProbe(const std::string& url, const std::string& ca_file = {});
    LdapProbe(const std::string& url, const std::string& dn, const std::string& password);
    ~LdapProbe();
    LdapProbe(const LdapProbe&) = delete;
    LdapProbe& operator=(const LdapProbe&) = delete;

    int bind(const std::string& dn, const std::string& password);
    int start_tls();
    // From now on an operation ends after so many seconds without an answer, with result -5.
    void set_patience(int seconds);

    // The distinguished names of all entries at and below `base` that match; a base that is not
    // there, or not for these eyes, has none. Asks in pages.
    std::vector<std::string> find(const std::string& base, const std::string& filter);
    // The values of one attribute, in the server's order.
    std::vector<std::string> values(const std::string& dn, const std::string& attribute);
    // Result number of one search, and of changes.
    int search_result(const std::string& base, const std::string& filter);
    int replace(const std::string& dn, const std::string& attribute,
                const std::vector<std::string>& values);
    int add(const std::string& dn,
            const std::vector<std::pair<std::string, std::vector<std::string>>>& attributes);
    int remove(const std::string& dn);
    // Several changes of one entry at once, each with the protocol's number of its kind.
    struct Change {
        int kind;
        std::string attribute;
        std::vector<std::string> values;
    };
    int modify(const std::string& dn, const std::vector<Change>& changes);
    // What the server said about the last operation.
    std::string last_sentence();

private:
    ldap* connection_ = nullptr;
};

}  // namespace orvo
