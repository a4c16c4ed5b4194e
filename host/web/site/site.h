#pragma once

// What a site's operator settles: SITE/site.ini, section [SITE]. Every key may be left out.
//
//     LoginPage = /login.asp
//     ; path = number of the application; everything below the path is guarded
//     Guard = /account/ = 1, /admin/ = 10
//     ; 1: what was typed into a form goes on to the login page
//     KeepForms = 0
//     ; the login's cookie; as a rule the site configuration's CookieName says it
//     LoginCookie = QUENDRAID
//     ; minutes without a request, and minutes altogether, after which a session ends
//     SessionTimeout = 20
//     SessionLifetime = 720
//     ; seconds
//     PageTimeout = 30
//     ; bytes of a form
//     LargestRequest = 1048576
//     LargestUpload = 10485760
//     ; looked for in this order where an address names a folder
//     DefaultPages = default.asp, index.html
//     ; handed to the directory provider (docs/provider.md) before the first page
//     DirectoryPool = MaximumSize = 32, IdleLimit = 60
//     DirectoryCache = Entries = 1000, TimeToLive = 5
//     ; percent of the workers that pages hold together which wait for the directory
//     DirectoryShare = 75
//     ; live logins of one user
//     LoginsOfOneUser = 100
//     ; requests of one session at once
//     RequestsOfOneSession = 6
//     ; bytes of all sessions together
//     SessionMemory = 268435456
//     ; seconds, when the program is asked to end: serving as before, and then for what is served
//     DrainDelay = 5
//     DrainTime = 10
//     ; the proxies whose word of the client counts, and how they give it
//     TrustedProxies = 127.0.0.1, 10.0.0.0/8
//     ProxyProtocol = 0
//     ForwardedHeaders = X-Forwarded-For, X-Forwarded-Proto
//     ; health and figures, for those who run the program
//     AdminAddress = 127.0.0.1:9090
//     ; folders below which pages may write files
//     FileFolders = uploads, /var/lib/shop
//     ; pages or files that are shown in place of what failed
//     ErrorPage404 = /errors/404.asp
//     ErrorPage500 = /errors/500.asp
//     ErrorPage503 = /errors/503.html
//     ContentSecurityPolicy = frame-ancestors 'none'; base-uri 'self'; form-action 'self'
//
// A key that is not known here is refused, and so is a section: whoever mistypes "Guard" has a site
// that does not start, not one that is open to everybody.

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <vector>

#include "host/web/messages/forwarded.h"
#include "platform/values/described_setting.h"
#include "platform/values/text.h"

namespace orvo::web {

struct GuardedPath {
    std::string path;  // begins and ends with "/"
    std::int32_t application;
    bool operator==(const GuardedPath&) const = default;
};

// A setting of the directory provider's.
struct ProviderSetting {
    Text name;
    Text value;
    bool operator==(const ProviderSetting&) const = default;
};

struct Site {
    std::filesystem::path root;  // canonical
    bool has_settings = false;   // whether there was a file of settings
    std::string login_page = "/login.asp";
    std::vector<GuardedPath> guards = {};
    bool keeps_forms = false;
    Text login_cookie = {};
    std::chrono::minutes session_timeout{20};
    std::chrono::minutes session_lifetime{720};
    std::chrono::seconds page_timeout{30};
    std::size_t largest_request = 1024 * 1024;
    std::size_t largest_upload = 10 * 1024 * 1024;
    std::vector<std::filesystem::path> file_folders = {};  // canonical
    std::map<int, std::string> error_pages = {};           // by status, as paths of the site
    std::vector<ProviderSetting> directory_pool = {};
    std::vector<ProviderSetting> directory_cache = {};
    int directory_share = 75;                             // percent
    std::optional<std::int32_t> logins_of_one_user = {};  // the filter's own, where empty
    std::optional<int> requests_of_one_session = {};      // half of the share, where empty
    std::size_t session_memory = 256 * 1024 * 1024;
    std::chrono::seconds drain_delay{0};
    std::chrono::seconds drain_time{10};
    TrustedProxies proxies = {};
    std::optional<SocketAddress> admin_address = {};
    std::optional<std::filesystem::path> admin_socket = {};  // without it the service's own
    std::vector<std::string> default_pages{"default.asp", "index.html"};
    std::string content_security_policy =
        "frame-ancestors 'none'; base-uri 'self'; form-action 'self'; object-src 'none'";
};

// The site in a folder, with the settings of `config`, or where that is empty of site.ini in the
// folder, if there is one. Raises Failure:
//
//     76, 53, 75    the folder, or a file of settings that is named or linked to, is not there or
//                   cannot be read
//     0x80040201    the settings say what cannot be: a key or section that is not known ("site.ini,
//                   line 4: there is no key "Gaurd"; did you mean "Guard"?"), a value, a guard
//                   whose folder is not there, a login page that is not there; or a link in the
//                   folder leads nowhere
Site read_site(const std::filesystem::path& folder, const std::filesystem::path& config = {});

// A guard of `before` whose path `now` guards neither itself nor for the same application; null
// where there is none.
const GuardedPath* lost_guard(const Site& before, const Site& now);

// The keys that differ between two readings and count from the next start of the program only.
std::vector<std::string> keys_for_next_start(const Site& before, const Site& now);

// The keys of section [SITE].
std::vector<DescribedSetting> described_site_settings();

// The application that guards a path; null for a path that anybody may see. Of several guards the
// longest path counts. Paths are compared without regard to case, so that no spelling slips by.
const GuardedPath* guard_of(const Site& site, std::string_view path);

}  // namespace orvo::web
