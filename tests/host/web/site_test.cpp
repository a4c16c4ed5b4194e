#include "host/web/site/site.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/values/failure.h"
#include "tests/support/raised.h"
#include "tests/support/temp_folder.h"

namespace orvo::web {
namespace {

class SiteTest : public testing::Test {
protected:
    SiteTest() {
        for (const char* folder : {"account/admin", "admin", "a"})
            std::filesystem::create_directories(folder_.path() / folder);
        folder_.write("login.asp", "");
        folder_.write("in/login.asp", "");
    }
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
    EXPECT_EQ(site.largest_upload, 10485760u);
    EXPECT_EQ(site.drain_delay, std::chrono::seconds(0));
    EXPECT_EQ(site.proxies, TrustedProxies());
    EXPECT_FALSE(site.admin_address);
}

TEST_F(SiteTest, IsSettledByItsFile) {
    const Site site = read(
        "LoginPage = /in/login.asp\nGuard = /account/ = 1, /admin/=10\nLoginCookie = ID\n"
        "SessionTimeout = 5\nSessionLifetime = 60\nPageTimeout = 3\nLargestRequest = 2048\n"
        "LargestUpload = 4096\n"
        "DirectoryPool = MaximumSize = 32, IdleLimit=60\nDirectoryCache = Entries = 9\n"
        "DirectoryShare = 50\nLoginsOfOneUser = 3\nRequestsOfOneSession = 9\nKeepForms = "
        "1\nSessionMemory = 2000000\nDrainTime = 0\nDrainDelay = 5\n"
        "TrustedProxies = 127.0.0.1, fd00::/8\nProxyProtocol = 1\n"
        "ForwardedHeaders = x-forwarded-for, X-Forwarded-Host\nAdminAddress = [::1]:9090\n"
        "defaultpages = start.asp\nContentSecurityPolicy = default-src 'self'\n");
    EXPECT_EQ(site.login_page, "/in/login.asp");
    EXPECT_EQ(site.guards, (std::vector<GuardedPath>{{"/account/", 1}, {"/admin/", 10}}));
    EXPECT_EQ(site.login_cookie, u"ID");
    EXPECT_EQ(site.session_timeout, std::chrono::minutes(5));
    EXPECT_EQ(site.session_lifetime, std::chrono::minutes(60));
    EXPECT_EQ(site.page_timeout, std::chrono::seconds(3));
    EXPECT_EQ(site.largest_request, 2048u);
    EXPECT_EQ(site.largest_upload, 4096u);
    EXPECT_EQ(site.directory_pool,
              (std::vector<ProviderSetting>{{u"MaximumSize", u"32"}, {u"IdleLimit", u"60"}}));
    EXPECT_EQ(site.directory_cache, (std::vector<ProviderSetting>{{u"Entries", u"9"}}));
    EXPECT_EQ(site.directory_share, 50);
    EXPECT_EQ(site.logins_of_one_user, 3);
    EXPECT_EQ(site.requests_of_one_session, 9);
    EXPECT_TRUE(site.keeps_forms);
    EXPECT_EQ(site.session_memory, 2000000u);
    EXPECT_EQ(site.drain_time, std::chrono::seconds(0));
    EXPECT_EQ(site.drain_delay, std::chrono::seconds(5));
    EXPECT_TRUE(site.proxies.networks.contain(IpAddress::try_read("fd00::1").value()));
    EXPECT_FALSE(site.proxies.networks.contain(IpAddress::try_read("127.0.0.2").value()));
    EXPECT_TRUE(site.proxies.begin_with_header);
    EXPECT_EQ(site.proxies.headers, (ForwardedHeaders{.forwarded = false, .x_proto = false}));
    EXPECT_EQ(site.admin_address, SocketAddress::try_read("[::1]:9090"));
    EXPECT_EQ(site.default_pages, std::vector<std::string>{"start.asp"});
    EXPECT_EQ(site.content_security_policy, "default-src 'self'");
}

TEST_F(SiteTest, SettlesWhereFilesGoAndWhatIsShownForFailures) {
    folder_.write("errors/404.asp", "");
    folder_.write("errors/503.html", "");
    folder_.write("errors/data.bin", "");
    std::filesystem::create_directory(folder_.path() / "uploads");
    const TempFolder outside;
    const Site site =
        read("LargestUpload = 5000000000\nFileFolders = uploads, " + outside.path().string() +
             "\nErrorPage404 = /errors/404.asp\nErrorPage503=/errors/503.html\n");
    EXPECT_EQ(site.largest_upload, 5'000'000'000u);
    EXPECT_EQ(site.file_folders,
              (std::vector<std::filesystem::path>{site.root / "uploads",
                                                  std::filesystem::canonical(outside.path())}));
    EXPECT_EQ(site.error_pages,
              (std::map<int, std::string>{{404, "/errors/404.asp"}, {503, "/errors/503.html"}}));
    for (const auto& [settings, reason] :
         std::initializer_list<std::pair<std::string_view, TextView>>{
             {"FileFolders = none", u"FileFolders: there is no folder \"none\""},
             {"FileFolders = errors/404.asp",
              u"FileFolders: there is no folder \"errors/404.asp\""},
             {"ErrorPage500 = /none.asp",
              u"ErrorPage500: \"/none.asp\" is no page or file of the site"},
             {"ErrorPage500 = /errors/data.bin",
              u"ErrorPage500: \"/errors/data.bin\" is no page or file of the site"},
             {"ErrorPage404 = http://x/", u"ErrorPage404: \"http://x/\" is no path of the site"}})
        EXPECT_EQ(to_utf8(refusal(settings)), "site.ini, line 2: " + to_utf8(reason)) << settings;
}

TEST_F(SiteTest, RefusesWhatCannotBeAndSaysWhere) {
    struct Refused {
        std::string_view settings;
        TextView reason;
    };
    for (const auto& [settings, reason] : std::initializer_list<Refused>{
             {"Guard = /account/",
              u"site.ini, line 2: Guard: \"/account/\" is not \"/path/ = number\""},
             {"Guard =", u"site.ini, line 2: Guard: it names no path; leave the key out"},
             {"Guard = /account = 1",
              u"site.ini, line 2: Guard: \"/account\" does not begin and end with \"/\""},
             {"Guard = account/ = 1",
              u"site.ini, line 2: Guard: \"account/\" does not begin and end with \"/\""},
             {"Guard = /a/ = one",
              u"site.ini, line 2: Guard: \"one\" is no number of an application"},
             {"Guard = /a/ =", u"site.ini, line 2: Guard: \"\" is no number of an application"},
             {"DirectoryPool = 5",
              u"site.ini, line 2: DirectoryPool: \"5\" is not \"Name = value\""},
             {"DirectoryCache = Entries = 5, = 6",
              u"site.ini, line 2: DirectoryCache: \"= 6\" is not \"Name = value\""},
             {"LoginPage = http://x/",
              u"site.ini, line 2: LoginPage: \"http://x/\" is no path of the site"},
             {"LoginPage = /none.asp",
              u"site.ini, line 2: LoginPage: \"/none.asp\" is no page or file of the site"},
             {"SessionTimeout = 0",
              u"site.ini, line 2: SessionTimeout: \"0\" is no number from 1 to 525600"},
             {"PageTimeout = soon",
              u"site.ini, line 2: PageTimeout: \"soon\" is no number from 1 to 3600"},
             {"LargestRequest = 99999999999999999999",
              u"site.ini, line 2: LargestRequest: \"99999999999999999999\" is no number from 1024 "
              u"to "
              u"1073741824"},
             {"DirectoryShare = 0",
              u"site.ini, line 2: DirectoryShare: \"0\" is no number from 1 to 100"},
             {"TrustedProxies = 10.0.0.0/8, proxy.example",
              u"site.ini, line 2: TrustedProxies: \"proxy.example\" is no address, nor a network "
              u"as 10.0.0.0/8"},
             {"ForwardedHeaders = X-Real-IP",
              u"site.ini, line 2: ForwardedHeaders: \"X-Real-IP\" is no header that is read here"},
             {"AdminAddress = localhost:9090",
              u"site.ini, line 2: AdminAddress: \"localhost:9090\" is no address and port as "
              u"127.0.0.1:9090"},
             {"ProxyProtocol = 1",
              u"ProxyProtocol is for connections of TrustedProxies, and there are none"},
         })
        EXPECT_EQ(to_utf8(refusal(settings)), to_utf8(reason)) << settings;
}

TEST_F(SiteTest, RefusesAnUnknownNameAndTellsTheNearestOne) {
    const std::pair<std::string_view, TextView> rows[] = {
        {"PageTimeout = 5\n\nGaurd = /account/ = 1",
         u"site.ini, line 4: there is no key \"Gaurd\"; did you mean \"Guard\"?"},
        {"Guards = /account/ = 1",
         u"site.ini, line 2: there is no key \"Guards\"; did you mean \"Guard\"?"},
        {"Colour = red", u"site.ini, line 2: there is no key \"Colour\""},
        {"[WEB]\nGuard = /account/ = 1", u"site.ini, line 2: there is no section \"WEB\""},
        {"[SITES]", u"site.ini, line 2: there is no section \"SITES\"; did you mean \"SITE\"?"},
    };
    for (const auto& [settings, reason] : rows)
        EXPECT_EQ(to_utf8(refusal(settings)), to_utf8(reason)) << settings;
}

TEST_F(SiteTest, RefusesAGuardOfAFolderThatIsNotThere) {
    std::filesystem::create_directory_symlink("account", folder_.path() / "link");
    const std::pair<std::string_view, TextView> rows[] = {
        {"Guard = /acount/ = 1",
         u"site.ini, line 2: Guard: there is no folder \"/acount/\"; did you mean \"/account/\"?"},
        {"Guard = /account/ = 1, /account/admins/ = 10",
         u"site.ini, line 2: Guard: there is no folder \"/account/admins/\"; did you mean "
         u"\"/account/admin/\"?"},
        {"Guard = /none/at/all/ = 1",
         u"site.ini, line 2: Guard: there is no folder \"/none/at/all/\""},
        {"Guard = /site.ini/ = 1", u"site.ini, line 2: Guard: there is no folder \"/site.ini/\""},
        {"Guard = /account/../admin/ = 1",
         u"site.ini, line 2: Guard: \"/account/../admin/\" is not where it leads: \"/admin/\" is "
         u"to be guarded"},
        {"Guard = /link/ = 1",
         u"site.ini, line 2: Guard: \"/link/\" is not where it leads: \"/account/\" is to be "
         u"guarded"},
    };
    for (const auto& [settings, reason] : rows)
        EXPECT_EQ(to_utf8(refusal(settings)), to_utf8(reason)) << settings;
    EXPECT_EQ(read("Guard = / = 1").guards, (std::vector<GuardedPath>{{"/", 1}}));
}

TEST_F(SiteTest, NeedsItsLoginPageWhereItHasGuards) {
    std::filesystem::remove(folder_.path() / "login.asp");
    EXPECT_EQ(to_utf8(refusal("Guard = /account/ = 1")),
              "The site guards paths, but there is no login page \"/login.asp\"");
    EXPECT_EQ(read("Guard = /account/ = 1\nLoginPage = /in/login.asp").login_page, "/in/login.asp");
    EXPECT_TRUE(read("PageTimeout = 5").guards.empty());
}

TEST_F(SiteTest, TellsWhichGuardIsLost) {
    const Site before = read("Guard = /account/ = 1, /account/admin/ = 10, /admin/ = 10");
    const auto lost = [&](std::string_view settings) {
        const Site now = read(settings);
        const GuardedPath* guard = lost_guard(before, now);
        return guard ? guard->path : "none";
    };
    EXPECT_EQ(lost(""), "/account/");
    EXPECT_EQ(lost("Guard = /account/ = 1, /account/admin/ = 10"), "/admin/");
    EXPECT_EQ(lost("Guard = /account/ = 1, /admin/ = 10"), "/account/admin/")
        << "the guard of /account/ lets others in";
    EXPECT_EQ(lost("Guard = /account/ = 10, /admin/ = 10"), "none");
    EXPECT_EQ(lost("Guard = /a/ = 1, /admin/ = 1, /account/admin/ = 2, /account/ = 3"), "none");
    EXPECT_EQ(lost("Guard = / = 10"), "/account/") << "of another application";
}

TEST_F(SiteTest, AFileOfSettingsThatIsNamedIsReadInPlaceOfTheFoldersOwn) {
    TempFolder elsewhere;
    elsewhere.write("shop.ini", "[SITE]\nPageTimeout = 7\n");
    read("PageTimeout = 5");
    EXPECT_EQ(read_site(folder_.path(), elsewhere.path() / "shop.ini").page_timeout,
              std::chrono::seconds(7));
    elsewhere.write("shop.ini", "[SITE]\nGaurd = /account/ = 1\n");
    const Text name = from_utf8((elsewhere.path() / "shop.ini").string());
    EXPECT_EQ(
        raised_by([&] { read_site(folder_.path(), elsewhere.path() / "shop.ini"); }).description,
        name + u", line 2: there is no key \"Gaurd\"; did you mean \"Guard\"?");
}

TEST_F(SiteTest, IsNotReadWithoutAFileOfSettingsThatIsNamedOrLinkedTo) {
    const Failure named =
        raised_by([&] { read_site(folder_.path(), folder_.path() / "none.ini"); });
    EXPECT_EQ(named.number, 53);
    EXPECT_EQ(named.description,
              from_utf8((folder_.path() / "none.ini").string()) + u": there is no such file");
    std::filesystem::create_symlink("none.ini", folder_.path() / "site.ini");
    EXPECT_EQ(raised_by([&] { read_site(folder_.path()); }).number, 53);
}

TEST_F(SiteTest, RefusesALinkThatLeadsNowhere) {
    std::filesystem::create_symlink("none.css", folder_.path() / "a/style.css");
    const Failure failure = raised_by([&] { read_site(folder_.path()); });
    EXPECT_EQ(failure.number, error_number(0x80040201));
    EXPECT_EQ(failure.description,
              from_utf8((std::filesystem::canonical(folder_.path()) / "a/style.css").string()) +
                  u": this link leads nowhere");
}

TEST_F(SiteTest, IsNotWhereThereIsNoFolder) {
    try {
        read_site(folder_.path() / "none");
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, 76);
    }
}

TEST_F(SiteTest, TellsWhatCountsFromTheNextStartOnly) {
    const Site before = read("PageTimeout = 5\nDrainTime = 1\n");
    EXPECT_EQ(keys_for_next_start(before, before), std::vector<std::string>());
    EXPECT_EQ(keys_for_next_start(before, read("TrustedProxies = ::1\nProxyProtocol = 1\n"
                                               "ForwardedHeaders = Forwarded\nDrainTime = 1\n"
                                               "DrainDelay = 1\nAdminAddress = 127.0.0.1:1\n")),
              (std::vector<std::string>{"DrainDelay", "TrustedProxies", "ProxyProtocol",
                                        "ForwardedHeaders", "AdminAddress"}));
    EXPECT_EQ(keys_for_next_start(before, read("PageTimeout = 6\nLargestRequest = 5000\n"
                                               "DirectoryCache = Entries = 5\n")),
              (std::vector<std::string>{"LargestRequest", "DirectoryCache", "DrainTime"}));
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
