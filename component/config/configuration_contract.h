#pragma once

// The suite's configuration component ("Quendra.Configuration"), as the component sees it.

#include "platform/interfaces/crossing.h"
#include "platform/interfaces/interface.h"
#include "platform/values/variant.h"

namespace orvo {

// Sections of keys and text values, loaded from files. Names of sections and keys are compared
// without regard to case. A value that was loaded later replaces an earlier one. The component
// makes an object for each use, on its own thread; a file that cannot be read is a failure.
class Configuration {
public:
    // The folder that holds the site's configuration file, without a separator at its end.
    virtual Text GetFolder() = 0;
    // Loads one named site file and answers whether it could (it raises when it could not).
    virtual bool LoadSiteConfigurationFile(const Text& path) = 0;
    virtual void LoadConfigurationFile(const Text& path) = 0;
    // The value of one key; an empty value when there is none.
    virtual Variant ReadConfigValue(Text& section, Text& key) = 0;
    // Loads the site's own file. The output has no meaning and is not used.
    virtual void Initialize(Variant& output) = 0;
    // The same, for late-bound callers. `reload`: read the file again although it is loaded.
    virtual void LoadSiteConfig(bool reload) = 0;
    // For late-bound callers: puts the value into `value` (with the type that `value` has, when it
    // holds a number) and answers 0; leaves it as it is and answers 1 when there is none.
    virtual std::int32_t GetValue2(Text& section, Text& key, Variant& value) = 0;

protected:
    ~Configuration() = default;
};

// The fourth operation as its callers see it: what it answers differs from component to component,
// and nobody uses it.
class SiteConfigurationLoader {
public:
    virtual UnusedAnswer LoadSiteConfigurationFile(const Text& path) = 0;

protected:
    ~SiteConfigurationLoader() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<SiteConfigurationLoader> = describe<SiteConfigurationLoader>(
    "IQuendraConfiguration", "a717e666-a0d2-453a-9357-9dcf856be20b",
    reserved(1, 3),
    method<&SiteConfigurationLoader::LoadSiteConfigurationFile>("LoadSiteConfigurationFile",
                                                                "path"));

template <>
inline constexpr auto table_of<Configuration> = describe<Configuration>(
    "IQuendraConfiguration", "a717e666-a0d2-453a-9357-9dcf856be20b",
    about("The site's configuration."),
    reserved(1, 2),
    method<&Configuration::GetFolder>("GetFolder")
        .help("The folder that holds the site's configuration file."),
    method<&Configuration::LoadSiteConfigurationFile>("LoadSiteConfigurationFile", "path")
        .help("Loads a named site file and answers whether it could."),
    method<&Configuration::LoadConfigurationFile>("LoadConfigurationFile", "path")
        .help("Loads a site configuration file."),
    reserved(6),
    method<&Configuration::ReadConfigValue>("ReadConfigValue", "section", "key")
        .help("The value of a key; an empty value where there is none."),
    method<&Configuration::LoadSiteConfig>("LoadSiteConfig", "reload")
        .help("Loads the site's own file, for late-bound callers."),
    method<&Configuration::GetValue2>("GetValue2", "section", "key", "value")
        .help("Puts a key's value into the variable: 0, or 1 where there is none."),
    reserved(10, 21),
    method<&Configuration::Initialize>("Initialize", "output")
        .help("Loads the site's own file; the output has no meaning."));
// clang-format on

}  // namespace orvo
