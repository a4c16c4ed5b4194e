#include "host/web/site/site_setting.h"

#include <algorithm>

#include "host/web/files/site_files.h"
#include "host/web/files/static_files.h"
#include "host/web/messages/local_url.h"
#include "platform/values/failure.h"
#include "platform/values/variant.h"
#include "suite/configuration/nearest_name.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

bool is_number_text(const Text& text, std::size_t longest) {
    return !text.empty() && text.size() <= longest &&
           std::ranges::all_of(text, [](char16_t c) { return c >= u'0' && c <= u'9'; });
}

}  // namespace

void SiteSetting::refuse(const Text& reason) const {
    throw Failure(configuration_error::malformed_file, u"orvo-web",
                  file_ + u", line " + decimal(key_.line) + u": " + key_.name + u": " + reason);
}

std::int64_t SiteSetting::number() const {
    const bool is_number = is_number_text(text(), 15);
    const auto number = is_number ? Variant(text()).to<std::int64_t>() : 0;
    if (!is_number || number < least_ || number > most_)
        refuse(u"\"" + text() + u"\" is no number from " + decimal(least_) + u" to " +
               decimal(most_));
    return number;
}

std::vector<Text> SiteSetting::list() const {
    std::vector<Text> pieces;
    for (const Text& piece : split(text(), u",")) pieces.push_back(trimmed(piece));
    return pieces;
}

// "name = value", cut at the first "=".
std::pair<Text, Text> SiteSetting::cut(const Text& text, const Text& shape) const {
    const auto equals = text.find(u'=');
    if (equals == Text::npos || equals == 0) refuse(u"\"" + text + u"\" is not \"" + shape + u"\"");
    return {trimmed(TextView(text).substr(0, equals)), trimmed(TextView(text).substr(equals + 1))};
}

// A guard that guards nothing would leave open what it was meant for.
void SiteSetting::require_folder(const fs::path& root, const Text& path) const {
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
        refuse(u"there is no folder \"" + path + u"\"" +
               (nearest.empty() ? Text() : u"; did you mean \"" + above + Text(nearest) + u"/\"?"));
    }
    // By the name of a link, or through "..", only one of its names would be guarded.
    const std::string real_path = path_in_site(root, real).value_or("?") + "/";
    if (real_path != text)
        refuse(u"\"" + path + u"\" is not where it leads: \"" + from_utf8(real_path) +
               u"\" is to be guarded");
}

GuardedPath SiteSetting::guard(const fs::path& root, const Text& text) const {
    const auto [path, number] = cut(text, u"/path/ = number");
    if (!is_local_url(path) || !path.ends_with(u'/'))
        refuse(u"\"" + path + u"\" does not begin and end with \"/\"");
    if (!is_number_text(number, 6)) refuse(u"\"" + number + u"\" is no number of an application");
    require_folder(root, path);
    return {to_utf8(path), Variant(number).to<std::int32_t>()};
}

std::vector<GuardedPath> SiteSetting::guards(const fs::path& root) const {
    if (text().empty()) refuse(u"it names no path; leave the key out");
    std::vector<GuardedPath> guards;
    for (const Text& text : list()) guards.push_back(guard(root, text));
    return guards;
}

std::vector<ProviderSetting> SiteSetting::provider_settings() const {
    std::vector<ProviderSetting> settings;
    for (const Text& text : list()) {
        auto [name, value] = cut(text, u"Name = value");
        settings.push_back({std::move(name), std::move(value)});
    }
    return settings;
}

std::string SiteSetting::page_or_file(const fs::path& root) const {
    if (!is_local_url(text()) || text().find(u'?') != Text::npos)
        refuse(u"\"" + text() + u"\" is no path of the site");
    std::string path = to_utf8(text());
    const auto file = try_site_file(root, path);
    if (!file || (!is_page(path) && content_type_of(*file).empty()))
        refuse(u"\"" + text() + u"\" is no page or file of the site");
    return path;
}

std::vector<fs::path> SiteSetting::folders(const fs::path& root) const {
    std::vector<fs::path> folders;
    for (const Text& text : list()) {
        std::error_code error;
        const fs::path folder = fs::canonical(root / to_utf8(text), error);
        if (error || !fs::is_directory(folder, error))
            refuse(u"there is no folder \"" + text + u"\"");
        folders.push_back(folder);
    }
    return folders;
}

Networks SiteSetting::networks() const {
    Networks networks;
    if (text().empty()) return networks;
    for (const Text& text : list())
        if (!networks.try_add(to_utf8(text)))
            refuse(u"\"" + text + u"\" is no address, nor a network as 10.0.0.0/8");
    return networks;
}

ForwardedHeaders SiteSetting::forwarded_headers() const {
    static constexpr std::pair<TextView, bool ForwardedHeaders::*> known[]{
        {u"Forwarded", &ForwardedHeaders::forwarded},
        {u"X-Forwarded-For", &ForwardedHeaders::x_for},
        {u"X-Forwarded-Proto", &ForwardedHeaders::x_proto},
        {u"X-Forwarded-Host", &ForwardedHeaders::x_host}};
    ForwardedHeaders headers{false, false, false, false};
    for (const Text& text : list()) {
        const auto found = std::ranges::find_if(
            known, [&](const auto& row) { return equal_ignoring_case(row.first, text); });
        if (found == std::end(known)) refuse(u"\"" + text + u"\" is no header that is read here");
        headers.*found->second = true;
    }
    return headers;
}

std::optional<SocketAddress> SiteSetting::socket_address() const {
    if (text().empty()) return std::nullopt;
    const auto address = SocketAddress::try_read(to_utf8(text()));
    if (!address) refuse(u"\"" + text() + u"\" is no address and port as 127.0.0.1:9090");
    return address;
}

}  // namespace orvo::web
