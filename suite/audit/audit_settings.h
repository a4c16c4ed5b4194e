#pragma once

// Section [AUDIT] of the site's configuration.

#include <filesystem>
#include <vector>

#include "platform/values/described_setting.h"
#include "suite/configuration/ini_parser.h"
#include "suite/log/rotating_file.h"

namespace orvo::audit {

struct Settings {
    std::filesystem::path file = {};  // empty: none
    bool journal = false;             // the system's
    Rotation rotation = {};           // of the file
    bool sync = false;                // every event is on disk before what it tells of goes on

    bool is_on() const { return !file.empty() || journal; }
    bool operator==(const Settings&) const = default;
};

// What the section of a file says; `site_file` is its name, of which a relative File counts.
// Raises configuration_error::malformed_file for a key that is not known, a value that is none of
// its key's, and Sync without a File.
Settings read_settings(const IniValues& values, const std::filesystem::path& site_file);

// The site's (usual_site_file), as they are now; without a site file there is no audit. Raises the
// above, and what reading the file raises. Any thread, while no other one changes the environment.
Settings settings_of_site();

std::vector<DescribedSetting> described_settings();

}  // namespace orvo::audit
