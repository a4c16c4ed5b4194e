#include <algorithm>
#include <iterator>
#include <utility>

#include "suite/directory/embedded/directory/entry_changes.h"
#include "suite/directory/embedded/directory/login.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_hash.h"
#include "suite/directory/policy/stored_password.h"

namespace orvo::directory::embedded {
namespace {

constexpr const char* user_password = "userPassword";
constexpr int most_attempts = 3;

}  // namespace

// Whose password is to be set, as one reading has shown it.
struct Login::Account {
    DistinguishedName name;
    std::string hash;
    std::optional<PasswordRules> policy;
    AccountState state;
    bool may_user;   // the one whose password it is
    bool may_asker;  // who is logged in

    bool operator==(const Account&) const = default;
};

Login::Account Login::account(const Reading& reading, const std::string& name) {
    const DistinguishedName changed = parsed(name);
    const Identity who = identity(reading);
    if (user_key_ != changed.key()) require_unrestricted(reading, who);
    std::optional<EntryData> entry = reading.find(changed);
    if (!entry) raise_code(result_code::no_such_object, {}, reading.nearest_above(changed));
    const auto rules = directory_->access_rules(reading);
    const auto may = [&](const Identity& identity) {
        return rules->allow(identity, Right::write, changed, user_password);
    };
    Account account{changed,
                    std::string(stored_password(*entry)),
                    directory_->password_rules(reading, *entry),
                    AccountState::from(*entry),
                    false,
                    may(who)};
    account.may_user = may(Identity::of(changed, *std::move(entry)));
    return account;
}

void Login::set_password(const std::string& name, const Secret& password,
                         const std::optional<Secret>& former) {
    const std::string hash = hashed_password(password);
    for (int attempt = 0; attempt < most_attempts; ++attempt) {
        const Account account = this->account(directory_->read(), name);
        const bool is_user = user_key_ == account.name.key();
        const bool is_proven = former && is_hash_of(account.hash, *former);
        const Moment now = directory_->now();
        const auto refusal = [&](ChangedBy by) -> ChangeRefusal {
            const bool may = by == ChangedBy::user ? account.may_user : account.may_asker;
            if (!may) return {result_code::insufficient_access};
            if (!account.policy) return {};
            // Whoever works as the user has proven it with the login.
            const auto proof =
                is_proven || is_user ? FormerPassword::right : FormerPassword::not_told;
            return refusal_of_change(*account.policy, account.state,
                                     {by, proof, password, account.hash}, now);
        };
        ChangedBy by = is_user || is_proven ? ChangedBy::user : ChangedBy::other;
        ChangeRefusal refused = refusal(by);
        // What users may not do themselves somebody else may.
        if (refused.code == result_code::insufficient_access && is_proven && !is_user) {
            by = ChangedBy::other;
            refused = refusal(by);
        }
        if (refused.code != result_code::success) raise_code(refused.code, refused.message);

        std::vector<Replacement> changes{{user_password, {hash}}};
        if (account.policy)
            std::ranges::move(
                changes_with_password(*account.policy, account.state, by, account.hash, now),
                std::back_inserter(changes));
        std::optional<HashChange> own;
        if (by == ChangedBy::user)
            own.emplace(directory_->credentials(), account.name.key(), account.hash, hash);
        if (!write_password(name, account, changes)) continue;
        if (own) own->done(password);
        return;
    }
    raise_code(result_code::busy, "The password is being changed by others.");
}

// False where the password, what the policy remembers or the rights to change it are others by now.
bool Login::write_password(const std::string& name, const Account& account,
                           const std::vector<Replacement>& changes) {
    Writing writing = directory_->write();
    if (!(this->account(writing, name) == account)) return false;
    std::optional<EntryData> entry = writing.find(account.name);
    carry_out(changes, *entry);
    stamp_changed(*entry, user_, directory_->now());
    writing.replace(*entry);
    writing.commit();
    return true;
}

}  // namespace orvo::directory::embedded
