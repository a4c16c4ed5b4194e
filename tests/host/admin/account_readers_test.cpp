// What servers of other makes say of an account.

#include <gtest/gtest.h>

#include "host/admin/diagnosis/account.h"

namespace orvo::admin {
namespace {

using directory::Attribute;
using directory::Moment;

const Moment now = *directory::try_seconds("20261122120000Z");

Account account(std::vector<Attribute> attributes) {
    return {"ada", {"cn=ada,ou=Users,o=Shop", std::move(attributes)}, {}, now};
}

struct Row {
    std::vector<Attribute> attributes;
    Finding (*AccountReader::*part)(const Account&);
    Outcome outcome;
    std::string text;
};

void expect_rows(const AccountReader& reader, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const Finding finding = (reader.*row.part)(account(row.attributes));
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
                 {{{"passwordExpirationTime", {"19700101000001Z"}}},
                  &AccountReader::age,
                  Outcome::failed,
                  "It has to be changed at the next login."},
                 {{{"passwordExpirationTime", {"20261123130000Z"}}},
                  &AccountReader::age,
                  Outcome::ok,
                  "expires in 1 day, on 2026-11-23 13:00:00 UTC"},
                 {{{"passwordExpirationTime", {"20261121130000Z"}}},
                  &AccountReader::age,
                  Outcome::failed,
                  "It expired on 2026-11-21 13:00:00 UTC."}});
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
    const Finding over = active_directory_reader.enabled(
        account({{"userAccountControl", {"512"}}, {"accountExpires", {"134398218000000000"}}}));
    EXPECT_EQ(over.text, "It has not been valid since 2026-11-22 11:50:00 UTC (accountExpires).");
    const Finding hidden = active_directory_reader.age(account({}));
    EXPECT_EQ(hidden.text, "The service account may not read pwdLastSet.");
    EXPECT_EQ(hidden.outcome, Outcome::not_known);
}

}  // namespace
}  // namespace orvo::admin
