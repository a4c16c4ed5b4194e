#include "host/web/site.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/values/failure.h"
#include "tests/support/temp_folder.h"

namespace orvo::web {
namespace {

class SiteTest : public testing::Test {
protected:
    Site read(std::string_view settings) {
        std::ofstream(folder_.path() / "site.ini", std::ios::trunc) << "[SITE]\n" << settings;
        return read_site(folder_.path());
    }
    Text refusal(std::string_view settings) {
        try {
            read(settings);
            return u"nothing was refused";
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.number, error_number(0x80040201));
            return failure.description;
        }
    }

    TempFolder folder_;
};

TEST_F(SiteTest, NeedsNoSettings) {
    const Site site = read_site(folder_.path());
    EXPECT_EQ(site.root, std::filesystem::canonical(folder_.path()));
    EXPECT_EQ(site.login_page, "/login.asp");
    EXPECT_TRUE(site.guards.empty());
    EXPECT_EQ(site.session_timeout, std::chrono::minutes(20));
    EXPECT_EQ(site.page_timeout, std::chrono::seconds(30));
    EXPECT_EQ(site.largest_request, 1048576u);
}

TEST_F(SiteTest, IsSettledByItsFile) {
    const Site site = read(
        "LoginPage = /in/login.asp\nGuard = /account/ = 1, /admin/=10\nLoginCookie = ID\n"
        "SessionTimeout = 5\nSessionLifetime = 60\nPageTimeout = 3\nLargestRequest = 2048\n"
        "DirectoryPool = MaximumSize = 32, IdleLimit=60\nDirectoryCache = Entries = 9\n"
        "DefaultPages = start.asp\nContentSecurityPolicy = default-src 'self'\n");
    EXPECT_EQ(site.login_page, "/in/login.asp");
    EXPECT_EQ(site.guards, (std::vector<GuardedPath>{{"/account/", 1}, {"/admin/", 10}}));
    EXPECT_EQ(site.login_cookie, u"ID");
    EXPECT_EQ(site.session_timeout, std::chrono::minutes(5));
    EXPECT_EQ(site.session_lifetime, std::chrono::minutes(60));
    EXPECT_EQ(site.page_timeout, std::chrono::seconds(3));
    EXPECT_EQ(site.largest_request, 2048u);
    EXPECT_EQ(site.directory_pool,
              (std::vector<ProviderSetting>{{u"MaximumSize", u"32"}, {u"IdleLimit", u"60"}}));
    EXPECT_EQ(site.directory_cache, (std::vector<ProviderSetting>{{u"Entries", u"9"}}));
    EXPECT_EQ(site.default_pages, std::vector<std::string>{"start.asp"});
    EXPECT_EQ(site.content_security_policy, "default-src 'self'");
}

TEST_F(SiteTest, RefusesWhatCannotBeAndSaysWhere) {
    struct Refused {
        std::string_view settings;
        TextView reason;
    };
    for (const auto& [settings, reason] : std::initializer_list<Refused>{
             {"Guard = /account/", u"site.ini: Guard: \"/account/\" is not \"/path/ = number\""},
             {"Guard = /account = 1",
              u"site.ini: Guard: \"/account\" does not begin and end with \"/\""},
             {"Guard = account/ = 1",
              u"site.ini: Guard: \"account/\" does not begin and end with \"/\""},
             {"Guard = /a/ = one", u"site.ini: Guard: \"one\" is no number of an application"},
             {"Guard = /a/ =", u"site.ini: Guard: \"\" is no number of an application"},
             {"DirectoryPool = 5", u"site.ini: DirectoryPool: \"5\" is not \"Name = value\""},
             {"DirectoryCache = Entries = 5, = 6",
              u"site.ini: DirectoryCache: \"= 6\" is not \"Name = value\""},
             {"LoginPage = http://x/",
              u"site.ini: LoginPage: \"http://x/\" is no path of the site"},
             {"SessionTimeout = 0",
              u"site.ini: SessionTimeout: \"0\" is no number from 1 to 525600"},
             {"PageTimeout = soon", u"site.ini: PageTimeout: \"soon\" is no number from 1 to 3600"},
             {"LargestRequest = 99999999999999999999",
              u"site.ini: LargestRequest: \"99999999999999999999\" is no number from 1024 to "
              u"1073741824"},
         })
        EXPECT_EQ(to_utf8(refusal(settings)), to_utf8(reason)) << settings;
}

TEST_F(SiteTest, IsNotWhereThereIsNoFolder) {
    try {
        read_site(folder_.path() / "none");
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, 76);
    }
}

TEST_F(SiteTest, TheLongestGuardedPathCountsWhateverItsCase) {
    const Site site = read("Guard = /account/ = 1, /account/admin/ = 10\n");
    const auto application = [&](std::string_view path) {
        const GuardedPath* guard = guard_of(site, path);
        return guard ? guard->application : -1;
    };
    EXPECT_EQ(application("/account/"), 1);
    EXPECT_EQ(application("/account"), 1);
    EXPECT_EQ(application("/account/x.asp"), 1);
    EXPECT_EQ(application("/ACCOUNT/x.asp"), 1);
    EXPECT_EQ(application("/account/Admin/x.asp"), 10);
    EXPECT_EQ(application("/accounts/x.asp"), -1);
    EXPECT_EQ(application("/"), -1);
    EXPECT_EQ(application("/x/account/"), -1);
}

}  // namespace
}  // namespace orvo::web
