#pragma once

// The suite's configuration component, over INI files (their form: ini_parser.h).

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "component/config/configuration_contract.h"
#include "platform/interfaces/hosted.h"

namespace orvo {

class IniValues;

// The file that the environment variable ORVO_SITE_CONFIG names; without it /etc/orvo/site.ini (on
// Windows orvo\site.ini in %ProgramData%). It need not be there.
std::filesystem::path usual_site_file();

// The site's file is the one last given to LoadSiteConfigurationFile; before that, the usual one.
// Where the variable names it, it must be there; otherwise it may be absent: nothing is loaded
// then, and nothing is wrong.
//
// Files are laid one over the other in the order they were loaded, the last one on top; a file that
// is loaded again takes its place on top anew, and what it no longer says is gone. A file that
// cannot be loaded raises (numbers and texts: ini_files.h) and leaves everything as it was. In a
// path "\" means "/"; a relative path begins at the process's current folder.
//
// A value may refer to a file, a credential or a variable (value_reference.h), which is looked up
// each time the value is asked for.
//
// One object belongs to one thread; what was read of a file is shared by all objects of the
// process.
class SuiteConfiguration final : public Configuration {
public:
    // The folder of the site's file, whether that file is loaded, or there, or not.
    Text GetFolder() override;
    bool LoadSiteConfigurationFile(const Text& path) override;
    void LoadConfigurationFile(const Text& path) override;
    Variant ReadConfigValue(Text& section, Text& key) override;
    // `output` becomes empty.
    void Initialize(Variant& output) override;
    void LoadSiteConfig(bool reload) override;
    // A value keeps the type of the number, boolean or date that it holds (what holds a single
    // becomes a double, a byte or a decimal text). A configured text that does not convert raises
    // the conversion's number (13 or 6) with the names of section and key, and `value` stays.
    std::int32_t GetValue2(Text& section, Text& key, Variant& value) override;

private:
    struct Layer {
        std::filesystem::path file;
        std::shared_ptr<const IniValues> values;
    };

    // Raises what referred_value does, with the names of section and key.
    std::optional<Text> find(const Text& section, const Text& key) const;
    bool is_loaded(const std::filesystem::path& file) const;
    void lay_on_top(const std::filesystem::path& file, std::shared_ptr<const IniValues> values);

    std::filesystem::path given_site_file_;
    std::vector<Layer> layers_;
};

template <>
inline constexpr auto class_of<SuiteConfiguration> =
    describe_class<Configuration>("Quendra.Configuration", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e721");

}  // namespace orvo
