#pragma once

// Who works on a directory, and what they may do there.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "suite/directory/embedded/directory/directory.h"
#include "suite/directory/filters/filter.h"
#include "suite/directory/policy/password_change.h"

namespace orvo::directory::embedded {

// Each operation is one transaction, and is allowed or not by the access rules as they are then,
// with the rights that the user has then. Names are UTF-8, as DistinguishedName reads them.
//
// Raises, as a server does: 0x8007052E where the user's entry is gone or has another password than
// the one that was proven (a change of the user's own excepted), 50 for what the user may not do,
// also whatever it is for one who has to change the password first, 34 for what is no name, 32 for
// an entry that is not there or that the user may not see. Used by one thread.
class Login {
public:
    // Nobody has asked the directory yet. Raises what login_name and Directory::of do.
    Login(TextView server, TextView user, const Secret& password);
    Login(std::shared_ptr<Directory> directory, TextView user, const Secret& password);

    // Raises 0x8007052E where the directory does not accept user and password.
    void authenticate();

    const Directory& directory() const { return *directory_; }
    // As it was given; empty for nobody.
    const std::string& user() const { return user_; }
    // The user's DistinguishedName::key(); empty for nobody.
    const std::string& user_key() const { return user_key_; }
    const Schema& schema() const { return *schema_; }

    // The entry with what the user may read of it, as it is now.
    EntryData read(const std::string& name);
    // The same but for secrets (is_secret), which it lacks; kept as long as nobody writes to the
    // store, so that many readings of one entry cost one. Valid until the next call.
    const EntryData& known(const std::string& name);

    // What a search is for; `attributes` are decoded, beside those of the filter.
    struct Search {
        std::string base;
        Filter filter;
        std::vector<std::string> attributes;
        std::size_t wanted = 0;  // how many will be taken; 0: all
    };
    // All below the base, and it itself, that match, in the order of lists, until `take` answers
    // false. What the user may not read of an entry is not there, for the filter neither.
    void search(const Search& search, const std::function<bool(EntryData&&)>& take);

    // Of a new password (clear text; empty: none) only the hash is stored.
    void add(EntryData entry, const Secret& password);
    void remove(const std::string& name);
    void modify(const std::string& name, const std::vector<Replacement>& changes);

    // Sets a password: the user's own change where `former` is right, or where the user is the one
    // whose password it is; otherwise an administrator's. Raises 19 for one that the policy does
    // not allow, 51 where others changed it again and again meanwhile.
    void set_password(const std::string& name, const Secret& password,
                      const std::optional<Secret>& former);

private:
    struct Account;
    struct Known {
        std::uint64_t version;  // of the store, before the entry was read
        std::string name;
        EntryData entry;
    };

    // Raises 34 for what is no name by the schema.
    DistinguishedName parsed(const std::string& name) const;
    Identity identity(const Reading& reading) const;
    void require_unrestricted(const Reading& reading, const Identity& who) const;
    static EntryData require_visible(const Reading& reading, const AccessRules& rules,
                                     const Identity& who, const DistinguishedName& name);
    Account account(const Reading& reading, const std::string& name);
    bool write_password(const std::string& name, const Account& account,
                        const std::vector<Replacement>& changes);
    void check_first_password(const PasswordRules& policy, const Secret& password,
                              EntryData& entry);

    std::shared_ptr<Directory> directory_;
    std::shared_ptr<const Schema> schema_;
    std::string user_;  // as it was given; empty: nobody
    std::string user_key_;
    std::optional<DistinguishedName> user_name_;
    std::optional<Secret> presented_;  // until the directory has accepted it
    CredentialsRef credentials_;
    std::optional<Known> known_;
};

}  // namespace orvo::directory::embedded
