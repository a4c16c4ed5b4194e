#pragma once

#include "component/provider/directory_contract.h"
#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"

namespace orvo {

// How the provider keeps connections and entries while a benchmark runs.
enum class Keeps {
    nothing,                  // no pool: each object has a connection of its own
    connections,              // the pool as it comes
    checked_connections,      // and the server is asked about the credentials at every bind
    connections_and_entries,  // the pool and the cache
};

class KeepsScope {
public:
    explicit KeepsScope(Keeps keeps) {
        set(keeps == Keeps::nothing ? 0 : 16, keeps == Keeps::checked_connections ? 0 : 5,
            keeps == Keeps::connections_and_entries ? 1000 : 0);
    }
    ~KeepsScope() { set(16, 5, 0); }
    KeepsScope(const KeepsScope&) = delete;

private:
    static void set(std::int32_t size, std::int32_t recheck, std::int32_t entries) {
        const auto directory = Ref<DirectoryModule>::from(create_object(u"OrvoDirectory.Ldap"));
        const auto entry = call<&DirectoryModule::CreateEntry>(directory);
        Variant names = Values{u"MaximumSize", u"RecheckAfter"};
        Variant values = Values{size, recheck};
        call<&DirectoryEntry::InitializeConnectionPool>(entry, names, values);
        names = Values{u"Entries"};
        values = Values{entries};
        call<&DirectoryEntry::InitializeCache>(entry, names, values);
    }
};

}  // namespace orvo
