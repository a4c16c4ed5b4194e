#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "suite/directory/ldap/wire/session.h"
#include "suite/directory/policy/password_change.h"
#include "tests/suite/directory/policy/directory_manager.h"
#include "tests/support/slapd.h"

namespace orvo::directory {

// A user under a policy of the user's own, on a server and as the functions under test have it.
// Whatever is done is done to both; a failure of the test is reported where the answers or what is
// remembered of the account differ.
class ComparedAccounts : public testing::Test {
protected:
    // A new user. `rules`: attributes of the policy. `state`: operational attributes of the user; a
    // value with "s" at its end is a time, in seconds from now.
    void begin(const std::string& name, const std::map<std::string, std::string>& rules,
               const std::map<std::string, std::vector<std::string>>& state = {});

    void bind(const Text& password);
    void bind_right() { bind(password_); }
    void bind_wrong() { bind(u"wrong password"); }

    // A user binds for it; the service account is the other.
    void change(ChangedBy by, const Text& password,
                FormerPassword former = FormerPassword::not_told);
    void unlock();

    // Time passes here, while on the server what has been is made that much older.
    void pass(std::chrono::seconds time);

private:
    ldap::Session connect();
    AccountState state() const { return AccountState::from(entry_); }
    std::string stored() const;
    void apply(const std::vector<Replacement>& changes);
    void compare(const char* when);
    std::string where() const;

    PrivateSlapd slapd_{{.password_policy = true}};
    DirectoryManager manager_{slapd_};
    std::string name_;
    EntryData entry_;
    PasswordRules rules_;
    std::chrono::seconds ahead_{};
    Text password_;
};

}  // namespace orvo::directory
