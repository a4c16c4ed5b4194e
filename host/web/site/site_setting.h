#pragma once

// One key of a file of settings, while it is read.

#include "host/web/site/site.h"
#include "suite/configuration/ini_files.h"

namespace orvo::web {

class SiteSetting {
public:
    // All outlive it. The bounds are those of number().
    SiteSetting(const Text& file, const IniKey& key, std::int64_t least, std::int64_t most)
        : file_(file), key_(key), least_(least), most_(most) {}

    // Each of these raises Failure (0x80040201), with file, line and key, for what cannot be.
    [[noreturn]] void refuse(const Text& reason) const;
    const Text& text() const { return key_.value; }
    std::int64_t number() const;
    // The pieces between commas, without blanks around them.
    std::vector<Text> list() const;
    // "/path/ = number", with commas between.
    std::vector<GuardedPath> guards(const std::filesystem::path& root) const;
    // "Name = value", with commas between. What the values may be is the provider's.
    std::vector<ProviderSetting> provider_settings() const;
    // A page or file of the site, as a path of it.
    std::string page_or_file(const std::filesystem::path& root) const;
    std::vector<std::filesystem::path> folders(const std::filesystem::path& root) const;
    // Addresses and networks, with commas between.
    Networks networks() const;
    // Names of headers, with commas between.
    ForwardedHeaders forwarded_headers() const;
    // "127.0.0.1:9090"; none where the text is empty.
    std::optional<SocketAddress> socket_address() const;

private:
    std::pair<Text, Text> cut(const Text& text, const Text& shape) const;
    void require_folder(const std::filesystem::path& root, const Text& path) const;
    GuardedPath guard(const std::filesystem::path& root, const Text& text) const;

    const Text& file_;
    const IniKey& key_;
    const std::int64_t least_;
    const std::int64_t most_;
};

}  // namespace orvo::web
