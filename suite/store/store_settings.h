#pragma once

// Section [STORE] of the site's configuration: whether the machines of a site share what they keep
// of logins and sessions, and where.

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/values/described_setting.h"
#include "platform/values/secret.h"
#include "suite/configuration/ini_parser.h"

namespace orvo::store {

struct Address {
    std::string host;  // a name or a numeric address, without brackets
    int port = 6379;
    bool operator==(const Address&) const = default;
};

// "redis1:6379", "[::1]:6379".
std::string written(const Address& address);

struct Settings {
    std::vector<Address> addresses = {};  // none: each process keeps its own in memory
    bool is_encrypted = false;            // rediss://
    std::string user = {};                // empty: the server's default user
    Secret password = {};
    int database = 0;
    std::string sentinel = {};  // the master's name; then the addresses are Sentinels'
    Secret sentinel_password = {};
    std::filesystem::path ca_file = {};  // empty: what the system trusts
    std::filesystem::path key_file = {};
    std::string prefix = "orvo";  // of every key and channel
    std::chrono::milliseconds time_limit{500};
    std::size_t most_connections = 16;

    bool is_shared() const { return !addresses.empty(); }
    // "redis://redis1:6379,redis2:6379/1", for messages: neither user nor password.
    std::string url() const;
    // "<prefix>:<what>", "<prefix>:<what>:<name>".
    std::string key(std::string_view what) const;
    std::string key(std::string_view what, std::string_view name) const;
    Settings clone() const;
};

// What the section of a file says; `site_file` is its name, of which relative files count. Raises
// configuration_error::malformed_file for a key that is not known, a value that is none of its
// key's, a shared store without StoreKeys, and one in a build that has none.
Settings read_settings(const IniValues& values, const std::filesystem::path& site_file);

// The site's (usual_site_file), as they are now; without a site file nothing is shared. Raises the
// above, and what reading the file raises. Any thread, while no other one changes the environment.
Settings settings_of_site();

std::vector<DescribedSetting> described_settings();

}  // namespace orvo::store
