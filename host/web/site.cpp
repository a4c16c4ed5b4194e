#include "host/web/site.h"

#include <algorithm>
#include <array>

#include "host/web/http_message.h"
#include "host/web/local_url.h"
#include "host/web/site_files.h"
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

// One key of the file, while it is read.
class Setting {
public:
    Setting(const Text& file, const IniKey& key) : file_(file), key_(key) {}

    const Text& text() const { return key_.value; }

    [[noreturn]] void refuse(const Text& reason) const {
        web::refuse(file_ + u", line " + decimal(key_.line) + u": " + key_.name + u": " + reason);
    }

    std::int64_t number(std::int64_t least, std::int64_t most) const {
        const bool is_number = is_number_text(text(), 15);
        const auto number = is_number ? Variant(text()).to<std::int64_t>() : 0;
        if (!is_number || number < least || number > most)
            refuse(u"\"" + text() + u"\" is no number from " + decimal(least) + u" to " +
                   decimal(most));
        return number;
    }
    std::chrono::minutes minutes() const { return std::chrono::minutes(number(1, 525600)); }
    std::size_t bytes(std::int64_t least, std::int64_t most) const {
        return static_cast<std::size_t>(number(least, most));
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

struct Key {
    TextView name;
    void (*read)(const Setting& setting, Site& site);
};

constexpr std::array keys{
    Key{u"LoginPage", [](const Setting& s, Site& site) { site.login_page = s.page(); }},
    Key{u"Guard",
        [](const Setting& s, Site& site) {
            for (const Text& guard : s.list())
                site.guards.push_back(guarded_path(s, site.root, guard));
        }},
    Key{u"LoginCookie", [](const Setting& s, Site& site) { site.login_cookie = s.text(); }},
    Key{u"SessionTimeout",
        [](const Setting& s, Site& site) { site.session_timeout = s.minutes(); }},
    Key{u"SessionLifetime",
        [](const Setting& s, Site& site) { site.session_lifetime = s.minutes(); }},
    Key{u"PageTimeout",
        [](const Setting& s, Site& site) {
            site.page_timeout = std::chrono::seconds(s.number(1, 3600));
        }},
    Key{u"LargestRequest",
        [](const Setting& s, Site& site) { site.largest_request = s.bytes(1024, 1 << 30); }},
    Key{u"LargestUpload",
        [](const Setting& s, Site& site) {
            site.largest_upload = s.bytes(1024, std::int64_t{1} << 40);
        }},
    Key{u"DirectoryPool",
        [](const Setting& s, Site& site) { site.directory_pool = provider_settings(s); }},
    Key{u"DirectoryCache",
        [](const Setting& s, Site& site) { site.directory_cache = provider_settings(s); }},
    Key{u"DirectoryShare",
        [](const Setting& s, Site& site) {
            site.directory_share = static_cast<int>(s.number(1, 100));
        }},
    Key{u"LoginsOfOneUser",
        [](const Setting& s, Site& site) {
            site.logins_of_one_user = static_cast<std::int32_t>(s.number(1, 100'000));
        }},
    Key{u"SessionMemory",
        [](const Setting& s, Site& site) {
            site.session_memory = s.bytes(1 << 20, std::int64_t{1} << 40);
        }},
    Key{u"DrainTime",
        [](const Setting& s, Site& site) {
            site.drain_time = std::chrono::seconds(s.number(0, 3600));
        }},
    Key{u"DefaultPages",
        [](const Setting& s, Site& site) {
            site.default_pages.clear();
            for (const Text& page : s.list()) site.default_pages.push_back(to_utf8(page));
        }},
    Key{u"ContentSecurityPolicy",
        [](const Setting& s, Site& site) { site.content_security_policy = to_utf8(s.text()); }},
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
        known->read(Setting(file, key), site);
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
    if (!config.empty())
        read_settings(*reload_ini_file(config), from_utf8(config.string()), site);
    else if (fs::symlink_status(own, error).type() != fs::file_type::not_found)
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

const GuardedPath* guard_of(const Site& site, std::string_view path) {
    const GuardedPath* longest = nullptr;
    for (const GuardedPath& guard : site.guards)
        if (lies_below(path, guard.path) && (!longest || guard.path.size() > longest->path.size()))
            longest = &guard;
    return longest;
}

}  // namespace orvo::web
