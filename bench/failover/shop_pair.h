#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bench/failover/sightings.h"
#include "tests/support/faulty_proxy.h"
#include "tests/support/slapd_pair.h"
#include "tests/support/temp_folder.h"

namespace orvo::failover {

// What can happen to the preferred server.
enum class Fault {
    freeze,   // the process stands still; its host goes on accepting connections
    kill,     // the process is killed; connections break and new ones are refused
    silence,  // nothing comes through in either direction any more, and nobody is told
    refused,  // connections are reset and new ones are refused; the process goes on
    slow,     // each answer comes two seconds late
};
inline constexpr std::pair<Fault, const char*> faults[] = {{Fault::freeze, "freeze"},
                                                           {Fault::kill, "kill"},
                                                           {Fault::silence, "silence"},
                                                           {Fault::refused, "refused"},
                                                           {Fault::slow, "slow"}};
const char* name_of(Fault fault);

// Two directory servers with the sample shop that send each other every change, each behind a
// proxy, and a site that names both proxies. Either takes writes. The servers reach each other
// directly: a network that fails between clients and a server does not part the two. Their password
// policy counts every failure and never locks anybody out.
//
// The servers live as long as the thread that makes the pair.
class ShopPair {
public:
    explicit ShopPair(Sightings& sightings);

    std::string site_ini() const { return site_.path() / "site.ini"; }
    const PrivateSlapd& shop() const { return servers_[preferred]; }
    // Names of users of the shop with ordinary names and a type.
    std::vector<std::string> users() const;

    void inject(Fault fault);
    void heal(Fault fault);

    // Waits until both servers say that they know the same changes; false after 30 s.
    bool settle() const { return servers_.settle(); }
    // A look into one server, past its proxy, as its root.
    std::unique_ptr<LdapProbe> look_into(int server) const { return servers_.look_into(server); }

private:
    TempFolder site_;
    SlapdPair servers_;
    std::vector<std::unique_ptr<FaultyProxy>> proxies_;
};

}  // namespace orvo::failover
