#pragma once

#include <optional>

#include "bench/raw_client.h"

namespace orvo {

using RawRow = std::vector<std::string>;

// The attributes of one entry, in the server's order, as texts.
inline void raw_decode(LDAP* handle, LDAPMessage* message, RawRow& row) {
    BerElement* decoder = nullptr;
    berval name{};
    ldap_get_dn_ber(handle, message, &decoder, &name);
    row.clear();
    for (;;) {
        berval attribute{};
        berval* values = nullptr;
        if (ldap_get_attribute_ber(handle, message, decoder, &attribute, &values) != LDAP_SUCCESS ||
            !attribute.bv_val)
            break;
        for (const berval* value = values; value && value->bv_val; ++value)
            row.emplace_back(value->bv_val, value->bv_len);
        ber_memfree(values);
    }
    ber_free(decoder, 0);
}

// Searches for users and decodes every row as it comes, those that the server gives first where
// there are more than `limit`; nothing where the server refuses.
inline std::optional<std::vector<RawRow>> raw_search(const RawConnection& connection,
                                                     const std::string& filter,
                                                     std::vector<const char*> attributes,
                                                     int limit = LDAP_NO_LIMIT) {
    attributes.push_back(nullptr);
    int request = -1;
    ldap_search_ext(connection.get(), "ou=Users,o=Shop", LDAP_SCOPE_SUBTREE, filter.c_str(),
                    const_cast<char**>(attributes.data()), 0, nullptr, nullptr, nullptr, limit,
                    &request);
    std::vector<RawRow> rows;
    for (;;) {
        LDAPMessage* message = nullptr;
        const int type = ldap_result(connection.get(), request, LDAP_MSG_ONE, nullptr, &message);
        int code = LDAP_OTHER;
        if (type == LDAP_RES_SEARCH_ENTRY)
            raw_decode(connection.get(), message, rows.emplace_back());
        else if (type == LDAP_RES_SEARCH_RESULT)
            ldap_parse_result(connection.get(), message, &code, nullptr, nullptr, nullptr, nullptr,
                              0);
        ldap_msgfree(message);
        if (type == LDAP_RES_SEARCH_ENTRY) continue;
        if (code != LDAP_SUCCESS && code != LDAP_SIZELIMIT_EXCEEDED) return std::nullopt;
        return rows;
    }
}

}  // namespace orvo
