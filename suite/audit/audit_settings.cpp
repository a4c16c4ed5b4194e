#include "suite/audit/audit_settings.h"

#include "suite/configuration/section_value.h"

namespace orvo::audit {
namespace {

namespace fs = std::filesystem;

constexpr TextView section = u"AUDIT";

using Key = SectionKey<Settings>;

constexpr Key keys[] = {
    {.name = u"File",
     .values = "path",
     .usual = [](const Settings&) { return std::string("no file"); },
     .about = "Where events are recorded, a line of JSON each; a relative path counts from the "
              "configuration's folder. Without it and `Journal` there is no audit.",
     .read = [](const Key&, const SectionValue& value,
                Settings& settings) { settings.file = value.file(); }},
    {.name = u"Journal",
     .values = "yes or no",
     .usual = [](const Settings&) { return std::string("no"); },
     .about = "Whether the system's journal gets the same lines (`journalctl -t orvo-audit`).",
     .read = [](const Key&, const SectionValue& value,
                Settings& settings) { settings.journal = value.is_yes(); }},
    {.name = u"Largest",
     .least = 1024,
     .most = std::int64_t{1} << 40,
     .values = "bytes",
     .usual = [](const Settings& usual) { return std::to_string(usual.rotation.largest); },
     .about = "How large the file becomes before it is renamed and a new one is begun.",
     .read =
         [](const Key& key, const SectionValue& value, Settings& settings) {
             settings.rotation.largest = static_cast<std::uint64_t>(key.number(value));
         }},
    {.name = u"Count",
     .least = 2,
     .most = 1000,
     .values = "files",
     .usual = [](const Settings& usual) { return std::to_string(usual.rotation.count); },
     .about = "How many files there are at most; the oldest goes.",
     .read =
         [](const Key& key, const SectionValue& value, Settings& settings) {
             settings.rotation.count = static_cast<std::size_t>(key.number(value));
         }},
    {.name = u"Sync",
     .values = "yes or no",
     .usual = [](const Settings&) { return std::string("no"); },
     .about = "Whether an event is on disk before its answer goes out. What cannot be recorded "
              "fails then: nobody logs in.",
     .read = [](const Key&, const SectionValue& value,
                Settings& settings) { settings.sync = value.is_yes(); }},
};

}  // namespace

Settings read_settings(const IniValues& values, const fs::path& site_file) {
    Settings settings;
    read_section(values, section, site_file, keys, [&](const Key& key, const SectionValue& value) {
        key.read(key, value, settings);
        if (settings.sync && key.name == u"Sync" && !values.find(section, u"File"))
            value.refuse(u"it needs a File: the journal does not tell when it has written");
    });
    return settings;
}

Settings settings_of_site() {
    const SiteFile site = load_site_file();
    return site.values ? read_settings(*site.values, site.name) : Settings();
}

std::vector<DescribedSetting> described_settings() { return described(keys); }

}  // namespace orvo::audit
