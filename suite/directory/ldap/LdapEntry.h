#pragma once

#include <chrono>
#include <optional>

#include "component/provider/contract.h"
#include "platform/abi/hosted.h"
#include "suite/directory/ldap/server_facts.h"
#include "suite/directory/ldap/server_login.h"

namespace orvo {
namespace directory::ldap {

// One entry, over a connection of its own that lasts until the next Bind or the object's end. When
// the server has closed it in the meantime, it is made anew once, with the same credentials, before
// an operation fails. Used by one thread.
//
// Values are read fresh: every GetValues asks the server. The one exception is a bind that was told
// what to fetch: the whole entry comes with it (but for its password), and answers the first
// reading of each attribute, within `fetched_lasts` of the bind and unless this process has written
// to the entry since. So whoever binds and at once looks at several attributes pays for one round
// trip.
class LdapEntry final : public DirectoryEntry {
public:
    static constexpr std::chrono::milliseconds fetched_lasts{250};

    explicit LdapEntry(const Limits& limits = {}) : limits_(limits) {}

    // Connects, authenticates and reads the entry: two round trips after the connection. The entry
    // is `common_name` below `container` (either may be empty; the container may also be written
    // from the top down with "/"). Both credentials empty: as nobody. Raises 0x8007052E for wrong
    // credentials, also for a name with an empty password, which the server is not asked about;
    // 0x80072030 for a missing entry; after any failure the object is unbound.
    void Bind(Text& server, Text& container, Text& common_name, Text& user, Text& password,
              Variant& attributes) override;

    // The name may be any of the attribute's names or its number, in any case, with options. Raises
    // 91 before Bind and 5 for an empty name, as the writing operations do.
    Variant GetValues(Text& name) override;

    // See encode_values for what may be given. "userPassword" takes a single value, which the
    // server hashes (Password Modify) or which is hashed here: clear text is never stored.
    void SetValues(Text& name, Variant& value) override;
    void ClearValues(Text& name) override;

    void CreateChild(Variant& classes, Text& naming_attribute, Object& attributes) override;
    void DeleteChild(Text& class_name, Text& entry_name) override;
    bool InitializeConnectionPool(Variant& names, Variant& values) override;
    bool InitializeCache(Variant& names, Variant& values) override;

private:
    // What Bind fetched and has not been read: of the entry, and of the names that it was told.
    struct Fetched {
        std::vector<std::string> asked;
        EntryData entry;
        std::uint64_t write_mark = 0;
        std::chrono::steady_clock::time_point at;
    };

    template <class Operation>
    auto on_session(Operation operation);
    const ServerFacts& facts();
    const AttributeType* type_of(const std::string& name);
    std::optional<std::vector<std::string>> take_fetched(const std::string& name);
    std::vector<std::string> values_in(const EntryData& entry, const std::string& name) const;
    void write_password(const std::string& name, const Variant& value);
    void replace(const std::string& name, std::vector<std::string> values);
    void require_bound() const;

    Limits limits_;
    std::optional<ServerLogin> login_;
    std::optional<Session> session_;
    std::string name_;
    std::string key_;
    Fetched fetched_;
    std::shared_ptr<const ServerFacts> facts_;
};

}  // namespace directory::ldap

template <>
inline constexpr auto class_of<directory::ldap::LdapEntry> =
    describe_class<DirectoryEntry>("OrvoDirectory.Ldap");

}  // namespace orvo
