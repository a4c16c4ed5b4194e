#include "host/web/pages/page_cache.h"

#include <gtest/gtest.h>

#include "tests/host/web/test_site.h"

namespace orvo::web {
namespace {

class PageCacheTest : public testing::Test {
protected:
    void later(const std::string& path) {
        const auto file = site_.root / std::filesystem::path(path).relative_path();
        std::filesystem::last_write_time(
            file, std::filesystem::last_write_time(file) + std::chrono::seconds(++seconds_));
    }
    std::string run() {
        const auto page = site_.request({.target = "/a.asp"});
        run_page(page, site_.pages);
        return page->answer.body;
    }

    TestSite site_;
    int seconds_ = 0;
};

TEST_F(PageCacheTest, APageThatChangesIsCompiledAgain) {
    site_.write("/a.asp", "one");
    EXPECT_EQ(run(), "one");
    site_.write("/a.asp", "two");
    later("/a.asp");
    EXPECT_EQ(run(), "two");
}

TEST_F(PageCacheTest, APageWhoseIncludeChangesIsCompiledAgain) {
    site_.write("/a.asp", "<!-- #include file=\"b.inc\" -->");
    site_.write("/b.inc", "one");
    EXPECT_EQ(run(), "one");
    site_.write("/b.inc", "two");
    later("/b.inc");
    EXPECT_EQ(run(), "two");
    std::filesystem::remove(site_.root / "b.inc");
    EXPECT_THROW(run(), PageError);
    site_.write("/b.inc", "three");
    EXPECT_EQ(run(), "three");
}

TEST_F(PageCacheTest, APageThatDidNotChangeIsTakenAsItWas) {
    site_.write("/a.asp", "one");
    EXPECT_EQ(run(), "one");
    const auto file = site_.root / "a.asp";
    const auto time = std::filesystem::last_write_time(file);
    site_.write("/a.asp", "TWO");
    std::filesystem::last_write_time(file, time);
    EXPECT_EQ(run(), "one") << "the same size and time";
}

TEST_F(PageCacheTest, APageThatWasMendedIsRun) {
    site_.write("/a.asp", "<% if %>");
    EXPECT_THROW(run(), script::ScriptError);
    site_.write("/a.asp", "mended");
    EXPECT_EQ(run(), "mended");
}

}  // namespace
}  // namespace orvo::web
