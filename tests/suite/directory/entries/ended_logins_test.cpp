#include "suite/directory/entries/ended_logins.h"

#include <gmock/gmock.h>

#include "tests/suite/directory/recorded_logins.h"
#include "tests/support/raised.h"

namespace orvo::directory {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const AuditedChange change{u"password", u"server", "cn=a,o=Shop", "cn=service,o=Shop"};
const Failure lost(85, u"Directory", u"No answer.");

class AccountChange : public testing::Test {
protected:
    // What making it raises: with these logins, and the failure of the change itself, if any.
    static Failure failure_of(EndedLogins logins, const Failure* failure) {
        return raised_by([&] {
            audited_account_change(change, [&](EndedLogins& ended) {
                ended = logins;
                if (failure) throw *failure;
            });
        });
    }

    LoginsOnRecord logins_;
    const EndedLogins two_{.accounts = {"cn=a,o=Shop", "cn=b,o=Shop"}, .may_be_done = true};
};

TEST_F(AccountChange, OfWhichNobodyKnowsWhetherItIsMadeEndsTheLogins) {
    expect_failure(failure_of(two_, &lost), 85, u"Directory", "No answer.");
    EXPECT_THAT(logins_.ended(), ElementsAre("cn=a,o=Shop", "cn=b,o=Shop"));
}

TEST_F(AccountChange, ThatIsNotMadeEndsNone) {
    EndedLogins none = two_;
    none.may_be_done = false;
    expect_failure(failure_of(none, &lost), 85, u"Directory", "No answer.");
    EXPECT_THAT(logins_.ended(), IsEmpty());
}

TEST_F(AccountChange, EndsTheOthersWhereTheLoginsOfOneAccountCannotBeEnded) {
    logins_.fail_for("cn=a,o=Shop");
    expect_failure(failure_of(two_, nullptr), 4711, u"Store",
                   "The change has been made, but the user's logins may go on: The store is away.");
    EXPECT_THAT(logins_.ended(), ElementsAre("cn=b,o=Shop"));
    expect_failure(failure_of(two_, &lost), 85, u"Directory",
                   "No answer. The user's logins may go on: The store is away.");
    EXPECT_THAT(logins_.ended(), ElementsAre("cn=b,o=Shop"));
}

}  // namespace
}  // namespace orvo::directory
