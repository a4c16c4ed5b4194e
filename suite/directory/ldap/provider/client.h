#pragma once

#include "platform/module/prober.h"
#include "suite/directory/ldap/memory/entry_cache.h"
#include "suite/directory/ldap/memory/write_marks.h"
#include "suite/directory/ldap/pool/connection_pool.h"
#include "suite/directory/ldap/pool/servers.h"
#include "suite/directory/ldap/provider/check_target.h"
#include "suite/directory/ldap/provider/directory_maps.h"

namespace orvo::directory::ldap {

// What the provider's objects share: servers, connections, and what was read. There is one for the
// process; a test may make its own, with a clock that it sets. Outlives the objects that use it.
// Thread-safe.
class Client {
public:
    // By whom servers that are not up are probed: a thread of the client's own, or who calls
    // Servers::probe_due.
    enum class Probing { by_thread, by_caller };

    Client(const Clock& clock, Probing probing);
    static Client& of_process();

    WriteMarks& writes() { return writes_; }
    Servers& servers() { return servers_; }
    ConnectionPool& pool() { return pool_; }
    EntryCache& cache() { return cache_; }
    LastCheckTarget& last_check_target() { return last_check_target_; }
    DirectoryMaps& maps() { return maps_; }

private:
    WriteMarks writes_;
    Servers servers_;
    ConnectionPool pool_;
    EntryCache cache_;
    LastCheckTarget last_check_target_;
    DirectoryMaps maps_;
    Prober prober_;  // ends first
};

}  // namespace orvo::directory::ldap
