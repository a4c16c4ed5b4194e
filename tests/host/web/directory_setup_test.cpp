#include "host/web/site/directory_setup.h"

#include <gmock/gmock.h>

#include "tests/support/temp_folder.h"

namespace orvo::web {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class OpenPassword : public testing::Test {
protected:
    std::string warning(const std::string& code, std::filesystem::perms mode) {
        const auto file = folder_.write("site.ini", "[MEMBERSHIP]\nMemScriptCode=" + code + "\n");
        std::filesystem::permissions(file, mode);
        return warning_of_open_password(file);
    }

    static constexpr auto own =
        std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
    static constexpr auto open = own | std::filesystem::perms::others_read;
    TempFolder folder_;
};

TEST_F(OpenPassword, IsToldByFileAndNeverShown) {
    const std::string text = warning("s3cret", open);
    EXPECT_THAT(text, StartsWith("everybody on this machine may read " +
                                 (folder_.path() / "site.ini").string()));
    EXPECT_THAT(text, Not(HasSubstr("s3cret")));
}

TEST_F(OpenPassword, IsNoneInAClosedFileOrElsewhere) {
    EXPECT_EQ(warning("s3cret", own), "");
    EXPECT_EQ(warning("@file:service.code", open), "");
    EXPECT_EQ(warning("", open), "");
    EXPECT_EQ(warning_of_open_password(folder_.path() / "missing.ini"), "");
    folder_.write("site.ini", "no settings");
    EXPECT_EQ(warning_of_open_password(folder_.path() / "site.ini"), "");
}

}  // namespace
}  // namespace orvo::web
