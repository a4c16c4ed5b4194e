#pragma once

#include <optional>

#include "component/provider/directory_contract.h"
#include "platform/interfaces/hosted.h"
#include "suite/directory/entries/failure_note.h"
#include "suite/directory/ldap/pool/server_login.h"
#include "suite/directory/ldap/provider/client.h"
#include "suite/directory/ldap/provider/mapped_directory.h"

namespace orvo {
namespace directory::ldap {

// A search below one container. Each acquires a connection of its user's from the pool; see
// Attempts for what is done where a server fails. Used by one thread.
class LdapSearch final : public DirectorySearch {
public:
    // `limits`: instead of those that the connection pool has for all.
    explicit LdapSearch(const std::optional<Limits>& limits = {},
                        Client& client = Client::of_process())
        : client_(client), limits_(limits) {}

    // Authenticates, as a Bind of an entry does; the container itself (written from the bottom up,
    // or from the top down with "/") is not looked at before the first search. Both credentials
    // empty: as nobody. Raises 0x8007052E for wrong credentials, also for a name with an empty
    // password, which the server is not asked about; after any failure the object is unconnected.
    void Connect(Text& server, Text& container, Text& user, Secret& password) override;

    // The container's own entry and all below it that match, as a read-only record set, on its
    // first row. The filter is read as Filter::parse says; SearchCondition tells what
    // of it is decided here. Columns are named and ordered as
    // `attributes`, an array of names or a single name; see RowDecoder for what is in them. An
    // attribute that the directory does not know, or this user may not see, is a column of Empty.
    //
    // Rows are ordered by the naming attribute (order_key), and of more matching entries than
    // `maximum` those are returned that come first in this order: all of them are read, of which no
    // more than `maximum` are held. As in LDAP itself, a maximum of 0 is no limit; neither is a
    // negative one. The server is asked for pages, so that its own limit for one answer cuts
    // nothing; where it sends no pages and cuts, that is a failure (0x80072023), never a shorter
    // result.
    //
    // Raises 91 before Connect, 0x8007203E for a filter that cannot be read, 0x8007203F for names
    // that cannot be columns (column_names), 0x80072030 for a container that is not there.
    //
    // In a directory with a map (MappedDirectory) filter, columns and order are in our names. Of
    // what its server cannot be asked so, more is read, and decided here; members of groups are
    // read before.
    Object Execute(Text& filter, Variant& attributes, std::int32_t maximum) override;

    void failed(const char* operation, const Failure& failure) const noexcept {
        note_failure(operation, base_, failure);
    }

private:
    void learn_types_of(const std::vector<std::string>& attributes);
    const AttributeTypes& types() const { return mapped_ ? mapped_->types() : facts_->types; }

    Client& client_;
    std::optional<Limits> limits_;
    std::optional<ServerLogin> login_;  // set while connected
    std::optional<MappedDirectory> mapped_;
    std::string base_;
    std::shared_ptr<const ServerFacts> facts_;
};

}  // namespace directory::ldap

template <>
inline constexpr auto class_of<directory::ldap::LdapSearch> =
    describe_class<DirectorySearch>("OrvoDirectory.Ldap");

}  // namespace orvo
