#include "suite/configuration/suite_configuration.h"

#include <algorithm>
#include <ranges>
#include <system_error>

#include "platform/values/environment.h"
#include "suite/configuration/ini_files.h"
#include "suite/configuration/loaded_files.h"
#include "suite/configuration/value_reference.h"

namespace orvo {

namespace {

namespace fs = std::filesystem;

constexpr const char* site_variable = "ORVO_SITE_CONFIG";

struct SiteFile {
    fs::path path;
    bool may_be_absent = false;
};

fs::path in_current_folder(const fs::path& path) {
    std::error_code error;
    auto result = fs::absolute(path, error);
    return error ? path : result;
}

// Windows names the folder for the settings of all users in a variable.
fs::path system_site_file() {
    const Text folder = environment_variable("ProgramData");
    return (folder.empty() ? fs::path("/etc") : path_of(folder)) / "orvo" / "site.ini";
}

SiteFile site_file(const fs::path& given) {
    if (!given.empty()) return {given};
    const Text named = environment_variable(site_variable);
    if (!named.empty()) return {in_current_folder(path_of(named))};
    return {system_site_file(), true};
}

bool is_absent(const fs::path& file) {
    std::error_code error;
    return fs::status(file, error).type() == fs::file_type::not_found;
}

Variant with_kind(Kind kind, const Variant& text) {
    switch (kind) {
        case Kind::int16:
            return text.to<std::int16_t>();
        case Kind::int32:
            return text.to<std::int32_t>();
        case Kind::int64:
            return text.to<std::int64_t>();
        case Kind::single:
        case Kind::real:
            return text.to<double>();
        case Kind::currency:
            return text.to<Currency>();
        case Kind::date:
            return text.to<Date>();
        case Kind::boolean:
            return text.to<bool>();
        default:
            return text;
    }
}

}  // namespace

fs::path usual_site_file() { return site_file({}).path; }

Text SuiteConfiguration::GetFolder() {
    Text folder = text_of(site_file(given_site_file_).path.parent_path());
    if (folder.ends_with(u'/')) folder.pop_back();
    return folder;
}

bool SuiteConfiguration::LoadSiteConfigurationFile(const Text& path) {
    const auto file = in_current_folder(path_of(path));
    lay_on_top(file, load_ini_file(file));
    given_site_file_ = file;
    return true;
}

void SuiteConfiguration::LoadConfigurationFile(const Text& path) {
    const auto file = in_current_folder(path_of(path));
    lay_on_top(file, load_ini_file(file));
}

Variant SuiteConfiguration::ReadConfigValue(Text& section, Text& key) {
    const std::optional<Text> value = find(section, key);
    return value ? Variant(*value) : Variant();
}

void SuiteConfiguration::Initialize(Variant& output) {
    LoadSiteConfig(false);
    output = Variant();
}

void SuiteConfiguration::LoadSiteConfig(bool reload) {
    const auto site = site_file(given_site_file_);
    if (is_loaded(site.path) && !reload) return;
    if (site.may_be_absent && is_absent(site.path)) {
        std::erase_if(layers_, [&](const Layer& layer) { return layer.file == site.path; });
        return;
    }
    lay_on_top(site.path, reload ? reload_ini_file(site.path) : load_ini_file(site.path));
}

std::int32_t SuiteConfiguration::GetValue2(Text& section, Text& key, Variant& value) {
    const std::optional<Text> found = find(section, key);
    if (!found) return 1;
    try {
        value = with_kind(value.kind(), Variant(*found));
    } catch (const Failure& failure) {
        // The conversion knows neither name; the value itself may be a secret.
        throw Failure(failure.number, Text(configuration_source),
                      u"[" + section + u"] " + key + u": the value cannot be converted (" +
                          failure.description + u")");
    }
    return 0;
}

std::optional<Text> SuiteConfiguration::find(const Text& section, const Text& key) const {
    for (const auto& layer : layers_ | std::views::reverse) {
        const Text* value = layer.values->find(section, key);
        if (!value) continue;
        try {
            return referred_value(*value, layer.file.parent_path());
        } catch (Failure& failure) {
            failure.description = u"[" + section + u"] " + key + u": " + failure.description;
            throw;
        }
    }
    return std::nullopt;
}

bool SuiteConfiguration::is_loaded(const fs::path& file) const {
    return std::ranges::find(layers_, file, &Layer::file) != layers_.end();
}

void SuiteConfiguration::lay_on_top(const fs::path& file, std::shared_ptr<const IniValues> values) {
    note_loaded(file, values);
    layers_.reserve(layers_.size() + 1);
    std::erase_if(layers_, [&](const Layer& layer) { return layer.file == file; });
    layers_.push_back({file, std::move(values)});
}

}  // namespace orvo
