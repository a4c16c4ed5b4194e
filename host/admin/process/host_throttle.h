#pragma once

// What a site's throttle counts of a user's wrong passwords: in the running host, or where the site
// has a shared store, there. Without the house's own values, for sources that use the component's
// client.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvo::admin {

struct ThrottledUser {
    std::filesystem::path site;    // the settings
    std::filesystem::path socket;  // the host's administration socket
    std::string user;              // a distinguished name
};

// A budget of attempts, as Throttle::State has it.
struct ThrottleBudget {
    std::string name;
    int wrong = 0;
    int most = 0;
    int seconds = 0;  // until an attempt is admitted again
    bool is_asked = false;
    bool is_of_all_names = false;  // of a user who has several
};

// Whether the site's settings ask for a throttle. This and the following raise std::exception for
// settings that are wrong.
bool has_throttle(const std::filesystem::path& site);

// Nothing where no host runs. `address`: empty, or that of the browser in question.
std::optional<std::vector<ThrottleBudget>> throttle_of(const ThrottledUser& who,
                                                       const std::string& address);
// Has the user's wrong passwords forgotten; whether there were any. False where no host runs.
bool clear_throttle(const ThrottledUser& who);
// The same of those that have come from an address, for all users.
bool clear_address(const std::filesystem::path& site, const std::filesystem::path& socket,
                   const std::string& address);

}  // namespace orvo::admin
