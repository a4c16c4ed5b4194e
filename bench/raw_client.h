#pragma once

// The raw LDAP client: what OpenLDAP's library does when it is called directly.

#include <ldap.h>

#include <memory>
#include <string>
#include <vector>

namespace orvo {

struct Unbind {
    void operator()(LDAP* handle) const { ldap_unbind_ext_s(handle, nullptr, nullptr); }
};
using RawConnection = std::unique_ptr<LDAP, Unbind>;

inline RawConnection raw_connection(const std::string& url) {
    LDAP* handle = nullptr;
    ldap_initialize(&handle, url.c_str());
    const int version = LDAP_VERSION3;
    ldap_set_option(handle, LDAP_OPT_PROTOCOL_VERSION, &version);
    return RawConnection(handle);
}

inline bool raw_bind(const RawConnection& connection, const std::string& user,
                     std::string password) {
    berval credentials{password.size(), password.data()};
    return ldap_sasl_bind_s(connection.get(), user.c_str(), LDAP_SASL_SIMPLE, &credentials, nullptr,
                            nullptr, nullptr) == LDAP_SUCCESS;
}

// Reads one entry and looks at nothing in it.
inline bool raw_read(const RawConnection& connection, const std::string& entry,
                     std::vector<const char*> attributes) {
    attributes.push_back(nullptr);
    LDAPMessage* found = nullptr;
    const int result = ldap_search_ext_s(connection.get(), entry.c_str(), LDAP_SCOPE_BASE, nullptr,
                                         const_cast<char**>(attributes.data()), 0, nullptr, nullptr,
                                         nullptr, LDAP_NO_LIMIT, &found);
    ldap_msgfree(found);
    return result == LDAP_SUCCESS;
}

}  // namespace orvo
