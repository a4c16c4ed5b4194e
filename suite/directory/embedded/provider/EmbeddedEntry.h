#pragma once

#include <optional>
#include <string>

#include "component/provider/directory_contract.h"
#include "platform/interfaces/hosted.h"
#include "suite/directory/embedded/directory/login.h"
#include "suite/directory/entries/failure_note.h"
#include "suite/directory/entries/new_entry.h"

namespace orvo {
namespace directory {

struct AuditedChange;
struct EndedLogins;

namespace embedded {

// One entry of a directory in a file, which the server setting names. Every operation is a
// transaction of its own. Used by one thread.
class EmbeddedEntry final : public DirectoryEntry {
public:
    // Authenticates and reads the entry: `common_name` below `container` (either may be empty; the
    // container may also be written from the top down with "/"). Both credentials empty: as nobody.
    // Raises 0x8007052E for wrong credentials, also for a name with an empty password; 0x80072030
    // for an entry that is not there; 0x8007203A where the file cannot be used, with the reason;
    // after any failure the object is unbound.
    void Bind(Text& server, Text& container, Text& common_name, Text& user, Secret& password,
              Variant& attributes) override;

    // The name may be any of the attribute's names or its number, in any case, with options. Values
    // are those of the moment. Raises 91 before Bind and 5 for an empty name, as the writing
    // operations do.
    Variant GetValues(Text& name) override;

    // See encode_values for what may be given. "userPassword" takes a single value, of which the
    // hash is stored; an empty one is refused (result code 19). It is the user's own change for
    // those who work as themselves, and for those whose password this thread has just checked
    // (ProvenPassword); otherwise it is an administrator's.
    //
    // The user's logins end (audited_account_change) with a password, and with a value that
    // disables the account; so they do with the password that is cleared, and with the entry.
    void SetValues(Text& name, Variant& value) override;
    void ClearValues(Text& name) override;

    // See NewEntry for what may be given. An attribute given as an empty text is created with a
    // single blank where the entry's object classes require it. Where the password is refused there
    // is no entry either. Raises 0x8004044F, "(68) The specified entry already exists.", for an
    // entry that is there.
    void CreateChild(Variant& classes, Text& naming_attribute, Object& attributes) override;

    // `entry_name` is a relative name, "," and this entry's container, put together without
    // escaping (name_below). The class is not looked at. Raises result code 34 for anything but an
    // entry below the one that is bound, 0x80072030 for an entry that is not there.
    void DeleteChild(Text& class_name, Text& entry_name) override;

    // The names, units and bounds are those of the LDAP provider, so that a script serves both. Of
    // them this one has "WaitLimit": how long a writer waits for others. There is nothing to cache.
    Boolean InitializeConnectionPool(Variant& names, Variant& values) override;
    Boolean InitializeCache(Variant& names, Variant& values) override;

    void failed(const char* operation, const Failure& failure) const noexcept {
        note_failure(operation, name_, failure);
    }

private:
    void require_bound() const;
    AuditedChange change_of(const std::string& attribute) const;
    EndedLogins set_values(const std::string& attribute, const Variant& value);
    Variant decoded_values(const EntryData& entry, const std::string& attribute) const;
    void require_known(const GivenAttribute& attribute) const;

    std::optional<Login> login_;  // set while bound
    Text server_;
    std::string name_;
};

}  // namespace embedded
}  // namespace directory

template <>
inline constexpr auto class_of<directory::embedded::EmbeddedEntry> =
    describe_class<DirectoryEntry>("OrvoDirectory.Embedded");

}  // namespace orvo
