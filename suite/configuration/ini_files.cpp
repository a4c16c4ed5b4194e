#include "suite/configuration/ini_files.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <mutex>
#include <string>
#include <system_error>

namespace orvo {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t most_files_kept = 64;
constexpr auto at_rest = std::chrono::seconds(2);

struct Stamp {
    fs::file_time_type time;
    std::uintmax_t size;
    bool operator==(const Stamp&) const = default;
};

struct Kept {
    Stamp stamp;
    std::shared_ptr<const IniValues> values;
};

class KeptFiles {
public:
    std::shared_ptr<const IniValues> find(const fs::path& file, const Stamp& stamp) {
        const std::lock_guard lock(mutex_);
        const auto found = files_.find(file);
        return found != files_.end() && found->second.stamp == stamp ? found->second.values
                                                                     : nullptr;
    }

    void keep(const fs::path& file, Kept kept) {
        const std::lock_guard lock(mutex_);
        if (files_.size() >= most_files_kept) files_.clear();
        files_.insert_or_assign(file, std::move(kept));
    }

private:
    std::mutex mutex_;
    std::map<fs::path, Kept> files_;
};

KeptFiles& kept_files() {
    static KeptFiles files;
    return files;
}

[[noreturn]] void refuse(std::int32_t number, const fs::path& file, TextView reason) {
    throw Failure(number, Text(configuration_source), text_of(file) + u": " + Text(reason));
}

[[noreturn]] void refuse_unreadable(const fs::path& file, const std::error_code& error) {
    refuse(configuration_error::file_not_readable, file,
           u"it cannot be read (" + from_utf8(error.message()) + u")");
}

Stamp stamp_of(const fs::path& file) {
    std::error_code error;
    const auto status = fs::status(file, error);
    if (status.type() == fs::file_type::not_found)
        refuse(configuration_error::file_not_found, file, u"there is no such file");
    if (status.type() == fs::file_type::none) refuse_unreadable(file, error);
    if (status.type() != fs::file_type::regular)
        refuse(configuration_error::file_not_readable, file, u"this is not a file");
    const auto time = fs::last_write_time(file, error);
    if (error) refuse_unreadable(file, error);
    const auto size = fs::file_size(file, error);
    if (error) refuse_unreadable(file, error);
    return {time, size};
}

std::string content_of(const fs::path& file) {
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    std::string content;
    std::array<char, 16384> part;
    while (content.size() <= largest_ini_file) {
        stream.read(part.data(), part.size());
        if (stream.gcount() == 0) break;
        content.append(part.data(), static_cast<std::size_t>(stream.gcount()));
    }
    if (!stream.is_open() || stream.bad())
        refuse_unreadable(file, {errno == 0 ? EIO : errno, std::generic_category()});
    if (content.size() > largest_ini_file)
        refuse(configuration_error::file_not_readable, file,
               u"it is larger than " + decimal(largest_ini_file) + u" bytes");
    return content;
}

std::shared_ptr<const IniValues> read(const fs::path& file, const Stamp& stamp) {
    const auto now = fs::file_time_type::clock::now();
    auto values = std::make_shared<const IniValues>(parse_ini(content_of(file), text_of(file)));
    if (stamp.time + at_rest <= now) kept_files().keep(file, {stamp, values});
    return values;
}

}  // namespace

std::shared_ptr<const IniValues> load_ini_file(const fs::path& file) {
    const auto stamp = stamp_of(file);
    auto values = kept_files().find(file, stamp);
    return values ? values : read(file, stamp);
}

std::shared_ptr<const IniValues> reload_ini_file(const fs::path& file) {
    return read(file, stamp_of(file));
}

fs::path path_of(TextView text) {
    if (text.empty())
        throw Failure(configuration_error::file_not_found, Text(configuration_source),
                      u"no configuration file is named");
    if (text.find(u'\0') != text.npos)
        throw Failure(configuration_error::file_not_found, Text(configuration_source),
                      u"the name of the configuration file holds a NUL");
    const auto bytes = to_utf8(replaced(text, u"\\", u"/"));
    return fs::path(std::u8string(bytes.begin(), bytes.end()));
}

Text text_of(const fs::path& path) {
    const auto bytes = path.generic_u8string();
    return from_utf8(std::string(bytes.begin(), bytes.end()));
}

}  // namespace orvo
