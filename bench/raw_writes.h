#pragma once

#include "bench/raw_client.h"

namespace orvo {

// Adds a user as the component does, but for the password.
inline bool raw_add_user(const RawConnection& connection, const std::string& entry,
                         const std::string& cn) {
    struct Values {
        std::vector<std::string> texts;
        std::vector<berval> values;
        std::vector<berval*> pointers;
        LDAPMod mod{};
        Values(const char* name, std::vector<std::string> given) : texts(std::move(given)) {
            for (std::string& text : texts) values.push_back({text.size(), text.data()});
            for (berval& value : values) pointers.push_back(&value);
            pointers.push_back(nullptr);
            mod.mod_op = LDAP_MOD_ADD | LDAP_MOD_BVALUES;
            mod.mod_type = const_cast<char*>(name);
            mod.mod_bvalues = pointers.data();
        }
        Values(const Values&) = delete;
    };
    Values classes("objectClass", {"orvoPerson", "top"}), name("cn", {cn}),
        guid("OrvoGUID", {"00112233445566778899AABBCCDDEEFF"}), type("OrvoUserType", {"0"});
    LDAPMod* attributes[] = {&classes.mod, &name.mod, &guid.mod, &type.mod, nullptr};
    return ldap_add_ext_s(connection.get(), entry.c_str(), attributes, nullptr, nullptr) ==
           LDAP_SUCCESS;
}

inline bool raw_set_password(const RawConnection& connection, std::string entry,
                             std::string password) {
    berval user{entry.size(), entry.data()}, wanted{password.size(), password.data()};
    berval generated{};
    const int result =
        ldap_passwd_s(connection.get(), &user, nullptr, &wanted, &generated, nullptr, nullptr);
    ber_memfree(generated.bv_val);
    return result == LDAP_SUCCESS;
}

inline bool raw_delete(const RawConnection& connection, const std::string& entry) {
    return ldap_delete_ext_s(connection.get(), entry.c_str(), nullptr, nullptr) == LDAP_SUCCESS;
}

}  // namespace orvo
