#include "suite/directory/embedded/directory/directory.h"

#include <algorithm>
#include <filesystem>
#include <utility>
#include <vector>

#include "suite/directory/embedded/directory/entry_changes.h"
#include "suite/directory/entries/failure_note.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/crypt_hash.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_hash.h"
#include "suite/directory/policy/stored_password.h"

namespace orvo::directory::embedded {
namespace {

constexpr int most_attempts = 3;
constexpr const char* user_password = "userPassword";
constexpr const char* policy_entry = "pwdPolicySubentry";

// What a right password's hash is replaced by; empty where it stays, also that of a password which
// is too long for another one.
std::string renewed_hash(std::string_view hash, const Secret& password) {
    if (!should_be_renewed(hash, HashCost::usual) || password.reveal().size() > longest_hashed)
        return {};
    return hashed_password(password);
}

}  // namespace

const Attribute* find_attribute(const EntryData& entry, std::string_view name) {
    for (const Attribute& attribute : entry.attributes)
        if (ascii::equal_ignoring_case(attribute.name, name)) return &attribute;
    return nullptr;
}

std::string_view stored_password(const EntryData& entry) {
    const Attribute* held = find_attribute(entry, user_password);
    return held && !held->values.empty() ? std::string_view(held->values.front()) : "";
}

Moment time_of_day() {
    return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
}

Directory::Directory(std::shared_ptr<Store> store, WallClock clock)
    : store_(std::move(store)), key_(store_->path().string()), clock_(std::move(clock)) {}

// A process works with one site, or with a few.
std::shared_ptr<Directory> Directory::of(TextView server) {
    constexpr std::size_t most_kept = 8;
    static std::mutex mutex;
    static std::vector<std::shared_ptr<Directory>> kept;  // the one used last in front
    if (server.empty())
        raise_code(result_code::parameter_error, "The server setting names no directory's file.");
    const std::shared_ptr<Store> store = Store::open(std::filesystem::path(to_utf8(server)));
    const std::lock_guard lock(mutex);
    auto found = std::ranges::find(kept, store, [](const auto& known) { return known->store_; });
    if (found == kept.end()) found = kept.insert(found, std::make_shared<Directory>(store));
    std::rotate(kept.begin(), found, found + 1);
    if (kept.size() > most_kept) kept.pop_back();
    return kept.front();
}

SharedSettings& Directory::settings() {
    static SharedSettings settings;
    return settings;
}

std::shared_ptr<const AccessRules> Directory::access_rules(const Reading& reading) {
    std::string text = reading.setting("access");
    const std::lock_guard lock(mutex_);
    if (!rules_ || rules_text_ != text) {
        rules_ = std::make_shared<const AccessRules>(AccessRules::parse(text, store_->schema()));
        rules_text_ = std::move(text);
    }
    return rules_;
}

std::optional<PasswordRules> Directory::password_rules(const Reading& reading,
                                                       const EntryData& user) const {
    const Attribute* own = find_attribute(user, policy_entry);
    const std::string name =
        own && !own->values.empty() ? own->values.front() : reading.setting("policy");
    if (name.empty()) return std::nullopt;
    const auto parsed = DistinguishedName::try_parse(from_utf8(name));
    const std::optional<EntryData> entry = parsed ? reading.find(*parsed) : std::nullopt;
    if (!entry) return std::nullopt;
    return PasswordRules::from(*entry);
}

// Who offers a password, as one reading has shown it.
struct Directory::Account {
    DistinguishedName name;
    EntryData entry;
    std::string hash;
    std::optional<PasswordRules> policy;
};

std::optional<Directory::Account> Directory::account(const std::string& name) {
    const auto parsed = DistinguishedName::try_parse(from_utf8(name));
    if (!parsed) return std::nullopt;
    const Reading reading = read();
    std::optional<EntryData> entry = reading.find(*parsed);
    if (!entry) return std::nullopt;
    std::string hash(stored_password(*entry));
    const auto rules = access_rules(reading);
    if (hash.empty() ||
        !rules->allow(Identity::nobody(), Right::authenticate, *parsed, user_password))
        return std::nullopt;
    std::optional<PasswordRules> policy = password_rules(reading, *entry);
    return Account{*parsed, std::move(*entry), std::move(hash), std::move(policy)};
}

// While a hash was computed the password may have been given another one.
BindAnswer Directory::bind(const std::string& name, const Secret& password, Proof proof) {
    for (int attempt = 0; attempt < most_attempts; ++attempt)
        if (auto answer = try_bind(name, password, proof)) return *std::move(answer);
    raise_code(result_code::busy, "The password is being changed by others.");
}

std::optional<BindAnswer> Directory::try_bind(const std::string& name, const Secret& password,
                                              Proof proof) {
    const std::optional<Account> account = this->account(name);
    if (!account) {
        imitate_check(password, HashCost::usual);
        return BindAnswer{result_code::invalid_credentials};
    }
    const std::string& user = account->name.key();
    const auto state = AccountState::from(account->entry);
    bool is_right = false;
    CredentialsRef credentials;
    if (!account->policy || !state.is_locked(*account->policy, now())) {
        if (proof == Proof::known) credentials = credentials_.find(user, password, account->hash);
        is_right = credentials || is_hash_of(account->hash, password);
        // What was imported may cost next to nothing.
        if (!is_right && should_be_renewed(account->hash, HashCost::usual))
            imitate_check(password, HashCost::usual);
    } else {
        imitate_check(password, HashCost::usual);  // takes as long as for a name that is not there
    }
    BindOutcome outcome;
    if (account->policy)
        outcome = outcome_of_bind(*account->policy, state, is_right, now());
    else if (!is_right)
        outcome.code = result_code::invalid_credentials;
    std::string renewed;
    if (is_right && !credentials) renewed = renewed_hash(account->hash, password);
    const bool is_to_be_renewed = !renewed.empty();
    std::optional<HashChange> renewal;
    if (is_to_be_renewed) renewal.emplace(credentials_, user, account->hash, renewed);
    if (!outcome.changes.empty()) {
        if (!settle(write(), *account, is_right, renewed, outcome)) return std::nullopt;
    } else if (!renewed.empty() && !try_renew(*account, renewed, outcome)) {
        return std::nullopt;
    }
    BindAnswer answer{outcome.code, outcome.policy};
    if (outcome.code != result_code::success) return answer;
    if (!renewed.empty()) renewal->done(password);
    const std::string& hash = renewed.empty() ? account->hash : renewed;
    answer.credentials = credentials ? credentials : credentials_.add(user, password, hash);
    // Whoever renews the hash just now takes along those who are here, but nobody who comes later.
    if (is_to_be_renewed && renewed.empty()) {
        const std::optional<Account> now = this->account(name);
        if (!now || now->hash != account->hash) return std::nullopt;
    }
    return answer;
}

// A login waits for no writer only to have its hash renewed, nor does it fail where the file cannot
// be written: the next one tries again. The log is told.
bool Directory::try_renew(const Account& account, std::string& renewed, BindOutcome& outcome) {
    constexpr bool is_right = true;
    try {
        return settle(store_->write(Durability::full, std::chrono::milliseconds(0)), account,
                      is_right, renewed, outcome);
    } catch (Failure& failure) {
        failure.source = u"OrvoDirectory.Embedded";
        note_failure("Renewing the password's hash", account.entry.name, failure);
        renewed.clear();
        return true;
    }
}

// Others may have failed meanwhile: what is written goes by what the entry says now. False where
// the password has another hash by now.
bool Directory::settle(Writing writing, const Account& account, bool is_right, std::string& renewed,
                       BindOutcome& outcome) {
    std::optional<EntryData> entry = writing.find(account.name);
    if (!entry || stored_password(*entry) != account.hash) return false;
    if (account.policy) {
        outcome = outcome_of_bind(*account.policy, AccountState::from(*entry), is_right, now());
        carry_out(outcome.changes, *entry);
    }
    if (!renewed.empty()) {
        const Replacement hash{user_password, {renewed}};
        if (outcome.code == result_code::success)
            carry_out({&hash, 1}, *entry);
        else
            renewed.clear();
    }
    writing.replace(*entry);
    writing.commit();
    return true;
}

}  // namespace orvo::directory::embedded
