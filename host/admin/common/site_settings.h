#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace orvo::directory {
struct DirectoryMap;
}

namespace orvo::admin {

// What a site's settings say of its directory (section MEMBERSHIP), in UTF-8.
struct SiteSettings {
    std::filesystem::path file;  // the settings themselves
    std::string provider;        // PlugableModuleImplementation
    std::string server;          // LDAPServer: of the embedded directory, its file
    std::string root;            // LDAPRoot
    // Relative to the root.
    std::string users, profiles, accounts, service;
    std::vector<std::string> user_classes;
    std::string profile_class, account_class;
    std::string naming_attribute;  // of users
    std::string profile_naming_attribute, account_naming_attribute;
    // MemScriptCode as it is written: "@file:service.code"
    std::string service_code;
    // Of an LDAP directory that does not know the product's schema; null for any other.
    std::shared_ptr<const directory::DirectoryMap> map;
};

// The settings of the site that a command works on: of the file that --site names, or without it
// where the component looks for them. Raises std::runtime_error where there is no such file.
std::filesystem::path site_file(const std::filesystem::path& given);

// Raises std::exception for a file that cannot be read or lacks one of these.
SiteSettings read_site_settings(const std::filesystem::path& file);

// Whether the site's directory is one that DIRECTORY.MAP describes. Raises what is wrong with it.
bool has_map(const std::filesystem::path& file);

}  // namespace orvo::admin
