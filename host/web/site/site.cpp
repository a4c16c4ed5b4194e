#include "host/web/site/site.h"

#include <algorithm>
#include <array>

#include "host/web/files/site_files.h"
#include "host/web/files/static_files.h"
#include "host/web/messages/http_message.h"
#include "host/web/messages/local_url.h"
#include "platform/values/failure.h"
#include "platform/values/variant.h"
#include "suite/configuration/ini_files.h"
#include "suite/configuration/nearest_name.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

constexpr std::int32_t path_not_found = 76;
constexpr TextView section_name = u"SITE";

[[noreturn]] void refuse(const Text& reason) {
    throw Failure(configuration_error::malformed_file, u"orvo-web", reason);
}

bool is_number_text(const Text& text, std::size_t longest) {
    return !text.empty() && text.size() <= longest &&
           std::ranges::all_of(text, [](char16_t c) { return c >= u'0' && c <= u'9'; });
}

class Setting;

// A key that is known. Of a number: its bounds, and the unit in `values`.
struct Key {
    TextView name;
    std::int64_t least = 0;
    std::int64_t most = 0;
    const char* values;
    std::string (*otherwise)(const Site& usual);
    const char* about;
    void (*read)(const Setting& setting, Site& site);
};

// One key of the file, while it is read.
class Setting {
public:
    Setting(const Text& file, const IniKey& key, const Key& known)
        : file_(file), key_(key), known_(known) {}

    const Text& text() const { return key_.value; }

    [[noreturn]] void refuse(const Text& reason) const {
        web::refuse(file_ + u", line " + decimal(key_.line) + u": " + key_.name + u": " + reason);
    }

    // Between the key's bounds.
    std::int64_t number() const {
        const bool is_number = is_number_text(text(), 15);
        const auto number = is_number ? Variant(text()).to<std::int64_t>() : 0;
        if (!is_number || number < known_.least || number > known_.most)
            refuse(u"\"" + text() + u"\" is no number from " + decimal(known_.least) + u" to " +
                   decimal(known_.most));
        return number;
    }

    // The pieces between commas, without blanks around them.
    std::vector<Text> list() const {
        std::vector<Text> pieces;
        for (const Text& piece : split(text(), u",")) pieces.push_back(trimmed(piece));
        return pieces;
    }

    // A path of the site, as it is typed in an address.
    std::string page() const {
        if (!is_local_url(text()) || text().find(u'?') != Text::npos)
            refuse(u"\"" + text() + u"\" is no path of the site");
        return to_utf8(text());
    }

private:
    const Text& file_;
    const IniKey& key_;
    const Key& known_;
};

// "name = value", cut at the first "=".
std::pair<Text, Text> cut(const Setting& setting, const Text& text, const Text& shape) {
    const auto equals = text.find(u'=');
    if (equals == Text::npos || equals == 0)
        setting.refuse(u"\"" + text + u"\" is not \"" + shape + u"\"");
    return {trimmed(TextView(text).substr(0, equals)), trimmed(TextView(text).substr(equals + 1))};
}

// A guard that guards nothing would leave open what it was meant for.
void require_folder(const Setting& setting, const fs::path& root, const Text& path) {
    const std::string text = to_utf8(path);
    const fs::path folder = text == "/" ? root : root / text.substr(1, text.size() - 2);
    std::error_code error;
    const fs::path real = fs::canonical(folder, error);
    if (error || !fs::is_directory(real, error)) {
        std::vector<Text> names;
        for (fs::directory_iterator entry(folder.parent_path(), error), end; !error && entry != end;
             entry.increment(error))
            if (entry->is_directory(error))
                names.push_back(from_utf8(entry->path().filename().string()));
        const std::vector<TextView> known(names.begin(), names.end());
        const TextView nearest = nearest_name(from_utf8(folder.filename().string()), known);
        const Text above = from_utf8(text.substr(0, text.rfind('/', text.size() - 2) + 1));
        setting.refuse(
            u"there is no folder \"" + path + u"\"" +
            (nearest.empty() ? Text() : u"; did you mean \"" + above + Text(nearest) + u"/\"?"));
    }
    // By the name of a link, or through "..", only one of its names would be guarded.
    const std::string real_path = path_in_site(root, real).value_or("?") + "/";
    if (real_path != text)
        setting.refuse(u"\"" + path + u"\" is not where it leads: \"" + from_utf8(real_path) +
                       u"\" is to be guarded");
}

GuardedPath guarded_path(const Setting& setting, const fs::path& root, const Text& text) {
    const auto [path, number] = cut(setting, text, u"/path/ = number");
    if (!is_local_url(path) || !path.ends_with(u'/'))
        setting.refuse(u"\"" + path + u"\" does not begin and end with \"/\"");
    if (!is_number_text(number, 6))
        setting.refuse(u"\"" + number + u"\" is no number of an application");
    require_folder(setting, root, path);
    return {to_utf8(path), Variant(number).to<std::int32_t>()};
}

// What the values may be is the provider's.
std::vector<ProviderSetting> provider_settings(const Setting& setting) {
    std::vector<ProviderSetting> settings;
    for (const Text& text : setting.list()) {
        auto [name, value] = cut(setting, text, u"Name = value");
        settings.push_back({std::move(name), std::move(value)});
    }
    return settings;
}

std::string error_page(const Setting& setting, const Site& site) {
    std::string path = setting.page();
    const auto file = try_site_file(site.root, path);
    if (!file || (!is_page(path) && content_type_of(*file).empty()))
        setting.refuse(u"\"" + setting.text() + u"\" is no page or file of the site");
    return path;
}

fs::path file_folder(const Setting& setting, const fs::path& root, const Text& text) {
    std::error_code error;
    const fs::path folder = fs::canonical(root / to_utf8(text), error);
    if (error || !fs::is_directory(folder, error))
        setting.refuse(u"there is no folder \"" + text + u"\"");
    return folder;
}

std::string none(const Site&) { return "none"; }
std::string built_in(const Site&) { return "built in"; }

constexpr std::array keys{
    Key{.name = u"LoginPage",
        .values = "path of the site",
        .otherwise = [](const Site& usual) { return usual.login_page; },
        .about = "Where a browser goes that asks for a guarded page without a login.",
        .read = [](const Setting& s, Site& site) { site.login_page = s.page(); }},
    Key{.name = u"Guard",
        .values = "/path/ = number, with commas between",
        .otherwise = none,
        .about = "What lies below the path needs a login for the application of this number.",
        .read =
            [](const Setting& s, Site& site) {
                if (s.text().empty()) s.refuse(u"it names no path; leave the key out");
                for (const Text& guard : s.list())
                    site.guards.push_back(guarded_path(s, site.root, guard));
            }},
    Key{.name = u"LoginCookie",
        .values = "text",
        .otherwise = [](const Site&) { return std::string("CookieName of [MEMBERSHIP]"); },
        .about = "The login cookie's name.",
        .read = [](const Setting& s, Site& site) { site.login_cookie = s.text(); }},
    Key{.name = u"SessionTimeout",
        .least = 1,
        .most = 525'600,
        .values = "minutes",
        .otherwise =
            [](const Site& usual) { return std::to_string(usual.session_timeout.count()); },
        .about = "How long after its last request a session ends.",
        .read = [](const Setting& s,
                   Site& site) { site.session_timeout = std::chrono::minutes(s.number()); }},
    Key{.name = u"SessionLifetime",
        .least = 1,
        .most = 525'600,
        .values = "minutes",
        .otherwise =
            [](const Site& usual) { return std::to_string(usual.session_lifetime.count()); },
        .about = "How long after its begin a session ends in any case.",
        .read = [](const Setting& s,
                   Site& site) { site.session_lifetime = std::chrono::minutes(s.number()); }},
    Key{.name = u"PageTimeout",
        .least = 1,
        .most = 3600,
        .values = "seconds",
        .otherwise = [](const Site& usual) { return std::to_string(usual.page_timeout.count()); },
        .about = "How long a page may run. It may say another time itself (Server.ScriptTimeout).",
        .read = [](const Setting& s,
                   Site& site) { site.page_timeout = std::chrono::seconds(s.number()); }},
    Key{.name = u"LargestRequest",
        .least = 1024,
        .most = 1 << 30,
        .values = "bytes",
        .otherwise = [](const Site& usual) { return std::to_string(usual.largest_request); },
        .about = "The largest form without files.",
        .read = [](const Setting& s,
                   Site& site) { site.largest_request = static_cast<std::size_t>(s.number()); }},
    Key{.name = u"LargestUpload",
        .least = 1024,
        .most = std::int64_t{1} << 40,
        .values = "bytes",
        .otherwise = [](const Site& usual) { return std::to_string(usual.largest_upload); },
        .about = "The largest form with files.",
        .read = [](const Setting& s,
                   Site& site) { site.largest_upload = static_cast<std::size_t>(s.number()); }},
    Key{.name = u"FileFolders",
        .values = "folders, with commas between",
        .otherwise = none,
        .about = "Where pages may read and write files: below these folders, which count from the "
                 "site's.",
        .read =
            [](const Setting& s, Site& site) {
                for (const Text& folder : s.list())
                    site.file_folders.push_back(file_folder(s, site.root, folder));
            }},
    Key{.name = u"ErrorPage404",
        .values = "path of the site",
        .otherwise = built_in,
        .about = "The page or file that is shown in place of what is not there.",
        .read = [](const Setting& s, Site& site) { site.error_pages[404] = error_page(s, site); }},
    Key{.name = u"ErrorPage500",
        .values = "path of the site",
        .otherwise = built_in,
        .about = "The page or file that is shown in place of a page that fails.",
        .read = [](const Setting& s, Site& site) { site.error_pages[500] = error_page(s, site); }},
    Key{.name = u"ErrorPage503",
        .values = "path of the site",
        .otherwise = built_in,
        .about = "The page or file that is shown in place of what cannot be had now.",
        .read = [](const Setting& s, Site& site) { site.error_pages[503] = error_page(s, site); }},
    Key{.name = u"DirectoryPool",
        .values = "Name = number, with commas between",
        .otherwise = [](const Site&) { return std::string("the provider's own"); },
        .about =
            "Settings of the directory provider's connection pool, see below; handed over before "
            "the first page.",
        .read = [](const Setting& s, Site& site) { site.directory_pool = provider_settings(s); }},
    Key{.name = u"DirectoryCache",
        .values = "Name = number, with commas between",
        .otherwise = [](const Site&) { return std::string("the provider's own"); },
        .about = "Settings of the directory provider's cache, see below.",
        .read = [](const Setting& s, Site& site) { site.directory_cache = provider_settings(s); }},
    Key{.name = u"DirectoryShare",
        .least = 1,
        .most = 100,
        .values = "percent",
        .otherwise = [](const Site& usual) { return std::to_string(usual.directory_share); },
        .about = "How many of the workers may wait for the directory at once, all pages together.",
        .read = [](const Setting& s,
                   Site& site) { site.directory_share = static_cast<int>(s.number()); }},
    Key{.name = u"LoginsOfOneUser",
        .least = 1,
        .most = 100'000,
        .values = "logins",
        .otherwise = [](const Site&) { return std::string("the filter's own: 100"); },
        .about = "Live logins of one user; a new one ends the one that was used longest ago.",
        .read =
            [](const Setting& s, Site& site) {
                site.logins_of_one_user = static_cast<std::int32_t>(s.number());
            }},
    Key{.name = u"SessionMemory",
        .least = 1 << 20,
        .most = std::int64_t{1} << 40,
        .values = "bytes",
        .otherwise = [](const Site& usual) { return std::to_string(usual.session_memory); },
        .about = "What the values of all sessions together take.",
        .read = [](const Setting& s,
                   Site& site) { site.session_memory = static_cast<std::size_t>(s.number()); }},
    Key{.name = u"DrainTime",
        .least = 0,
        .most = 3600,
        .values = "seconds",
        .otherwise = [](const Site& usual) { return std::to_string(usual.drain_time.count()); },
        .about = "How long what is being served may go on when the program is asked to end.",
        .read = [](const Setting& s,
                   Site& site) { site.drain_time = std::chrono::seconds(s.number()); }},
    Key{.name = u"DefaultPages",
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
            [](const Setting& s, Site& site) {
                site.default_pages.clear();
                for (const Text& page : s.list()) site.default_pages.push_back(to_utf8(page));
            }},
    Key{.name = u"ContentSecurityPolicy",
        .values = "text",
        .otherwise = [](const Site& usual) { return usual.content_security_policy; },
        .about = "The header of this name in every answer; with an empty value there is none.",
        .read = [](const Setting& s,
                   Site& site) { site.content_security_policy = to_utf8(s.text()); }},
};

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
        const auto known = std::ranges::find_if(
            keys, [&](const Key& row) { return equal_ignoring_case(row.name, key.name); });
        if (known == keys.end()) {
            std::array<TextView, keys.size()> names;
            std::ranges::transform(keys, names.begin(), &Key::name);
            refuse_name(file, key.line, u"key", key.name, names);
        }
        known->read(Setting(file, key, *known), site);
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
    if (const auto link = try_dangling_link(site.root))
        refuse(from_utf8(link->string()) + u": this link leads nowhere");
    return site;
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
    compare("DrainTime", before.drain_time, now.drain_time);
    return keys;
}

std::vector<DescribedSetting> described_site_settings() {
    const Site usual;
    std::vector<DescribedSetting> all;
    for (const Key& key : keys) {
        std::string values = key.values;
        if (key.most != 0)
            values += ", " + std::to_string(key.least) + " to " + std::to_string(key.most);
        all.push_back({to_utf8(key.name), values, key.otherwise(usual), key.about});
    }
    return all;
}

const GuardedPath* guard_of(const Site& site, std::string_view path) {
    const GuardedPath* longest = nullptr;
    for (const GuardedPath& guard : site.guards)
        if (lies_below(path, guard.path) && (!longest || guard.path.size() > longest->path.size()))
            longest = &guard;
    return longest;
}

}  // namespace orvo::web
