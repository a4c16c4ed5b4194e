#include "suite/store/store_settings.h"

#include <algorithm>
#include <iterator>

#include "suite/configuration/section_value.h"
#include "suite/store/store_url.h"

namespace orvo::store {
namespace {

namespace fs = std::filesystem;

constexpr TextView section = u"STORE";
constexpr TextView url_key = u"StoreURL";
constexpr bool has_redis = ORVO_HAS_REDIS;

// Letters, digits, "-", "_" and ".".
std::string name_in(const SectionValue& value) {
    const auto is_plain = [](char16_t c) {
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
               c == u'-' || c == u'_' || c == u'.';
    };
    if (value.text().empty() || !std::ranges::all_of(value.text(), is_plain))
        value.refuse(u"\"" + value.text() +
                     u"\" is no name of letters, digits, \"-\", \"_\" and \".\"");
    return to_utf8(value.text());
}

void put_url(const SectionValue& value, Settings& settings) {
    const std::string objection = read_url(to_utf8(value.text()), settings);
    if (!objection.empty()) value.refuse(from_utf8(objection));
    if (settings.is_shared() && !has_redis)
        value.refuse(u"this build has no shared store, \"memory\" alone");
}

using Key = SectionKey<Settings>;

constexpr Key keys[] = {
    {.name = url_key,
     .values = "`memory`, or `redis://[user@]host[:port][,host[:port]…][/database]`, or the same "
               "with `rediss://`",
     .usual = [](const Settings&) { return std::string("memory"); },
     .about = "Where the machines of a site share logins, sessions and the counts of failed ones. "
              "`memory`: every process has its own. Of several hosts the one that is a master is "
              "used. `rediss`: encrypted, and the server's certificate is verified.",
     .read = [](const Key&, const SectionValue& value,
                Settings& settings) { put_url(value, settings); }},
    {.name = u"StorePassword",
     .values = "text, as a rule `@file:…`",
     .usual = [](const Settings&) { return std::string("none"); },
     .about = "With which the store is logged in to.",
     .read = [](const Key&, const SectionValue& value,
                Settings& settings) { settings.password = Secret(value.text()); }},
    {.name = u"StoreSentinel",
     .values = "name",
     .usual = [](const Settings&) { return std::string("no Sentinel"); },
     .about = "The name by which Sentinels know the master; the hosts of `StoreURL` are Sentinels "
              "then (port 26379 unless said), and the master is whom they name.",
     .read = [](const Key&, const SectionValue& value,
                Settings& settings) { settings.sentinel = name_in(value); }},
    {.name = u"StoreSentinelPassword",
     .values = "text, as a rule `@file:…`",
     .usual = [](const Settings&) { return std::string("none"); },
     .about = "With which Sentinels are logged in to.",
     .read = [](const Key&, const SectionValue& value,
                Settings& settings) { settings.sentinel_password = Secret(value.text()); }},
    {.name = u"StoreCA",
     .values = "path",
     .usual = [](const Settings&) { return std::string("what the system trusts"); },
     .about = "Certificates to trust for `rediss://`, a PEM file.",
     .read = [](const Key&, const SectionValue& value,
                Settings& settings) { settings.ca_file = value.file(); }},
    {.name = u"StoreKeys",
     .values = "path",
     .usual = [](const Settings&) { return std::string("no file"); },
     .about = "The keys with which everything personal is encrypted in the store, the same on all "
              "machines; a file of one line or two, each as `openssl rand -base64 32` writes it. "
              "The first one encrypts, both decrypt. Needed with a shared store.",
     .read = [](const Key&, const SectionValue& value,
                Settings& settings) { settings.key_file = value.file(); }},
    {.name = u"StorePrefix",
     .values = "name",
     .usual = [](const Settings& usual) { return usual.prefix; },
     .about = "What all names in the store begin with; another one for each site that shares a "
              "store.",
     .read = [](const Key&, const SectionValue& value,
                Settings& settings) { settings.prefix = name_in(value); }},
    {.name = u"StoreTimeLimit",
     .least = 10,
     .most = 60'000,
     .values = "milliseconds",
     .usual = [](const Settings& usual) { return std::to_string(usual.time_limit.count()); },
     .about = "How long one question to the store takes at most, connecting included.",
     .read =
         [](const Key& key, const SectionValue& value, Settings& settings) {
             settings.time_limit = std::chrono::milliseconds(key.number(value));
         }},
    {.name = u"StoreConnections",
     .least = 1,
     .most = 1000,
     .values = "connections",
     .usual = [](const Settings& usual) { return std::to_string(usual.most_connections); },
     .about = "How many connections a process has at most.",
     .read =
         [](const Key& key, const SectionValue& value, Settings& settings) {
             settings.most_connections = static_cast<std::size_t>(key.number(value));
         }},
};

}  // namespace

std::string written(const Address& address) {
    const bool is_bracketed = address.host.find(':') != address.host.npos;
    return (is_bracketed ? "[" + address.host + "]" : address.host) + ":" +
           std::to_string(address.port);
}

std::string Settings::url() const {
    if (!is_shared()) return "memory";
    std::string url;
    for (const Address& address : addresses) url += (url.empty() ? "" : ",") + written(address);
    url.insert(0, is_encrypted ? "rediss://" : "redis://");
    return database == 0 ? url : url + "/" + std::to_string(database);
}

std::string Settings::key(std::string_view what) const { return prefix + ":" + std::string(what); }

std::string Settings::key(std::string_view what, std::string_view name) const {
    return key(what) + ":" + std::string(name);
}

Settings Settings::clone() const {
    return {addresses,
            is_encrypted,
            user,
            password.clone(),
            database,
            sentinel,
            sentinel_password.clone(),
            ca_file,
            key_file,
            prefix,
            time_limit,
            most_connections};
}

Settings read_settings(const IniValues& values, const fs::path& site_file) {
    Settings settings;
    read_section(values, section, site_file, keys, [&](const Key& key, const SectionValue& value) {
        key.read(key, value, settings);
        const bool lacks_keys =
            key.name == url_key && settings.is_shared() && !values.find(section, u"StoreKeys");
        if (lacks_keys)
            value.refuse(
                u"it needs StoreKeys, the file of the keys with which "
                u"passwords are encrypted");
    });
    for (Address& address : settings.addresses)
        if (address.port == 0) address.port = settings.sentinel.empty() ? 6379 : 26379;
    return settings;
}

Settings settings_of_site() {
    const SiteFile site = load_site_file();
    return site.values ? read_settings(*site.values, site.name) : Settings();
}

std::vector<DescribedSetting> described_settings() { return described(keys); }

}  // namespace orvo::store
