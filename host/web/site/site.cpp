#include "host/web/site/site.h"

#include <algorithm>

#include "host/web/files/site_files.h"
#include "host/web/messages/http_message.h"
#include "host/web/site/site_keys.h"
#include "platform/values/failure.h"
#include "suite/configuration/nearest_name.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

constexpr std::int32_t path_not_found = 76;
constexpr TextView section_name = u"SITE";

[[noreturn]] void refuse(const Text& reason) {
    throw Failure(configuration_error::malformed_file, u"orvo-web", reason);
}

[[noreturn]] void refuse_name(const Text& file, long long line, const Text& what, TextView name,
                              std::span<const TextView> known) {
    const TextView nearest = nearest_name(name, known);
    refuse(file + u", line " + decimal(line) + u": there is no " + what + u" \"" + Text(name) +
           u"\"" + (nearest.empty() ? Text() : u"; did you mean \"" + Text(nearest) + u"\"?"));
}

void read_settings(const IniValues& values, const Text& file, Site& site) {
    for (const IniSection& section : values.sections())
        if (!equal_ignoring_case(section.name, section_name))
            refuse_name(file, section.line, u"section", section.name, {&section_name, 1});
    for (const IniKey& key : values.keys()) {
        const auto known = std::ranges::find_if(site_keys(), [&](const SiteKey& row) {
            return equal_ignoring_case(row.name, key.name);
        });
        if (known == site_keys().end()) {
            std::vector<TextView> names;
            for (const SiteKey& row : site_keys()) names.push_back(row.name);
            refuse_name(file, key.line, u"key", key.name, names);
        }
        known->read(SiteSetting(file, key, known->least, known->most), site);
    }
}

bool lies_below(std::string_view path, std::string_view folder) {
    if (path.size() >= folder.size())
        return equal_ascii_ignoring_case(path.substr(0, folder.size()), folder);
    // The folder itself, without the "/" at its end.
    return equal_ascii_ignoring_case(path, folder.substr(0, folder.size() - 1));
}

}  // namespace

Site read_site(const fs::path& folder, const fs::path& config) {
    Site site;
    std::error_code error;
    site.root = fs::canonical(folder, error);
    if (error || !fs::is_directory(site.root))
        throw Failure(path_not_found, u"orvo-web",
                      from_utf8(folder.string()) + u": there is no such folder");
    const fs::path own = site.root / "site.ini";
    site.has_settings =
        !config.empty() || fs::symlink_status(own, error).type() != fs::file_type::not_found;
    if (!config.empty())
        read_settings(*reload_ini_file(config), from_utf8(config.string()), site);
    else if (site.has_settings)
        read_settings(*reload_ini_file(own), u"site.ini", site);
    if (!site.guards.empty() && !try_site_file(site.root, site.login_page))
        refuse(u"The site guards paths, but there is no login page \"" +
               from_utf8(site.login_page) + u"\"");
    if (site.proxies.begin_with_header && site.proxies.networks.empty())
        refuse(u"ProxyProtocol is for connections of TrustedProxies, and there are none");
    if (const auto link = try_dangling_link(site.root))
        refuse(from_utf8(link->string()) + u": this link leads nowhere");
    return site;
}

const GuardedPath* lost_guard(const Site& before, const Site& now) {
    const auto is_lost = [&](const GuardedPath& guard) {
        const GuardedPath* other = guard_of(now, guard.path);
        return !other ||
               (other->path.size() != guard.path.size() && other->application != guard.application);
    };
    const auto lost = std::ranges::find_if(before.guards, is_lost);
    return lost == before.guards.end() ? nullptr : &*lost;
}

std::vector<std::string> keys_for_next_start(const Site& before, const Site& now) {
    std::vector<std::string> keys;
    const auto compare = [&](const char* key, const auto& a, const auto& b) {
        if (a != b) keys.emplace_back(key);
    };
    compare("LargestRequest", before.largest_request, now.largest_request);
    compare("LargestUpload", before.largest_upload, now.largest_upload);
    compare("DirectoryPool", before.directory_pool, now.directory_pool);
    compare("DirectoryCache", before.directory_cache, now.directory_cache);
    compare("DirectoryShare", before.directory_share, now.directory_share);
    compare("DrainDelay", before.drain_delay, now.drain_delay);
    compare("DrainTime", before.drain_time, now.drain_time);
    compare("TrustedProxies", before.proxies.networks, now.proxies.networks);
    compare("ProxyProtocol", before.proxies.begin_with_header, now.proxies.begin_with_header);
    compare("ForwardedHeaders", before.proxies.headers, now.proxies.headers);
    compare("AdminAddress", before.admin_address, now.admin_address);
    compare("AdminSocket", before.admin_socket, now.admin_socket);
    return keys;
}

const GuardedPath* guard_of(const Site& site, std::string_view path) {
    const GuardedPath* longest = nullptr;
    for (const GuardedPath& guard : site.guards)
        if (lies_below(path, guard.path) && (!longest || guard.path.size() > longest->path.size()))
            longest = &guard;
    return longest;
}

}  // namespace orvo::web
