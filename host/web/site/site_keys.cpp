#include "host/web/site/site_keys.h"

#include <array>

namespace orvo::web {
namespace {

std::string none(const Site&) { return "none"; }
std::string built_in(const Site&) { return "built in"; }

constexpr std::array keys{
    SiteKey{.name = u"LoginPage",
            .values = "path of the site",
            .otherwise = [](const Site& usual) { return usual.login_page; },
            .about = "Where a browser goes that asks for a guarded page without a login. A site "
                     "with guards does "
                     "not start without it.",
            .read = [](const SiteSetting& s,
                       Site& site) { site.login_page = s.page_or_file(site.root); }},
    SiteKey{.name = u"Guard",
            .values = "/path/ = number, with commas between",
            .otherwise = none,
            .about = "What lies below the path needs a login for the application of this number. A "
                     "guard that is "
                     "left out counts until the next start.",
            .read = [](const SiteSetting& s, Site& site) { site.guards = s.guards(site.root); }},
    SiteKey{
        .name = u"KeepForms",
        .least = 0,
        .most = 1,
        .values = "number",
        .otherwise = [](const Site& usual) { return std::string(usual.keeps_forms ? "1" : "0"); },
        .about = "1: a form that is sent to a guarded page without a login goes on to the login "
                 "page, which may keep what was typed; 0: only its address does.",
        .read = [](const SiteSetting& s, Site& site) { site.keeps_forms = s.number() == 1; }},
    SiteKey{.name = u"LoginCookie",
            .values = "text",
            .otherwise = [](const Site&) { return std::string("CookieName of [MEMBERSHIP]"); },
            .about = "The login cookie's name.",
            .read = [](const SiteSetting& s, Site& site) { site.login_cookie = s.text(); }},
    SiteKey{.name = u"SessionTimeout",
            .least = 1,
            .most = 525'600,
            .values = "minutes",
            .otherwise =
                [](const Site& usual) { return std::to_string(usual.session_timeout.count()); },
            .about = "How long after its last request a session ends.",
            .read = [](const SiteSetting& s,
                       Site& site) { site.session_timeout = std::chrono::minutes(s.number()); }},
    SiteKey{.name = u"SessionLifetime",
            .least = 1,
            .most = 525'600,
            .values = "minutes",
            .otherwise =
                [](const Site& usual) { return std::to_string(usual.session_lifetime.count()); },
            .about = "How long after its begin a session ends in any case.",
            .read = [](const SiteSetting& s,
                       Site& site) { site.session_lifetime = std::chrono::minutes(s.number()); }},
    SiteKey{
        .name = u"PageTimeout",
        .least = 1,
        .most = 3600,
        .values = "seconds",
        .otherwise = [](const Site& usual) { return std::to_string(usual.page_timeout.count()); },
        .about = "How long a page may run. It may say another time itself (Server.ScriptTimeout).",
        .read = [](const SiteSetting& s,
                   Site& site) { site.page_timeout = std::chrono::seconds(s.number()); }},
    SiteKey{
        .name = u"LargestRequest",
        .least = 1024,
        .most = 1 << 30,
        .values = "bytes",
        .otherwise = [](const Site& usual) { return std::to_string(usual.largest_request); },
        .about = "The largest form without files.",
        .read = [](const SiteSetting& s,
                   Site& site) { site.largest_request = static_cast<std::size_t>(s.number()); }},
    SiteKey{.name = u"LargestUpload",
            .least = 1024,
            .most = std::int64_t{1} << 40,
            .values = "bytes",
            .otherwise = [](const Site& usual) { return std::to_string(usual.largest_upload); },
            .about = "The largest form with files.",
            .read = [](const SiteSetting& s,
                       Site& site) { site.largest_upload = static_cast<std::size_t>(s.number()); }},
    SiteKey{
        .name = u"FileFolders",
        .values = "folders, with commas between",
        .otherwise = none,
        .about = "Where pages may read and write files: below these folders, which count from the "
                 "site's.",
        .read = [](const SiteSetting& s, Site& site) { site.file_folders = s.folders(site.root); }},
    SiteKey{.name = u"ErrorPage404",
            .values = "path of the site",
            .otherwise = built_in,
            .about = "The page or file that is shown in place of what is not there.",
            .read = [](const SiteSetting& s,
                       Site& site) { site.error_pages[404] = s.page_or_file(site.root); }},
    SiteKey{.name = u"ErrorPage500",
            .values = "path of the site",
            .otherwise = built_in,
            .about = "The page or file that is shown in place of a page that fails.",
            .read = [](const SiteSetting& s,
                       Site& site) { site.error_pages[500] = s.page_or_file(site.root); }},
    SiteKey{.name = u"ErrorPage503",
            .values = "path of the site",
            .otherwise = built_in,
            .about = "The page or file that is shown in place of what cannot be had now.",
            .read = [](const SiteSetting& s,
                       Site& site) { site.error_pages[503] = s.page_or_file(site.root); }},
    SiteKey{
        .name = u"DirectoryPool",
        .values = "Name = number, with commas between",
        .otherwise = [](const Site&) { return std::string("the provider's own"); },
        .about =
            "Settings of the directory provider's connection pool, see below; handed over before "
            "the first page.",
        .read = [](const SiteSetting& s,
                   Site& site) { site.directory_pool = s.provider_settings(); }},
    SiteKey{.name = u"DirectoryCache",
            .values = "Name = number, with commas between",
            .otherwise = [](const Site&) { return std::string("the provider's own"); },
            .about = "Settings of the directory provider's cache, see below.",
            .read = [](const SiteSetting& s,
                       Site& site) { site.directory_cache = s.provider_settings(); }},
    SiteKey{
        .name = u"DirectoryShare",
        .least = 1,
        .most = 100,
        .values = "percent",
        .otherwise = [](const Site& usual) { return std::to_string(usual.directory_share); },
        .about = "How many of the workers may wait for the directory at once, all pages together.",
        .read = [](const SiteSetting& s,
                   Site& site) { site.directory_share = static_cast<int>(s.number()); }},
    SiteKey{.name = u"LoginsOfOneUser",
            .least = 1,
            .most = 100'000,
            .values = "logins",
            .otherwise = [](const Site&) { return std::string("the filter's own: 100"); },
            .about = "Live logins of one user; a new one ends the one that was used longest ago.",
            .read =
                [](const SiteSetting& s, Site& site) {
                    site.logins_of_one_user = static_cast<std::int32_t>(s.number());
                }},
    SiteKey{.name = u"SessionMemory",
            .least = 1 << 20,
            .most = std::int64_t{1} << 40,
            .values = "bytes",
            .otherwise = [](const Site& usual) { return std::to_string(usual.session_memory); },
            .about = "What the values of all sessions together take; in a shared store with some "
                     "1000 bytes for each session beside them, of all machines together.",
            .read = [](const SiteSetting& s,
                       Site& site) { site.session_memory = static_cast<std::size_t>(s.number()); }},
    SiteKey{
        .name = u"RequestsOfOneSession",
        .least = 1,
        .most = 1000,
        .values = "requests",
        .otherwise = [](const Site&) { return std::string("half of DirectoryShare, about"); },
        .about = "How many requests of one session may be there at once: one is carried out, the "
                 "others wait for it, each on a worker. More are answered 503.",
        .read = [](const SiteSetting& s,
                   Site& site) { site.requests_of_one_session = static_cast<int>(s.number()); }},
    SiteKey{.name = u"TrustedProxies",
            .values = "addresses and networks, with commas between",
            .otherwise = none,
            .about =
                "The proxies in front. What they say of their clients counts as if the clients "
                "were connected themselves; what others say does not, and reaches no page.",
            .read = [](const SiteSetting& s, Site& site) { site.proxies.networks = s.networks(); }},
    SiteKey{.name = u"ProxyProtocol",
            .least = 0,
            .most = 1,
            .values = "number",
            .otherwise = [](const Site&) { return std::string("0"); },
            .about = "1: each connection of a trusted proxy begins with a header of the PROXY "
                     "protocol, version 1 or 2, in front of TLS, and is closed without one.",
            .read = [](const SiteSetting& s,
                       Site& site) { site.proxies.begin_with_header = s.number() == 1; }},
    SiteKey{.name = u"ForwardedHeaders",
            .values = "names of headers, with commas between",
            .otherwise =
                [](const Site&) {
                    return std::string(
                        "Forwarded, X-Forwarded-For, X-Forwarded-Proto, X-Forwarded-Host");
                },
            .about =
                "Of these the headers that are read where a trusted proxy sends them. Leave out "
                "what the proxies neither set nor take away: a client may have made it up.",
            .read = [](const SiteSetting& s,
                       Site& site) { site.proxies.headers = s.forwarded_headers(); }},
    SiteKey{
        .name = u"DrainDelay",
        .least = 0,
        .most = 3600,
        .values = "seconds",
        .otherwise = [](const Site& usual) { return std::to_string(usual.drain_delay.count()); },
        .about = "How long the program goes on as before when it is asked to end, while "
                 "/health/ready answers 503 and each answer ends its connection: so long that a "
                 "balancer has learned of it. Then comes DrainTime.",
        .read = [](const SiteSetting& s,
                   Site& site) { site.drain_delay = std::chrono::seconds(s.number()); }},
    SiteKey{.name = u"DrainTime",
            .least = 0,
            .most = 3600,
            .values = "seconds",
            .otherwise = [](const Site& usual) { return std::to_string(usual.drain_time.count()); },
            .about = "How long what is being served may go on when the program is asked to end.",
            .read = [](const SiteSetting& s,
                       Site& site) { site.drain_time = std::chrono::seconds(s.number()); }},
    SiteKey{.name = u"AdminSocket",
            .values = "path",
            .otherwise =
                [](const Site&) {
                    return std::string("orvo-web.sock in the service's runtime folder, if any");
                },
            .about = "The socket for administrators of this machine (orvo pool, orvo cache clear, "
                     "orvo users logout); "
                     "a relative path counts from the site's folder. Empty: there is none.",
            .read =
                [](const SiteSetting& s, Site& site) {
                    site.admin_socket =
                        s.text().empty() ? std::filesystem::path() : site.root / to_utf8(s.text());
                }},
    SiteKey{
        .name = u"AdminAddress",
        .values = "address:port",
        .otherwise = none,
        .about = "A second address for those who run the program, plain HTTP, that answers "
                 "/health/live, /health/ready and /metrics and nothing else, also while all "
                 "workers are busy.",
        .read = [](const SiteSetting& s, Site& site) { site.admin_address = s.socket_address(); }},
    SiteKey{.name = u"DefaultPages",
            .values = "names, with commas between",
            .otherwise =
                [](const Site& usual) {
                    std::string pages;
                    for (const std::string& page : usual.default_pages)
                        pages += (pages.empty() ? "" : ", ") + page;
                    return pages;
                },
            .about = "Looked for in this order where an address names a folder.",
            .read =
                [](const SiteSetting& s, Site& site) {
                    site.default_pages.clear();
                    for (const Text& page : s.list()) site.default_pages.push_back(to_utf8(page));
                }},
    SiteKey{.name = u"ContentSecurityPolicy",
            .values = "text",
            .otherwise = [](const Site& usual) { return usual.content_security_policy; },
            .about = "The header of this name in every answer; with an empty value there is none.",
            .read = [](const SiteSetting& s,
                       Site& site) { site.content_security_policy = to_utf8(s.text()); }},
};

}  // namespace

std::span<const SiteKey> site_keys() { return keys; }

std::vector<DescribedSetting> described_site_settings() {
    const Site usual;
    std::vector<DescribedSetting> all;
    for (const SiteKey& key : keys) {
        std::string values = key.values;
        if (key.most != 0)
            values += ", " + std::to_string(key.least) + " to " + std::to_string(key.most);
        all.push_back({to_utf8(key.name), values, key.otherwise(usual), key.about});
    }
    return all;
}

}  // namespace orvo::web
