#include "host/web/files/site_files.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

class SiteFilesTest : public testing::Test {
protected:
    SiteFilesTest() {
        folder_.write("open/a.html", "a");
        folder_.write("admin/default.asp", "admin");
        folder_.write("admin/sub/b.html", "b");
    }
    SitePath find(const std::string& path) {
        return find_in_site(root_, path, {"default.asp", "index.html"});
    }

    TempFolder folder_;
    const fs::path root_ = fs::canonical(folder_.path());
};

TEST_F(SiteFilesTest, NothingOutsideTheSiteIsAFileOfIt) {
    TempFolder outside;
    outside.write("secret.inc", "secret");
    fs::create_symlink(outside.path() / "secret.inc", root_ / "link.inc");
    fs::create_directory_symlink(outside.path(), root_ / "folder");
    folder_.write(".git/config", "hidden");
    fs::create_symlink(root_ / ".git/config", root_ / "shown.inc");
    folder_.write("real.inc", "real");
    fs::create_symlink(root_ / "real.inc", root_ / "alias.inc");
    for (const std::string path :
         {"/link.inc", "/folder/secret.inc", "/.git/config", "/shown.inc", "/../real.inc",
          "real.inc", "/none", "/", "/.", "/real.inc/..", "/real.inc\\x"})
        EXPECT_FALSE(try_site_file(root_, path)) << path;
    EXPECT_FALSE(try_site_file(root_, std::string("/real.inc\0", 10)));
    EXPECT_EQ(try_site_file(root_, "/real.inc"), root_ / "real.inc");
    EXPECT_EQ(try_site_file(root_, "/alias.inc"), root_ / "real.inc");
}

TEST_F(SiteFilesTest, AFolderStandsForItsDefaultPage) {
    EXPECT_EQ(find("/admin/").path, "/admin/default.asp");
    EXPECT_EQ(find("/admin/").file, root_ / "admin/default.asp");
    EXPECT_EQ(find("/open/").path, "/open/");
    EXPECT_FALSE(find("/open/").file);
    EXPECT_TRUE(find("/open").lacks_slash);
    EXPECT_FALSE(find("/none").lacks_slash);
}

TEST_F(SiteFilesTest, APathIsToldWhereItsLinksLead) {
    fs::create_symlink("../admin/sub/b.html", root_ / "open/link.html");
    fs::create_directory_symlink("../admin", root_ / "open/adm");
    TempFolder outside;
    fs::create_directory_symlink(outside.path(), root_ / "out");
    const std::pair<std::string, std::string> rows[] = {
        {"/open/a.html", "/open/a.html"},
        {"/open/link.html", "/admin/sub/b.html"},
        {"/open/adm/", "/admin/default.asp"},
        {"/open/adm", "/admin"},
        {"/open/adm/none.html", "/admin/none.html"},
        {"/open/adm/sub/none/x", "/admin/sub/none/x"},
        {"/none/x", "/none/x"},
        {"/out/x", "/out/x"},
    };
    for (const auto& [path, real] : rows) EXPECT_EQ(find(path).real_path, real) << path;
}

TEST_F(SiteFilesTest, ALinkThatLeadsNowhereIsFound) {
    EXPECT_FALSE(try_dangling_link(root_));
    fs::create_symlink("a.html", root_ / "open/good.html");
    fs::create_symlink("locked-by-somebody", root_ / "open/.#a.html");
    EXPECT_FALSE(try_dangling_link(root_)) << "an editor's own business";
    fs::create_symlink("gone.html", root_ / "admin/sub/link.html");
    EXPECT_EQ(try_dangling_link(root_), root_ / "admin/sub/link.html");
}

}  // namespace
}  // namespace orvo::web
