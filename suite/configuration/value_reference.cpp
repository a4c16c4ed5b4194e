#include "suite/configuration/value_reference.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <system_error>

#include "platform/values/environment.h"
#include "suite/configuration/ini_files.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t largest_value = 64 * 1024;
constexpr TextView file_word = u"@file:";
constexpr TextView credential_word = u"@credential:";
constexpr TextView words[] = {file_word, credential_word, u"@env:"};

[[noreturn]] void refuse(std::int32_t number, const Text& reason) {
    throw Failure(number, Text(configuration_source), reason);
}

Text line_of(const fs::path& file) {
    const Text name = text_of(file);
    std::error_code error;
    const auto kind = fs::status(file, error).type();
    if (kind == fs::file_type::not_found)
        refuse(configuration_error::file_not_found, name + u": there is no such file");
    // A pipe would be waited for.
    if (kind != fs::file_type::regular)
        refuse(configuration_error::file_not_readable, name + u": this is not a file");
    std::ifstream stream(file, std::ios::binary);
    std::string line(std::istreambuf_iterator<char>(stream), {});
    if (!stream.is_open() || stream.bad())
        refuse(configuration_error::file_not_readable, name + u": it cannot be read");
    if (line.ends_with('\n')) line.pop_back();
    if (line.ends_with('\r')) line.pop_back();
    const Text value = from_utf8(line);
    const bool is_one_line = value.find_first_of(TextView(u"\n\r\0", 3)) == Text::npos;
    if (line.size() > largest_value || !is_one_line || to_utf8(value) != line)
        refuse(configuration_error::malformed_file, name + u": it is not one line of text");
    return value;
}

fs::path credential(TextView name) {
    const Text folder = environment_variable("CREDENTIALS_DIRECTORY");
    if (folder.empty())
        refuse(configuration_error::file_not_found,
               u"there are no credentials: CREDENTIALS_DIRECTORY is not set");
    if (name.find_first_of(u"/\\") != TextView::npos)
        refuse(configuration_error::malformed_file,
               u"\"" + Text(name) + u"\" is no name of a credential");
    return path_of(folder) / path_of(name);
}

Text variable(TextView name) {
    if (name.find_first_of(TextView(u"=\0", 2)) != TextView::npos)
        refuse(configuration_error::malformed_file,
               u"\"" + Text(name) + u"\" is no name of a variable");
    const std::string narrow = to_utf8(name);
    if (!std::getenv(narrow.c_str()))
        refuse(configuration_error::file_not_found, u"the variable " + Text(name) + u" is not set");
    return environment_variable(narrow.c_str());
}

}  // namespace

bool is_reference(TextView configured) {
    return std::ranges::any_of(words, [&](TextView word) {
        return configured.starts_with(word) && configured.size() > word.size();
    });
}

Text referred_value(TextView configured, const fs::path& folder) {
    if (!is_reference(configured)) return Text(configured);
    const TextView behind = configured.substr(configured.find(u':') + 1);
    if (configured.starts_with(file_word)) return line_of(folder / path_of(behind));
    if (configured.starts_with(credential_word)) return line_of(credential(behind));
    return variable(behind);
}

}  // namespace orvo
