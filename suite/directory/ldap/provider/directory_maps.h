#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/values/failure.h"
#include "platform/values/text.h"
#include "suite/directory/ldap/pool/server_facts.h"
#include "suite/directory/map/directory_map.h"

namespace orvo::directory::ldap {

// The maps of the sites that this process works with: of every configuration file that was loaded
// (loaded_files.h) and has one. Objects are told a server and a container, and a file's
// `LDAPServer` and `LDAPRoot` say whether these are its. Thread-safe.
class DirectoryMaps {
public:
    // Null where the directory is as the product knows it. Of several files for one directory the
    // one loaded last counts. Costs nothing while no file has a map. Raises result code 89 for a
    // map that cannot be read.
    std::shared_ptr<const DirectoryMap> find(TextView server, TextView container);

    // with_our_types of a server's; made once for each.
    std::shared_ptr<const AttributeTypes> types_of(const std::shared_ptr<const ServerFacts>& facts);

private:
    struct Site {
        Text server;
        DistinguishedName root;
        std::shared_ptr<const DirectoryMap> map;
        std::optional<Failure> refusal;
    };
    struct Types {
        std::weak_ptr<const ServerFacts> server;
        std::shared_ptr<const AttributeTypes> types;
    };

    void read_files(std::uint64_t generation);

    static constexpr std::uint64_t never_read = ~std::uint64_t{0};
    std::atomic<std::uint64_t> generation_ = never_read;
    std::atomic<bool> is_empty_ = true;
    std::mutex mutex_;
    std::vector<Site> sites_;  // the latest last
    std::vector<Types> types_;
};

}  // namespace orvo::directory::ldap
