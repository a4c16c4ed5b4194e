#pragma once

// Fills a store with entries that come from elsewhere: another directory, a backup, an
// administrator's file.

#include <cstddef>
#include <string>
#include <unordered_map>

#include "suite/directory/embedded/store/store.h"
#include "suite/directory/ldif/ldif_reader.h"
#include "suite/directory/policy/account_times.h"

namespace orvo::directory::embedded {

// All or nothing: one transaction, undone unless committed. Nobody else writes meanwhile.
//
// Entries are checked against the schema (check_loaded_entry) and come behind those above them; one
// without any above it is the store's base (its setting, or the first in an empty store). What
// another directory noted for itself is left out (entryCSN, for one), what every directory notes is
// kept, and added where it is missing. Stored passwords of known schemes are kept, those in clear
// text are hashed.
//
// Raises the failure of a result code for what is refused; the loader is of no use then.
class Loader {
public:
    // `hash_cost`: of passwords in clear text (policy/password_hash.h).
    Loader(Store& store, Moment now, int hash_cost);

    // An entry, or a change of what is there already or was loaded before.
    void take(LdifRecord record);

    void set_setting(const std::string& name, const std::string& value) {
        writing_.set_setting(name, value);
    }

    std::size_t count() const { return count_; }  // of records
    void commit() { writing_.commit(); }

private:
    void expect_many();
    bool has_children(const DistinguishedName& name) const;
    void add(EntryData entry);
    void modify(const std::string& name, std::vector<Replacement> changes);
    void remove(const std::string& name);
    void put_in_place(EntryData& entry);
    EntryData existing(const DistinguishedName& name) const;
    void hash_passwords(std::string_view attribute, std::vector<std::string>& values) const;
    void stamp(EntryData& entry) const;

    std::shared_ptr<const Schema> schema_;
    Moment now_;
    int hash_cost_;
    Writing writing_;
    bool expects_many_ = false;  // until something is changed
    std::size_t count_ = 0;
    // Entries that are there and had others put below them, by key; their names as written.
    std::unordered_map<std::string, std::string> parents_;
};

// The settings that a store's file has beside its entries.
namespace store_setting {
inline constexpr const char* base = "base";      // the name of the entry at the top
inline constexpr const char* access = "access";  // the text of the access rules
inline constexpr const char* policy = "policy";  // the name of the usual password policy
}  // namespace store_setting

}  // namespace orvo::directory::embedded
