#include "suite/audit/audit_settings.h"

#include <algorithm>
#include <array>

#include "platform/values/environment.h"
#include "platform/values/variant.h"
#include "suite/configuration/ini_files.h"
#include "suite/configuration/nearest_name.h"
#include "suite/configuration/suite_configuration.h"
#include "suite/configuration/value_reference.h"

namespace orvo::audit {
namespace {

namespace fs = std::filesystem;

constexpr TextView section = u"AUDIT";

// The value of a key, while it is read.
class Value {
public:
    Value(const IniKey& key, const fs::path& site_file)
        : key_(key), site_file_(site_file), text_(referred()) {}

    fs::path file() const {
        if (text_.empty()) refuse(u"it names no file");
        return site_file_.parent_path() / path_of(text_);
    }
    bool is_yes() const {
        if (equal_ignoring_case(text_, u"yes")) return true;
        if (!equal_ignoring_case(text_, u"no"))
            refuse(u"\"" + text_ + u"\" is neither \"yes\" nor \"no\"");
        return false;
    }
    std::int64_t number(std::int64_t least, std::int64_t most) const {
        const bool is_number =
            !text_.empty() && text_.size() <= 15 &&
            std::ranges::all_of(text_, [](char16_t c) { return c >= u'0' && c <= u'9'; });
        const auto number = is_number ? Variant(text_).to<std::int64_t>() : 0;
        if (!is_number || number < least || number > most)
            refuse(u"\"" + text_ + u"\" is no number from " + decimal(least) + u" to " +
                   decimal(most));
        return number;
    }
    [[noreturn]] void refuse(const Text& reason) const {
        throw Failure(configuration_error::malformed_file, Text(configuration_source),
                      text_of(site_file_) + u":" + decimal(key_.line) + u": [" + key_.section +
                          u"] " + key_.name + u": " + reason);
    }

private:
    Text referred() const {
        try {
            return referred_value(key_.value, site_file_.parent_path());
        } catch (const Failure& failure) {
            refuse(failure.description);
        }
    }

    const IniKey& key_;
    const fs::path& site_file_;
    const Text text_;
};

struct Key {
    TextView name;
    std::int64_t least = 0;
    std::int64_t most = 0;
    const char* values;
    const char* about;
    void (*read)(const Key& key, const Value& value, Settings& settings);
};

constexpr Key keys[] = {
    {.name = u"File",
     .values = "path",
     .about = "Where events are recorded, a line of JSON each; a relative path counts from the "
              "configuration's folder. Without it and `Journal` there is no audit.",
     .read = [](const Key&, const Value& value,
                Settings& settings) { settings.file = value.file(); }},
    {.name = u"Journal",
     .values = "yes or no",
     .about = "Whether the system's journal gets the same lines (`journalctl -t orvo-audit`).",
     .read = [](const Key&, const Value& value,
                Settings& settings) { settings.journal = value.is_yes(); }},
    {.name = u"Largest",
     .least = 1024,
     .most = std::int64_t{1} << 40,
     .values = "bytes",
     .about = "How large the file becomes before it is renamed and a new one is begun.",
     .read =
         [](const Key& key, const Value& value, Settings& settings) {
             settings.rotation.largest =
                 static_cast<std::uint64_t>(value.number(key.least, key.most));
         }},
    {.name = u"Count",
     .least = 2,
     .most = 1000,
     .values = "files",
     .about = "How many files there are at most; the oldest goes.",
     .read =
         [](const Key& key, const Value& value, Settings& settings) {
             settings.rotation.count = static_cast<std::size_t>(value.number(key.least, key.most));
         }},
    {.name = u"Sync",
     .values = "yes or no",
     .about = "Whether an event is on disk before its answer goes out. What cannot be recorded "
              "fails then: nobody logs in.",
     .read = [](const Key&, const Value& value,
                Settings& settings) { settings.sync = value.is_yes(); }},
};

std::string usual_value(TextView name) {
    const Settings usual;
    if (name == u"Largest") return std::to_string(usual.rotation.largest);
    if (name == u"Count") return std::to_string(usual.rotation.count);
    return name == u"File" ? "no file" : "no";
}

[[noreturn]] void refuse_name(const Value& value, TextView name) {
    std::array<TextView, std::size(keys)> names;
    std::ranges::transform(keys, names.begin(), &Key::name);
    const TextView nearest = nearest_name(name, names);
    value.refuse(u"there is no such key" +
                 (nearest.empty() ? Text() : u"; did you mean \"" + Text(nearest) + u"\"?"));
}

}  // namespace

Settings read_settings(const IniValues& values, const fs::path& site_file) {
    Settings settings;
    for (const IniKey& given : values.keys()) {
        if (!equal_ignoring_case(given.section, section)) continue;
        const Value value(given, site_file);
        const auto known = std::ranges::find_if(
            keys, [&](const Key& key) { return equal_ignoring_case(key.name, given.name); });
        if (known == std::end(keys)) refuse_name(value, given.name);
        known->read(*known, value, settings);
        if (settings.sync && equal_ignoring_case(given.name, u"Sync") &&
            !values.find(section, u"File"))
            value.refuse(u"it needs a File: the journal does not tell when it has written");
    }
    return settings;
}

Settings settings_of_site() {
    const fs::path file = usual_site_file();
    std::error_code error;
    if (environment_variable("ORVO_SITE_CONFIG").empty() &&
        fs::status(file, error).type() == fs::file_type::not_found)
        return {};
    return read_settings(*load_ini_file(file), file);
}

std::vector<DescribedSetting> described_settings() {
    std::vector<DescribedSetting> all;
    for (const Key& key : keys) {
        std::string values = key.values;
        if (key.most != 0)
            values += ", " + std::to_string(key.least) + " to " + std::to_string(key.most);
        all.push_back({to_utf8(key.name), values, usual_value(key.name), key.about});
    }
    return all;
}

}  // namespace orvo::audit
