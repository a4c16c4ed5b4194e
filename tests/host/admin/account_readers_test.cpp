// What servers of other makes say of an account.

#include <gtest/gtest.h>

#include "host/admin/diagnosis/account.h"

namespace orvo::admin {
namespace {

using directory::Attribute;
using directory::Moment;

const Moment now = *directory::try_seconds("20261122120000Z");

Account account(std::vector<Attribute> attributes, const Policy& policy = {}) {
    return {"ada", {"cn=ada,ou=Users,o=Shop", std::move(attributes)}, policy, now};
}

struct Row {
    std::vector<Attribute> attributes;
    Finding (*AccountReader::*part)(const Account&);
    Outcome outcome;
    std::string text;
};

void expect_rows(const AccountReader& reader, const std::vector<Row>& rows,
                 const Policy& policy = {}) {
    for (const Row& row : rows) {
        const Finding finding = (reader.*row.part)(account(row.attributes, policy));
        EXPECT_EQ(finding.text, row.text);
        EXPECT_EQ(finding.outcome, row.outcome) << row.text;
        EXPECT_EQ(finding.advice.empty(), finding.outcome == Outcome::ok) << row.text;
    }
}

TEST(AccountReaders, ReadA389DirectoryServersAccounts) {
    expect_rows(directory_389_reader,
                {{{}, &AccountReader::enabled, Outcome::ok, "yes"},
                 {{{"nsAccountLock", {"TRUE"}}},
                  &AccountReader::enabled,
                  Outcome::failed,
                  "It has been disabled (nsAccountLock)."},
                 {{}, &AccountReader::locked, Outcome::ok, "no"},
                 {{{"passwordRetryCount", {"1"}}},
                  &AccountReader::locked,
                  Outcome::ok,
                  "no, after 1 wrong password"},
                 {{{"passwordRetryCount", {"3"}}, {"accountUnlockTime", {"20261122123000Z"}}},
                  &AccountReader::locked,
                  Outcome::failed,
                  "Until 2026-11-22 12:30:00 UTC."},
                 {{{"passwordRetryCount", {"3"}}, {"accountUnlockTime", {"20261122113000Z"}}},
                  &AccountReader::locked,
                  Outcome::ok,
                  "no, after 3 wrong passwords"},
                 {{{"accountUnlockTime", {"19700101000000Z"}}},
                  &AccountReader::locked,
                  Outcome::failed,
                  "Until somebody unlocks it."},
                 {{}, &AccountReader::age, Outcome::ok, "does not expire"},
                 {{{"passwordExpirationTime", {"19700101000000Z"}}},
                  &AccountReader::age,
                  Outcome::failed,
                  "It has to be changed at the next login."},
                 // So a password stands that its user has used or set since.
                 {{{"passwordExpirationTime", {"19700101000001Z"}}},
                  &AccountReader::age,
                  Outcome::ok,
                  "does not expire"},
                 {{{"passwordExpirationTime", {"20261123130000Z"}}},
                  &AccountReader::age,
                  Outcome::ok,
                  "expires in 1 day, on 2026-11-23 13:00:00 UTC"},
                 {{{"passwordExpirationTime", {"20261121130000Z"}}},
                  &AccountReader::age,
                  Outcome::failed,
                  "It expired on 2026-11-21 13:00:00 UTC."}});
}

TEST(AccountReaders, GoByA389DirectoryServersPolicy) {
    const Attribute lock{"accountUnlockTime", {"19700101000000Z"}},
        reset{"passwordExpirationTime", {"19700101000000Z"}},
        over{"passwordExpirationTime", {"20261121130000Z"}};
    const auto with = [](std::vector<Attribute> rules) {
        return Policy{Policy::Kind::known, rules_of_389({"cn=config", std::move(rules)})};
    };
    expect_rows(directory_389_reader,
                {{{lock, {"passwordRetryCount", {"2"}}},
                  &AccountReader::locked,
                  Outcome::ok,
                  "no, after 2 wrong passwords"},
                 {{reset},
                  &AccountReader::age,
                  Outcome::ok,
                  "need not be changed: the password policy has no passwordMustChange"},
                 {{over},
                  &AccountReader::age,
                  Outcome::ok,
                  "does not expire: the password policy has no passwordExp"}},
                with({{"passwordLockout", {"off"}},
                      {"passwordMustChange", {"off"}},
                      {"passwordExp", {"off"}},
                      {"passwordMaxAge", {"8640000"}}}));
    expect_rows(
        directory_389_reader,
        {{{{"passwordRetryCount", {"2"}}},
          &AccountReader::locked,
          Outcome::ok,
          "no, after 2 wrong passwords; 3 lock it"},
         {{lock}, &AccountReader::locked, Outcome::failed, "Until somebody unlocks it."},
         {{reset}, &AccountReader::age, Outcome::failed, "It has to be changed at the next login."},
         {{over},
          &AccountReader::age,
          Outcome::failed,
          "It expired on 2026-11-21 13:00:00 UTC; 2 grace logins are left."},
         {{over, {"passwordGraceUserTime", {"2"}}},
          &AccountReader::age,
          Outcome::failed,
          "It expired on 2026-11-21 13:00:00 UTC; no grace login is left."}},
        with({{"passwordLockout", {"on"}},
              {"passwordMaxFailure", {"3"}},
              {"passwordMustChange", {"on"}},
              {"passwordExp", {"on"}},
              {"passwordMaxAge", {"8640000"}},
              {"passwordGraceLimit", {"2"}}}));
}

// What a command says is to be typed into a shell.
TEST(AccountReaders, QuoteNamesThatAShellWouldReadOtherwise) {
    Account disabled = account({{"nsAccountLock", {"true"}}});
    for (const auto& [name, word] : {std::pair{"ada@shop.example", "ada@shop.example"},
                                     {"Zoë", "Zoë"},
                                     {"Doe, John", "'Doe, John'"},
                                     {"O'Brien", R"('O'\''Brien')"},
                                     {"$(id)", "'$(id)'"},
                                     {"", "''"}}) {
        disabled.user = name;
        EXPECT_EQ(directory_389_reader.enabled(disabled).advice,
                  std::string("orvo users enable ") + word);
    }
}

// 2026-11-22 12:00:00 UTC is 134398224000000000 steps of 100 ns after 1601.
TEST(AccountReaders, ReadAnActiveDirectorysAccounts) {
    expect_rows(
        active_directory_reader,
        {{{{"userAccountControl", {"512"}}, {"accountExpires", {"9223372036854775807"}}},
          &AccountReader::enabled,
          Outcome::ok,
          "yes"},
         {{{"userAccountControl", {"514"}}},
          &AccountReader::enabled,
          Outcome::failed,
          "It has been disabled (userAccountControl)."},
         {{{"badPwdCount", {"2"}}, {"msDS-User-Account-Control-Computed", {"0"}}},
          &AccountReader::locked,
          Outcome::ok,
          "no, after 2 wrong passwords"},
         {{{"lockoutTime", {"134398218000000000"}}, {"msDS-User-Account-Control-Computed", {"16"}}},
          &AccountReader::locked,
          Outcome::failed,
          "Since 2026-11-22 11:50:00 UTC; until when, the domain's policy says."},
         {{{"pwdLastSet", {"0"}}},
          &AccountReader::age,
          Outcome::failed,
          "It has to be changed at the next login."},
         {{{"userAccountControl", {"66048"}}, {"pwdLastSet", {"0"}}},
          &AccountReader::age,
          Outcome::ok,
          "does not expire"},
         {{{"pwdLastSet", {"134000000000000000"}},
           {"msDS-UserPasswordExpiryTimeComputed", {"134398224000000001"}}},
          &AccountReader::age,
          Outcome::ok,
          "expires in 0 days, on 2026-11-22 12:00:00 UTC"},
         {{{"pwdLastSet", {"134000000000000000"}},
           {"msDS-UserPasswordExpiryTimeComputed", {"134398218000000000"}}},
          &AccountReader::age,
          Outcome::failed,
          "It expired on 2026-11-22 11:50:00 UTC."},
         {{{"pwdLastSet", {"134000000000000000"}},
           {"msDS-UserPasswordExpiryTimeComputed", {"9223372036854775807"}}},
          &AccountReader::age,
          Outcome::ok,
          "does not expire"}});
    const Attribute since{"lockoutTime", {"134398218000000000"}},
        locked{"msDS-User-Account-Control-Computed", {"16"}};
    const auto locked_for = [&](const Attribute& duration) {
        return active_directory_reader
            .locked(account({since, locked}, {Policy::Kind::known,
                                              rules_of_active_directory({"DC=shop", {duration}})}))
            .text;
    };
    for (const char* attribute : {"lockoutDuration", "msDS-LockoutDuration"}) {
        EXPECT_EQ(locked_for({attribute, {"-18000000000"}}),
                  "Since 2026-11-22 11:50:00 UTC, until 2026-11-22 12:20:00 UTC by the domain's "
                  "policy.");
        for (const char* for_good : {"0", "-9223372036854775808"})
            EXPECT_EQ(locked_for({attribute, {for_good}}),
                      "Since 2026-11-22 11:50:00 UTC, until somebody unlocks it.");
    }
    expect_rows(active_directory_reader,
                {{{{"badPwdCount", {"2"}}},
                  &AccountReader::locked,
                  Outcome::ok,
                  "no, after 2 wrong passwords; 3 lock it"}},
                {Policy::Kind::known,
                 rules_of_active_directory({"DC=shop", {{"lockoutThreshold", {"3"}}}})});
    const Finding over = active_directory_reader.enabled(
        account({{"userAccountControl", {"512"}}, {"accountExpires", {"134398218000000000"}}}));
    EXPECT_EQ(over.text, "It has not been valid since 2026-11-22 11:50:00 UTC (accountExpires).");
    const Finding hidden = active_directory_reader.age(account({}));
    EXPECT_EQ(hidden.text, "The service account may not read pwdLastSet.");
    EXPECT_EQ(hidden.outcome, Outcome::not_known);
}

}  // namespace
}  // namespace orvo::admin
