#include "host/admin/people/account_change.h"

#include <stdexcept>

#include "host/admin/common/component_failure.h"
#include "host/admin/diagnosis/lockout.h"
#include "host/admin/people/entry_values.h"
#include "suite/directory/names/ascii.h"

namespace orvo::admin {
namespace {

class Account {
public:
    Account(const Site& site, const std::string& name)
        : name_(name), entry_(site.user_attributes(name)) {}

    bool has(const char* attribute) const { return !value(attribute).empty(); }
    std::string value(const char* attribute) const {
        const auto texts = texts_of(entry_.GetAttribValue(attribute));
        return texts.empty() ? std::string() : texts.front();
    }
    void write(const char* attribute, const std::string& value) const {
        const auto written = [&] { entry_.SetAttribValue(attribute, Value(value)); };
        keep(attribute, written);
    }
    void clear(const char* attribute) const {
        keep(attribute, [&] { entry_.ClearAttribValue(attribute); });
    }
    [[noreturn]] void raise(const std::string& what) const {
        throw std::runtime_error("'" + name_ + "' " + what);
    }

private:
    template <class Work>
    static void keep(const char* attribute, Work work) {
        try {
            work();
        } catch (const std::exception& failure) {
            if (!is_unknown_attribute(failure)) throw;
            throw std::runtime_error(std::string("the directory keeps no ") + attribute +
                                     ": it has no password policy");
        }
    }

    std::string name_;
    LdapAccess entry_;
};

// A kind of directory.
class Keeper {
public:
    virtual ~Keeper() = default;
    virtual bool is_disabled(const Account& account) const = 0;
    virtual void put_disabled(const Account& account, bool disabled) const = 0;
    virtual bool is_locked(const Account& account) const = 0;
    virtual void unlock(const Account& account) const = 0;
    virtual void expire(const Account& account) const = 0;
    // Whether the directory refuses who is disabled.
    virtual Lockout lockout(const Site&, const std::string&) const { return Lockout::in_force; }
    // Whether a new password enables an account that was disabled.
    virtual bool is_enabled_by_password() const { return false; }
};

// OpenLDAP's and the embedded directory's: draft-behera-ldap-password-policy.
class PolicyKeeper : public Keeper {
    static constexpr const char* locked_time = "pwdAccountLockedTime";
    static constexpr const char* for_good = "000001010000Z";

    bool is_disabled(const Account& account) const override {
        return account.value(locked_time) == for_good;
    }
    void put_disabled(const Account& account, bool disabled) const override {
        if (disabled)
            account.write(locked_time, for_good);
        else
            account.clear(locked_time);
    }
    bool is_locked(const Account& account) const override {
        return account.has(locked_time) && !is_disabled(account);
    }
    void unlock(const Account& account) const override { account.clear(locked_time); }
    void expire(const Account& account) const override { account.write("pwdReset", "TRUE"); }
    Lockout lockout(const Site& site, const std::string& name) const override {
        return lockout_of(site.file(), name);
    }
    bool is_enabled_by_password() const override { return true; }
};

// The 389 directory server's.
class LockAttributeKeeper : public Keeper {
    static constexpr const char* lock = "nsAccountLock";
    static constexpr const char* unlock_time = "accountUnlockTime";

    bool is_disabled(const Account& account) const override {
        return directory::ascii::equal_ignoring_case(account.value(lock), "true");
    }
    void put_disabled(const Account& account, bool disabled) const override {
        if (disabled)
            account.write(lock, "true");
        else
            account.clear(lock);
    }
    bool is_locked(const Account& account) const override { return account.has(unlock_time); }
    void unlock(const Account& account) const override {
        account.clear(unlock_time);
        account.clear("passwordRetryCount");
    }
    void expire(const Account& account) const override {
        account.write("passwordExpirationTime", "19700101000000Z");
    }
};

// An Active Directory's.
class ControlFlagsKeeper : public Keeper {
    static constexpr const char* flags = "userAccountControl";
    static constexpr int disabled_flag = 2;

    static int flags_of(const Account& account) { return std::stoi(account.value(flags)); }
    bool is_disabled(const Account& account) const override {
        return (flags_of(account) & disabled_flag) != 0;
    }
    void put_disabled(const Account& account, bool disabled) const override {
        const int others = flags_of(account) & ~disabled_flag;
        account.write(flags, std::to_string(disabled ? others | disabled_flag : others));
    }
    bool is_locked(const Account& account) const override {
        const std::string since = account.value("lockoutTime");
        return !since.empty() && since != "0";
    }
    void unlock(const Account& account) const override { account.write("lockoutTime", "0"); }
    void expire(const Account& account) const override { account.write("pwdLastSet", "0"); }
};

// By what only such a server has of every user.
const Keeper& keeper_of(const Account& account) {
    static const PolicyKeeper policy;
    static const LockAttributeKeeper lock_attribute;
    static const ControlFlagsKeeper flags;
    if (account.has("userAccountControl")) return flags;
    if (account.has("nsUniqueId")) return lock_attribute;
    return policy;
}

}  // namespace

std::string change_account(const Site& site, const std::string& name, AccountChange change) {
    const Account account(site, name);
    const Keeper& keeper = keeper_of(account);
    const bool is_disabled = keeper.is_disabled(account);
    switch (change) {
        case AccountChange::unlock:
            if (keeper.is_locked(account)) {
                keeper.unlock(account);
                return "unlocked";
            }
            if (is_disabled) account.raise("is disabled, not locked: see orvo users enable");
            return "not locked";
        case AccountChange::disable: {
            const Lockout lockout = keeper.lockout(site, name);
            if (lockout == Lockout::none)
                account.raise(
                    "cannot be disabled and could still log in, as no password policy with "
                    "pwdLockout applies: make such a policy first");
            if (is_disabled) return "disabled already";
            keeper.put_disabled(account, true);
            return lockout == Lockout::in_force
                       ? "disabled"
                       : "disabled, if the password policy, which cannot be seen, has pwdLockout";
        }
        case AccountChange::enable:
            if (!is_disabled) return "not disabled";
            keeper.put_disabled(account, false);
            return "enabled";
        case AccountChange::expire:
            break;
    }
    keeper.expire(account);
    return "has to change the password at the next login";
}

void require_enabled(const Site& site, const std::string& name) {
    const Account account(site, name);
    const Keeper& keeper = keeper_of(account);
    if (keeper.is_enabled_by_password() && keeper.is_disabled(account))
        account.raise("is disabled, and a new password would end that: see orvo users enable");
}

}  // namespace orvo::admin
