#pragma once

// What a directory says of an account: whether it lets a right password in.

#include <chrono>
#include <optional>
#include <string>

#include "host/admin/diagnosis/directory_view.h"
#include "host/admin/diagnosis/step.h"
#include "suite/directory/policy/account_times.h"
#include "suite/directory/policy/password_rules.h"

namespace orvo::admin {

// The password policy that a user is under.
struct Policy {
    enum class Kind {
        none,    // no policy is in force
        known,   // `rules` are it
        hidden,  // there may be one, but who asks cannot see which
    };
    Kind kind = Kind::hidden;
    directory::PasswordRules rules = {};
};

// The rules of other makes' policies, as far as the readers below go by them.
directory::PasswordRules rules_of_389(const directory::EntryData& policy);
// `policy`: of the domain, or of its own for some users.
directory::PasswordRules rules_of_active_directory(const directory::EntryData& policy);

struct Account {
    std::string user;  // as the commands for users take it
    directory::EntryData entry;
    Policy policy;
    directory::Moment now;
};

// Which attributes say it.
struct AccountReader {
    Finding (*enabled)(const Account& account);
    Finding (*locked)(const Account& account);
    // The password's age: whether it has expired or is to be changed, and until when it is good.
    Finding (*age)(const Account& account);
};
extern const AccountReader policy_reader;            // OpenLDAP, the embedded directory
extern const AccountReader directory_389_reader;     // 389 directory server
extern const AccountReader active_directory_reader;  // Active Directory, Samba
extern const AccountReader unknown_reader;           // says that it does not know

// "2026-11-22 12:30:00 UTC"
std::string readable(std::chrono::sys_seconds time);
// "in 12 days, on 2026-12-04 12:30:00 UTC"
std::string readable_from(std::chrono::sys_seconds now, std::chrono::sys_seconds time);

// "3 wrong passwords"
std::string wrong_passwords(std::size_t count);

// Whether the user's policy asks for it; one that is hidden may.
bool is_in_force(const Account& account, bool directory::PasswordRules::*rule);
// Of an account that is not locked, with these wrong passwords: how many lock it.
Finding not_locked(const Account& account, std::size_t failures);
// Of a password that is good for so many logins more.
Finding expired(const Account& account, std::chrono::sys_seconds expiry, int logins_left);

}  // namespace orvo::admin
