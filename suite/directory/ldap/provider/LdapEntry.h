#pragma once

#include <optional>
#include <string>
#include <vector>

#include "component/provider/directory_contract.h"
#include "platform/interfaces/hosted.h"
#include "suite/directory/entries/failure_note.h"
#include "suite/directory/ldap/pool/server_login.h"
#include "suite/directory/ldap/provider/client.h"
#include "suite/directory/ldap/provider/mapped_directory.h"

namespace orvo {
namespace directory {

struct AuditedChange;
struct GivenAttribute;
struct NewEntry;

namespace ldap {

// One entry. Each operation acquires a connection of its user's from the pool; see Attempts for
// what is done where a server fails. Used by one thread.
//
// Values are read fresh: every GetValues asks the server, or the cache of the process once that is
// switched on (InitializeCache). Beside that there is one exception: the whole entry comes with a
// bind (but for its password and for what the server sends only to those who ask by name) and
// answers readings, and further binds of the same user, for EntryCache::bind_lasts, unless this
// process has written to the entry since. So whoever binds and at once looks at some attributes
// pays for one round trip. Of an attribute that may have several values only the object's first
// reading is answered so: lists are read in order to be changed and written back, and what another
// process has added meanwhile must not be lost.
//
// In a directory with a map (MappedDirectory) callers give and get our names and values; the entry
// itself, `name_`, has its real name. Values that come from groups are not among what a bind
// takes along; an account of the operating system that the map has is no entry at all.
class LdapEntry final : public DirectoryEntry {
public:
    // `limits`: instead of those that the connection pool has for all.
    explicit LdapEntry(const std::optional<Limits>& limits = {},
                       Client& client = Client::of_process())
        : client_(client), limits_(limits) {}

    // Authenticates and reads the entry: two round trips, on a new connection or one that is there;
    // one where the server accepted just these credentials a moment ago (RecheckAfter). The entry
    // is `common_name` below `container` (either may be empty; the container may also be written
    // from the top down with "/"). Both credentials empty: as nobody. Raises 0x8007052E for wrong
    // credentials, also for a name with an empty password, which the server is not asked about;
    // 0x80072030 for a missing entry; after any failure the object is unbound.
    void Bind(Text& server, Text& container, Text& common_name, Text& user, Secret& password,
              Variant& attributes) override;

    // The name may be any of the attribute's names or its number, in any case, with options. Raises
    // 91 before Bind and 5 for an empty name, as the writing operations do.
    Variant GetValues(Text& name) override;

    // See encode_values for what may be given. "userPassword" takes a single value, which is set as
    // the server takes passwords (PasswordWriting); clear text is never stored. An empty one is
    // refused (result code 19), and so is any where no way is known (92) or where it would have to
    // cross the net in clear text (13); nothing is changed then.
    //
    // A password is set by the user where the former one is known: of those who work as themselves,
    // and of those whose password this thread has just checked (ProvenPassword). Where the server
    // makes no difference, and it may be done otherwise, it is set by whom the entry is bound as.
    //
    // The user's logins end (audited_account_change) with a password, and with a value that
    // disables the account; so they do with the password that is cleared, and with the entry.
    void SetValues(Text& name, Variant& value) override;
    // An Active Directory clears no password (53). The lock of an account is deleted, so that the
    // server forgets the wrong passwords that led to it (is_account_lock).
    void ClearValues(Text& name) override;

    // See NewEntry for what may be given. An attribute given as an empty text is created with a
    // single blank where the entry's object classes require it. Where the schema does not tell that
    // and the server refuses the entry as incomplete, it is tried once more with all such texts.
    //
    // A password is set once the entry is there (Password Modify), so that the server's policy sees
    // it: two requests one after the other, for sent together the second could find an entry that
    // somebody else created. Where it is refused, or cannot be set for another reason, the entry is
    // removed again and the reason is raised; it says so where the entry cannot be removed. An
    // entry whose creation the server has not confirmed is never removed, for it may be somebody
    // else's: the failure then says that it may exist (without a password, where one was given). A
    // server without that operation gets the entry with a hash, an Active Directory with the
    // password, as an account that may log in. Where no password can be set, SetValues says when,
    // nothing is created.
    //
    // Raises 0x8004044F, "(68) The specified entry already exists.", for an entry that is there.
    void CreateChild(Variant& classes, Text& naming_attribute, Object& attributes) override;

    // `entry_name` is a relative name, "," and this entry's container, put together without
    // escaping (name_below); "cn=Smith, John,ou=Users,o=Shop" is understood. The class is not
    // looked at. Raises result code 34 for anything but an entry below the one that is bound,
    // 0x80072030 for an entry that is not there. A failure of the connection says whether the entry
    // may be gone all the same.
    void DeleteChild(Text& class_name, Text& entry_name) override;

    // Change how this process keeps connections and entries; see PoolSettings and
    // CacheSettings for names and values.
    // Need no Bind. What is named is set, all of it or, after a failure, nothing (result code 89);
    // the rest stays as it is.
    Boolean InitializeConnectionPool(Variant& names, Variant& values) override;
    Boolean InitializeCache(Variant& names, Variant& values) override;

    void failed(const char* operation, const Failure& failure) const noexcept {
        note_failure(operation, name_, failure);
    }

private:
    struct Reading {
        KnownEntry entry;
        Clock::time_point at;  // before the server was asked, like the mark
        std::uint64_t write_mark = 0;
    };

    void bind(TextView server, TextView container, TextView common_name, TextView user,
              const Secret& password, const Variant& attributes);
    void find_entry(TextView container, TextView common_name);
    CacheKey cache_key(const ServerLogin& login) const;
    Reading read(ServerLogin& login, std::vector<std::string> asked, bool is_whole) const;
    Remembered remember(const ServerLogin& login, Reading reading) const;
    const ServerFacts& facts();
    const AttributeTypes& types() { return types_in(facts()); }
    const AttributeTypes& types_in(const ServerFacts& facts) const {
        return mapped_ ? mapped_->types() : facts.types;
    }
    const AttributeType* type_of(const std::string& name);
    std::optional<std::vector<std::string>> try_known(const std::string& name,
                                                      const AttributeType* type);
    bool is_first_reading(const std::string& list);
    AuditedChange change_of(const std::string& attribute) const;
    // The full names with which the user may have logged in who has this entry.
    std::vector<std::string> accounts_of(const std::string& name);
    std::vector<std::string> current_values(const std::string& attribute);
    const MappedAttribute* attribute_of_groups(const std::string& name) const;
    EntryData as_groups_see_it();
    std::vector<std::string> values_of_groups(const MappedAttribute& attribute);
    void assign_groups(const MappedAttribute& attribute, const std::vector<std::string>& values);
    std::vector<std::string> account_values(const std::string& attribute) const;
    // Each of these that has a `may_be_done` sets it once the server may have done it.
    void set_password(const Variant& value, bool& may_be_done);
    void clear_password(const std::string& name, bool& may_be_done);
    PasswordWriting password_writing();
    Result write_password(ServerLogin& login, const Secret& password, const Secret& former,
                          bool& may_be_done);
    Result change_own_password(const Secret& password, const Secret& former, bool& may_be_done);
    void replace(const std::string& name, std::vector<std::string> values, bool& may_be_done);
    void require_known(const GivenAttribute& attribute);
    void add(const std::string& name, const NewEntry& entry, const Secret& created_with);
    void set_first_password(const std::string& name, const Secret& password);
    void remove_child(const std::string& name, bool& may_be_done);
    Text remove_again(const std::string& name, TextView is_or_may_be);
    void require_bound() const;

    Client& client_;
    std::optional<Limits> limits_;
    std::optional<ServerLogin> login_;  // set while bound
    std::optional<MappedDirectory> mapped_;
    const MappedAccount* account_ = nullptr;  // the map's
    Text server_;
    std::string name_;
    EntryKey key_{""};
    Remembered known_;
    std::vector<std::string> lists_read_;
    std::shared_ptr<const ServerFacts> facts_;
};

}  // namespace ldap
}  // namespace directory

template <>
inline constexpr auto class_of<directory::ldap::LdapEntry> =
    describe_class<DirectoryEntry>("OrvoDirectory.Ldap");

}  // namespace orvo
