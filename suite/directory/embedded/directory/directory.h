#pragma once

// A directory of the process's own: what a server would know and do, beside the entries themselves.

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/values/secret.h"
#include "suite/directory/embedded/access/access_rules.h"
#include "suite/directory/embedded/directory/credentials.h"
#include "suite/directory/embedded/store/store.h"
#include "suite/directory/policy/account_state.h"
#include "suite/directory/policy/password_check.h"
#include "suite/directory/settings/shared_settings.h"

namespace orvo::directory::embedded {

// The time of day, which stamps entries and ends lock-outs.
using WallClock = std::function<Moment()>;
Moment time_of_day();

// How a bind ended: a result code, and what the password policy says of the account.
struct BindAnswer {
    int code = 0;
    PasswordPolicy policy = {};
    CredentialsRef credentials = {};  // with code 0
};

// One store and what is derived from it. There is one for the process and file; a test may make its
// own, with a clock that it sets. Thread-safe.
class Directory {
public:
    explicit Directory(std::shared_ptr<Store> store, WallClock clock = time_of_day);
    // Of the store's file, the server setting of a site. Raises what Store::open does.
    static std::shared_ptr<Directory> of(TextView server);
    // What callers set for the process (InitializeConnectionPool).
    static SharedSettings& settings();

    Store& store() const { return *store_; }
    CredentialSet& credentials() { return credentials_; }
    Moment now() const { return clock_(); }
    const std::string& key() const { return key_; }  // of the store's file

    // A transaction. `write` waits for other writers (WaitLimit), and raises result code 51 where
    // they take longer. What it commits survives a lost power supply.
    Reading read() const { return store_->read(); }
    // Raises 81 where the file has been removed, or another one put in its place: what is written
    // to it then would be lost.
    Writing write() const {
        store_->require_file();
        return store_->write(Durability::full, settings().get().wait);
    }

    std::shared_ptr<const AccessRules> access_rules(const Reading& reading);
    // The policy that a user is under: the one that the entry names (pwdPolicySubentry), or the
    // store's (setting "policy"); nothing where there is none.
    std::optional<PasswordRules> password_rules(const Reading& reading,
                                                const EntryData& user) const;

    // Offers a password. The hash is computed outside any transaction. A failure is counted once;
    // one that nobody has to remember (a right password, nothing to end) writes nothing. `known`:
    // a password that was right before for the same hash need not be hashed again.
    enum class Proof { anew, known };
    BindAnswer bind(const std::string& name, const Secret& password, Proof proof);

private:
    struct Account;
    std::optional<Account> account(const std::string& name);
    std::optional<BindAnswer> try_bind(const std::string& name, const Secret& password,
                                       Proof proof);
    bool try_renew(const Account& account, std::string& renewed, BindOutcome& outcome);
    bool settle(Writing writing, const Account& account, bool is_right, std::string& renewed,
                BindOutcome& outcome);

    const std::shared_ptr<Store> store_;
    const std::string key_;
    const WallClock clock_;
    CredentialSet credentials_;
    std::mutex mutex_;
    std::string rules_text_;
    std::shared_ptr<const AccessRules> rules_;
};

// The attribute's values by the name that the store's schema prefers; nothing where the entry lacks
// it.
const Attribute* find_attribute(const EntryData& entry, std::string_view name);
// The stored password; empty where there is none.
std::string_view stored_password(const EntryData& entry);

}  // namespace orvo::directory::embedded
