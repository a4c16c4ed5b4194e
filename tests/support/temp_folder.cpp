#include "tests/support/temp_folder.h"

#include <stdlib.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

namespace orvo {

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

TempFolder::TempFolder() {
    std::string name = std::filesystem::temp_directory_path() / "orvo-XXXXXX";
    if (!mkdtemp(name.data())) fail("mkdtemp " + name);
    path_ = name;
}

TempFolder::~TempFolder() {
    std::error_code left_behind;  // a destructor cannot report it
    std::filesystem::remove_all(path_, left_behind);
}

std::filesystem::path TempFolder::write(const std::filesystem::path& name,
                                        std::string_view content) const {
    const auto file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    if (!(std::ofstream(file, std::ios::binary) << content << std::flush))
        fail("write " + name.string());
    return file;
}

std::string content_of(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) fail("open " + file.string());
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace orvo
