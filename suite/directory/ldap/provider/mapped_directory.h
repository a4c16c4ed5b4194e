#pragma once

// A directory with a map (directory_map.h), as one of the provider's objects works with it.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "suite/directory/ldap/memory/entry_cache.h"
#include "suite/directory/ldap/pool/server_login.h"
#include "suite/directory/ldap/provider/client.h"
#include "suite/directory/map/translation.h"

namespace orvo::directory::ldap {

// Users and groups are looked for with the rights of the site's service account, on connections of
// its own, so never while another lease is held. What was found is kept as what was read of entries
// is (EntryCache), until anything is written. Used by one thread.
class MappedDirectory {
public:
    // Nothing where the directory is as the product knows it.
    static std::optional<MappedDirectory> try_open(Client& client, TextView server,
                                                   TextView container,
                                                   const std::optional<Limits>& limits);

    // With a map that the caller has read.
    MappedDirectory(Client& client, TextView server, std::shared_ptr<const DirectoryMap> map,
                    const std::optional<Limits>& limits)
        : client_(&client), server_(server), map_(std::move(map)), limits_(limits) {}

    const DirectoryMap& map() const { return *map_; }

    // The real names of the entries that are called so, two at most.
    std::vector<std::string> all_called(const std::string& name);
    // The real name of the entry that is called so: of a user the one entry that matches; anybody
    // else's name is the name. Nothing where no entry matches, or several.
    std::optional<std::string> find(const std::string& name);
    // The same; raises 0x80072030, and says whether none or several match.
    std::string require(const std::string& name);

    // All names that find() takes for this user, by its real name; for any other entry its own.
    std::vector<std::string> login_names(const std::string& real_name);

    // Who works with these credentials, as ServerLogin has it, under the real name. Raises
    // 0x8007052E where no entry matches, or several.
    ServerLogin login(TextView user, const Secret& password);

    // Before `types` and `translation` are used: what the server knows.
    void learn(const std::shared_ptr<const ServerFacts>& facts);
    const ServerFacts& facts() const { return *facts_; }
    const AttributeTypes& types() const { return *types_; }
    Translation translation() const { return {*map_, *types_}; }

    // Searches of the service account. The names of what is found, which are kept for a while, at
    // most `most` of them; and the entries, which are not kept.
    enum class Known { used, not_used };
    std::vector<std::string> names_found(SearchRequest request, std::size_t most,
                                         Known known = Known::used);
    std::vector<EntryData> entries_found(const SearchRequest& request);

private:
    std::optional<SearchRequest> user_search(const std::string& name) const;
    ServerLogin& service();
    // Runs `body` with the service account, whose failures are not those of the user.
    template <class Body>
    auto as_service(Body body);

    Client* client_;
    Text server_;
    std::shared_ptr<const DirectoryMap> map_;
    std::optional<Limits> limits_;
    std::optional<ServerLogin> service_;
    std::shared_ptr<const ServerFacts> facts_;
    std::shared_ptr<const AttributeTypes> types_;
};

}  // namespace orvo::directory::ldap
