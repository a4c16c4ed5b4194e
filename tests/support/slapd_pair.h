#pragma once

#include <array>
#include <chrono>
#include <memory>

#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo {

// Two private directory servers that send each other every change; either takes writes. They reach
// each other directly. They live as long as the thread that makes the pair.
class SlapdPair {
public:
    // `options` are those of both; entries are given to the first one, and the second, which begins
    // empty, gets them from it. Returns when both have the same.
    explicit SlapdPair(SlapdOptions options);

    // 0 is the first one.
    PrivateSlapd& operator[](int server) { return *servers_.at(static_cast<std::size_t>(server)); }
    const PrivateSlapd& operator[](int server) const {
        return *servers_.at(static_cast<std::size_t>(server));
    }

    // Waits until both servers say that they know the same changes; false after `patience`.
    bool settle(std::chrono::seconds patience = std::chrono::seconds(30)) const;
    // A look into one server as its root.
    std::unique_ptr<LdapProbe> look_into(int server) const;

private:
    TempFolder folder_;
    std::array<std::unique_ptr<PrivateSlapd>, 2> servers_;
};

// The text of examples/site.ini with the LDAP provider and these servers. The folder Config belongs
// beside it.
std::string sample_site(const std::string& servers);

}  // namespace orvo
