#include "host/web/site.h"

#include <algorithm>

#include "host/web/http_message.h"
#include "host/web/local_url.h"
#include "platform/values/failure.h"
#include "platform/values/variant.h"
#include "suite/configuration/ini_files.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

constexpr std::int32_t path_not_found = 76;

[[noreturn]] void refuse(TextView key, const Text& reason) {
    throw Failure(configuration_error::malformed_file, u"orvo-web",
                  u"site.ini: " + Text(key) + u": " + reason);
}

class Reader {
public:
    explicit Reader(const IniValues& values) : values_(values) {}

    const Text* find(TextView key) const { return values_.find(u"SITE", key); }

    std::int64_t number(TextView key, std::int64_t otherwise, std::int64_t least,
                        std::int64_t most) const {
        const Text* text = find(key);
        if (!text) return otherwise;
        std::int64_t number = 0;
        const bool is_number =
            !text->empty() && text->size() < 16 &&
            std::ranges::all_of(*text, [](char16_t c) { return c >= u'0' && c <= u'9'; });
        if (is_number) number = Variant(*text).to<std::int64_t>();
        if (!is_number || number < least || number > most)
            refuse(key, u"\"" + *text + u"\" is no number from " + decimal(least) + u" to " +
                            decimal(most));
        return number;
    }

    // The pieces between commas, without blanks around them.
    std::vector<Text> list(TextView key) const {
        std::vector<Text> pieces;
        if (const Text* text = find(key))
            for (const Text& piece : split(*text, u",")) pieces.push_back(trimmed(piece));
        return pieces;
    }

private:
    const IniValues& values_;
};

GuardedPath guarded_path(const Text& text) {
    const auto equals = text.find(u'=');
    if (equals == Text::npos) refuse(u"Guard", u"\"" + text + u"\" is not \"/path/ = number\"");
    const Text path = trimmed(TextView(text).substr(0, equals));
    const Text number = trimmed(TextView(text).substr(equals + 1));
    if (!is_local_url(path) || !path.ends_with(u'/'))
        refuse(u"Guard", u"\"" + path + u"\" does not begin and end with \"/\"");
    if (number.empty() || number.size() > 6 ||
        !std::ranges::all_of(number, [](char16_t c) { return c >= u'0' && c <= u'9'; }))
        refuse(u"Guard", u"\"" + number + u"\" is no number of an application");
    return {to_utf8(path), Variant(number).to<std::int32_t>()};
}

// What the values may be is the provider's.
std::vector<ProviderSetting> provider_settings(const Reader& reader, TextView key) {
    std::vector<ProviderSetting> settings;
    for (const Text& text : reader.list(key)) {
        const auto equals = text.find(u'=');
        if (equals == Text::npos || equals == 0)
            refuse(key, u"\"" + text + u"\" is not \"Name = value\"");
        settings.push_back({trimmed(TextView(text).substr(0, equals)),
                            trimmed(TextView(text).substr(equals + 1))});
    }
    return settings;
}

void read_settings(const Reader& reader, Site& site) {
    if (const Text* page = reader.find(u"LoginPage")) {
        if (!is_local_url(*page) || page->find(u'?') != Text::npos)
            refuse(u"LoginPage", u"\"" + *page + u"\" is no path of the site");
        site.login_page = to_utf8(*page);
    }
    for (const Text& guard : reader.list(u"Guard")) site.guards.push_back(guarded_path(guard));
    if (const Text* cookie = reader.find(u"LoginCookie")) site.login_cookie = *cookie;
    const auto minutes = [&](TextView key, std::chrono::minutes otherwise) {
        return std::chrono::minutes(reader.number(key, otherwise.count(), 1, 525600));
    };
    site.session_timeout = minutes(u"SessionTimeout", site.session_timeout);
    site.session_lifetime = minutes(u"SessionLifetime", site.session_lifetime);
    site.page_timeout =
        std::chrono::seconds(reader.number(u"PageTimeout", site.page_timeout.count(), 1, 3600));
    site.largest_request = static_cast<std::size_t>(reader.number(
        u"LargestRequest", static_cast<std::int64_t>(site.largest_request), 1024, 1 << 30));
    site.directory_pool = provider_settings(reader, u"DirectoryPool");
    site.directory_cache = provider_settings(reader, u"DirectoryCache");
    if (reader.find(u"DefaultPages")) {
        site.default_pages.clear();
        for (const Text& page : reader.list(u"DefaultPages"))
            site.default_pages.push_back(to_utf8(page));
    }
    if (const Text* policy = reader.find(u"ContentSecurityPolicy"))
        site.content_security_policy = to_utf8(*policy);
}

bool lies_below(std::string_view path, std::string_view folder) {
    if (path.size() >= folder.size())
        return equal_ascii_ignoring_case(path.substr(0, folder.size()), folder);
    // The folder itself, without the "/" at its end.
    return equal_ascii_ignoring_case(path, folder.substr(0, folder.size() - 1));
}

}  // namespace

Site read_site(const fs::path& folder) {
    Site site;
    std::error_code error;
    site.root = fs::canonical(folder, error);
    if (error || !fs::is_directory(site.root))
        throw Failure(path_not_found, u"orvo-web",
                      from_utf8(folder.string()) + u": there is no such folder");
    const fs::path file = site.root / "site.ini";
    if (fs::exists(file, error)) read_settings(Reader(*load_ini_file(file)), site);
    return site;
}

const GuardedPath* guard_of(const Site& site, std::string_view path) {
    const GuardedPath* longest = nullptr;
    for (const GuardedPath& guard : site.guards)
        if (lies_below(path, guard.path) && (!longest || guard.path.size() > longest->path.size()))
            longest = &guard;
    return longest;
}

}  // namespace orvo::web
