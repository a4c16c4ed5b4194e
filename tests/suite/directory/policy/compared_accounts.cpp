#include "tests/suite/directory/policy/compared_accounts.h"

#include <algorithm>
#include <iterator>

#include "suite/directory/ldap/wire/password_policy.h"
#include "suite/directory/ldap/wire/server_address.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/password_hash.h"
#include "suite/directory/policy/stored_password.h"

namespace orvo::directory {
namespace {

using std::chrono::floor;
using std::chrono::microseconds;
using std::chrono::seconds;
using Values = std::vector<std::string>;

constexpr const char* times[] = {account::changed_time,  account::locked_time,
                                 account::failure_times, account::grace_times,
                                 account::start_time,    account::end_time};

Moment now() { return floor<microseconds>(std::chrono::system_clock::now()); }

Values values_of(const EntryData& entry, std::string_view name) {
    for (const Attribute& attribute : entry.attributes)
        if (ascii::equal_ignoring_case(attribute.name, name)) return attribute.values;
    return {};
}

bool is_locking(const BindOutcome& outcome) {
    return std::ranges::any_of(outcome.changes, [](const Replacement& change) {
        return change.attribute == account::locked_time && !change.values.empty();
    });
}

}  // namespace

void ComparedAccounts::begin(const std::string& name,
                             const std::map<std::string, std::string>& rules,
                             const std::map<std::string, Values>& state) {
    name_ = name;
    entry_ = {"cn=" + name + ",ou=Users,o=Shop", {}};
    ahead_ = seconds(0);
    password_ = u"first password";
    const std::string policy = "cn=" + name + ",ou=Policies,o=Shop";
    EntryData policy_entry{policy,
                           {{"objectClass", {"organizationalRole", "pwdPolicy"}},
                            {"cn", {name}},
                            {"pwdAttribute", {"userPassword"}}}};
    for (const auto& [attribute, value] : rules)
        policy_entry.attributes.push_back({attribute, {value}});
    manager_.add(policy, policy_entry.attributes);
    rules_ = PasswordRules::from(policy_entry);

    const std::string hash = hashed_password(Secret(password_), HashCost::lowest);
    std::vector<Attribute> attributes = {{"objectClass", {"orvoPerson"}},
                                         {"cn", {name}},
                                         {"userPassword", {hash}},
                                         {"pwdPolicySubentry", {policy}}};
    manager_.add(entry_.name, attributes);
    entry_.attributes.push_back({"userPassword", {hash}});
    // The server has set times of its own.
    for (const char* attribute : {account::changed_time, account::reset})
        manager_.replace(entry_.name, {attribute, {}});
    for (const auto& [attribute, values] : state) {
        Values written;
        for (const std::string& value : values)
            written.push_back(
                value.ends_with("s") ? time_in_seconds(now() + seconds(std::stoi(value))) : value);
        manager_.replace(entry_.name, {attribute, written});
        apply({{attribute, written}});
    }
    compare("at the beginning");
}

void ComparedAccounts::bind(const Text& password) {
    const Moment before = now() + ahead_;
    const ldap::BindResult theirs =
        connect().bind(entry_.name, Secret(password), ldap::Policy::asked);
    const PasswordPolicy their_policy = ldap::policy_in(theirs.controls);
    const Moment after = now() + ahead_;
    const bool is_right = is_hash_of(stored(), Secret(password));
    // A count of seconds may be that of either end.
    BindOutcome ours = outcome_of_bind(rules_, state(), is_right, before);
    if (ours.policy != their_policy) ours = outcome_of_bind(rules_, state(), is_right, after);
    EXPECT_EQ(ours.code, theirs.code) << where();
    EXPECT_EQ(ours.policy.error, their_policy.error) << where();
    EXPECT_EQ(ours.policy.logins_left, their_policy.logins_left) << where();
    EXPECT_EQ(ours.policy.seconds_before_expiry, their_policy.seconds_before_expiry) << where();
    apply(ours.changes);
    compare("after a bind");
    // In the second in which it locks an account the server may take the lock for one to come.
    if (is_locking(ours)) pass(seconds(1));
}

void ComparedAccounts::change(ChangedBy by, const Text& password, FormerPassword former) {
    ldap::Session session = connect();
    if (by == ChangedBy::user) {
        session.bind(entry_.name, Secret(password_), ldap::Policy::asked);
        apply(outcome_of_bind(rules_, state(), true, now() + ahead_).changes);
    } else if (by == ChangedBy::other) {
        session.bind(slapd_.service_dn(), Secret(from_utf8(slapd_.service_password())));
    } else {
        session.bind(slapd_.root_dn(), Secret(from_utf8(slapd_.root_password())));
    }
    Secret told;
    if (former == FormerPassword::right) told = Secret(password_);
    if (former == FormerPassword::wrong) told = Secret(u"wrong password");
    const ldap::Result theirs = session.change_password(entry_.name, Secret(password), told);
    const Secret secret(password);
    const ChangeRefusal ours = refusal_of_change(
        rules_, state(), PasswordChange{by, former, secret, stored()}, now() + ahead_);
    EXPECT_EQ(ours.code, theirs.code) << where();
    EXPECT_EQ(ours.message, theirs.message) << where();
    if (ours.code == 0) {
        apply(changes_with_password(rules_, state(), by, stored(), now() + ahead_));
        apply({{"userPassword", {hashed_password(secret, HashCost::lowest)}}});
        password_ = password;
    }
    compare("after a change of the password");
}

void ComparedAccounts::unlock() {
    manager_.remove(entry_.name, account::locked_time);
    apply(changes_with_unlocking(state()));
    apply({{account::locked_time, {}}});
    compare("after unlocking");
}

void ComparedAccounts::pass(seconds time) {
    ahead_ += time;
    const EntryData theirs = manager_.read(entry_.name);
    for (const Attribute& attribute : theirs.attributes) {
        if (std::ranges::find(times, attribute.name) == std::end(times)) continue;
        Values older;
        for (const std::string& value : attribute.values) {
            const auto moment = try_seconds(value);
            older.push_back(moment ? time_in_seconds(*moment - time) : value);
            if (const std::size_t dot = value.find('.'); moment && dot != std::string::npos)
                older.back().replace(older.back().size() - 1, 1, value.substr(dot));
        }
        manager_.replace(entry_.name, {attribute.name, older});
    }
}

ldap::Session ComparedAccounts::connect() {
    return ldap::Session::connect(
        ldap::ServerAddress::parse(from_utf8(slapd_.server())).hosts().front());
}

std::string ComparedAccounts::stored() const { return values_of(entry_, "userPassword").front(); }

void ComparedAccounts::apply(const std::vector<Replacement>& changes) {
    for (const Replacement& change : changes) {
        ASSERT_EQ(change.kind, Change::replace);
        std::erase_if(entry_.attributes, [&](const Attribute& attribute) {
            return attribute.name == change.attribute;
        });
        if (!change.values.empty()) entry_.attributes.push_back({change.attribute, change.values});
    }
}

void ComparedAccounts::compare(const char* when) {
    const EntryData theirs = manager_.read(entry_.name);
    for (const char* attribute : times)
        EXPECT_EQ(values_of(entry_, attribute).size(), values_of(theirs, attribute).size())
            << attribute << " " << when << ", " << where();
    EXPECT_EQ(values_of(entry_, account::history).size(),
              values_of(theirs, account::history).size())
        << when << ", " << where();
    EXPECT_EQ(values_of(entry_, account::reset), values_of(theirs, account::reset))
        << when << ", " << where();
}

std::string ComparedAccounts::where() const {
    return name_ + ", " + std::to_string(ahead_.count()) + " s later";
}

}  // namespace orvo::directory
