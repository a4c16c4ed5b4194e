#pragma once

// Section [THROTTLE] of the site's configuration.

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <vector>

#include "platform/values/described_setting.h"
#include "suite/configuration/ini_parser.h"

namespace orvo::throttle {

struct Settings {
    bool is_on = false;
    int attempts = 10;              // wrong ones that a user has within the window
    int attempts_of_address = 100;  // the same of an address, for all users that it is new to
    std::chrono::seconds window{900};
    int undelayed = 3;  // wrong attempts after which the next one waits
    std::chrono::milliseconds longest_delay{2000};
    int most_waiting = 4;  // attempts of this process that wait at once
    std::chrono::days known_for{30};
    std::size_t most_counted = 50'000;  // users in this process's memory, and as many addresses

    bool operator==(const Settings&) const = default;
};

// What the section of a file says; `site_file` is its name. Raises
// configuration_error::malformed_file for a key that is not known, a value that is none of its
// key's, and a section that does not say whether it is on.
Settings read_settings(const IniValues& values, const std::filesystem::path& site_file);

// The site's (usual_site_file), as they are now; without a site file there is no throttle. Raises
// the above, and what reading the file raises. Any thread, while no other one changes the
// environment.
std::shared_ptr<const Settings> settings_of_site();

std::vector<DescribedSetting> described_settings();

}  // namespace orvo::throttle
