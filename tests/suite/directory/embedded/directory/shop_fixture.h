#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "suite/directory/embedded/directory/login.h"
#include "suite/directory/policy/password_hash.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/support/temp_folder.h"

namespace orvo::directory::embedded {

inline DistinguishedName dn(const std::string& name) {
    return DistinguishedName::try_parse(from_utf8(name)).value();
}

inline std::string user(const std::string& cn) { return "cn=" + cn + ",ou=Users,o=Shop"; }

inline std::string hash(const std::string& password) {
    return hashed_password(Secret::of_bytes(password));
}

inline const std::string service = "cn=orvo-service,ou=Services,o=Shop";

// A store with the product's schema and access rules, a service account, and the users jsmith and
// djansen.
inline void make_shop(const std::filesystem::path& path) {
    Store::create(path, Schema::of_product());
    const auto store = Store::open(path);
    Writing writing = store->write(Durability::process);
    writing.set_setting("access", AccessRules::text_of_product("o=Shop"));
    writing.add({"o=Shop", {{"objectClass", {"organization"}}, {"o", {"Shop"}}}});
    for (const std::string unit : {"Users", "Services", "Policies"})
        writing.add(
            {"ou=" + unit + ",o=Shop", {{"objectClass", {"organizationalUnit"}}, {"ou", {unit}}}});
    for (const std::string cn : {"jsmith", "djansen"})
        writing.add({user(cn),
                     {{"objectClass", {"orvoPerson"}},
                      {"cn", {cn}},
                      {"userPassword", {hash("shop-sample")}}}});
    writing.add({service,
                 {{"objectClass", {"applicationProcess", "simpleSecurityObject"}},
                  {"cn", {"orvo-service"}},
                  {"userPassword", {hash("service-sample")}}}});
    writing.commit();
}

// Such a directory; its clock stands still until it is told to go on.
class AShop : public testing::Test {
protected:
    AShop() {
        make_shop(path);
        directory = std::make_shared<Directory>(Store::open(path), [this] { return now.load(); });
    }

    void demand(std::vector<Attribute> policy) {
        policy.insert(policy.begin(), {{"objectClass", {"organizationalRole", "pwdPolicy"}},
                                       {"cn", {"default"}},
                                       {"pwdAttribute", {"userPassword"}}});
        Writing writing = directory->store().write(Durability::process);
        writing.add({"cn=default,ou=Policies,o=Shop", std::move(policy)});
        writing.set_setting("policy", "cn=default,ou=Policies,o=Shop");
        writing.commit();
    }
    void put(const std::string& name, const std::string& attribute,
             std::vector<std::string> values) {
        Writing writing = directory->store().write(Durability::process);
        EntryData entry = writing.find(dn(name)).value();
        std::erase_if(entry.attributes,
                      [&](const Attribute& held) { return held.name == attribute; });
        if (!values.empty()) entry.attributes.push_back({attribute, std::move(values)});
        writing.replace(entry);
        writing.commit();
    }
    std::vector<std::string> stored(const std::string& name, const std::string& attribute) const {
        const std::optional<EntryData> entry = directory->store().read().find(dn(name));
        const Attribute* held = entry ? find_attribute(*entry, attribute) : nullptr;
        return held ? held->values : std::vector<std::string>();
    }
    // The number that a password check gives.
    int check(const std::string& name, const std::string& password) {
        const BindAnswer answer =
            directory->bind(name, Secret::of_bytes(password), Directory::Proof::anew);
        return judged(answer.code, {}, answer.policy).value();
    }
    Login login(const std::string& name, const std::string& password) {
        Login login(directory, from_utf8(name), Secret::of_bytes(password));
        login.authenticate();
        return login;
    }
    Login service_login() { return login(service, "service-sample"); }

    TempFolder folder;
    std::filesystem::path path = folder.path() / "shop.db";
    std::atomic<Moment> now{Moment(std::chrono::sys_days(std::chrono::year(2026) / 3 / 1))};
    std::shared_ptr<Directory> directory;
};

}  // namespace orvo::directory::embedded
