#include "component/common/OrvoMemErrors.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace orvo {
namespace {

TEST(OrvoMemErrors, NamesAndNumbersArePublishedAsTheyAlwaysWere) {
    using Row = std::pair<std::string, std::uint32_t>;
    std::vector<Row> rows;
    for (const MemError& error : mem_errors)
        rows.emplace_back(error.name, static_cast<std::uint32_t>(error.value));
    EXPECT_THAT(
        rows,
        testing::ElementsAre(
            Row{"emErrNotBoundToUser", 0x80040320}, Row{"emErrServerInfoNotCreated", 0x80040321},
            Row{"emErrUserAlreadyExists", 0x80040322}, Row{"emErrNotBoundToMembers", 0x80040323},
            Row{"emErrUserDoesNotExist", 0x80040324}, Row{"emErrPwdNotCorrect", 0x80040325},
            Row{"emErrNotBoundToProfile", 0x80040326}, Row{"emErrNotBoundToProfiles", 0x80040327},
            Row{"emErrProfileNotSet", 0x80040328}, Row{"emErrAppNoAccess", 0x8004032B}));
}

}  // namespace
}  // namespace orvo
